#include "api/src/function/systemdisk/systemdisk.h"

#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <string>
#include <vector>

#include "api/src/function/osvolume/osvolume.h"
#include "api/src/interface/wire/nvme_ioctl.h"
#include "tests/unit/support/capture.h"
#include "tests/unit/support/libc.h"
#include "tests/unit/support/scripted_machine.h"

namespace {

using namespace qrx::test;
using Names = std::vector<std::string>;

Names devicesIn(std::string table)
{
    const std::unique_ptr<FILE, int (*)(FILE*)> file(fmemopen(table.data(), table.size(), "r"), std::fclose);
    return qrx::bootDevices(file.get());
}

TEST(MountTable, ABootPartitionGivesItsBlockDevice)
{
    EXPECT_EQ(devicesIn("/dev/nvme0n1p1 /boot vfat rw 0 0\n"), Names{"/dev/nvme0n1"});
    EXPECT_EQ(devicesIn("/dev/nvme12n3p2 /boot/efi vfat rw 0 0\n"), Names{"/dev/nvme12n3"});
}

TEST(MountTable, OtherMountsGiveNothing)
{
    EXPECT_EQ(devicesIn("/dev/nvme0n1p2 / ext4 rw 0 0\n"
                        "/dev/sda1 /boot ext4 rw 0 0\n"
                        "tmpfs /run tmpfs rw 0 0\n"),
              Names{});
}

TEST(MountTable, ALineUnderMediaOrMntEndsTheScan)
{
    const std::string boot = "/dev/nvme0n1p1 /boot vfat rw 0 0\n";
    EXPECT_EQ(devicesIn(boot + "/dev/nvme1n1p1 /media/usb vfat rw 0 0\n" + boot), Names{"/dev/nvme0n1"});
    EXPECT_EQ(devicesIn("/dev/nvme1n1p1 /mnt/disk vfat rw 0 0\n" + boot), Names{});
    EXPECT_EQ(devicesIn("/dev/nvme1n1p1 /mnt vfat rw 0 0\n" + boot), Names{"/dev/nvme0n1"});
    EXPECT_EQ(devicesIn("/dev/sdb1 /media/usb vfat rw 0 0\n" + boot), Names{"/dev/nvme0n1"});
    EXPECT_EQ(devicesIn("/dev/nvme1n1p1 /boot/media/x vfat rw 0 0\n" + boot), Names{});
}

TEST(MountTable, AWholeNamespaceKeepsTheFieldsUpToTheFirstP)
{
    EXPECT_EQ(devicesIn("/dev/nvme0n1 /boot ext4 rw 0 0\n"), Names{"/dev/nvme0n1 /boot ext4 rw 0 0"});
    EXPECT_EQ(devicesIn("/dev/nvme0n1 /boot xfs rw,prjquota 0 0\n"), Names{"/dev/nvme0n1 /boot xfs rw,"});
    EXPECT_EQ(devicesIn("pool/dev/nvme0n1 /boot zfs rw 0 0\n"), Names{""});
}

TEST(MountTable, ALastLineWithoutItsEndDoesNotCount)
{
    EXPECT_EQ(devicesIn("/dev/nvme0n1p1 /boot vfat rw 0 0"), Names{});
    EXPECT_EQ(devicesIn("/dev/nvme1n1p1 /boot vfat\n/dev/nvme0n1p1 /boot vfat"), Names{"/dev/nvme1n1"});
}

TEST(MountTable, EveryBootLineCountsInItsOrder)
{
    EXPECT_EQ(devicesIn("/dev/nvme3n1p1 /boot ext4 rw 0 0\n\n/dev/nvme1n1p1 /boot/efi vfat rw 0 0\n"
                        "/dev/nvme3n1p1 /boot ext4 rw 0 0\n"),
              (Names{"/dev/nvme3n1", "/dev/nvme1n1", "/dev/nvme3n1"}));
}

TEST(MountTable, WhatIsBehind1023CharactersIsDropped)
{
    const std::string device = "/dev/nvme0n1p1 ";
    const std::string padding(1023 - device.size() - 5, 'x');
    EXPECT_EQ(devicesIn(device + padding + "/boot\n"), Names{"/dev/nvme0n1"});
    EXPECT_EQ(devicesIn(device + padding + "x/boot\n"), Names{});
    EXPECT_EQ(devicesIn(device + std::string(100000, 'x') + "/boot\n/dev/nvme1n1p1 /boot\n"), Names{"/dev/nvme1n1"});
}

TEST(MountTable, AZeroByteEndsTheTextOfItsLine)
{
    EXPECT_EQ(devicesIn("/dev/nvme0n1p1 " + std::string(1, '\0') + "/boot\n/dev/nvme1n1p1 /boot\n"),
              Names{"/dev/nvme1n1"});
}

class SystemDisks : public testing::Test {
protected:
    ~SystemDisks() override { disks->Final(disks); }

    static Command identify(QRX_U16 vid)
    {
        nvme_id_ctrl ctrl{};
        ctrl.vid = vid;
        ctrl.cntlid = 0x4321;
        return Command::admin(6, 0, {1}).receives(4096).carries(Bytes(4096)).data(bytesOf(ctrl)).on(0);
    }

    ScriptedMachine machine;
    PNVMEDiskManagement disks = GetNVMEDiskManagementInstance();
    StdoutCapture out;
    StderrCapture errors;
};

TEST_F(SystemDisks, IsOneInstanceThatStartsEmpty)
{
    EXPECT_EQ(GetNVMEDiskManagementInstance(), disks);
    EXPECT_EQ(disks->m_os_count, 0);
    EXPECT_EQ(disks->m_os_devs[0], nullptr);
}

TEST_F(SystemDisks, KeepsADiskOfOurController)
{
    machine.expect(identify(0x7A51));
    PDevice device = machine.makeDevice(0);
    disks->addOSDisk(disks, device, "/dev/nvme0n1");
    ASSERT_EQ(disks->m_os_count, 1);
    PQRXSystemDisk disk = disks->m_os_devs[0];
    EXPECT_EQ(disk->m_dev, device);
    EXPECT_STREQ(device->device_path, "/dev/nvme0n1");
    EXPECT_EQ(disk->getControl(disk), &disk->m_control_id);
    EXPECT_EQ(disk->getControl(disk)->cntlid, 0x4321);
    disks->Final(disks);
    EXPECT_EQ(disks->m_os_count, 0);
    EXPECT_EQ(disks->m_os_devs[0], nullptr);
    EXPECT_EQ(machine.closed(), 1);
}

TEST_F(SystemDisks, AnotherVendorsOrARefusedIdentifyIsNoSystemDisk)
{
    machine.expect(identify(0x144D));
    disks->addOSDisk(disks, machine.makeDevice(0), "/dev/nvme0n1");
    machine.expect(identify(0x7A51).status(2));
    disks->addOSDisk(disks, machine.makeDevice(0), "/dev/nvme0n1");
    EXPECT_EQ(disks->m_os_count, 0);
    EXPECT_EQ(machine.closed(), 2);
}

TEST_F(SystemDisks, IdentifyStartsFromZeroes)
{
    PQRXSystemDisk disk = CreateQRXSystemDiskInstance(machine.makeDevice(0), "/dev/nvme0n1");
    disk->m_control_id.vid = 0x7A51;
    machine.expect(identify(0x7A51).status(1));
    EXPECT_EQ(disk->id_ctrl(disk), 0);
    EXPECT_EQ(bytesOf(disk->m_control_id), Bytes(4096));
    disk->Final(disk);
}

TEST_F(SystemDisks, APathThatIsTooLongIsCut)
{
    PQRXSystemDisk disk = CreateQRXSystemDiskInstance(machine.makeDevice(0), std::string(2000, 'x').c_str());
    EXPECT_EQ(disk->m_dev->device_path, std::string(255, 'x'));
    disk->Final(disk);
}

TEST_F(SystemDisks, MoreThan32AreDroppedAndToldOnce)
{
    for (int i = 0; i < 40; ++i) {
        machine.expect(identify(0x7A51));
        disks->addOSDisk(disks, machine.makeDevice(0), "/dev/nvme0n1");
    }
    EXPECT_EQ(disks->m_os_count, 32);
    EXPECT_EQ(machine.closed(), 8);
    EXPECT_EQ(errors.text(), "More system disks than the 32 that can be kept.\n");
    disks->Final(disks);
    EXPECT_EQ(machine.closed(), 40);
}

TEST_F(SystemDisks, ShortMemoryClosesTheDevice)
{
    Libc libc;
    PDevice device = machine.makeDevice(0);
    libc.failAllocation(1);
    EXPECT_THROW(disks->addOSDisk(disks, device, "/dev/nvme0n1"), std::bad_alloc);
    EXPECT_EQ(disks->m_os_count, 0);
    EXPECT_EQ(machine.closed(), 1);
}

// The scan, with a driver of the test's own.
class MountScan : public SystemDisks {
protected:
    MountScan()
    {
        libc.redirect("/dev/nvme0n1", scratch.file("disk", ""));
        libc.onIoctl = [this](int, unsigned long request, void* argument) {
            if (request == NVME_IOCTL_ID) {
                return nsid;
            }
            const auto* command = static_cast<const nvme_admin_cmd*>(argument);
            EXPECT_EQ(command->opcode, 6);
            const QRX_U16 vid = 0x7A51;
            std::memcpy(reinterpret_cast<void*>(command->addr), &vid, sizeof(vid));
            return 0;
        };
    }
    void mount(const std::string& table) { libc.redirect("/etc/mtab", scratch.file("mtab", table)); }

    Scratch scratch;
    Libc libc;
    int nsid = 1;
};

TEST_F(MountScan, AddsTheDiskThatCarriesBoot)
{
    mount("/dev/nvme0n1p2 / ext4 rw 0 0\n/dev/nvme0n1p1 /boot vfat rw 0 0\n");
    os_vol_scan();
    ASSERT_EQ(disks->m_os_count, 1);
    PQRXSystemDisk disk = disks->m_os_devs[0];
    EXPECT_STREQ(disk->m_dev->device_path, "/dev/nvme0n1");
    EXPECT_EQ(disk->m_dev->m_lock, nullptr);
    EXPECT_EQ(disk->getNSID(disk, 0), 1);
    nsid = 0x1FE;
    EXPECT_EQ(disk->getNSID(disk, 0), 0xFE);
    nsid = -1;
    EXPECT_EQ(disk->getNSID(disk, 0), 0xFF);
    disk->Final(disk);
    disks->m_os_count = 0;
    EXPECT_EQ(out.text() + errors.text(), "");
}

TEST_F(MountScan, ADiskThatCannotBeOpenedIsLeftOut)
{
    mount("/dev/nvme7n1p1 /boot vfat rw 0 0\n/dev/nvme0n1 /boot ext4 rw 0 0\n");
    libc.refuse("/dev/nvme7n1", EACCES);
    scanPhysicalDisk();
    EXPECT_EQ(disks->m_os_count, 0);
    EXPECT_EQ(libc.opened, (Names{"/etc/mtab", "/dev/nvme7n1", "/dev/nvme0n1 /boot ext4 rw 0 0"}));
    EXPECT_EQ(out.text() + errors.text(), "");
}

TEST_F(MountScan, WithoutAMountTableThereIsNothing)
{
    libc.refuse("/etc/mtab", ENOENT);
    os_vol_scan();
    EXPECT_EQ(disks->m_os_count, 0);
    EXPECT_EQ(out.text() + errors.text(), "");
}

TEST_F(MountScan, ShortMemoryClosesTheDescriptor)
{
    for (const int allocation : {1, 2}) {
        libc.closed.clear();
        libc.failAllocation(allocation);
        EXPECT_THROW(addSystemDisk("/dev/nvme0n1"), std::bad_alloc);
        EXPECT_EQ(disks->m_os_count, 0);
        EXPECT_EQ(libc.closed.size(), 1U);
    }
    libc.refuse("/etc/mtab", ENOMEM);
    EXPECT_THROW(os_vol_scan(), std::bad_alloc);
}

}  // namespace
