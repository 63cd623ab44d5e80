// `mfnd-manage`.
#include <array>

#include "tests/unit/cli/unlisted/mfnd/mfnd_fixture.h"

namespace {

using namespace qrx::test;

const std::string kPage = helpOf(":For MFND management", mfnd_manage_help);
const std::string kSuccess = "mfnd_manage command success.\n";

class MfndManage : public MfndTest {
protected:
    static Command manage(QRX_U32 cdw10, const Bytes& entry = {})
    {
        return sent(0xD1, cdw10).sends(padded(entry, 4096));
    }
};

TEST_F(MfndManage, Help)
{
    EXPECT_EQ(unlisted({"mfnd-manage"}), (Outcome{1, kPage}));
    EXPECT_EQ(unlisted({"mfnd-manage", "-h"}), (Outcome{0, kPage}));
    EXPECT_EQ(unlisted({"mfnd-manage", "-s", "0", "--help"}), (Outcome{0, kPage}));
}

TEST_F(MfndManage, TheHelpNamesTwoOptionsByNamesTheyDoNotHave)
{
    const std::string help = mfnd_manage_help;
    EXPECT_NE(help.find("--RRBIM"), std::string::npos);
    EXPECT_NE(help.find("--RWBIM"), std::string::npos);
    EXPECT_EQ(help.find("--PRBIM"), std::string::npos);
    EXPECT_EQ(help.find("--PWBIM"), std::string::npos);
    EXPECT_EQ(unlisted({"mfnd-manage", "--RRBIM", "1"}).err, "mfnd-manage: unrecognized option `--RRBIM'\n");
}

TEST_F(MfndManage, AnUnknownOptionEndsIt)
{
    EXPECT_EQ(unlisted({"mfnd-manage", "-j"}), (Outcome{0, "", "", "mfnd-manage: illegal option -- j\n"}));
}

TEST_F(MfndManage, TheSelectorAndTheChildGoIntoOneWord)
{
    machine.expect(manage(0x00000003));
    EXPECT_EQ(unlisted({"mfnd-manage", "-s", "0"}), (Outcome{0, kSuccess}));
    machine.expect(manage(0x00123403));
    EXPECT_EQ(unlisted({"mfnd-manage", "-s", "0", "-i", "0x1234"}), (Outcome{0, kSuccess}));
    machine.expect(manage(0x01123403));
    EXPECT_EQ(unlisted({"mfnd-manage", "--SEL=1", "--CCID=4660"}), (Outcome{0, kSuccess}));
    machine.expect(manage(0x02FFFF03));
    EXPECT_EQ(unlisted({"mfnd-manage", "-s", "0x2", "-i", "0xFFFF"}), (Outcome{0, kSuccess}));
}

TEST_F(MfndManage, ResetTellsTheNumberOfChildControllersCutToEightBits)
{
    machine.expect(manage(0x03000003).word(11, 0x34));
    EXPECT_EQ(unlisted({"mfnd-manage", "-s", "3", "-c", "0x1234"}), (Outcome{0, kSuccess}));
    machine.expect(manage(0x03567803).word(11, 7));
    EXPECT_EQ(unlisted({"mfnd-manage", "-s", "3", "--CPFC", "7", "-i", "0x5678"}), (Outcome{0, kSuccess}));
}

TEST_F(MfndManage, TheCountIsSentByResetAlone)
{
    machine.expect(manage(0x00000003));
    EXPECT_EQ(unlisted({"mfnd-manage", "-s", "0", "-c", "7"}), (Outcome{0, kSuccess}));
}

TEST_F(MfndManage, EachSelectorHasItsRequiredOption)
{
    EXPECT_EQ(unlisted({"mfnd-manage", "-i", "1"}), (Outcome{0, needs("mfnd-manage", 's')}));
    EXPECT_EQ(unlisted({"mfnd-manage", "-s", "1"}), (Outcome{0, needs("mfnd-manage", 'i')}));
    EXPECT_EQ(unlisted({"mfnd-manage", "-s", "2"}), (Outcome{0, needs("mfnd-manage", 'i')}));
    EXPECT_EQ(unlisted({"mfnd-manage", "-s", "3", "-f", "0"}), (Outcome{0, needs("mfnd-manage", 'c')}));
    EXPECT_EQ(unlisted({"mfnd-manage", "--output", "x"}), (Outcome{0, needs("mfnd-manage", 's')}));
}

TEST_F(MfndManage, HigherSelectorsAreRefusedOnStandardOutput)
{
    EXPECT_EQ(unlisted({"mfnd-manage", "-s", "4"}), (Outcome{0, "", "SEL is not support, sel=0x4\n"}));
    EXPECT_EQ(unlisted({"mfnd-manage", "-s", "15"}), (Outcome{0, "", "SEL is not support, sel=0xf\n"}));
}

TEST_F(MfndManage, TheSerialNumberHasUpToThirtySixBytes)
{
    const std::string longest = "0123456789abcdefghijklmnopqrstuvwxyz";
    Bytes entry(128);
    putText(entry, 2, longest);
    machine.expect(manage(3, entry));
    EXPECT_EQ(unlisted({"mfnd-manage", "-s", "0", "-k", longest}), (Outcome{0, kSuccess}));
    machine.expect(manage(3, entry));
    EXPECT_EQ(unlisted({"mfnd-manage", "-s", "0", "--SN", "\"" + longest + "\""}), (Outcome{0, kSuccess}));
    Bytes shorter(128);
    putText(shorter, 2, "a b");
    machine.expect(manage(3, shorter));
    EXPECT_EQ(unlisted({"mfnd-manage", "-s", "0", "-k", "a b"}), (Outcome{0, kSuccess}));
    for (const std::string& word : {longest + "!", std::string(5000, 'x')}) {
        EXPECT_EQ(unlisted({"mfnd-manage", "-s", "0", "-k", word}),
                  (Outcome{0, "-s : invalid length '" + word + "', the maximum size is 36 bytes.\n"}));
    }
    EXPECT_EQ(unlisted({"mfnd-manage", "-s", "0", "-k", "'x'"}),
              (Outcome{0, "", "Please use double quotation mark to include strings.\n"}));
}

// The entry of all options, of which `flag` lets some through.
Bytes wholeEntry(bool counts, bool qos)
{
    Bytes entry(128);
    putNumber(entry, 0, 2, 0x0102);
    putText(entry, 2, "SERIAL");
    if (counts) {
        putNumber(entry, 42, 2, 0x0304);
        putNumber(entry, 44, 2, 0x0506);
        putNumber(entry, 46, 2, 0x0708);
        putNumber(entry, 48, 4, 0x090A0B0C);
    }
    if (qos) {
        entry[64] = 0xFE;
        for (unsigned i = 0; i < 8; ++i) {
            putNumber(entry, 68 + 4 * i, 4, 0x11111111 + i);
        }
    }
    return entry;
}

TEST_F(MfndManage, TheFlagSaysWhichFieldsAreCopiedAndIsNotSentItself)
{
    struct Case {
        const char* flag;
        bool counts;
        bool qos;
    };
    for (const Case& c :
         {Case{"0", false, false}, Case{"1", true, false}, Case{"2", false, true}, Case{"3", true, true},
          Case{"4", false, false}, Case{"7", false, false}, Case{"0xFFFF", false, false}}) {
        machine.expect(manage(0x01999903, wholeEntry(c.counts, c.qos)));
        EXPECT_EQ(unlisted({"mfnd-manage", "-s", "1",          "-i", "0x9999",     "-f", c.flag,       "-l",
                            "0x0102",      "-k", "SERIAL",     "-z", "0x0304",     "-y", "0x0506",     "-x",
                            "0x0708",      "-w", "0x090A0B0C", "-v", "254",        "-u", "0x11111111", "-t",
                            "0x11111112",  "-r", "0x11111113", "-q", "0x11111114", "-p", "0x11111115", "-o",
                            "0x11111116",  "-n", "0x11111117", "-m", "0x11111118"}),
                  (Outcome{0, kSuccess}))
            << c.flag;
        machine.verify();
    }
}

TEST_F(MfndManage, WithoutAFlagTheIdAndTheSerialNumberAreCopied)
{
    machine.expect(manage(3, wholeEntry(false, false)));
    EXPECT_EQ(unlisted({"mfnd-manage", "-s", "0", "-l", "258", "-k", "SERIAL", "-z", "9", "-v", "1"}),
              (Outcome{0, kSuccess}));
}

TEST_F(MfndManage, ARefusalOfTheControllerIsTheResult)
{
    machine.expect(manage(0x02000103).status(2));
    EXPECT_EQ(unlisted({"mfnd-manage", "-s", "2", "-i", "1"}),
              (Outcome{2, "mfnd_manage command failed.(error code: 0x02)\n", kInvalidField}));
    machine.expect(manage(0x02000103).error(5));
    EXPECT_EQ(unlisted({"mfnd-manage", "-s", "2", "-i", "1"}),
              (Outcome{-1, "mfnd_manage command failed.(error code: 0xffffffff)\n",
                       "Unknown error (Status Code: 0xffffffff)\n"}));
}

// Rows of 16 bytes, each but the first with the index of the last byte in front of it.
std::string dumpOf(const Bytes& bytes)
{
    std::string text = "\n0000:";
    std::string letters;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        std::array<char, 32> piece{};
        (void)std::snprintf(piece.data(), piece.size(), "%02x ", bytes[i]);
        text += piece.data();
        letters += bytes[i] == 0 ? "" : std::string(1, static_cast<char>(bytes[i]));
        if (i % 16 == 15) {
            (void)std::snprintf(piece.data(), piece.size(), "\n%04x:", static_cast<unsigned>(i));
            text += "          " + letters + piece.data();
            letters.clear();
        }
    }
    return text + "End list\n";
}

TEST_F(MfndManage, DebugShowsTheWordsAndTheWholeBlock)
{
    dbg_enable = 1;
    Bytes block(4096);
    putText(block, 2, "AB");
    machine.expect(manage(3, block));
    EXPECT_EQ(unlisted({"mfnd-manage", "-s", "0", "-k", "AB"}),
              (Outcome{0, "CDW[0] : 0x000000d1\nCDW[10]: 0x00000003\n" + dumpOf(block) + kSuccess}));
    machine.expect(manage(0x03000003, block).word(11, 5));
    EXPECT_EQ(
        unlisted({"mfnd-manage", "-s", "3", "-c", "5", "-k", "AB"}),
        (Outcome{0, "CDW[0] : 0x000000d1\nCDW[10]: 0x03000003\nCDW[11]: 0x00000005\n" + dumpOf(block) + kSuccess}));
}

TEST_F(MfndManage, ABadValueEndsItBeforeADuplicateIsSeen)
{
    EXPECT_EQ(unlisted({"mfnd-manage", "-z", "1", "-z", "x"}), (Outcome{0, "-z : it should be a number\n"}));
    EXPECT_EQ(unlisted({"mfnd-manage", "-k", "x", "-k", "y"}), (Outcome{1, kDuplicate}));
}

// One option with a number: where it goes, and what is said of one that it does not take.
struct Option {
    char letter;
    const char* name;
    std::string subject;  // "%s should be a number"
    std::string noun;     // "invalid %s"
    long below;           // 0: any
    const char* flag;     // that lets it through
    std::size_t at;       // in the block; 0 and no size: not there
    std::size_t size;
};

const Option kOptions[] = {
    {'s', "SEL", "SEL", "SEL", 16, "0", 0, 0},
    {'i', "CCID", "CCID", "CCID", 0x10000, "0", 0, 0},
    {'c', "CPFC", "CPFC", "CPFC", 0x10000, "0", 0, 0},
    {'f', "FLAG", "flag", "flag", 0x10000, "0", 0, 0},
    {'z', "IOQPC", "it", "parameter", 0x10000, "1", 42, 2},
    {'y', "MMCC", "it", "parameter", 0x10000, "1", 44, 2},
    {'x', "NC", "it", "parameter", 0x10000, "1", 46, 2},
    {'w', "SPUC", "it", "parameter", 0, "1", 48, 4},
    {'v', "QP", "it", "parameter", 256, "2", 64, 1},
    {'u', "PRBIM", "it", "parameter", 0, "2", 68, 4},
    {'t', "PWBIM", "it", "parameter", 0, "2", 72, 4},
    {'r', "LRBIM", "it", "parameter", 0, "2", 76, 4},
    {'q', "LWBIM", "it", "parameter", 0, "2", 80, 4},
    {'p', "RRRI", "it", "parameter", 0, "2", 84, 4},
    {'o', "RRWI", "it", "parameter", 0, "2", 88, 4},
    {'n', "LRRI", "it", "parameter", 0, "2", 92, 4},
    {'m', "LRWI", "it", "parameter", 0, "2", 96, 4},
    {'l', "CCPEC", "it", "parameter", 0x10000, "0", 0, 2},
};

class MfndManageOption : public MfndManage, public testing::WithParamInterface<Option> {
protected:
    [[nodiscard]] std::string letter() const { return {'-', GetParam().letter}; }
};

TEST_P(MfndManageOption, TakesNumbersInItsRange)
{
    const Option& option = GetParam();
    if (option.size == 0) {
        return;  // the words of the command have tests of their own
    }
    const auto stores = [&](const std::string& word, QRX_U32 value) {
        for (const bool byName : {false, true}) {
            Bytes entry(128);
            putNumber(entry, option.at, option.size, value);
            machine.expect(manage(3, entry));
            EXPECT_EQ(unlisted({"mfnd-manage", "-s", "0", "-f", option.flag,
                                byName ? std::string("--") + option.name : letter(), word}),
                      (Outcome{0, kSuccess}))
                << word;
            machine.verify();
        }
    };
    stores("0", 0);
    stores("", 0);
    stores("010", 10);
    stores("0x10", 16);
    stores("7", 7);
    if (option.below != 0) {
        stores(std::to_string(option.below - 1), static_cast<QRX_U32>(option.below - 1));
    } else {
        stores("0x12345678", 0x12345678);
        stores("2147483647", 0x7FFFFFFF);
        stores("0xFFFFFFFF", 0x7FFFFFFF);  // they saturate
        stores("99999999999", 0x7FFFFFFF);
    }
}

TEST_P(MfndManageOption, RefusesWhatIsNoNumberBelowZeroOrTooHigh)
{
    const Option& option = GetParam();
    for (const char* word : {"x", "-1", "1.5", "12a", " 1"}) {
        EXPECT_EQ(unlisted({"mfnd-manage", letter(), word}),
                  (Outcome{0, letter() + " : " + option.subject + " should be a number\n"}))
            << word;
    }
    for (const char* word : {"-0x1", "-0xFFFFFFFFFF"}) {
        EXPECT_EQ(unlisted({"mfnd-manage", letter(), word}),
                  (Outcome{0, "invalid " + option.noun + " '" + word + "'\n"}));
    }
    if (option.below != 0) {
        for (const std::string& word :
             {std::to_string(option.below), std::string("0x10000"), std::string("0xFFFFFFFFF")}) {
            EXPECT_EQ(unlisted({"mfnd-manage", letter(), word}),
                      (Outcome{0, "invalid " + option.noun + " '" + word + "', out of range\n"}));
        }
    }
}

TEST_P(MfndManageOption, ComesOnce)
{
    const std::string word = std::string("--") + GetParam().name;
    EXPECT_EQ(unlisted({"mfnd-manage", letter(), "1", word, "1"}), (Outcome{1, kDuplicate}));
}

INSTANTIATE_TEST_SUITE_P(All, MfndManageOption, testing::ValuesIn(kOptions),
                         [](const auto& one) { return std::string(one.param.name); });

}  // namespace
