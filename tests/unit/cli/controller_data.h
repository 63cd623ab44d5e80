// Identify Controller data for tests of those that show it.
#pragma once

#include <cstring>
#include <string>

#include "api/src/interface/wire/nvme.h"

namespace qrx::test {

template <std::size_t Size>
void set(QRX_U8 (&field)[Size], const std::string& text, char filler = ' ')
{
    for (std::size_t i = 0; i < Size; ++i) {
        field[i] = static_cast<QRX_U8>(i < text.size() ? text[i] : filler);
    }
}

inline void set(QRX_U8 (&capacity)[16], QRX_U64 low, QRX_U64 high)
{
    std::memcpy(capacity, &low, 8);
    std::memcpy(capacity + 8, &high, 8);
}

// Controller data with a value of its own in every field.
inline nvme_id_ctrl someController()
{
    nvme_id_ctrl id{};
    id.vid = 0x7A51;
    id.ssvid = 0x1234;
    set(id.sn, "  SN-0042 ");
    set(id.mn, "Model of 40 characters, exactly as long.");
    set(id.fr, "FW 1.2", '\0');
    id.rab = 0x11;
    id.ieee[0] = 0xA1;
    id.ieee[1] = 0xB2;
    id.ieee[2] = 0xC3;
    id.cmic = 0x12;
    id.mdts = 0x13;
    id.oacs = 0x1415;
    id.acl = 0x16;
    id.aerl = 0x17;
    id.frmw = 0x18;
    id.lpa = 0x19;
    id.elpe = 0x1A;
    id.npss = 0x1B;
    id.avscc = 0x1C;
    set(id.tnvmcap, 0x123456789ABCDEF0, 0xFEDCBA9876543210);
    set(id.unvmcap, 0x00000400C0000001, 0x21);
    id.sqes = 0x66;
    id.cqes = 0x44;
    id.nn = 0x80000055;
    id.oncs = 0x2122;
    id.fuses = 0x2324;
    id.fna = 0x25;
    id.vwc = 0x26;
    id.awun = 0x2728;
    id.awupf = 0x292A;
    id.nvscc = 0x2B;
    id.acwu = 0x2C2D;
    id.sgls = 0x2E2F3031;
    set(id.subnqn, "nqn.2014-08.org:\x1b[31m\xe9", '\0');
    id.subnqn[59] = 'Z';
    id.subnqn[60] = 200;
    id.subnqn[61] = 'X';
    return id;
}

}  // namespace qrx::test
