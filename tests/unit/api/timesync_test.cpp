#include "api/src/function/timesync/timesync.h"

#include <gtest/gtest.h>

#include "api/src/function/log/log.h"
#include "tests/unit/support/capture.h"
#include "tests/unit/support/libc.h"
#include "tests/unit/support/scripted_machine.h"

namespace {

using namespace qrx::test;

class TimeSync : public testing::Test {
protected:
    TimeSync()
    {
        machine.addController();
        machine.addController();
        libc.onTime = [this] { return now; };
    }
    ScriptedMachine machine;
    Libc libc;
    StdoutCapture out;
    std::time_t now = 0;
};

TEST_F(TimeSync, SendsTheSecondsInThreePieces)
{
    now = 0x5F123456;
    machine.expect(Command::vendor(0x03E0).word(13, 0x5F120000).word(14, 0x3456).flag(0x7001).on(1));
    TimeSyncFunction(1);
    now = 0x5F000000;
    machine.expect(Command::vendor(0x03E0).word(13, 0x5F000000).flag(0x7001));
    TimeSyncFunction(0);
}

TEST_F(TimeSync, TheClockIsOf32BitsWithASign)
{
    now = 0x7FFFFFFF;
    EXPECT_EQ(qrx_get_utc_now(), 0x7FFFFFFFU);
    now = 0x80000000;
    EXPECT_EQ(qrx_get_utc_now(), 0xFFFFFFFF80000000U);
    machine.expect(Command::vendor(0x03E0).word(13, 0x8000FFFF).flag(0x7001));
    TimeSyncFunction(0);
    now = 0x100000005;
    EXPECT_EQ(qrx_get_utc_now(), 5U);
}

TEST_F(TimeSync, ARefusalIsSilent)
{
    StderrCapture errors;
    machine.expect(Command::vendor(0x03E0).flag(0x7001).status(0x705));
    TimeSyncFunction(0);
    EXPECT_EQ(out.text() + errors.text(), "");
}

TEST(Log, ShowsNothingAnywhere)
{
    StdoutCapture out;
    StderrCapture errors;
    StreamCapture output;
    init_log();
    add_log("%s %d\n", "text", 5);
    close_log();
    EXPECT_EQ(out.text() + errors.text() + output.text(), "");
}

}  // namespace
