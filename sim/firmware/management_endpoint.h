// The controller's management endpoint, as a host reaches it in band: it carries out the message that a Send brings,
// and keeps the answer for the Receive that asks for it.
#pragma once

#include <span>
#include <vector>

#include "api/src/interface/wire/mi.h"
#include "api/src/interface/wire/types.h"

namespace qrx::sim {

// Statuses of an answer, of the NVMe-MI standard.
inline constexpr QRX_U8 kMiSuccess = 0x00;
inline constexpr QRX_U8 kMiInvalidOpcode = 0x03;
inline constexpr QRX_U8 kMiInvalidParameter = 0x04;
inline constexpr QRX_U8 kMiInvalidInputSize = 0x06;

// A Management Interface command, in whichever form it came, and what comes of it.
struct ManagementRequest {
    nvmemi_message_header header{};
    QRX_U8 opcode = 0;
    QRX_U32 dw0 = 0;
    QRX_U32 dw1 = 0;
    std::span<const QRX_U8> data;  // that came with it
};

struct ManagementAnswer {
    QRX_U8 status = kMiSuccess;
    std::vector<QRX_U8> data;
};

struct ManagementEndpoint {
    // Most bytes of an answer: one to an admin command.
    static constexpr std::size_t kAnswerMax = sizeof(nvmemi_admin_command_response_message);

    std::vector<QRX_U8> answer;  // that waits for its Receive; empty: none

    // Makes the answer to a Management Interface command that waits from now on.
    void keep(const nvmemi_message_header& request, const ManagementAnswer& made);

    friend bool operator==(const ManagementEndpoint&, const ManagementEndpoint&) = default;
};

}  // namespace qrx::sim
