// The calls that change virtual disks, and what they do for the operating system before and after.
#include <gtest/gtest.h>

#include "api/src/interface/vd.h"
#include "api/src/interface/wire/adapter.h"
#include "tests/unit/api/pair_script.h"
#include "tests/unit/support/capture.h"

namespace {

using namespace qrx::test;

NVME_Create_VD plan(QRX_U8 queryLDSize)
{
    NVME_Create_VD record;
    const Bytes bytes = pattern(sizeof(record), 5);
    std::memcpy(&record, bytes.data(), sizeof(record));
    record.QueryLDSize = queryLDSize;
    return record;
}

class VdHooks : public testing::Test {
protected:
    VdHooks()
    {
        machine.addController();
        machine.addController();
    }
    // The look at the controller's lists that both hooks begin with: no virtual disk, and so nothing to change.
    void expectLists(QRX_U8 cmd_status = 0)
    {
        const NVME_Adapter_Info adapter{};
        pair.expect({224, 0}, {}, bytesOf(adapter), cmd_status);
        if (cmd_status == 0) {
            machine.expect(Command::vendor(0x00E5).flag(0x1001).receives(4096).on(1).data(envelope(Bytes(96))));
        }
    }

    GlobalsGuard globals;
    ScriptedMachine machine;
    PairScript pair{machine, 1};
    StdoutCapture out;
};

TEST_F(VdHooks, CreateClearsTheQueryAndLooksAtTheNamespacesAfterwards)
{
    NVME_Create_VD record = plan(1);
    pair.expect({226, 3}, bytesOf(plan(0)), {});
    expectLists();
    EXPECT_EQ(QRX_VD_Create(1, &record), 0U);
    EXPECT_EQ(bytesOf(record), bytesOf(plan(0)));
}

TEST_F(VdHooks, CreateReturnsWhatCameOfTheNamespaces)
{
    NVME_Create_VD record = plan(0);
    pair.expect({226, 3}, bytesOf(plan(0)), {});
    expectLists(9);
    EXPECT_EQ(QRX_VD_Create(1, &record), 1U);
}

TEST_F(VdHooks, CreateThatIsRefusedLooksAtNothing)
{
    NVME_Create_VD record = plan(0);
    pair.expect({226, 3}, bytesOf(plan(0)), {}, 0x3B);
    EXPECT_EQ(QRX_VD_Create(1, &record), 0x3BU);
    pair.expectSendFailed({226, 3}, bytesOf(plan(0)), 0x701);
    EXPECT_EQ(QRX_VD_Create(1, &record), 1U);
}

TEST_F(VdHooks, QuerySizeSetsTheQueryAndAsksNothingElse)
{
    NVME_Create_VD record = plan(0);
    struct {
        NVME_PreCreate_VD size{};
        Bytes behind = Bytes(16, 0xC3);
    } answer;
    pair.expect({226, 3}, bytesOf(plan(1)), pattern(32, 8));
    EXPECT_EQ(QRX_VD_QuerySize(1, &record, &answer.size), 0U);
    Bytes expected = pattern(32, 8);
    expected.resize(16);
    EXPECT_EQ(bytesOf(answer.size), expected);
    EXPECT_EQ(answer.behind, Bytes(16, 0xC3));
    EXPECT_EQ(bytesOf(record), bytesOf(plan(1)));
}

TEST_F(VdHooks, QuerySizeThatFailsTellsNoSize)
{
    NVME_Create_VD record = plan(0);
    NVME_PreCreate_VD size{};
    pair.expect({226, 3}, bytesOf(plan(1)), pattern(16, 8), 0x41);
    EXPECT_EQ(QRX_VD_QuerySize(1, &record, &size), 0x41U);
    Bytes unsigned_frame = envelope(pattern(16, 8));
    unsigned_frame[2] = 'Y';
    pair.expectFrame({226, 3}, bytesOf(plan(1)), unsigned_frame);
    EXPECT_EQ(QRX_VD_QuerySize(1, &record, &size), 1U);
    pair.expectReceiveFailed({226, 3}, bytesOf(plan(1)), 6);
    EXPECT_EQ(QRX_VD_QuerySize(1, &record, &size), 1U);
    EXPECT_EQ(bytesOf(size), Bytes(16));
}

TEST_F(VdHooks, DeleteLooksAtTheNamespacesBefore)
{
    expectLists();
    pair.expect({226, 4}, {0x0B, 0x0A, 0, 0, 0, 0, 0, 0}, {});
    EXPECT_EQ(QRX_VD_Delete(1, 0x0A0B), 0U);
}

TEST_F(VdHooks, DeleteGoesOnWhenTheNamespacesCannotBeRead)
{
    expectLists(9);
    pair.expect({226, 4}, {0x0B, 0x0A, 0, 0, 0, 0, 0, 0}, {});
    EXPECT_EQ(QRX_VD_Delete(1, 0x0A0B), 0U);
}

TEST_F(VdHooks, DeleteReturnsARefusal)
{
    expectLists();
    pair.expect({226, 4}, {0x0B, 0x0A, 0, 0, 0, 0, 0, 0}, {}, 0x42);
    EXPECT_EQ(QRX_VD_Delete(1, 0x0A0B), 0x42U);
    expectLists();
    pair.expectReceiveFailed({226, 4}, {0x0B, 0x0A, 0, 0, 0, 0, 0, 0}, 0x701);
    EXPECT_EQ(QRX_VD_Delete(1, 0x0A0B), 1U);
}

TEST_F(VdHooks, ImportSendsItsHeaderAlone)
{
    RequestHeader header = qrx::oneOf(0x0A0B);
    const Bytes sent{0, 0, 2, 0, 0x0B, 0x0A, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    pair.expect({226, 6}, sent, {});
    EXPECT_EQ(QRX_VD_Import(1, &header), 0U);
    pair.expect({226, 6}, sent, {}, 0x39);
    EXPECT_EQ(QRX_VD_Import(1, &header), 0x39U);
    pair.expectSendFailed({226, 6}, sent, 0x701);
    EXPECT_EQ(QRX_VD_Import(1, &header), 1U);
}

}  // namespace
