// `mfnd-child-ctrl`: erases, pauses, resumes and shuts down a child controller.
#include "cli/Functions/msft/mfnd.h"
#include "cli/Functions/msft/mfnd_number.h"
#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/handler.h"

const char mfnd_child_ctrl_sh[] = ":For MFND child controller control";

const char mfnd_child_ctrl_help[] = R"(
mfnd-child-ctrl -s <SEL> -i <CCID> [-h]

Options:
    -s,  --SEL
         0 secure erase, 1 pause, 2 resume, 3 shut down
    -i,  --CCID
         Child controller ID, 0xFFFF means all child controllers
    -h,  --help
Examples:
    mfnd-child-ctrl -s 1 -i 1
    Pause child controller 1

)";

namespace {

constexpr char kLetters[] = "s:i:\x01:h";
constexpr option kLong[] = {
    {"SEL", required_argument, nullptr, 's'},
    {"CCID", required_argument, nullptr, 'i'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

}  // namespace

int doMFND_child_ctrl(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    QRX_U32 selector = 0;
    QRX_U32 ccid = 0;
    if (const auto result = qrx::readOptions(scan, pCmdInfo, "si", 0, [&](int letter) {
            return letter == 's' ? qrx::readMfndNumber(scan.word(), qrx::kMfndSel, selector)
                                 : qrx::readMfndNumber(scan.word(), qrx::kMfndCcid, ccid);
        })) {
        return *result;
    }
    if (scan.repeated("si")) {
        return qrx::duplicateOption();
    }
    if (!scan.has('s')) {
        return qrx::optionRequired(pCmdInfo, 'O');  // not the option's letter
    }
    if (!scan.has('i')) {
        return qrx::optionRequired(pCmdInfo, 'i');
    }
    qrx::AdminCommand command(qrx::kMfndControl);
    command.word(10, qrx::mfndWord(qrx::kMfndControlChild, static_cast<QRX_U16>(ccid), static_cast<QRX_U8>(selector)));
    command.debug();
    return qrx::reportCode(command.send(), "mfnd_child_ctrl command");
}
