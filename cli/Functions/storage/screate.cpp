// `screate`.
#include <cassert>

#include "cli/Functions/simple/simple_hotkey.h"
#include "cli/Functions/simple/vd_command.h"
#include "cli/Functions/storage/create.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/number.h"

const char simple_create_help[] =
    "\n"
    "screate -r <0|1|10|JBOD> -d <number of physical disks> [-b <128|256|512>] [-n <number of namespaces>] [-h]\n"
    "\n"
    "Options:\n"
    "    -r, --raidmode <0|1|10|JBOD>\n"
    "        RAID level.\n"
    "    -d, --disk <number of physical disks>\n"
    "        The VD is created with all physical disks that are free.\n"
    "    -b, --sbs <128|256|512>\n"
    "        (DEFAULT:128) stripe block size in KB unit.\n"
    "    -n, --namespace <number of namespaces>\n"
    "        (DEFAULT:0) number of namespaces.\n"
    "    -h, --help\n"
    "\n"
    "Examples:\n"
    "    screate -r 0 -d 2\n"
    "    Create a RAID 0 VD\n"
    "\n"
    "    screate -r 1 -d 2 -b 512 -n 1\n"
    "    Create a RAID 1 VD with 1 namespace and stripe block size is 512 KB\n"
    "\n";

namespace {

constexpr char kLetters[] = "a:i:r:d:b:n:\x01:h";
constexpr option kLong[] = {
    {"raidmode", required_argument, nullptr, 'r'},
    {"disk", required_argument, nullptr, 'd'},
    {"sbs", optional_argument, nullptr, 'b'},
    {"namespace", optional_argument, nullptr, 'n'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

struct Wish {
    QRX_U8 mode = 0;
    QRX_U8 stripe = 1;
    QRX_U32 namespaces = 0;
};

// Stores the option's argument; false after a complaint. `value` is null where it was left out, `word` never.
bool read(int letter, const char* value, const char* word, Wish& wish)
{
    switch (letter) {
    case 'r':
        return qrx::vd::readMode(word, wish.mode);
    case 'd':  // how many there are to be; all are taken that are free
        return qrx::readNumber(value) || qrx::complain("-d : invalid vd members '%s'.\n", word);
    case 'b':
        return qrx::vd::readStripe(word, wish.stripe);
    default:
        return qrx::take(qrx::readNumber(value), wish.namespaces) ||
               qrx::complain("-n : invalid namespaces '%s'.\n", word);
    }
}

// As many entries as there are free disks, from the first on. An empty one among them counts as PD 0.
QRX_U32 memberBitmap()
{
    FreePDs PDIDs{};
    const QRX_U8 free = getFreePDs(PDIDs);
    assert(free <= PDIDs.size());
    QRX_U32 bitmap = 0;
    for (QRX_U8 i = 0; i < free; ++i) {
        bitmap = qrx::withMember(bitmap, PDIDs.at(i));
    }
    return bitmap;
}

}  // namespace

int doSCreate(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    Wish wish;
    if (const auto result = qrx::readOptions(scan, pCmdInfo, "rdbn", 1,
                                             [&](int letter) { return read(letter, optarg, scan.word(), wish); })) {
        return *result;
    }
    if (scan.repeated("ndb")) {
        return qrx::duplicateOption();
    }
    if (const auto result = qrx::requireOptions(scan, pCmdInfo, "rd")) {
        return *result;
    }
    return qrx::vd::carryOut(
        qrx::vd::createCommand(wish.mode, wish.stripe).word(13, memberBitmap()).word(14, wish.namespaces));
}
