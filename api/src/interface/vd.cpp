#include "api/src/interface/vd.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <span>

#include "api/src/device/common/AdapterRecord.h"
#include "api/src/function/systemdisk/systemdisk.h"
#include "api/src/interface/adapter.h"
#include "api/src/interface/agent.h"
#include "api/src/interface/api.h"
#include "api/src/interface/globals.h"
#include "api/src/interface/ns.h"
#include "api/src/interface/pair_request.h"

namespace {

// True when `disk` is the namespace `nsid` of the controller at `adapterPath`. The path is compared as a prefix.
bool isOn(PQRXSystemDisk disk, QRX_U8 adapter_id, const char* adapterPath, QRX_U8 nsid)
{
    return disk->getNSID(disk, adapter_id) == nsid &&
           std::strncmp(disk->m_dev->device_path, adapterPath, std::strlen(adapterPath)) == 0;
}

}  // namespace

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

QRX_U32 QRX_VD_GetInfo(QRX_U8 adapter_id, PNVME_VD_Info_Request vd_info)
{
    const std::size_t length = sizeof(RequestHeader) + vd_info->header.numRequested * sizeof(NVME_VD_Info);
    return qrx::pairRequest(adapter_id, {kGroupVd, qrx::kSubReadVdInfo}, qrx::recordBytes(vd_info->header), vd_info,
                            static_cast<QRX_U16>(length));
}

QRX_U32 QRX_VD_Has_OS(QRX_U8 adapter_id, QRX_U16 vdId, QRX_U8 maxNS)
{
    std::array<NVME_NS_Info, kNsListMax> records{};
    if (QRX_NS_GetInfo(adapter_id, records.data(), maxNS) != 0) {
        return kVdUnknownOs;
    }
    NVME_Adapter_Info adapter{};
    if (QRX_Adapter_GetSimpleInfo(adapter_id, &adapter) != 0) {
        return kVdUnknownOs;
    }
    const char* path = QRX_Adapter_GetDevicePath(adapter_id);
    const std::span listed = std::span(records).first(std::min<std::size_t>(adapter.MaxNS, records.size()));
    PNVMEDiskManagement disks = GetNVMEDiskManagementInstance();
    for (PQRXSystemDisk disk : std::span(disks->m_os_devs).first(disks->m_os_count)) {
        for (const NVME_NS_Info& ns : listed) {
            if (ns.Status != 0 && ns.ID == vdId && ns.device_type == kNsParentVd &&
                isOn(disk, adapter_id, path, ns.NSID)) {
                return kVdHasOs;
            }
        }
    }
    return kVdHasNoOs;
}
