// The process (or thread) whose call is being answered, seen from outside: its memory, its places, its descriptors.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <optional>
#include <span>
#include <string>

#include "api/src/interface/wire/types.h"
#include "sim/transport/device_files.h"

namespace qrx::sim {

class Caller {
public:
    explicit Caller(pid_t pid) : pid_(pid) {}

    [[nodiscard]] pid_t pid() const { return pid_; }

    // Copies between the caller's memory and ours. False when not all of it is accessible there.
    [[nodiscard]] bool read(QRX_U64 address, std::span<QRX_U8> bytes) const;
    [[nodiscard]] bool write(QRX_U64 address, std::span<const QRX_U8> bytes) const;
    // Two pieces with one call.
    [[nodiscard]] bool write(QRX_U64 address1, std::span<const QRX_U8> bytes1, QRX_U64 address2,
                             std::span<const QRX_U8> bytes2) const;
    // Reads two pieces with one call. How many bytes of both together, in order, were accessible.
    [[nodiscard]] std::size_t read(QRX_U64 address1, std::span<QRX_U8> bytes1, QRX_U64 address2,
                                   std::span<QRX_U8> bytes2) const;
    // A zero-terminated text of less than PATH_MAX bytes.
    [[nodiscard]] std::optional<std::string> read_path(QRX_U64 address) const;

    // Directory against which a path relative to `dirfd` (or AT_FDCWD) is looked up, as /proc shows it.
    [[nodiscard]] std::optional<std::string> directory(int dirfd) const;
    [[nodiscard]] std::optional<FileIdentity> identity(int fd) const;
    // False when the caller lives under another root directory, where our paths mean nothing.
    [[nodiscard]] bool shares_our_root() const;

private:
    pid_t pid_;
};

}  // namespace qrx::sim
