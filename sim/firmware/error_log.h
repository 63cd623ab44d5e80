// The error log of a device: the last 64 commands that it ended with an error.
#pragma once

#include <array>
#include <span>

#include "api/src/interface/wire/nvme.h"

namespace qrx::sim {

struct ErrorEntry {
    QRX_U64 number = 0;  // 1 for the first error ever; 0 is no entry
    QRX_U16 queue = 0;   // 0 admin
    QRX_U16 command = 0;
    QRX_U32 status = 0;
    QRX_U64 lba = 0;
    QRX_U32 nsid = 0;

    friend bool operator==(const ErrorEntry&, const ErrorEntry&) = default;

    [[nodiscard]] nvme_error_log_entry record() const;
};

struct ErrorLog {
    static constexpr std::size_t kEntries = 64;

    QRX_U64 count = 0;                           // errors ever
    std::array<ErrorEntry, kEntries> entries{};  // error n stands at (n - 1) mod 64

    friend bool operator==(const ErrorLog&, const ErrorLog&) = default;

    // Numbers the entry and keeps it in place of the oldest.
    void add(ErrorEntry entry);
    // The log page, newest first: kEntries records.
    [[nodiscard]] std::array<nvme_error_log_entry, kEntries> log() const;
};

}  // namespace qrx::sim
