#include "cli/Functions/simple/info_list.h"

#include <algorithm>

#include "api/src/interface/api.h"
#include "api/src/interface/globals.h"
#include "cli/Functions/simple/simple_info.h"
#include "cli/Public/frame/controller.h"
#include "cli/Public/frame/lines.h"
#include "cli/Public/frame/report.h"

namespace qrx::info {
namespace {

constexpr unsigned kAddressable = 256;  // controllers that an 8-bit index reaches

// What differs between the disks.
struct Kind {
    int range;  // of ids
    int width;
    const char* total;
    const char* none;
    const char* unable;
};

void showDisks(QRX_U16 id, const Kind& kind, const ShowOne& show)
{
    if (id != kAllInstances) {
        if (show(id) != 0) {
            print("%s", kind.unable);
        }
        return;
    }
    QRX_U32 found = 0;
    print("\n");
    for (int each = 0; each < kind.range; ++each) {
        if (show(static_cast<QRX_U16>(each)) == 0) {
            print("\n");
            ++found;
        }
    }
    if (found == 0) {
        print("%s", kind.none);
        return;
    }
    Lines(kind.width).number(kind.total, found);
    print("\n");
}

}  // namespace

void showAdapters(QRX_U16 adapterID, const char* total, const std::function<void(QRX_U8, bool)>& show)
{
    const QRX_U16 count = QRX_Adapter_GetCount();
    if (adapterID == kAllInstances && gSpecificAdapterFlag == 0) {
        for (unsigned index = 0; index < count && index < kAddressable; ++index) {
            show(static_cast<QRX_U8>(index), true);
        }
        Lines(20).number(total, count);
        print("\n");
        return;
    }
    if (adapterID >= count) {
        print("\nUnable to get info of NVMe Controller\n");
        return;
    }
    show(static_cast<QRX_U8>(adapterID), false);
}

void showPds(QRX_U16 id, const ShowOne& show)
{
    const NVME_Adapter_Info& record = recordOf(gCurrentAdapter);
    showDisks(id,
              {.range = record.MaxPD * record.PortCount,
               .width = 23,
               .total = "Total # of PD:",
               .none = "No physical disk is found.\n",
               .unable = "\nUnable to get info of PD\n"},
              show);
}

void showVds(QRX_U16 id, QRX_U8 range, const ShowOne& show)
{
    showDisks(id,
              {.range = range,
               .width = 20,
               .total = "Total # of VD:",
               .none = "No virtual disk is found.\n",
               .unable = "\nUnable to get info of VD\n"},
              show);
}

void printNamespaces(std::span<const NVME_NS_Info> records, QRX_U16 nsId, QRX_U8 status)
{
    QRX_U32 found = 0;
    for (const NVME_NS_Info& ns : records) {
        if ((ns.Status & status) != 0 && (nsId == kAllInstances || ns.NSID == nsId)) {
            NS_PrintInfo(ns, isJbof(recordOf(gCurrentAdapter)));
            ++found;
        }
    }
    if (nsId != kAllInstances) {
        if (found == 0) {
            print("\nUnable to get info of NS\n");
        }
        return;
    }
    if (found == 0) {
        print("No Namespace Info Exist.\n");
        return;
    }
    Lines(20).number("Total # of NS:", found);
    print("\n");
}

}  // namespace qrx::info
