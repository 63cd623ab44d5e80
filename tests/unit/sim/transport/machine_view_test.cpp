// What a machine shows in its files.
#include "sim/transport/machine_view.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <numeric>

#include "sim/transport/smbios.h"
#include "tests/unit/sim/transport/stub_host.h"

namespace qrx::sim {
namespace {

std::string content(const Overlay& overlay, const std::string& path)
{
    const OverlayEntry* const entry = overlay.find(path);
    return entry == nullptr ? "(none)" : entry->content;
}

unsigned byte_at(const std::string& text, std::size_t offset)
{
    return static_cast<unsigned char>(text.at(offset));
}

TEST(MachineView, ControllerHasTheAttributesOfTheDriver)
{
    const StubHost host;
    const Overlay overlay = make_overlay(view_of(host));
    const std::string directory = "/sys/devices/pci0000:03/0000:03:00.0/nvme/nvme0/";
    const std::pair<const char*, const char*> expected[] = {
        {"address", "0000:03:00.0\n"},
        {"model", "STUB MODEL\n"},
        {"serial", "STUBSERIAL01\n"},
        {"firmware_rev", "1.2.3\n"},
        {"cntlid", "5\n"},
        {"subsysnqn", "nqn.2024-01.test:stub\n"},
        {"transport", "pcie\n"},
        {"state", "live\n"},
        {"dev", "240:0\n"},
        {"numa_node", "-1\n"},
        {"queue_count", "3\n"},
        {"nvme0n1/size", "2048\n"},
        {"nvme0n1/nsid", "1\n"},
        {"nvme0n1/dev", "259:0\n"},
        {"nvme0n1/queue/logical_block_size", "512\n"},
        {"nvme0n1/nguid", "00112233-4455-6677-8899-aabbccddeeff\n"},
        {"nvme0n1/wwid", "uuid.00112233-4455-6677-8899-aabbccddeeff\n"},
    };
    for (const auto& [name, value] : expected) {
        EXPECT_EQ(content(overlay, directory + name), value) << name;
    }
}

TEST(MachineView, TheFunctionTellsItsIdsAndThoseOfItsCustomer)
{
    const StubHost host;
    const Overlay overlay = make_overlay(view_of(host));
    const std::string function = "/sys/devices/pci0000:03/0000:03:00.0/";
    EXPECT_EQ(content(overlay, function + "vendor"), "0x7a51\n");
    EXPECT_EQ(content(overlay, function + "device"), "0x3317\n");
    EXPECT_EQ(content(overlay, function + "subsystem_vendor"), "0x1234\n");
    EXPECT_EQ(content(overlay, function + "subsystem_device"), "0xabcd\n");
    EXPECT_EQ(content(overlay, function + "uevent"),
              "DRIVER=nvme\nPCI_CLASS=10802\nPCI_ID=7A51:3317\nPCI_SUBSYS_ID=1234:ABCD\nPCI_SLOT_NAME=0000:03:00.0\n");
}

TEST(MachineView, SectorsOfOtherSizesAreCountedIn512Bytes)
{
    StubHost host;
    host.nodes.front().namespaces = {{3, 100, 4096, ""}};
    const Overlay overlay = make_overlay(view_of(host));
    EXPECT_EQ(content(overlay, "/sys/devices/pci0000:03/0000:03:00.0/nvme/nvme0/nvme0n3/size"), "800\n");
}

TEST(MachineView, EachControllerHasItsSubsystem)
{
    StubHost host;
    ControllerNode second = host.nodes.front();
    second.number = 3;
    second.address = "0000:1a:00.0";
    host.nodes.push_back(second);
    const Overlay overlay = make_overlay(view_of(host));
    EXPECT_EQ(content(overlay, "/sys/class/nvme-subsystem/nvme-subsys3"),
              "../../devices/virtual/nvme-subsystem/nvme-subsys3");
    EXPECT_EQ(content(overlay, "/sys/devices/virtual/nvme-subsystem/nvme-subsys3/nvme3"),
              "../../../pci0000:1a/0000:1a:00.0/nvme/nvme3");
}

TEST(Smbios, EntryPointAddsUpToZeroAndTellsTheTablesLength)
{
    const StubHost host;
    const SmbiosTables tables = make_smbios(host.nodes);
    ASSERT_EQ(tables.entry_point.size(), 24U);
    EXPECT_EQ(tables.entry_point.substr(0, 5), "_SM3_");
    EXPECT_EQ(byte_at(tables.entry_point, 6), 24U);
    EXPECT_EQ(byte_at(tables.entry_point, 7), 3U);
    unsigned sum = 0;
    for (std::size_t at = 0; at < 24; ++at) {
        sum += byte_at(tables.entry_point, at);
    }
    EXPECT_EQ(sum & 0xff, 0U);
    EXPECT_EQ(byte_at(tables.entry_point, 12) | byte_at(tables.entry_point, 13) << 8, tables.table.size());
}

TEST(Smbios, TableHoldsASlotForEachControllerAndItsEnd)
{
    StubHost host;
    ControllerNode second = host.nodes.front();
    second.address = "0000:1a:02.3";
    second.slot_id = 0x0112;
    host.nodes.push_back(second);
    const std::string table = make_smbios(host.nodes).table;
    std::vector<unsigned> types;
    std::vector<std::string> slots;
    for (std::size_t at = 0; at < table.size();) {
        const unsigned length = byte_at(table, at + 1);
        types.push_back(byte_at(table, at));
        if (types.back() == 9) {
            slots.push_back(table.substr(at, length));
        }
        at = table.find(std::string(2, '\0'), at + length) + 2;
    }
    EXPECT_THAT(types, testing::ElementsAre(0, 1, 9, 9, 127));
    ASSERT_EQ(slots.size(), 2U);
    const auto fields = [](const std::string& slot) {
        return std::vector<unsigned>{byte_at(slot, 7), byte_at(slot, 9), byte_at(slot, 10), byte_at(slot, 15),
                                     byte_at(slot, 16)};
    };
    EXPECT_THAT(fields(slots[0]), testing::ElementsAre(4, 7, 0, 3, 0));
    EXPECT_THAT(fields(slots[1]), testing::ElementsAre(4, 0x12, 1, 0x1a, 0x13));
}

TEST(Overlay, RealNvmeDevicesAreToldFromTheirNames)
{
    for (const char* const path :
         {"/dev/nvme0", "/dev/nvme0n1p2", "/dev/nvme-fabrics", "/dev/ng0n1", "/sys/class/nvme/nvme0",
          "/sys/block/nvme0n1", "/sys/devices/pci0000:00/0000:01:00.0/nvme/nvme0/model"}) {
        EXPECT_TRUE(is_real_nvme(path)) << path;
    }
    for (const char* const path :
         {"/dev/shm/nvme-notes/nvme0", "/dev/null", "/dev/ng", "/home/nvme0", "/sys/module/nvme",
          "/sys/bus/pci/drivers/nvme", "/dev/mapper/x", "/sys/devices/system/cpu"}) {
        EXPECT_FALSE(is_real_nvme(path)) << path;
    }
}

}  // namespace
}  // namespace qrx::sim
