// `passthru`.
#include "cli/Functions/passthru/passthru.h"

#include <sys/stat.h>

#include <array>
#include <fstream>
#include <thread>

#include "api/src/interface/wire/nvme.h"
#include "cli/Functions/smart/smart.h"
#include "cli/Public/utility.h"
#include "tests/unit/cli/file_texts.h"
#include "tests/unit/cli/health_texts.h"
#include "tests/unit/cli/storage_fixture.h"
#include "tests/unit/support/libc.h"

namespace {

using namespace qrx::test;

const Outcome kDuplicate{0, "Duplicated option specified.\n"};

std::string done(const std::string& dword0 = "0x0")
{
    return "Passthrough command is success.\nCompletion Queue Entry Dword 0: " + dword0 + "\n";
}

class PassthruCommand : public StorageTest {
protected:
    static Command from(QRX_U32 disk, QRX_U32 dword0, QRX_U16 flag = 0x4003)
    {
        return Command::passthru(0xC2).word(1, disk).word(14, dword0).flag(flag).wantsResult().on(1);
    }
    static Command to(QRX_U32 disk, QRX_U32 dword0, QRX_U16 flag = 0x4003)
    {
        return Command::passthru(0xC3).word(1, disk).word(14, dword0).flag(flag).wantsResult().on(1);
    }
    [[nodiscard]] std::string path(const std::string& name) const { return scratch.path(name); }

    Scratch scratch;
};

TEST_F(PassthruCommand, Help)
{
    EXPECT_EQ(command({"passthru"}), (Outcome{1, expected::kPassthruPage}));
    for (auto words : {Line{"passthru", "-h"}, Line{"passthru", "--help"}, Line{"passthru", "-i", "0", "-h"},
                       Line{"passthru", "-u", "1"}}) {
        EXPECT_EQ(command(words), (Outcome{0, expected::kPassthruPage}));
    }
}

TEST_F(PassthruCommand, ReadsDataAndShowsIt)
{
    const Bytes data = pattern(4096);
    machine.expect(from(0, 6, 0x4403).word(10, 1).receives(4096).carries(Bytes(4096)).data(data).result(0xFEEDF00D));
    EXPECT_EQ(command({"passthru", "-i", "0", "-o", "6", "--cdw10=1", "--data-len=4096", "-r", "read"}),
              (Outcome{0, rawOf(data) + done("0xfeedf00d")}));
}

TEST_F(PassthruCommand, TheNamespaceMayTakeAllBits)
{
    machine.expect(from(0, 6, 0xC403).word(10, 1).word(15, 0xFFFFFFFF).receives(16).data(pattern(16)));
    EXPECT_EQ(command({"passthru", "-i", "0", "-o", "6", "--cdw10=1", "-d", "16", "-r", "read", "-n", "0xffffffff"}),
              (Outcome{0, rawOf(pattern(16)) + done()}));
    machine.expect(from(0, 6, 0xC003).word(15, 0x9ABCDEF0));
    EXPECT_EQ(command({"passthru", "-i0", "-o6", "-rREAD", "-n0x123456789abcdef0"}), (Outcome{0, "\n" + done()}));
    machine.expect(from(0, 6, 0xC003).word(15, 0x7FFFFFFF));
    EXPECT_EQ(command({"passthru", "-i0", "-o6", "-rread", "--nsid", "4294967295"}), (Outcome{0, "\n" + done()}));
    machine.expect(from(0, 6, 0xC003));
    EXPECT_EQ(command({"passthru", "-i0", "-o6", "-rread", "-n0"}), (Outcome{0, "\n" + done()}));
}

TEST_F(PassthruCommand, EveryWordOfTheDrivesCommand)
{
    machine.expect(from(0x1234567, 0xC000 | 0x200 | 0x7F, 0xFC0F)
                       .word(2, 0x22)
                       .word(3, 0x33)
                       .word(10, 0x7FFFFFFF)
                       .word(11, 0x11)
                       .word(12, 0x12121212)
                       .word(13, 13)
                       .word(15, 5));
    EXPECT_EQ(command({"passthru", "--id", "19088743", "--request=read", "--opcode=0x7f", "--fuse=2", "--psdt", "3",
                       "--cdw2=0x22", "--cdw3=51", "--cdw10=0xffffffff", "--cdw11=17", "--cdw12=0x12121212",
                       "--cdw13=13", "--nsid=5", "-t", "admin", "-m", "4096"}),
              (Outcome{0, "\n" + done()}));
    machine.expect(from(0, 6, 0x400F));
    EXPECT_EQ(command({"passthru", "-i0", "-rread", "-o6", "--cdw2=0", "--cdw3=0"}), (Outcome{0, "\n" + done()}));
    machine.expect(from(0, 6, 0x4007).word(2, 9));
    EXPECT_EQ(command({"passthru", "-i0", "-rread", "-o6", "--cdw2=9"}), (Outcome{0, "\n" + done()}));
    machine.expect(from(0, 0x12345, 0x6003).word(13, 9));
    EXPECT_EQ(command({"passthru", "-i0", "-rread", "-o0x12345", "--cdw13=9", "-t", "NVM"}),
              (Outcome{0, "\n" + done()}));
}

TEST_F(PassthruCommand, WithoutALengthNothingIsTransferred)
{
    machine.expect(from(2, 6));
    EXPECT_EQ(command({"passthru", "-r", "read", "-i", "2", "-o", "6"}), (Outcome{0, "\n" + done()}));
    machine.expect(from(2, 6));
    EXPECT_EQ(command({"passthru", "-r", "read", "-i", "2", "-o", "6", "-d", "0"}), (Outcome{0, "\n" + done()}));
    machine.expect(to(2, 0x80));
    EXPECT_EQ(command({"passthru", "-r", "none", "-i", "2", "-o", "0x80"}), (Outcome{0, done()}));
}

TEST_F(PassthruCommand, NoneIsAnotherWordForWrite)
{
    for (const char* request : {"none", "write", "NONE", "Write"}) {
        machine.expect(to(3, 0x0D, 0x4403).word(10, 7).sends(Bytes(64)).result(0x21));
        EXPECT_EQ(command({"passthru", "-r", request, "-i", "3", "-o", "13", "--cdw10=7", "-d", "64"}),
                  (Outcome{0, done("0x21")}));
    }
}

TEST_F(PassthruCommand, AnInputFileAsLongAsTheData)
{
    const Bytes data = pattern(4096, 5);
    machine.expect(to(0, 0x15, 0xC403).word(15, 1).sends(data));
    EXPECT_EQ(command({"passthru", "-i", "0", "-o", "0x15", "--cdw10=0", "--data-len=4096", "-n", "1", "--inputfile",
                       scratch.file("prp_data", textOf(data)), "-r", "write"}),
              (Outcome{0, done()}));
    EXPECT_EQ(file, nullptr);
}

TEST_F(PassthruCommand, OfAShortInputFileTheRestIsZero)
{
    machine.expect(to(0, 0x15).sends(padded(pattern(100), 300)));
    EXPECT_EQ(command({"passthru", "-i0", "-o0x15", "-d300", "-rwrite", "--inputfile",
                       scratch.file("short", textOf(pattern(100)))}),
              (Outcome{0, done()}));
}

TEST_F(PassthruCommand, OfALongInputFileTheBeginningIsSent)
{
    machine.expect(to(0, 0x15).sends(pattern(300)));
    EXPECT_EQ(command({"passthru", "-i0", "-o0x15", "-d300", "-rnone", "--inputfile",
                       "\"" + scratch.file("long", textOf(pattern(5000))) + "\""}),
              (Outcome{0, done()}));
    machine.expect(to(0, 0x15));
    EXPECT_EQ(command({"passthru", "-i0", "-o0x15", "-rnone", "--inputfile", path("long")}), (Outcome{0, done()}));
}

TEST_F(PassthruCommand, AnInputFileThatCannotBeReadIsNotSent)
{
    const Outcome none{1, "File is not exist.\n"};
    EXPECT_EQ(command({"passthru", "-i0", "-o0x15", "-d64", "-rwrite", "--inputfile", path("absent")}), none);
    EXPECT_EQ(command({"passthru", "-i0", "-o0x15", "-d64", "-rwrite", "--inputfile", std::string(1024, 'x')}), none);
    EXPECT_EQ(command({"passthru", "-i0", "-o0x15", "-d64", "-rwrite", "--inputfile", scratch.path("")}),
              (Outcome{1, "passthru: cannot read '" + scratch.path("") + "': Is a directory\n"}));
    EXPECT_EQ(file, nullptr);
}

TEST_F(PassthruCommand, TheOutputFileTakesTheData)
{
    const Bytes data = pattern(4096, 9);
    machine.expect(from(0, 6, 0x4403).word(10, 1).receives(4096).data(data).result(3));
    EXPECT_EQ(command({"passthru", "-i", "0", "-o", "0x6", "--cdw10=1", "--data-len=4096", "-r", "read", "--outputfile",
                       path("id_data")}),
              (Outcome{0, done("0x3")}));
    EXPECT_EQ(contentOf(path("id_data")), textOf(data));
    EXPECT_EQ(file, nullptr);
}

TEST_F(PassthruCommand, AnOutputFileIsEmptiedEvenWhereTheCommandEndsBadly)
{
    machine.expect(from(0, 6).receives(16).status(2));
    EXPECT_EQ(command({"passthru", "-i0", "-o6", "-d16", "-rread", "--outputfile", scratch.file("old", "content")}),
              (Outcome{2, "Passthrough command is failed.\n", "Invalid Field in Command (Status Code: 0x2)\n"}));
    EXPECT_EQ(contentOf(path("old")), "");
    EXPECT_EQ(command({"passthru", "--outputfile", scratch.file("old", "content"), "-i", "x"}).result, 0);
    EXPECT_EQ(contentOf(path("old")), "");
    EXPECT_EQ(file, nullptr);
}

TEST_F(PassthruCommand, AnOutputFileThatCannotBeOpenedStopsTheCommand)
{
    const std::string name = path("no/such/directory");
    EXPECT_EQ(command({"passthru", "-i0", "-o6", "-d16", "-rread", "--outputfile", name}),
              (Outcome{1, "passthru: cannot open '" + name + "': No such file or directory\n"}));
}

TEST_F(PassthruCommand, DataThatCannotBeWrittenIsNotLostInSilence)
{
    machine.expect(from(0, 6).receives(4096).data(pattern(4096)));
    EXPECT_EQ(
        command({"passthru", "-i0", "-o6", "-d4096", "-rread", "--outputfile", "/dev/full"}),
        (Outcome{1, "passthru: cannot write '/dev/full': No space left on device; the file is incomplete\n" + done()}));
}

TEST_F(PassthruCommand, AFileForTheOtherDirectionIsNotUsed)
{
    machine.expect(from(0, 6).receives(16).data(pattern(16)));
    EXPECT_EQ(command({"passthru", "-i0", "-o6", "-d16", "-rread", "--inputfile", path("absent")}),
              (Outcome{0, rawOf(pattern(16)) + done()}));
    machine.expect(to(0, 6).sends(Bytes(16)));
    EXPECT_EQ(command({"passthru", "-i0", "-o6", "-d16", "-rwrite", "--outputfile", scratch.file("out", "content")}),
              (Outcome{0, done()}));
    EXPECT_EQ(contentOf(path("out")), "");
    EXPECT_EQ(file, nullptr);
}

TEST_F(PassthruCommand, WithBothFilesEachDirectionUsesItsOwn)
{
    scratch.file("in", textOf(pattern(16, 7)));
    machine.expect(from(0, 6).receives(16).data(pattern(16)));
    EXPECT_EQ(
        command({"passthru", "-i0", "-o6", "-d16", "-rread", "--outputfile", path("out"), "--inputfile", path("in")}),
        (Outcome{0, done()}));
    EXPECT_EQ(contentOf(path("out")), textOf(pattern(16)));
    EXPECT_EQ(contentOf(path("in")), textOf(pattern(16, 7)));
    machine.expect(to(0, 6).sends(pattern(16, 7)));
    EXPECT_EQ(
        command({"passthru", "-i0", "-o6", "-d16", "-rwrite", "--inputfile", path("in"), "--outputfile", path("out")}),
        (Outcome{0, done()}));
}

TEST_F(PassthruCommand, APipeLosesNothingToAFileForTheOtherDirection)
{
    ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
    std::thread writer([&] { std::ofstream(path("pipe")) << textOf(pattern(16, 7)); });
    machine.expect(to(0, 6).sends(pattern(16, 7)));
    EXPECT_EQ(command({"passthru", "-i0", "-o6", "-d16", "-rwrite", "--inputfile", path("pipe"), "--outputfile",
                       path("out")}),
              (Outcome{0, done()}));
    writer.join();
}

TEST_F(PassthruCommand, ALengthThatNoPageHoldsIsRefused)
{
    for (const char* length : {"4097", "65536", "0x1001", "99999999999", "0xffffffff", "-0x1"}) {
        EXPECT_EQ(command({"passthru", "-i", "0", "-o", "6", "-r", "read", "-d", length}),
                  (Outcome{1, std::string("passthru: data length '") + length + "' is not within 0 to 4096\n"}));
        EXPECT_EQ(command({"passthru", "-i", "0", "-o", "6", "-r", "write", "-d", length}).result, 1);
    }
    machine.expect(to(0, 6));  // of metadata nothing is sent
    EXPECT_EQ(command({"passthru", "-i", "0", "-o", "6", "-r", "write", "-m", "0x7fffffff"}), (Outcome{0, done()}));
}

class PassthruSmart : public PassthruCommand {
protected:
    PassthruSmart()
    {
        log[0] = 0x21;
        log[1] = 0x2C;
        log[2] = 0x01;
        const auto smart = qrx::wire::read<_qrx_smart_log>(log);
        page = outcomeOf([&] {
                   showLogSmartInfo(*smart, 0);
                   return 0;
               }).stream;
    }
    Bytes log = Bytes(512);
    std::string page;
};

TEST_F(PassthruSmart, ALogIsShownInWordsToo)
{
    machine.expect(from(0, 2, 0x4403).word(10, 0x7F0002).receives(512).data(log));
    EXPECT_EQ(command({"passthru", "-o", "2", "--cdw10=0x7f0002", "-r", "read", "--data-len=512", "-i", "0"}),
              (Outcome{0, rawOf(log) + page + done()}));
    EXPECT_NE(page.find("Composite Temperature                                 : 27 Celsius\n"), std::string::npos);
}

TEST_F(PassthruSmart, ALogInAFileAndALogThatWasSent)
{
    machine.expect(from(0, 2, 0x4403).word(10, 0x7F0002).receives(4096).data(log));
    EXPECT_EQ(command({"passthru", "-o2", "--cdw10=0x7f0002", "-rread", "-d4096", "-i0", "--outputfile", path("log")}),
              (Outcome{0, page + done()}));
    machine.expect(to(0, 2, 0x4403).word(10, 0x7F0002).sends(log));
    EXPECT_EQ(command({"passthru", "-o2", "--cdw10=8323074", "-rwrite", "-d512", "-i0", "--inputfile",
                       scratch.file("log", textOf(log))}),
              (Outcome{0, page + done()}));
}

TEST_F(PassthruSmart, NothingElseIsTakenForALog)
{
    machine.expect(from(0, 2, 0x4403).word(10, 0x7F0002).receives(511).data(log));
    EXPECT_EQ(command({"passthru", "-o2", "--cdw10=0x7f0002", "-rread", "-d511", "-i0"}),
              (Outcome{0, rawOf(Bytes(log.begin(), log.begin() + 511)) + done()}));
    machine.expect(from(0, 2, 0x4403).word(10, 0x7F0003).receives(512).data(log));
    EXPECT_EQ(command({"passthru", "-o2", "--cdw10=0x7f0003", "-rread", "-d512", "-i0"}),
              (Outcome{0, rawOf(log) + done()}));
    machine.expect(from(0, 6, 0x4403).word(10, 0x7F0002).receives(512).data(log));
    EXPECT_EQ(command({"passthru", "-o6", "--cdw10=0x7f0002", "-rread", "-d512", "-i0"}),
              (Outcome{0, rawOf(log) + done()}));
    machine.expect(from(0, 2, 0x4403).word(10, 0x7F0002).receives(512).data(log).status(0x4002));
    EXPECT_EQ(command({"passthru", "-o2", "--cdw10=0x7f0002", "-rread", "-d512", "-i0"}).stream,
              "Passthrough command is failed.\n");
}

TEST_F(PassthruCommand, AFailurePrintsItsTextAndIsReturned)
{
    machine.expect(from(9, 6).status(0x706));
    EXPECT_EQ(command({"passthru", "-i9", "-o6", "-rread"}),
              (Outcome{0x706, "Passthrough command is failed.\n", "Invalid HD ID (Status Code: 0x706)\n"}));
    machine.expect(to(9, 6).error(5));
    EXPECT_EQ(command({"passthru", "-i9", "-o6", "-rwrite"}),
              (Outcome{-1, "Passthrough command is failed.\n", "Unknown error (Status Code: 0xffffffff)\n"}));
}

TEST_F(PassthruCommand, ShowsTheFrame)
{
    machine.expect(to(7, 0x4281, 0xFC0F)
                       .word(2, 0x22)
                       .word(3, 0x33)
                       .word(10, 0xA)
                       .word(11, 0xB)
                       .word(12, 0xC)
                       .word(13, 0xD)
                       .word(15, 0xF));
    EXPECT_EQ(command({"passthru", "-i7", "-o0x81", "-f2", "-p1", "-rnone", "-n15", "--cdw2=0x22", "--cdw3=0x33",
                       "--cdw10=0xa", "--cdw11=0xb", "--cdw12=0xc", "--cdw13=0xd", "--showcmd", "-s", "x"}),
              (Outcome{0,
                       "[Command Format]\n"
                       "CDW00: 0xc3\nCDW01: 0x7\nCDW02: 0x22\nCDW03: 0x33\nCDW04: 0x0\nCDW05: 0x0\nCDW06: 0x0\n"
                       "CDW07: 0x0\nCDW08: 0x0\nCDW09: 0x0\nCDW10: 0xa\nCDW11: 0xb\nCDW12: 0xc\nCDW13: 0xd\n"
                       "CDW14: 0x4281\nCDW15: 0xf\n" +
                           done()}));
}

TEST_F(PassthruCommand, TheFrameShowsWhereTheDataIsAndItsLength)
{
    const Bytes data(0x123);
    _qrx_admin_command_format record{};
    record.CDW[7] = 1;
    record.CDW[9] = 2;
    char address[16];
    std::snprintf(address, sizeof(address), "0x%x",
                  static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(data.data())));
    const std::string text = outcomeOf([&] {
                                 _showCommandFormat(record, data);
                                 return 0;
                             }).stream;
    EXPECT_NE(text.find("CDW07: " + std::string(address) + "\nCDW08: 0x0\nCDW09: 0x123\nCDW10: 0x0\n"),
              std::string::npos);
}

TEST_F(PassthruCommand, DebugLines)
{
    dbg_enable = 1;
    machine.expect(to(7, 0x80, 0xC403).word(10, 512).word(15, 1));
    EXPECT_EQ(
        command({"passthru", "-i7", "-o0x80", "-rnone", "-n1", "--cdw10=512"}),
        (Outcome{0, "CDW[0] : 0x000000c3\nCDW[10]: 0x00000200\nCDW[14]: 0x00000080\nCDW[15]: 0x00000001\n" + done()}));
}

TEST_F(PassthruCommand, BadValuesEndThePassWithZero)
{
    constexpr std::array<const char*, 3> kCases[] = {
        {"-i", "x", "-i: SSD backend RC/Slot ID should be a number\n"},
        {"-i", "0x1", "-i: SSD backend RC/Slot ID should be a number\n"},
        {"-r", "reed", "-r : invalid request 'reed'\n"},
        {"-p", "x", "-p: PSDT should be a decimal or hexadecimal\n"},
        {"-f", "x", "-f: FUSE should be a decimal or hexadecimal\n"},
        {"-o", "x", "-o: OPCode should be a decimal or hexadecimal\n"},
        {"-n", "-1", "-n: Backend Namespace ID should be a decimal or hexadecimal\n"},
        {"--cdw2", "x", "--cdw2: CDW2 should be a decimal or hexadecimal\n"},
        {"--cdw3", "x", "--cdw3: CDW3 should be a decimal or hexadecimal\n"},
        {"-m", "x", "-m: Metadata length id should be a decimal or hexadecimal\n"},
        {"-d", "x", "-d: data length id should be a decimal or hexadecimal\n"},
        {"--cdw10", "x", "--cdw10: CDW10 should be a decimal or hexadecimal\n"},
        {"--cdw11", "x", "--cdw11: CDW11 should be a decimal or hexadecimal\n"},
        {"--cdw12", "x", "--cdw12: CDW12 should be a decimal or hexadecimal\n"},
        {"--cdw13", "x", "--cdw13: CDW13 should be a decimal or hexadecimal\n"},
        {"-t", "x", "-t : invalid action 'x'\n"},
    };
    for (const auto& [option, value, complaint] : kCases) {
        EXPECT_EQ(command({"passthru", option, value, "-h"}), (Outcome{0, complaint}));
    }
    EXPECT_EQ(command({"passthru", "-z"}), (Outcome{0, "", "", "passthru: illegal option -- z\n"}));
}

TEST_F(PassthruCommand, ABadValueKeepsLaterFilesAlone)
{
    EXPECT_EQ(command({"passthru", "-i", "x", "--outputfile", scratch.file("kept", "content")}).result, 0);
    EXPECT_EQ(contentOf(path("kept")), "content");
}

TEST_F(PassthruCommand, OneBasedIds)
{
    g_oneBaseMode = 1;
    EXPECT_EQ(command({"passthru", "-i", "0"}), (Outcome{0, "-i : invalid SSD backend RC/Slot ID '0'.\n"}));
    machine.expect(from(0, 6));
    EXPECT_EQ(command({"passthru", "-i", "1", "-o", "6", "-r", "read"}), (Outcome{0, "\n" + done()}));
}

TEST_F(PassthruCommand, RequiredOptions)
{
    EXPECT_EQ(command({"passthru", "-r", "read", "-o", "6"}), (Outcome{0, "passthru: option -i is required\n"}));
    EXPECT_EQ(command({"passthru", "-i", "0", "-o", "6"}), (Outcome{0, "passthru: option -r is required\n"}));
    EXPECT_EQ(command({"passthru", "-i", "0", "-r", "read"}), (Outcome{0, "passthru: option -r is required\n"}));
    EXPECT_EQ(command({"passthru", "--output", "x"}), (Outcome{0, "passthru: option -i is required\n"}));
}

TEST_F(PassthruCommand, Duplicates)
{
    const std::string in = scratch.file("in", "");
    const std::string out = path("out");
    for (auto words :
         {Line{"passthru", "-t", "admin", "-t", "admin"}, Line{"passthru", "-i", "0", "-i", "0"},
          Line{"passthru", "-r", "read", "-r", "read"}, Line{"passthru", "-p", "0", "-p", "0"},
          Line{"passthru", "-f", "0", "-f", "0"}, Line{"passthru", "-o", "0", "-o", "0"},
          Line{"passthru", "-n", "0", "-n", "0"}, Line{"passthru", "--cdw2=0", "--cdw2=0"},
          Line{"passthru", "--cdw3=0", "--cdw3=0"}, Line{"passthru", "-m", "0", "-m", "0"},
          Line{"passthru", "-d", "0", "-d", "0"}, Line{"passthru", "--cdw10=0", "--cdw10=0"},
          Line{"passthru", "--cdw11=0", "--cdw11=0"}, Line{"passthru", "--cdw12=0", "--cdw12=0"},
          Line{"passthru", "--cdw13=0", "--cdw13=0"}, Line{"passthru", "--outputfile", out, "--outputfile", out},
          Line{"passthru", "--inputfile", in, "--inputfile", in}}) {
        EXPECT_EQ(command(words), kDuplicate);
    }
}

TEST_F(PassthruCommand, TheRequestMayBeAbbreviated)
{
    machine.expect(from(0, 6));
    EXPECT_EQ(command({"passthru", "--req", "read", "-i", "0", "-o", "6"}), (Outcome{0, "\n" + done()}));
}

}  // namespace
