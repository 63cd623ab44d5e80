// The earlier `import`.
#include "cli/Functions/storage/import.h"

#include "api/src/interface/wire/vd.h"
#include "tests/unit/cli/typed_fixture.h"

namespace {

using namespace qrx::test;

class EarlierImport : public TypedTest {
protected:
    static void expectVd(PairScript& script, QRX_U16 id, QRX_U8 importable)
    {
        script.expect({226, 0}, header(id), listed(NVME_VD_Info{.ID = 0x77, .Importable = importable}));
    }
};

TEST_F(EarlierImport, Help)
{
    const std::string page = helpPage(import_sh, import_help);
    EXPECT_EQ(unlisted({"import"}), (Outcome{1, page}));
    EXPECT_EQ(unlisted({"import", "-h"}), (Outcome{0, page}));
    EXPECT_EQ(unlisted({"import", "-l", "0", "--help"}), (Outcome{0, page}));
}

TEST_F(EarlierImport, AnImportableVdIsImported)
{
    expectVd(pair, 0x0305, 1);
    pair.expect({226, 6}, header(0x0305), {});
    EXPECT_EQ(unlisted({"import", "-l", "773"}),
              (Outcome{0, "VD 773 import successfully. Please shutdown and power on the system.\n"}));
    g_oneBaseMode = 1;  // ids are not shifted
    expectVd(pair, 0, 1);
    pair.expect({226, 6}, header(0), {});
    EXPECT_EQ(unlisted({"import", "--vd_id=0"}),
              (Outcome{0, "VD 0 import successfully. Please shutdown and power on the system.\n"}));
}

TEST_F(EarlierImport, IntoAnotherController)
{
    expectVd(other, 4, 1);
    other.expect({226, 6}, header(4), {});
    g_oneBaseMode = 1;
    EXPECT_EQ(unlisted({"import", "--id=0", "-l", "4"}),
              (Outcome{0, "VD 4 import successfully. Please shutdown and power on the system.\n"}));
}

TEST_F(EarlierImport, WhatIsNotImportableIsLeft)
{
    for (const QRX_U8 importable : Bytes{0, 2, 255}) {
        expectVd(pair, 6, importable);
        EXPECT_EQ(unlisted({"import", "-l", "6"}), (Outcome{0, "\nVD 6 is not importable.\n"}));
    }
    pair.expect({226, 0}, header(6), listed(NVME_VD_Info{.Importable = 1}), 7);
    EXPECT_EQ(unlisted({"import", "-l", "6"}), (Outcome{0, "\nUnable to get info of VD\n"}));
}

TEST_F(EarlierImport, AFailedImportIsToldAndReturnsZero)
{
    g_oneBaseMode = 1;
    expectVd(pair, 6, 1);
    pair.expect({226, 6}, header(6), {}, 0x3A);
    EXPECT_EQ(unlisted({"import", "-l", "6"}), (Outcome{0, "\nFail to import VD 6.\n"}));
}

TEST_F(EarlierImport, RaidAndImportAreBothNeeded)
{
    const Outcome refused{0, "Importable not support or parameters error.\n"};
    runAsJbof();
    EXPECT_EQ(unlisted({"import", "-l", "0"}), refused);
    current().Features = kFeatureRaid | kFeatureNamespace;
    EXPECT_EQ(unlisted({"import", "-l", "0"}), refused);
    current().Features = 0;
    EXPECT_EQ(unlisted({"import", "-l", "0"}), refused);
    expectVd(other, 0, 0);  // those of the controller that is named count
    EXPECT_EQ(unlisted({"import", "-i", "0", "-l", "0"}), (Outcome{0, "\nVD 0 is not importable.\n"}));
}

TEST_F(EarlierImport, BadOptions)
{
    EXPECT_EQ(unlisted({"import", "-i", "x"}), (Outcome{1, "-i : invalid NVMe Controller id 'x'\n"}));
    EXPECT_EQ(unlisted({"import", "-i", "2"}), (Outcome{1, "NVMe Controller 2 does not exist.\n"}));
    EXPECT_EQ(unlisted({"import", "-l", "1x"}), (Outcome{1, "-l : invalid VD ID '1x'\n"}));
    EXPECT_EQ(unlisted({"import", "-l", "65536"}), (Outcome{1, "-l : invalid VD ID '65536'\n"}));
    EXPECT_EQ(unlisted({"import", "-l", "99999999999"}), (Outcome{1, "-l : invalid VD ID '99999999999'\n"}));
    EXPECT_EQ(unlisted({"import", "-p", "1"}), (Outcome{1, "", "", "import: illegal option -- p\n"}));
    EXPECT_EQ(unlisted({"import", "-i", "1", "-i", "1"}), (Outcome{1, "Duplicated option specified.\n"}));
    EXPECT_EQ(unlisted({"import", "-i", "1"}), (Outcome{1, "import: option -l is required\n"}));
}

TEST_F(EarlierImport, OfARepeatedVdTheLastOneStands)
{
    expectVd(pair, 65535, 0);
    EXPECT_EQ(unlisted({"import", "-l", "4", "-l", "65535"}), (Outcome{0, "\nVD 65535 is not importable.\n"}));
    expectVd(pair, 5, 0);
    EXPECT_EQ(unlisted({"import", "-l", "4", "-l", "5"}), (Outcome{0, "\nVD 5 is not importable.\n"}));
}

}  // namespace
