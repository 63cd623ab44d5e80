// `passthru`.
#include "cli/Functions/passthru/passthru.h"

#include <array>
#include <cstdint>

#include "cli/Functions/passthru/passthru_options.h"
#include "cli/Functions/smart/smart.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/tunnel.h"
#include "cli/Public/utility.h"

namespace {

using qrx::passthru::Wish;

qrx::AdminCommand commandOf(const qrx::OptionScan& scan, const Wish& wish, const qrx::passthru::Tunnel& tunnel)
{
    const QRX_U32 dword0 = wish.opcode | wish.fuse << 8U | wish.psdt << 14U;
    qrx::AdminCommand command = qrx::tunnelBy(wish.reads ? tunnel.fromDrive : tunnel.toDrive, wish.disk, dword0);
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

int receive(PCommand_Info row, Wish& wish, const qrx::AdminCommand& command, std::span<QRX_U8> data)
{
    if (wish.output.hasFailed()) {
        return wish.output.refuse(row);
    }
    QRX_U32 dword0 = 0;
    if (const int status = command.receive(data, gCurrentAdapter, &dword0)) {
        return fail(status);
    }
    int result = 0;
    if (!wish.output.isNamed()) {
        _showRAWData(data.data(), static_cast<int>(data.size()));
    } else {
        result = wish.output.save(row, data);
    }
    return finish(wish, data, dword0, result);
}

int transmit(PCommand_Info row, Wish& wish, const qrx::AdminCommand& command, std::span<QRX_U8> data)
{
    if (wish.input.isNamed()) {
        if (!wish.input.isOpen()) {
            return qrx::refuse(1, "File is not exist.\n");
        }
        // As much as both hold; the rest of the data stays zero.
        if (!wish.input.readUpTo(data)) {
            return wish.input.refuse(row);
        }
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
    return qrx::passthru::run(argc, argv, pCmdInfo, {kTunnelFromDrive, kTunnelToDrive, false});
}

int qrx::passthru::run(int argc, char** argv, PCommand_Info row, const Tunnel& tunnel)
{
    OptionScan scan(argc, argv, kLetters, kLong);
    Wish wish;
    if (const auto result =
            readOptions(scan, row, kKnown, 0, [&](int letter) { return read(letter, scan.word(), wish); })) {
        return *result;
    }
    if (scan.repeated(kOnce)) {
        return duplicateOption(0);
    }
    if (!scan.has('i')) {
        return optionRequired(row, 'i');
    }
    if (!scan.has('r') || !scan.has('o')) {
        return optionRequired(row, 'r');  // -o is asked for by the letter of -r too
    }
    std::array<QRX_U8, wire::kPageSize> page{};
    if (wish.length < 0 || wish.length > static_cast<int>(page.size())) {
        return lengthRefused(row, wish.lengthWord);
    }
    const std::span data =
        scan.has('d') ? std::span<QRX_U8>(page).first(static_cast<std::size_t>(wish.length)) : std::span<QRX_U8>();
    const AdminCommand command = commandOf(scan, wish, tunnel);
    if (tunnel.showsOpcode) {
        print("CDW[0]: 0x%x\n", command.record().CDW[0]);
    }
    if (scan.has('s')) {
        _showCommandFormat(command.record(), data);
    }
    command.debug();
    return wish.reads ? receive(row, wish, command, data) : transmit(row, wish, command, data);
}
