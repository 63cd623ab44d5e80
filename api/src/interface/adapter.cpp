#include "api/src/interface/adapter.h"

#include <cstdio>

#include "api/src/device/common/AdapterRecord.h"
#include "api/src/device/common/DeviceManagement.h"
#include "api/src/interface/agent.h"
#include "api/src/interface/globals.h"
#include "api/src/interface/pair_request.h"

using qrx::PairCode;

namespace {

constexpr QRX_U32 kDefaultFlashSize = 0x800000;

// Older firmware leaves these two fields 0.
void putDefaults(NVME_Adapter_Info& record)
{
    if (record.MaxPD == 0) {
        record.MaxPD = record.PortCount;
    }
    if (record.MaxFlashSize == 0) {
        record.MaxFlashSize = kDefaultFlashSize;
    }
}

}  // namespace

QRX_U32 QRX_Adapter_SetTime(QRX_U16 adapter_id, PNVME_Adapter_Time adapter_time)
{
    _qrx_admin_command_format command{};
    command.CDW[0] = kVendorRead;
    command.CDW[12] = qrx::vendorWord(kGroupAdapter, qrx::kSubSetTime);
    command.CDW[13] = QRX_U32{adapter_time->hi} | QRX_U32{adapter_time->mid} << 16U;
    command.CDW[14] = adapter_time->lw;
    command.cdw_flag = 0x7001;

    PDeviceManagement table = GetDeviceManagementInstance();
    PDevice device = table->getDevice(table, adapter_id);
    PDevice nvme = device->getNVMEDevice(device);
    return nvme->sendPassthruAdmin(nvme, &command, nullptr, 0, nullptr, 0, nullptr);
}

QRX_U32 QRX_Adapter_GetInfo(QRX_U16 adapter_id, PNVME_Adapter_Info adapter_info)
{
    const QRX_U32 status = qrx::pairReceive(adapter_id, {PairCode::kAdapterGetInfo}, adapter_info);
    if (status == 0) {
        putDefaults(*adapter_info);
    }
    return status;
}

QRX_U32 QRX_Adapter_GetConfig(QRX_U16 adapter_id, PNVME_Adapter_Config adapter_config)
{
    return qrx::pairReceive(adapter_id, {PairCode::kAdapterGetConfig}, adapter_config);
}

QRX_U32 QRX_Adapter_SetConfig(QRX_U16 adapter_id, PNVME_Adapter_Config adapter_config)
{
    return qrx::pairSend(adapter_id, {PairCode::kAdapterSetConfig}, *adapter_config);
}

QRX_U32 QRX_Adapter_LED(QRX_U8 adapter_id, PNVME_LED led)
{
    return qrx::pairSend(adapter_id, {PairCode::kAdapterLed}, *led);
}

QRX_U32 QRX_Adapter_OEM(QRX_U8 /*adapter_id*/, PQRXItem_OEM_Data /*adapter_oem*/)
{
    std::puts("not support now");
    return 0;
}

QRX_U32 QRX_Adapter_GetSimpleInfo(QRX_U8 adapter_id, PNVME_Adapter_Info record)
{
    _qrx_admin_command_format command = qrx::readAdapterCommand();
    qrx::Page page{};
    const QRX_U32 status =
        QRX_Adapter_PassthruAdmin_no_status_code(adapter_id, &command, nullptr, 0, page.data(), qrx::wire::kPageSize);
    if (status != 0) {
        if (dbg_enable != 0) {
            std::fprintf(stream, "\nUnable to get info of NVMe Controller %s", "\n");
        }
        return status;
    }
    if (qrx::commandStatus(page) != 0) {
        if (dbg_enable != 0) {
            std::fprintf(stream, "\nUnable to get info of Adapter, cmd_status:0x%x\n", qrx::commandStatus(page));
        }
        return status;
    }
    *record = qrx::payload<NVME_Adapter_Info>(page);
    putDefaults(*record);
    return status;
}
