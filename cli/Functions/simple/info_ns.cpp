// `info -o ns`: namespaces, and their sharing state.
#include <vector>

#include "cli/Functions/simple/info_fetch.h"
#include "cli/Functions/simple/info_list.h"
#include "cli/Functions/simple/simple_info.h"
#include "cli/Public/frame/controller.h"
#include "cli/Public/frame/lines.h"
#include "cli/Public/frame/report.h"

namespace {

using qrx::Lines;
using qrx::print;
using qrx::Response;
using qrx::vendorCommand;
using qrx::info::Status;

constexpr int kWidth = 20;
constexpr QRX_U8 kSubListAll = 0;
constexpr QRX_U8 kSubListOfVd = 1;
constexpr QRX_U8 kSubReadNmic = 5;

}  // namespace

std::vector<NVME_NS_Info> qrx::info::namespacesIn(const Response& response)
{
    std::vector<NVME_NS_Info> records;
    for (std::size_t i = 0; i < recordOf(gCurrentAdapter).MaxNS; ++i) {
        const auto ns = response.record<NVME_NS_Info>(i * sizeof(NVME_NS_Info));
        if (!ns) {
            break;
        }
        records.push_back(*ns);
    }
    return records;
}

void getNSInfoSA(QRX_U16 nsId, bool /*showParentDev*/)
{
    if (qrx::recordOf(gCurrentAdapter).MaxNS == 0) {
        print("Get MaxNS from adapter info fail.\n");
        return;
    }
    Response response;
    (void)qrx::info::fetch(vendorCommand(kGroupNs, kSubListAll), {0, 12}, response, Status::Spoken);
    if (!response.isGood()) {
        print("\nUnable to get info of NS\n");
        return;
    }
    qrx::info::printNamespaces(qrx::info::namespacesIn(response), nsId, qrx::info::kAnyStatus);
}

void getNSInfoOfVDSA(QRX_U16 nsId, QRX_U16 vdId)
{
    const NVME_AP_Ns_Get_sinfo_Vd unit{static_cast<QRX_U8>(vdId), 0};
    Response response;
    (void)qrx::info::fetch(vendorCommand(kGroupNs, kSubListOfVd, unit.vd_id).flag(0x5001), {0, 12}, response,
                           Status::Spoken);
    if (!response.isGood()) {
        print("\nUnable to get info of VD\n");
        return;
    }
    // One that was asked for by its id is shown whatever its state.
    qrx::info::printNamespaces(qrx::info::namespacesIn(response), nsId,
                               nsId == kAllInstances ? kNsValid : qrx::info::kAnyStatus);
}

void NS_PrintInfo(const NVME_NS_Info& ns, bool isJBOF)
{
    const Lines lines(kWidth);
    lines.number("NS ID:", ns.NSID);
    lines.gigabytes("Size:", ns.LBA, ns.SectorSize);
    lines.id(isJBOF ? "Parent PD ID:" : "Parent VD ID:", ns.ID);
    lines.yesNo("Valid:", (ns.Status & kNsValid) != 0);
    lines.yesNo("Active:", (ns.Status & kNsActive) != 0);
    if (!isJBOF) {
        const bool unhealthy = ns.VDStatus == kVdDegrade || ns.VDStatus == kVdRebuilding;
        lines.text("VD status:", unhealthy ? "Unhealthy" : "Healthy");
    }
    print("\n");
}

void getNMIC(QRX_U8 nsId)
{
    const auto command = vendorCommand(kGroupNs, kSubReadNmic, nsId);
    command.debug();
    Response response;
    const int status = command.receive(response.bytes());
    const auto nmic = response.record<NMIC_Data>();
    if (status != 0 || !response.isGood() || !nmic) {
        print("Unable to get NMIC\n\n");
        return;
    }
    if (nmic->mode == 0) {
        Lines(kWidth).number("Private for controller ID:", nmic->ctrlID);
        print("\n");
    }
}
