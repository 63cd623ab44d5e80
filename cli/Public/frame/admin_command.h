// One admin command of a handler, from its words to its answer.
//
//     const AdminCommand command = vendorCommand(kGroupPd, 0).word(14, id);
//     command.debug();
//     Response response;
//     command.receive(response.bytes());
#pragma once

#include <array>
#include <initializer_list>
#include <optional>
#include <span>

#include "api/src/interface/globals.h"
#include "api/src/interface/wire/buffer.h"
#include "api/src/interface/wire/command.h"
#include "api/src/interface/wire/envelope.h"
#include "api/src/interface/wire/types.h"

namespace qrx {

inline constexpr QRX_U32 kWholePage = wire::kPageSize / 4 - 1;  // CDW10 of a page: dwords less 1

// A zeroed record that knows which of its words were filled.
class AdminCommand {
public:
    explicit AdminCommand(QRX_U32 opcode) { word(0, opcode); }

    // Fills CDW[index] and sets bit `index` of cdw_flag.
    AdminCommand& word(unsigned index, QRX_U32 value);
    // Replaces cdw_flag where a command's value is not that of its words.
    AdminCommand& flag(QRX_U16 cdw_flag);
    // Sets control_id, which stays in the host.
    AdminCommand& controlId(QRX_U16 control_id);

    [[nodiscard]] const _qrx_admin_command_format& record() const { return record_; }

    // Under dbg_enable, one line for each word: those of CDW0 and CDW10 to CDW15 that were filled, or those named.
    void debug() const;
    void debug(std::initializer_list<unsigned> words) const;

    // All return the device's status: 0, a positive NVMe status, -1 from the driver, 1 from a slot with no controller.
    // The status text is printed, except by the quiet form, which is for probes. Data is at most 4096 bytes. `result`,
    // if not null, gets Completion Dword 0.
    [[nodiscard]] int send(QRX_U8 adapter = gCurrentAdapter) const;
    [[nodiscard]] int transmit(std::span<const QRX_U8> data, QRX_U8 adapter = gCurrentAdapter,
                               QRX_U32* result = nullptr) const;
    [[nodiscard]] int receive(std::span<QRX_U8> data, QRX_U8 adapter = gCurrentAdapter,
                              QRX_U32* result = nullptr) const;
    [[nodiscard]] int receiveQuietly(std::span<QRX_U8> data, QRX_U8 adapter = gCurrentAdapter) const;

private:
    _qrx_admin_command_format record_{};
    unsigned filled_ = 0;
};

// A vendor command with its CDW0 and CDW12.
AdminCommand vendorCommand(QRX_U8 group, QRX_U8 subOpcode, QRX_U16 unit = 0, QRX_U32 opcode = kVendorRead);

// What most handlers end with: the debug lines of `command`, the command without data to the current controller, and
// the line of its outcome. Returns the device's status.
int carryOut(const AdminCommand& command, const char* failure, const char* success);

// The page that a vendor command fills, zeroed until then: an envelope, and the payload behind it.
class Response {
public:
    [[nodiscard]] std::span<QRX_U8> bytes() { return page_; }
    [[nodiscard]] std::span<const QRX_U8> bytes() const { return page_; }
    [[nodiscard]] bool isSigned() const;  // bytes 0 to 2 are "QRX"
    // The same; under dbg_enable a line tells what stands there instead.
    [[nodiscard]] bool checkSign() const;
    [[nodiscard]] bool isGood() const { return isSigned() && status() == 0; }
    [[nodiscard]] QRX_U8 status() const { return page_[offsetof(NVMEReceiveData, cmd_status)]; }

    // The record at `offset` of the payload, or nothing where the page does not hold it whole.
    template <class Record>
    [[nodiscard]] std::optional<Record> record(std::size_t offset = 0) const
    {
        return wire::read<Record>(page_, kReceiveDataOffset + offset);
    }

private:
    std::array<QRX_U8, wire::kPageSize> page_{};
};

}  // namespace qrx
