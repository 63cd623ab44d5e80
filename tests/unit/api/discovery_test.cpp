// The scans, on a driver of the test's own: /dev/nvme<N> are files of a scratch directory, and their ioctls are
// answered here.
#include "api/src/device/linux/LinuxDeviceManagement.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <map>
#include <memory>
#include <new>
#include <set>
#include <string>
#include <vector>

#include "api/src/device/common/DefaultDevice.h"
#include "api/src/interface/api.h"
#include "api/src/interface/wire/adapter.h"
#include "api/src/interface/wire/nvme.h"
#include "api/src/interface/wire/nvme_ioctl.h"
#include "tests/unit/support/bytes.h"
#include "tests/unit/support/capture.h"
#include "tests/unit/support/libc.h"
#include "tests/unit/support/scripted_machine.h"

namespace {

using namespace qrx::test;

constexpr char kPipeline[] = "find /sys/devices | grep -o \"[0-9a-f]*:[0-9a-f]*.[0-9]/nvme/nvme[0-9]*\" | sort -u";

// One controller behind the driver.
struct Drive {
    QRX_U16 vid = 0x7A51;
    QRX_U16 did = 0x3317;
    QRX_U8 bus = 3;
    QRX_U8 device = 0;
    QRX_U8 function = 0;
    std::string subnqn = "nqn.2024-01.test:one";
    int identify_status = 0;
    int adapter_status = 0;
    QRX_U8 cmd_status = 0;
    int adapter_reads_until_refusal = 1000;  // then adapter_status_later
    int adapter_status_later = 0;
};

class Discovery : public testing::Test {
protected:
    Discovery()
    {
        libc.onPopen = [this](const char* command, const char* mode) -> FILE* {
            EXPECT_STREQ(command, kPipeline);
            EXPECT_STREQ(mode, "r");
            return pipeline_fails ? nullptr : fmemopen(lines.data(), lines.size(), "r");
        };
        libc.onPclose = [](FILE* file) { return std::fclose(file); };
        libc.onIoctl = [this](int fd, unsigned long request, void* argument) { return answer(fd, request, argument); };
        libc.onTime = [] { return std::time_t{0x5F123456}; };
        libc.onSemOpen = [this](const char* name, int) {
            lock_names.insert(name);
            errno = EACCES;
            return static_cast<sem_t*>(SEM_FAILED);
        };
        libc.refuse("/sys/firmware/dmi/tables/smbios_entry_point", ENOENT);
    }
    ~Discovery() override
    {
        gVIDFormCLI = 0;
        GetDeviceManagementInstance()->m_sysDenied = 0;
    }

    // A device node and what is behind it. The file's name tells the ioctl which drive it is.
    void add(unsigned number, const Drive& drive)
    {
        const std::string path = "/dev/nvme" + std::to_string(number);
        libc.redirect(path, scratch.file("nvme" + std::to_string(number), ""));
        drives[number] = drive;
    }

    int answer(int fd, unsigned long request, void* argument)
    {
        EXPECT_EQ(request, NVME_IOCTL_ADMIN_CMD);
        char link[256] = {};
        const std::string self = "/proc/self/fd/" + std::to_string(fd);
        EXPECT_GT(readlink(self.c_str(), link, sizeof(link) - 1), 0);
        const std::string target(link);
        const unsigned number = static_cast<unsigned>(std::stoul(target.substr(target.rfind("nvme") + 4)));
        Drive& drive = drives.at(number);

        nvme_admin_cmd command;
        std::memcpy(&command, argument, sizeof(command));
        auto* data = reinterpret_cast<QRX_U8*>(command.addr);
        if (command.opcode == 6) {
            sent.push_back(std::to_string(number) + " identify");
            EXPECT_EQ(command.cdw10, 1U);
            EXPECT_EQ(command.nsid, 0U);
            EXPECT_EQ(command.data_len, 4096U);
            nvme_id_ctrl ctrl{};
            ctrl.vid = drive.vid;
            std::copy(drive.subnqn.begin(), drive.subnqn.end(), ctrl.subnqn);
            std::memcpy(data, &ctrl, sizeof(ctrl));
            return drive.identify_status;
        }
        EXPECT_EQ(command.opcode, 226);
        if (command.cdw12 == 0x03E0) {
            sent.push_back(std::to_string(number) + " time");
            EXPECT_EQ(command.cdw13, 0x5F120000U);
            EXPECT_EQ(command.cdw14, 0x3456U);
            EXPECT_EQ(command.data_len, 0U);
            return 0;
        }
        sent.push_back(std::to_string(number) + " adapter");
        nvme_admin_cmd expected{};
        expected.opcode = 226;
        expected.cdw12 = 0x00E0;
        expected.data_len = 4096;
        expected.addr = command.addr;
        EXPECT_EQ(bytesOf(command), bytesOf(expected));
        NVME_Adapter_Info info{};
        info.VID = drive.vid;
        info.DID = drive.did;
        info.BusNumber = drive.bus;
        info.DeviceNumber = drive.device;
        info.FunctionNumber = drive.function;
        const Bytes page = padded(envelope(info, drive.cmd_status), 4096);
        std::memcpy(data, page.data(), page.size());
        return drive.adapter_reads_until_refusal-- > 0 ? drive.adapter_status : drive.adapter_status_later;
    }

    void scan()
    {
        PDeviceManagement table = GetDeviceManagementInstance();
        table->ScanV2(table);
    }
    static PDevice slot(QRX_U16 index)
    {
        PDeviceManagement table = GetDeviceManagementInstance();
        return table->getDevice(table, index);
    }

    ScriptedMachine emptyTable;
    Scratch scratch;
    Libc libc;
    StdoutCapture out;
    StderrCapture errors;
    std::map<unsigned, Drive> drives;
    std::vector<std::string> sent;
    std::set<std::string> lock_names;
    std::string lines;
    bool pipeline_fails = false;
};

TEST_F(Discovery, FindsAControllerAndLearnsItsIdentity)
{
    lines = "03:00.0/nvme/nvme2\n";
    Drive drive;
    drive.bus = 0x1A;
    drive.device = 5;
    drive.function = 1;
    add(2, drive);
    scan();
    ASSERT_EQ(QRX_Adapter_GetCount(), 1);
    EXPECT_STREQ(slot(0)->bus_dev_fun, "1a:05.01");
    EXPECT_STREQ(slot(0)->device_path, "/dev/nvme2");
    EXPECT_EQ(slot(0)->slot_id, -1);
    std::string name = "nqn.2024-01.test:one";
    name.resize(223, ' ');
    EXPECT_EQ(std::string(slot(0)->subnqn), name);
    EXPECT_EQ(slot(0)->m_lock, nullptr);
    EXPECT_EQ(sent, (std::vector<std::string>{"2 identify", "2 adapter", "2 adapter", "2 identify"}));
    EXPECT_EQ(out.text() + errors.text(), "");
}

TEST_F(Discovery, WithoutThePipelineThereAreNoControllers)
{
    pipeline_fails = true;
    scan();
    EXPECT_EQ(QRX_Adapter_GetCount(), 0);
    EXPECT_EQ(out.text() + errors.text(), "");
}

TEST_F(Discovery, IndexOrderIsDeviceNumberOrder)
{
    lines =
        "03:00.0/nvme/nvme10\n"
        "04:00.0/nvme/nvme5\n"
        "05:00.0/nvme/nvme1\n";
    add(10, {});
    add(5, {});
    add(1, {});
    scan();
    ASSERT_EQ(QRX_Adapter_GetCount(), 3);
    EXPECT_STREQ(slot(0)->device_path, "/dev/nvme1");
    EXPECT_STREQ(slot(1)->device_path, "/dev/nvme5");
    EXPECT_STREQ(slot(2)->device_path, "/dev/nvme10");
    int number = 5;
    int index = -1;
    EXPECT_TRUE(SetAdapterIdFromDeviceName(&number, &index));
    EXPECT_EQ(index, 1);
    EXPECT_EQ(lock_names, (std::set<std::string>{"qrxd00", "qrxd01", "qrxd02"}));
}

TEST_F(Discovery, AnotherVendorsDriveIsClosedInSilence)
{
    lines =
        "03:00.0/nvme/nvme0\n"
        "04:00.0/nvme/nvme1\n";
    Drive other;
    other.vid = 0x144D;
    add(0, other);
    add(1, {});
    scan();
    ASSERT_EQ(QRX_Adapter_GetCount(), 1);
    EXPECT_STREQ(slot(0)->device_path, "/dev/nvme1");
    EXPECT_EQ(sent.front(), "0 identify");
    EXPECT_EQ(sent[1], "1 identify");
    EXPECT_EQ(out.text() + errors.text(), "");
    ASSERT_EQ(libc.closed.size(), 1U);  // the other one is open still
}

TEST_F(Discovery, DevicesThatFailTheCheckAreDropped)
{
    lines =
        "03:00.0/nvme/nvme0\n"
        "04:00.0/nvme/nvme1\n"
        "05:00.0/nvme/nvme2\n"
        "06:00.0/nvme/nvme3\n";
    Drive drive;
    drive.did = 0x3318;
    add(0, drive);
    drive = {};
    drive.identify_status = 2;
    add(1, drive);
    drive = {};
    drive.adapter_status = 0x705;
    add(2, drive);
    drive = {};
    drive.cmd_status = 5;
    add(3, drive);
    scan();
    EXPECT_EQ(QRX_Adapter_GetCount(), 0);
    EXPECT_EQ(sent, (std::vector<std::string>{"0 identify", "0 adapter", "1 identify", "2 identify", "2 adapter",
                                              "3 identify", "3 adapter"}));
    EXPECT_EQ(out.text() + errors.text(), "");
}

TEST_F(Discovery, WithAWantedVendorOnlyItsDrivesAreKeptAndTheTreeGivesTheirPlace)
{
    gVIDFormCLI = 0x1234;
    lines =
        "03:00.0/nvme/nvme0\n"
        "0c:1d.5/nvme/nvme1\n";
    add(0, {});
    Drive wanted;
    wanted.vid = 0x1234;
    wanted.did = 0xFFFF;
    wanted.adapter_status = 1;
    add(1, wanted);
    scan();
    ASSERT_EQ(QRX_Adapter_GetCount(), 1);
    EXPECT_STREQ(slot(0)->device_path, "/dev/nvme1");
    EXPECT_STREQ(slot(0)->bus_dev_fun, "0c:1d.5");
    EXPECT_STREQ(slot(0)->getNVMEDevice(slot(0))->bus_dev_fun, "0c:1d.5");
    EXPECT_EQ(sent, (std::vector<std::string>{"0 identify", "1 identify", "1 adapter", "1 identify"}));
}

TEST_F(Discovery, ARefusedPlaceIsNotNoticed)
{
    gVIDFormCLI = 0x7A51;
    lines = "0c:1d.5/nvme/nvme0\n";
    Drive drive;
    drive.cmd_status = 3;
    add(0, drive);
    scan();
    ASSERT_EQ(QRX_Adapter_GetCount(), 1);
    EXPECT_STREQ(slot(0)->bus_dev_fun, "");
}

TEST_F(Discovery, APlaceReadThatFailsAfterTheCheckFallsBackToTheTree)
{
    lines = "0c:1d.5/nvme/nvme0\n";
    Drive drive;
    drive.adapter_reads_until_refusal = 1;
    drive.adapter_status_later = 6;
    add(0, drive);
    scan();
    ASSERT_EQ(QRX_Adapter_GetCount(), 1);
    EXPECT_STREQ(slot(0)->bus_dev_fun, "0c:1d.5");
}

TEST_F(Discovery, AFunctionOfEightAndMoreIsARoutingNumber)
{
    lines = "03:00.0/nvme/nvme0\n";
    Drive drive;
    drive.bus = 0xFE;
    drive.device = 9;
    drive.function = 0xFF;
    add(0, drive);
    scan();
    EXPECT_STREQ(slot(0)->bus_dev_fun, "fe:1f.07");
    char bdf[32] = "";
    drives[0].function = 8;
    EXPECT_EQ(GetBDFfromSimpleAdapterInfo(slot(0)->getNVMEDevice(slot(0)), bdf), 0U);
    EXPECT_STREQ(bdf, "fe:01.00");
    drives[0].function = 7;
    EXPECT_EQ(GetBDFfromSimpleAdapterInfo(slot(0)->getNVMEDevice(slot(0)), bdf), 0U);
    EXPECT_STREQ(bdf, "fe:09.07");
}

TEST_F(Discovery, EachDeviceThatCannotBeOpenedIsTold)
{
    lines =
        "03:00.0/nvme/nvme0\n"
        "04:00.0/nvme/nvme1\n"
        "05:00.0/nvme/nvme2\n";
    libc.refuse("/dev/nvme0", ENODEV);
    add(1, {});
    libc.refuse("/dev/nvme2", ENXIO);
    scan();
    EXPECT_EQ(QRX_Adapter_GetCount(), 1);
    EXPECT_EQ(out.text(),
              "  [/dev/nvme0]: open fail, errno=19, No such device\n"
              "  [/dev/nvme2]: open fail, errno=6, No such device or address\n");
    EXPECT_EQ(QRX_IsSysDenied(), 0);
}

TEST_F(Discovery, AMissingPermissionIsNoted)
{
    lines = "03:00.0/nvme/nvme0\n";
    libc.refuse("/dev/nvme0", EACCES);
    scan();
    EXPECT_EQ(QRX_Adapter_GetCount(), 0);
    EXPECT_EQ(out.text(), "  [/dev/nvme0]: open fail, errno=13, Permission denied\n");
    EXPECT_EQ(QRX_IsSysDenied(), 1);
}

TEST_F(Discovery, TellsTheSlotOfTheMachine)
{
    lines = "03:00.0/nvme/nvme0\n";
    add(0, {});
    std::string entry("_SM3_\0\x18\3\2\1", 10);
    entry.resize(24);
    std::string table =
        std::string("\x09\x11\0\0\xAA\xAA\xAA\x04\xAA\x2A\0\xAA\0\0\0\x03\0", 17) + std::string(2, '\0');
    entry[12] = static_cast<char>(table.size());
    int sum = 0;
    for (const char c : entry) {
        sum += static_cast<unsigned char>(c);
    }
    entry[5] = static_cast<char>(-sum);
    libc.refused.clear();
    libc.redirect("/sys/firmware/dmi/tables/smbios_entry_point", scratch.file("entry", entry));
    libc.redirect("/sys/firmware/dmi/tables/DMI", scratch.file("table", table));
    scan();
    EXPECT_EQ(QRX_Adapter_GetSlotID(0), 0x2A);
}

TEST_F(Discovery, MoreControllersThanTheTableHoldsAreLeftOutAndToldOnce)
{
    for (unsigned number = 0; number < 5; ++number) {
        lines += "03:00.0/nvme/nvme" + std::to_string(number) + "\n";
        add(number, {});
    }
    PDeviceManagement table = GetDeviceManagementInstance();
    // Stand-ins fill all slots but two.
    for (std::size_t i = 0; i < kMaxDevices - 2; ++i) {
        emptyTable.addController({.path = "/dev/nvme" + std::to_string(5000 + i)});
    }
    scan();
    EXPECT_EQ(table->getDeviceCount(table), kMaxDevices);
    EXPECT_EQ(errors.text(), "More NVMe Controllers than the 1088 that can be managed.\n");
    EXPECT_EQ(table->getDevice(table, 1088), CreateDefaultDeviceInstance());
    EXPECT_STREQ(slot(0)->device_path, "/dev/nvme0");
    EXPECT_STREQ(slot(1)->device_path, "/dev/nvme1");
}

TEST_F(Discovery, ShortMemoryFindsAllControllersOrEndsTheScan)
{
    lines =
        "03:00.0/nvme/nvme0\n"
        "04:00.0/nvme/nvme1\n";
    add(0, {});
    add(1, {});
    PDeviceManagement table = GetDeviceManagementInstance();
    int ended = 0;
    for (int n = 1; n < 30; ++n) {
        libc.opened.clear();
        libc.closed.clear();
        libc.failAllocation(n);
        try {
            scan();
            EXPECT_EQ(table->getDeviceCount(table), 2) << n;
        } catch (const std::bad_alloc&) {
            ++ended;
        }
        libc.failAllocation(0);
        table->Final(table);
        EXPECT_EQ(table->getDeviceCount(table), 0);
        EXPECT_EQ(libc.closed.size(),
                  std::count_if(libc.opened.begin(), libc.opened.end(),
                                [](const std::string& path) { return path.starts_with("/dev/nvme"); }))
            << n;
    }
    EXPECT_EQ(ended, 5);  // the records; a device and its place in the table for each controller
    EXPECT_EQ(out.text(), "");
}

TEST_F(Discovery, AScanThatMemoryIsShortForEnds)
{
    libc.onPopen = [](const char*, const char*) -> FILE* {
        errno = ENOMEM;
        return nullptr;
    };
    EXPECT_THROW(scan(), std::bad_alloc);
    libc.onPopen = [](const char*, const char*) -> FILE* {
        errno = EMFILE;
        return nullptr;
    };
    scan();
    EXPECT_EQ(QRX_Adapter_GetCount(), 0);
}

TEST_F(Discovery, InitFindsSetsTheClocksAndFinalClosesAll)
{
    lines =
        "03:00.0/nvme/nvme3\n"
        "04:00.0/nvme/nvme1\n";
    add(3, {});
    add(1, {});
    libc.refuse("/etc/mtab", ENOENT);
    QRX_Init();
    EXPECT_EQ(QRX_Adapter_GetCount(), 2);
    EXPECT_EQ(sent, (std::vector<std::string>{"3 identify", "3 adapter", "3 adapter", "3 identify", "1 identify",
                                              "1 adapter", "1 adapter", "1 identify", "1 time", "3 time"}));
    EXPECT_EQ(libc.opened.back(), "/etc/mtab");
    libc.closed.clear();
    QRX_Final();
    EXPECT_EQ(libc.closed.size(), 2U);
    EXPECT_EQ(QRX_Adapter_GetCount(), 0);
    EXPECT_EQ(out.text() + errors.text(), "");
}

TEST_F(Discovery, TheScanTableIsNotTouchedBeyondItsLines)
{
    lines = "03:00.0/nvme/nvme0\n";
    add(0, {});
    const auto residentPages = [] {
        long size = 0;
        long resident = 0;
        FILE* statm = std::fopen("/proc/self/statm", "r");
        EXPECT_EQ(std::fscanf(statm, "%ld %ld", &size, &resident), 2);
        std::fclose(statm);
        return resident;
    };
    PDeviceManagement table = GetDeviceManagementInstance();
    scan();
    table->Final(table);
    // The table is open while the pipeline runs: look then.
    long during = 0;
    libc.onPclose = [&](FILE* file) {
        during = residentPages();
        return std::fclose(file);
    };
    const long before = residentPages();
    scan();
    EXPECT_LT(during - before, 100);  // of the 640 pages of a table touched whole
}

TEST_F(Discovery, ScanOverDevTakesTheControllersAsTheyCome)
{
    add(4, {});
    Drive other;
    other.vid = 0x144D;
    add(11, other);
    libc.redirect("/dev", scratch.path(""));
    scratch.file("nvme4n1", "");
    scratch.file("nvme-fabrics", "");
    scratch.file("sda", "");
    scratch.file("xnvme4", "");
    PDeviceManagement table = GetDeviceManagementInstance();
    table->Scan(table);
    ASSERT_EQ(QRX_Adapter_GetCount(), 1);
    EXPECT_STREQ(slot(0)->device_path, "");
    EXPECT_STREQ(slot(0)->bus_dev_fun, "");
    std::vector<std::string> opened = libc.opened;
    std::sort(opened.begin(), opened.end());
    EXPECT_EQ(opened, (std::vector<std::string>{"/dev", "/dev/nvme11", "/dev/nvme4"}));
    EXPECT_EQ(out.text(), "");
}

TEST_F(Discovery, ScanOverDevEndsAtADeviceThatCannotBeOpened)
{
    for (unsigned number = 0; number < 3; ++number) {
        add(number, {});
        libc.refuse("/dev/nvme" + std::to_string(number), EACCES);
    }
    libc.redirect("/dev", scratch.path(""));
    PDeviceManagement table = GetDeviceManagementInstance();
    table->Scan(table);
    EXPECT_EQ(libc.opened.size(), 2U);
    EXPECT_EQ(QRX_IsSysDenied(), 1);
    EXPECT_EQ(out.text(), "");
    libc.refuse("/dev", ENOENT);
    table->Scan(table);
    EXPECT_EQ(QRX_Adapter_GetCount(), 0);
}

std::pair<QRX_U32, std::string> parsed(const std::string& line)
{
    BusDevFun record{};
    record.id = 77;
    std::snprintf(record.bus_dev_fun, sizeof(record.bus_dev_fun), "before");
    parseBusDevFun(&record, line.c_str());
    return {record.id, record.bus_dev_fun};
}

TEST(ScanLine, GivesTheLocationAndTheNumber)
{
    using Result = std::pair<QRX_U32, std::string>;
    EXPECT_EQ(parsed("03:00.0/nvme/nvme2\n"), Result(2, "03:00.0"));
    EXPECT_EQ(parsed("1a:1f.7/nvme/nvme1087"), Result(1087, "1a:1f.7"));
    EXPECT_EQ(parsed(":.0/nvme/nvme\n"), Result(0, ":.0"));
}

TEST(ScanLine, WithoutTheMarkNothingIsTaken)
{
    using Result = std::pair<QRX_U32, std::string>;
    EXPECT_EQ(parsed(""), Result(77, "before"));
    EXPECT_EQ(parsed("03:00.0/nvm/nvme2\n"), Result(77, "before"));
    EXPECT_EQ(parsed("nvme/nvme2\n"), Result(77, "before"));
}

TEST(ScanLine, NoLineOverflowsTheRecord)
{
    using Result = std::pair<QRX_U32, std::string>;
    EXPECT_EQ(parsed("/nvme/nvme3"), Result(3, "before"));
    EXPECT_EQ(parsed("/nvme/"), Result(0, "before"));
    EXPECT_EQ(parsed("a/nvme/nvm"), Result(0, "a"));
    EXPECT_EQ(parsed(std::string(4000, 'a') + "/nvme/nvme3"), Result(3, std::string(31, 'a')));
    EXPECT_EQ(parsed(" 03:00.0 x/nvme/nvme3"), Result(3, "03:00.0"));
    EXPECT_EQ(parsed("a/nvme/nvme99999999999999999999"), Result(2147483647, "a"));
}

class ScanPipeline : public testing::Test {
protected:
    QRX_U32 scan(std::string lines)
    {
        records.assign(kMaxScanLines, BusDevFun{});
        libc.onPopen = [&lines](const char*, const char*) { return fmemopen(lines.data(), lines.size(), "r"); };
        libc.onPclose = [](FILE* file) { return std::fclose(file); };
        return busDevFunScan(records.data());
    }
    Libc libc;
    std::vector<BusDevFun> records;
    StderrCapture errors;
};

TEST_F(ScanPipeline, MoreLinesThanRecordsAreDroppedAndToldOnce)
{
    std::string lines;
    for (unsigned i = 0; i < kMaxScanLines + 100; ++i) {
        lines += "0:0.0/nvme/nvme" + std::to_string(i) + "\n";
    }
    EXPECT_EQ(scan(lines), kMaxScanLines);
    EXPECT_EQ(records.front().id, 0U);
    EXPECT_EQ(records.back().id, kMaxScanLines - 1);
    EXPECT_EQ(errors.text(), "More lines of NVMe Controllers than the 65535 that can be scanned.\n");
}

TEST_F(ScanPipeline, ALineLongerThanTheBufferIsOneLine)
{
    EXPECT_EQ(scan(std::string(10000, 'a') + "/nvme/nvme8\n1:0.0/nvme/nvme9\n"), 2U);
    EXPECT_STREQ(records[0].bus_dev_fun, "");
    EXPECT_EQ(records[1].id, 9U);
    EXPECT_STREQ(records[1].bus_dev_fun, "1:0.0");
}

TEST_F(ScanPipeline, ALastLineWithoutItsEndCounts)
{
    EXPECT_EQ(scan("1:0.0/nvme/nvme9\n2:0.0/nvme/nvme10"), 2U);
    EXPECT_EQ(records[1].id, 10U);
    EXPECT_EQ(errors.text(), "");
}

class DeviceChecks : public testing::Test {
protected:
    DeviceChecks() : device(machine.makeDevice(0)) {}
    ~DeviceChecks() override
    {
        device->closeHandle(device);
        gVIDFormCLI = 0;
    }
    static Command identify(const nvme_id_ctrl& ctrl)
    {
        return Command::admin(6, 0, {1}).receives(4096).carries(Bytes(4096)).data(bytesOf(ctrl));
    }
    static Command adapter(const NVME_Adapter_Info& info, QRX_U8 cmd_status = 0)
    {
        return Command::vendor(0x00E0)
            .flag(0x5001)
            .receives(4096)
            .carries(Bytes(4096))
            .data(envelope(info, cmd_status));
    }
    ScriptedMachine machine;
    PDevice device;
};

TEST_F(DeviceChecks, KeepsOurVendorAndDevice)
{
    nvme_id_ctrl ctrl{};
    ctrl.vid = 0x7A51;
    NVME_Adapter_Info info{};
    info.DID = 0x3317;
    machine.expect(identify(ctrl));
    machine.expect(adapter(info));
    EXPECT_EQ(DeviceManagement_identify(device), 1);
}

TEST_F(DeviceChecks, TheWantedVendorAloneDecides)
{
    nvme_id_ctrl ctrl{};
    ctrl.vid = 0x1234;
    gVIDFormCLI = 0x1234;
    machine.expect(identify(ctrl));
    EXPECT_EQ(DeviceManagement_identify(device), 1);
    ctrl.vid = 0x7A51;
    machine.expect(identify(ctrl));
    EXPECT_EQ(DeviceManagement_identify(device), 0);
}

TEST_F(DeviceChecks, VendorCommandSupportIsWhetherTheAdapterReadWorks)
{
    const NVME_Adapter_Info info{};
    machine.expect(adapter(info));
    EXPECT_EQ(IsSupportVenderCmd(device), 1);
    machine.expect(adapter(info, 1));
    EXPECT_EQ(IsSupportVenderCmd(device), 0);
    machine.expect(adapter(info).status(1));
    EXPECT_EQ(IsSupportVenderCmd(device), 0);
}

TEST_F(DeviceChecks, TheNameIs223CharactersWithBlanksForZeroes)
{
    nvme_id_ctrl ctrl{};
    std::fill(std::begin(ctrl.subnqn), std::end(ctrl.subnqn), QRX_U8{'z'});
    std::memcpy(ctrl.subnqn, "nqn\0x", 5);
    machine.expect(identify(ctrl));
    std::string name(256, '#');
    get_identify_subnqn_gen(device, name.data());
    EXPECT_EQ(name, "nqn x" + std::string(218, 'z') + std::string(33, '#'));
    machine.expect(identify(ctrl).status(2));
    get_identify_subnqn_gen(device, name.data());
    EXPECT_EQ(name, std::string(223, '\0') + std::string(33, '#'));
}

TEST_F(DeviceChecks, TheShorterNameEndsInANumber)
{
    nvme_id_ctrl ctrl{};
    std::memcpy(ctrl.subnqn, "nqn", 3);
    const QRX_U32 number = 4000000123;
    std::memcpy(ctrl.subnqn + 60, &number, 4);
    machine.expect(identify(ctrl));
    std::string name(256, '#');
    get_identify_subnqn(device, name.data());
    EXPECT_EQ(name.substr(0, name.find('\0')), "nqn" + std::string(57, ' ') + "4000000123");
    EXPECT_EQ(name.substr(92), std::string(164, '#'));
}

TEST(Sorting, IsAscendingByDeviceNumber)
{
    std::array<Device, 5> devices{};
    const char* paths[] = {"/dev/nvme10", "/dev/nvme9", "/dev/nvme0", "/dev/nvme100", "/dev/nvme2"};
    std::vector<PDevice> order;
    for (std::size_t i = 0; i < devices.size(); ++i) {
        std::snprintf(devices[i].device_path, sizeof(devices[i].device_path), "%s", paths[i]);
        order.push_back(&devices[i]);
    }
    sorting(order.data(), 5);
    std::vector<std::string> sorted;
    std::transform(order.begin(), order.end(), std::back_inserter(sorted),
                   [](PDevice device) { return std::string(device->device_path); });
    EXPECT_EQ(sorted,
              (std::vector<std::string>{"/dev/nvme0", "/dev/nvme2", "/dev/nvme9", "/dev/nvme10", "/dev/nvme100"}));
}

}  // namespace
