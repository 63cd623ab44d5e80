// A machine for the commands of the NVMe Management Interface, and what their messages and pages look like.
#pragma once

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include "cli/Public/utility.h"
#include "tests/unit/cli/mi_texts.h"
#include "tests/unit/cli/storage_fixture.h"
#include "tests/unit/support/libc.h"

namespace qrx::test {

class MiTest : public StorageTest {
protected:
    // The two halves, with the words that they must have.
    static test::Command miSend(const Bytes& message, QRX_U32 cdw11)
    {
        return test::Command::admin(29, 0, {0, cdw11}).sends(message).on(1);
    }
    static test::Command miReceive()
    {
        return test::Command::admin(30, 0, {}).receives(4096).carries(Bytes(4096)).on(1);
    }
    // A VPD request, byte by byte; `length` bytes long.
    static Bytes vpdMessage(QRX_U8 opcode, QRX_U32 offset, QRX_U32 datalen, std::size_t length = 1040)
    {
        Bytes message(length);
        message[0] = 0x84;
        message[1] = 0x08;
        message[4] = opcode;
        put32(message, 8, offset);
        put32(message, 12, datalen);
        return message;
    }
    static void put32(Bytes& bytes, std::size_t at, QRX_U32 value)
    {
        for (std::size_t i = 0; i < 4; ++i) {
            bytes.at(at + i) = static_cast<QRX_U8>(value >> 8 * i);
        }
    }
    // The two lines of offset and length.
    static std::string range(const std::string& offset, const std::string& length)
    {
        return "offset mi_prp_data->Request_DW0: " + offset + "\noffset mi_prp_data->Request_DW1: " + length + "\n";
    }
    // Rows of eight, the first byte of which has the index `first`.
    static std::string rows(const Bytes& bytes, std::size_t first = 0, const char* format = "0x%02x ")
    {
        std::string text;
        char piece[8];
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            // NOLINTNEXTLINE(clang-diagnostic-format-nonliteral): one of two formats of the tests
            std::snprintf(piece, sizeof(piece), format, bytes[i]);
            text += ((first + i) % 8 == 0 ? "\n" : "") + std::string(piece);
        }
        return text + "\n";
    }
    static Bytes some(const Bytes& bytes, std::size_t first, std::size_t count)
    {
        return {bytes.begin() + static_cast<std::ptrdiff_t>(first),
                bytes.begin() + static_cast<std::ptrdiff_t>(first + count)};
    }
    static std::string textOf(const Bytes& bytes) { return {bytes.begin(), bytes.end()}; }
    static std::string contentOf(const std::string& path)
    {
        std::ostringstream text;
        text << std::ifstream(path, std::ios::binary).rdbuf();
        return text.str();
    }
    [[nodiscard]] std::string path(const std::string& name) const { return scratch.path(name); }

    Scratch scratch;
};

}  // namespace qrx::test
