// The PCI configuration space of a drive, as the controller's root complex reads it.
//
// Behind the header: Power Management at 0x40, MSI at 0x50, PCI Express at 0x70, MSI-X at 0xB0; Device Serial Number at
// 0x100, Advanced Error Reporting at 0x148, Secondary PCI Express at 0x190.
#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "api/src/interface/wire/types.h"

namespace qrx::sim {

struct JsonWord;

struct ConfigSpace {
    // How a read ends.
    enum Answer : QRX_U8 {
        kData = 0,
        kUnsupported = 1,
        kRetry = 2,
        kTimeout = 3,
        kAbort = 4,
        kNone = 5,  // the engine never tells that it is done
    };

    static constexpr QRX_U32 kAerAt = 0x148;  // where Advanced Error Reporting lies

    QRX_U8 answer = kData;
    QRX_U8 speed = 3;     // of the link: 1 2.5, 2 5, 3 8, 4 16 GT/s
    QRX_U8 width = 4;     // lanes
    bool express = true;  // has a PCI Express capability
    bool aer = true;      // has an Advanced Error Reporting capability
    // Registers of Advanced Error Reporting, as after power-on.
    QRX_U32 correctable = 0;
    QRX_U32 correctable_mask = 0x2000;  // advisory errors
    QRX_U32 uncorrectable = 0;
    QRX_U32 uncorrectable_mask = 0;
    QRX_U32 severity = 0x00462030;
    QRX_U32 aer_control = 0x000000A0;     // can make ECRC and check it
    std::array<QRX_U8, 16> header_log{};  // of the first error's packet, in the order of the registers' bytes
    std::array<QRX_U8, 16> prefix_log{};

    friend bool operator==(const ConfigSpace&, const ConfigSpace&) = default;

    // The dword at an offset, which is a multiple of 4 below 4096. What is not modelled reads as 0.
    [[nodiscard]] QRX_U32 dword(QRX_U32 offset) const;
};

// The words for the answers.
[[nodiscard]] std::span<const JsonWord> config_answer_words();
[[nodiscard]] std::optional<ConfigSpace::Answer> config_answer(std::string_view word);
// All words, for people.
[[nodiscard]] std::string config_answers();

}  // namespace qrx::sim
