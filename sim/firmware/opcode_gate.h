// The vendor opcodes that hosts may not use: closed for physical functions, for virtual ones, or both.
#pragma once

#include <algorithm>
#include <functional>
#include <vector>

#include "api/src/interface/wire/types.h"

namespace qrx::sim {

struct OpcodeGate {
    std::vector<QRX_U8> physical;  // closed ones, in order and each once
    std::vector<QRX_U8> virtuals;

    friend bool operator==(const OpcodeGate&, const OpcodeGate&) = default;

    [[nodiscard]] bool closed(bool virtual_function, QRX_U8 opcode) const
    {
        const auto& list = virtual_function ? virtuals : physical;
        return std::binary_search(list.begin(), list.end(), opcode);
    }
    void set(bool virtual_function, QRX_U8 opcode, bool open)
    {
        auto& list = virtual_function ? virtuals : physical;
        const auto place = std::lower_bound(list.begin(), list.end(), opcode);
        const bool there = place != list.end() && *place == opcode;
        if (open && there) {
            list.erase(place);
        } else if (!open && !there) {
            list.insert(place, opcode);
        }
    }
    [[nodiscard]] static bool in_order(const std::vector<QRX_U8>& list)
    {
        return std::adjacent_find(list.begin(), list.end(), std::greater_equal<>()) == list.end();
    }
};

}  // namespace qrx::sim
