// The earlier `init`, `mp` and `rebuild`.
#include "cli/Functions/storage/bga.h"

#include <algorithm>

#include "api/src/interface/wire/bga.h"
#include "api/src/interface/wire/vd.h"
#include "tests/unit/cli/typed_fixture.h"

namespace {

using namespace qrx::test;

constexpr QRX_U8 kRefused = 0x45;

class EarlierBga : public TypedTest {
protected:
    // What is read first: a VD of this status and mode, on which this runs.
    void expectState(QRX_U16 id, const NVME_BGA_STATUS& activity = {}, QRX_U8 status = kVdFunctional,
                     QRX_U8 mode = kRaid1)
    {
        expectRecord(id, status, mode);
        pair.expect({227, 2}, header(id), listed(activity));
    }
    void expectRecord(QRX_U16 id, QRX_U8 status = kVdFunctional, QRX_U8 mode = kRaid1)
    {
        pair.expect({226, 0}, header(id), listed(NVME_VD_Info{.ID = 0x77, .Status = status, .RaidMode = mode}));
    }
    static NVME_BGA_STATUS running(QRX_U8 type, QRX_U8 status = QRX_NVME_BGA_STATUS_RUNNING)
    {
        return {.BgaType = type, .ID = 99, .Percentage = 98, .BgaStatus = status};
    }
    void expectAbort(QRX_U16 id, QRX_U8 cmd_status = 0) { pair.expect({227, 4, 3}, header(id), {}, cmd_status); }
    static Bytes word(QRX_U16 low, QRX_U16 high = 0)
    {
        return {static_cast<QRX_U8>(low & 0xFF),
                static_cast<QRX_U8>(low >> 8),
                static_cast<QRX_U8>(high & 0xFF),
                static_cast<QRX_U8>(high >> 8),
                0,
                0,
                0,
                0};
    }
};

TEST_F(EarlierBga, Help)
{
    const std::pair<const char*, std::string> kPages[] = {{"init", helpPage(init_sh, init_help)},
                                                          {"mp", helpPage(mp_sh, mp_help)},
                                                          {"rebuild", helpPage(rebuild_sh, rebuild_help)}};
    for (const auto& [name, text] : kPages) {
        EXPECT_EQ(unlisted({name}), (Outcome{1, text}));
        EXPECT_EQ(unlisted({name, "-h"}), (Outcome{0, text}));
        EXPECT_EQ(unlisted({name, "-i", "0", "--help"}), (Outcome{0, text}));
    }
}

TEST_F(EarlierBga, AnInitializationStarts)
{
    for (auto words : {Line{"init", "-i", "773"}, Line{"init", "-a", "start", "-i", "773"},
                       Line{"init", "--action=start", "--id=773"}}) {
        expectState(0x0305, {}, kVdOffline, kRaid0);  // neither is looked at
        pair.expect({227, 6}, word(0x0305, 2), {});
        EXPECT_EQ(unlisted(words), (Outcome{0, "Start initialization successfully\n"}));
    }
    expectState(1);
    pair.expect({227, 6}, word(1, 2), {}, kRefused);
    EXPECT_EQ(unlisted({"init", "-i", "1"}), (Outcome{kRefused, "\nUnable to start initialization on VD 1.\n"}));
}

TEST_F(EarlierBga, AMediaPatrolStarts)
{
    for (const QRX_U8 mode : {kRaid1, kRaid10}) {
        expectState(0x0305, running(7, 0), kVdFunctional, mode);  // a kind without a state does not count
        pair.expect({227, 10}, word(0x0305), {});
        EXPECT_EQ(unlisted({"mp", "--vdid=773"}), (Outcome{0, "Start media patrol successfully\n"}));
    }
    expectState(1);
    pair.expect({227, 10}, word(1), {}, kRefused);
    EXPECT_EQ(unlisted({"mp", "-a", "start", "-i", "1"}),
              (Outcome{kRefused, "\nFailed to start media patrol on VD 1\n"}));
}

TEST_F(EarlierBga, ARebuildStarts)
{
    for (auto words :
         {Line{"rebuild", "-i", "773", "-d", "258"}, Line{"rebuild", "-a", "start", "--id=773", "--pdid=258"}}) {
        expectState(0x0305, {}, kVdDegrade);
        pair.expect({227, 7}, word(0x0305, 0x0102), {});
        EXPECT_EQ(unlisted(words), (Outcome{0, "Start rebuild successfully\n"}));
    }
    expectState(1, {}, kVdDegrade);
    pair.expect({227, 7}, word(1, 2), {}, 6);
    EXPECT_EQ(unlisted({"rebuild", "-i", "1", "-d", "2"}),
              (Outcome{6, "\nUnable to start rebuild on VD 1 with PD 2 (error 0x6: Unknown error).\n"}));
}

TEST_F(EarlierBga, AStartNeedsAnIdleVd)
{
    for (const QRX_U8 type : Bytes{1, 2, 3, 4, 5, 6, 7, 255}) {
        expectState(1, running(type, 0));  // whatever its state
        EXPECT_EQ(unlisted({"init", "-i", "1"}), (Outcome{0, "\nVD 1 is currently having background activities.\n"}));
        expectState(1, running(type, 0));
        EXPECT_EQ(unlisted({"rebuild", "-i", "1", "-d", "2"}),
                  (Outcome{0, "\nVD 1 is currently having background activities.\n"}));
    }
    for (const QRX_U8 status : Bytes{1, 2, 255}) {
        expectState(1, running(0, status), kVdOffline, kRaid0);
        EXPECT_EQ(unlisted({"mp", "-i", "1"}), (Outcome{0, "\nVD 1 is currently having background activity.\n"}));
    }
}

TEST_F(EarlierBga, APatrolNeedsAFunctionalVd)
{
    for (const QRX_U8 status : Bytes{1, 4, 9, 10, 255}) {
        expectState(1, {}, status, kRaid0);
        EXPECT_EQ(unlisted({"mp", "-i", "1"}), (Outcome{1, "\nVD 1 is not an functional.\n"}));
    }
}

TEST_F(EarlierBga, APatrolNeedsARedundantVd)
{
    for (const QRX_U8 mode : {kRaid0, kJbod, kRaid5, kRaid50, kRaid6, kRaid60}) {
        expectState(1, {}, kVdFunctional, mode);
        EXPECT_EQ(unlisted({"mp", "-i", "1"}), (Outcome{1, "\nVD 1 is not an redundancy.\n"}));
    }
}

TEST_F(EarlierBga, WhatRunsIsStopped)
{
    for (const QRX_U8 type : Bytes{1, 2}) {
        expectState(0x0305, running(type), kVdInitialization);
        expectAbort(0x0305);
        EXPECT_EQ(unlisted({"init", "-a", "stop", "-i", "773"}), (Outcome{0, "Abort successfully\n"}));
    }
    expectState(0x0305, running(7), kVdFunctional, kRaid5);
    expectAbort(0x0305);
    EXPECT_EQ(unlisted({"mp", "-a", "stop", "-i", "773"}), (Outcome{0, "Abort media patrol successfully\n"}));
    for (auto words :
         {Line{"rebuild", "-a", "stop", "-i", "773"}, Line{"rebuild", "-a", "stop", "-i", "773", "-d", "5"}}) {
        expectState(0x0305, running(3), kVdRebuilding);
        expectAbort(0x0305);
        EXPECT_EQ(unlisted(words), (Outcome{0, "Abort successfully\n"}));
    }
}

TEST_F(EarlierBga, AStopThatIsRefused)
{
    expectState(1, running(2));
    expectAbort(1, kRefused);
    EXPECT_EQ(unlisted({"init", "-a", "stop", "-i", "1"}),
              (Outcome{kRefused, "\nUnable to abort initialization on VD 1.\n"}));
    expectState(1, running(7));
    expectAbort(1, kRefused);
    EXPECT_EQ(unlisted({"mp", "-a", "stop", "-i", "1"}),
              (Outcome{kRefused, "\nUnable to abort media patrol on VD 1\n"}));
    expectState(1, running(3));
    expectAbort(1, 7);
    EXPECT_EQ(unlisted({"rebuild", "-a", "stop", "-i", "1"}),
              (Outcome{7, "\nUnable to abort rebuild on VD 1 (error 0x7: Unknown error).\n"}));
    expectState(1, running(3));
    expectAbort(1, 1);
    EXPECT_EQ(unlisted({"rebuild", "-a", "stop", "-i", "1"}),
              (Outcome{1, "\nUnable to abort rebuild on VD 1 (error 0x1: Failed).\n"}));
}

TEST_F(EarlierBga, AStopOfAnotherKindIsNotSent)
{
    struct Row {
        const char* name;
        Bytes own;
        const char* text;
    };
    const Row kRows[] = {{"init", {1, 2}, "\nVD 1 is not initializing.\n"},
                         {"mp", {7}, "\nVD 1 is not in media patrol\n"},
                         {"rebuild", {3}, "\nVD 1 is not rebuilding.\n"}};
    for (const Row& row : kRows) {
        for (const QRX_U8 type : Bytes{0, 1, 2, 3, 4, 5, 6, 7, 255}) {
            if (std::find(row.own.begin(), row.own.end(), type) == row.own.end()) {
                expectState(1, running(type));
                EXPECT_EQ(unlisted({row.name, "-a", "stop", "-i", "1"}), (Outcome{0, row.text})) << int{type};
            }
        }
    }
}

TEST_F(EarlierBga, AStopOfWhatDoesNotRunIsNotSent)
{
    for (const QRX_U8 status : Bytes{0, 2, 255}) {
        expectState(1, running(2, status));
        EXPECT_EQ(unlisted({"init", "-a", "stop", "-i", "1"}),
                  (Outcome{0, "\nVD 1 is not having any background activity.\n"}));
        expectState(1, running(7, status));
        EXPECT_EQ(unlisted({"mp", "-a", "stop", "-i", "1"}),
                  (Outcome{0, "\nVD 1 is currently does not have any background activity.\n"}));
        expectState(1, running(3, status));
        EXPECT_EQ(unlisted({"rebuild", "-a", "stop", "-i", "1"}),
                  (Outcome{0, "\nVD 1 is not having any background activity.\n"}));
    }
}

TEST_F(EarlierBga, AVdThatCannotBeRead)
{
    const auto refuses = [this](Line words) {
        pair.expect({226, 0}, header(1), {}, kRefused);
        return unlisted(words);
    };
    for (const char* action : {"start", "stop"}) {
        EXPECT_EQ(refuses({"init", "-a", action, "-i", "1"}), (Outcome{kRefused, "Unable to get info of VD 1.\n"}));
        EXPECT_EQ(refuses({"mp", "-a", action, "-i", "1"}), (Outcome{1, "\nUnable to get info of VD 1.\n"}));
        EXPECT_EQ(refuses({"rebuild", "-a", action, "-i", "1", "-d", "0"}),
                  (Outcome{kRefused, "\nUnable to get info of VD 1.\n"}));
    }
}

TEST_F(EarlierBga, AnActivityThatCannotBeRead)
{
    const auto refuses = [this](Line words) {
        expectRecord(1);
        pair.expect({227, 2}, header(1), {}, kRefused);
        return unlisted(words);
    };
    for (const char* action : {"start", "stop"}) {
        EXPECT_EQ(refuses({"init", "-a", action, "-i", "1"}), (Outcome{kRefused, "\nUnable to get status of VD 1.\n"}));
        EXPECT_EQ(refuses({"mp", "-a", action, "-i", "1"}),
                  (Outcome{kRefused, "\nFailed to " + std::string(action) + " media patrol on VD 1\n"}));
        EXPECT_EQ(refuses({"rebuild", "-a", action, "-i", "1", "-d", "0"}),
                  (Outcome{kRefused, "\nUnable to get status of VD 1.\n"}));
    }
}

TEST_F(EarlierBga, BadOptions)
{
    for (const char* name : {"init", "mp", "rebuild"}) {
        for (const std::string action : {"pause", "resume", "Start", "STOP", ""}) {
            EXPECT_EQ(unlisted({name, "-a", action, "-i", "0"}),
                      (Outcome{1, "-a : invalid action '" + action + "'\n"}));
        }
        EXPECT_EQ(unlisted({name, "-z"}), (Outcome{1, "", "", std::string(name) + ": illegal option -- z\n"}));
        for (auto words : {Line{name, "-i", "0", "-i", "0"}, Line{name, "-a", "stop", "-a", "stop"}}) {
            EXPECT_EQ(unlisted(words), (Outcome{1, "Duplicated option specified.\n"}));
        }
        EXPECT_EQ(unlisted({name, "-a", "stop"}), (Outcome{1, std::string(name) + ": option -i is required\n"}));
    }
    EXPECT_EQ(unlisted({"init", "-i", "1x"}), (Outcome{1, "-i : VD id should be a number\n"}));
    EXPECT_EQ(unlisted({"mp", "-i", "-1"}), (Outcome{1, "-i : invalid vd id\n"}));
    EXPECT_EQ(unlisted({"rebuild", "-i", "1x"}), (Outcome{1, "-i : VD id should be a number\n"}));
    EXPECT_EQ(unlisted({"rebuild", "-d", "-1"}), (Outcome{1, "-d : PD id should be a number\n"}));
    for (const char* id : {"65536", "4294967296"}) {  // cut, it would name another one
        EXPECT_EQ(unlisted({"init", "-i", id}), (Outcome{1, "-i : VD id should be a number\n"}));
        EXPECT_EQ(unlisted({"mp", "-i", id}), (Outcome{1, "-i : invalid vd id\n"}));
        EXPECT_EQ(unlisted({"rebuild", "-i", id}), (Outcome{1, "-i : VD id should be a number\n"}));
        EXPECT_EQ(unlisted({"rebuild", "-i", "0", "-d", id}), (Outcome{1, "-d : PD id should be a number\n"}));
    }
    EXPECT_EQ(unlisted({"init", "-t", "quick"}), (Outcome{1, "", "", "init: illegal option -- t\n"}));
    EXPECT_EQ(unlisted({"mp", "--id", "1"}), (Outcome{1, "", "", "mp: unrecognized option `--id'\n"}));
    EXPECT_EQ(unlisted({"mp", "-d", "1"}), (Outcome{1, "", "", "mp: illegal option -- d\n"}));
}

TEST_F(EarlierBga, ARebuildNeedsItsPdEvenByDefault)
{
    for (auto words : {Line{"rebuild", "-i", "0"}, Line{"rebuild", "-a", "start", "-i", "0"}}) {
        EXPECT_EQ(unlisted(words), (Outcome{1, "rebuild: option -d is required\n"}));
    }
    runAsJbof();
    EXPECT_EQ(unlisted({"rebuild", "-i", "0"}), (Outcome{1, "rebuild: option -d is required\n"}));
}

TEST_F(EarlierBga, TheLastIds)
{
    expectState(65535);
    pair.expect({227, 7}, word(65535, 65535), {});
    EXPECT_EQ(unlisted({"rebuild", "-i", "65535", "-d", "65535"}), (Outcome{0, "Start rebuild successfully\n"}));
}

TEST_F(EarlierBga, OfARepeatedPdTheLastOneStands)
{
    expectState(1);
    pair.expect({227, 7}, word(1, 6), {});
    EXPECT_EQ(unlisted({"rebuild", "-i", "1", "-d", "5", "-d", "6"}), (Outcome{0, "Start rebuild successfully\n"}));
}

TEST_F(EarlierBga, WithoutRaidNothingIsRead)
{
    runAsJbof();
    const char* const text = "This feature is not support JBOF.\n";
    EXPECT_EQ(unlisted({"init", "-i", "0"}), (Outcome{34, text}));
    EXPECT_EQ(unlisted({"mp", "-a", "stop", "-i", "0"}), (Outcome{1, text}));
    EXPECT_EQ(unlisted({"rebuild", "-i", "0", "-d", "1"}), (Outcome{34, text}));
}

TEST_F(EarlierBga, IdsAreNotShiftedInOneBasedMode)
{
    g_oneBaseMode = 1;
    expectState(0);
    pair.expect({227, 7}, word(0, 0), {}, 7);
    EXPECT_EQ(unlisted({"rebuild", "-i", "0", "-d", "0"}),
              (Outcome{7, "\nUnable to start rebuild on VD 0 with PD 0 (error 0x7: Unknown error).\n"}));
    expectState(2, running(2));
    expectAbort(2);
    EXPECT_EQ(unlisted({"init", "-a", "stop", "-i", "2"}), (Outcome{0, "Abort successfully\n"}));
}

}  // namespace
