#include "api/src/interface/vd.h"

#include <cstring>

#include "api/src/device/common/AdapterRecord.h"
#include "api/src/interface/agent.h"
#include "api/src/interface/globals.h"

QRX_U32 QRX_Adapter_GetSimpleVDInfo(QRX_U8 /*adapter_id*/, QRX_U16 id, PNVME_VD_Info record)
{
    _qrx_admin_command_format command{};
    command.CDW[0] = kVendorRead;
    command.CDW[12] = qrx::vendorWord(kGroupVd, qrx::kSubReadVdInfo);
    command.CDW[14] = id;
    command.cdw_flag = 0x5001;

    // The signature in the page tells whether the request was answered; the call's own status adds nothing.
    qrx::Page page{};
    QRX_Adapter_PassthruAdmin(gCurrentAdapter, &command, nullptr, 0, page.data(), qrx::wire::kPageSize, nullptr);
    if (std::memcmp(page.data(), kFrameSign, sizeof(kFrameSign) - 1) != 0) {
        return 1;
    }
    const QRX_U8 status = qrx::commandStatus(page);
    if (status == 0) {
        *record = qrx::payload<NVME_VD_Info>(page);
    }
    return status;
}
