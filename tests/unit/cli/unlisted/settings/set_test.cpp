// The earlier `set`.
#include "api/src/interface/wire/vd.h"
#include "cli/Functions/storage/config.h"
#include "tests/unit/cli/typed_fixture.h"

namespace {

using namespace qrx::test;

// What puts returns for a line of six letters.
constexpr int kErrorLine = 7;

Outcome badOption(const std::string& complaint)
{
    return {kErrorLine, complaint, "error!\n"};
}

class EarlierSet : public TypedTest {
protected:
    static Bytes settings(QRX_U8 autoRebuild, QRX_U8 rate)
    {
        NVME_Adapter_Config config{.AutoRebuildOn = autoRebuild, .BGARate = rate};
        const Bytes reserved = pattern(sizeof(config.Reserved));
        std::copy(reserved.begin(), reserved.end(), config.Reserved);
        return bytesOf(config);
    }
    // The record of a VD, with its name filled up with zeros or `filler`.
    static Bytes vd(const std::string& name, char filler = '\0')
    {
        NVME_VD_Config config{.ID = 0x0177};
        const Bytes reserved = pattern(sizeof(config.Reserved));
        std::copy(reserved.begin(), reserved.end(), config.Reserved);
        for (std::size_t i = 0; i < sizeof(config.Name); ++i) {
            config.Name[i] = static_cast<QRX_U8>(i < name.size() ? name[i] : filler);
        }
        return bytesOf(config);
    }
    static Bytes withHeader(QRX_U16 id, const Bytes& record) { return joined(header(id), record); }
    // An answer whose header asks for more records than came.
    static Bytes answered(const Bytes& record)
    {
        Bytes head = pattern(sizeof(RequestHeader));
        head[6] = 169;
        return joined(head, record);
    }
};

TEST_F(EarlierSet, Help)
{
    const std::string page = helpPage(set_sh, set_help);
    EXPECT_EQ(unlisted({"set"}), (Outcome{1, page}));
    EXPECT_EQ(unlisted({"set", "-h"}), (Outcome{0, page}));
    EXPECT_EQ(unlisted({"set", "-o", "hba", "--help"}), (Outcome{0, page}));
    EXPECT_EQ(unlisted({"set", "-c", "x"}), (Outcome{0, page}));
}

TEST_F(EarlierSet, WhatIsNotGivenIsWrittenAsItWasRead)
{
    const auto writes = [this](Line words, const Bytes& written) {
        pair.expect({224, 1}, {}, settings(0x55, 0x77));
        pair.expect({224, 2}, written, {});
        EXPECT_EQ(unlisted(words), (Outcome{0, "HBA configuration is updated.\n"}));
    };
    writes({"set", "-o", "hba", "-a", "on"}, settings(1, 0x77));
    writes({"set", "-o", "HBA", "-a", "OFF"}, settings(0, 0x77));
    writes({"set", "--object=hba", "--autorebuild=on", "--bgarate=low"}, settings(1, 32));
    writes({"set", "-o", "hba", "-r", "high"}, settings(0x55, 0));
    writes({"set", "-o", "hba", "-r", "Medium"}, settings(0x55, 2));
    writes({"set", "-o", "hba", "-a", "on", "-a", "off"}, settings(0, 0x77));  // a repeated -a is not counted
}

TEST_F(EarlierSet, NothingToChangeIsToldAfterTheRead)
{
    pair.expect({224, 1}, {}, settings(1, 2));
    EXPECT_EQ(unlisted({"set", "-o", "hba"}), (Outcome{0, "Invalid setting(s) for HBA\n"}));
}

TEST_F(EarlierSet, AControllerThatDoesNotAnswer)
{
    pair.expect({224, 1}, {}, {}, 0x45);
    EXPECT_EQ(unlisted({"set", "-o", "hba", "-a", "on"}), (Outcome{1, "\nUnable to get configuration info\n"}));
    pair.expect({224, 1}, {}, settings(1, 2));
    pair.expect({224, 2}, settings(1, 2), {}, 0x45);
    EXPECT_EQ(unlisted({"set", "-o", "hba", "-a", "on"}), (Outcome{1, "\nFailed to configure hba\n"}));
}

TEST_F(EarlierSet, WhatAControllerDoesNotTake)
{
    EXPECT_EQ(unlisted({"set", "-o", "hba", "-a", "on", "-n", "x", "-i", "1"}),
              (Outcome{1, "Invalid setting(s) for HBA\n"}));
    EXPECT_EQ(unlisted({"set", "-o", "hba", "-a", "on", "-i", "1"}),
              (Outcome{1, "'-o hba' does not support '-i' action\n"}));
}

TEST_F(EarlierSet, AVdGetsItsName)
{
    for (const char* word : {"vd", "ld", "Vd"}) {
        pair.expect({226, 1}, header(0x0305), answered(vd("OLD AND LONG ONE")));
        pair.expect({226, 2}, withHeader(0x0305, vd("N_1 x")), {});
        EXPECT_EQ(unlisted({"set", "-o", word, "-i", "773", "-n", "N_1 x"}),
                  (Outcome{0, "VD configuration is updated.\n"}));
    }
    pair.expect({226, 1}, header(0), answered(vd("OLD", '!')));
    pair.expect({226, 2}, withHeader(0, vd("ABCDEFG IJKLMNOP")), {});
    EXPECT_EQ(unlisted({"set", "--object=vd", "--id=0", "--name=\"ABCDEFG IJKLMNOP\""}),
              (Outcome{0, "VD configuration is updated.\n"}));
    pair.expect({226, 1}, header(0), answered(vd("OLD")));
    pair.expect({226, 2}, withHeader(0, vd("")), {});
    EXPECT_EQ(unlisted({"set", "-o", "vd", "-i", "0", "-n", ""}), (Outcome{0, "VD configuration is updated.\n"}));
}

TEST_F(EarlierSet, WithoutANameTheRecordGoesBackAsItCame)
{
    pair.expect({226, 1}, header(3), answered(vd("KEPT", '\x01')));
    pair.expect({226, 2}, withHeader(3, vd("KEPT", '\x01')), {});
    EXPECT_EQ(unlisted({"set", "-o", "vd", "-i", "3"}), (Outcome{0, "VD configuration is updated.\n"}));
}

TEST_F(EarlierSet, AVdThatDoesNotAnswer)
{
    pair.expect({226, 1}, header(3), {}, 7);
    EXPECT_EQ(unlisted({"set", "-o", "vd", "-i", "3", "-n", "X"}),
              (Outcome{1, "\nUnable to get configuration info of VD 3\n"}));
    g_oneBaseMode = 1;
    pair.expect({226, 1}, header(3), answered(vd("OLD")));
    pair.expect({226, 2}, withHeader(3, vd("X")), {}, 0x45);
    EXPECT_EQ(unlisted({"set", "-o", "vd", "-i", "4", "-n", "X"}), (Outcome{0x45, "\nFailed to configure VD 4\n"}));
}

TEST_F(EarlierSet, WhatAVdDoesNotTake)
{
    for (auto words :
         {Line{"set", "-o", "vd", "-i", "255", "-a", "on"}, Line{"set", "-o", "ld", "-i", "1", "-r", "low"}}) {
        EXPECT_EQ(unlisted(words), (Outcome{1, "Invalid setting(s) for VD\n"}));
    }
    EXPECT_EQ(unlisted({"set", "-o", "vd", "-i", "255"}), (Outcome{1, "Invalid virtual disk id :255.\n"}));
    g_oneBaseMode = 1;
    EXPECT_EQ(unlisted({"set", "-o", "vd", "-i", "256"}), (Outcome{1, "Invalid virtual disk id :256.\n"}));
}

TEST_F(EarlierSet, ABadOptionIsToldAndThenCalledAnError)
{
    EXPECT_EQ(unlisted({"set", "-o", "pd"}), badOption("-o : invalid object 'pd'\n"));
    EXPECT_EQ(unlisted({"set", "-i", "-1"}), badOption("-i : invalid id '-1'\n"));
    EXPECT_EQ(unlisted({"set", "-r", "fast"}), badOption("-r : invalid BGA rate 'fast'\n"));
    EXPECT_EQ(unlisted({"set", "-a", "maybe"}), badOption("-c : invalid auto rebuild mode 'maybe'\n"));
    EXPECT_EQ(unlisted({"set", "-n", "ABCDEFGHIJKLMNOPQ"}),
              badOption("-n : length of name should be no more than 16 characters\n"));
    EXPECT_EQ(unlisted({"set", "-n", "'x'"}),
              (Outcome{kErrorLine, "", "Please use double quotation mark to include strings.\nerror!\n"}));
    EXPECT_EQ(unlisted({"set", "-z"}), (Outcome{kErrorLine, "", "error!\n", "set: illegal option -- z\n"}));
    g_oneBaseMode = 1;
    EXPECT_EQ(unlisted({"set", "-i", "0"}), badOption("-i : invalid id '0'\n"));
}

TEST_F(EarlierSet, DuplicateAndMissingOptions)
{
    for (auto words : {Line{"set", "-o", "vd", "-o", "vd"}, Line{"set", "-i", "1", "-i", "1"},
                       Line{"set", "-n", "x", "-n", "x"}, Line{"set", "-r", "low", "-r", "low"}}) {
        EXPECT_EQ(unlisted(words), (Outcome{1, "Duplicated option specified.\n"}));
    }
    EXPECT_EQ(unlisted({"set", "-a", "on"}), (Outcome{1, "set: option -i is required\n"}));
    EXPECT_EQ(unlisted({"set", "-o", "vd"}), (Outcome{1, "set: option -i is required\n"}));
    EXPECT_EQ(unlisted({"set", "-i", "1"}), (Outcome{1, "set: option -o is required\n"}));
}

TEST_F(EarlierSet, TheCharactersOfANameAreLookedAtBehindTheOptions)
{
    const Outcome refused{1, "-n, name must be numeric, character, space or underline. Now is a-b\n"};
    EXPECT_EQ(unlisted({"set", "-o", "vd", "-i", "255", "-n", "a-b", "-a", "on"}), refused);
    EXPECT_EQ(unlisted({"set", "-o", "hba", "-n", "a-b"}), refused);
    EXPECT_EQ(unlisted({"set", "-o", "vd", "-n", "a-b"}), (Outcome{1, "set: option -i is required\n"}));
    runAsJbof();
    EXPECT_EQ(unlisted({"set", "-o", "vd", "-i", "1", "-n", "a-b"}), refused);
}

TEST_F(EarlierSet, WithoutRaidTheLengthOfTheRefusalIsReturned)
{
    runAsJbof();
    for (auto words : {Line{"set", "-o", "hba", "-n", "x"}, Line{"set", "-o", "vd", "-i", "255"}}) {
        EXPECT_EQ(unlisted(words), (Outcome{34, "This feature is not support JBOF.\n"}));
    }
}

}  // namespace
