// The multi-function device: child controllers, what is left to make them of, and who may do what.
#include <gmock/gmock.h>

#include "api/src/interface/wire/mfnd.h"
#include "api/src/interface/wire/nvme.h"
#include "sim/firmware/child_controllers.h"
#include "sim/firmware/opcodes.h"
#include "tests/unit/sim/firmware/rig.h"

namespace qrx::sim {

namespace {

using Entry = _MSFT_CHILD_CTRL_ENTRY;

constexpr QRX_U32 kInvalidField = 0x002;
constexpr QRX_U32 kSequence = 0x00C;
constexpr QRX_U32 kDenied = 0x015;
constexpr QRX_U32 kNoStorage = 0x115;
constexpr QRX_U32 kNoNamespace = 0x116;
constexpr QRX_U32 kNoSuchChild = 0x11F;
constexpr QRX_U32 kWrongState = 0x120;
constexpr QRX_U32 kNoResources = 0x121;
constexpr QRX_U32 kBadId = 0x122;

constexpr QRX_U32 kMultiple = 0x10;
constexpr QRX_U32 kSingle = 0x00;
constexpr QRX_U32 kAdmin = 0x11;
constexpr QRX_U32 kUser = 0x01;

class ChildRig : public Rig {
public:
    ChildRig() : Rig("raid") { EXPECT_EQ(operate(kMultiple), kGood); }

    Completion send(QRX_U8 opcode, QRX_U32 cdw10, QRX_U32 cdw11 = 0, QRX_U32 cdw14 = 0)
    {
        nvme_admin_cmd command{};
        command.opcode = opcode;
        command.cdw10 = cdw10;
        command.cdw11 = cdw11;
        command.cdw14 = cdw14;
        return machine().admin({}, command, page);
    }
    QRX_U32 operate(QRX_U32 word) { return send(9, 0xD1, word).status; }
    QRX_U32 operation() { return send(10, 0xD1).result; }
    template <class Record>
    Completion send_record(QRX_U8 opcode, QRX_U32 cdw10, const Record& record, QRX_U32 cdw11 = 0)
    {
        page.fill(0);
        std::memcpy(page.data(), &record, sizeof(record));
        return send(opcode, cdw10, cdw11);
    }
    QRX_U32 create(const Entry& entry = {}, QRX_U32 id = 0) { return send_record(0xD1, 3 | id << 8, entry).status; }
    QRX_U32 update(QRX_U32 id, const Entry& entry) { return send_record(0xD1, 0x01000003 | id << 8, entry).status; }
    QRX_U32 remove(QRX_U32 id) { return send_record(0xD1, 0x02000003 | id << 8, Entry{}).status; }
    QRX_U32 reset_children(QRX_U32 count) { return send_record(0xD1, 0x03000003, Entry{}, count).status; }
    QRX_U32 control(QRX_U32 id, QRX_U32 selector) { return send(0xD0, 4 | id << 8 | selector << 24).status; }
    QRX_U32 permit(std::initializer_list<std::pair<QRX_U8, QRX_U8>> entries)
    {
        _MSFT_CHILD_CTRL_PERMISSION_LIST list{};
        for (const auto& [opcode, flags] : entries) {
            list.entries[list.numOfEntries].adminCmdOpcode = opcode;
            list.entries[list.numOfEntries++].flags = flags & 0xF;
        }
        return send_record(0xD1, 7, list).status;
    }
    _MSFT_MFND_CAPABILITIES capabilities()
    {
        page.fill(kUntouched);
        EXPECT_EQ(send(0xD2, 1).status, kGood);
        EXPECT_TRUE(all_from(128, 0));
        return at<_MSFT_MFND_CAPABILITIES>(0);
    }
    // The children that an identify tells of.
    std::vector<Entry> list(QRX_U32 id = 0)
    {
        page.fill(kUntouched);
        EXPECT_EQ(send(0xD2, 2 | id << 8).status, kGood);
        std::vector<Entry> entries;
        for (std::size_t i = 0; i < at<_MSFT_CHILD_CTRL_LIST>(0).mumber_of_child_controller; ++i) {
            entries.push_back(at<Entry>(8 + 128 * i));
        }
        EXPECT_TRUE(all_from(8 + 128 * entries.size(), 0));
        return entries;
    }
    std::vector<unsigned> ids()
    {
        std::vector<unsigned> result;
        for (const Entry& entry : list()) {
            result.push_back(entry.ccid);
        }
        return result;
    }
    [[nodiscard]] const ChildController& child(QRX_U16 id) const { return *controller().children.find(id); }
    Controller& mutable_controller() { return *machine().controller(controller().number); }
};

Entry entry_of(QRX_U16 queue_pairs, QRX_U16 interrupts, QRX_U16 namespaces, QRX_U32 storage)
{
    Entry entry{};
    entry.IO_queue_pair_cnt = queue_pairs;
    entry.MSI_X_msg_cnt = interrupts;
    entry.ns_cnt = namespaces;
    entry.storage_provision_unit_cnt = storage;
    return entry;
}

TEST(ChildControllers, AFreshDeviceIsInSingleModeUnderAnAdmin)
{
    Rig rig("raid");
    nvme_admin_cmd command{};
    command.opcode = 10;
    command.cdw10 = 0xD1;
    EXPECT_EQ(rig.admin(command).result, 1U);
    command = {};
    command.opcode = 0xD1;
    command.cdw10 = 3;
    rig.page.fill(0);
    EXPECT_EQ(rig.machine().admin({}, command, rig.page).status, kSequence);
}

TEST(ChildControllers, AnEntryOfZerosMakesOneWithTheDefaults)
{
    ChildRig rig;
    EXPECT_EQ(rig.create(), kGood);
    ASSERT_EQ(rig.ids(), (std::vector<unsigned>{1}));
    const Entry made = rig.list()[0];
    EXPECT_STREQ(reinterpret_cast<const char*>(made.sn), (rig.controller().serial + "-1").c_str());
    EXPECT_EQ(made.flags, 1);
    EXPECT_EQ(made.IO_queue_pair_cnt, 2);
    EXPECT_EQ(made.MSI_X_msg_cnt, 3);
    EXPECT_EQ(made.ns_cnt, 1);
    EXPECT_EQ(made.storage_provision_unit_cnt, 64U);
    EXPECT_EQ(raw(made.QOS), std::string(48, '\0'));
}

TEST(ChildControllers, AnEntryIsKeptAsItCame)
{
    ChildRig rig;
    Entry wanted = entry_of(4, 5, 6, 70);
    wanted.ccid = 9;
    std::memset(wanted.sn, 'x', sizeof(wanted.sn));
    wanted.QOS.qos_policy = 2;
    wanted.QOS.reserved_read_bandwidth_in_MB = 11;
    wanted.QOS.reserved_write_bandwidth_in_MB = 12;
    wanted.QOS.limit_read_bandwidth_in_MB = 13;
    wanted.QOS.limit_write_bandwidth_in_MB = 14;
    wanted.QOS.reserve_radnom_read_iops = 15;
    wanted.QOS.reserve_random_write_iops = 16;
    wanted.QOS.limit_random_read_iops = 17;
    wanted.QOS.limit_random_write_iops = 18;
    EXPECT_EQ(rig.create(wanted), kGood);
    wanted.flags = 3;
    EXPECT_EQ(raw(rig.list(9)[0]), raw(wanted));
}

TEST(ChildControllers, IdsAreThoseOfTheEntryThenOfTheCommandThenFree)
{
    ChildRig rig;
    Entry entry{};
    entry.ccid = 2;
    EXPECT_EQ(rig.create(entry, 7), kGood);
    EXPECT_EQ(rig.create({}, 7), kGood);
    EXPECT_EQ(rig.create(), kGood);
    EXPECT_EQ(rig.create(), kGood);
    EXPECT_EQ(rig.ids(), (std::vector<unsigned>{1, 2, 3, 7}));
    EXPECT_EQ(rig.create(entry), kBadId);
    entry.ccid = 256;
    EXPECT_EQ(rig.create(entry), kNoSuchChild);
    EXPECT_EQ(rig.create({}, 0xFFFF), kNoSuchChild);
    EXPECT_EQ(rig.ids().size(), 4U);
}

TEST(ChildControllers, CapacityGoesDownAndUpAsTheyComeAndGo)
{
    ChildRig rig;
    const auto before = rig.capabilities();
    EXPECT_EQ(std::string(std::begin(before.sign), std::end(before.sign)), "MFND");
    EXPECT_EQ(before.avail_queue_pair_cnt, before.max_queue_pair_cnt);
    Entry wanted = entry_of(10, 20, 3, 100);
    wanted.QOS.reserved_read_bandwidth_in_MB = 1000;
    wanted.QOS.reserved_write_bandwidth_in_MB = 300;
    wanted.QOS.reserve_radnom_read_iops = 5000;
    wanted.QOS.reserve_random_write_iops = 400;
    EXPECT_EQ(rig.create(wanted), kGood);
    const auto with = rig.capabilities();
    EXPECT_EQ(with.max_physical_fun_cnt, 32);
    EXPECT_EQ(with.avail_physical_fun_cnt, 31);
    EXPECT_EQ(with.max_queue_pair_cnt, 128);
    EXPECT_EQ(with.avail_queue_pair_cnt, 118);
    EXPECT_EQ(with.max_MSI_X_msg_cnt, 256);
    EXPECT_EQ(with.avail_MSI_X_msg_cnt, 236);
    EXPECT_EQ(with.max_ns_cnt, 64);
    EXPECT_EQ(with.avail_ns_cnt, 61);
    EXPECT_EQ(with.total_NVM_storage_size, 1024U);
    EXPECT_EQ(with.avail_NVM_storage_size, 924U);
    EXPECT_EQ(with.storage_provision_granularity, 1024U);
    EXPECT_EQ(with.total_read_bandwidth, 6400U);
    EXPECT_EQ(with.avail_read_bandwidth, 5400U);
    EXPECT_EQ(with.total_write_bandwidth, 3200U);
    EXPECT_EQ(with.avail_write_bandwidth, 2900U);
    EXPECT_EQ(with.total_read_iops, 1000000U);
    EXPECT_EQ(with.avail_read_iops, 995000U);
    EXPECT_EQ(with.total_write_iops, 400000U);
    EXPECT_EQ(with.avail_write_iops, 399600U);
    EXPECT_EQ(with.features, 1U);
    EXPECT_EQ(with.max_support_child_controller_ns_cnt, 16);
    EXPECT_EQ(rig.remove(1), kGood);
    EXPECT_EQ(raw(rig.capabilities()), raw(before));
}

TEST(ChildControllers, LimitsReserveNothing)
{
    ChildRig rig;
    Entry wanted{};
    wanted.QOS.qos_policy = 1;
    wanted.QOS.reserved_read_bandwidth_in_MB = 99999;
    wanted.QOS.limit_read_bandwidth_in_MB = 99999;
    EXPECT_EQ(rig.create(wanted), kGood);
    EXPECT_EQ(rig.capabilities().avail_read_bandwidth, 6400U);
}

TEST(ChildControllers, WhatIsNotThereIsRefusedAndNothingIsMade)
{
    ChildRig rig;
    const auto refused = [&](const Entry& entry, QRX_U32 status) {
        EXPECT_EQ(rig.create(entry), status);
        EXPECT_TRUE(rig.list().empty());
    };
    refused(entry_of(129, 1, 1, 1), kNoResources);
    refused(entry_of(1, 257, 1, 1), kNoResources);
    refused(entry_of(1, 1, 17, 1), kNoNamespace);
    refused(entry_of(1, 1, 1, 1025), kNoStorage);
    Entry entry{};
    entry.flags = 1;
    refused(entry, kNoResources);  // no queue
    for (QRX_U32 _MSFT_CHILD_CTRL_QOS::*number :
         {&_MSFT_CHILD_CTRL_QOS::reserved_read_bandwidth_in_MB, &_MSFT_CHILD_CTRL_QOS::reserved_write_bandwidth_in_MB,
          &_MSFT_CHILD_CTRL_QOS::reserve_radnom_read_iops, &_MSFT_CHILD_CTRL_QOS::reserve_random_write_iops}) {
        entry = {};
        entry.QOS.*number = 0xFFFFFFFF;
        refused(entry, kNoResources);
    }
    entry = {};
    entry.QOS.qos_policy = 3;
    refused(entry, kInvalidField);
    entry = {};
    entry.sn[0] = 0x1B;
    refused(entry, kInvalidField);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(rig.create(entry_of(1, 1, 16, 1)), kGood);
    }
    EXPECT_EQ(rig.create(entry_of(1, 1, 1, 1)), kNoNamespace);  // those of all of them
}

TEST(ChildControllers, AnUpdateChangesWhatItNames)
{
    ChildRig rig;
    EXPECT_EQ(rig.create(), kGood);
    EXPECT_EQ(rig.create(), kGood);
    Entry change{};
    change.ns_cnt = 5;
    EXPECT_EQ(rig.update(2, change), kGood);
    EXPECT_EQ(rig.child(1).namespaces, 1);
    EXPECT_EQ(rig.child(2).namespaces, 5);
    EXPECT_EQ(rig.child(2).queue_pairs, 2);
    EXPECT_FALSE(rig.child(2).qos);
    change = {};
    change.flags = 2;
    change.sn[0] = 'Z';
    EXPECT_EQ(rig.update(0xFFFF, change), kGood);
    EXPECT_TRUE(rig.child(1).qos);
    EXPECT_EQ(rig.child(2).serial, "Z");
    EXPECT_EQ(rig.update(3, change), kNoSuchChild);
    change.ccid = 2;
    EXPECT_EQ(rig.update(1, change), kBadId);
    EXPECT_EQ(rig.update(2, change), kGood);
    EXPECT_EQ(rig.update(0xFFFF, entry_of(65, 0, 0, 0)), kNoResources);
    EXPECT_EQ(rig.child(1).queue_pairs, 2);
}

TEST(ChildControllers, AreDeletedOneByOneOrAll)
{
    ChildRig rig;
    EXPECT_EQ(rig.remove(0xFFFF), kNoSuchChild);
    EXPECT_EQ(rig.reset_children(3), kGood);
    EXPECT_EQ(rig.remove(2), kGood);
    EXPECT_EQ(rig.remove(2), kNoSuchChild);
    EXPECT_EQ(rig.ids(), (std::vector<unsigned>{1, 3}));
    EXPECT_EQ(rig.remove(0xFFFF), kGood);
    EXPECT_TRUE(rig.list().empty());
}

TEST(ChildControllers, AResetMakesAsManyAsAreAskedForOrNone)
{
    ChildRig rig;
    Entry entry{};
    entry.ccid = 77;
    EXPECT_EQ(rig.create(entry), kGood);
    EXPECT_EQ(rig.reset_children(17), kNoStorage);  // 64 units each
    EXPECT_EQ(rig.ids(), (std::vector<unsigned>{77}));
    EXPECT_EQ(rig.reset_children(16), kGood);
    EXPECT_EQ(rig.ids().size(), 16U);
    EXPECT_EQ(rig.ids().back(), 16U);
    EXPECT_EQ(rig.reset_children(0), kGood);
    EXPECT_TRUE(rig.ids().empty());
}

TEST(ChildControllers, IdentifyTellsOfOneOrOfAll)
{
    ChildRig rig;
    EXPECT_EQ(rig.reset_children(3), kGood);
    EXPECT_EQ(rig.list().size(), 3U);
    EXPECT_EQ(rig.list(0xFFFF).size(), 3U);
    ASSERT_EQ(rig.list(2).size(), 1U);
    EXPECT_EQ(rig.list(2)[0].ccid, 2);
    EXPECT_EQ(rig.send(0xD2, 2 | 4 << 8).status, kNoSuchChild);
}

TEST(ChildControllers, ASelectorThatIsNoneIsRefused)
{
    ChildRig rig;
    EXPECT_EQ(rig.send_record(0xD1, 0x04000003, Entry{}).status, kInvalidField);
    EXPECT_EQ(rig.create(), kGood);
    EXPECT_EQ(rig.control(1, 4), kInvalidField);
}

TEST(ChildControllers, PauseResumeShutDownAndErase)
{
    ChildRig rig;
    EXPECT_EQ(rig.create(), kGood);
    EXPECT_EQ(rig.control(2, 1), kNoSuchChild);
    EXPECT_EQ(rig.control(1, 2), kWrongState);
    EXPECT_EQ(rig.control(1, 1), kGood);
    EXPECT_EQ(rig.child(1).state, ChildController::kPaused);
    EXPECT_EQ(rig.control(1, 1), kWrongState);
    EXPECT_EQ(rig.control(1, 0), kGood);
    EXPECT_EQ(rig.child(1).erasures, 1U);
    EXPECT_EQ(rig.control(1, 2), kGood);
    EXPECT_EQ(rig.child(1).state, ChildController::kRunning);
    EXPECT_EQ(rig.child(1).starts, 1U);
    EXPECT_EQ(rig.control(1, 3), kGood);
    EXPECT_EQ(rig.child(1).state, ChildController::kShutDown);
    EXPECT_EQ(rig.control(1, 3), kWrongState);
    EXPECT_EQ(rig.control(1, 0), kWrongState);
    EXPECT_EQ(rig.control(1, 2), kGood);
    EXPECT_EQ(rig.child(1).starts, 2U);
}

TEST(ChildControllers, AllAreControlledOrNone)
{
    ChildRig rig;
    EXPECT_EQ(rig.control(0xFFFF, 1), kNoSuchChild);
    EXPECT_EQ(rig.reset_children(2), kGood);
    EXPECT_EQ(rig.control(2, 1), kGood);
    EXPECT_EQ(rig.control(0xFFFF, 1), kWrongState);
    EXPECT_EQ(rig.child(1).state, ChildController::kRunning);
    EXPECT_EQ(rig.control(0xFFFF, 3), kGood);
    EXPECT_EQ(rig.child(1).state, ChildController::kShutDown);
    EXPECT_EQ(rig.child(2).state, ChildController::kShutDown);
}

TEST(ChildControllers, TheOperationFeatureTellsAndSetsModeAndPrivilege)
{
    ChildRig rig;
    EXPECT_EQ(rig.operation(), 0U);
    EXPECT_EQ(rig.operate(kUser), kGood);
    EXPECT_EQ(rig.operation(), 2U);
    EXPECT_EQ(rig.operate(kSingle), kGood);
    EXPECT_EQ(rig.operation(), 3U);
    EXPECT_EQ(rig.operate(kAdmin), kGood);
    EXPECT_EQ(rig.operation(), 1U);
    EXPECT_EQ(rig.operate(2), kInvalidField);
    EXPECT_EQ(rig.operate(0x100), kInvalidField);
    EXPECT_EQ(rig.send(9, 0x800000D1, kMultiple).status, kInvalidField);  // not to be saved
    EXPECT_EQ(rig.send(10, 0x1D1).status, kInvalidField);
}

TEST(ChildControllers, SingleModeIsRefusedWhileThereAreChildren)
{
    ChildRig rig;
    EXPECT_EQ(rig.create(), kGood);
    EXPECT_EQ(rig.operate(kSingle), kSequence);
    EXPECT_EQ(rig.remove(1), kGood);
    EXPECT_EQ(rig.operate(kSingle), kGood);
    EXPECT_EQ(rig.create(), kSequence);
    EXPECT_EQ(rig.reset_children(1), kSequence);
    EXPECT_EQ(rig.reset_children(0), kGood);
}

TEST(ChildControllers, AUserLooksButDoesNotTouch)
{
    ChildRig rig;
    EXPECT_EQ(rig.create(), kGood);
    EXPECT_EQ(rig.operate(kUser), kGood);
    EXPECT_EQ(rig.create(), kDenied);
    EXPECT_EQ(rig.update(1, {}), kDenied);
    EXPECT_EQ(rig.remove(1), kDenied);
    EXPECT_EQ(rig.control(1, 1), kDenied);
    EXPECT_EQ(rig.permit({{0xAA, 1}}), kDenied);
    _MSFT_CHILD_CTRL_PROPERTIES properties{};
    properties.lbads = 12;
    EXPECT_EQ(rig.send_record(9, 0xD2, properties, 1).status, kDenied);
    EXPECT_EQ(rig.list().size(), 1U);
}

TEST(ChildControllers, Properties)
{
    ChildRig rig;
    const auto get = [&] {
        rig.page.fill(kUntouched);
        EXPECT_EQ(rig.send(10, 0xD2).status, kGood);
        EXPECT_TRUE(rig.all_from(5, 0));
        return rig.bytes(0, 5);
    };
    const auto set = [&](QRX_U16 ms, QRX_U8 lbads, QRX_U8 dps, QRX_U8 nmic, QRX_U32 cdw11 = 1) {
        _MSFT_CHILD_CTRL_PROPERTIES properties{};
        properties.ms = ms;
        properties.lbads = lbads;
        properties.dps = dps;
        properties.nmic = nmic;
        return rig.send_record(9, 0xD2, properties, cdw11).status;
    };
    EXPECT_EQ(get(), std::string("\0\0\x09\0\0", 5));
    EXPECT_EQ(set(8, 12, 3, 1), kGood);
    EXPECT_EQ(get(), std::string("\x08\0\x0C\x03\x01", 5));
    EXPECT_EQ(set(8, 10, 3, 1), kInvalidField);
    EXPECT_EQ(set(4, 12, 0, 1), kInvalidField);
    EXPECT_EQ(set(8, 12, 4, 1), kInvalidField);
    EXPECT_EQ(set(0, 12, 1, 1), kInvalidField);
    EXPECT_EQ(set(0, 12, 0, 2), kInvalidField);
    EXPECT_EQ(set(0, 9, 0, 0, 0), kInvalidField);
    EXPECT_EQ(get(), std::string("\x08\0\x0C\x03\x01", 5));
}

TEST(ChildControllers, PermissionsAreListedAndChanged)
{
    ChildRig rig;
    const auto list = [&] {
        rig.page.fill(kUntouched);
        EXPECT_EQ(rig.send(0xD2, 6).status, kGood);
        std::vector<std::pair<unsigned, unsigned>> entries;
        for (std::size_t i = 0; i < rig.page[0]; ++i) {
            entries.emplace_back(rig.page[4 + 4 * i], rig.page[5 + 4 * i]);
        }
        EXPECT_TRUE(rig.all_from(4 + 4 * entries.size(), 0));
        return entries;
    };
    using List = std::vector<std::pair<unsigned, unsigned>>;
    EXPECT_EQ(
        list(),
        (List{{0x02, 3}, {0x06, 1}, {0x09, 3}, {0x0A, 1}, {0x0D, 2}, {0x10, 0}, {0x11, 0}, {0x80, 3}, {0x84, 2}}));
    EXPECT_EQ(rig.permit({{0xAA, 1}, {0x84, 1}, {0x02, 2}, {0x06, 1}}), kGood);
    EXPECT_EQ(list(), (List{{0x02, 2},
                            {0x06, 1},
                            {0x09, 3},
                            {0x0A, 1},
                            {0x0D, 2},
                            {0x10, 0},
                            {0x11, 0},
                            {0x80, 3},
                            {0x84, 3},
                            {0xAA, 3}}));
    const List before = list();
    EXPECT_EQ(rig.permit({{0xAA, 0}, {0x06, 0}}), 0x10EU);
    EXPECT_EQ(list(), before);
}

TEST(ChildControllers, PermissionsTakeEffect)
{
    ChildRig rig;
    EXPECT_EQ(rig.create(), kGood);
    const QRX_U32 health = 127U << 16 | 2;
    EXPECT_EQ(rig.send(0xD2, 0x105, 0, health).status, kGood);
    EXPECT_EQ(rig.permit({{0x02, 0}, {0x80, 0}}), kGood);
    EXPECT_EQ(rig.send(0xD2, 0x105, 0, health).status, kDenied);
    EXPECT_EQ(rig.control(1, 0), kDenied);
    EXPECT_EQ(rig.control(1, 1), kGood);
    EXPECT_EQ(rig.child(1).erasures, 0U);
}

TEST(ChildControllers, TheHealthLogOfAChild)
{
    ChildRig rig;
    EXPECT_EQ(rig.create(), kGood);
    EXPECT_EQ(rig.control(1, 3), kGood);
    EXPECT_EQ(rig.send(0xD2, 0x105, 0, 127U << 16 | 2).status, kWrongState);
    EXPECT_EQ(rig.control(1, 2), kGood);
    rig.page.fill(kUntouched);
    EXPECT_EQ(rig.send(0xD2, 0x105, 0, 127U << 16 | 2).status, kGood);
    const auto log = rig.at<_qrx_smart_log>(0);
    EXPECT_EQ(log.temperature[0] | log.temperature[1] << 8, rig.controller().health.temperature);
    EXPECT_EQ(log.power_cycles[0], 2);
    EXPECT_EQ(log.critical_warning, 0);
    EXPECT_TRUE(rig.all_from(512, kUntouched));
    rig.page.fill(kUntouched);
    EXPECT_EQ(rig.send(0xD2, 0x105, 0, 2).status, kGood);  // one dword
    EXPECT_TRUE(rig.all_from(4, kUntouched));
    EXPECT_EQ(rig.send(0xD2, 0x105, 0, 127U << 16 | 3).status, 0x109U);
    EXPECT_EQ(rig.send(0xD2, 0x205, 0, 127U << 16 | 2).status, kNoSuchChild);
    nvme_admin_cmd far{};
    far.opcode = 0xD2;
    far.cdw10 = 0x105;
    far.cdw12 = 513;
    far.cdw14 = 2;
    EXPECT_EQ(rig.admin(far).status, kInvalidField);
    far.cdw12 = 112;  // the power cycles
    EXPECT_EQ(rig.admin(far).status, kGood);
    EXPECT_EQ(rig.page[0], 2);
}

TEST(ChildControllers, EventsAreLoggedTheLatestFirst)
{
    ChildRig rig;
    EXPECT_EQ(rig.log_page(0xD0, 4096).status, kGood);
    EXPECT_TRUE(rig.all_from(0, 0));
    EXPECT_EQ(rig.reset_children(2), kGood);
    Controller& controller = rig.mutable_controller();
    EXPECT_FALSE(controller.befall_child(1, "health"));
    EXPECT_FALSE(controller.befall_child(2, "fatal"));
    EXPECT_FALSE(controller.befall_child(1, "other"));
    EXPECT_EQ(rig.log_page(0xD0, 4096).status, kGood);
    EXPECT_EQ(rig.page[0], 3);
    const auto event = [&](std::size_t index) { return rig.bytes(16 + 512 * index, 16); };
    EXPECT_EQ(event(0), std::string("\x01\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0", 16));
    EXPECT_EQ(event(1), std::string("\x02\0\0\0\x02\0\0\0\0\0\0\0\0\0\0\0", 16));
    EXPECT_EQ(event(2), std::string("\x01\x02\0\0\x01\0\0\0\0\0\0\0\0\0\0\0", 16));
    EXPECT_EQ(rig.child(1).critical_warning, 4);
    EXPECT_EQ(rig.child(2).state, ChildController::kFailed);
    EXPECT_EQ(rig.control(2, 0), kWrongState);
    EXPECT_EQ(rig.control(2, 2), kWrongState);
    EXPECT_EQ(rig.control(2, 3), kGood);
    EXPECT_EQ(rig.control(2, 2), kGood);
    EXPECT_EQ(controller.befall_child(3, "fatal").value().text, "there is no child controller 3");
    EXPECT_EQ(controller.befall_child(1, "x").value().text, "'x' is none of fatal, health, other");
}

TEST(ChildControllers, TheEventLogKeepsTheLatest)
{
    ChildRig rig;
    EXPECT_EQ(rig.reset_children(2), kGood);
    EXPECT_FALSE(rig.mutable_controller().befall_child(2, "other"));
    for (int i = 0; i < 255; ++i) {
        EXPECT_FALSE(rig.mutable_controller().befall_child(1, "other"));
    }
    EXPECT_EQ(rig.controller().children.events.size(), 255U);
    EXPECT_EQ(rig.controller().children.events.front().child, 1);
    EXPECT_EQ(rig.log_page(0xD0, 4096, 0, 16 + 254 * 512).status, kGood);
    EXPECT_EQ(rig.page[0], 1);
}

TEST(ChildControllers, APowerCycleStartsThemAllAndKeepsWhatTheyAre)
{
    ChildRig rig;
    EXPECT_EQ(rig.reset_children(2), kGood);
    EXPECT_EQ(rig.control(1, 3), kGood);
    EXPECT_FALSE(rig.mutable_controller().befall_child(2, "fatal"));
    rig.mutable_controller().reset();
    EXPECT_EQ(rig.child(1).state, ChildController::kRunning);
    EXPECT_EQ(rig.child(2).state, ChildController::kRunning);
    EXPECT_EQ(rig.child(2).starts, 2U);
    EXPECT_TRUE(rig.controller().children.events.empty());
    EXPECT_TRUE(rig.controller().children.multiple);
}

TEST(ChildControllers, ManagementTakesAWholePage)
{
    ChildRig rig;
    nvme_admin_cmd command{};
    command.opcode = 0xD1;
    command.cdw10 = 3;
    rig.page.fill(0);
    EXPECT_EQ(rig.machine().admin({}, command, std::span(rig.page).first(128)).status, kInvalidField);
    EXPECT_TRUE(rig.list().empty());
}

// Its opcode is shared: words that are not of the multi-function device belong to somebody else.
TEST(ChildControllers, AQueryIsToldByItsWords)
{
    const auto told = [](QRX_U8 opcode, QRX_U32 cdw10, QRX_U32 cdw14) {
        nvme_admin_cmd command{};
        command.opcode = opcode;
        command.cdw10 = cdw10;
        command.cdw14 = cdw14;
        return is_child_command(command);
    };
    for (const QRX_U32 cdw10 : {0x1U, 0x102U, 0x6U}) {
        EXPECT_TRUE(told(0xD2, cdw10, 0));
        EXPECT_FALSE(told(0xD2, cdw10, 0xEC));
    }
    EXPECT_TRUE(told(0xD2, 0x105, 127U << 16 | 2));
    EXPECT_FALSE(told(0xD2, 0x00EC8027, 0xEC));  // a FIS that carries an ATA command
    EXPECT_FALSE(told(0xD2, 0, 0));
    EXPECT_FALSE(told(0xD3, 1, 0));
    EXPECT_TRUE(told(0xD0, 0, 0));
    EXPECT_TRUE(told(0xD1, 0, 0));
    ChildRig rig;
    for (const QRX_U8 opcode : {QRX_U8{0xD0}, QRX_U8{0xD1}, QRX_U8{0xD2}}) {
        for (QRX_U32 operation = 0; operation <= 8; ++operation) {
            const bool known =
                (opcode == 0xD0 && operation == 4) || (opcode == 0xD1 && (operation == 3 || operation == 7)) ||
                (opcode == 0xD2 && (operation == 1 || operation == 2 || operation == 5 || operation == 6));
            if (!known) {
                EXPECT_EQ(rig.send(opcode, operation).status, kInvalidField) << unsigned{opcode} << " " << operation;
            }
        }
    }
}

TEST(ChildControllers, AreKeptInTheState)
{
    ChildRig rig;
    Entry wanted = entry_of(4, 5, 6, 70);
    wanted.QOS.qos_policy = 1;
    wanted.QOS.limit_random_write_iops = 77;
    EXPECT_EQ(rig.create(wanted), kGood);
    EXPECT_EQ(rig.create(), kGood);
    EXPECT_EQ(rig.control(2, 1), kGood);
    EXPECT_EQ(rig.control(2, 0), kGood);
    EXPECT_FALSE(rig.mutable_controller().befall_child(1, "health"));
    EXPECT_EQ(rig.permit({{0xAA, 1}}), kGood);
    EXPECT_EQ(rig.operate(kUser), kGood);
    const std::string text = save_machine(rig.machine());
    const Rig again = Rig::of_text(text);
    EXPECT_EQ(again.controller().children, rig.controller().children);
    EXPECT_THAT(text, testing::HasSubstr("\"write_iops_limit\": 77"));
}

TEST(ChildControllers, AScenarioThatGivesAwayTooMuchIsRefused)
{
    const auto error = [](const std::string& text) {
        const auto made = load_machine("{\"controllers\": [{\"child_controllers\": {" + text + "}}]}", "test.json");
        return made ? std::string() : made.error();
    };
    EXPECT_EQ(error(R"("multiple": true, "children": [{"id": 1, "storage": 1024}])"), "");
    EXPECT_THAT(error(R"("multiple": true, "children": [{"id": 1, "storage": 1025}])"),
                testing::HasSubstr("'children' takes more than 'limits' has to give"));
    EXPECT_THAT(error(R"("children": [{"id": 1}])"), testing::HasSubstr("'children' needs 'multiple'"));
    EXPECT_THAT(error(R"("multiple": true, "children": [{"id": 1}, {"id": 1}])"),
                testing::HasSubstr("has an id twice"));
    EXPECT_THAT(error(R"("permissions": [{"opcode": 1}, {"opcode": 1}])"), testing::HasSubstr("has an opcode twice"));
    EXPECT_THAT(error(R"("multiple": true, "children": [{"id": 1, "state": 9}])"),
                testing::HasSubstr("'state' is none of a child controller"));
}

}  // namespace

}  // namespace qrx::sim
