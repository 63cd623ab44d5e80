// The typed calls that the notification hooks need.
#include <gtest/gtest.h>

#include "api/src/interface/adapter.h"
#include "api/src/interface/ns.h"
#include "api/src/interface/vd.h"
#include "tests/unit/api/pair_script.h"
#include "tests/unit/support/capture.h"

namespace {

using namespace qrx::test;

class TypedCalls : public testing::Test {
protected:
    TypedCalls()
    {
        machine.addController();
        machine.addController();
    }
    static Command nsRead() { return Command::vendor(0x00E5).flag(0x1001).receives(4096).carries(Bytes(4096)).on(1); }

    GlobalsGuard globals;
    ScriptedMachine machine;
    PairScript pair{machine, 1};
    StdoutCapture out;
};

TEST_F(TypedCalls, AdapterInfoComesOverThePairRoad)
{
    pair.expect({224, 0}, {}, pattern(160, 40));
    NVME_Adapter_Info info{};
    EXPECT_EQ(QRX_Adapter_GetInfo(1, &info), 0U);
    EXPECT_EQ(bytesOf(info), pattern(160, 40));
}

TEST_F(TypedCalls, AdapterInfoHasDefaultsForTwoZeros)
{
    NVME_Adapter_Info answer{};
    answer.PortCount = 0x5C;
    pair.expect({224, 0}, {}, bytesOf(answer));
    NVME_Adapter_Info info{};
    EXPECT_EQ(QRX_Adapter_GetInfo(1, &info), 0U);
    answer.MaxPD = 0x5C;
    answer.MaxFlashSize = 0x800000;
    EXPECT_EQ(bytesOf(info), bytesOf(answer));
}

TEST_F(TypedCalls, ARefusalLeavesTheAdapterInfoAlone)
{
    pair.expect({224, 0}, {}, pattern(160), 9);
    NVME_Adapter_Info info{};
    EXPECT_EQ(QRX_Adapter_GetInfo(1, &info), 9U);
    EXPECT_EQ(bytesOf(info), Bytes(160));
    EXPECT_EQ(QRX_Adapter_GetInfo(1088, &info), 1U);
    EXPECT_EQ(bytesOf(info), Bytes(160));
}

TEST_F(TypedCalls, VdInfoReadsHeaderAndRecordIntoTheSamePlace)
{
    NVME_VD_Info_Request request{};
    request.header.requestType = 2;
    request.header.start = 0x0305;
    request.header.numRequested = 1;
    pair.expect({226, 0}, {0, 0, 2, 0, 5, 3, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0}, pattern(196, 7));
    EXPECT_EQ(QRX_VD_GetInfo(1, &request), 0U);
    EXPECT_EQ(bytesOf(request), pattern(196, 7));
}

TEST_F(TypedCalls, ARefusalLeavesTheVdRequestAlone)
{
    NVME_VD_Info_Request request{};
    request.header.numRequested = 1;
    const Bytes before = bytesOf(request);
    pair.expect({226, 0}, {0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0}, pattern(196), 7);
    EXPECT_EQ(QRX_VD_GetInfo(1, &request), 7U);
    EXPECT_EQ(bytesOf(request), before);
}

TEST_F(TypedCalls, NsInfoCopiesAsManyRecordsAsAreWanted)
{
    std::array<NVME_NS_Info, 3> records{};
    machine.expect(nsRead().data(envelope(pattern(4088, 3))));
    EXPECT_EQ(QRX_NS_GetInfo(1, records.data(), 2), 0U);
    Bytes expected = pattern(4088, 3);
    expected.resize(192);
    EXPECT_EQ(bytesOf(records), padded(expected, 288));
    EXPECT_EQ(out.text(), "");
}

TEST_F(TypedCalls, NsInfoStopsWhereThePageEnds)
{
    static_assert(kNsListMax == 42);
    std::array<NVME_NS_Info, 255> records{};
    machine.expect(nsRead().data(envelope(pattern(4088, 3))));
    EXPECT_EQ(QRX_NS_GetInfo(1, records.data(), 255), 0U);
    Bytes expected = pattern(4088, 3);
    expected.resize(42 * sizeof(NVME_NS_Info));
    EXPECT_EQ(bytesOf(records), padded(expected, sizeof(records)));
}

TEST_F(TypedCalls, NsInfoThatFailsFillsNothing)
{
    std::array<NVME_NS_Info, 2> records{};
    machine.expect(nsRead().data(envelope(pattern(4088))).status(0x701));
    EXPECT_EQ(QRX_NS_GetInfo(1, records.data(), 2), 0x701U);
    EXPECT_EQ(out.text(), "Failed (Status Code: 0x701)\n");
    machine.expect(nsRead().data(envelope(pattern(4088), 0x2C)));
    EXPECT_EQ(QRX_NS_GetInfo(1, records.data(), 2), 0x2CU);
    for (std::size_t letter = 0; letter < 3; ++letter) {
        Bytes page = envelope(pattern(4088), 5);
        page[letter] = '?';
        machine.expect(nsRead().data(page));
        EXPECT_EQ(QRX_NS_GetInfo(1, records.data(), 2), 1U);
    }
    EXPECT_EQ(bytesOf(records), Bytes(192));
}

}  // namespace
