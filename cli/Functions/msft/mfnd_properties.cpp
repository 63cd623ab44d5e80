// `mfnd-properties`: what the namespaces of child controllers are like.
#include <array>
#include <limits>

#include "cli/Functions/msft/mfnd.h"
#include "cli/Functions/msft/mfnd_number.h"
#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/lines.h"

const char mfnd_properties_sh[] = ":For getting and setting MFND properties.";

const char mfnd_properties_help[] = R"(
mfnd-properties -a <get|set> [--ms=<Metadata Size>] [--lbads <LBA Data Size>] [--dps=<Data Protection>] [--nmic <NMIC>] [-h]

Options:
    -a,  --action
         get, set
    -0,  --ms
         Metadata size
    -1,  --lbads
         LBA data size, a power of two. Required by set.
    -2,  --dps
         Data protection type settings
    -3,  --nmic
         Namespace sharing capabilities. Required by set.
    -h,  --help
Examples:
    mfnd-properties -a get
    Get child controller properties

    mfnd-properties -a set --lbads 12 --nmic 1
    Set LBA data size 4096 bytes and shared namespaces

)";

namespace {

using Page = std::array<QRX_U8, qrx::wire::kPageSize>;

constexpr char kLetters[] = "a:0:1:2:3:\x01:h";
constexpr option kLong[] = {
    {"action", required_argument, nullptr, 'a'},
    {"ms", optional_argument, nullptr, '0'},
    {"lbads", required_argument, nullptr, '1'},
    {"dps", optional_argument, nullptr, '2'},
    {"nmic", required_argument, nullptr, '3'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

struct Wish {
    bool set = false;
    _MSFT_CHILD_CTRL_PROPERTIES properties{};
};

// Stores a number that fits the field; false after a complaint.
template <class Field>
bool readField(const char* word, const char* name, const char* subject, Field& field)
{
    QRX_U32 value = 0;
    const qrx::MfndFault fault = qrx::judgeMfndNumber(word, std::int64_t{std::numeric_limits<Field>::max()} + 1, value);
    field = static_cast<Field>(value);
    return fault == qrx::MfndFault::kNone ||
           qrx::complain("--%s: %s should be a decimal or hexadecimal%s\n", name, subject,
                         fault == qrx::MfndFault::kOutOfRange ? ", out of range" : "");
}

// Stores the option's argument; false after a complaint. A long option without its argument has none, not 0.
bool read(int letter, const char* word, Wish& wish)
{
    switch (letter) {
    case 'a':
        return qrx::readMfndAction(word, wish.set);
    case '0':
        return readField(optarg, "ms", "Metadata size", wish.properties.ms);
    case '1':
        return readField(optarg, "lbads", "LBA data size", wish.properties.lbads);
    case '2':
        return readField(optarg, "dps", "Data protection type settings", wish.properties.dps);
    default:
        return readField(optarg, "nmic", "Namesapce sharing capabilities", wish.properties.nmic);
    }
}

int set(const _MSFT_CHILD_CTRL_PROPERTIES& properties)
{
    Page page{};
    (void)qrx::wire::write(page, 0, properties);
    qrx::AdminCommand command(qrx::kMfndSetFeatures);
    command.word(10, qrx::kMfndPropertiesFeature).word(11, 1).debug();
    if (const int status = command.transmit(page)) {
        return qrx::refuse(1, "\nUnable to set child controller properties (Error Code: 0x%x)\n",
                           static_cast<unsigned>(status));
    }
    return 0;
}

int get()
{
    Page page{};
    qrx::AdminCommand command(qrx::kMfndGetFeatures);
    command.word(10, qrx::kMfndPropertiesFeature).debug();
    if (const int status = command.receive(page)) {
        return qrx::refuse(1, "\nUnable to get child controller properties (Error Code: 0x%x)\n",
                           static_cast<unsigned>(status));
    }
    const auto properties = *qrx::wire::read<_MSFT_CHILD_CTRL_PROPERTIES>(page);
    const qrx::Lines lines(20);
    qrx::print("Namespace properties:\n");
    lines.number("Metadata Size:", properties.ms);
    lines.number("LBA Data Size:", properties.lbads);
    lines.number("Metadata Size:", properties.dps);  // these two bear the first one's label
    lines.number("Metadata Size:", properties.nmic);
    return 0;
}

}  // namespace

int doMFND_properties(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    Wish wish;
    if (const auto result = qrx::readOptions(scan, pCmdInfo, "a0123", {0, 1},
                                             [&](int letter) { return read(letter, scan.word(), wish); })) {
        return *result;
    }
    if (scan.repeated("a0123")) {
        return qrx::duplicateOption();
    }
    if (const auto result = qrx::requireOptions(scan, pCmdInfo, wish.set ? "a13" : "a", 1)) {
        return *result;
    }
    return wish.set ? set(wish.properties) : get();
}
