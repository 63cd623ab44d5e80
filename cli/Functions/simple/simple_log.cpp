// `log` and `log_vdm`: one command under two names.
#include "cli/Functions/simple/simple_log.h"

#include <span>

#include "api/src/interface/globals.h"
#include "api/src/interface/wire/spi_log.h"
#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/console_text.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/output_file.h"

const char simple_log_help[] =
    "\n"
    "log <-a show [--outputfile=log.txt] |on|off > [-h]\n"
    "\n"
    "Options:\n"
    "    -a,  --action show and set on/off.\n"
    "           show, show SPI log\n"
    "           on, enable SPI log\n"
    "           off, disable SPI log\n"
    "    --outputfile <outputfile>\n"
    "         Output data into output file.\n"
    "    -h,  --help\n"
    "Examples:\n"
    "    log -a show\n"
    "    Show SPI log\n"
    "\n"
    "    log -a show --outputfile=log.txt\n"
    "    Show SPI log into text file which named \"log.txt\"\n"
    "\n"
    "    log -a on\n"
    "    Enable SPI log\n"
    "\n"
    "    log -a off\n"
    "    Disable SPI log\n"
    "\n";

const char simple_log_vdm_help[] =
    "\n"
    "log_vdm <-a show [--outputfile=log.txt] |on|off > [-h]\n"
    "\n"
    "Options:\n"
    "    -a,  --action show and set on/off.\n"
    "           show, show VDM log\n"
    "           on, enable VDM log\n"
    "           off, disable VDM log\n"
    "    --outputfile <outputfile>\n"
    "         Output data into output file.\n"
    "    -h,  --help\n"
    "Examples:\n"
    "    log_vdm -a show\n"
    "    Show VDM log\n"
    "\n"
    "    log_vdm -a show --outputfile=log.txt\n"
    "    Show VDM log into text file which named \"log.txt\"\n"
    "\n"
    "    log_vdm -a on\n"
    "    Enable VDM log\n"
    "\n"
    "    log_vdm -a off\n"
    "    Disable VDM log\n"
    "\n";

namespace {

enum Action { kOff = 0, kOn = 1, kShow = 2 };  // the first two as the controller knows them

constexpr char kLetters[] = "a:t:\x01:h";
constexpr option kLong[] = {
    {"action", required_argument, nullptr, 'a'},
    {"type", required_argument, nullptr, 't'},
    {"outputfile", required_argument, nullptr, '1'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};
constexpr qrx::Keyword kActions[] = {{"show", kShow}, {"on", kOn}, {"off", kOff}};

// What differs between the two.
struct Log {
    const char* name;
    QRX_U8 readSub;
    QRX_U8 statusSub;
    QRX_U8 switchSub;
};
constexpr Log kSpi{.name = "SPI", .readSub = 0x00, .statusSub = 0x02, .switchSub = 0x03};
constexpr Log kVdm{.name = "VDM", .readSub = 0x06, .statusSub = 0x08, .switchSub = 0x07};

int refuseLog(int result, const Log& log)
{
    return qrx::refuse(result, "\nUnable to get %s log from NVMe Controller\n", log.name);
}

qrx::AdminCommand readCommand(QRX_U8 subOpcode)
{
    return qrx::vendorCommand(kGroupDump, subOpcode).word(10, qrx::kWholePage);
}

// Makes one blank of the zero bytes behind a line feed. Returns what is left of the text.
std::span<QRX_U8> repair(std::span<QRX_U8> text)
{
    std::size_t kept = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool first = text[i] == 0 && i != 0 && text[i - 1] == '\n';
        if (first) {
            while (i + 1 < text.size() && text[i + 1] == 0) {
                ++i;
            }
        }
        text[kept++] = first ? QRX_U8{' '} : text[i];
    }
    return text.first(kept);
}

// Reads page after page until there is nothing left: the controller advances by itself. Returns 0, or what the command
// returns after a complaint.
int showPages(const Log& log, qrx::OutputFile& output)
{
    constexpr int kPagesMax = 65536;  // 256 MiB: no controller keeps as much
    const qrx::AdminCommand command = readCommand(log.readSub);
    qrx::ConsoleText screen;
    for (int pages = 0; pages < kPagesMax; ++pages) {
        qrx::Response response;
        command.debug();
        if (const int status = command.receive(response.bytes())) {
            return refuseLog(status, log);
        }
        const auto length = static_cast<QRX_U16>(response.record<NVME_AP_Debug_Dump_Request>()->length);
        if (length > kLogTextMax) {
            return qrx::refuse(1, "Error %s data length: %d\n", log.name, length);
        }
        if (length == 0) {
            if (pages == 0) {
                qrx::print("No %s log\n", log.name);
            }
            return 0;
        }
        const std::span<QRX_U8> text = repair(response.bytes().subspan(kLogTextOffset, length));
        screen.show(text);
        output.write(text);  // a disk that is full is told at the end: the screen gets the rest all the same
    }
    return qrx::refuse(1, "The %s log has no end: only its first %d pages are shown\n", log.name, kPagesMax);
}

// As getStatus.
int statusOf(const Log& log)
{
    const qrx::AdminCommand command = readCommand(log.statusSub);
    command.debug();
    qrx::Response response;
    if (const int status = command.receive(response.bytes())) {
        return refuseLog(status, log);
    }
    if (!response.checkSign()) {
        return 0;
    }
    return response.record<NVME_AP_Debug_Dump_Config>()->on;
}

int showLog(const Log& log, PCommand_Info row, qrx::OutputFile& output)
{
    if (output.hasFailed()) {
        return output.refuse(row);
    }
    if (statusOf(log) == 0) {
        return refuseLog(1, log);
    }
    if (const int result = output.finish(row, showPages(log, output))) {
        return result;
    }
    return qrx::refuse(0, "cmd success\n");
}

int run(const Log& log, int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OutputFile output;
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    int action = kOff;
    if (const auto result = qrx::readOptions(scan, pCmdInfo, "a1", 0, [&](int letter) {
            if (letter == '1') {
                (void)output.open(scan.word());  // that it failed is told when there is something to write
                return true;
            }
            return qrx::take(qrx::keyword(optarg, kActions), action) ||
                   qrx::complain("-a : invalid action '%s'.\n", scan.word());
        })) {
        return *result;
    }
    if (scan.repeated("a")) {
        return qrx::duplicateOption();
    }
    if (!scan.has('a')) {
        return qrx::refuse(1, "Error action!\n");
    }
    if (action == kShow) {
        return showLog(log, pCmdInfo, output);
    }
    return qrx::carryOut(qrx::vendorCommand(kGroupDump, log.switchSub).word(14, static_cast<QRX_U32>(action)),
                         "cmd failed.\n", "cmd success\n");
}

}  // namespace

int getStatus()
{
    return statusOf(kSpi);
}

int doSLog(int argc, char** argv, PCommand_Info pCmdInfo)
{
    return run(kSpi, argc, argv, pCmdInfo);
}

int doSLogVDM(int argc, char** argv, PCommand_Info pCmdInfo)
{
    return run(kVdm, argc, argv, pCmdInfo);
}
