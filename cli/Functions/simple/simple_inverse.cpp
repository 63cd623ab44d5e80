// `inverse`.
#include "cli/Functions/simple/simple_inverse.h"

#include <array>

#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/lines.h"

const char simple_inverse_help[] =
    "\n"
    "inverse -a <[get | noinverse | inverse]> [-h]\n"
    "\n"
    "Options:\n"
    "    -a, --action <get|set>\n"
    "        get, show current inverse status\n"
    "        noinverse, set GPIO with no inverse\n"
    "        inverse, set GPIO with inverse\n"
    "    -h, --help\n"
    "Examples:\n"
    "    inverse -a get\n"
    "    Get GPIO 8,9,10 and 11 inverse status\n"
    "\n"
    "    inverse -a noinverse \n"
    "    Set GPIO 8,9,10 and 11 with no inverse\n"
    "\n"
    "    inverse -a inverse \n"
    "    Set GPIO 8,9,10 and 11 with inverse\n"
    "\n";

namespace {

constexpr char kLetters[] = "a:\x01:h";
constexpr option kLong[] = {
    {"action", required_argument, nullptr, 'a'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

enum Action { kNoInverse, kInverse, kGet };  // the first two are the values to be set
constexpr qrx::Keyword kActions[] = {{"get", kGet}, {"noinverse", kNoInverse}, {"inverse", kInverse}};
constexpr QRX_U8 kSubSet = 0x19;
constexpr QRX_U8 kSubGet = 0x1A;

int set(QRX_U16 value)
{
    const auto command = qrx::vendorCommand(kGroupAdapter, kSubSet, value);
    command.debug();
    return qrx::reportCode(command.send(), "Set Inverse");
}

int get()
{
    std::array<QRX_U8, qrx::wire::kPageSize> page{};
    page.fill(0xFF);  // a state that the controller left unsaid must not pass for one
    const auto command = qrx::vendorCommand(kGroupAdapter, kSubGet);
    command.debug();
    const int status = command.receive(page);
    showInverseStatus(page.data());
    return qrx::reportCode(status, "Get Inverse Status");
}

}  // namespace

void showInverseStatus(const QRX_U8* data)
{
    constexpr int kWidth = 23;
    const char* const text = data[0] == kNoInverse ? "No Inverse" : data[0] == kInverse ? "Inverse" : "Unknown Status";
    qrx::Lines(kWidth).text("GPIO 8,9,10,11 Inverse Status:", text);
}

int doInverse(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    QRX_U16 action = kGet;
    if (const auto result = qrx::readOptions(scan, pCmdInfo, "a", 0, [&](int) {
            return qrx::take(qrx::keyword(scan.word(), kActions), action) ||
                   qrx::complain("-a : invalid action '%s'.\n", scan.word());
        })) {
        return *result;
    }
    if (scan.repeated("a")) {
        return qrx::duplicateOption();
    }
    if (!scan.has('a')) {
        return qrx::optionRequired(pCmdInfo, 'a');
    }
    return action == kGet ? get() : set(action);
}
