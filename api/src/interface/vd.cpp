#include "api/src/interface/vd.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <span>

#include "api/src/device/common/AdapterRecord.h"
#include "api/src/function/sysnotify/sysnotify.h"
#include "api/src/function/systemdisk/systemdisk.h"
#include "api/src/interface/adapter.h"
#include "api/src/interface/agent.h"
#include "api/src/interface/api.h"
#include "api/src/interface/globals.h"
#include "api/src/interface/ns.h"
#include "api/src/interface/pair_request.h"

using qrx::PairCode;

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
    return qrx::pairList(adapter_id, {PairCode::kVdGetInfo}, vd_info);
}

QRX_U32 QRX_VD_GetConfig(QRX_U8 adapter_id, PNVME_VD_Config_Request vd_config)
{
    return qrx::pairList(adapter_id, {PairCode::kVdGetConfig}, vd_config);
}

QRX_U32 QRX_VD_SetConfig(QRX_U8 adapter_id, PNVME_VD_Config_Request vd_config)
{
    const std::size_t length = sizeof(RequestHeader) + vd_config->header.numRequested * sizeof(NVME_VD_Config);
    return qrx::pairRequest(adapter_id, {PairCode::kVdSetConfig}, qrx::bytesFrom(vd_config, length), {});
}

QRX_U32 QRX_VD_Create(QRX_U8 adapter_id, PNVME_Create_VD create_para)
{
    before_create_vd(adapter_id);
    create_para->QueryLDSize = 0;
    const QRX_U32 status = qrx::pairSend(adapter_id, {PairCode::kVdCreate}, *create_para);
    return status != 0 ? status : after_create_vd(adapter_id);
}

QRX_U32 QRX_VD_QuerySize(QRX_U8 adapter_id, PNVME_Create_VD create_para, PNVME_PreCreate_VD pre_create_para)
{
    create_para->QueryLDSize = 1;
    return qrx::pairRequest(adapter_id, {PairCode::kVdCreate}, qrx::recordBytes(*create_para),
                            qrx::bytesFrom(pre_create_para));
}

QRX_U32 QRX_VD_Delete(QRX_U8 adapter_id, QRX_U16 vd_id)
{
    before_delete_vd(adapter_id, vd_id);
    const QRX_U32 status = qrx::pairSend(adapter_id, {PairCode::kVdDelete}, NVME_VD_Delete{vd_id, 0, {}});
    return status != 0 ? status : after_delete_vd(adapter_id);
}

QRX_U32 QRX_VD_Import(QRX_U8 adapter_id, PRequestHeader pRequestHeader)
{
    const QRX_U32 status = qrx::pairSend(adapter_id, {PairCode::kVdImport}, *pRequestHeader);
    return status != 0 ? status : after_import_vd(adapter_id);
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
