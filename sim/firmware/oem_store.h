// The page of its flash in which a controller keeps the customer's identity: a record with a checksum, and room behind
// it that is the customer's.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "api/src/interface/wire/oem.h"
#include "sim/firmware/result.h"
#include "sim/firmware/status.h"

namespace qrx::sim {

struct OemIdentity {
    QRX_U16 subsystem_vendor_id = 0;
    QRX_U16 subsystem_device_id = 0;
    std::string serial;  // at most 20 letters; without the blanks that fill the field
    std::string model;   // at most 40 letters; without the blanks that fill the field
};

struct OemStore {
    static constexpr std::size_t kSize = 4096;

    std::vector<QRX_U8> bytes;  // the head of the page; behind it the flash is erased (0xFF)

    friend bool operator==(const OemStore&, const OemStore&) = default;

    // Copies as much of the page as `data` takes.
    void read(std::span<QRX_U8> data) const;
    // Takes a whole page over. Refuses one whose record is not valid, or does not cover all fields.
    Verdict write(std::span<const QRX_U8> page);
    // Makes the page hold a record that tells this, and nothing else.
    void make(const OemIdentity& identity);
    // What the record tells; nothing when the page holds no valid one.
    [[nodiscard]] std::optional<OemIdentity> identity() const;
    // Spoils the page: "erased", "bad-signature", "bad-checksum" or "bad-length". Refuses any other word, and all but
    // the first for a page without a valid record.
    std::optional<Failure> spoil(std::string_view how);

private:
    [[nodiscard]] std::vector<QRX_U8> whole() const;
    void keep(std::vector<QRX_U8> page);
};

}  // namespace qrx::sim
