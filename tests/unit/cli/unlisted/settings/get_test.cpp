// The earlier `get`.
#include "api/src/interface/wire/vd.h"
#include "cli/Functions/storage/config.h"
#include "tests/unit/cli/typed_fixture.h"

namespace {

using namespace qrx::test;

const std::string kOnMedium =
    "Auto Rebuild:            on\n"
    "BGA Rate:                Medium\n\n";
const std::string kOffLow =
    "Auto Rebuild:            off\n"
    "BGA Rate:                Low\n\n";

class EarlierGet : public TypedTest {
protected:
    static Bytes settings(QRX_U8 autoRebuild, QRX_U8 rate)
    {
        return bytesOf(NVME_Adapter_Config{.AutoRebuildOn = autoRebuild, .BGARate = rate});
    }
    static NVME_VD_Config vd(QRX_U16 id, const char* name)
    {
        NVME_VD_Config config{.ID = id};
        for (std::size_t i = 0; name[i] != '\0'; ++i) {
            config.Name[i] = static_cast<QRX_U8>(name[i]);
        }
        return config;
    }
};

TEST_F(EarlierGet, Help)
{
    const std::string page = helpPage(get_sh, get_help);
    EXPECT_EQ(unlisted({"get"}), (Outcome{1, page}));
    EXPECT_EQ(unlisted({"get", "-h"}), (Outcome{0, page}));
    EXPECT_EQ(unlisted({"get", "-o", "vd", "--help"}), (Outcome{0, page}));
}

TEST_F(EarlierGet, EachControllerShowsItsOwnSettingsOnce)
{
    other.expect({224, 1}, {}, settings(1, 2));
    pair.expect({224, 1}, {}, settings(2, 32));
    EXPECT_EQ(unlisted({"get", "-o", "hba"}), (Outcome{0, kOnMedium + kOffLow}));
}

TEST_F(EarlierGet, OfAControllerNamedAtStartOnlyItsOwn)
{
    gSpecificAdapterFlag = 1;
    pair.expect({224, 1}, {}, settings(0, 32));
    EXPECT_EQ(unlisted({"get", "--object", "HBA"}), (Outcome{0, kOffLow}));
}

TEST_F(EarlierGet, TheFirstControllerThatDoesNotAnswerEndsIt)
{
    other.expect({224, 1}, {}, settings(1, 2), 0x45);
    EXPECT_EQ(unlisted({"get", "-o", "hba"}), (Outcome{0x45, "\nUnable to get configuration of NVMe Controller\n"}));
    other.expect({224, 1}, {}, settings(1, 2));
    pair.expect({224, 1}, {}, settings(0, 32), 0x99);
    EXPECT_EQ(unlisted({"get", "-o", "hba"}),
              (Outcome{0x99, kOnMedium + "\nUnable to get configuration of NVMe Controller\n"}));
}

TEST_F(EarlierGet, AControllerTakesNoId)
{
    const Outcome refused{1, "'-o hba' does not support '-i' action\n"};
    EXPECT_EQ(unlisted({"get", "-o", "hba", "-i", "0"}), refused);
    EXPECT_EQ(unlisted({"get", "-i", "99", "-o", "hba"}), refused);
}

TEST_F(EarlierGet, OneVd)
{
    for (const char* word : {"vd", "ld", "VD"}) {
        pair.expect({226, 1}, header(0x0305), listed(vd(0x0177, "ABCDEFGHIJKLMNOP")));
        EXPECT_EQ(unlisted({"get", "-o", word, "--id=773"}),
                  (Outcome{0,
                           "virtual disk id:         375\n"
                           "Name:                    ABCDEFGHIJKLMNOP\n\n"}));
    }
    pair.expect({226, 1}, header(255), listed(vd(255, "")));
    EXPECT_EQ(unlisted({"get", "-o", "vd", "-i", "255"}), (Outcome{0,
                                                                   "virtual disk id:         255\n"
                                                                   "Name:                    \n\n"}));
}

TEST_F(EarlierGet, AVdThatDoesNotAnswer)
{
    pair.expect({226, 1}, header(4), {}, 7);
    EXPECT_EQ(unlisted({"get", "-o", "vd", "-i", "4"}), (Outcome{7, "\nUnable to get configuration of vd 4\n"}));
    g_oneBaseMode = 1;
    pair.expect({226, 1}, header(3), {}, 7);
    EXPECT_EQ(unlisted({"get", "-o", "vd", "-i", "4"}), (Outcome{7, "\nUnable to get configuration of vd 4\n"}));
}

TEST_F(EarlierGet, EveryVdThatThereCanBeIsAskedFor)
{
    current().MaxVD = 3;
    pair.expect({226, 1}, header(0), {}, 7);
    pair.expect({226, 1}, header(1), listed(vd(1, "ONE")));
    pair.expect({226, 1}, header(2), listed(vd(2, "T W_O")));
    EXPECT_EQ(unlisted({"get", "-o", "vd"}), (Outcome{0,
                                                      "virtual disk id:         1\n"
                                                      "Name:                    ONE\n\n"
                                                      "virtual disk id:         2\n"
                                                      "Name:                    T W_O\n\n"}));
    g_oneBaseMode = 1;
    current().MaxVD = 1;
    pair.expect({226, 1}, header(0), listed(vd(0, "ZERO")));
    EXPECT_EQ(unlisted({"get", "-o", "ld"}), (Outcome{0,
                                                      "virtual disk id:         1\n"
                                                      "Name:                    ZERO\n\n"}));
}

TEST_F(EarlierGet, NoVdAtAll)
{
    current().MaxVD = 2;
    pair.expect({226, 1}, header(0), {}, 7);
    pair.expect({226, 1}, header(1), {}, 1);
    EXPECT_EQ(unlisted({"get", "-o", "vd"}), (Outcome{0, "No virtual disk is found.\n"}));
    current().MaxVD = 0;
    EXPECT_EQ(unlisted({"get", "-o", "vd"}), (Outcome{0, "No virtual disk is found.\n"}));
}

TEST_F(EarlierGet, ANameOfTheDeviceIsPrintable)
{
    pair.expect({226, 1}, header(0), listed(vd(0, "A\x1B[2J")));
    EXPECT_EQ(unlisted({"get", "-o", "vd", "-i", "0"}).stream,
              "virtual disk id:         0\nName:                    A?[2J\n\n");
}

TEST_F(EarlierGet, BadOptions)
{
    EXPECT_EQ(unlisted({"get", "-o", "pd"}),
              (Outcome{1, "-o : invalid object 'pd', should be VD or NVMe Controller\n"}));
    EXPECT_EQ(unlisted({"get", "-i", "1x"}), (Outcome{1, "-i : id is not a number\n"}));
    EXPECT_EQ(unlisted({"get", "-z"}), (Outcome{1, "", "", "get: illegal option -- z\n"}));
    g_oneBaseMode = 1;
    EXPECT_EQ(unlisted({"get", "-i", "0"}), (Outcome{1, "-i : invalid id '0'\n"}));
}

TEST_F(EarlierGet, DuplicateAndMissingOptions)
{
    for (auto words : {Line{"get", "-o", "vd", "-o", "vd"}, Line{"get", "-i", "1", "-i", "1"}}) {
        EXPECT_EQ(unlisted(words), (Outcome{1, "Duplicated option specified.\n"}));
    }
    EXPECT_EQ(unlisted({"get", "-i", "1"}), (Outcome{1, "get: option -o is required\n"}));
}

TEST_F(EarlierGet, WithoutRaidTheLengthOfTheRefusalIsReturned)
{
    runAsJbof();
    for (auto words : {Line{"get", "-o", "hba"}, Line{"get", "-o", "hba", "-i", "0"}, Line{"get", "-o", "vd"}}) {
        EXPECT_EQ(unlisted(words), (Outcome{34, "This feature is not support JBOF.\n"}));
    }
}

}  // namespace
