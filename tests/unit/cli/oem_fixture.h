// The OEM record as the tests reckon it, and the commands around it.
#pragma once

#include <cstring>
#include <string>

#include "tests/unit/cli/storage_fixture.h"

namespace qrx::test {

inline void put16(Bytes& bytes, std::size_t at, QRX_U32 value)
{
    bytes[at] = static_cast<QRX_U8>(value);
    bytes[at + 1] = static_cast<QRX_U8>(value >> 8);
}

inline void put32(Bytes& bytes, std::size_t at, QRX_U32 value)
{
    put16(bytes, at, value);
    put16(bytes, at + 2, value >> 16);
}

// Sets the checksum of a record over its first `length` bytes.
inline void sealOem(Bytes& bytes, std::size_t length = 136)
{
    put32(bytes, 8, 0);
    QRX_U32 sum = 0;
    for (std::size_t at = 0; at + 4 <= length; at += 4) {
        sum -= bytes[at] | QRX_U32{bytes[at + 1]} << 8 | QRX_U32{bytes[at + 2]} << 16 | QRX_U32{bytes[at + 3]} << 24;
    }
    put32(bytes, 8, sum);
}

inline std::string blankPadded(std::string text, std::size_t length)
{
    text.resize(length, ' ');
    return text;
}

// A valid record of 256 bytes.
inline Bytes oemRecord(QRX_U16 SVID, QRX_U16 SDID, const std::string& sn, const std::string& model)
{
    Bytes bytes(256);
    std::memcpy(bytes.data(), "QRX ", 4);
    bytes[4] = 136;
    bytes[6] = 12;
    put16(bytes, 12, SVID);
    put16(bytes, 14, SDID);
    std::fill(bytes.begin() + 76, bytes.begin() + 136, QRX_U8{' '});
    std::copy(sn.begin(), sn.end(), bytes.begin() + 76);
    std::copy(model.begin(), model.end(), bytes.begin() + 96);
    sealOem(bytes);
    return bytes;
}

// The record, and distinct bytes behind it to the end of the page.
inline Bytes oemPage(const Bytes& record)
{
    Bytes page = pattern(4096, 77);
    std::copy(record.begin(), record.end(), page.begin());
    return page;
}

class OemTest : public StorageTest {
protected:
    // The controller tells these ids.
    static Command fetchIds(QRX_U16 SVID = 0x1234, QRX_U16 SDID = 0x5678, QRX_U8 cmd_status = 0)
    {
        NVME_Adapter_Info info{};
        info.VID = 0x0F0F;
        info.DID = 0xF0F0;
        info.SVID = SVID;
        info.SDID = SDID;
        return page(0x00E0, 0x5001).data(envelope(info, cmd_status));
    }
    static Command readOem(const Bytes& data) { return page(0x04E0, 0x1401).word(10, 0x3FF).data(data); }
    static Command writeOem(const Bytes& data)
    {
        return Command::passthru(0xC7).word(10, 0x3FF).word(12, 0x13E0).flag(0x1401).sends(data).on(1);
    }
    static Command identify() { return Command::admin(6, 0, {1}).receives(4096).carries(Bytes(4096)).on(1); }
};

}  // namespace qrx::test
