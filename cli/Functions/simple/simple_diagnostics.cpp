// `err_status`, `crash`, `delay`, `offline`, `chkalive`, `sf` and `sbsms`.
#include "cli/Functions/simple/simple_diagnostics.h"

#include <algorithm>
#include <span>
#include <string_view>

#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/number.h"
#include "cli/Public/frame/one_option.h"

const char simple_err_status_help[] = R"(
err_status -a <get|clear> | [-h]

Options:
    -a,  --action <get|clear>
           get, show the error status of the controller
           clear, clear it
    -h,  --help
Examples:
    err_status -a get
    Show whether the firmware has a crash log

    err_status -a clear
    Clear the error status

)";

const char simple_crash_help[] = R"(
crash -a <enable> | [-h]

Options:
    -a,  --action <enable>
           enable, make the firmware of the controller crash
    -h,  --help
Examples:
    crash -a enable
    Make the firmware of the controller crash

)";

const char simple_delay_help[] = R"(
delay -s <seconds> [-h]

Options:
    -s,  --seconds <seconds>
         How long the controller stalls, at most 255.
         Accept value by decimal or hexadecimal.
    -h,  --help
Examples:
    delay -s 10
    Make the controller stall for 10 seconds

)";

const char simple_offline_help[] = R"(
offline [-i <PD id> | -h ]

Options:
    -i,  --id <PD id>
         Physical disk that is taken offline.
    -h,  --help
Examples:
    offline -i 0
    Take physical disk 0 offline

)";

const char simple_chkalive_help[] = R"(
chkalive [-h]

Options:
    -h,  --help
Examples:
    chkalive
    Check whether the controller answers

)";

const char simple_sf_help[] = R"(
sf <-t 0|1 > [-h]

Options:
    -t,  --target switch feature.
           0, single port
           1, dual port
    -h,  --help
Examples:
    sf -t 0
    Switch to single port

    sf -t 1
    Switch to dual port

)";

const char simple_sbsms_help[] = R"(
sbsms [-h]

Options:
    -h,  --help
Examples:
    sbsms
    Do nothing

)";

namespace {

constexpr QRX_U8 kSubCheckAlive = 0x1E;
constexpr QRX_U8 kSubSwitchFeature = 0x21;
constexpr QRX_U8 kSubGetErrorStatus = 0x26;
constexpr QRX_U8 kSubClearErrorStatus = 0x27;
constexpr QRX_U8 kSubCrash = 0x28;
constexpr QRX_U8 kSubDelay = 0xFC;
constexpr QRX_U8 kSubOffline = 0x0B;  // of the group of disks

// A word that the option of a command takes, compared exactly, and the command that it stands for.
struct Action {
    std::string_view word;
    QRX_U8 subOpcode;
    QRX_U16 unit;
    const char* failure;
    const char* success;
};
constexpr Action kErrStatusActions[] = {
    {"get", kSubGetErrorStatus, 0, "err_status command is failed.\n", "Get error status command is success.\n"},
    {"clear", kSubClearErrorStatus, 0, "Clear error status failed.\n", "Clear error status success.\n"},
};
constexpr Action kCrashActions[] = {
    {"enable", kSubCrash, 0, "crash command is failed.\n", "Crash command is success.\n"},
};
constexpr Action kPortActions[] = {
    {"0", kSubSwitchFeature, 0, "Switch feature to single port failed.\n", "Switch feature to single port success.\n"},
    {"1", kSubSwitchFeature, 1, "Switch feature to dual port failed.\n", "Switch feature to dual port success.\n"},
};

// The one option of each command: its letters and its long table, and behind them what it takes.
struct Wish {
    const char* letters;
    option rows[4];
    std::span<const Action> actions = {};

    [[nodiscard]] char letter() const { return letters[0]; }
};
constexpr Wish kErrStatus{"a:\x01:h",
                          {{"action", required_argument, nullptr, 'a'}, qrx::kOutputRow, qrx::kHelpRow, qrx::kEndRow},
                          kErrStatusActions};
constexpr Wish kCrash{"a:\x01:h",
                      {{"action", required_argument, nullptr, 'a'}, qrx::kOutputRow, qrx::kHelpRow, qrx::kEndRow},
                      kCrashActions};
constexpr Wish kPort{"t:\x01:h",
                     {{"target", required_argument, nullptr, 't'}, qrx::kOutputRow, qrx::kHelpRow, qrx::kEndRow},
                     kPortActions};
constexpr Wish kDelay{"s:\x01:h",
                      {{"seconds", required_argument, nullptr, 's'}, qrx::kOutputRow, qrx::kHelpRow, qrx::kEndRow}};
constexpr Wish kOffline{"i:\x01:h",
                        {{"id", required_argument, nullptr, 'i'}, qrx::kOutputRow, qrx::kHelpRow, qrx::kEndRow}};

// Completion Dword 0 of a command whose answer lies there.
void showErrorStatus(QRX_U32 word)
{
    constexpr QRX_U32 kCrashLog = 1;
    qrx::print("Completion Queue Entry Dword 0: 0x%x\n\nError Status:%s\n", word,
               (word & kCrashLog) != 0 ? "Firmware has crash log" : "Normal");
}

// The whole of a command whose option takes words.
int runAction(const Wish& wish, int argc, char** argv, PCommand_Info row)
{
    qrx::OptionScan scan(argc, argv, wish.letters, wish.rows);
    Action action{};
    if (const auto result = qrx::readOneOption(scan, row, wish.letter(), [&] {
            const auto found = std::find_if(wish.actions.begin(), wish.actions.end(),
                                            [&](const Action& known) { return known.word == scan.word(); });
            if (found == wish.actions.end()) {
                return qrx::complain("-%c : invalid target '%s'.\n", wish.letter(), scan.word());
            }
            action = *found;
            return true;
        })) {
        return *result;
    }
    const qrx::AdminCommand command = qrx::vendorCommand(kGroupAdapter, action.subOpcode, action.unit);
    if (action.subOpcode != kSubGetErrorStatus) {
        return qrx::carryOut(command, action.failure, action.success);
    }
    command.debug();
    QRX_U32 word = 0;
    const int status = qrx::report(command.receive({}, gCurrentAdapter, &word), action.failure, action.success);
    if (status == 0) {
        showErrorStatus(word);
    }
    return status;
}

}  // namespace

int doSErrStatus(int argc, char** argv, PCommand_Info pCmdInfo)
{
    return runAction(kErrStatus, argc, argv, pCmdInfo);
}

int doSCrash(int argc, char** argv, PCommand_Info pCmdInfo)
{
    return runAction(kCrash, argc, argv, pCmdInfo);
}

int doSSwitchFeature(int argc, char** argv, PCommand_Info pCmdInfo)
{
    return runAction(kPort, argc, argv, pCmdInfo);
}

int doSDelay(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kDelay.letters, kDelay.rows);
    int seconds = 0;
    if (const auto result = qrx::readOneOption(scan, pCmdInfo, kDelay.letter(), [&] {
            return qrx::take(qrx::readHexOrNumber(scan.word()), seconds) ||
                   qrx::complain("-s : invalid seconds '%s'.\n", scan.word());
        })) {
        return *result;
    }
    const auto command = qrx::vendorCommand(kGroupAdapter, kSubDelay, static_cast<QRX_U8>(seconds));
    command.debug();
    const int status = command.send();
    return qrx::refuse(status, "Delay seconds %d %s.\n", seconds, status == 0 ? "success" : "failed");
}

int doSoffline(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kOffline.letters, kOffline.rows);
    QRX_U16 id = 0;
    if (const auto result = qrx::readOneOption(scan, pCmdInfo, kOffline.letter(), [&] {
            if (!isNumber(scan.word())) {
                return qrx::complain("-i: id should be a number\n");
            }
            return qrx::take(qrx::narrowId(qrx::readId(scan.word())), id) ||
                   qrx::complain("invalid id '%s'\n", scan.word());
        })) {
        return *result;
    }
    const auto command = qrx::vendorCommand(kGroupPd, kSubOffline, id);
    command.debug();
    return qrx::reportCode(command.send(), "offline command");
}

int doChkAlive(int argc, char** argv, PCommand_Info pCmdInfo)
{
    constexpr option kLong[] = {qrx::kOutputRow, qrx::kHelpRow, qrx::kEndRow};
    qrx::OptionScan scan(argc, argv, "\x01:h", kLong);
    if (const auto result = qrx::passOptions(scan, pCmdInfo, "", 0, [](int) { return true; })) {
        return *result;
    }
    const auto command = qrx::vendorCommand(kGroupAdapter, kSubCheckAlive);
    command.debug();
    const int status = command.send();
    return status == 0 ? qrx::refuse(0, "Check adapter is alive.\n") : qrx::reportCode(status, "Check adapter alive");
}

int doSBSMS(int /*argc*/, char** /*argv*/, PCommand_Info /*pCmdInfo*/)
{
    return 0;
}
