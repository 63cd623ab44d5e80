// What `ns` can be asked to do.
#pragma once

#include <cstddef>

#include "api/src/interface/wire/ns.h"
#include "api/src/interface/wire/types.h"
#include "cli/Public/common.h"
#include "cli/Public/frame/option_scan.h"

// 1 when the current controller has namespace management and attachment.
QRX_U8 _getSupportNSStatus();
// Reads the sector size of a PD. Returns 0, 1 on a bad signature, or the firmware's cmd_status.
int GetSectorSizeFromPD(QRX_U16 pd_id, QRX_U32* pSectorSize);
// Lists the namespaces.
void showNSInfo();

namespace qrx::ns {

inline constexpr char kInvalidId[] = "invalid id '%s'\n";

enum Action { kInit, kShare, kCreate, kAttach, kDetach };

// The options of one command.
struct Wish {
    int action = -1;
    int id = 0;  // of a PD or a namespace
    const char* idWord = "";
    const char* eui64 = "";  // 16 characters
    QRX_U8 count = 0;        // of namespaces
    QRX_U8 shared = 0;
    QRX_U8 cid = 0;  // controller id
    QRX_U32 gigabytes = 0;
    NVME_NS_ATTACHMENT_PRP controllers{};
};

// Carries out wish.action, if the options that it needs are there. Returns what the handler returns.
int act(PCommand_Info row, const OptionScan& scan, Wish& wish);

// Shows the controller id of this function, which the Identify page `cns` has at `offset`. Returns the device's status.
int showPrimary(QRX_U8 cns, std::size_t offset);

}  // namespace qrx::ns
