// The operations of `hotkey`.
#include <algorithm>
#include <cstdio>

#include "api/src/interface/api.h"
#include "api/src/interface/wire/pd.h"
#include "api/src/interface/wire/vd.h"
#include "cli/Functions/simple/info_fetch.h"
#include "cli/Functions/simple/simple_hotkey.h"
#include "cli/Functions/simple/vd_command.h"
#include "cli/Public/frame/controller.h"
#include "cli/Public/frame/question.h"
#include "cli/Public/frame/register.h"
#include "cli/Public/frame/report.h"
#include "cli/Public/frame/tunnel.h"

namespace {

using qrx::print;
using qrx::refuse;
using qrx::Response;
using qrx::vendorCommand;
using qrx::info::fetch;
using FetchStatus = qrx::info::Status;

constexpr QRX_U8 kPdZero = 255;          // how PD 0 is written where 0 marks an empty entry
constexpr QRX_U32 kEraseUserData = 512;  // CDW10 of Format NVM: Secure Erase Settings 1

// The members of the first `freeDrive` entries that are not empty.
QRX_U32 memberBitmap(const FreePDs& PDIDs, QRX_U8 freeDrive)
{
    QRX_U32 bitmap = 0;
    for (const QRX_U8 entry : PDIDs) {
        if (freeDrive == 0) {
            break;
        }
        if (entry != 0) {
            bitmap = qrx::withMember(bitmap, entry);
            --freeDrive;
        }
    }
    return bitmap;
}

bool isConfirmed()
{
    print(qrx::isJbof(qrx::recordOf(gCurrentAdapter)) ? "The data of PD will be lost.\n"
                                                      : "If PD is a member of VD, the data of VD will be lost.\n");
    print("Are you sure you want to secure erase this disk? (y or n)\n");
    const bool confirmed = qrx::readYesOrNo().value_or(false);  // at the end of input nobody is there to answer
    if (!confirmed) {
        print("Cancel secure erase command.\n");
    }
    return confirmed;
}

struct Port {
    QRX_U8 type;
    std::ptrdiff_t number;  // among those of its type
    QRX_U8 id;
    QRX_U32 address;  // of its link status
};
constexpr std::array<Port, 6> kPorts{{{kPcieEndPoint, 0, 0, 0xE3203148},
                                      {kPcieEndPoint, 1, 1, 0xE3403148},
                                      {kPcieRootComplex, 0, 2, 0xE2203148},
                                      {kPcieRootComplex, 1, 3, 0xE2403148},
                                      {kPcieRootComplex, 2, 4, 0xE2603148},
                                      {kPcieRootComplex, 3, 5, 0xE2803148}}};

bool showPorts(const NVME_Adapter_Info& record)
{
    const auto first = std::begin(record.PCIeInfo);
    const auto last = std::find_if(first, std::end(record.PCIeInfo),
                                   [](const NVME_PCIe_Info& port) { return port.Type == kPcieEndOfList; });
    bool good = true;
    for (const Port& port : kPorts) {
        const auto count =
            std::count_if(first, last, [&](const NVME_PCIe_Info& candidate) { return candidate.Type == port.type; });
        if (count > port.number) {
            good = showRCEP(port.id, port.address) == 0 && good;
        }
    }
    return good;
}

}  // namespace

int hotkey_createVD(QRX_U8 raidMode, QRX_U8 freeDrive, QRX_U8 sbs)
{
    constexpr QRX_U8 kMembersOfRaid10 = 4;
    FreePDs PDIDs{};
    if (freeDrive > getFreePDs(PDIDs)) {
        (void)std::puts("Not enough free drive(s)");
        return 1;
    }
    const QRX_U8 mode = raidMode == kRaid1 && freeDrive == kMembersOfRaid10 ? kRaid10 : raidMode;
    return qrx::vd::carryOut(qrx::vd::createCommand(mode, sbs).word(13, memberBitmap(PDIDs, freeDrive)).word(14, 1));
}

QRX_U32 qrx::withMember(QRX_U32 bitmap, QRX_U8 entry)
{
    return bitmap | (bitmap | 1) << (entry == kPdZero ? 0 : entry);
}

QRX_U8 getFreePDs(FreePDs& PDIDs)
{
    const NVME_Adapter_Info& record = qrx::recordOf(gCurrentAdapter);
    const std::size_t range = std::min<std::size_t>(PDIDs.size(), std::size_t{record.MaxPD} * record.PortCount);
    QRX_U8 found = 0;
    for (std::size_t id = 0; id < range; ++id) {
        if (_getPDInfo(static_cast<QRX_U16>(id)) != 0) {
            PDIDs.at(id) = id == 0 ? kPdZero : static_cast<QRX_U8>(id);
            ++found;
        }
    }
    return found;
}

QRX_U8 _getPDInfo(QRX_U16 HDID)
{
    Response response;
    // The answer decides, whatever the status.
    (void)fetch(vendorCommand(kGroupPd, 0).word(14, HDID), {0, 12, 14}, response, FetchStatus::Silent);
    const auto pd = response.record<NVME_PD_Info>();
    if (!response.isGood() || !pd) {
        if (dbg_enable != 0) {
            print("Get PD info from ID: %d fail\n", HDID);
        }
        return 0;
    }
    return (pd->Status & kPdAssigned) == 0 ? 1 : 0;
}

int hotkey_deleteVD()
{
    const QRX_U8 range = qrx::recordOf(gCurrentAdapter).MaxVD;
    int result = 1;
    for (QRX_U16 index = 0; index < range; ++index) {
        if (const int id = getVDID(index); id >= 0) {
            (void)do_sdeleteVDID(static_cast<QRX_U16>(id));
            result = 0;
        }
    }
    return result == 0 ? 0 : refuse(result, "No virtual disk is found.\n");
}

int getVDID(QRX_U16 index)
{
    Response response;
    (void)fetch(vendorCommand(kGroupVd, 0).word(14, index), {0, 12, 14}, response, FetchStatus::Spoken);
    const auto vd = response.record<NVME_VD_Info>();
    return response.isGood() && vd ? vd->ID : -1;
}

int do_sdeleteVDID(QRX_U16 id)
{
    const int status = qrx::vd::deleteCommand(id).send();
    return refuse(status, status != 0 ? "delete VD ID %d cmd failed.\n" : "delete VD ID %d success\n", id);
}

int hotkey_erasePD(QRX_U16 pdID, bool waiveconfirmation)
{
    if (!waiveconfirmation && !isConfirmed()) {
        return 0;
    }
    std::fprintf(stdout, "Erase PD ID: %d\n", pdID);
    const auto command = qrx::tunnelToDrive(pdID, qrx::kDriveFormat).word(10, kEraseUserData).word(15, 1);
    command.debug({0, 1, 10, 14, 15});
    return command.send();
}

int hotkey_read_RC_EP()
{
    Response response;
    const bool read = _getAdapterInfo(gCurrentAdapter, response) == 0;
    const auto record = response.record<NVME_Adapter_Info>();
    if (!read || !record || !showPorts(*record)) {
        (void)std::puts("rc or ep fail");
        return 1;
    }
    return 0;
}

int _getAdapterInfo(QRX_U8 adapter, Response& buffer)
{
    if (adapter >= QRX_Adapter_GetCount() ||
        vendorCommand(kGroupAdapter, 0).word(14, 0).receive(buffer.bytes(), adapter) != 0) {
        return refuse(1, "\nUnable to get info of Adapter\n");
    }
    if (buffer.status() != 0) {
        return refuse(1, "\nUnable to get info of Adapter, cmd_status:0x%x\n", buffer.status());
    }
    return 0;
}

int showRCEP(QRX_U8 id, QRX_U32 address)
{
    std::array<QRX_U8, 4> data{};
    const int status = qrx::registerRead(id, address).receive(data);
    if (status == 0) {
        print("%x : 0x%x\n", address, qrx::wire::read<QRX_U32>(data).value_or(0));
    }
    return status;
}
