#include "api/src/interface/adapter.h"

#include <gtest/gtest.h>

#include "tests/unit/support/capture.h"
#include "tests/unit/support/scripted_machine.h"

namespace {

using namespace qrx::test;

Command adapterRead()
{
    return Command::vendor(0x00E0).flag(0x5001).receives(4096).carries(Bytes(4096));
}

// A record of which no two neighbouring bytes are equal, and none is zero.
NVME_Adapter_Info someInfo()
{
    NVME_Adapter_Info info;
    const Bytes bytes = pattern(sizeof(info), 40);
    std::memcpy(&info, bytes.data(), sizeof(info));
    return info;
}

class SimpleInfo : public testing::Test {
protected:
    SimpleInfo()
    {
        machine.addController();
        machine.addController();
    }
    ScriptedMachine machine;
    GlobalsGuard globals;
    StreamCapture output;
    StdoutCapture out;
};

TEST_F(SimpleInfo, FillsTheRecordFromTheAnswer)
{
    const NVME_Adapter_Info answer = someInfo();
    machine.expect(adapterRead().on(1).data(envelope(answer)));
    NVME_Adapter_Info record{};
    EXPECT_EQ(QRX_Adapter_GetSimpleInfo(1, &record), 0U);
    EXPECT_EQ(bytesOf(record), bytesOf(answer));
}

TEST_F(SimpleInfo, PutsDefaultsForTheTwoFieldsReportedAsZero)
{
    NVME_Adapter_Info answer = someInfo();
    answer.MaxPD = 0;
    answer.PortCount = 0x5C;
    answer.MaxFlashSize = 0;
    machine.expect(adapterRead().data(envelope(answer)));
    NVME_Adapter_Info record{};
    EXPECT_EQ(QRX_Adapter_GetSimpleInfo(0, &record), 0U);
    answer.MaxPD = 0x5C;
    answer.MaxFlashSize = 0x800000;
    EXPECT_EQ(bytesOf(record), bytesOf(answer));
}

TEST_F(SimpleInfo, AFailedCallLeavesTheRecordAndIsSilent)
{
    machine.expect(adapterRead().data(envelope(someInfo())).status(0x706));
    NVME_Adapter_Info record{};
    EXPECT_EQ(QRX_Adapter_GetSimpleInfo(0, &record), 0x706U);
    EXPECT_EQ(bytesOf(record), Bytes(160));
    EXPECT_EQ(out.text() + output.text(), "");
}

TEST_F(SimpleInfo, ARefusalIsZeroWithTheRecordUnchanged)
{
    machine.expect(adapterRead().data(envelope(someInfo(), 3)));
    NVME_Adapter_Info record = someInfo();
    record.VID = 0xABCD;
    const Bytes before = bytesOf(record);
    EXPECT_EQ(QRX_Adapter_GetSimpleInfo(0, &record), 0U);
    EXPECT_EQ(bytesOf(record), before);
    EXPECT_EQ(out.text() + output.text(), "");
}

TEST_F(SimpleInfo, UnderDebugFailuresAreTold)
{
    dbg_enable = 1;
    NVME_Adapter_Info record{};
    machine.expect(adapterRead().data(envelope(someInfo())));
    QRX_Adapter_GetSimpleInfo(0, &record);
    EXPECT_EQ(output.text(), "");
    machine.expect(adapterRead().error(EIO));
    EXPECT_EQ(QRX_Adapter_GetSimpleInfo(0, &record), 0xFFFFFFFF);
    EXPECT_EQ(output.text(), "\nUnable to get info of NVMe Controller \n");
    machine.expect(adapterRead().data(envelope(someInfo(), 0x2B)));
    EXPECT_EQ(QRX_Adapter_GetSimpleInfo(0, &record), 0U);
    EXPECT_EQ(output.text(),
              "\nUnable to get info of NVMe Controller \n"
              "\nUnable to get info of Adapter, cmd_status:0x2b\n");
    EXPECT_EQ(out.text(), "");
}

TEST_F(SimpleInfo, TheSignatureIsNotLookedAt)
{
    const NVME_Adapter_Info answer = someInfo();
    Bytes page = envelope(answer);
    page[0] = 'X';
    machine.expect(adapterRead().data(page));
    NVME_Adapter_Info record{};
    EXPECT_EQ(QRX_Adapter_GetSimpleInfo(0, &record), 0U);
    EXPECT_EQ(bytesOf(record), bytesOf(answer));
}

TEST_F(SimpleInfo, AnEmptySlotGivesOneInSilence)
{
    NVME_Adapter_Info record{};
    EXPECT_EQ(QRX_Adapter_GetSimpleInfo(9, &record), 1U);
    EXPECT_EQ(out.text(), "");
}

TEST_F(SimpleInfo, SetTimeSendsTheThreePieces)
{
    NVME_Adapter_Time time{.hi = 0x1122, .mid = 0x3344, .lw = 0x5566, .reserved1 = {}};
    machine.expect(Command::vendor(0x03E0).word(13, 0x33441122).word(14, 0x5566).flag(0x7001).on(1).status(5));
    EXPECT_EQ(QRX_Adapter_SetTime(1, &time), 5U);
    EXPECT_EQ(out.text(), "");
}

}  // namespace
