// The test whether a virtual disk carries the running system.
#include <gtest/gtest.h>

#include <cstdio>
#include <map>

#include "api/src/function/systemdisk/systemdisk.h"
#include "api/src/interface/vd.h"
#include "api/src/interface/wire/ns.h"
#include "tests/unit/support/capture.h"
#include "tests/unit/support/scripted_machine.h"

namespace {

using namespace qrx::test;

constexpr QRX_U16 kVd = 0x0102;
constexpr QRX_U8 kNsid = 0x37;

// System disks that know their namespace id, and count how often they were asked for it.
class SystemDisks {
public:
    SystemDisks()
    {
        list()->Final(list());
        asked() = 0;
    }
    ~SystemDisks() { list()->Final(list()); }
    SystemDisks(const SystemDisks&) = delete;
    SystemDisks& operator=(const SystemDisks&) = delete;

    void add(ScriptedMachine& machine, const char* path, QRX_U8 nsid)
    {
        PQRXSystemDisk disk = CreateQRXSystemDiskInstance(machine.makeDevice(9), path);
        disk->m_path[0] = static_cast<char>(nsid);  // a place of its own that nobody else uses
        disk->getNSID = [](PQRXSystemDisk self, QRX_U8) {
            ++asked();
            return static_cast<QRX_U8>(self->m_path[0]);
        };
        list()->m_os_devs[list()->m_os_count++] = disk;
    }
    static int& asked()
    {
        static int count = 0;
        return count;
    }

private:
    static PNVMEDiskManagement list() { return GetNVMEDiskManagementInstance(); }
};

class OsGuard : public testing::Test {
protected:
    OsGuard()
    {
        machine.addController({.path = "/dev/nvme1"});
        machine.addController({.path = "/dev/nvme3"});
        adapter.MaxNS = 42;
        adapter.MaxPD = 1;
    }
    static NVME_NS_Info record()
    {
        NVME_NS_Info ns{};
        ns.NSID = kNsid;
        ns.device_type = kNsParentVd;
        ns.ID = kVd;
        ns.Status = 0x80;  // any bit will do
        return ns;
    }
    void expectNs(const Bytes& records, QRX_U8 cmd_status = 0)
    {
        machine.expect(Command::vendor(0x00E5)
                           .flag(0x1001)
                           .receives(4096)
                           .carries(Bytes(4096))
                           .on(1)
                           .data(envelope(records, cmd_status)));
    }
    void expectAdapter()
    {
        machine.expect(
            Command::vendor(0x00E0).flag(0x5001).receives(4096).carries(Bytes(4096)).on(1).data(envelope(adapter)));
    }
    // The answer for a list with `ns` at place `slot`.
    QRX_U32 ask(const NVME_NS_Info& ns, std::size_t slot = 0, QRX_U8 maxNS = 255)
    {
        Bytes list(42 * sizeof(ns));
        const Bytes bytes = bytesOf(ns);
        std::copy(bytes.begin(), bytes.end(), list.begin() + static_cast<std::ptrdiff_t>(slot * sizeof(ns)));
        expectNs(list);
        expectAdapter();
        return QRX_VD_Has_OS(1, kVd, maxNS);
    }

    GlobalsGuard globals;
    ScriptedMachine machine;
    SystemDisks disks;
    NVME_Adapter_Info adapter{};
    StdoutCapture out;
};

TEST_F(OsGuard, AVdWithASystemDiskHasTheOs)
{
    disks.add(machine, "/dev/nvme3n1", kNsid);
    EXPECT_EQ(ask(record()), 256U);
    EXPECT_EQ(out.text(), "");
}

TEST_F(OsGuard, EverySystemDiskAndEveryRecordIsTried)
{
    disks.add(machine, "/dev/nvme1n1", kNsid);
    disks.add(machine, "/dev/nvme3n2", kNsid + 1);
    disks.add(machine, "/dev/nvme3n1", kNsid);
    EXPECT_EQ(ask(record(), 41), 256U);
    EXPECT_EQ(SystemDisks::asked(), 3);
}

TEST_F(OsGuard, WithNoSystemDiskTheNamespacesAreReadAllTheSame)
{
    EXPECT_EQ(ask(record()), 0U);
}

TEST_F(OsGuard, EachFieldOfTheRecordDecides)
{
    disks.add(machine, "/dev/nvme3n1", kNsid);
    NVME_NS_Info ns = record();
    ns.Status = 0;
    EXPECT_EQ(ask(ns), 0U);
    ns = record();
    ns.ID = kVd + 1;  // a namespace of another VD
    EXPECT_EQ(ask(ns), 0U);
    ns = record();
    ns.device_type = kNsParentPd;
    EXPECT_EQ(ask(ns), 0U);
    EXPECT_EQ(SystemDisks::asked(), 0);
    ns = record();
    ns.NSID = kNsid + 1;
    EXPECT_EQ(ask(ns), 0U);
    EXPECT_EQ(SystemDisks::asked(), 1);
}

TEST_F(OsGuard, ASystemDiskOfAnotherControllerDoesNotCount)
{
    disks.add(machine, "/dev/nvme1n1", kNsid);
    EXPECT_EQ(ask(record()), 0U);
}

TEST_F(OsGuard, PathsAreComparedAsPrefixes)
{
    disks.add(machine, "/dev/nvme30n1", kNsid);
    EXPECT_EQ(ask(record()), 256U);
}

TEST_F(OsGuard, OnlyAsManyRecordsCountAsTheControllerHas)
{
    disks.add(machine, "/dev/nvme3n1", kNsid);
    adapter.MaxNS = 3;
    EXPECT_EQ(ask(record(), 2), 256U);
    EXPECT_EQ(ask(record(), 3), 0U);
    adapter.MaxNS = 0;
    EXPECT_EQ(ask(record(), 0), 0U);
    adapter.MaxNS = 255;
    EXPECT_EQ(ask(record(), 2, 3), 256U);
    EXPECT_EQ(ask(record(), 3, 3), 0U);
    EXPECT_EQ(ask(record(), 0, 0), 0U);
    EXPECT_EQ(ask(record(), 41, 42), 256U);
}

TEST_F(OsGuard, NamespacesThatCannotBeReadAreOne)
{
    disks.add(machine, "/dev/nvme3n1", kNsid);
    expectNs(bytesOf(record()), 9);
    EXPECT_EQ(QRX_VD_Has_OS(1, kVd, 42), 1U);
    machine.expect(Command::vendor(0x00E5).flag(0x1001).receives(4096).on(1).status(2));
    EXPECT_EQ(QRX_VD_Has_OS(1, kVd, 42), 1U);
    EXPECT_EQ(out.text(), "Invalid Field in Command (Status Code: 0x2)\n");
}

TEST_F(OsGuard, AControllerThatCannotBeReadIsOneInSilence)
{
    disks.add(machine, "/dev/nvme3n1", kNsid);
    expectNs(bytesOf(record()));
    machine.expect(Command::vendor(0x00E0).flag(0x5001).receives(4096).on(1).status(2));
    EXPECT_EQ(QRX_VD_Has_OS(1, kVd, 42), 1U);
    EXPECT_EQ(out.text(), "");
}

TEST_F(OsGuard, ARefusedControllerRecordListsNothing)
{
    disks.add(machine, "/dev/nvme3n1", kNsid);
    expectNs(bytesOf(record()));
    machine.expect(Command::vendor(0x00E0).flag(0x5001).receives(4096).on(1).data(envelope(adapter, 4)));
    EXPECT_EQ(QRX_VD_Has_OS(1, kVd, 42), 0U);
}

TEST_F(OsGuard, AnEmptySlotOfTheTableIsOne)
{
    EXPECT_EQ(QRX_VD_Has_OS(7, kVd, 42), 1U);
}

}  // namespace
