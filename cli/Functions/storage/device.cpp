#include "cli/Functions/storage/device.h"

#include <string_view>

#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/number.h"

const char locate_help[] = R"(
locate -o <rc|ep> -i <id> -a <on|off|blink> [-h]

Options:
    -o, --object <rc|ep>
        rc - Root Complex
        ep - End Point
    -i, --id=<id>
        Root complex or end point id.
    -a, --action <on|off|blink>
    -h, --help

Examples:
    locate -o ep -i 0 -a on
    Turn on LED of end point 0.

)";

const char locate_sh[] = ":For locating end point or root complex.";

const char reset_help[] = R"(
reset -i <PD id> -t <power|device> [-h]

Options:
    -i, --pd_id=<PD id>
        PD id.
    -t, --type <power|device>
        power, power off and on
        device, device disable and enable
    -h, --help

Examples:
    reset -i 0 -t device
    Reset PD 0.

)";

const char reset_sh[] = ":For reset back-end device";

namespace {

using qrx::complain;
using qrx::keyword;

constexpr qrx::Keyword kObjects[] = {{"rc", 0}, {"ep", 1}};
constexpr qrx::Keyword kActions[] = {{"on", 0}, {"off", 1}};
constexpr qrx::Keyword kTypes[] = {{"power", 0}, {"device", 1}};

constexpr option kLongOfLocate[] = {
    {"object", required_argument, nullptr, 'o'},
    {"id", optional_argument, nullptr, 'i'},  // as --id=<value> alone
    {"action", required_argument, nullptr, 'a'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};
constexpr option kLongOfReset[] = {
    {"pd_id", optional_argument, nullptr, 'i'},
    {"type", required_argument, nullptr, 't'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

// Takes the argument of an option, null where it was left out; false after a complaint.
bool checkLocate(int letter, const char* word)
{
    switch (letter) {
    case 'o':
        return keyword(word, kObjects) ||
               complain("-o : invalid object '%s', should be end point or root complex\n", word);
    case 'i':
        return qrx::readNumber(word) || complain("-i : ID is not a number\n");
    default:
        return keyword(word, kActions) || complain("-a : invalid action '%s', should be on or off\n", word);
    }
}

bool checkReset(int letter, const char* word)
{
    if (letter == 'i') {
        return qrx::readNumber(word) || complain("-i : P id is not a number\n");
    }
    return keyword(word, kTypes) || complain("-t : invalid type '%s', should be power or device\n", word);
}

// `needed` are all of the options, in the order in which they are missed.
int run(qrx::OptionScan scan, PCommand_Info row, std::string_view needed, bool (*check)(int, const char*))
{
    if (const auto result = qrx::readOptions(scan, row, needed, 0, [&](int letter) { return check(letter, optarg); })) {
        return *result;
    }
    if (scan.repeated(needed)) {
        return qrx::duplicateOption();
    }
    return qrx::requireOptions(scan, row, needed).value_or(0);
}

}  // namespace

int doLocate(int argc, char** argv, PCommand_Info pCmdInfo)
{
    return run({argc, argv, "o:i:a:\x01:h", kLongOfLocate}, pCmdInfo, "oia", checkLocate);
}

int doReset(int argc, char** argv, PCommand_Info pCmdInfo)
{
    return run({argc, argv, "i:t:\x01:h", kLongOfReset}, pCmdInfo, "it", checkReset);
}
