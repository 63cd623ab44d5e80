// `passthru_sata` and `list_pd_allocated_ns`.
#include "tests/unit/cli/file_texts.h"
#include "tests/unit/cli/run_unlisted.h"
#include "tests/unit/cli/storage_fixture.h"
#include "tests/unit/support/libc.h"

namespace {

using namespace qrx::test;

const Outcome kDuplicate{0, "Duplicated option specified.\n"};

std::string done(const std::string& dword0 = "0x0")
{
    return "Passthrough command is success.\nCompletion Queue Entry Dword 0: " + dword0 + "\n";
}

class SataPassthru : public StorageTest {
protected:
    static Command tunnel(QRX_U32 opcode, QRX_U32 disk, QRX_U32 dword0, QRX_U16 flag)
    {
        return Command::passthru(opcode).word(1, disk).word(14, dword0).flag(flag).wantsResult().on(1);
    }

    Scratch scratch;
};

TEST_F(SataPassthru, Help)
{
    const std::string text = helpOf("passthru_sata");
    EXPECT_TRUE(
        text.starts_with("Description:Passthrough ATA command to backend SATA device\n"
                         "passthru -r <read | write> -i <SSD backend RC/Slot ID>\n"
                         "         [-o <opcode>]\n"
                         "         [-n <SSD backend namespace ID>][--cdw2=<cdw2>][--cdw3=<cdw3>] \n"
                         "         [--cdw10=<cdw10>][--cdw11=<cdw11>][--cdw12=<cdw12>]\n"
                         "         [--cdw13=<cdw13>]\n"
                         "         [-d <data-len>]\n"
                         "         [--outputfile <outputfile>][--inputfile <inputfile>]\n"
                         "         [--showcmd][-h]\n"
                         "\n"
                         "Notice: CDW14 and CDW15 are used by passthru command.\n"
                         "\n"))
        << text;
    for (const std::string line :
         {"    --cdw10 <cdw10>\n         FIS DWORD 0.\n", "    --cdw11 <cdw11>\n         FIS DWORD 1.\n",
          "    --cdw12 <cdw12>\n         FIS DWORD 2.\n", "    --cdw13 <cdw13>\n         FIS DWORD 3.\n"}) {
        EXPECT_NE(text.find(line), std::string::npos) << line;
    }
    EXPECT_EQ(unlisted({"passthru_sata"}), (Outcome{1, text}));
    EXPECT_EQ(unlisted({"passthru_sata", "-h"}), (Outcome{0, text}));
    EXPECT_EQ(unlisted({"passthru_sata", "-u", "1"}), (Outcome{0, text}));
}

TEST_F(SataPassthru, ReadsThroughATunnelOfItsOwn)
{
    const Bytes data = pattern(512);
    machine.expect(tunnel(0xD2, 3, 0xEC, 0x7C03)
                       .word(10, 0xEC8027)
                       .word(11, 0x11)
                       .word(12, 0x22)
                       .word(13, 0x33)
                       .receives(512)
                       .carries(Bytes(512))
                       .data(data)
                       .result(0x50));
    EXPECT_EQ(unlisted({"passthru_sata", "-i", "3", "-o", "0xec", "--cdw10=0xec8027", "--cdw11=0x11", "--cdw12=0x22",
                        "--cdw13=0x33", "--data-len=512", "-r", "read"}),
              (Outcome{0, "CDW[0]: 0xd2\n" + rawOf(data) + done("0x50")}));
}

TEST_F(SataPassthru, WritesThroughTheOther)
{
    for (const char* request : {"write", "none", "NONE"}) {
        machine.expect(tunnel(0xD3, 0, 0xE5, 0x4003).result(0xFF));
        EXPECT_EQ(unlisted({"passthru_sata", "-i", "0", "-o", "0xe5", "-r", request}),
                  (Outcome{0, "CDW[0]: 0xd3\n" + done("0xff")}));
    }
    machine.expect(tunnel(0xD3, 0, 0xE8, 0xC00F).word(2, 9).word(15, 7).sends(padded(pattern(100), 512)));
    EXPECT_EQ(unlisted({"passthru_sata", "-i", "0", "-o", "0xe8", "-r", "write", "-d", "512", "-n", "7", "--cdw2=9",
                        "--cdw3=0", "--inputfile", scratch.file("input", textOf(pattern(100)))}),
              (Outcome{0, "CDW[0]: 0xd3\n" + done()}));
}

TEST_F(SataPassthru, FillsAFile)
{
    const std::string path = scratch.path("identity");
    machine.expect(tunnel(0xD2, 0, 0xEC, 0x4003).receives(512).data(pattern(512)));
    EXPECT_EQ(unlisted({"passthru_sata", "-i0", "-o236", "-rread", "-d512", "--outputfile=" + path}),
              (Outcome{0, "CDW[0]: 0xd2\n" + done()}));
    EXPECT_EQ(contentOf(path), textOf(pattern(512)));
}

TEST_F(SataPassthru, TheOpcodeStandsBeforeTheFrame)
{
    machine.expect(tunnel(0xD3, 1, 0xE5, 0x4003));
    const std::string text = unlisted({"passthru_sata", "-i1", "-o0xe5", "-rnone", "--showcmd"}).stream;
    EXPECT_TRUE(text.starts_with("CDW[0]: 0xd3\n[Command Format]\nCDW00: 0xd3\nCDW01: 0x1\n")) << text;
}

TEST_F(SataPassthru, ADriveMayRefuse)
{
    machine.expect(tunnel(0xD2, 0, 0xEC, 0x4003).status(1));
    EXPECT_EQ(
        unlisted({"passthru_sata", "-i0", "-o0xec", "-rread"}),
        (Outcome{1, "CDW[0]: 0xd2\nPassthrough command is failed.\n", "Invalid Command Opcode (Status Code: 0x1)\n"}));
}

TEST_F(SataPassthru, WhatIsRefusedShowsNoOpcode)
{
    EXPECT_EQ(unlisted({"passthru_sata", "-r", "get"}), (Outcome{0, "-r : invalid request 'get'\n"}));
    EXPECT_EQ(unlisted({"passthru_sata", "-i0", "-i0"}), kDuplicate);
    EXPECT_EQ(unlisted({"passthru_sata", "-r", "read"}), (Outcome{0, "passthru_sata: option -i is required\n"}));
    EXPECT_EQ(unlisted({"passthru_sata", "-i0", "-o1"}), (Outcome{0, "passthru_sata: option -r is required\n"}));
    EXPECT_EQ(unlisted({"passthru_sata", "-i0", "-rread"}), (Outcome{0, "passthru_sata: option -r is required\n"}));
    EXPECT_EQ(unlisted({"passthru_sata", "-i0", "-rread", "-o1", "-d4097"}),
              (Outcome{1, "passthru_sata: data length '4097' is not within 0 to 4096\n"}));
}

class AllocatedNamespaces : public StorageTest {
protected:
    static Command fetch(QRX_U32 disk)
    {
        return Command::passthru(0xC2)
            .word(1, disk)
            .word(10, 16)
            .word(14, 6)
            .flag(0x4403)
            .receives(4096)
            .carries(Bytes(4096))
            .on(1);
    }
    // A list with these ids at these places.
    static Bytes list(const std::vector<std::pair<std::size_t, QRX_U32>>& entries)
    {
        Bytes bytes(4096);
        for (const auto& [place, nsid] : entries) {
            for (unsigned i = 0; i < 4; ++i) {
                bytes[4 * place + i] = static_cast<QRX_U8>(nsid >> 8 * i);
            }
        }
        return bytes;
    }
    const std::string kEnd = "Passthru_ns_list command is success.\n\n";
};

TEST_F(AllocatedNamespaces, Help)
{
    const std::string text = helpOf("list_pd_allocated_ns");
    EXPECT_TRUE(
        text.starts_with("Description:Get Backend PD allocated NS ID list\nlist_pd_allocated_ns  -i <id> [-h]\n"))
        << text;
    EXPECT_EQ(unlisted({"list_pd_allocated_ns"}), (Outcome{1, text}));
    EXPECT_EQ(unlisted({"list_pd_allocated_ns", "-h"}), (Outcome{0, text}));
    EXPECT_EQ(unlisted({"list_pd_allocated_ns", "-i", "0", "--help"}), (Outcome{0, text}));
}

TEST_F(AllocatedNamespaces, EveryEntryThatIsNotZero)
{
    machine.expect(fetch(3).data(list({{0, 1}, {2, 0x12345}, {1023, 7}})));
    EXPECT_EQ(unlisted({"list_pd_allocated_ns", "-i", "3"}),
              (Outcome{0, "\nNS List:\nNS ID: 1\nNS ID: 74565\nNS ID: 7\n" + kEnd}));
}

TEST_F(AllocatedNamespaces, NoneAtAll)
{
    machine.expect(fetch(0).data(list({})));
    EXPECT_EQ(unlisted({"list_pd_allocated_ns", "-i", "0"}), (Outcome{0, "\nNS List:\nNs list is not found\n" + kEnd}));
}

TEST_F(AllocatedNamespaces, MayFail)
{
    machine.expect(fetch(9).status(0x706));
    const Outcome failed = unlisted({"list_pd_allocated_ns", "--id=9"});
    EXPECT_EQ(failed.result, 0x706);
    EXPECT_EQ(failed.stream, "Passthru_ns_list command is failed.\n");
}

TEST_F(AllocatedNamespaces, Checks)
{
    EXPECT_EQ(unlisted({"list_pd_allocated_ns", "-i", "x"}),
              (Outcome{0, "-i: SSD backend RC/Slot ID should be a number\n"}));
    EXPECT_EQ(unlisted({"list_pd_allocated_ns", "-i", "0", "-i", "1"}), kDuplicate);
    EXPECT_EQ(unlisted({"list_pd_allocated_ns", "stray"}),
              (Outcome{0, "list_pd_allocated_ns: option -i is required\n"}));
    g_oneBaseMode = 1;
    EXPECT_EQ(unlisted({"list_pd_allocated_ns", "-i", "0"}),
              (Outcome{0, "-i : invalid SSD backend RC/Slot ID '0'.\n"}));
    machine.expect(fetch(0).data(list({{0, 1}})));
    EXPECT_EQ(unlisted({"list_pd_allocated_ns", "-i", "1"}).result, 0);
}

TEST_F(AllocatedNamespaces, DebugLines)
{
    dbg_enable = 1;
    machine.expect(fetch(3).data(list({{0, 1}})));
    EXPECT_EQ(unlisted({"list_pd_allocated_ns", "-i", "3"}).stream,
              "CDW[0] : 0x000000c2\nCDW[10]: 0x00000010\nCDW[14]: 0x00000006\n\nNS List:\nNS ID: 1\n" + kEnd);
}

}  // namespace
