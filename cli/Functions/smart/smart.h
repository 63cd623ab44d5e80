// `smart`: the SMART / Health Information log of the controller, a back-end disk or a namespace.
#pragma once

#include "api/src/interface/wire/nvme.h"
#include "cli/Public/common.h"

extern const char smart_help[];

int doSmart(int argc, char** argv, PCommand_Info pCmdInfo);

// CDW10 of the Get Log Page of this log: its identifier, and 128 dwords.
inline constexpr QRX_U32 kSmartLogPage = 0x7F0002;

// A 128-bit little-endian counter. The low digits of one above 2^64 are lost.
long double int128_to_double(const QRX_U8 (&data)[16]);

// Print the log to `stream`: its first lines for an `hbaMode` other than 0, otherwise all. The second form tells the
// data units without their bytes, and knows a temperature of 0 as one that is not there.
void showLogSmartInfo(const _qrx_smart_log& smart, int hbaMode);
void showLogSmartInfo_no_calculator(const _qrx_smart_log& smart, int hbaMode);

namespace qrx {

// The page that all of them print, under a title: the first lines, or `all`; `calculates` for data units in GB.
void showSmart(const char* title, const _qrx_smart_log& smart, bool all, bool calculates);

}  // namespace qrx
