// The actions of `ns`. Those that change the layout are refused in a virtual function.
#include "cli/Functions/simple/ns_actions.h"

#include <optional>

#include "api/src/interface/globals.h"
#include "api/src/interface/wire/pd.h"
#include "cli/Functions/simple/info_fetch.h"
#include "cli/Functions/simple/info_list.h"
#include "cli/Functions/simple/ns_controllers.h"
#include "cli/Functions/simple/ns_table.h"
#include "cli/Functions/simple/simple_info.h"
#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/controller.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/identify.h"
#include "cli/Public/frame/number.h"
#include "cli/Public/frame/report.h"

namespace qrx::ns {
namespace {

constexpr QRX_U8 kSubInit = 2;
constexpr QRX_U8 kSubShare = 3;
constexpr QRX_U8 kSubCreate = 4;
constexpr char kInvalidEui64[] = "invalid EUI64 id: %s\n";

// Whether this function may change the layout; tells when not.
bool isPhysical(const char* action)
{
    return gHostID < UCD_HIU_VF0 || complain("%s action is not allowed in VF mode\n", action);
}

// Whether one of -i and -e was given; tells when not.
bool namesNamespace(PCommand_Info row, const OptionScan& scan)
{
    return scan.has('i') || scan.has('e') || complain("%s: option -%c or -%c is required\n", row->cmd, 'i', 'e');
}

// Puts the id of the namespace that -e names in the place of that of -i; false after a complaint.
bool resolve(const OptionScan& scan, Wish& wish)
{
    if (!scan.has('e')) {
        return true;
    }
    wish.id = getNSIDfromEUI64(wish.eui64);
    return wish.id != -1 || complain(kInvalidEui64, wish.eui64);
}

// The id as a command has room for it; nothing after a complaint.
std::optional<QRX_U16> unitOf(const OptionScan& scan, const Wish& wish)
{
    const auto unit = narrowId(wish.id);
    if (!unit) {
        scan.has('e') ? print(kInvalidEui64, wish.eui64) : print(kInvalidId, wish.idWord);
    }
    return unit;
}

int init(PCommand_Info row, const OptionScan& scan, const Wish& wish)
{
    if (const auto result = requireOptions(scan, row, "in")) {
        return *result;
    }
    if (!isPhysical("Init")) {
        return 0;
    }
    const auto pd = unitOf(scan, wish);
    if (!pd) {
        return 0;
    }
    return carryOut(vendorCommand(kGroupNs, kSubInit, *pd).word(14, wish.count), "\nUnable to initial NS\n",
                    "\nInitial NS successfully\n");
}

int share(PCommand_Info row, const OptionScan& scan, Wish& wish)
{
    if (!namesNamespace(row, scan) || !resolve(scan, wish)) {
        return 0;
    }
    if (!scan.has('s')) {
        return optionRequired(row, 's');
    }
    if (!isPhysical("Share")) {
        return 0;
    }
    const auto nsid = unitOf(scan, wish);
    if (!nsid) {
        return 0;
    }
    // As _NMIC_Data: the mode, and the controller that owns a private namespace.
    const QRX_U32 nmic = wish.shared != 0 ? 1 : QRX_U32{wish.cid} << 8U;
    return carryOut(vendorCommand(kGroupNs, kSubShare, *nsid).word(14, nmic), "\nUnable to set sharing NS\n",
                    "\nSet sharing NS successfully\n");
}

int create(PCommand_Info row, const OptionScan& scan, const Wish& wish)
{
    if (const auto result = requireOptions(scan, row, "icl")) {
        return *result;
    }
    if (!isPhysical("Create")) {
        return 0;
    }
    // The command names the disk by its id plus 1, in 8 bits.
    const auto pd = narrowId<QRX_U8>(wish.id);
    const auto pdvdid = static_cast<QRX_U8>(pd.value_or(0) + 1);
    QRX_U32 sectorSize = 0;
    if (!pd || pdvdid == 0 || GetSectorSizeFromPD(*pd, &sectorSize) != 0 || sectorSize == 0) {
        return refuse(0, "\nInvalid PD ID: %d\n", wish.id);
    }
    const QRX_U64 nsSize = QRX_U64{wish.gigabytes} << 30;
    const QRX_U64 sectors = nsSize / sectorSize;
    return carryOut(vendorCommand(kGroupNs, kSubCreate, static_cast<QRX_U16>(pdvdid | wish.cid << 8))
                        .word(13, static_cast<QRX_U32>(sectors))
                        .word(14, static_cast<QRX_U32>(sectors >> 32))
                        .word(15, 0),
                    "\nUnable to create NS\n", "\nCreate NS successfully\n");
}

// No test for a virtual function here: it may try, and the firmware decides.
int attachOrDetach(PCommand_Info row, const OptionScan& scan, Wish& wish)
{
    if (!hasAttachment() || !namesNamespace(row, scan)) {
        return 0;
    }
    if (!scan.has('d')) {
        return optionRequired(row, 'd');
    }
    if (scan.has('c')) {
        return refuse(0, "%s: option -%c is not allowed\n", row->cmd, 'c');
    }
    if (!resolve(scan, wish)) {
        return 0;
    }
    const bool attaches = wish.action == kAttach;
    const int status = sendAttachment(attaches, static_cast<QRX_U32>(wish.id), wish.controllers);
    return refuse(status, "%s namespace %s\n", attachmentWord(attaches), status == 0 ? "success" : "failed");
}

}  // namespace

int act(PCommand_Info row, const OptionScan& scan, Wish& wish)
{
    switch (wish.action) {
    case kInit:
        return init(row, scan, wish);
    case kShare:
        return share(row, scan, wish);
    case kCreate:
        return create(row, scan, wish);
    default:
        return attachOrDetach(row, scan, wish);
    }
}

int showPrimary(QRX_U8 cns, std::size_t offset)
{
    std::array<QRX_U8, wire::kPageSize> page{};
    const int status = identify(0, cns, page);
    const auto cntlid = wire::read<QRX_U16>(page, offset);
    if (status != 0 || !cntlid) {
        return refuse(status, "\nFailed to get primary controller.\n");
    }
    return refuse(status, "Primary Controller Id is %d\n", *cntlid);
}

}  // namespace qrx::ns

QRX_U8 _getSupportNSStatus()
{
    return (qrx::recordOf(gCurrentAdapter).Features & kFeatureNamespace) != 0 ? 1 : 0;
}

int GetSectorSizeFromPD(QRX_U16 pd_id, QRX_U32* pSectorSize)
{
    qrx::Response response;
    (void)qrx::info::fetch(qrx::vendorCommand(kGroupPd, 0).word(14, pd_id), {0, 12, 14}, response,
                           qrx::info::Status::Spoken);
    const auto pd = response.record<NVME_PD_Info>();
    if (!response.isSigned() || !pd) {
        return 1;
    }
    if (response.status() == 0) {
        *pSectorSize = pd->SectorSize;
    }
    return response.status();
}

void showNSInfo()
{
    if (qrx::recordOf(gCurrentAdapter).MaxNS == 0) {
        qrx::print("Get MaxNS from adapter info fail.\n");
        return;
    }
    qrx::Response response;
    if (!qrx::readNsList(response)) {
        qrx::print("\nUnable to get info of NS\n");
        return;
    }
    qrx::info::printNamespaces(qrx::info::namespacesIn(response), kAllInstances, qrx::info::kAnyStatus);
}
