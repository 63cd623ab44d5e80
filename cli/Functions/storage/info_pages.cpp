// The earlier `info`: fetching what is shown.
#include <array>
#include <vector>

#include "api/src/interface/bga.h"
#include "api/src/interface/globals.h"
#include "api/src/interface/ns.h"
#include "api/src/interface/pd.h"
#include "api/src/interface/vd.h"
#include "cli/Functions/simple/info_list.h"
#include "cli/Functions/simple/simple_info.h"
#include "cli/Functions/storage/info.h"
#include "cli/Public/frame/controller.h"
#include "cli/Public/frame/lines.h"
#include "cli/Public/frame/read_one.h"
#include "cli/Public/frame/report.h"

namespace {

using qrx::Lines;
using qrx::print;
using qrx::readOne;
using qrx::recordOf;

// What has room for any list of namespaces that one answer brings.
using NsList = std::array<NVME_NS_Info, kNsListMax>;

// Appends those of one VD; its slots without a namespace too. Returns the status of the read.
QRX_U32 appendNamespacesOf(QRX_U16 vdId, QRX_U8 slots, std::vector<NVME_NS_Info>& records)
{
    NsList list{};
    const QRX_U32 status = QRX_NS_GetInfo_VD(gCurrentAdapter, list.data(), vdId, slots);
    if (status == 0) {
        records.insert(records.end(), list.begin(), list.end());
    }
    return status;
}

}  // namespace

void getAdapterInfo(QRX_U16 adapterID, bool all)
{
    qrx::info::showAdapters(adapterID, "Total # of NVMe Controller:", [all](QRX_U8 adapter, bool every) {
        Adapter_PrintInfo(adapter, recordOf(adapter), all);
        if (every) {
            print("\n");
        }
    });
}

void getHDInfo(QRX_U16 HDID)
{
    const bool isJBOF = qrx::isJbof(recordOf(gCurrentAdapter));
    qrx::info::showPds(HDID, [isJBOF](QRX_U16 id) { return getOneHDInfo(id, isJBOF); });
}

QRX_U32 getOneHDInfo(QRX_U16 HDID, bool isJBOF)
{
    NVME_PD_Info_Request disk{};
    if (const QRX_U32 status = readOne(QRX_PD_GetInfo, HDID, disk)) {
        return status;
    }
    HD_PrintInfo(disk.pd_info, isJBOF);

    NVME_BGA_REQUEST activity{};
    if (readOne(QRX_PD_GetBGAStatus, HDID, activity) == 0) {
        HD_PrintBGAStatus(activity.data);
    }
    return 0;
}

void HD_PrintBGAStatus(const NVME_BGA_STATUS& bga)
{
    const Lines lines(23);
    if (bga.BgaStatus == QRX_NVME_BGA_STATUS_RUNNING) {
        lines.textf("BGA progress:", "Media Patrol is running in %d%%", bga.Percentage);
    } else if (bga.BgaStatus == QRX_NVME_BGA_STATUS_PAUSE) {
        lines.textf("BGA progress", "Media Patrol is pause in %d%%", bga.Percentage);
    }
}

void getLDInfo(QRX_U16 LDID)
{
    qrx::info::showVds(LDID, recordOf(gCurrentAdapter).MaxVD, getOneLDInfo);
}

QRX_U32 getOneLDInfo(QRX_U16 LDID)
{
    NVME_VD_Info_Request disk{};
    if (const QRX_U32 status = readOne(QRX_VD_GetInfo, LDID, disk)) {
        return status;
    }
    LD_PrintInfo(disk.vd_info);
    if (QRX_VD_Has_OS(gCurrentAdapter, LDID, recordOf(gCurrentAdapter).MaxNS) == kVdHasOs) {
        Lines(20).text("OS Disk:", "Is");
    }

    NVME_BGA_REQUEST activity{};
    const QRX_U32 status = readOne(QRX_VD_GetBGAStatus, LDID, activity);
    if (status == 0) {
        VD_PrintBGAStatus(activity.data);
    }
    return status;
}

void getNSInfo(QRX_U16 nsId)
{
    const QRX_U8 slots = recordOf(gCurrentAdapter).MaxNS;
    if (slots == 0) {
        print("Get MaxNS from NVMe Controller info fail.\n");
        return;
    }
    NsList records{};
    if (QRX_NS_GetInfo(gCurrentAdapter, records.data(), slots) != 0) {
        print("\nUnable to get info of NS\n");
        return;
    }
    qrx::info::printNamespaces(records, nsId, qrx::info::kAnyStatus);
}

void getNSInfoOfVD(QRX_U16 nsId, QRX_U16 vdId)
{
    const NVME_Adapter_Info& controller = recordOf(gCurrentAdapter);
    if (controller.MaxNSPerVD == 0) {
        print("Get MaxNSPerVD from NVMe Controller info fail.\n");
        return;
    }
    std::vector<NVME_NS_Info> records;
    if (vdId != kAllInstances) {
        if (appendNamespacesOf(vdId, controller.MaxNSPerVD, records) != 0) {
            print("\nUnable to get info of VD\n");
            return;
        }
    } else {
        for (QRX_U16 each = 0; each < controller.MaxVD; ++each) {
            (void)appendNamespacesOf(each, controller.MaxNSPerVD, records);  // ids without a VD have none
        }
    }
    qrx::info::printNamespaces(records, nsId, kNsValid);
}
