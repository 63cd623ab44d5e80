#include "api/src/interface/api.h"

#include <gtest/gtest.h>

#include "api/src/device/common/DeviceManagement.h"
#include "api/src/interface/globals.h"
#include "tests/unit/support/scripted_machine.h"

namespace {

using namespace qrx::test;

std::string paddedName(const std::string& name)
{
    std::string text = name;
    text.resize(223, ' ');
    return text;
}

class AdapterIds : public testing::Test {
protected:
    AdapterIds()
    {
        machine.addController({.path = "/dev/nvme1", .bdf = "03:00.00", .subnqn = paddedName("nqn.a"), .slot_id = 4});
        machine.addController({.path = "/dev/nvme5", .bdf = "04:00.00", .subnqn = paddedName("nqn.b"), .slot_id = -1});
        machine.addController({.path = "/dev/nvme12", .bdf = "04:00.00", .subnqn = paddedName("nqn.b"), .slot_id = 9});
    }
    ScriptedMachine machine;
};

TEST_F(AdapterIds, AccessorsForwardToTheTable)
{
    EXPECT_EQ(QRX_Adapter_GetCount(), 3);
    EXPECT_STREQ(QRX_Adapter_GetDeviceFun(0), "03:00.00");
    EXPECT_STREQ(QRX_Adapter_GetDevicePath(1), "/dev/nvme5");
    EXPECT_EQ(QRX_Adapter_GetDeviceSUBNQN(0), paddedName("nqn.a"));
    EXPECT_EQ(QRX_Adapter_GetSlotID(0), 4);
    EXPECT_EQ(QRX_Adapter_GetSlotID(1), -1);
    EXPECT_EQ(QRX_Adapter_GetSlotID(2), 9);
    EXPECT_EQ(QRX_Adapter_GetOneBaseMode(), 0);
    EXPECT_EQ(QRX_Adapter_GetDeviceVID(), &gVIDFormCLI);
}

TEST_F(AdapterIds, DeniedTellsWhatTheScanFound)
{
    PDeviceManagement table = GetDeviceManagementInstance();
    EXPECT_EQ(QRX_IsSysDenied(), 0);
    table->m_sysDenied = 1;
    EXPECT_EQ(QRX_IsSysDenied(), 1);
    table->m_sysDenied = 0;
}

TEST_F(AdapterIds, ByLocationTheLastMatchWins)
{
    int id = 77;
    char location[] = "03:00.00";
    EXPECT_TRUE(findAdapterId(location, &id));
    EXPECT_EQ(id, 0);
    char shared[] = "04:00.00";
    EXPECT_TRUE(findAdapterId(shared, &id));
    EXPECT_EQ(id, 2);
    char part[] = "03:00.0";
    id = 77;
    EXPECT_FALSE(findAdapterId(part, &id));
    EXPECT_EQ(id, 77);
}

TEST_F(AdapterIds, TheDeviceNumberOfAnIndex)
{
    int number = 77;
    GetAdapterIdFromDeviceName(2, &number);
    EXPECT_EQ(number, 12);
    number = 77;
    GetAdapterIdFromDeviceName(3, &number);
    EXPECT_EQ(number, 77);
}

TEST_F(AdapterIds, TheIndexOfADeviceNumber)
{
    int index = 77;
    int number = 5;
    EXPECT_TRUE(SetAdapterIdFromDeviceName(&number, &index));
    EXPECT_EQ(index, 1);
    number = 2;
    index = 77;
    EXPECT_FALSE(SetAdapterIdFromDeviceName(&number, &index));
    EXPECT_EQ(index, 77);
}

TEST(AdapterIdsOfEqualNumbers, TheFirstWins)
{
    ScriptedMachine machine;
    machine.addController({.path = "/dev/nvme6"});
    machine.addController({.path = "/dev/nvme6"});
    int index = 77;
    int number = 6;
    EXPECT_TRUE(SetAdapterIdFromDeviceName(&number, &index));
    EXPECT_EQ(index, 0);
}

TEST(AdapterIdsBeyondABytesReach, AreNotFound)
{
    ScriptedMachine machine;
    for (int number = 0; number < 300; ++number) {
        const std::string text = std::to_string(number);
        machine.addController({.path = "/dev/nvme" + text, .bdf = text, .subnqn = paddedName("nqn." + text)});
    }
    for (const int number : {255, 256, 299}) {
        const std::string text = std::to_string(number);
        const bool found = number < 256;
        std::string slot = text;
        std::string name = paddedName("nqn." + text);
        int index = 77;
        EXPECT_EQ(findAdapterId(slot.data(), &index), found);
        EXPECT_EQ(index, found ? number : 77);
        index = 77;
        EXPECT_EQ(SetAdapterIdFromSUBNQN(name.data(), &index), found);
        EXPECT_EQ(index, found ? number : 77);
        int device = number;
        index = 77;
        EXPECT_EQ(SetAdapterIdFromDeviceName(&device, &index), found);
        EXPECT_EQ(index, found ? number : 77);
    }
}

TEST_F(AdapterIds, ByNameTheBlanksCountAndTheLastMatchWins)
{
    int index = 77;
    EXPECT_TRUE(SetAdapterIdFromSUBNQN(paddedName("nqn.a").data(), &index));
    EXPECT_EQ(index, 0);
    EXPECT_TRUE(SetAdapterIdFromSUBNQN(paddedName("nqn.b").data(), &index));
    EXPECT_EQ(index, 2);
    char unpadded[] = "nqn.a";
    index = 77;
    EXPECT_FALSE(SetAdapterIdFromSUBNQN(unpadded, &index));
    EXPECT_EQ(index, 77);
}

TEST_F(AdapterIds, AnOverlongNameMatchesNothing)
{
    std::string name = paddedName("nqn.a");
    name.resize(5000, ' ');
    int index = 77;
    EXPECT_FALSE(SetAdapterIdFromSUBNQN(name.data(), &index));
    EXPECT_EQ(index, 77);
}

TEST(Globals, NormalOutputStartsOnStandardOutput)
{
    EXPECT_EQ(stream, stdout);
    EXPECT_EQ(gCurrentAdapter, 0);
    EXPECT_EQ(gSpecificAdapterFlag, 0);
    EXPECT_EQ(gNumAdaptersFound, 0);
    EXPECT_EQ(g_pAdInfos, nullptr);
    EXPECT_EQ(g_oneBaseMode, 0);
    EXPECT_EQ(dbg_enable, 0);
}

}  // namespace
