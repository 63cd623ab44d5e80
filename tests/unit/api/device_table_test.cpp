#include <gtest/gtest.h>

#include "api/src/device/common/DefaultDevice.h"
#include "api/src/device/common/DeviceManagement.h"
#include "tests/unit/support/capture.h"
#include "tests/unit/support/scripted_machine.h"

namespace {

using namespace qrx::test;

TEST(NullDevice, EveryOperationDoesNothing)
{
    PDevice device = CreateDefaultDeviceInstance();
    StdoutCapture out;
    QRX_U32 cdw[] = {1};
    QRX_U32 result = 77;
    Bytes page = pattern(64);
    _qrx_admin_command_format record{};
    EXPECT_EQ(device->sendCommand(device, 6, 0, cdw, 1, nullptr, 0, page.data(), 64), 1U);
    EXPECT_EQ(device->sendNVM(device, 1, 1, cdw, 1, page.data(), 64, nullptr, 0), 1U);
    EXPECT_EQ(device->sendPassthruAdmin(device, &record, nullptr, 0, page.data(), 64, &result), 1U);
    device->closeHandle(device);
    EXPECT_EQ(page, pattern(64));
    EXPECT_EQ(result, 77U);
    EXPECT_EQ(device->getNVMEDevice(device), device);
    EXPECT_EQ(CreateDefaultDeviceInstance(), device);
    EXPECT_EQ(out.text(), "");
}

TEST(DeviceTable, IsOneInstanceThatStartsEmpty)
{
    ScriptedMachine machine;
    PDeviceManagement table = GetDeviceManagementInstance();
    EXPECT_EQ(GetDeviceManagementInstance(), table);
    EXPECT_EQ(table->getDeviceCount(table), 0);
    for (QRX_U16 index = 0; index < kMaxDevices; ++index) {
        ASSERT_EQ(table->getDevice(table, index), CreateDefaultDeviceInstance()) << index;
    }
}

TEST(DeviceTable, AnIndexOutOfRangeGivesTheNullDevice)
{
    ScriptedMachine machine;
    PDeviceManagement table = GetDeviceManagementInstance();
    for (int i = 0; i < 3; ++i) {
        machine.addController();
    }
    EXPECT_NE(table->getDevice(table, 2), CreateDefaultDeviceInstance());
    EXPECT_EQ(table->getDevice(table, 5), CreateDefaultDeviceInstance());
    EXPECT_EQ(table->getDevice(table, 1088), CreateDefaultDeviceInstance());
    EXPECT_EQ(table->getDevice(table, 65535), CreateDefaultDeviceInstance());
    EXPECT_STREQ(table->getDeviceFun(table, 65535), "");
    EXPECT_STREQ(table->getDevicePath(table, 1088), "");
    EXPECT_STREQ(table->getDeviceSUBNQN(table, 1088), "");
    EXPECT_EQ(table->getSlotID(table, 1088), 0);
}

TEST(DeviceTable, GivesTheIdentityOfASlot)
{
    ScriptedMachine machine;
    machine.addController();
    machine.addController({.path = "/dev/nvme7", .bdf = "1a:02.01", .subnqn = "nqn.test", .slot_id = 12});
    PDeviceManagement table = GetDeviceManagementInstance();
    EXPECT_EQ(table->getDeviceCount(table), 2);
    EXPECT_STREQ(table->getDeviceFun(table, 1), "1a:02.01");
    EXPECT_STREQ(table->getDevicePath(table, 1), "/dev/nvme7");
    EXPECT_STREQ(table->getDeviceSUBNQN(table, 1), "nqn.test");
    EXPECT_EQ(table->getSlotID(table, 1), 12);
}

TEST(DeviceTable, NumbersFromZeroWhateverWasStored)
{
    PDeviceManagement table = GetDeviceManagementInstance();
    table->m_one_base_mode = 1;
    EXPECT_EQ(table->getOneBaseMode(table), 0);
    EXPECT_EQ(table->m_one_base_mode, 0);
}

TEST(DeviceTable, TellsWhereTheWantedVendorIdIsKept)
{
    PDeviceManagement table = GetDeviceManagementInstance();
    EXPECT_EQ(table->getDeviceVID(table), &gVIDFormCLI);
}

TEST(DeviceTable, FinalClosesEveryDeviceAndEmptiesTheTable)
{
    ScriptedMachine machine;
    machine.addController();
    machine.addController();
    PDeviceManagement table = GetDeviceManagementInstance();
    table->m_one_base_mode = 1;
    table->Final(table);
    EXPECT_EQ(machine.closed(), 2);
    EXPECT_EQ(table->getDeviceCount(table), 0);
    EXPECT_EQ(table->m_one_base_mode, 0);
    EXPECT_EQ(table->getDevice(table, 0), CreateDefaultDeviceInstance());
    table->Final(table);
    EXPECT_EQ(machine.closed(), 2);
}

TEST(DeviceNumber, IsReadFromThePath)
{
    EXPECT_EQ(qrx::deviceNumber("/dev/nvme0"), 0);
    EXPECT_EQ(qrx::deviceNumber("/dev/nvme1087"), 1087);
    EXPECT_EQ(qrx::deviceNumber("/dev/nvme12n1"), 12);
    EXPECT_EQ(qrx::deviceNumber("/dev/nvme"), std::nullopt);
    EXPECT_EQ(qrx::deviceNumber("/dev/sda"), std::nullopt);
    EXPECT_EQ(qrx::deviceNumber(""), std::nullopt);
}

}  // namespace
