// What each built-in scenario promises.
#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <set>

#include "tests/unit/sim/firmware/rig.h"

namespace qrx::sim {

namespace {

using testing::ElementsAre;
using testing::IsSupersetOf;

class EveryScenario : public testing::TestWithParam<std::string_view> {};

TEST_P(EveryScenario, LoadsAndKeepsWithinWhatTheToolLists)
{
    Rig rig(GetParam());
    for (const Controller& controller : rig.machine().parts().controllers) {
        const unsigned max_pd = controller.adapter.max_pd != 0 ? controller.adapter.max_pd : controller.adapter.ports;
        for (const Drive& drive : controller.drives) {
            EXPECT_LT(drive.id, max_pd * controller.adapter.ports);
        }
        for (const VirtualDisk& vd : controller.virtual_disks) {
            EXPECT_LT(vd.id, controller.adapter.ports);
            EXPECT_LE(vd.members.size(), controller.adapter.max_pd_per_vd);
        }
        EXPECT_LE(controller.virtual_disks.size(), controller.adapter.max_vd);
        for (const Namespace& ns : controller.namespaces) {
            EXPECT_LE(ns.nsid, controller.adapter.max_ns);
        }
    }
}

TEST_P(EveryScenario, IsTheSameAfterSavingAndLoading)
{
    Rig rig(GetParam());
    const std::string saved = save_machine(rig.machine());
    const auto loaded = load_machine(saved, "state.json");
    ASSERT_TRUE(loaded) << loaded.error();
    EXPECT_TRUE((*loaded)->parts() == rig.machine().parts());
    EXPECT_EQ(save_machine(**loaded), saved);
}

TEST_P(EveryScenario, ShowsItsDevicesInOrderOfNumber)
{
    Rig rig(GetParam());
    const auto nodes = rig.machine().controllers();
    EXPECT_EQ(nodes.size(), rig.machine().parts().controllers.size() + rig.machine().parts().ssds.size());
    EXPECT_TRUE(std::is_sorted(nodes.begin(), nodes.end(), [](const ControllerNode& left, const ControllerNode& right) {
        return left.number < right.number;
    }));
}

std::vector<std::string_view> names()
{
    std::vector<std::string_view> all;
    for (const Scenario& scenario : scenarios()) {
        all.push_back(scenario.name);
    }
    return all;
}

INSTANTIATE_TEST_SUITE_P(All, EveryScenario, testing::ValuesIn(names()), [](const auto& scenario) {
    std::string name(scenario.param);
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});

TEST(Scenarios, AreThoseThatWePromise)
{
    EXPECT_THAT(names(), ElementsAre("raid", "jbof", "pair", "degraded", "empty", "foreign", "sriov", "lab",
                                     "importable", "boot", "seasoned", "scarred", "links", "eye-closed", "eye-at-zero",
                                     "eye-narrow", "eye-past-range", "eye-stuck", "none", "gallery"));
    for (const Scenario& scenario : scenarios()) {
        EXPECT_FALSE(scenario.description.empty());
        EXPECT_EQ(scenario.description.find('\n'), std::string_view::npos);
    }
}

TEST(Scenarios, AnUnknownNameIsAnsweredWithTheKnownOnes)
{
    EXPECT_EQ(make_scenario("raids").error(),
              "unknown scenario 'raids'; allowed are 'raid', 'jbof', 'pair', 'degraded', 'empty', 'foreign', 'sriov', "
              "'lab', 'importable', 'boot', 'seasoned', 'scarred', 'links', 'eye-closed', 'eye-at-zero', 'eye-narrow', "
              "'eye-past-range', 'eye-stuck', 'none', 'gallery'");
}

std::vector<unsigned> numbers(Machine& machine)
{
    std::vector<unsigned> all;
    for (const ControllerNode& node : machine.controllers()) {
        all.push_back(node.number);
    }
    return all;
}

TEST(Scenarios, RaidHasOneMirrorAndOneFreeDrive)
{
    Rig rig("raid");
    const Controller& controller = rig.controller();
    EXPECT_THAT(numbers(rig.machine()), ElementsAre(0));
    ASSERT_EQ(controller.drives.size(), 4U);
    EXPECT_EQ(std::count_if(controller.virtual_disks.begin(), controller.virtual_disks.end(),
                            [](const VirtualDisk& vd) { return vd.raid_mode == kRaid1; }),
              1);
    EXPECT_THAT(controller.virtual_disks[0].members, ElementsAre(0, 1));
    EXPECT_EQ(controller.namespaces[0].parent, 0);
    EXPECT_EQ(std::count_if(controller.drives.begin(), controller.drives.end(),
                            [&](const Drive& drive) { return !controller.assigned(drive.id) && !drive.failed; }),
              1);
    ControllerNode expected;
    expected.number = 0;
    expected.address = "0000:03:00.0";
    expected.vendor_id = 0x7A51;
    expected.device_id = 0x3317;
    expected.subsystem_vendor_id = 0x7A51;
    expected.subsystem_device_id = 0x1001;
    expected.slot_id = 1;
    expected.model = "QRX NVMe RAID Controller";
    expected.serial = "QRXSIM0000";
    expected.firmware = "2.4.1063";
    expected.subnqn = "nqn.2026-01.com.example:qrx:QRXSIM0000";
    expected.namespaces = {{1, 1875385008, 512, rig.controller().namespaces[0].node().uuid},
                           {2, 1875385008, 512, rig.controller().namespaces[1].node().uuid}};
    EXPECT_EQ(rig.machine().controllers(), std::vector{expected});
    EXPECT_EQ(expected.namespaces[0].uuid.size(), 32U);
    EXPECT_NE(expected.namespaces[0].uuid, expected.namespaces[1].uuid);
}

TEST(Scenarios, JbofPutsNamespacesOnDrives)
{
    Rig rig("jbof");
    EXPECT_FALSE(rig.controller().adapter.raid());
    EXPECT_TRUE(rig.controller().virtual_disks.empty());
    EXPECT_EQ(rig.controller().drives.size(), 4U);
    for (const Namespace& ns : rig.controller().namespaces) {
        EXPECT_EQ(ns.parent_kind, kNsParentPd);
    }
    EXPECT_EQ(rig.controller().namespaces.size(), 4U);
}

TEST(Scenarios, PairIsAtOneAndThreeAndBootsFromTheFirst)
{
    Rig rig("pair");
    EXPECT_THAT(numbers(rig.machine()), ElementsAre(1, 3));
    EXPECT_THAT(rig.machine().mount_table(), testing::HasSubstr("\n/dev/nvme1n1p1 /boot vfat rw,relatime 0 0\n"));
}

TEST(Scenarios, DegradedHasAFailedAndAMissingMemberAndARebuild)
{
    Rig rig("degraded");
    const auto& vds = rig.controller().virtual_disks;
    ASSERT_EQ(vds.size(), 3U);
    EXPECT_EQ(vds[0].status, kVdDegrade);
    EXPECT_TRUE(rig.controller().find_drive(vds[0].members[1])->failed);
    EXPECT_EQ(vds[1].status, kVdDegrade);
    EXPECT_EQ(vds[1].members[1], kMissingMember);
    EXPECT_EQ(vds[2].status, kVdRebuilding);
    EXPECT_EQ(vds[2].activity_record().Percentage, 61);
}

TEST(Scenarios, EmptyHasNoDriveAndNoneHasNoController)
{
    Rig empty("empty");
    EXPECT_EQ(empty.machine().parts().controllers.size(), 1U);
    EXPECT_TRUE(empty.controller().drives.empty());
    Rig none("none");
    EXPECT_TRUE(none.machine().controllers().empty());
}

TEST(Scenarios, ForeignHasTheSsdOnTheLowerNumberWithBootOnIt)
{
    Rig rig("foreign");
    EXPECT_THAT(numbers(rig.machine()), ElementsAre(0, 1));
    const auto nodes = rig.machine().controllers();
    EXPECT_NE(nodes[0].vendor_id, 0x7A51);
    EXPECT_EQ(nodes[1].vendor_id, 0x7A51);
    EXPECT_THAT(rig.machine().mount_table(), testing::HasSubstr("\n/dev/nvme0n1p1 /boot "));
}

TEST(Scenarios, SriovShowsFunctionsPastSeven)
{
    Rig rig("sriov");
    EXPECT_TRUE(rig.controller().settings.sriov);
    EXPECT_EQ(rig.controller().adapter.sku, 0);
    EXPECT_EQ(rig.controller().controller_id, 0);
    EXPECT_GT(rig.controller().address.function + rig.controller().adapter.visible_vf_host0, 7);
}

// All that a listing of the built-in scenarios shows.
struct Shown {
    std::set<int> vd_status, raid_modes, parity, stripes, vd_sector_sizes, skus, cache, steppings, speeds, widths,
        types;
    std::set<int> vf_hosts, pd_status_bits, pd_sector_sizes;
    std::set<std::pair<int, int>> activities;  // type and state
    QRX_U32 features_on = 0, features_off = 0, modes_on = 0, modes_off = 0, background_on = 0, background_off = 0;
    QRX_U32 stripes_on = 0, stripes_off = 0;
    std::set<std::tuple<bool, bool, bool>> namespaces;  // valid, active, healthy

    void add(const Controller& controller)
    {
        const Adapter& adapter = controller.adapter;
        skus.insert(adapter.sku);
        cache.insert(adapter.cache);
        steppings.insert(adapter.revision >> 4);
        features_on |= adapter.features;
        features_off |= ~adapter.features;
        if (adapter.raid()) {
            modes_on |= adapter.raid_modes;
            modes_off |= ~QRX_U32{adapter.raid_modes};
            background_on |= adapter.background;
            background_off |= ~QRX_U32{adapter.background};
            stripes_on |= adapter.stripes;
            stripes_off |= ~QRX_U32{adapter.stripes};
        }
        if (controller.settings.sriov && adapter.sku == 0) {
            vf_hosts.insert(controller.controller_id);
        }
        for (const PciePort& port : adapter.pcie) {
            types.insert(port.type);
            speeds.insert(port.speed);
            widths.insert(port.width);
        }
        for (const VirtualDisk& vd : controller.virtual_disks) {
            vd_status.insert(vd.status);
            raid_modes.insert(vd.raid_mode);
            if (vd.raid_mode == kRaid6 || vd.raid_mode == kRaid60) {
                parity.insert(vd.parity_disks);
            }
            stripes.insert(vd.stripe);
            vd_sector_sizes.insert(static_cast<int>(vd.sector_size));
            if (vd.activity) {
                activities.insert({vd.activity->type, vd.activity->state});
            }
        }
        for (const Drive& drive : controller.drives) {
            pd_sector_sizes.insert(static_cast<int>(drive.sector_size));
            const QRX_U8 status = controller.pd_record(drive).Status;
            for (int bit = 0; bit < 8; ++bit) {
                pd_status_bits.insert((status >> bit & 1) != 0 ? bit : -1 - bit);
            }
        }
        for (const Namespace& ns : controller.namespaces) {
            const QRX_U8 status = controller.ns_record(ns).VDStatus;
            namespaces.insert({ns.valid, ns.active, status != kVdDegrade && status != kVdRebuilding});
        }
    }
};

Shown shown_in_all()
{
    Shown shown;
    for (const std::string_view name : names()) {
        Rig rig(name);
        for (const Controller& controller : rig.machine().parts().controllers) {
            shown.add(controller);
        }
    }
    return shown;
}

TEST(Scenarios, TogetherShowEverythingThatAnAdapterCanShow)
{
    const Shown shown = shown_in_all();
    EXPECT_THAT(shown.skus, ElementsAre(0, 1, 2, 3));
    EXPECT_THAT(shown.cache, IsSupersetOf({0, 1, 7}));
    EXPECT_THAT(shown.steppings, IsSupersetOf({0, 1, 2}));
    EXPECT_THAT(shown.types, IsSupersetOf({0, 1, 2}));
    EXPECT_THAT(shown.speeds, IsSupersetOf({0, 1, 2, 3, 4}));
    EXPECT_THAT(shown.widths, IsSupersetOf({0, 1, 2, 4, 8, 16}));
    EXPECT_THAT(shown.vf_hosts, ElementsAre(0, 1));
    EXPECT_EQ(shown.features_on & 0x3E, 0x3EU);
    EXPECT_EQ(shown.features_off & 0x3E, 0x3EU);
    EXPECT_EQ(shown.modes_on & 0xFF, 0xFFU);
    EXPECT_EQ(shown.modes_off & 0xFF, 0xFFU);
    EXPECT_EQ(shown.background_on & 0x1F, 0x1FU);
    EXPECT_EQ(shown.background_off & 0x1F, 0x1FU);
    EXPECT_EQ(shown.stripes_on & 7, 7U);
    EXPECT_EQ(shown.stripes_off & 7, 7U);
}

TEST(Scenarios, TogetherShowEverythingThatAVirtualDiskCanShow)
{
    const Shown shown = shown_in_all();
    EXPECT_THAT(shown.vd_status, IsSupersetOf({0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 99}));
    EXPECT_THAT(shown.raid_modes, IsSupersetOf({0, 1, 2, 5, 6, 15, 0x10, 0x50, 0x60}));
    EXPECT_THAT(shown.parity, ElementsAre(2));
    EXPECT_THAT(shown.stripes, IsSupersetOf({64, 256, 512, 1024}));
    EXPECT_THAT(shown.vd_sector_sizes, IsSupersetOf({0, 512, 4096}));
    std::set<std::pair<int, int>> all;
    for (int type = 1; type <= 7; ++type) {
        all.insert({type, 1});
        all.insert({type, 2});
    }
    EXPECT_EQ(shown.activities, all);
}

TEST(Scenarios, TogetherShowEverythingThatADriveOrANamespaceCanShow)
{
    const Shown shown = shown_in_all();
    EXPECT_THAT(shown.pd_status_bits, IsSupersetOf({0, -1, 1, -2, 3, -4, 4, -5, 5, -6}));
    EXPECT_THAT(shown.pd_sector_sizes, IsSupersetOf({0, 512, 4096}));
    EXPECT_THAT(shown.namespaces, IsSupersetOf({std::tuple(true, true, true), std::tuple(true, true, false),
                                                std::tuple(true, false, true), std::tuple(false, false, true)}));
}

TEST(Scenarios, GalleryHasTheTextsOfExtremeLengths)
{
    Rig rig("gallery");
    EXPECT_EQ(rig.controller(0).virtual_disks[0].name.size(), 16U);
    const auto& drives = rig.controller(2).drives;
    EXPECT_EQ(drives[6].model.size(), 40U);
    EXPECT_EQ(drives[6].model.find(' '), std::string::npos);
    EXPECT_EQ(drives[6].serial.size(), 20U);
    EXPECT_EQ(drives[6].slots.running().size(), 8U);
    EXPECT_EQ(drives[7].model.find_first_not_of(' '), 3U);
    EXPECT_EQ(drives[8].model.find_first_not_of(' '), 16U);
    EXPECT_EQ(rig.controller(2).subnqn, "\1");
    EXPECT_EQ(rig.controller(3).subnqn, "\1");
    EXPECT_TRUE(rig.controller(3).drives.empty());
}

}  // namespace

}  // namespace qrx::sim
