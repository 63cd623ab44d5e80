// The controller's management endpoint, as a host reaches it in band: it carries out the message that a Send brings,
// and keeps the answer for the Receive that asks for it.
#pragma once

#include <vector>

#include "api/src/interface/wire/types.h"

namespace qrx::sim {

// Statuses of an answer, of the NVMe-MI standard.
inline constexpr QRX_U8 kMiSuccess = 0x00;
inline constexpr QRX_U8 kMiInvalidOpcode = 0x03;
inline constexpr QRX_U8 kMiInvalidParameter = 0x04;
inline constexpr QRX_U8 kMiInvalidInputSize = 0x06;

struct ManagementEndpoint {
    std::vector<QRX_U8> answer;  // at most a page; empty: none waits

    friend bool operator==(const ManagementEndpoint&, const ManagementEndpoint&) = default;
};

}  // namespace qrx::sim
