// The host's side of the pair command road.
#pragma once

#include <cstring>
#include <initializer_list>
#include <span>
#include <vector>

#include "api/src/interface/wire/adapter.h"
#include "tests/unit/sim/firmware/rig.h"

namespace qrx::sim {

class Pair : public testing::Test {
protected:
    static nvme_admin_cmd half(QRX_U8 opcode)
    {
        nvme_admin_cmd command{};
        command.opcode = opcode;
        command.cdw10 = 1024;
        command.cdw15 = 0x585251;
        return command;
    }
    static std::array<QRX_U8, 4096> frame(std::initializer_list<QRX_U16> words, std::span<const QRX_U8> record = {})
    {
        std::array<QRX_U8, 4096> bytes{};
        _NVMESendData head{};
        std::memcpy(head.sign, "QRX", 4);
        head.cmd_length = static_cast<QRX_U8>(words.size());
        head.data_offset = 16;
        head.data_length = static_cast<QRX_U16>(record.size());
        std::copy_n(words.begin(), std::min<std::size_t>(words.size(), 4), std::begin(head.vendor_cmd));
        std::memcpy(bytes.data(), &head, sizeof(head));
        std::copy(record.begin(), record.end(), bytes.begin() + 16);
        return bytes;
    }
    QRX_U32 send(std::array<QRX_U8, 4096> bytes) { return rig_.machine().admin({}, half(0xCB), bytes).status; }
    QRX_U32 receive() { return rig_.admin(half(0xCE)).status; }

    // A whole pair command. Returns the answer behind its envelope, which must tell `cmd_status`.
    void ask(std::initializer_list<QRX_U16> words, QRX_U8 cmd_status, std::span<const QRX_U8> record = {})
    {
        EXPECT_EQ(send(frame(words, record)), kGood);
        EXPECT_EQ(receive(), kGood);
        EXPECT_EQ(rig_.bytes(0, 8), envelope(cmd_status));
        if (cmd_status != 0) {
            EXPECT_TRUE(rig_.all_from(8, 0));
        }
    }
    static std::array<QRX_U8, 16> list(QRX_U16 start, QRX_U8 count)
    {
        RequestHeader header{};
        header.requestType = 2;
        header.start = start;
        header.numRequested = count;
        std::array<QRX_U8, 16> bytes{};
        std::memcpy(bytes.data(), &header, sizeof(header));
        return bytes;
    }
    // The head of an answered list.
    static std::string answered(QRX_U16 start, QRX_U8 requested, QRX_U8 returned, QRX_U16 next)
    {
        RequestHeader header{};
        header.requestType = 2;
        header.start = start;
        header.numRequested = requested;
        header.numReturned = returned;
        header.nextStart = next;
        return raw(header);
    }

    Rig rig_{"degraded"};
};

// The bytes of a record.
template <class Record>
[[nodiscard]] std::vector<QRX_U8> bytes_of(const Record& record)
{
    std::vector<QRX_U8> bytes(sizeof(record));
    std::memcpy(bytes.data(), &record, sizeof(record));
    return bytes;
}

}  // namespace qrx::sim
