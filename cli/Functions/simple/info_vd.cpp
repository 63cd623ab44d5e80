// `info -o vd`: virtual disks and what runs on them.
#include <algorithm>
#include <array>
#include <string>

#include "cli/Functions/simple/info_fetch.h"
#include "cli/Functions/simple/info_list.h"
#include "cli/Functions/simple/simple_info.h"
#include "cli/Public/frame/controller.h"
#include "cli/Public/frame/device_text.h"
#include "cli/Public/frame/lines.h"
#include "cli/Public/frame/number.h"

namespace {

using qrx::Lines;
using qrx::Response;
using qrx::vendorCommand;
using qrx::info::Status;

constexpr int kWidth = 20;
constexpr QRX_U8 kSubReadBga = 2;

const char* statusWord(QRX_U8 status)
{
    constexpr std::array<const char*, 12> kWords{"Functional",     "Degrade",           "Deleted",    "Missing",
                                                 "Offline",        "Partially Optimal", "Foreign",    "Importable",
                                                 "Not Importable", "Initialization",    "Rebuilding", "Error Handling"};
    static_assert(kWords.size() == kVdErrorHandling + 1);
    return status < kWords.size() ? kWords.at(status) : "N/A";
}

const char* stripeWord(QRX_U16 sectors)
{
    switch (sectors) {
    case 256:
        return "128K";
    case 512:
        return "256K";
    case 1024:
        return "512K";
    default:
        return "Unknown";
    }
}

const char* activityWord(QRX_U8 type)
{
    switch (type) {
    case QRX_NVME_BGA_TYPE_VD_INIT_QUICK:
    case QRX_NVME_BGA_TYPE_VD_INIT_BACKGROUND:
        return "Initializing";
    case QRX_NVME_BGA_TYPE_VD_REBUILD:
        return "Rebuilding";
    case QRX_NVME_BGA_TYPE_VD_SYNC:
        return "Synchronizing";
    case QRX_NVME_BGA_TYPE_VD_MIGRATE:
        return "Migrating";
    case QRX_NVME_BGA_TYPE_VD_MEDIAPATROL:
        return "Media Patrol";
    default:
        return "unknown BGA action";
    }
}

std::string memberList(const NVME_VD_Info& vd)
{
    std::string list;
    const std::size_t count = std::min<std::size_t>(vd.MemberCount, kVdMembersMax);
    for (std::size_t i = 0; i < count; ++i) {
        const QRX_U16 id = vd.PDIDs[i];
        list += id == kMissingMember ? "? " : std::to_string(id + qrx::idBase()) + " ";
    }
    return list;
}

}  // namespace

void getLDInfoSA(QRX_U16 LDID)
{
    // The range of indices is the number of ports, not MaxVD.
    qrx::info::showVds(LDID, qrx::recordOf(gCurrentAdapter).PortCount, getOneLDInfoSA);
}

QRX_U32 getOneLDInfoSA(QRX_U16 LDID)
{
    Response response;
    // An absent disk is an expected answer: the page decides, not the call.
    (void)qrx::info::fetch(vendorCommand(kGroupVd, 0).word(14, LDID), {0, 12, 14}, response, Status::Silent);
    const auto vd = response.record<NVME_VD_Info>();
    if (!response.isSigned() || !vd) {
        return 1;
    }
    if (response.status() != 0) {
        return response.status();
    }
    LD_PrintInfo(*vd);

    Response activity;
    (void)qrx::info::fetch(vendorCommand(kGroupBga, kSubReadBga).word(14, LDID), {0, 12, 14}, activity, Status::Spoken);
    const auto bga = activity.record<NVME_BGA_STATUS>();
    if (activity.status() == 0 && bga) {
        VD_PrintBGAStatus(*bga);
    }
    return activity.status();
}

void LD_PrintInfo(const NVME_VD_Info& vd)
{
    const Lines lines(kWidth);
    lines.id("VD ID:", vd.ID);
    lines.text("Name:", qrx::fieldText(vd.Name).c_str());
    lines.text("Status:", statusWord(vd.Status));
    lines.yesNo("Importable:", vd.Importable == 1);
    lines.text("RAID Mode:", RaidModeStr(vd.RaidMode));
    lines.gigabytes("size:", vd.LBA, vd.SectorSize);
    lines.number("PD Count:", vd.MemberCount);
    lines.text("PDs:", memberList(vd).c_str());
    if (vd.RaidMode == kRaid6 || vd.RaidMode == kRaid60) {
        lines.number("Parity Disk Number:", vd.NumParityDisk);
    }
    lines.text("Stripe Block Size:", stripeWord(vd.StripBlockSize));
    if (vd.SectorSize != 0) {
        lines.textf("Sector Size:", "%d bytes", static_cast<int>(vd.SectorSize));
    }
}

void VD_PrintBGAStatus(const NVME_BGA_STATUS& bga)
{
    const Lines lines(kWidth);
    if (bga.BgaStatus == QRX_NVME_BGA_STATUS_RUNNING) {
        lines.textf("BGA progress:", "%s is running in %d%%", activityWord(bga.BgaType), bga.Percentage);
    } else if (bga.BgaStatus == QRX_NVME_BGA_STATUS_PAUSE) {
        lines.textf("BGA progress:", "%s is pause in %d%%", activityWord(bga.BgaType), bga.Percentage);
    }
}
