// A script of pair command requests: the frame that is sent, and the answer that is fetched.
#pragma once

#include <algorithm>
#include <cstring>
#include <vector>

#include "tests/unit/support/scripted_machine.h"

namespace qrx::test {

// Keeps what the device's send frame holds from one request to the next, for one controller.
class PairScript {
public:
    explicit PairScript(ScriptedMachine& machine, unsigned slot = 0) : machine_(machine), slot_(slot) {}

    // One request with its words and record, answered with `cmd_status` and `answer`.
    void expect(const std::vector<QRX_U16>& words, const Bytes& record, const Bytes& answer, QRX_U8 cmd_status = 0)
    {
        expectFrame(words, record, envelope(answer, cmd_status));
    }
    // The same, answered with the frame that begins with `frame`.
    void expectFrame(const std::vector<QRX_U16>& words, const Bytes& record, const Bytes& frame)
    {
        machine_.expect(send(words, record));
        machine_.expect(half(kReceive).receives(4096).data(padded(frame, 4096, 0xEE)));
    }
    // One whose first half, or whose second half, ends with `status`.
    void expectSendFailed(const std::vector<QRX_U16>& words, const Bytes& record, QRX_U32 status)
    {
        machine_.expect(send(words, record).status(status));
    }
    void expectReceiveFailed(const std::vector<QRX_U16>& words, const Bytes& record, QRX_U32 status)
    {
        machine_.expect(send(words, record));
        machine_.expect(half(kReceive).receives(4096).status(status));
    }

private:
    static constexpr QRX_U8 kSend = 251;
    static constexpr QRX_U8 kReceive = 252;

    Command send(const std::vector<QRX_U16>& words, const Bytes& record)
    {
        std::fill_n(frame_.begin(), 17, QRX_U8{0});
        NVMESendData head{};
        std::memcpy(head.sign, kFrameSign, sizeof(head.sign));
        head.cmd_length = static_cast<QRX_U8>(words.size());
        head.data_offset = 16;
        head.data_length = static_cast<QRX_U16>(record.size());
        std::copy(words.begin(), words.end(), head.vendor_cmd);
        const Bytes bytes = bytesOf(head);
        std::copy(bytes.begin(), bytes.end(), frame_.begin());
        std::copy(record.begin(), record.end(), frame_.begin() + 16);
        return half(kSend).sends(frame_);
    }
    [[nodiscard]] Command half(QRX_U8 code) const
    {
        return Command::admin(code, 0, {1024, 0, 0, 0, 0, kFrameSignWord}).on(slot_);
    }

    ScriptedMachine& machine_;
    unsigned slot_;
    Bytes frame_ = Bytes(4096);
};

}  // namespace qrx::test
