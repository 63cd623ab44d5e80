// `delete`.
#include "cli/Functions/storage/delete.h"

#include "api/src/interface/bga.h"
#include "api/src/interface/globals.h"
#include "api/src/interface/vd.h"
#include "cli/Public/frame/controller.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/number.h"
#include "cli/Public/frame/question.h"
#include "cli/Public/frame/raid_only.h"
#include "cli/Public/frame/read_one.h"

const char delete_help[] =
    "\n"
    "delete -i <vd id> [-o <vd>] [--waiveconfirmation] [-h]\n"
    "\n"
    "Options:\n"
    "    -o, --object <vd>\n"
    "        (DEFAULT:vd) delete a virtual disk.\n"
    "    -i, --id <vd id>\n"
    "        VD id.\n"
    "    --waiveconfirmation\n"
    "        Do not ask whether the VD is to be deleted.\n"
    "    -h, --help\n"
    "\n"
    "Examples:\n"
    "    delete -i 0\n"
    "    Delete VD id 0.\n"
    "\n"
    "    delete -o vd -i 0 --waiveconfirmation\n"
    "    Delete VD id 0 without a question.\n"
    "\n";

namespace {

using qrx::complain;
using qrx::refuse;

constexpr char kWaive = 'y';  // long only

constexpr char kLetters[] = "o:i:\x01:h";
constexpr option kLong[] = {
    {"waiveconfirmation", no_argument, nullptr, kWaive},
    {"object", required_argument, nullptr, 'o'},
    {"id", required_argument, nullptr, 'i'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

constexpr qrx::Keyword kObjects[] = {{"vd", 0}, {"ld", 0}};
constexpr int kEveryVd = 255;

// Stores the option's argument; false after a complaint.
bool read(int letter, const char* word, int& id)
{
    switch (letter) {
    case 'o':
        return qrx::keyword(word, kObjects) || complain("-o : invalid object '%s'\n", word);
    case 'i':
        if (!qrx::take(qrx::readId(word), id)) {
            return complain("-i : invalid id '%s'\n", word);
        }
        return id < kEveryVd || complain("-i : invalid id %d\n", id + qrx::idBase());
    default:
        return true;
    }
}

// Asks; nothing when the virtual disk is to be deleted, otherwise what the handler returns.
std::optional<int> calledOff()
{
    qrx::print("Are you sure you want to delete this virtual disk? (y or n)\n");
    const std::optional<bool> answer = qrx::readYesOrNo();
    if (!answer) {
        return refuse(1, "No answer, the virtual disk is not deleted.\n");
    }
    return *answer ? std::nullopt : std::optional(0);
}

bool runsActivity(QRX_U16 id)
{
    NVME_BGA_REQUEST activity{};
    return qrx::readOne(QRX_VD_GetBGAStatus, id, activity) == 0 &&
           activity.data.BgaStatus == QRX_NVME_BGA_STATUS_RUNNING;
}

int remove(QRX_U16 id, bool asks)
{
    const int shown = id + qrx::idBase();
    NVME_VD_Info_Request vd{};
    if (qrx::readOne(QRX_VD_GetInfo, id, vd) != 0) {
        return refuse(1, "\nUnable to get info of VD %d.\n", shown);
    }
    if (asks) {
        if (const std::optional<int> result = calledOff()) {
            return *result;
        }
    }
    if (runsActivity(id)) {
        return refuse(1, "\nUnable to delete VD %d. Because BGA is running.\n", shown);
    }
    if (QRX_VD_Has_OS(gCurrentAdapter, id, qrx::recordOf(gCurrentAdapter).MaxNS) == kVdHasOs) {
        return refuse(1, "\nUnable to delete VD %d. Because it is a OS volume.\n", shown);
    }
    const auto status = static_cast<QRX_U8>(QRX_VD_Delete(gCurrentAdapter, id));
    return refuse(status, status != 0 ? "Failed to delete VD %d.\n" : "Delete VD %d successfully.\n", shown);
}

}  // namespace

int doDelete(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    int id = 0;
    if (const auto result =
            qrx::readOptions(scan, pCmdInfo, "oiy", 1, [&](int letter) { return read(letter, scan.word(), id); })) {
        return *result;
    }
    if (scan.repeated("oi")) {
        return qrx::duplicateOption();
    }
    if (!scan.has('i')) {
        return qrx::optionRequired(pCmdInfo, 'i', 1);
    }
    if (qrx::refusedInJbof()) {
        return argc;
    }
    return remove(static_cast<QRX_U16>(id), !scan.has(kWaive));
}
