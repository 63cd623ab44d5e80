// `mfnd-opertation` and `mfnd-properties`: the features of the multi-function device.
#include "tests/unit/cli/unlisted/mfnd/mfnd_fixture.h"

namespace {

using namespace qrx::test;

const std::string kOperationPage = helpOf(":For getting and setting MFND operation.", mfnd_operation_help);
const std::string kPropertiesPage = helpOf(":For getting and setting MFND properties.", mfnd_properties_help);
const std::string kUnable = "\nUnable to get configuration of NVMe Controller 0\n";

std::string badAction(const std::string& word)
{
    return "-a : invalid action '" + word + "', should be get or set\n";
}

class MfndOperation : public MfndTest {
protected:
    // To the first controller, whatever the current one is.
    static Command get() { return Command::passthru(10).word(10, 0xD1).flag(0xC01).wantsResult().on(0); }
    static Command set(QRX_U32 cdw11)
    {
        return Command::passthru(9).word(10, 0xD1).word(11, cdw11).flag(0xC01).wantsResult().on(0);
    }
};

TEST_F(MfndOperation, Help)
{
    EXPECT_EQ(unlisted({"mfnd-opertation"}), (Outcome{1, kOperationPage}));
    EXPECT_EQ(unlisted({"mfnd-opertation", "-h"}), (Outcome{0, kOperationPage}));
    EXPECT_EQ(unlisted({"mfnd-opertation", "-x"}), (Outcome{0, "", "", "mfnd-opertation: illegal option -- x\n"}));
}

TEST_F(MfndOperation, ShowsTheLowByteOfTheCompletion)
{
    machine.expect(get().result(0xABCDEF03));
    EXPECT_EQ(unlisted({"mfnd-opertation", "-a", "get"}), (Outcome{0, "\nMode: Single, Privilege: User\n"}));
    machine.expect(get().result(1));
    EXPECT_EQ(unlisted({"mfnd-opertation", "--action=GET"}), (Outcome{0, "\nMode: Single, Privilege: Admin\n"}));
    machine.expect(get().result(2));
    EXPECT_EQ(unlisted({"mfnd-opertation", "-a", "get", "-o", "mode", "-t", "single"}),
              (Outcome{0, "\nMode: Multiple, Privilege: User\n"}));
    machine.expect(get().result(0x10));
    EXPECT_EQ(unlisted({"mfnd-opertation", "-a", "get"}), (Outcome{0, "\nMode: Multiple, Privilege: Admin\n"}));
}

TEST_F(MfndOperation, AnAnswerOfZeroIsSilent)
{
    machine.expect(get().result(0));
    EXPECT_EQ(unlisted({"mfnd-opertation", "-a", "get"}), (Outcome{0, ""}));
    machine.expect(get().result(0xFFFFFF00));
    EXPECT_EQ(unlisted({"mfnd-opertation", "-a", "get"}), (Outcome{0, ""}));
}

TEST_F(MfndOperation, SetsPrivilegeAndMode)
{
    struct Case {
        const char* object;
        const char* type;
        QRX_U32 word;
    };
    for (const Case& c : {Case{"privilege", "user", 0x01}, Case{"PRIVILEGE", "Admin", 0x11},
                          Case{"mode", "single", 0x00}, Case{"Mode", "MULTIPLE", 0x10}}) {
        machine.expect(set(c.word));
        EXPECT_EQ(unlisted({"mfnd-opertation", "-a", "set", "--object", c.object, "--type", c.type}), (Outcome{0, ""}));
        machine.verify();
    }
}

TEST_F(MfndOperation, ATypeInFrontOfItsObjectIsNotLookedAt)
{
    machine.expect(set(0x01));
    EXPECT_EQ(unlisted({"mfnd-opertation", "-a", "set", "-t", "admin", "-o", "privilege"}), (Outcome{0, ""}));
    machine.expect(set(0x00));
    EXPECT_EQ(unlisted({"mfnd-opertation", "-a", "set", "-t", "whatever", "-o", "mode"}), (Outcome{0, ""}));
}

TEST_F(MfndOperation, AnAnswerToSetMeansThatItFailed)
{
    machine.expect(set(0x10).result(0x5501));
    EXPECT_EQ(unlisted({"mfnd-opertation", "-a", "set", "-o", "mode", "-t", "multiple"}), (Outcome{0, kUnable}));
    machine.expect(set(0x10).result(0x5500));
    EXPECT_EQ(unlisted({"mfnd-opertation", "-a", "set", "-o", "mode", "-t", "multiple"}), (Outcome{0, ""}));
}

TEST_F(MfndOperation, AFailedCommandHasNoAnswer)
{
    machine.expect(get().result(3).status(2));
    EXPECT_EQ(unlisted({"mfnd-opertation", "-a", "get"}), (Outcome{2, kUnable, kInvalidField}));
    machine.expect(set(0x10).status(2));
    EXPECT_EQ(unlisted({"mfnd-opertation", "-a", "set", "-o", "mode", "-t", "multiple"}),
              (Outcome{2, kUnable, kInvalidField}));
}

TEST_F(MfndOperation, RefusesBadWords)
{
    EXPECT_EQ(unlisted({"mfnd-opertation", "-a", "put"}), (Outcome{1, badAction("put")}));
    EXPECT_EQ(unlisted({"mfnd-opertation", "-o", "x"}),
              (Outcome{1, "-o : invalid object 'x', should be privilege or mode\n"}));
    EXPECT_EQ(unlisted({"mfnd-opertation", "-o", "privilege", "-t", "single"}),
              (Outcome{1, "-t : invalid object 'single', should be user or admin when object is privilege.\n"}));
    EXPECT_EQ(unlisted({"mfnd-opertation", "-o", "mode", "-t", "user"}),
              (Outcome{1, "-t : invalid object 'user', should be single or multiple when object is mode.\n"}));
}

TEST_F(MfndOperation, RefusesDuplicatesThenWhatIsMissing)
{
    EXPECT_EQ(unlisted({"mfnd-opertation", "-a", "get", "-a", "get"}), (Outcome{1, kDuplicate}));
    EXPECT_EQ(unlisted({"mfnd-opertation", "-o", "mode", "-o", "mode"}), (Outcome{1, kDuplicate}));
    EXPECT_EQ(unlisted({"mfnd-opertation", "-t", "user", "-t", "user"}), (Outcome{1, kDuplicate}));
    EXPECT_EQ(unlisted({"mfnd-opertation", "-o", "mode"}), (Outcome{1, needs("mfnd-opertation", 'a')}));
    EXPECT_EQ(unlisted({"mfnd-opertation", "-a", "set"}), (Outcome{1, needs("mfnd-opertation", 'o')}));
    EXPECT_EQ(unlisted({"mfnd-opertation", "-a", "set", "-t", "user"}), (Outcome{1, needs("mfnd-opertation", 'o')}));
    EXPECT_EQ(unlisted({"mfnd-opertation", "-a", "set", "-o", "mode"}), (Outcome{1, needs("mfnd-opertation", 't')}));
}

TEST_F(MfndOperation, DebugShowsTheWords)
{
    dbg_enable = 1;
    machine.expect(set(0x11));
    EXPECT_EQ(unlisted({"mfnd-opertation", "-a", "set", "-o", "privilege", "-t", "admin"}),
              (Outcome{0, "CDW[0] : 0x00000009\nCDW[10]: 0x000000d1\nCDW[11]: 0x00000011\n"}));
}

class MfndProperties : public MfndTest {
protected:
    static Command set(const Bytes& properties)
    {
        return sent(9, 0xD2, 0xC01).word(11, 1).sends(padded(properties, 4096));
    }
    static Bytes properties(QRX_U32 ms, QRX_U8 lbads, QRX_U8 dps, QRX_U8 nmic)
    {
        Bytes bytes(5);
        putNumber(bytes, 0, 2, ms);
        bytes[2] = lbads;
        bytes[3] = dps;
        bytes[4] = nmic;
        return bytes;
    }
};

TEST_F(MfndProperties, Help)
{
    EXPECT_EQ(unlisted({"mfnd-properties"}), (Outcome{1, kPropertiesPage}));
    EXPECT_EQ(unlisted({"mfnd-properties", "-h"}), (Outcome{0, kPropertiesPage}));
    EXPECT_EQ(unlisted({"mfnd-properties", "-x"}), (Outcome{0, "", "", "mfnd-properties: illegal option -- x\n"}));
}

TEST_F(MfndProperties, ShowsTheBlockUnderLabelsOfWhichThreeAreAlike)
{
    machine.expect(fills(10, 0xD2).data(padded(properties(0xFEDC, 12, 0xFD, 0xFB), 4096, 0xEE)));
    EXPECT_EQ(
        unlisted({"mfnd-properties", "-a", "Get"}),
        (Outcome{0, "Namespace properties:\n" + row(20, "Metadata Size:", "65244") + row(20, "LBA Data Size:", "12") +
                        row(20, "Metadata Size:", "253") + row(20, "Metadata Size:", "251")}));
}

TEST_F(MfndProperties, SetsThem)
{
    machine.expect(set(properties(0x1234, 0x56, 0x78, 0x9A)));
    EXPECT_EQ(unlisted({"mfnd-properties", "-a", "set", "-0", "0x1234", "-1", "0x56", "-2", "0x78", "-3", "0x9a"}),
              (Outcome{0, ""}));
    machine.expect(set(properties(8, 9, 3, 255)));
    EXPECT_EQ(unlisted({"mfnd-properties", "--action=set", "--ms=8", "--lbads", "9", "--dps=3", "--nmic", "255"}),
              (Outcome{0, ""}));
    machine.expect(set(properties(0, 12, 0, 1)));
    EXPECT_EQ(unlisted({"mfnd-properties", "-a", "set", "-1", "12", "-3", "1"}), (Outcome{0, ""}));
}

TEST_F(MfndProperties, FailuresGiveOne)
{
    machine.expect(fills(10, 0xD2).status(0x706));
    EXPECT_EQ(unlisted({"mfnd-properties", "-a", "get"}),
              (Outcome{1, "\nUnable to get child controller properties (Error Code: 0x706)\n",
                       "Invalid HD ID (Status Code: 0x706)\n"}));
    machine.expect(set(properties(0, 12, 0, 1)).status(0x706));
    EXPECT_EQ(unlisted({"mfnd-properties", "-a", "set", "-1", "12", "-3", "1"}),
              (Outcome{1, "\nUnable to set child controller properties (Error Code: 0x706)\n",
                       "Invalid HD ID (Status Code: 0x706)\n"}));
}

TEST_F(MfndProperties, RefusesBadNumbers)
{
    struct Case {
        const char* letter;
        std::string text;
        const char* tooHigh;
    };
    for (const Case& c :
         {Case{"-0", "--ms: Metadata size should be a decimal or hexadecimal", "0x10000"},
          Case{"-1", "--lbads: LBA data size should be a decimal or hexadecimal", "256"},
          Case{"-2", "--dps: Data protection type settings should be a decimal or hexadecimal", "256"},
          Case{"-3", "--nmic: Namesapce sharing capabilities should be a decimal or hexadecimal", "0x100"}}) {
        for (const char* word : {"x", "-1", "-0x1"}) {
            EXPECT_EQ(unlisted({"mfnd-properties", c.letter, word}), (Outcome{1, c.text + "\n"})) << word;
        }
        EXPECT_EQ(unlisted({"mfnd-properties", c.letter, c.tooHigh}), (Outcome{1, c.text + ", out of range\n"}));
    }
    EXPECT_EQ(unlisted({"mfnd-properties", "-a", "put"}), (Outcome{1, badAction("put")}));
}

// The word behind such an option is not its argument, so it must not pass for 0.
TEST_F(MfndProperties, ALongOptionWithoutItsArgumentIsRefused)
{
    EXPECT_EQ(unlisted({"mfnd-properties", "-a", "set", "--ms", "8", "-1", "9", "-3", "0"}),
              (Outcome{1, "--ms: Metadata size should be a decimal or hexadecimal\n"}));
    EXPECT_EQ(unlisted({"mfnd-properties", "-a", "set", "--dps", "8", "-1", "9", "-3", "0"}),
              (Outcome{1, "--dps: Data protection type settings should be a decimal or hexadecimal\n"}));
}

TEST_F(MfndProperties, RefusesDuplicatesThenWhatIsMissing)
{
    for (const char* letter : {"-0", "-1", "-2", "-3"}) {
        EXPECT_EQ(unlisted({"mfnd-properties", letter, "1", letter, "1"}), (Outcome{1, kDuplicate}));
    }
    EXPECT_EQ(unlisted({"mfnd-properties", "-a", "get", "-a", "get"}), (Outcome{1, kDuplicate}));
    EXPECT_EQ(unlisted({"mfnd-properties", "-1", "9", "-3", "0"}), (Outcome{1, needs("mfnd-properties", 'a')}));
    EXPECT_EQ(unlisted({"mfnd-properties", "-a", "set"}), (Outcome{1, needs("mfnd-properties", '1')}));
    EXPECT_EQ(unlisted({"mfnd-properties", "-a", "set", "-3", "1"}), (Outcome{1, needs("mfnd-properties", '1')}));
    EXPECT_EQ(unlisted({"mfnd-properties", "-a", "set", "-1", "9"}), (Outcome{1, needs("mfnd-properties", '3')}));
}

TEST_F(MfndProperties, DebugShowsTheWords)
{
    dbg_enable = 1;
    machine.expect(set(properties(0, 9, 0, 0)));
    EXPECT_EQ(unlisted({"mfnd-properties", "-a", "set", "-1", "9", "-3", "0"}),
              (Outcome{0, "CDW[0] : 0x00000009\nCDW[10]: 0x000000d2\nCDW[11]: 0x00000001\n"}));
}

}  // namespace
