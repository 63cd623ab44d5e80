// The text form of a machine: what is refused, and in which words.
#include <gtest/gtest.h>

#include "sim/firmware/factory.h"

namespace qrx::sim {

namespace {

std::string error_of(std::string_view text)
{
    return load_machine(text, "lab.json").error();
}

// A controller on line 3 whose members begin there, so that line 4 is the first one inside `inner`.
std::string error_in_controller(const std::string& inner)
{
    return error_of("{\n\"controllers\": [\n{\n" + inner + "\n}]}");
}

TEST(MachineText, AnEmptyObjectIsAMachineWithoutDevices)
{
    const auto machine = load_machine("{}", "lab.json");
    ASSERT_TRUE(machine) << machine.error();
    EXPECT_TRUE((*machine)->controllers().empty());
    EXPECT_EQ((*machine)->mount_table(),
              "proc /proc proc rw,nosuid,nodev,noexec,relatime 0 0\n"
              "/dev/sda2 / ext4 rw,relatime 0 0\n"
              "/dev/sda1 /boot vfat rw,relatime 0 0\n");
}

TEST(MachineText, AnEmptyMountTableIsThatOfTheHost)
{
    const auto machine = load_machine(R"({"mount_table": []})", "lab.json");
    ASSERT_TRUE(machine) << machine.error();
    EXPECT_EQ((*machine)->mount_table(), "");
    const auto again = load_machine(save_machine(**machine), "lab.json");
    ASSERT_TRUE(again) << again.error();
    EXPECT_EQ((*again)->mount_table(), "");
}

TEST(MachineText, AControllerHasADefaultForEverything)
{
    const auto machine = load_machine(R"({"controllers": [{}]})", "lab.json");
    ASSERT_TRUE(machine) << machine.error();
    const auto nodes = (*machine)->controllers();
    ASSERT_EQ(nodes.size(), 1U);
    EXPECT_EQ(nodes[0].address, "0000:03:00.0");
    EXPECT_EQ(nodes[0].serial, "QRXSIM0000");
}

TEST(MachineText, IdentifiersDependOnSerialAndNsidAlone)
{
    const std::string text = R"({"controllers": [{"serial": "S", "drives": [{"id": 0}],
        "virtual_disks": [{"id": 0, "members": [0]}], "namespaces": [{"nsid": 1}, {"nsid": 2}]}]})";
    const auto first = load_machine(text, "a");
    const auto second = load_machine(text, "b");
    EXPECT_TRUE((*first)->parts() == (*second)->parts());
    const auto namespaces = (*first)->parts().controllers[0].namespaces;
    EXPECT_NE(namespaces[0].eui64, namespaces[1].eui64);
    EXPECT_NE(namespaces[0].nguid, namespaces[1].nguid);
    EXPECT_EQ(namespaces[0].eui64[0], 0x02);
}

TEST(MachineText, ThingsMayStandInAnyOrder)
{
    const auto machine = load_machine(
        R"({"controllers": [{"namespaces": [{"nsid": 2, "parent_id": 1}, {"nsid": 1, "parent_id": 0}],
            "virtual_disks": [{"id": 1, "raid_mode": "raid0", "members": [3]}, {"id": 0, "raid_mode": "raid0", "members": [1]}],
            "drives": [{"id": 3}, {"id": 1}]}]})",
        "lab.json");
    ASSERT_TRUE(machine) << machine.error();
    const Controller& controller = (*machine)->parts().controllers[0];
    EXPECT_EQ(controller.drives[0].id, 1);
    EXPECT_EQ(controller.virtual_disks[0].id, 0);
    EXPECT_EQ(controller.namespaces[0].nsid, 1);
}

TEST(MachineText, SizesOfVirtualDisksFollowTheirMode)
{
    const auto sectors = [](const std::string& vd) {
        const auto machine = load_machine(
            R"({"controllers": [{"adapter": {"ports": 8}, "drives": [{"id": 0, "sectors": 100}, {"id": 1, "sectors": 90},
                {"id": 2, "sectors": 95}, {"id": 3, "sectors": 200}, {"id": 4}, {"id": 5}, {"id": 6}, {"id": 7}],
                "virtual_disks": [{"id": 0, )" +
                vd + "}]}]}",
            "lab.json");
        EXPECT_TRUE(machine) << machine.error();
        return (*machine)->parts().controllers[0].virtual_disks[0].sectors;
    };
    EXPECT_EQ(sectors(R"("raid_mode": "jbod", "members": [3])"), 200U);
    EXPECT_EQ(sectors(R"("raid_mode": "raid0", "members": [0, 3])"), 200U);
    EXPECT_EQ(sectors(R"("raid_mode": "raid1", "members": [0, 1])"), 90U);
    EXPECT_EQ(sectors(R"("raid_mode": "raid1", "members": [0, 65535])"), 100U);
    EXPECT_EQ(sectors(R"("raid_mode": "raid10", "members": [0, 1, 2, 3])"), 180U);
    EXPECT_EQ(sectors(R"("raid_mode": "raid5", "members": [0, 1, 2])"), 180U);
    EXPECT_EQ(sectors(R"("raid_mode": "raid50", "members": [0, 1, 2, 3, 4, 5])"), 360U);
    EXPECT_EQ(sectors(R"("raid_mode": "raid6", "members": [0, 1, 2, 3])"), 180U);
    EXPECT_EQ(sectors(R"("raid_mode": "raid60", "members": [0, 1, 2, 3, 4, 5, 6, 7])"), 360U);
    EXPECT_EQ(sectors(R"("raid_mode": "raid5", "members": [])"), 0U);
    EXPECT_EQ(sectors(R"("raid_mode": "raid1", "members": [65535])"), 0U);
}

TEST(MachineText, WhatIsNoJsonIsToldWithItsLine)
{
    EXPECT_EQ(error_of(""),
              "lab.json:1: not valid JSON: syntax error while parsing value - unexpected end of input; "
              "expected '[', '{', or a literal");
    EXPECT_EQ(error_of("{\n  \"mount_table\": [],\n  \"ssds\" []\n}\n"),
              "lab.json:3: not valid JSON: syntax error while parsing object separator - unexpected '['; expected ':'");
    EXPECT_EQ(error_of("{\n}\n\n x").substr(0, 27), "lab.json:4: not valid JSON:");
    EXPECT_EQ(error_of("{\"mount_table\":\n [1e999]}"), "lab.json:2: not valid JSON: number overflow parsing '1e999'");
    EXPECT_EQ(error_of(std::string("{\"mount_table\":\n\n [\"\xff\"]}")).substr(0, 27), "lab.json:3: not valid JSON:");
    EXPECT_EQ(error_of(std::string("\0", 1)).substr(0, 27), "lab.json:1: not valid JSON:");
}

TEST(MachineText, WhatIsNoMachineIsToldWithItsLine)
{
    EXPECT_EQ(error_of("\n[]"), "lab.json:2: a machine must be an object, not a list");
    EXPECT_EQ(error_of("7"), "lab.json:1: a machine must be an object, not a number");
    EXPECT_EQ(error_of("{\n\"controller\": []}"),
              "lab.json:2: unknown key 'controller'; allowed are 'mount_table', 'controllers', 'ssds'");
    EXPECT_EQ(error_of("{\n\"ssds\": [],\n\"ssds\": []}"), "lab.json:3: the key 'ssds' occurs twice");
    EXPECT_EQ(error_of("{\n\"controllers\": {}}"), "lab.json:2: 'controllers' must be a list, not an object");
    EXPECT_EQ(error_of("{\n\"controllers\": [{},\n\n7]}"),
              "lab.json:4: 'controllers' holds a number; its entries are objects");
    EXPECT_EQ(error_of("{\"mount_table\": [\"a\",\n 5]}"),
              "lab.json:2: 'mount_table' holds something else than single lines of text");
    EXPECT_EQ(error_of("{\"mount_table\": [\"a\\nb\"]}"),
              "lab.json:1: 'mount_table' holds something else than single lines of text");
}

TEST(MachineText, NestingAndListsAreBounded)
{
    EXPECT_EQ(error_of(std::string(100000, '[')), "lab.json:1: nested too deeply");
    std::string many = "{\"ssds\": [{}";
    for (int i = 0; i < 64; ++i) {
        many += ",{}";
    }
    EXPECT_EQ(error_of(many + "]}"), "lab.json:1: 'ssds' has more than 64 entries");
}

TEST(MachineText, WrongTypesAreToldWithTheRightOnes)
{
    EXPECT_EQ(error_in_controller("\"number\": \"1\""), "lab.json:4: 'number' must be a number, not a text");
    EXPECT_EQ(error_in_controller("\"number\":\n -1"),
              "lab.json:5: 'number' must be a number, not a number that is negative, broken or too large");
    EXPECT_EQ(error_in_controller("\"number\": 1.5"),
              "lab.json:4: 'number' must be a number, not a number that is negative, broken or too large");
    EXPECT_EQ(error_in_controller("\"number\": null"), "lab.json:4: 'number' must be a number, not null");
    EXPECT_EQ(error_in_controller("\"model\": true"), "lab.json:4: 'model' must be a text, not true or false");
    EXPECT_EQ(error_in_controller("\"adapter\": []"), "lab.json:4: 'adapter' must be an object, not a list");
    EXPECT_EQ(error_in_controller("\"settings\": {\"sriov\": 1}"),
              "lab.json:4: 'sriov' must be true or false, not a number");
    EXPECT_EQ(error_in_controller("\"adapter\": {\"sku\": true}"),
              "lab.json:4: 'sku' is true or false; allowed are \"V\", \"D\", \"B\", \"A\" or a number up to 255");
    EXPECT_EQ(error_in_controller("\"adapter\": {\"sku\": \"C\"}"),
              "lab.json:4: 'sku' is 'C'; allowed are \"V\", \"D\", \"B\", \"A\" or a number up to 255");
    EXPECT_EQ(
        error_in_controller("\"adapter\": {\"features\": [\"raid\",\n\"raids\"]}"),
        "lab.json:5: 'features' holds something else than \"import\", \"raid\", \"namespace\", \"dump\", \"nmic\" "
        "or the number of a bit below 32");
    EXPECT_EQ(error_in_controller("\"adapter\": {\"stripes\": [8]}"),
              "lab.json:4: 'stripes' holds something else than \"128KB\", \"256KB\", \"512KB\" or the number of a bit "
              "below 8");
}

TEST(MachineText, NumbersOutOfRangeAreToldWithTheRange)
{
    EXPECT_EQ(error_in_controller("\"number\": 1088"), "lab.json:4: 'number' is 1088; allowed are 0 to 1087");
    EXPECT_EQ(error_in_controller("\"adapter\": {\"max_ns\": 43}"), "lab.json:4: 'max_ns' is 43; allowed are 0 to 42");
    EXPECT_EQ(error_in_controller("\"adapter\": {\"cache\": 256}"), "lab.json:4: 'cache' is 256; allowed are 0 to 255");
    EXPECT_EQ(error_in_controller("\"adapter\": {\"stepping\": [3]}"),
              "lab.json:4: 'stepping' holds a bit below 4; those are the 'stepping_number'");
    EXPECT_EQ(error_in_controller("\"slots\": {\"count\": 2, \"active\": 3}"),
              "lab.json:4: 'active' is 3; allowed are 1 to 2");
    EXPECT_EQ(error_in_controller("\"slots\": {\"active\": 2}"), "lab.json:4: 'active' names a slot that is empty");
    EXPECT_EQ(error_in_controller("\"slots\": {\"slot4\": \"X\"}"),
              "lab.json:4: 'slot4' is beyond the 'count' of slots");
}

TEST(MachineText, TextsAreBounded)
{
    EXPECT_EQ(error_in_controller("\"serial\": \"123456789012345678901\""),
              "lab.json:4: 'serial' has 21 letters; allowed are at most 20");
    EXPECT_EQ(error_in_controller("\"serial\": \"a\\u0001\""),
              "lab.json:4: 'serial' has a letter that is not printable ASCII");
    EXPECT_EQ(error_in_controller("\"subnqn\": \"\\u00e4\""),
              "lab.json:4: 'subnqn' has a letter that is zero or not ASCII");
    EXPECT_EQ(error_in_controller("\"address\": \"03:00.0\""),
              "lab.json:4: 'address' is \"03:00.0\"; its form is \"0000:03:00.0\"");
    for (const std::string address :
         {"0000:03:20.0", "0000:03:00.8", "0000-03:00.0", "0000:0g:00.0", "0000:03:00.00"}) {
        EXPECT_NE(error_in_controller("\"address\": \"" + address + "\""), "") << address;
    }
}

TEST(MachineText, DrivesMustFitTheController)
{
    EXPECT_EQ(error_in_controller("\"drives\": [{\"model\": \"x\"}]"), "lab.json:4: 'id' is missing");
    EXPECT_EQ(error_in_controller("\"drives\": [{\"id\": 1},\n{\"model\": \"x\",\n\"id\": 1}]"),
              "lab.json:6: 'id' is the id of an earlier drive");
    EXPECT_EQ(error_in_controller("\"drives\": [{\"id\": 4}]"),
              "lab.json:4: 'id' is beyond the controller's ids; 'ports' times 'max_pd' allows 0 to 3");
    EXPECT_EQ(error_in_controller("\"drives\": [{\"id\": 0, \"activity\": {\"duration_ms\": 5, \"elapsed_ms\": 5}}]"),
              "lab.json:4: 'elapsed_ms' is not below 'duration_ms'; an activity that is done is left out");
    EXPECT_EQ(error_in_controller("\"drives\": [{\"id\": 0, \"activity\": {\"duration_ms\": 0}}]"),
              "lab.json:4: 'duration_ms' is 0; allowed are 1 to 4503599627370496");
}

TEST(MachineText, VirtualDisksMustFitTheDrives)
{
    const std::string drives = "\"drives\": [{\"id\": 0}, {\"id\": 1}],\n\"virtual_disks\": [";
    EXPECT_EQ(error_in_controller(drives + "{\"members\": [0]}]"), "lab.json:5: 'id' is missing");
    EXPECT_EQ(error_in_controller(drives + "{\"id\": 0,\n\"members\": [0, 7]}]"),
              "lab.json:6: 'members' names PD 7, which is not among the drives; 65535 marks a missing one");
    EXPECT_EQ(error_in_controller(drives + "{\"id\": 0, \"members\": [0, 1, 0]}]"),
              "lab.json:5: 'members' names PD 0 twice");
    EXPECT_EQ(error_in_controller(drives + "{\"id\": 0, \"members\": [0]},\n{\"id\": 1, \"members\": [1, 0]}]"),
              "lab.json:6: 'members' names PD 0, which VD 0 already uses");
    EXPECT_EQ(error_in_controller(drives + "{\"id\": 3, \"members\": [0]},\n{\"id\": 3, \"members\": [1]}]"),
              "lab.json:6: 'id' is the id of an earlier virtual disk");
    EXPECT_EQ(error_in_controller(drives + "{\"id\": 0, \"members\": [65536]}]"),
              "lab.json:5: 'members' holds something else than numbers up to 65535");
    EXPECT_EQ(error_in_controller(drives + "{\"id\": 0, \"members\": [" + std::string(64, ' ') +
                                  "1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1,1]}]"),
              "lab.json:5: 'members' has more than 32 entries");
    EXPECT_EQ(error_in_controller("\"adapter\": {\"features\": []},\n\"virtual_disks\": [{\"id\": 0}]"),
              "lab.json:5: 'id' makes no sense: without the feature \"raid\" there are no virtual disks");
    EXPECT_EQ(error_in_controller(drives + "{\"id\": 0, \"raid_mode\": \"RAID1\"}]"),
              "lab.json:5: 'raid_mode' is 'RAID1'; allowed are \"raid0\", \"raid1\", \"jbod\", \"raid10\", \"raid5\", "
              "\"raid50\", \"raid6\", \"raid60\" or a number up to 255");
}

TEST(MachineText, NamespacesMustFitTheirParents)
{
    const std::string before =
        "\"drives\": [{\"id\": 0}], \"virtual_disks\": [{\"id\": 0, \"members\": [0]}],\n\"namespaces\": [";
    EXPECT_EQ(error_in_controller(before + "{\"nsid\": 0}]"), "lab.json:5: 'nsid' is 0; allowed are 1 to 32");
    EXPECT_EQ(error_in_controller(before + "{\"nsid\": 33}]"), "lab.json:5: 'nsid' is 33; allowed are 1 to 32");
    EXPECT_EQ(error_in_controller(before + "{\"nsid\": 2},\n{\"nsid\": 2}]"),
              "lab.json:6: 'nsid' is the id of an earlier namespace");
    EXPECT_EQ(error_in_controller(before + "{\"nsid\": 1, \"parent_id\": 5}]"),
              "lab.json:5: 'parent_id' is 5, and there is no such virtual disk");
    EXPECT_EQ(error_in_controller(before + "{\"nsid\": 1, \"parent\": \"pd\", \"parent_id\": 2}]"),
              "lab.json:5: 'parent_id' is 2, and there is no such drive");
    EXPECT_EQ(error_in_controller(before + "{\"nsid\": 1, \"sector_size\": 1024}]"),
              "lab.json:5: 'sector_size' is 1024; allowed are 512 and 4096");
    EXPECT_EQ(error_in_controller(before + "{\"nsid\": 1, \"eui64\": \"12\"}]"),
              "lab.json:5: 'eui64' must be 16 hexadecimal digits");
    EXPECT_EQ(error_in_controller(before + "{\"nsid\": 1, \"nguid\": \"0000000000000000000000000000000g\"}]"),
              "lab.json:5: 'nguid' must be 32 hexadecimal digits");
    EXPECT_EQ(error_in_controller("\"adapter\": {\"max_ns\": 0}, \"namespaces\": [{\"nsid\": 1}]"),
              "lab.json:4: 'nsid' cannot be: the controller's 'max_ns' is 0");
    EXPECT_EQ(error_in_controller(before + "{\"nsid\": 1, \"sectors\": 4, \"data\": [{\"lba\": 4}]}]"),
              "lab.json:5: 'lba' is beyond the namespace's 'sectors'");
    EXPECT_EQ(error_in_controller(before + "{\"nsid\": 1, \"data\": [{\"lba\": 0, \"bytes\": \"00\"}]}]"),
              "lab.json:5: 'bytes' is not one sector long");
    EXPECT_EQ(error_in_controller(before + "{\"nsid\": 1, \"data\": [{\"lba\": 0, \"bytes\": \"0\"}]}]"),
              "lab.json:5: 'bytes' must be pairs of hexadecimal digits, at most 512");
    const std::string sector = "{\"lba\": 3, \"bytes\": \"" + std::string(1024, '1') + "\"}";
    EXPECT_EQ(error_in_controller(before + "{\"nsid\": 1, \"data\": [" + sector + ",\n" + sector + "]}]"),
              "lab.json:6: 'lba' occurs twice");
}

TEST(MachineText, DeviceNumbersAreTakenOnce)
{
    EXPECT_EQ(error_of("{\"controllers\": [{\"number\": 3},\n{\"number\": 3}]}"),
              "lab.json:2: 'number' is 3, which an earlier device has");
    EXPECT_EQ(error_of("{\"controllers\": [{\"number\": 3}],\n\"ssds\": [\n{\"number\": 3}]}"),
              "lab.json:3: 'number' is 3, which an earlier device has");
    EXPECT_EQ(error_of("{\"controllers\": [{},\n{}]}"), "lab.json:2: 'number' is 0, which an earlier device has");
}

TEST(MachineText, TheErrorLogMustFitItsCount)
{
    EXPECT_EQ(error_in_controller("\"errors\": {\"count\": 1, \"entries\": [{\"number\": 2, \"status\": 1}]}"),
              "lab.json:4: 'number' is not among the last 64 of 'count'");
    EXPECT_EQ(error_in_controller("\"errors\": {\"count\": 65, \"entries\": [{\"number\": 1, \"status\": 1}]}"),
              "lab.json:4: 'number' is not among the last 64 of 'count'");
    EXPECT_EQ(error_in_controller("\"errors\": {\"count\": 2, \"entries\": [{\"number\": 2, \"status\": 1},\n"
                                  "{\"number\": 2, \"status\": 1}]}"),
              "lab.json:5: 'number' occurs twice");
    EXPECT_EQ(error_in_controller("\"errors\": {\"entries\": [{\"number\": 0}]}"),
              "lab.json:4: 'number' is 0; allowed are 1 to 18446744073709551615");
}

TEST(MachineText, AMachineCutAnywhereIsRefusedAndHarmsNothing)
{
    const auto machine = make_scenario("gallery");
    ASSERT_TRUE(machine);
    const std::string text = save_machine(**machine);
    const std::size_t end = text.rfind('}');
    for (std::size_t length = 0; length <= end; length += 97) {
        EXPECT_FALSE(load_machine(std::string_view(text).substr(0, length), "cut")) << length;
    }
}

TEST(MachineText, AMachineWithAnyByteChangedHarmsNothing)
{
    const auto machine = make_scenario("degraded");
    ASSERT_TRUE(machine);
    std::string text = save_machine(**machine);
    for (std::size_t at = 0; at < text.size(); at += 7) {
        const char kept = text[at];
        text[at] = static_cast<char>('0' + at % 75);
        const auto loaded = load_machine(text, "changed");
        EXPECT_TRUE(loaded || loaded.error().starts_with("changed:"));
        text[at] = kept;
    }
}

TEST(MachineText, AChangedMachineIsSavedWhole)
{
    auto machine = make_scenario("raid");
    ASSERT_TRUE(machine);
    nvme_admin_cmd command{};
    command.opcode = 0x06;
    for (QRX_U32 nsid = 1; nsid < 100; ++nsid) {
        command.nsid = nsid + 1000;
        (*machine)->admin({}, command, {});
    }
    command.opcode = 0x09;
    command.cdw10 = 0x05;
    command.cdw11 = 77;
    (*machine)->admin({}, command, {});
    (*machine)->advance(Clock::Duration(123456789));
    const std::string saved = save_machine(**machine);
    const auto loaded = load_machine(saved, "state");
    ASSERT_TRUE(loaded) << loaded.error();
    EXPECT_TRUE((*loaded)->parts() == (*machine)->parts());
    EXPECT_EQ(save_machine(**loaded), saved);
    EXPECT_EQ((*loaded)->parts().controllers[0].errors.count, 99U);
}

}  // namespace

}  // namespace qrx::sim
