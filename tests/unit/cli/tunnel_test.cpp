// The tunnel to a drive behind the controller.
#include "cli/Public/frame/tunnel.h"

#include "tests/unit/cli/storage_fixture.h"

namespace {

using namespace qrx;
using namespace qrx::test;

class Tunnel : public StorageTest {};

TEST_F(Tunnel, FromADrive)
{
    machine.expect(test::Command::passthru(0xC2)
                       .word(1, 0x11223344)
                       .word(14, 0xC2A5)
                       .flag(0x4003)
                       .receives(8)
                       .carries(pattern(8))
                       .data({1, 2, 3})
                       .on(1));
    Bytes page = pattern(8);
    EXPECT_EQ(outcomeOf([&] { return tunnelFromDrive(0x11223344, 0xC2A5).receive(page); }), (Outcome{0, ""}));
    EXPECT_EQ(Bytes(page.begin(), page.begin() + 3), (Bytes{1, 2, 3}));
}

TEST_F(Tunnel, ToADriveWithWordsOfItsOwnAndWithoutData)
{
    machine.expect(
        test::Command::passthru(0xC3).word(1, 7).word(14, 0x80).word(10, 512).word(15, 9).flag(0xC403).on(1));
    EXPECT_EQ(outcomeOf([] { return tunnelToDrive(7, kDriveFormat).word(10, 512).word(15, 9).send(); }),
              (Outcome{0, ""}));
}

TEST_F(Tunnel, ToADriveWithDataAndItsCompletionDword)
{
    const Bytes data = pattern(4096, 3);
    machine.expect(
        test::Command::passthru(0xC3).word(1, 7).word(14, 0x11).flag(0x4003).sends(data).result(0xFEEDF00D).on(0));
    QRX_U32 result = 0;
    EXPECT_EQ(outcomeOf([&] { return tunnelToDrive(7, 0x11).transmit(data, 0, &result); }), (Outcome{0, ""}));
    EXPECT_EQ(result, 0xFEEDF00D);
}

TEST_F(Tunnel, TheStatusOfTheDriveIsTold)
{
    machine.expect(test::Command::passthru(0xC2).word(14, 2).flag(0x4003).result(1).status(0x4002).on(1));
    QRX_U32 result = 0;
    EXPECT_EQ(
        outcomeOf([&] { return tunnelFromDrive(0, kDriveGetLogPage).receive({}, gCurrentAdapter, &result); }).result,
        0x4002);
}

TEST_F(Tunnel, TheControlIdStaysInTheHost)
{
    const AdminCommand command = tunnelFromDrive(0x12345, 6).controlId(0x2345);
    EXPECT_EQ(command.record().control_id, 0x2345);
    machine.expect(test::Command::passthru(0xC2).word(1, 0x12345).word(14, 6).flag(0x4003).on(1));
    EXPECT_EQ(command.send(), 0);
}

}  // namespace
