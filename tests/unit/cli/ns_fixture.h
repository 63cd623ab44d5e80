// A machine for `ns`: a controller with three namespace slots, and what the command reads before all else.
#pragma once

#include <gtest/gtest.h>  // first: its <unistd.h> has names that ours take the place of

#include "api/src/interface/wire/ns.h"
#include "api/src/interface/wire/pd.h"
#include "cli/Functions/simple/ns_actions.h"
#include "cli/Functions/simple/ns_table.h"
#include "cli/Functions/simple/simple_ns.h"
#include "tests/unit/cli/storage_fixture.h"

namespace qrx::test {

using Eui64 = std::array<QRX_U8, 8>;
inline constexpr Eui64 kEui64{0x00, 0x50, 0x43, 0x25, 0x38, 0x5B, 0x76, 0x01};
inline constexpr char kEui64Text[] = "00504325385b7601";

class NsTest : public StorageTest {
protected:
    NsTest()
    {
        current().MaxNS = 3;
        gHostID = 0;
        gTotalNSs = 0;
    }
    ~NsTest() override { EXPECT_EQ(pGNSInfo, nullptr); }

    static test::Command list() { return page(0x00E5, 0x1001); }
    static test::Command identify(QRX_U32 nsid, QRX_U32 cns)
    {
        return test::Command::admin(6, nsid, {cns}).receives(4096).carries(Bytes(4096)).on(1);
    }
    static test::Command identifyNs(QRX_U32 nsid, const Eui64& eui64)
    {
        Bytes data(4096);
        std::copy(eui64.begin(), eui64.end(), data.begin() + 120);
        return identify(nsid, 0).data(data);
    }
    static test::Command identifyHost(QRX_U16 cntlid)
    {
        Bytes data(4096);
        data[78] = static_cast<QRX_U8>(cntlid & 0xFF);
        data[79] = static_cast<QRX_U8>(cntlid >> 8);
        return identify(0, 1).data(data);
    }
    static Bytes records(std::initializer_list<NVME_NS_Info> all)
    {
        Bytes bytes;
        for (const NVME_NS_Info& ns : all) {
            const Bytes one = bytesOf(ns);
            bytes.insert(bytes.end(), one.begin(), one.end());
        }
        return bytes;
    }
    // The start of the command where no namespace exists.
    void expectStart(QRX_U16 host = 0)
    {
        machine.expect(list().data(envelope(Bytes{})));
        machine.expect(identifyHost(host));
    }
    // The same with namespaces 5 and 9 in slots 0 and 2.
    void expectStartWithTwo(const Eui64& first, const Eui64& second)
    {
        machine.expect(list().data(envelope(records({{.NSID = 5, .Status = 1}, {}, {.NSID = 9, .Status = 4}}))));
        machine.expect(identifyNs(5, first));
        machine.expect(identifyNs(9, second));
        machine.expect(identifyHost(0));
    }
    // Runs the command behind its start.
    Outcome ns(std::initializer_list<std::string> words)
    {
        expectStart();
        return command(words);
    }
};

}  // namespace qrx::test
