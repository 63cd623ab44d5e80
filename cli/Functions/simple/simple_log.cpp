// `log`.
#include "cli/Functions/simple/simple_log.h"

#include <unistd.h>

#include <cstdio>
#include <span>

#include "api/src/interface/globals.h"
#include "api/src/interface/wire/spi_log.h"
#include "cli/Public/frame/admin_command.h"
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

constexpr QRX_U8 kSubReadLog = 0;
constexpr QRX_U8 kSubReadStatus = 2;
constexpr QRX_U8 kSubSwitch = 3;
constexpr QRX_U32 kWholePage = 1023;  // CDW10: dwords less 1
constexpr char kUnable[] = "\nUnable to get SPI log from NVMe Controller\n";

qrx::AdminCommand readCommand(QRX_U8 subOpcode)
{
    return qrx::vendorCommand(kGroupDump, subOpcode).word(10, kWholePage);
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

// A terminal gets no bytes that it might obey, but for tabs and line ends.
void show(std::span<const QRX_U8> text)
{
    if (isatty(fileno(stream)) == 0) {
        (void)std::fwrite(text.data(), 1, text.size(), stream);
        return;
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        const QRX_U8 byte = text[i];
        const bool lineEnd = byte == '\n' || (byte == '\r' && i + 1 < text.size() && text[i + 1] == '\n');
        std::fputc(lineEnd || byte == '\t' || (byte >= ' ' && byte <= '~') ? byte : '?', stream);
    }
}

// Reads page after page until there is nothing left: the controller advances by itself. Returns 0, or what the command
// returns after a complaint.
int showPages(qrx::OutputFile& output)
{
    const qrx::AdminCommand command = readCommand(kSubReadLog);
    for (bool first = true;; first = false) {
        qrx::Response response;
        command.debug();
        if (const int status = command.receive(response.bytes())) {
            return qrx::refuse(status, kUnable);
        }
        const auto length = static_cast<QRX_U16>(response.record<NVME_AP_Debug_Dump_Request>()->length);
        if (length > kLogTextMax) {
            return qrx::refuse(1, "Error SPI data length: %d\n", length);
        }
        if (length == 0) {
            if (first) {
                qrx::print("No SPI log\n");
            }
            return 0;
        }
        const std::span<QRX_U8> text = repair(response.bytes().subspan(kLogTextOffset, length));
        show(text);
        output.write(text);  // a disk that is full is told at the end: the screen gets the rest all the same
    }
}

int showLog(PCommand_Info row, qrx::OutputFile& output)
{
    if (output.isNamed() && !output.isOpen()) {
        return output.refuse(row);
    }
    if (getStatus() == 0) {
        return qrx::refuse(1, kUnable);
    }
    const int result = showPages(output);
    if (!output.close()) {
        const int refused = output.refuse(row);
        return result != 0 ? result : refused;
    }
    if (result != 0) {
        output.warnOfMissingRest(row);
        return result;
    }
    return qrx::refuse(0, "cmd success\n");
}

}  // namespace

int getStatus()
{
    const qrx::AdminCommand command = readCommand(kSubReadStatus);
    command.debug();
    qrx::Response response;
    if (const int status = command.receive(response.bytes())) {
        return qrx::refuse(status, kUnable);
    }
    if (!response.checkSign()) {
        return 0;
    }
    return response.record<NVME_AP_Debug_Dump_Config>()->on;
}

int doSLog(int argc, char** argv, PCommand_Info pCmdInfo)
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
        return showLog(pCmdInfo, output);
    }
    return qrx::carryOut(qrx::vendorCommand(kGroupDump, kSubSwitch).word(14, static_cast<QRX_U32>(action)),
                         "cmd failed.\n", "cmd success\n");
}
