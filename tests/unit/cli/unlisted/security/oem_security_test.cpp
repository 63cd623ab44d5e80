// `linfo`, `sec_provide`, `ack` and `secuinfo`.
#include "tests/unit/cli/file_texts.h"
#include "tests/unit/cli/run_unlisted.h"
#include "tests/unit/cli/storage_fixture.h"
#include "tests/unit/support/libc.h"

namespace {

using namespace qrx::test;

const Outcome kDuplicate{1, "Duplicated option specified.\n"};
const Outcome kSuccess{0, "cmd success\n"};

class OemSecurity : public StorageTest {
protected:
    static Command block(QRX_U32 cdw12) { return page(cdw12, 0x1401).word(10, 1023); }
    static Command presence(QRX_U32 cdw13, QRX_U32 cdw14)
    {
        return plain(0x000102FD, 0x7001).word(13, cdw13).word(14, cdw14);
    }
    static Command setting(QRX_U32 cdw13, QRX_U32 cdw14)
    {
        return plain(0x000202FD, 0x7001).word(13, cdw13).word(14, cdw14);
    }
    static void expectHelp(const std::string& word, const std::string& synopsis, const Line& more)
    {
        const std::string text = helpOf(word);
        EXPECT_NE(text.find("\n" + synopsis + "\n\nOptions:\n"), std::string::npos) << text;
        EXPECT_EQ(text.substr(0, 12), "Description:");
        EXPECT_EQ(unlisted({word, "-h"}), (Outcome{0, text}));
        EXPECT_EQ(unlisted({word, "--help"}), (Outcome{0, text}));
        EXPECT_EQ(unlisted(more), (Outcome{0, text}));
        EXPECT_EQ(unlisted({word, "-z"}), (Outcome{0, "", "", word + ": illegal option -- z\n"}));
    }

    Scratch scratch;
};

// linfo

TEST_F(OemSecurity, LinfoHelp)
{
    expectHelp("linfo", "linfo [--outputfile <outputfile>] [-a show] [-h]", {"linfo", "-a", "show", "-h"});
}

TEST_F(OemSecurity, LinfoShowsTheBytes)
{
    machine.expect(block(0x000002FD).data(pattern(4096)));
    EXPECT_EQ(unlisted({"linfo"}), (Outcome{0, rawOf(pattern(4096)) + "cmd success\n"}));
    machine.expect(block(0x000002FD).data(pattern(4096, 7)));
    EXPECT_EQ(unlisted({"linfo", "--output", "x"}), (Outcome{0, rawOf(pattern(4096, 7)) + "cmd success\n"}));
}

TEST_F(OemSecurity, LinfoInWordsIsTwoLineBreaks)
{
    for (const char* action : {"show", "SHOW"}) {
        machine.expect(block(0x000002FD).data(pattern(4096)));
        EXPECT_EQ(unlisted({"linfo", "-a", action}), (Outcome{0, "\n\ncmd success\n"}));
    }
}

TEST_F(OemSecurity, LinfoFillsAFile)
{
    const std::string path = scratch.path("light");
    machine.expect(block(0x000002FD).data(pattern(4096, 3)));
    EXPECT_EQ(unlisted({"linfo", "--outputfile=" + path, "--action=show"}), kSuccess);
    EXPECT_EQ(contentOf(path), textOf(pattern(4096, 3)));
    machine.expect(block(0x000002FD).data(pattern(4096)));
    EXPECT_EQ(unlisted({"linfo", "-1", "/dev/full"}),
              (Outcome{1, "linfo: cannot write '/dev/full': No space left on device; the file is incomplete\n"}));
}

TEST_F(OemSecurity, LinfoWithoutItsFileAsksNothing)
{
    EXPECT_EQ(unlisted({"linfo", "--outputfile=/nonexistent/x"}), (Outcome{1, "File is not exist.\n"}));
    EXPECT_EQ(unlisted({"linfo", "-a", "show", "--outputfile=/nonexistent/x"}), (Outcome{1, "File is not exist.\n"}));
}

TEST_F(OemSecurity, LinfoChecks)
{
    EXPECT_EQ(unlisted({"linfo", "-a", "list"}), (Outcome{0, "-a : invalid action 'list'.\n"}));
    EXPECT_EQ(unlisted({"linfo", "-a", "show", "-a", "show", "--outputfile=/nonexistent/x"}), kDuplicate);
}

TEST_F(OemSecurity, LinfoMayFail)
{
    machine.expect(block(0x000002FD).status(0x002));
    EXPECT_EQ(unlisted({"linfo", "-a", "show"}),
              (Outcome{2, "\nUnable to dump NVMe Controller info from NVMe Controller 1\n",
                       "Invalid Field in Command (Status Code: 0x2)\n"}));
}

TEST_F(OemSecurity, LinfoDebugLines)
{
    dbg_enable = 1;
    machine.expect(block(0x000002FD));
    EXPECT_EQ(unlisted({"linfo", "-a", "show"}).stream,
              "CDW[0] : 0x000000e2\nCDW[10]: 0x000003ff\nCDW[12]: 0x000002fd\n\n\ncmd success\n");
}

// sec_provide

TEST_F(OemSecurity, ProvideHelp)
{
    expectHelp("sec_provide", "sec_provide -i <PD ID hexmap> [-h]", {"sec_provide", "-i", "1", "-h"});
    EXPECT_EQ(unlisted({"sec_provide"}), (Outcome{1, helpOf("sec_provide")}));
}

TEST_F(OemSecurity, ProvideSendsTheBitmap)
{
    const std::vector<std::pair<std::string, QRX_U32>> maps{
        {"0x3", 3}, {"3", 3}, {"0x80000001", 0x80000001}, {"0xffffffff", 0xFFFFFFFF}, {"4294967295", 0xFFFFFFFF},
        {"0", 0}};
    for (const auto& [word, value] : maps) {
        machine.expect(plain(0x000102FD, 0x5001).word(14, value));
        EXPECT_EQ(unlisted({"sec_provide", "-i", word}), (Outcome{0, "Security Help Provided success."}));
    }
    machine.expect(plain(0x000102FD, 0x5001).word(14, 0x10));
    EXPECT_EQ(unlisted({"sec_provide", "--pdid=16"}), (Outcome{0, "Security Help Provided success."}));
}

TEST_F(OemSecurity, ProvideRefusesWhatIsNoBitmapOf32Drives)
{
    for (const std::string word : {"x", "-1", "3,4", "f", "0x", "0x1g", "x0x1", "-0x1", " 0x1 ", "0x100000000",
                                   "4294967296", "99999999999999999999999"}) {
        EXPECT_EQ(unlisted({"sec_provide", "-i", word}), (Outcome{0, "-i : invalid PD ID map '" + word + "'\n"}));
    }
}

TEST_F(OemSecurity, ProvideChecks)
{
    EXPECT_EQ(unlisted({"sec_provide", "-i", "1", "-i", "1"}), kDuplicate);
    EXPECT_EQ(unlisted({"sec_provide", "stray"}), (Outcome{0, "sec_provide: option -i is required\n"}));
}

TEST_F(OemSecurity, ProvideMayFail)
{
    machine.expect(plain(0x000102FD, 0x5001).word(14, 3).status(0x704));
    EXPECT_EQ(unlisted({"sec_provide", "-i", "0x3"}),
              (Outcome{0x704, "Security Help Provided failed.\n", "Invalid parameter (Status Code: 0x704)\n"}));
}

TEST_F(OemSecurity, ProvideDebugLines)
{
    dbg_enable = 1;
    machine.expect(plain(0x000102FD, 0x5001).word(14, 0x12));
    EXPECT_EQ(unlisted({"sec_provide", "-i", "0x12"}).stream,
              "CDW[0] : 0x000000e2\nCDW[12]: 0x000102fd\nCDW[14]: 0x00000012\nSecurity Help Provided success.");
}

// ack

TEST_F(OemSecurity, AckHelp)
{
    expectHelp("ack", "ack -t [ <adapter -r <reset> > | <pd  -i <id> -s <slotattr> -f <fwupdate> ] [-h]",
               {"ack", "-t", "pd", "-h"});
    EXPECT_EQ(unlisted({"ack"}), (Outcome{1, helpOf("ack")}));
}

TEST_F(OemSecurity, AckOfTheAdapter)
{
    machine.expect(presence(0, 1));
    EXPECT_EQ(unlisted({"ack", "-t", "adapter", "-r", "enable"}), kSuccess);
    machine.expect(presence(0, 0));
    EXPECT_EQ(unlisted({"ack", "--type=ADAPTER", "--reset=Disable", "-i", "5", "-s", "enable", "-f", "enable"}),
              kSuccess)
        << "what belongs to a drive is of no effect";
}

TEST_F(OemSecurity, AckOfADrive)
{
    machine.expect(presence(0x00010001, 1));
    EXPECT_EQ(unlisted({"ack", "-t", "pd", "-i", "1", "-s", "enable", "-f", "disable"}), kSuccess);
    machine.expect(presence(0x00000001, 0x100));
    EXPECT_EQ(unlisted({"ack", "--type", "PD", "--pdid", "0", "--slotatt", "DISABLE", "--fwupdate", "ENABLE"}),
              kSuccess);
    machine.expect(presence(0xFFFF0001, 0x101));
    EXPECT_EQ(unlisted({"ack", "-t", "pd", "-i", "65535", "-s", "enable", "-f", "enable", "-r", "enable"}), kSuccess);
    machine.expect(presence(0x00040001, 0));
    g_oneBaseMode = 1;
    EXPECT_EQ(unlisted({"ack", "-t", "pd", "-i", "5", "-s", "disable", "-f", "disable"}), kSuccess);
    EXPECT_EQ(unlisted({"ack", "-i", "0"}), (Outcome{0, "-i : PD id should be a number\n"}));
}

TEST_F(OemSecurity, AckBadValues)
{
    EXPECT_EQ(unlisted({"ack", "-t", "vd"}), (Outcome{0, "-t : invalid type 'vd'.\n"}));
    EXPECT_EQ(unlisted({"ack", "-i", "0x1"}), (Outcome{0, "-i : PD id should be a number\n"}));
    EXPECT_EQ(unlisted({"ack", "-i", "65536"}), (Outcome{0, "-i : invalid PD id '65536'\n"}));
    EXPECT_EQ(unlisted({"ack", "-r", "on"}), (Outcome{0, "-r : invalid control value for 'on' for reset.\n"}));
    EXPECT_EQ(unlisted({"ack", "-s", "1"}), (Outcome{0, "-r : invalid control value '1' for slot attention.\n"}));
    EXPECT_EQ(unlisted({"ack", "-f", "no"}), (Outcome{0, "-r : invalid control value 'no' for firmware update.\n"}));
}

TEST_F(OemSecurity, AckChecks)
{
    for (const std::string letter : {"t", "i", "r", "s", "f"}) {
        const std::string word = letter == "t" ? "pd" : letter == "i" ? "1" : "enable";
        EXPECT_EQ(unlisted({"ack", "-" + letter, word, "-" + letter, word}), kDuplicate);
    }
    const auto required = [](const std::string& letter) {
        return Outcome{1, "ack: option -" + letter + " is required\n"};
    };
    EXPECT_EQ(unlisted({"ack", "-i", "1", "-r", "enable", "-s", "enable", "-f", "enable"}), required("t"));
    EXPECT_EQ(unlisted({"ack", "-t", "adapter", "-i", "1"}), required("r"));
    EXPECT_EQ(unlisted({"ack", "-t", "pd"}), required("i"));
    EXPECT_EQ(unlisted({"ack", "-t", "pd", "-i", "1"}), required("s"));
    EXPECT_EQ(unlisted({"ack", "-t", "pd", "-i", "1", "-s", "enable"}), required("f"));
}

TEST_F(OemSecurity, AckMayFail)
{
    machine.expect(presence(0, 1).status(0x704));
    EXPECT_EQ(unlisted({"ack", "-t", "adapter", "-r", "enable"}),
              (Outcome{0x704, "\nUnable to set security acknowledgement from NVMe Controller 1\n",
                       "Invalid parameter (Status Code: 0x704)\n"}));
}

TEST_F(OemSecurity, AckDebugLines)
{
    dbg_enable = 1;
    machine.expect(presence(0x00020001, 0x100));
    EXPECT_EQ(unlisted({"ack", "-t", "pd", "-i", "2", "-s", "disable", "-f", "enable"}).stream,
              "CDW[0] : 0x000000e2\nCDW[12]: 0x000102fd\nCDW[13]: 0x00020001\nCDW[14]: 0x00000100\ncmd success\n");
    machine.expect(presence(0, 1));
    EXPECT_EQ(unlisted({"ack", "-t", "adapter", "-r", "enable"}).stream,
              "CDW[0] : 0x000000e2\nCDW[12]: 0x000102fd\nCDW[13]: 0x00000000\nCDW[14]: 0x00000001\ncmd success\n");
}

// secuinfo

TEST_F(OemSecurity, SecuinfoHelp)
{
    expectHelp("secuinfo", "secuinfo [--outputfile <outputfile>] [-a show] [-h]", {"secuinfo", "-a", "get", "-h"});
    EXPECT_EQ(unlisted({"secuinfo"}), (Outcome{1, helpOf("secuinfo")}));
}

TEST_F(OemSecurity, SecuinfoReadsTheBlock)
{
    for (const char* action : {"get", "GET"}) {
        machine.expect(block(0x000302FD).data(pattern(4096)));
        EXPECT_EQ(unlisted({"secuinfo", "-a", action, "-t", "pd"}), kSuccess);
    }
    machine.expect(block(0x000302FD).status(0x002));
    EXPECT_EQ(unlisted({"secuinfo", "-a", "get"}), (Outcome{2, "\nUnable to get security info from NVMe Controller 1\n",
                                                            "Invalid Field in Command (Status Code: 0x2)\n"}));
}

TEST_F(OemSecurity, SecuinfoShowsTheBlockToWhoDebugs)
{
    dbg_enable = 1;
    machine.expect(block(0x000302FD).data(pattern(4096)));
    EXPECT_EQ(
        unlisted({"secuinfo", "--action=get"}).stream,
        "CDW[0] : 0x000000e2\nCDW[10]: 0x000003ff\nCDW[12]: 0x000302fd\n" + rawOf(pattern(4096)) + "cmd success\n");
}

TEST_F(OemSecurity, SecuinfoSetsTheAdapter)
{
    machine.expect(setting(0, 1));
    EXPECT_EQ(unlisted({"secuinfo", "-a", "set", "-t", "adapter", "-m", "enable"}), kSuccess);
    machine.expect(setting(0, 0));
    EXPECT_EQ(unlisted({"secuinfo", "-a", "SET", "-t", "Adapter", "--secmode=DISABLE", "-p", "enable"}), kSuccess);
    machine.expect(setting(0x01000000, 1));
    EXPECT_EQ(unlisted({"secuinfo", "-a", "set", "-t", "adapter", "-c", "enable"}), kSuccess);
    machine.expect(setting(0x01000000, 0));
    EXPECT_EQ(unlisted({"secuinfo", "-a", "set", "-t", "adapter", "--sechelpcomp=disable", "-i", "3"}), kSuccess);
}

TEST_F(OemSecurity, SecuinfoSetsADrive)
{
    machine.expect(setting(0x00030001, 1));
    EXPECT_EQ(unlisted({"secuinfo", "-a", "set", "-t", "pd", "-i", "3", "-p", "enable"}), kSuccess);
    machine.expect(setting(0x00000001, 0));
    EXPECT_EQ(unlisted({"secuinfo", "--action", "set", "--type", "PD", "--devId", "0", "--helppro", "Disable", "-m",
                        "enable", "-c", "enable"}),
              kSuccess);
}

TEST_F(OemSecurity, SecuinfoOneSettingOfTheAdapterAtATime)
{
    EXPECT_EQ(unlisted({"secuinfo", "-a", "set", "-t", "adapter", "-m", "enable", "-c", "enable"}),
              (Outcome{1, "-m and -c cannot in the same time\n"}));
    EXPECT_EQ(unlisted({"secuinfo", "-a", "set", "-t", "adapter", "-p", "enable"}),
              (Outcome{1, "The -m or -c must choose one.\n"}));
}

TEST_F(OemSecurity, SecuinfoBadValues)
{
    EXPECT_EQ(unlisted({"secuinfo", "-a", "show"}), (Outcome{0, "-a : invalid action 'show'.\n"}));
    EXPECT_EQ(unlisted({"secuinfo", "-t", "vd"}), (Outcome{0, "-t : invalid type 'vd'.\n"}));
    EXPECT_EQ(unlisted({"secuinfo", "-i", "x"}), (Outcome{0, "-i : Device id should be a number\n"}));
    EXPECT_EQ(unlisted({"secuinfo", "-i", "65536"}), (Outcome{0, "-i : invalid PD id '65536'\n"}));
    EXPECT_EQ(unlisted({"secuinfo", "-m", "on"}),
              (Outcome{0, "-m : invalid control value for 'on' for secure mode.\n"}));
    EXPECT_EQ(unlisted({"secuinfo", "-c", "on"}),
              (Outcome{0, "-c : invalid control value for 'on' for secure help complete.\n"}));
    EXPECT_EQ(unlisted({"secuinfo", "-p", "on"}),
              (Outcome{0, "-p : invalid control value for 'on' for help provide.\n"}));
}

TEST_F(OemSecurity, SecuinfoChecks)
{
    for (const std::string letter : {"a", "t", "i", "m", "c", "p"}) {
        const std::string word = letter == "a" ? "set" : letter == "t" ? "pd" : letter == "i" ? "1" : "enable";
        EXPECT_EQ(unlisted({"secuinfo", "-" + letter, word, "-" + letter, word}), kDuplicate);
    }
    EXPECT_EQ(unlisted({"secuinfo", "-t", "pd"}), (Outcome{0, "secuinfo: option -a is required\n"}));
    EXPECT_EQ(unlisted({"secuinfo", "-a", "set", "-m", "enable"}), (Outcome{0, "secuinfo: option -t is required\n"}));
    EXPECT_EQ(unlisted({"secuinfo", "-a", "set", "-t", "pd"}), (Outcome{1, "secuinfo: option -i is required\n"}));
    EXPECT_EQ(unlisted({"secuinfo", "-a", "set", "-t", "pd", "-i", "1"}),
              (Outcome{1, "secuinfo: option -p is required\n"}));
}

TEST_F(OemSecurity, SecuinfoMayFail)
{
    machine.expect(setting(0x00030001, 1).status(0x706));
    EXPECT_EQ(unlisted({"secuinfo", "-a", "set", "-t", "pd", "-i", "3", "-p", "enable"}).stream,
              "\nUnable to set security info from NVMe Controller 1\n");
    machine.expect(setting(0, 1).status(0x706));
    EXPECT_EQ(unlisted({"secuinfo", "-a", "set", "-t", "adapter", "-m", "enable"}).result, 0x706);
}

TEST_F(OemSecurity, SecuinfoDebugLines)
{
    dbg_enable = 1;
    machine.expect(setting(0x01000000, 1));
    EXPECT_EQ(unlisted({"secuinfo", "-a", "set", "-t", "adapter", "-c", "enable"}).stream,
              "CDW[0] : 0x000000e2\nCDW[12]: 0x000202fd\nCDW[13]: 0x01000000\nCDW[14]: 0x00000001\ncmd success\n");
}

}  // namespace
