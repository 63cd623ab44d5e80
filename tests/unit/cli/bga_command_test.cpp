// `init`, `mp` and `rebuild`.
#include "api/src/interface/wire/bga.h"
#include "cli/Functions/simple/simple_bga.h"
#include "tests/unit/cli/storage_fixture.h"

namespace {

using namespace qrx::test;

const Outcome kDone{0, "cmd success\n"};
const Outcome kNothing{0, ""};

class BgaCommands : public StorageTest {
protected:
    static Command start(QRX_U32 cdw12, QRX_U32 cdw14) { return plain(cdw12, 0x5001).word(14, cdw14); }
    static Command stop(QRX_U32 id) { return plain(0x04E3, 0x5001).word(14, id | 3U << 16); }
    static Command question(QRX_U32 id) { return page(0x02E3, 0x5001).word(14, id); }
    static Command answer(QRX_U32 id, QRX_U8 type)
    {
        // Neither the state nor the rest of the record is looked at.
        return question(id).data(envelope(NVME_BGA_STATUS{.BgaType = type, .ID = 99, .BgaStatus = 0}));
    }
};

TEST_F(BgaCommands, Help)
{
    const std::pair<const char*, const char*> kPages[] = {
        {"init", expected::kInitPage}, {"mp", expected::kMpPage}, {"rebuild", expected::kRebuildPage}};
    for (const auto& [word, text] : kPages) {
        EXPECT_EQ(command({word}), (Outcome{1, text}));
        EXPECT_EQ(command({word, "-h"}), (Outcome{0, text}));
        EXPECT_EQ(command({word, "-i", "0", "--help"}), (Outcome{0, text}));
    }
}

TEST_F(BgaCommands, StartIsTheDefault)
{
    machine.expect(start(0x06E3, 0x20000));
    EXPECT_EQ(command({"init", "-i", "0"}), kDone);
    machine.expect(start(0x0AE3, 0));
    EXPECT_EQ(command({"mp", "-i", "0"}), kDone);
    machine.expect(start(0x07E3, 0));
    EXPECT_EQ(command({"rebuild", "-i", "0"}), kDone);
    machine.expect(start(0x07E3, 0x50003));
    EXPECT_EQ(command({"rebuild", "-i", "3", "-d", "5"}), kDone);
}

TEST_F(BgaCommands, StartByName)
{
    machine.expect(start(0x06E3, 0x2ABCD));
    EXPECT_EQ(command({"init", "-a", "start", "-i", "43981"}), kDone);
    machine.expect(start(0x0AE3, 0xABCD));
    EXPECT_EQ(command({"mp", "--action", "START", "--vd_id=43981"}), kDone);
    machine.expect(start(0x07E3, 0x20001));
    EXPECT_EQ(command({"rebuild", "-a", "Start", "-i", "1", "--pd_id", "2"}), kDone);
}

TEST_F(BgaCommands, AnIdOfMoreThanSixteenBitsIsNotCut)
{
    machine.expect(start(0x06E3, 0x2FFFF));
    EXPECT_EQ(command({"init", "-i", "65535"}), kDone);
    machine.expect(start(0x07E3, 0xFFFF0001));
    EXPECT_EQ(command({"rebuild", "-i", "1", "-d", "65535"}), kDone);
    for (const std::string id : {"65536", "65540", "99999999999"}) {
        for (const std::string word : {"init", "mp", "rebuild"}) {
            EXPECT_EQ(command({word, "-i", id}), (Outcome{0, "-i : invalid vd id '" + id + "'.\n"}));
            EXPECT_EQ(command({word, "-a", "stop", "-i", id}), (Outcome{0, "-i : invalid vd id '" + id + "'.\n"}));
        }
        EXPECT_EQ(command({"rebuild", "-i", "0", "-d", id}), (Outcome{0, "-d : invalid pd id '" + id + "'.\n"}));
    }
    g_oneBaseMode = 1;
    machine.expect(start(0x07E3, 0xFFFFFFFF));
    EXPECT_EQ(command({"rebuild", "-i", "65536", "-d", "65536"}), kDone);
}

TEST_F(BgaCommands, ARebuildAskedForByNameNeedsItsPd)
{
    EXPECT_EQ(command({"rebuild", "-a", "start", "-i", "0"}), (Outcome{0, "rebuild: option -d is required\n"}));
}

TEST_F(BgaCommands, StopsWhatRuns)
{
    for (const QRX_U8 type : {QRX_NVME_BGA_TYPE_VD_INIT_QUICK, QRX_NVME_BGA_TYPE_VD_INIT_BACKGROUND}) {
        machine.expect(answer(7, type));
        machine.expect(stop(7));
        EXPECT_EQ(command({"init", "-a", "stop", "-i", "7"}), kDone);
    }
    machine.expect(answer(7, QRX_NVME_BGA_TYPE_VD_MEDIAPATROL));
    machine.expect(stop(7));
    EXPECT_EQ(command({"mp", "-a", "STOP", "-i", "7"}), kDone);
    machine.expect(answer(7, QRX_NVME_BGA_TYPE_VD_REBUILD));
    machine.expect(stop(7));
    EXPECT_EQ(command({"rebuild", "-a", "stop", "-i", "7", "-d", "9"}), kDone);
    machine.expect(answer(7, QRX_NVME_BGA_TYPE_VD_REBUILD));
    machine.expect(stop(7));
    EXPECT_EQ(command({"rebuild", "-a", "stop", "-i", "7"}), kDone);
}

TEST_F(BgaCommands, AStopOfAnotherKindIsRefused)
{
    struct Row {
        const char* word;
        QRX_U8 type;
        const char* text;
    };
    constexpr Row kRows[] = {
        {"init", 3, "BGA is rebuilding, it's not allowed to stop VD initialization\n"},
        {"init", 7, "BGA is doing media patrol, it's not allowed to stop VD initialization\n"},
        {"mp", 1, "BGA is doing VD initialization, it's not allowed to stop media patrol\n"},
        {"mp", 2, "BGA is doing VD initialization, it's not allowed to stop media patrol\n"},
        {"mp", 3, "BGA is rebuilding, it's not allowed to stop media patrol\n"},
        {"rebuild", 1, "BGA is doing VD initialization, it's not allowed to stop VD rebuild\n"},
        {"rebuild", 2, "BGA is doing VD initialization, it's not allowed to stop VD rebuild\n"},
        {"rebuild", 7, "BGA is doing media patrol, it's not allowed to stop VD rebuild\n"},
    };
    for (const Row& row : kRows) {
        machine.expect(answer(0, row.type));
        EXPECT_EQ(command({row.word, "-a", "stop", "-i", "0"}), (Outcome{0, row.text}));
    }
}

TEST_F(BgaCommands, AStopOfNothingSaysNothing)
{
    for (const char* word : {"init", "mp", "rebuild"}) {
        for (const QRX_U8 type : Bytes{0, 4, 5, 6, 8, 255}) {
            machine.expect(answer(0, type));
            EXPECT_EQ(command({word, "-a", "stop", "-i", "0"}), kNothing);
        }
    }
}

TEST_F(BgaCommands, AStateThatCannotBeReadStopsNothing)
{
    for (const char* word : {"init", "mp", "rebuild"}) {
        for (const QRX_U8 type : Bytes{2, 3, 7}) {
            machine.expect(question(4).data(envelope(NVME_BGA_STATUS{.BgaType = type}, 9)));
            EXPECT_EQ(command({word, "-a", "stop", "-i", "4"}), kNothing);
            machine.expect(answer(4, type).status(0x707));
            EXPECT_EQ(command({word, "-a", "stop", "-i", "4"}),
                      (Outcome{0, "", "Invalid LD ID (Status Code: 0x707)\n"}));
        }
    }
}

TEST_F(BgaCommands, TheSignatureOfTheStateIsNotTested)
{
    Bytes unsignedPage = envelope(NVME_BGA_STATUS{.BgaType = 3});
    unsignedPage[0] = '?';
    machine.expect(question(4).data(unsignedPage));
    machine.expect(stop(4));
    EXPECT_EQ(command({"rebuild", "-a", "stop", "-i", "4"}), kDone);
}

TEST_F(BgaCommands, TheGuardsByThemselves)
{
    machine.expect(answer(1, 1));
    EXPECT_TRUE(isValidInitBGAStatus(1));
    machine.expect(answer(2, 7));
    EXPECT_TRUE(isValidMPBGAStatus(2));
    machine.expect(answer(3, 3));
    EXPECT_TRUE(isValidRebuildBGAStatus(3));
    machine.expect(answer(3, 0));
    EXPECT_FALSE(isValidRebuildBGAStatus(3));
}

TEST_F(BgaCommands, BadValues)
{
    for (const char* word : {"init", "mp", "rebuild"}) {
        EXPECT_EQ(command({word, "-a", "pause"}), (Outcome{0, "-a : invalid action 'pause'.\n"}));
        EXPECT_EQ(command({word, "-i", "1x"}), (Outcome{0, "-i : invalid vd id '1x'.\n"}));
        EXPECT_EQ(command({word, "-z"}), (Outcome{0, "", "", std::string(word) + ": illegal option -- z\n"}));
        EXPECT_EQ(command({word, "-a", "stop"}), (Outcome{0, std::string(word) + ": option -i is required\n"}));
        EXPECT_EQ(command({word, "--id", "1"}),
                  (Outcome{0, "", "", std::string(word) + ": unrecognized option `--id'\n"}));
        for (auto words : {Line{word, "-i", "0", "-i", "0"}, Line{word, "-a", "stop", "-a", "stop"}}) {
            EXPECT_EQ(command(words), (Outcome{1, "Duplicated option specified.\n"}));
        }
    }
    EXPECT_EQ(command({"rebuild", "-d", "x"}), (Outcome{0, "-d : invalid pd id 'x'.\n"}));
    EXPECT_EQ(command({"init", "-d", "1"}), (Outcome{0, "", "", "init: illegal option -- d\n"}));
}

TEST_F(BgaCommands, OfARepeatedPdTheLastOneStands)
{
    machine.expect(start(0x07E3, 0x60001));
    EXPECT_EQ(command({"rebuild", "-i", "1", "-d", "5", "-d", "6"}), kDone);
}

TEST_F(BgaCommands, OneBasedIds)
{
    g_oneBaseMode = 1;
    for (const char* word : {"init", "mp", "rebuild"}) {
        EXPECT_EQ(command({word, "-i", "0"}), (Outcome{0, "-i : invalid vd id '0'.\n"}));
    }
    EXPECT_EQ(command({"rebuild", "-d", "0"}), (Outcome{0, "-i : invalid pd id '0'.\n"}));
    EXPECT_EQ(command({"rebuild", "-d", "x"}), (Outcome{0, "-d : invalid pd id 'x'.\n"}));
    machine.expect(start(0x07E3, 0x10002));
    EXPECT_EQ(command({"rebuild", "-i", "3", "-d", "2"}), kDone);
    machine.expect(start(0x07E3, 0x00002));
    EXPECT_EQ(command({"rebuild", "-i", "3"}), kDone);
    machine.expect(answer(0, 2));
    machine.expect(stop(0));
    EXPECT_EQ(command({"init", "-a", "stop", "-i", "1"}), kDone);
}

TEST_F(BgaCommands, JbofIsNotTested)
{
    runAsJbof();
    machine.expect(start(0x06E3, 0x20000));
    EXPECT_EQ(command({"init", "-i", "0"}), kDone);
}

TEST_F(BgaCommands, ARefusalPrintsItsTextAndIsReturned)
{
    machine.expect(start(0x0AE3, 1).status(0x733));
    EXPECT_EQ(command({"mp", "-i", "1"}),
              (Outcome{0x733, "cmd failed.\n", "LD is not redundant (Status Code: 0x733)\n"}));
    machine.expect(answer(1, 2));
    machine.expect(stop(1).error(5));
    EXPECT_EQ(command({"init", "-a", "stop", "-i", "1"}),
              (Outcome{-1, "cmd failed.\n", "Unknown error (Status Code: 0xffffffff)\n"}));
}

TEST_F(BgaCommands, DebugLines)
{
    dbg_enable = 1;
    machine.expect(start(0x07E3, 0x20001));
    EXPECT_EQ(command({"rebuild", "-a", "start", "-i", "1", "-d", "2"}).stream,
              "CDW[0] : 0x000000e2\nCDW[12]: 0x000007e3\nCDW[14]: 0x00020001\ncmd success\n");
    machine.expect(answer(1, 2));
    machine.expect(stop(1));
    EXPECT_EQ(command({"init", "-a", "stop", "-i", "1"}).stream,
              "CDW[0] : 0x000000e2\nCDW[12]: 0x000002e3\nCDW[14]: 0x00000001\n"
              "CDW[0] : 0x000000e2\nCDW[12]: 0x000004e3\nCDW[14]: 0x00030001\ncmd success\n");
}

}  // namespace
