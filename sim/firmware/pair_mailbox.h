// Where a pair command's request waits between its two halves.
#pragma once

#include <array>
#include <span>
#include <vector>

#include "api/src/interface/wire/buffer.h"
#include "api/src/interface/wire/envelope.h"
#include "sim/firmware/host.h"

namespace qrx::sim {

struct PairMailbox {
    static constexpr std::size_t kRequestMax = wire::kPageSize - kSendDataOffset;

    bool pending = false;
    std::array<QRX_U16, 4> words{};  // group opcode, sub-opcode, arguments; 0 beyond those sent
    std::vector<QRX_U8> request;     // the request record, at most kRequestMax bytes

    friend bool operator==(const PairMailbox&, const PairMailbox&) = default;

    // Whether a half's command words are those of a pair command: the dwords of a page in CDW10, the signature in
    // CDW15.
    [[nodiscard]] static bool addressed(const nvme_admin_cmd& command);

    // Keeps a send frame in place of what was there. False, and the mailbox empty, when it is no frame: shorter than
    // a page, another signature, no command word or more than 4, a data offset other than 16, or data beyond the page.
    [[nodiscard]] bool keep(std::span<const QRX_U8> frame);
    void clear();
};

}  // namespace qrx::sim
