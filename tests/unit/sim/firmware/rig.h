// A machine under test and the host's side of one command to it.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>
#include <string_view>

#include "api/src/interface/wire/buffer.h"
#include "api/src/interface/wire/envelope.h"
#include "sim/firmware/factory.h"

namespace qrx::sim {

// What a host's buffer holds before a command, where a test wants to see what the device did not write.
inline constexpr QRX_U8 kUntouched = 0xA5;

class Rig {
public:
    explicit Rig(std::string_view scenario) : Rig(make_scenario(scenario)) {}
    static Rig of_text(std::string_view text) { return Rig(load_machine(text, "test.json")); }

    Machine& machine() { return *machine_; }
    [[nodiscard]] const Controller& controller(std::size_t index = 0) const
    {
        return machine_->parts().controllers.at(index);
    }

    // Sends an admin command to the node, with a page for its data filled with kUntouched.
    Completion admin(const nvme_admin_cmd& command, Node node = {})
    {
        page.fill(kUntouched);
        return machine_->admin(node, command, page);
    }
    // Sends the vendor command 0xE2.
    Completion vendor(QRX_U32 cdw12, QRX_U32 cdw14 = 0, QRX_U32 cdw13 = 0, Node node = {})
    {
        nvme_admin_cmd command{};
        command.opcode = 0xE2;
        command.cdw12 = cdw12;
        command.cdw13 = cdw13;
        command.cdw14 = cdw14;
        return admin(command, node);
    }
    Completion identify(QRX_U32 cdw10, QRX_U32 nsid = 0, Node node = {})
    {
        nvme_admin_cmd command{};
        command.opcode = 0x06;
        command.nsid = nsid;
        command.cdw10 = cdw10;
        return admin(command, node);
    }
    // Asks for the first `bytes` of a log page.
    Completion log_page(QRX_U8 id, QRX_U32 bytes, QRX_U32 nsid = 0xFFFFFFFF, QRX_U32 offset = 0, Node node = {})
    {
        nvme_admin_cmd command{};
        command.opcode = 0x02;
        command.nsid = nsid;
        command.cdw10 = (bytes / 4 - 1) << 16 | id;
        command.cdw12 = offset;
        return admin(command, node);
    }

    // The record at `offset` of the page.
    template <class Record>
    [[nodiscard]] Record at(std::size_t offset) const
    {
        return wire::read<Record>(page, offset).value();
    }
    [[nodiscard]] std::string bytes(std::size_t offset, std::size_t length) const
    {
        return std::string(page.begin() + static_cast<long>(offset), page.begin() + static_cast<long>(offset + length));
    }
    // Whether every byte from `offset` on is `value`.
    [[nodiscard]] bool all_from(std::size_t offset, QRX_U8 value) const
    {
        for (std::size_t i = offset; i < page.size(); ++i) {
            if (page[i] != value) {
                return false;
            }
        }
        return true;
    }

    std::array<QRX_U8, wire::kPageSize> page{};

private:
    explicit Rig(Result<std::unique_ptr<Machine>> made)
    {
        EXPECT_TRUE(made) << made.error();
        machine_ = std::move(*made);
    }

    std::unique_ptr<Machine> machine_;
};

// Two records are equal when all their bytes are.
template <class Record>
[[nodiscard]] std::string raw(const Record& record)
{
    std::string bytes(sizeof(record), '\0');
    std::memcpy(bytes.data(), &record, sizeof(record));
    return bytes;
}

inline constexpr QRX_U32 kGood = 0;

[[nodiscard]] inline std::string envelope(QRX_U8 cmd_status)
{
    std::string bytes("QRX\0\0\0\0\0", 8);
    bytes[4] = static_cast<char>(cmd_status);
    return bytes;
}

}  // namespace qrx::sim
