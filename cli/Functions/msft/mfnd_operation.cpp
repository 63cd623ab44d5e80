// `mfnd-opertation`: who may manage child controllers, and whether there may be any.
#include <array>
#include <bit>

#include "cli/Functions/msft/mfnd.h"
#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/handler.h"

const char mfnd_operation_sh[] = ":For getting and setting MFND operation.";

const char mfnd_operation_help[] = R"(
mfnd-opertation -a <get|set> [-o <privilege|mode> -t <user|admin|single|multiple>] [-h]

Options:
    -a,  --action
         get, set
    -o,  --object
         privilege, mode. It stands before the type.
    -t,  --type
         user, admin when object is privilege
         single, multiple when object is mode
    -h,  --help
Examples:
    mfnd-opertation -a get
    Get mode and privilege

    mfnd-opertation -a set -o mode -t multiple
    Set multiple mode

)";

namespace {

using qrx::Keyword;

constexpr char kLetters[] = "o:a:t:\x01:h";
constexpr option kLong[] = {
    {"object", required_argument, nullptr, 'o'},
    {"action", required_argument, nullptr, 'a'},
    {"type", required_argument, nullptr, 't'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

enum Select { kMode = 0, kPrivilege = 1, kNone };
constexpr std::array<Keyword, 2> kObjects{{{"privilege", kPrivilege}, {"mode", kMode}}};
constexpr std::array<Keyword, 2> kPrivileges{{{"user", 0}, {"admin", 1}}};
constexpr std::array<Keyword, 2> kModes{{{"single", 0}, {"multiple", 1}}};

struct Wish {
    bool set = false;
    int select = kNone;
    int flag = 0;
};

// In the light of the object before it; in front of any object it is not looked at.
bool readType(const char* word, Wish& wish)
{
    switch (wish.select) {
    case kPrivilege:
        return qrx::take(qrx::keyword(word, kPrivileges), wish.flag) ||
               qrx::complain("-t : invalid object '%s', should be user or admin when object is privilege.\n", word);
    case kMode:
        return qrx::take(qrx::keyword(word, kModes), wish.flag) ||
               qrx::complain("-t : invalid object '%s', should be single or multiple when object is mode.\n", word);
    default:
        return true;
    }
}

// Stores the option's argument; false after a complaint.
bool read(int letter, const char* word, Wish& wish)
{
    switch (letter) {
    case 'a':
        return qrx::readMfndAction(word, wish.set);
    case 'o':
        return qrx::take(qrx::keyword(word, kObjects), wish.select) ||
               qrx::complain("-o : invalid object '%s', should be privilege or mode\n", word);
    default:
        return readType(word, wish);
    }
}

QRX_U32 featureWord(const Wish& wish)
{
    _MSFT_OP_FEATURE_DW11 word{};
    word.select = wish.select & 0xF;
    word.flag = wish.flag & 1;
    return std::bit_cast<QRX_U32>(word);
}

}  // namespace

int doMFND_operation(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    Wish wish;
    if (const auto result = qrx::readOptions(scan, pCmdInfo, "oat", {0, 1},
                                             [&](int letter) { return read(letter, scan.word(), wish); })) {
        return *result;
    }
    if (scan.repeated("oat")) {
        return qrx::duplicateOption();
    }
    if (const auto result = qrx::requireOptions(scan, pCmdInfo, wish.set ? "aot" : "a", 1)) {
        return *result;
    }
    qrx::AdminCommand command(wish.set ? qrx::kMfndSetFeatures : qrx::kMfndGetFeatures);
    command.word(10, qrx::kMfndOperationFeature).word(11, wish.set ? featureWord(wish) : 0).debug();
    QRX_U32 result = 0;
    const int status = command.receive({}, qrx::kMfndParent, &result);
    const auto answer = static_cast<QRX_U8>(result);
    if (status != 0 || (wish.set && answer != 0)) {
        return qrx::refuse(status, "\nUnable to get configuration of NVMe Controller %d\n", qrx::kMfndParent);
    }
    if (answer != 0) {
        qrx::print("\nMode: %s, Privilege: %s\n", (answer & qrx::kMfndSingleMode) != 0 ? "Single" : "Multiple",
                   (answer & qrx::kMfndUserPrivilege) != 0 ? "User" : "Admin");
    }
    return 0;
}
