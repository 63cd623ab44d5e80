// The text of a binary event, in the words of the controller's own log.
#pragma once

#include <array>
#include <cstddef>

#include "api/src/interface/wire/event_text.h"
#include "api/src/interface/wire/types.h"

// Words of that log for which no code of a binary event stands.
inline constexpr char spi_hba_w_img_succeeded[] = "_W_IMG_SUCCEEDED";
inline constexpr char spi_hba_w_img_failed[] = "_W_IMG_FAILED";
inline constexpr char spi_hba_a_img_succeeded[] = "_A_IMG_SUCCEEDED";
inline constexpr char spi_hba_a_img_failed[] = "_A_IMG_FAILED";
inline constexpr char spi_hba_r_img_succeeded[] = "_R_IMG_SUCCEEDED";
inline constexpr char spi_hba_r_img_failed[] = "_R_IMG_FAILED";
inline constexpr char spi_pd_cache_change[] = "_CACHE_CHANGE";
inline constexpr char spi_vd_partially[] = "_PARTIALLY";
inline constexpr char spi_vd_cache_changed[] = "_CACHE_CHANGED";
inline constexpr char spi_vd_rebuild_target_too_small[] = "_REBUILD_TARGETTOOSMALL";

// A severity and a class in brackets, "[UNKNOWN]" for one that there is not; and the message of an event of a class.
const char* getSeverityDesc(QRX_U8 severity);
const char* getClassDesc(QRX_U16 classCode);
const char* getEventDesc(QRX_U16 classCode, QRX_U16 code);

namespace qrx {

// Letters that the text of an event has at most.
inline constexpr std::size_t kEventTextMax = 64;
using EventText = std::array<char, kEventTextMax + 1>;

// The line of an event as the log has it, without its line feed and terminated. A class, code or severity that nobody
// knows leaves its piece out; what is too long is cut.
EventText eventText(const NVME_Event_Item& item);

}  // namespace qrx
