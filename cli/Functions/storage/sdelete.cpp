// `sdelete`.
#include "cli/Functions/simple/vd_command.h"
#include "cli/Functions/storage/delete.h"
#include "cli/Public/frame/number.h"
#include "cli/Public/frame/one_option.h"

const char simple_delete_help[] =
    "\n"
    "sdelete -i <vd id> [-h]\n"
    "\n"
    "Options:\n"
    "    -i, --vd_id <vd id>\n"
    "        VD id.\n"
    "    -h, --help\n"
    "\n"
    "Examples:\n"
    "    sdelete -i 0\n"
    "    Delete VD id 0.\n"
    "\n";

namespace {

constexpr char kLetters[] = "i:\x01:h";
constexpr option kLong[] = {
    {"vd_id", required_argument, nullptr, 'i'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

}  // namespace

int doSDelete(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    QRX_U16 id = 0;  // as the controller counts, in one-based mode too
    const auto read = [&] {
        return qrx::take(qrx::narrowId(qrx::readNumber(scan.word())), id) ||
               qrx::complain("-i : invalid vd id '%s'.\n", scan.word());
    };
    if (const auto result = qrx::readOneOption(scan, pCmdInfo, 'i', read, 1)) {
        return *result;
    }
    return qrx::vd::carryOut(qrx::vd::deleteCommand(id));
}
