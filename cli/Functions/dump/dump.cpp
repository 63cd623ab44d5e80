// `dump`.
#include "cli/Functions/dump/dump.h"

#include <span>

#include "api/src/interface/dump.h"
#include "api/src/interface/globals.h"
#include "cli/Public/frame/console_text.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/lines.h"
#include "cli/Public/frame/output_file.h"

const char dump_help[] =
    "\n"
    "dump -a <get|set -d <on|off> |show [--outputfile=halix_log.txt] > [-h] \n"
    R"(
Options:
    -a,  --action <get|set|show>
           get, show whether the debug console is written
           set, switch it on or off
           show, show its text
    -d,  --dump_control <on|off>
           For set only.
    --outputfile <outputfile>
         Output data into output file.
    -h,  --help
Examples:
    dump -a get
    Show whether the debug console is written

    dump -a set -d on
    Switch the debug console on

    dump -a show --outputfile=halix_log.txt
    Show the text of the debug console, and write it into file "halix_log.txt"

)";

namespace {

constexpr char kOutputFile = '1';
constexpr char kLetters[] = "a:d:\x01:h";
constexpr option kLong[] = {
    {"action", required_argument, nullptr, 'a'},
    {"dump_control", required_argument, nullptr, 'd'},
    {"outputfile", required_argument, nullptr, kOutputFile},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

enum Action { kNone, kShow, kGet, kSet };
constexpr qrx::Keyword kActions[] = {{"show", kShow}, {"get", kGet}, {"set", kSet}};
constexpr qrx::Keyword kSwitch[] = {{"on", 1}, {"off", 0}};
constexpr QRX_U8 kOn = 1;

struct Wish {
    int action = kNone;
    bool on = false;
};

int refuseConfig(QRX_U32 status)
{
    return qrx::refuse(static_cast<int>(status), "\nUnable to get dump configuration from NVMe Controller %d\n",
                       gCurrentAdapter);
}

int refuseStatus(QRX_U32 status)
{
    return qrx::refuse(static_cast<int>(status), "\nUnable to get dump status from NVMe Controller %d\n",
                       gCurrentAdapter);
}

// Reads page after page, so many at most. Each fits its own record, whatever the console's size is said to be.
int showPages(qrx::OutputFile& output)
{
    constexpr int kPagesMax = 20;
    qrx::ConsoleText screen;
    for (int i = 0; i < kPagesMax; ++i) {
        NVME_Debug_Dump_Request page{};
        if (const QRX_U32 status = QRX_Dump_Console(gCurrentAdapter, &page)) {
            return qrx::refuse(static_cast<int>(status), "\nUnable to get dump console from NVMe Controller %d\n",
                               gCurrentAdapter);
        }
        const auto length = static_cast<QRX_U16>(page.length);
        if (length > kDumpTextMax) {
            return qrx::refuse(1, "Error dump data length: %d\n", length);
        }
        if (length == 0) {
            break;
        }
        const std::span<const QRX_U8> text = std::span(page.data).first(length);
        screen.show(text);
        output.write(text);  // a disk that is full is told at the end: the screen gets the rest all the same
    }
    constexpr QRX_U8 kLineEnd[]{'\n'};
    screen.show(kLineEnd);
    return 0;
}

}  // namespace

int dumpConsole(PCommand_Info row, qrx::OutputFile& output)
{
    if (output.hasFailed()) {
        return output.refuse(row);
    }
    NVME_Debug_Dump_Config config{};
    if (const QRX_U32 status = QRX_Get_Dump_Cfg(gCurrentAdapter, &config)) {
        return refuseConfig(status);
    }
    if (config.dumpOn != kOn) {
        return refuseStatus(1);
    }
    NVME_Debug_Dump_Status size{};
    if (const QRX_U32 status = QRX_Dump_Status(gCurrentAdapter, &size)) {
        return refuseStatus(status);
    }
    const int result = showPages(output);
    return output.finish(row, result);
}

int getDumpCfg()
{
    NVME_Debug_Dump_Config config{};
    if (const QRX_U32 status = QRX_Get_Dump_Cfg(gCurrentAdapter, &config)) {
        return refuseConfig(status);
    }
    qrx::print("\n");
    qrx::Lines(24).text("Dump:", config.dumpOn == kOn ? "on" : "off");
    qrx::print("\n");
    return 0;
}

int setDumpCfg(bool on)
{
    NVME_Debug_Dump_Config config{};
    config.dumpOn = on ? kOn : QRX_U8{0};
    if (const QRX_U32 status = QRX_Set_Dump_Cfg(gCurrentAdapter, &config)) {
        return qrx::refuse(static_cast<int>(status), "\nUnable to set dump configuration from NVMe Controller %d\n",
                           gCurrentAdapter);
    }
    return qrx::refuse(0, "\nSet dump configuration successfully.\n\n");
}

int doDump(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OutputFile output;
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    Wish wish;
    const auto read = [&](int letter) {
        switch (letter) {
        case 'a':
            return qrx::take(qrx::keyword(scan.word(), kActions), wish.action) ||
                   qrx::complain("-a : invalid action '%s'\n", scan.word());
        case 'd':
            return qrx::take(qrx::keyword(scan.word(), kSwitch), wish.on) ||
                   qrx::complain("-d: invalid value for on/off\n");
        default:
            (void)output.open(scan.word());  // that it failed is told when there is something to write
            return true;
        }
    };
    if (const auto result = qrx::readOptions(scan, pCmdInfo, "ad1", {0, 1}, read)) {
        return *result;
    }
    if (scan.repeated("ad")) {
        return qrx::duplicateOption(0);
    }
    switch (wish.action) {
    case kShow:
        return dumpConsole(pCmdInfo, output);
    case kGet:
        return getDumpCfg();
    case kSet:
        return scan.has('d') ? setDumpCfg(wish.on) : qrx::optionRequired(pCmdInfo, 'd');
    default:
        return qrx::refuse(1, "Unknown error for dump\n");
    }
}
