#include "cli/Functions/simple/ns_table.h"

#include <algorithm>
#include <cstdio>
#include <span>
#include <string_view>

#include "api/src/interface/globals.h"
#include "api/src/interface/wire/nvme.h"
#include "cli/Public/frame/controller.h"
#include "cli/Public/frame/identify.h"
#include "cli/Public/frame/report.h"

NSInfo* pGNSInfo = nullptr;
QRX_U16 gTotalNSs = 0;
QRX_U16 gHostID = 0;

namespace {

constexpr QRX_U8 kSubListNs = 0;
constexpr std::string_view kNoEui64 = "0000000000000000";

QRX_U8 maxNs()
{
    return qrx::recordOf(gCurrentAdapter).MaxNS;
}

using Eui64Text = std::array<char, 17>;

Eui64Text textOf(const QRX_U8 (&eui64)[8])
{
    Eui64Text text{};
    for (std::size_t i = 0; i < std::size(eui64); ++i) {
        std::snprintf(&text[2 * i], 3, "%02x", eui64[i]);
    }
    return text;
}

}  // namespace

bool qrx::readNsList(Response& response)
{
    const auto command = vendorCommand(kGroupNs, kSubListNs);
    command.debug();
    (void)command.receive(response.bytes());  // the answer tells whether it came
    return response.isGood();
}

void initNSInfoStrcuture()
{
    qrx::Response response;
    if (pGNSInfo == nullptr || !qrx::readNsList(response)) {
        return;
    }
    QRX_U16 filled = 0;
    for (std::size_t i = 0; i < maxNs(); ++i) {
        const auto ns = response.record<NVME_NS_Info>(i * sizeof(NVME_NS_Info));
        if (!ns) {
            break;  // the page ends the list where MaxNS is more than it can hold
        }
        if (ns->Status == 0) {
            continue;
        }
        NSInfo& row = pGNSInfo[i];
        row.NSID = ns->NSID;
        get_EUI64(ns->NSID, row.EUI64);
        row.Parent_PDID = ns->ID;
        row.Status = ns->Status;
        row.SectorSize = ns->SectorSize;
        row.LBA = ns->LBA;
        ++filled;
    }
    if (filled != 0) {
        gTotalNSs = filled;
    }
}

void get_EUI64(QRX_U8 nsID, QRX_U8* pEUI64)
{
    std::array<QRX_U8, qrx::wire::kPageSize> page{};
    if (qrx::identify(nsID, qrx::kIdentifyNamespace, page) != 0) {
        qrx::print("\nFailed to get primary controller.\n");
        return;
    }
    std::copy_n(page.begin() + offsetof(_nvme_id_ns, eui64), sizeof(_nvme_id_ns::eui64), pEUI64);
}

int getNSIDfromEUI64(const char* EUI64)
{
    if (maxNs() == 0 || pGNSInfo == nullptr) {
        qrx::print("Get MaxNS from adapter info fail.\n");
        return -1;
    }
    const std::span rows(pGNSInfo, maxNs());
    const auto row = std::find_if(rows.begin(), rows.end(), [wanted = std::string_view(EUI64)](const NSInfo& info) {
        return wanted == textOf(info.EUI64).data() && wanted != kNoEui64;
    });
    return row != rows.end() ? row->NSID : -1;
}

void getHostID()
{
    std::array<QRX_U8, qrx::wire::kPageSize> page{};
    if (qrx::identify(0, qrx::kIdentifyController, page) == 0) {
        gHostID = qrx::wire::read<QRX_U16>(page, offsetof(nvme_id_ctrl, cntlid)).value_or(gHostID);
    }
}
