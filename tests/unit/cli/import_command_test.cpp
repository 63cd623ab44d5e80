// `import`.
#include "api/src/interface/wire/vd.h"
#include "cli/Functions/simple/simple_import.h"
#include "tests/unit/cli/storage_fixture.h"

namespace {

using namespace qrx::test;

class ImportCommand : public StorageTest {
protected:
    static Command readVd(QRX_U32 id) { return page(0x00E2, 0x5001).word(14, id); }
    static Command vdAnswer(QRX_U32 id, QRX_U8 importable)
    {
        NVME_VD_Info vd{};
        vd.ID = 0x77;
        vd.Importable = importable;
        return readVd(id).data(envelope(vd));
    }
    static Command importVd(QRX_U32 id) { return plain(0x06E2, 0x5001).word(14, id); }
    static Command importTable(QRX_U32 pd, QRX_U32 table) { return plain(0x09E1, 0x5001).word(14, pd | table << 16); }
};

TEST_F(ImportCommand, Help)
{
    EXPECT_EQ(command({"import"}), (Outcome{1, expected::kImportPage}));
    EXPECT_EQ(command({"import", "-h"}), (Outcome{0, expected::kImportPage}));
    EXPECT_EQ(command({"import", "-l", "0", "--help"}), (Outcome{0, expected::kImportPage}));
}

TEST_F(ImportCommand, AnImportableVdIsImported)
{
    machine.expect(vdAnswer(0, 1));
    machine.expect(importVd(0));
    EXPECT_EQ(command({"import", "-l", "0"}), (Outcome{0, "VD 0 import successfully.\n"}));
    machine.expect(vdAnswer(0xABCD, 1));
    machine.expect(importVd(0xABCD));
    EXPECT_EQ(command({"import", "--ld_id", "43981"}), (Outcome{0, "VD 43981 import successfully.\n"}));
    g_oneBaseMode = 1;
    machine.expect(vdAnswer(3, 1));
    machine.expect(importVd(3));
    EXPECT_EQ(command({"import", "-l", "4"}), (Outcome{0, "VD 4 import successfully.\n"}));
}

TEST_F(ImportCommand, AVdThatIsNotImportableIsLeft)
{
    for (const QRX_U8 importable : Bytes{0, 2, 255}) {
        machine.expect(vdAnswer(6, importable));
        EXPECT_EQ(command({"import", "-l", "6"}), (Outcome{0, "\nVD 6 is not importable.\n"}));
    }
    g_oneBaseMode = 1;
    machine.expect(vdAnswer(5, 0));
    EXPECT_EQ(command({"import", "-l", "6"}), (Outcome{0, "\nVD 6 is not importable.\n"}));
}

TEST_F(ImportCommand, AVdThatCannotBeReadIsLeft)
{
    NVME_VD_Info vd{};
    vd.Importable = 1;
    machine.expect(readVd(6).data(envelope(vd, 7)));
    EXPECT_EQ(command({"import", "-l", "6"}), (Outcome{0, "\nUnable to get info of VD\n"}));
    machine.expect(readVd(6));
    EXPECT_EQ(command({"import", "-l", "6"}), (Outcome{0, "\nUnable to get info of VD\n"}));
    machine.expect(readVd(6).status(0x707));
    EXPECT_EQ(command({"import", "-l", "6"}),
              (Outcome{0, "\nUnable to get info of VD\n", "Invalid LD ID (Status Code: 0x707)\n"}));
}

TEST_F(ImportCommand, AFailedImportIsToldAndReturnsZero)
{
    machine.expect(vdAnswer(6, 1));
    machine.expect(importVd(6).status(0x73A));
    EXPECT_EQ(command({"import", "-l", "6"}),
              (Outcome{0, "\nFail to import VD 6.\n", "Import foreign (Status Code: 0x73a)\n"}));
    runAsJbof();
    machine.expect(importTable(0, 9).status(0x738));
    EXPECT_EQ(command({"import", "-l", "6", "-n", "9"}),
              (Outcome{0, "\nFail to import NS Table ID 9.\n", "Import no table (Status Code: 0x738)\n"}));
    g_oneBaseMode = 1;
    machine.expect(vdAnswer(5, 1).on(0));
    machine.expect(importVd(5).on(0).error(5));
    gCurrentAdapter = 0;
    EXPECT_EQ(command({"import", "-l", "6"}),
              (Outcome{0, "\nFail to import VD 6.\n", "Unknown error (Status Code: 0xffffffff)\n"}));
}

TEST_F(ImportCommand, WithoutRaidATableIsImported)
{
    runAsJbof();
    machine.expect(importTable(0, 0));
    EXPECT_EQ(command({"import", "-l", "8"}), (Outcome{0, "NS Table ID 0 import successfully.\n"}));
    machine.expect(importTable(3, 0x12));
    EXPECT_EQ(command({"import", "-l", "8", "-p", "3", "-n", "0x12"}),
              (Outcome{0, "NS Table ID 18 import successfully.\n"}));
    machine.expect(importTable(3, 12));
    EXPECT_EQ(command({"import", "--ld_id=8", "--pdid=3", "--nstableid=12"}),
              (Outcome{0, "NS Table ID 12 import successfully.\n"}));
    machine.expect(importTable(0xFFFF, 0xFFFF));
    EXPECT_EQ(command({"import", "-l", "8", "-p", "65535", "-n", "0xFFFF"}),
              (Outcome{0, "NS Table ID 65535 import successfully.\n"}));
}

TEST_F(ImportCommand, AnIdOfMoreThanSixteenBitsIsNotCut)
{
    for (const std::string id : {"65536", "65542", "99999999999"}) {
        EXPECT_EQ(command({"import", "-l", id}), (Outcome{1, "-l : invalid VD ID '" + id + "'\n"}));
        EXPECT_EQ(command({"import", "-p", id}), (Outcome{1, "-p : invalid PD ID '" + id + "'\n"}));
        EXPECT_EQ(command({"import", "-n", id}), (Outcome{1, "-n : invalid NS Table ID '" + id + "'\n"}));
    }
    for (const std::string id : {"0x10000", "0xFFFFFFFFFFF"}) {
        EXPECT_EQ(command({"import", "-n", id}), (Outcome{1, "-n : invalid NS Table ID '" + id + "'\n"}));
    }
}

TEST_F(ImportCommand, OneBasedTableIds)
{
    runAsJbof();
    g_oneBaseMode = 1;
    machine.expect(importTable(0, 255));
    EXPECT_EQ(command({"import", "-l", "1", "-p", "1", "-n", "0xff"}),
              (Outcome{0, "NS Table ID 256 import successfully.\n"}));
    machine.expect(importTable(1, 254));
    EXPECT_EQ(command({"import", "-l", "1", "-p", "2", "-n", "255"}),
              (Outcome{0, "NS Table ID 255 import successfully.\n"}));
    machine.expect(importTable(0, 0xF));
    EXPECT_EQ(command({"import", "-l", "1", "-n", "0x10"}), (Outcome{0, "NS Table ID 16 import successfully.\n"}));
    for (const char* word : {"0x00", "0", "zz0x5"}) {
        EXPECT_EQ(command({"import", "-l", "1", "-n", word}),
                  (Outcome{1, std::string("-n : invalid NS Table ID '") + word + "'\n"}));
    }
}

TEST_F(ImportCommand, BadValues)
{
    EXPECT_EQ(command({"import", "-i", "x"}), (Outcome{1, "-i : invalid NVMe Controller id 'x'\n"}));
    EXPECT_EQ(command({"import", "-i", "2"}), (Outcome{1, "NVMe Controller 2 does not exist.\n"}));
    EXPECT_EQ(command({"import", "-p", "1x"}), (Outcome{1, "-p : invalid PD ID '1x'\n"}));
    EXPECT_EQ(command({"import", "-n", "ff"}), (Outcome{1, "-n : invalid NS Table ID 'ff'\n"}));
    EXPECT_EQ(command({"import", "-n", "-0x1"}), (Outcome{1, "-n : invalid NS Table ID '-0x1'\n"}));
    EXPECT_EQ(command({"import", "-l", "-1"}), (Outcome{1, "-l : invalid VD ID '-1'\n"}));
    EXPECT_EQ(command({"import", "-z"}), (Outcome{1, "", "", "import: illegal option -- z\n"}));
    EXPECT_EQ(command({"import", "--ldid", "0"}), (Outcome{1, "", "", "import: unrecognized option `--ldid'\n"}));
    g_oneBaseMode = 1;
    EXPECT_EQ(command({"import", "-i", "0"}), (Outcome{1, "-i : invalid NVMe Controller id '0'\n"}));
    EXPECT_EQ(command({"import", "-p", "0"}), (Outcome{1, "-p : invalid PD ID '0'\n"}));
    EXPECT_EQ(command({"import", "-l", "0"}), (Outcome{1, "-l : invalid VD ID '0'\n"}));
}

TEST_F(ImportCommand, Duplicates)
{
    for (const char* letter : {"-i", "-p", "-n"}) {
        EXPECT_EQ(command({"import", letter, "1", letter, "1", "-l", "0"}),
                  (Outcome{1, "Duplicated option specified.\n"}));
    }
    machine.expect(vdAnswer(2, 0));
    EXPECT_EQ(command({"import", "-l", "1", "-l", "2"}), (Outcome{0, "\nVD 2 is not importable.\n"}));
}

TEST_F(ImportCommand, TheVdIsRequiredEvenWhereItIsNotUsed)
{
    runAsJbof();
    EXPECT_EQ(command({"import", "-p", "0", "-n", "0"}), (Outcome{1, "import: option -l is required\n"}));
}

TEST_F(ImportCommand, AControllerWithoutImportRefuses)
{
    current().Features = kFeatureRaid;
    EXPECT_EQ(command({"import", "-l", "0"}), (Outcome{0, "Importable not support or parameters error.\n"}));
    current().Features = 0;
    EXPECT_EQ(command({"import", "-l", "0"}), (Outcome{0, "Importable not support or parameters error.\n"}));
}

TEST_F(ImportCommand, TheControllerNamedDecidesButTheVdIsReadFromTheCurrentOne)
{
    current().Features = 0;
    machine.expect(vdAnswer(3, 1));
    machine.expect(importVd(3).on(0));
    EXPECT_EQ(command({"import", "-i", "0", "-l", "3"}), (Outcome{0, "VD 3 import successfully.\n"}));
    records[0].Features = kFeatureImport;
    machine.expect(importTable(4, 5).on(0));
    EXPECT_EQ(command({"import", "--id", "0", "-l", "3", "-p", "4", "-n", "5"}),
              (Outcome{0, "NS Table ID 5 import successfully.\n"}));
    g_oneBaseMode = 1;
    machine.expect(importTable(0, 0).on(0));
    EXPECT_EQ(command({"import", "-i", "1", "-l", "3"}), (Outcome{0, "NS Table ID 1 import successfully.\n"}));
}

TEST_F(ImportCommand, DebugLines)
{
    dbg_enable = 1;
    machine.expect(vdAnswer(6, 1));
    machine.expect(importVd(6));
    EXPECT_EQ(command({"import", "-l", "6"}).stream,
              "CDW[0] : 0x000000e2\nCDW[12]: 0x000006e2\nCDW[14]: 0x00000006\nVD 6 import successfully.\n");
    runAsJbof();
    machine.expect(importTable(2, 3));
    EXPECT_EQ(command({"import", "-l", "6", "-p", "2", "-n", "3"}).stream,
              "CDW[0] : 0x000000e2\nCDW[12]: 0x000009e1\nCDW[14]: 0x00030002\nNS Table ID 3 import successfully.\n");
}

}  // namespace
