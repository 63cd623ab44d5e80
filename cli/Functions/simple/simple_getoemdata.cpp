// `getoemdata`.
#include "cli/Functions/simple/oem_record.h"
#include "cli/Functions/simple/simple_oemdata.h"
#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/number.h"

const char simple_getoemdata_help[] = R"(
getoemdata [-i <type> -n <Namespace ID>] [-h]

Options:
    -i, --type <Controller Type>
    -n, --nid <Namespace ID>
    -h,  --help
Examples:
    getoemdata -i 0
    Read PF oemdata
    getoemdata -i 1 -n 1
    Read namespace ID 1 oemdata

)";

namespace {

constexpr char kLetters[] = "i:n:\x01:h";
constexpr option kLong[] = {
    {"type", required_argument, nullptr, 'i'},
    {"nid", required_argument, nullptr, 'n'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

}  // namespace

int doSGetOEMdata(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    QRX_U8 type = 0;
    QRX_U32 nsid = 0;
    if (const auto result = qrx::readOptions(scan, pCmdInfo, "in", 0, [&](int letter) {
            const auto number = qrx::readHexOrNumber(scan.word());
            return letter == 'i'
                       ? qrx::take(number, type) || qrx::complain("-i : invalid id '%s'\n", scan.word())
                       : qrx::take(number, nsid) || qrx::complain("-n : invalid namespace id '%s'\n", scan.word());
        })) {
        return *result;
    }
    if (!scan.has('i')) {
        return qrx::optionRequired(pCmdInfo, 'i');
    }
    // Shown and not sent: a placeholder for the read that it describes.
    qrx::vendorCommand(kGroupAdapter, qrx::kSubReadOem, type).word(10, qrx::kOemWholePage).word(13, nsid).debug();
    return 0;
}
