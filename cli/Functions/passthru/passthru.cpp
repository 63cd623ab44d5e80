// `passthru`.
#include "cli/Functions/passthru/passthru.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "cli/Functions/passthru/passthru_options.h"
#include "cli/Functions/smart/smart.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/tunnel.h"
#include "cli/Public/utility.h"

namespace {

using qrx::passthru::kInput;
using qrx::passthru::kOutput;
using qrx::passthru::Wish;

// The file of this command, closed at its end.
class OpenFile {
public:
    OpenFile() = default;
    ~OpenFile() { close_file(); }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
};

qrx::AdminCommand commandOf(const qrx::OptionScan& scan, const Wish& wish)
{
    const QRX_U32 dword0 = wish.opcode | wish.fuse << 8U | wish.psdt << 14U;
    qrx::AdminCommand command =
        wish.reads ? qrx::tunnelFromDrive(wish.disk, dword0) : qrx::tunnelToDrive(wish.disk, dword0);
    for (const auto& [letter, index] : qrx::passthru::kWords) {
        if (scan.has(letter)) {
            command.word(index, wish.words[index]);
        }
    }
    if (scan.has('n')) {
        command.word(15, wish.nsid);
    }
    return command.controlId(static_cast<QRX_U16>(wish.disk));
}

// Makes the file of `letter` the open one, if it is not. An errno, or 0.
int useFile(char letter, const Wish& wish)
{
    if (wish.opened == letter) {
        return wish.openError;
    }
    // A file for the other direction was named behind it and has taken its place.
    return letter == kOutput ? qrx::passthru::open(wish.output, "wb") : qrx::passthru::open(wish.input, "r");
}

int cannot(PCommand_Info row, const char* what, const char* name, int error)
{
    return qrx::refuse(1, "%s: cannot %s '%s': %s\n", row->cmd, what, name, std::strerror(error));
}

int lengthRefused(PCommand_Info row, const char* word)
{
    return qrx::refuse(1, "%s: data length '%s' is not within 0 to %u\n", row->cmd, word,
                       static_cast<unsigned>(qrx::wire::kPageSize));
}

// What follows a command that the drive carried out.
int finish(const Wish& wish, std::span<const QRX_U8> data, QRX_U32 dword0, int result)
{
    const auto smart = qrx::wire::read<_qrx_smart_log>(data);
    if (wish.opcode == qrx::kDriveGetLogPage && wish.words[10] == kSmartLogPage && smart) {
        showLogSmartInfo(*smart, 0);
    }
    return qrx::refuse(result, "Passthrough command is success.\nCompletion Queue Entry Dword 0: 0x%x\n", dword0);
}

int fail(int status)
{
    return qrx::refuse(status, "Passthrough command is failed.\n");
}

int receive(PCommand_Info row, const qrx::OptionScan& scan, const Wish& wish, const qrx::AdminCommand& command,
            std::span<QRX_U8> data)
{
    const bool saves = scan.has(kOutput);
    if (const int error = saves ? useFile(kOutput, wish) : 0) {
        return cannot(row, "open", wish.output, error);
    }
    QRX_U32 dword0 = 0;
    if (const int status = command.receive(data, gCurrentAdapter, &dword0)) {
        return fail(status);
    }
    int result = 0;
    if (saves) {
        errno = 0;
        write_file(data.data(), static_cast<int>(data.size()));
        if (std::fflush(file) != 0 || std::ferror(file) != 0) {
            result = qrx::refuse(1, "%s: cannot write '%s': %s; the file is incomplete\n", row->cmd, wish.output,
                                 std::strerror(errno));
        }
        close_file();
    } else {
        _showRAWData(data.data(), static_cast<int>(data.size()));
    }
    return finish(wish, data, dword0, result);
}

int transmit(PCommand_Info row, const qrx::OptionScan& scan, const Wish& wish, const qrx::AdminCommand& command,
             std::span<QRX_U8> data)
{
    if (scan.has(kInput)) {
        if (useFile(kInput, wish) != 0) {
            return qrx::refuse(1, "File is not exist.\n");
        }
        // As much as both hold; the rest of the data stays zero.
        errno = 0;
        read_file(data.data(), static_cast<int>(data.size()));
        if (std::ferror(file) != 0) {
            return cannot(row, "read", wish.input, errno);
        }
        close_file();
    }
    QRX_U32 dword0 = 0;
    if (const int status = command.transmit(data, gCurrentAdapter, &dword0)) {
        return fail(status);
    }
    return finish(wish, data, dword0, 0);
}

}  // namespace

void _showCommandFormat(const _qrx_admin_command_format& pCmd, std::span<const QRX_U8> data)
{
    constexpr unsigned kAddress = 7;
    constexpr unsigned kLength = 9;
    qrx::print("[Command Format]\n");
    for (unsigned index = 0; index < 16; ++index) {
        QRX_U32 value = pCmd.CDW[index];
        if (index == kAddress) {
            value = static_cast<QRX_U32>(reinterpret_cast<std::uintptr_t>(data.data()));
        } else if (index == kLength) {
            value = static_cast<QRX_U32>(data.size());
        }
        qrx::print("CDW%02u: 0x%x\n", index, value);
    }
}

int doPassthru(int argc, char** argv, PCommand_Info pCmdInfo)
{
    const OpenFile guard;
    qrx::OptionScan scan(argc, argv, qrx::passthru::kLetters, qrx::passthru::kLong);
    Wish wish;
    if (const auto result = qrx::readOptions(scan, pCmdInfo, qrx::passthru::kKnown, 0, [&](int letter) {
            return qrx::passthru::read(letter, scan.word(), wish);
        })) {
        return *result;
    }
    if (scan.repeated(qrx::passthru::kOnce)) {
        return qrx::duplicateOption(0);
    }
    if (!scan.has('i')) {
        return qrx::optionRequired(pCmdInfo, 'i');
    }
    if (!scan.has('r') || !scan.has('o')) {
        return qrx::optionRequired(pCmdInfo, 'r');  // -o is asked for by the letter of -r too
    }
    std::array<QRX_U8, qrx::wire::kPageSize> page{};
    if (wish.length < 0 || wish.length > static_cast<int>(page.size())) {
        return lengthRefused(pCmdInfo, wish.lengthWord);
    }
    const std::span data =
        scan.has('d') ? std::span<QRX_U8>(page).first(static_cast<std::size_t>(wish.length)) : std::span<QRX_U8>();
    const qrx::AdminCommand command = commandOf(scan, wish);
    if (scan.has('s')) {
        _showCommandFormat(command.record(), data);
    }
    command.debug();
    return wish.reads ? receive(pCmdInfo, scan, wish, command, data) : transmit(pCmdInfo, scan, wish, command, data);
}
