// A machine for `info`: two controllers, the records read at start, and what each fetch must look like.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <string>

#include "cli/Functions/simple/simple_info.h"
#include "tests/unit/cli/run.h"

namespace qrx::test {

// Copies `text` into a field, the rest filled with `filler`.
template <std::size_t Size>
void setText(QRX_U8 (&field)[Size], const std::string& text, char filler = ' ')
{
    for (std::size_t i = 0; i < Size; ++i) {
        field[i] = static_cast<QRX_U8>(i < text.size() ? text[i] : filler);
    }
}

class InfoTest : public testing::Test {
protected:
    InfoTest()
    {
        machine.addController({.path = "/dev/nvme1", .bdf = "03:00.00", .subnqn = "nqn.one"});
        machine.addController({.path = "/dev/nvme3", .bdf = "04:00.00", .subnqn = "nqn.three"});
        records[0].PortCount = 2;
        records[0].MaxPD = 2;
        records[0].MaxVD = 9;
        records[0].MaxNS = 3;
        records[0].MaxNSPerVD = 5;
        records[0].Features = kFeatureRaid;
        records[1] = records[0];
        g_pAdInfos = records.data();
        gNumAdaptersFound = 2;
        gCurrentAdapter = 0;
        gSpecificAdapterFlag = 0;
        g_oneBaseMode = 0;
        dbg_enable = 0;
    }

    // Any fetch: a zeroed page goes along.
    static test::Command fetch(QRX_U32 cdw12, QRX_U16 flag)
    {
        return test::Command::vendor(cdw12).flag(flag).receives(4096).carries(Bytes(4096));
    }
    static test::Command adapterFetch() { return fetch(0xE0, 0x5001); }
    static test::Command settingsFetch() { return fetch(0x0FE0, 0x1401).word(10, 1023); }
    static test::Command pdFetch(QRX_U32 id) { return fetch(0xE1, 0x5001).word(14, id); }
    static test::Command vdFetch(QRX_U32 id) { return fetch(0xE2, 0x5001).word(14, id); }
    static test::Command bgaFetch(QRX_U32 id) { return fetch(0x2E3, 0x5001).word(14, id); }
    static test::Command nsFetch() { return fetch(0xE5, 0x1001); }
    static test::Command nsOfVdFetch(QRX_U32 vd) { return fetch(0x1E5 | vd << 16, 0x5001); }
    static test::Command identify() { return test::Command::admin(6, 0, {1}).receives(4096).carries(Bytes(4096)); }

    // Identify Controller data of host `id`.
    static Bytes hostId(QRX_U16 id)
    {
        Bytes data(4096);
        data[78] = static_cast<QRX_U8>(id & 0xFF);
        data[79] = static_cast<QRX_U8>(id >> 8);
        return data;
    }
    static Bytes sriov(QRX_U8 enable)
    {
        Bytes data(4096);
        data[450] = enable;
        return data;
    }

    GlobalsGuard guard;
    ScriptedMachine machine;
    std::array<NVME_Adapter_Info, 2> records{};
};

}  // namespace qrx::test
