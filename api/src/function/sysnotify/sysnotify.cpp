#include "api/src/function/sysnotify/sysnotify.h"

#include <array>
#include <numeric>
#include <span>

#include "api/src/function/log/log.h"
#include "api/src/interface/adapter.h"
#include "api/src/interface/agent.h"
#include "api/src/interface/ns.h"
#include "api/src/interface/vd.h"

namespace {

// The controller ids of the host functions: two physical ones, then the virtual ones.
constexpr QRX_U16 UCD_HIU_NUM = 34;

constexpr QRX_U8 kNamespaceAttachment = 21;
constexpr QRX_U8 kFirstReservedNsid = 255;

// One direction of the Namespace Attachment command: its CDW10, whom it concerns, and what is logged.
struct Direction {
    QRX_U32 select;
    QRX_U8 status;  // bit of _NVME_NS_Info::Status
    const char* ready;
    const char* done;
};
constexpr Direction kAttach{0, kNsWaitsForAttach, "Ready to attach NS ID %d\n", "\nAttached NS %d to controller\n"};
constexpr Direction kDetach{1, kNsActive, "Ready to detach NS ID %d\n", "\nDetached NS %d to controller\n"};

struct Lists {
    NVME_Adapter_Info adapter{};
    std::array<NVME_NS_Info, kNsListMax> records{};  // those that the controller does not list are zero
};

// 0, or the code of the read that failed.
QRX_U32 readLists(QRX_U8 adapter_id, Lists& lists)
{
    const QRX_U32 status = QRX_Adapter_GetInfo(adapter_id, &lists.adapter);
    return status != 0 ? status : QRX_NS_GetInfo(adapter_id, lists.records.data(), lists.adapter.MaxNS);
}

int countVds(QRX_U8 adapter_id, QRX_U8 maxVd)
{
    int count = 0;
    for (QRX_U16 index = 0; index < maxVd; ++index) {
        NVME_VD_Info_Request request{};
        request.header = qrx::oneOf(index);
        if (QRX_VD_GetInfo(adapter_id, &request) == 0) {
            ++count;
        }
    }
    return count;
}

void changeOne(QRX_U8 adapter_id, QRX_U8 nsid, const Direction& direction)
{
    _controller_list_format list{};
    list.num_of_id = UCD_HIU_NUM;
    const std::span everyone = std::span(list.id).first(UCD_HIU_NUM);
    std::iota(everyone.begin(), everyone.end(), QRX_U16{0});

    add_log(direction.ready, nsid);
    QRX_U32 cdw[] = {direction.select};
    if (QRX_Adapter_Admin(adapter_id, kNamespaceAttachment, nsid, cdw, 1, &list, sizeof(list), nullptr, 0) == 0) {
        add_log(direction.done, nsid);
    }
}

void changeAll(QRX_U8 adapter_id, const Lists& lists, const Direction& direction)
{
    if (countVds(adapter_id, lists.adapter.MaxVD) != 1) {
        add_log(
            "\nNamespace attachment only support VD count is 1. "
            "Please reboot your system to update namespace status.\n");
        return;
    }
    for (const NVME_NS_Info& ns : lists.records) {
        if (ns.device_type == kNsParentVd && ns.NSID < kFirstReservedNsid && (ns.Status & direction.status) != 0) {
            changeOne(adapter_id, ns.NSID, direction);
        }
    }
}

}  // namespace

QRX_U32 before_create_vd(QRX_U8 /*adapter_id*/)
{
    return 0;
}

QRX_U32 after_create_vd(QRX_U8 adapter_id)
{
    Lists lists;
    if (readLists(adapter_id, lists) != 0) {
        return 1;
    }
    changeAll(adapter_id, lists, kAttach);
    return 0;
}

QRX_U32 before_delete_vd(QRX_U8 adapter_id, QRX_U16 /*vdId*/)
{
    Lists lists;
    const QRX_U32 status = readLists(adapter_id, lists);
    if (status != 0) {
        add_log(
            "\nFailed to read virtual disk name space information (error 0x%x: %s). "
            "Please shutdown and power on the system.\n",
            status, ErrorMessage(static_cast<QRX_U8>(status)));
        return status;
    }
    changeAll(adapter_id, lists, kDetach);
    return 0;
}

QRX_U32 after_delete_vd(QRX_U8 /*adapter_id*/)
{
    return 0;
}

QRX_U32 after_import_vd(QRX_U8 /*adapter_id*/)
{
    return 0;
}
