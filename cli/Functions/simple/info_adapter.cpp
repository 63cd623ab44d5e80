// `info -o hba`: fetching controllers, and what is asked of them besides their record.
#include <array>
#include <cstddef>

#include "api/src/interface/api.h"
#include "api/src/interface/wire/nvme.h"
#include "cli/Functions/simple/info_fetch.h"
#include "cli/Functions/simple/info_list.h"
#include "cli/Functions/simple/simple_info.h"
#include "cli/Public/frame/controller.h"
#include "cli/Public/frame/identify.h"
#include "cli/Public/frame/report.h"

namespace {

using qrx::print;
using qrx::Response;
using qrx::vendorCommand;
using qrx::info::fetchAdapter;
using qrx::info::printFetched;
using qrx::info::Status;

constexpr QRX_U8 kSubReadHbaInfo = 0x0F;
constexpr std::size_t kSriovEnableOffset = 450;  // in the stored settings, which have no envelope

void showFetched(QRX_U8 adapterID, bool all, bool every)
{
    Response response;
    if (fetchAdapter(adapterID, response)) {
        printFetched(adapterID, response, all, every);
    } else if (every) {
        print("\nUnable to get info of NVMe Controller %u, BDF:%s\n", unsigned{adapterID},
              QRX_Adapter_GetDeviceFun(adapterID));
    } else {
        print("\nUnable to get info of NVMe Controller, BDF:%s\n\n",
              adapterID == 0 ? QRX_Adapter_GetDeviceFun(0) : "Not found");
    }
}

}  // namespace

bool qrx::info::fetchAdapter(QRX_U8 adapterID, Response& response)
{
    return fetch(vendorCommand(kGroupAdapter, 0).word(14, 0), {0, 12, 14}, response, Status::Spoken, adapterID) == 0;
}

void qrx::info::printFetched(QRX_U8 adapterID, const Response& response, bool all, bool blankLine)
{
    // The verdict in the answer decides; its signature is not looked at.
    if (response.status() != 0) {
        print("\nUnable to get info of Adapter, cmd_status:0x%x\n", response.status());
        return;
    }
    if (const auto record = response.record<NVME_Adapter_Info>()) {
        Adapter_PrintInfo(adapterID, *record, all);
        if (blankLine) {
            print("\n");
        }
    }
}

void getAdapterInfoSA(QRX_U8 adapterID, bool all)
{
    qrx::info::showAdapters(adapterID,
                            "Total # of HBA:", [all](QRX_U8 adapter, bool every) { showFetched(adapter, all, every); });
}

QRX_U16 get_hostID(QRX_U8 AdapterID)
{
    std::array<QRX_U8, qrx::wire::kPageSize> page{};
    if (qrx::identify(0, qrx::kIdentifyController, page, AdapterID) != 0) {
        print("\nFailed to get controller.\n");
        return 0;
    }
    return qrx::wire::read<QRX_U16>(page, offsetof(nvme_id_ctrl, cntlid)).value_or(0);
}

QRX_U8 get_sriov_enable()
{
    const auto command = vendorCommand(kGroupAdapter, kSubReadHbaInfo).word(10, qrx::kWholePage);
    command.debug();
    std::array<QRX_U8, qrx::wire::kPageSize> settings{};
    return command.receive(settings) == 0 ? settings[kSriovEnableOffset] : QRX_U8{0};
}

QRX_U8 checkHDExist(QRX_U16 id, bool /*JBOFMode*/, QRX_U8 adapter)
{
    Response response;
    (void)qrx::info::fetch(vendorCommand(kGroupPd, 0).word(14, id), {0, 12, 14}, response, Status::Silent, adapter);
    return response.isSigned() && response.status() == 0 ? 1 : 0;
}

QRX_U16 getTotoalPDCnt(QRX_U8 AdapterID)
{
    const NVME_Adapter_Info& current = qrx::recordOf(gCurrentAdapter);
    const bool isJBOF = qrx::isJbof(current);
    const QRX_U16 range = isJBOF ? current.MaxNSPerVD : current.MaxPD;
    QRX_U16 found = 0;
    for (QRX_U16 id = 0; id < range; ++id) {
        found = static_cast<QRX_U16>(found + checkHDExist(id, isJBOF, AdapterID));
    }
    return found;
}
