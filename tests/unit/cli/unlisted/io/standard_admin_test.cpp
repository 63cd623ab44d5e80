// `format` and `vf-manage`.
#include "tests/unit/cli/unlisted/io/io_fixture.h"

namespace {

using namespace qrx::test;

const Outcome kDuplicate{1, "Duplicated option specified.\n"};

// --- format ----------------------------------------------------------------------------------------------------------

class Format : public IoTest {
protected:
    static Command format(QRX_U32 nsid, QRX_U32 cdw10) { return Command::admin(128, nsid, {cdw10}).on(1); }
};

TEST_F(Format, Help)
{
    EXPECT_EQ(unlisted({"format"}), (Outcome{1, helpOf("format")}));
    EXPECT_EQ(unlisted({"format", "-n", "1", "-h"}), (Outcome{0, helpOf("format")}));
    EXPECT_NE(helpOf("format").find("JBOF Support Only"), std::string::npos);
    EXPECT_NE(helpOf("format").find(
                  "\nformat -n <namespace> -f <LBA format> [-m <Metadata Settings>] [-i <Protection Information>] [-l "
                  "<Protection Information Location>] [-s <Secure Erase Settings>]  [-h]\n"),
              std::string::npos);
}

TEST_F(Format, PutsEachOptionInItsPlace)
{
    machine.expect(format(3, 0x5 | 0x10 | 2 << 5 | 0x100 | 1 << 9));
    EXPECT_EQ(unlisted({"format", "-n", "3", "-f", "5", "-m", "1", "-i", "2", "-l", "1", "-s", "1"}),
              (Outcome{0, "Format namespace success..\n"}));
    const std::pair<std::string, QRX_U32> fields[] = {
        {"--lbaf=15", 0xF}, {"--mset=1", 0x10}, {"--pi=7", 0xE0}, {"--pil=1", 0x100}, {"--ses=7", 0xE00}};
    for (const auto& [option, word] : fields) {
        machine.expect(format(9, word));
        EXPECT_EQ(unlisted({"format", "--namespace=9", option}), (Outcome{0, "Format namespace success..\n"}));
    }
}

TEST_F(Format, OnlyTheNamespaceIsRequired)
{
    EXPECT_EQ(unlisted({"format", "-f", "1"}), (Outcome{0, "format: option -n is required\n"}));
    machine.expect(format(1, 0));
    EXPECT_EQ(unlisted({"format", "-n", "1"}), (Outcome{0, "Format namespace success..\n"}));
    machine.expect(format(0xFFFFFFFF, 0));  // all of them
    EXPECT_EQ(unlisted({"format", "-n", "4294967295"}), (Outcome{0, "Format namespace success..\n"}));
}

TEST_F(Format, TellsOfAFailure)
{
    machine.expect(format(1, 0).status(0x10A));
    EXPECT_EQ(unlisted({"format", "-n", "1"}),
              (Outcome{0x10A, "Format namespace failed.\n", "Invalid Format (Status Code: 0x10a)\n"}));
}

TEST_F(Format, DebugShowsTheWord)
{
    dbg_enable = 1;
    machine.expect(format(1, 0x201));
    EXPECT_EQ(unlisted({"format", "-n", "1", "-f", "1", "-s", "1"}),
              (Outcome{0, "cdw10: 0x201\nFormat namespace success..\n"}));
}

TEST_F(Format, ARaidControllerIsRefusedWhenAllOptionsAreGood)
{
    current().Features |= kFeatureRaid;
    EXPECT_EQ(unlisted({"format", "-n", "1", "-f", "0"}), (Outcome{1, "This feature is support JBOF only.\n"}));
    EXPECT_EQ(unlisted({"format", "-f", "0"}), (Outcome{0, "format: option -n is required\n"}));
    EXPECT_EQ(unlisted({"format", "-f", "0", "-f", "0"}), kDuplicate);
}

TEST_F(Format, OptionsAreChecked)
{
    const std::pair<std::string, std::string> options[] = {{"-n", "namespace ID"},
                                                           {"-f", "LBA format"},
                                                           {"-m", "Metadata Settings"},
                                                           {"-i", "Protection Information"},
                                                           {"-l", "Protection Information Location"},
                                                           {"-s", "Secure Erase Settings"}};
    for (const auto& [option, text] : options) {
        for (const std::string word : {"x", "0x1", "-1"}) {
            const std::string said = std::string(option).append(" : invalid ").append(text).append(" '").append(word);
            EXPECT_EQ(unlisted({"format", option, word, "-h"}), (Outcome{0, said + "'\n"}));
        }
        EXPECT_EQ(unlisted({"format", option, "0", option, "0"}), kDuplicate);
    }
    EXPECT_EQ(unlisted({"format", "-z"}), (Outcome{0, "", "", "format: illegal option -- z\n"}));
}

TEST_F(Format, AValueThatTheCommandHasNoRoomForIsNotCut)
{
    const std::pair<std::string, std::string> options[] = {{"4294967296", "-n : invalid namespace ID '4294967296'\n"},
                                                           {"16", "-f : invalid LBA format '16'\n"},
                                                           {"2", "-m : invalid Metadata Settings '2'\n"},
                                                           {"8", "-i : invalid Protection Information '8'\n"},
                                                           {"2", "-l : invalid Protection Information Location '2'\n"},
                                                           {"8", "-s : invalid Secure Erase Settings '8'\n"}};
    for (const auto& [value, line] : options) {
        EXPECT_EQ(unlisted({"format", line.substr(0, 2), value, "-h"}), (Outcome{0, line}));
    }
}

// --- vf-manage -------------------------------------------------------------------------------------------------------

class VfManage : public IoTest {
protected:
    static Command manage(QRX_U32 cdw10, QRX_U32 cdw11) { return Command::admin(28, 0, {cdw10, cdw11}).on(1); }
};

TEST_F(VfManage, Help)
{
    const std::string page = helpOf("vf-manage");
    EXPECT_EQ(
        page.find("Description:For virtualization management control.\nvf-manage [-c <controller identifier>]  [-n "
                  "<number of controller resources>][-h]\n"),
        0U);
    EXPECT_EQ(unlisted({"vf-manage"}), (Outcome{0, page}));
    EXPECT_EQ(unlisted({"vf-manage", "--output", "x"}), (Outcome{0, page}));
    EXPECT_EQ(unlisted({"vf-manage", "-c", "1", "-h"}), (Outcome{0, page}));
}

TEST_F(VfManage, AllocatesToAPrimaryFunction)
{
    const char done[] = "cmd success, please doing controller level reset to update host queue source\n";
    machine.expect(manage(0x00000001, 16));
    EXPECT_EQ(unlisted({"vf-manage", "-c", "0", "-n", "16"}), (Outcome{0, done}));
    machine.expect(manage(0x00010001, 0xFFFFFFFE));
    EXPECT_EQ(unlisted({"vf-manage", "--cntlid", "0x1", "--nr", "0xfffffffe"}), (Outcome{0, done}));
    machine.expect(manage(0x00000001, 4).status(0x121));
    EXPECT_EQ(unlisted({"vf-manage", "-c", "0", "-n", "4"}),
              (Outcome{0x121, "cmd failed\n", "Invalid Number of Controller Resources (Status Code: 0x121)\n"}));
}

TEST_F(VfManage, AssignsToASecondaryFunctionThatItTakesOffline)
{
    for (const QRX_U32 id : {2U, 33U}) {
        machine.expect(manage(id << 16 | 7, 0));
        machine.expect(manage(id << 16 | 8, 16));
        machine.expect(manage(id << 16 | 9, 16));
        EXPECT_EQ(unlisted({"vf-manage", "-c", std::to_string(id), "-n", "16"}), (Outcome{0, "cmd success\n"}));
    }
}

TEST_F(VfManage, AFailedStepEndsIt)
{
    for (unsigned failed = 0; failed < 3; ++failed) {
        for (unsigned step = 0; step <= failed; ++step) {
            machine.expect(manage(0x50000 | (7 + step), step == 0 ? 0 : 3).status(step == failed ? 0x120 : 0));
        }
        EXPECT_EQ(unlisted({"vf-manage", "-c", "5", "-n", "3"}),
                  (Outcome{0, "cmd failed\n", "Invalid Secondary Controller State (Status Code: 0x120)\n"}));
    }
}

TEST_F(VfManage, DebugShowsEachCommand)
{
    dbg_enable = 1;
    machine.expect(manage(0x20007, 0));
    machine.expect(manage(0x20008, 5));
    machine.expect(manage(0x20009, 5));
    EXPECT_EQ(unlisted({"vf-manage", "-c", "2", "-n", "5"}),
              (Outcome{0,
                       "CDW 10 : 0x00020007\nCDW 11 : 0x00000000\nCDW 10 : 0x00020008\nCDW 11 : 0x00000005\n"
                       "CDW 10 : 0x00020009\nCDW 11 : 0x00000005\ncmd success\n"}));
}

TEST_F(VfManage, WorksOnEveryController)
{
    current().Features |= kFeatureRaid;
    machine.expect(manage(1, 0));
    EXPECT_EQ(unlisted({"vf-manage", "-c", "0", "-n", "0"}).result, 0);
}

TEST_F(VfManage, OptionsAreChecked)
{
    for (const std::string id : {"34", "65536", "65538", "0xffffffff"}) {
        EXPECT_EQ(unlisted({"vf-manage", "-c", id, "-n", "1"}), (Outcome{0, "controller ID: out of range\n"}));
    }
    for (const std::string id : {"x", "-0x1", "0x1O", "0x100000000"}) {
        EXPECT_EQ(unlisted({"vf-manage", "-c", id, "-h"}),
                  (Outcome{0, "-c : invalid controller identifier '" + id + "'\n"}));
    }
    EXPECT_EQ(unlisted({"vf-manage", "-n", "x", "-h"}), (Outcome{0, "-n : invalid number of controller 'x'\n"}));
    for (const std::string count : {"0x100000000", "4294967296", "-0x1"}) {
        EXPECT_EQ(unlisted({"vf-manage", "-n", count, "-h"}),
                  (Outcome{0, "-n : invalid number of controller '" + count + "'\n"}));
    }
    EXPECT_EQ(unlisted({"vf-manage", "-n", "1"}), (Outcome{0, "vf-manage: option -c is required\n"}));
    EXPECT_EQ(unlisted({"vf-manage", "-c", "1"}), (Outcome{0, "vf-manage: option -n is required\n"}));
    EXPECT_EQ(unlisted({"vf-manage", "-c", "1", "-c", "1"}), kDuplicate);
    EXPECT_EQ(unlisted({"vf-manage", "-n", "1", "-n", "1"}), kDuplicate);
    EXPECT_EQ(unlisted({"vf-manage", "-z"}), (Outcome{0, "", "", "vf-manage: illegal option -- z\n"}));
}

}  // namespace
