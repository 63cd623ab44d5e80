#include "api/src/interface/vd.h"

#include <gtest/gtest.h>

#include "tests/unit/support/capture.h"
#include "tests/unit/support/scripted_machine.h"

namespace {

using namespace qrx::test;

NVME_VD_Info someVd()
{
    NVME_VD_Info info;
    const Bytes bytes = pattern(sizeof(info), 90);
    std::memcpy(&info, bytes.data(), sizeof(info));
    return info;
}

class SimpleVdInfo : public testing::Test {
protected:
    SimpleVdInfo()
    {
        machine.addController();
        machine.addController();
        gCurrentAdapter = 1;
    }
    Command read(QRX_U16 id)
    {
        return Command::vendor(0x00E2).word(14, id).flag(0x5001).receives(4096).carries(Bytes(4096)).on(1);
    }
    GlobalsGuard globals;
    ScriptedMachine machine;
    StdoutCapture out;
    NVME_VD_Info record{};
};

TEST_F(SimpleVdInfo, ReadsFromTheCurrentControllerWhateverItIsAsked)
{
    machine.expect(read(0xFFFE).data(envelope(someVd())));
    EXPECT_EQ(QRX_Adapter_GetSimpleVDInfo(0, 0xFFFE, &record), 0U);
    EXPECT_EQ(bytesOf(record), bytesOf(someVd()));
    EXPECT_EQ(out.text(), "");
}

TEST_F(SimpleVdInfo, ABadSignatureIsOne)
{
    for (std::size_t letter = 0; letter < 3; ++letter) {
        Bytes page = envelope(someVd());
        page[letter] = 'x';
        machine.expect(read(3).data(page));
        EXPECT_EQ(QRX_Adapter_GetSimpleVDInfo(1, 3, &record), 1U);
    }
    EXPECT_EQ(bytesOf(record), Bytes(180));
}

TEST_F(SimpleVdInfo, TheFourthByteOfTheSignatureIsNotTested)
{
    Bytes page = envelope(someVd());
    page[3] = 'x';
    machine.expect(read(3).data(page));
    EXPECT_EQ(QRX_Adapter_GetSimpleVDInfo(1, 3, &record), 0U);
}

TEST_F(SimpleVdInfo, ARefusalIsReturnedAndLeavesTheRecord)
{
    machine.expect(read(3).data(envelope(someVd(), 0x2C)));
    EXPECT_EQ(QRX_Adapter_GetSimpleVDInfo(1, 3, &record), 0x2CU);
    EXPECT_EQ(bytesOf(record), Bytes(180));
    EXPECT_EQ(out.text(), "");
}

TEST_F(SimpleVdInfo, AFailedCallPrintsItsTextAndIsOne)
{
    machine.expect(read(3).status(0x707));
    EXPECT_EQ(QRX_Adapter_GetSimpleVDInfo(1, 3, &record), 1U);
    EXPECT_EQ(out.text(), "Invalid LD ID (Status Code: 0x707)\n");
}

}  // namespace
