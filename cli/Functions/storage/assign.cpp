#include "cli/Functions/storage/assign.h"

#include "cli/Public/frame/number.h"
#include "cli/Public/frame/one_option.h"

const char assign_help[] =
    "\n"
    "assign -d <physical disk id> [-h]\n"
    "\n"
    "Options:\n"
    "    -d, --pdid <physical disk id>\n"
    "        Physical disk id.\n"
    "    -h, --help\n"
    "\n"
    "Examples:\n"
    "    assign -d 0\n"
    "    Assign physical disk 0.\n"
    "\n";

namespace {

constexpr char kLetters[] = "d:\x01:h";
constexpr option kLong[] = {
    {"pdid", required_argument, nullptr, 'd'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

}  // namespace

int doAssign(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    const auto read = [&] {
        return qrx::readId(scan.word()) || qrx::complain("-d : invalid disk id '%s'\n", scan.word());
    };
    return qrx::readOneOption(scan, pCmdInfo, 'd', read, 1).value_or(0);
}
