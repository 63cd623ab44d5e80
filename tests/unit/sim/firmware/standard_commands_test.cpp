// The standard admin commands: Identify, Get Log Page, features, and what the model does not have.
#include <gmock/gmock.h>

#include <bit>
#include <cstring>

#include "tests/unit/sim/firmware/rig.h"

namespace qrx::sim {

namespace {

using testing::ElementsAre;

constexpr std::string_view kText = R"json({
  "controllers": [{
    "number": 0, "controller_id": 17, "model": "MODEL OF CONTROLLER", "serial": "SERIALSER", "subnqn": "nqn.2026-01.test:x",
    "slots": {"count": 4, "active": 2, "next": 3, "slot1": "FIRST", "slot2": "SECONDSE", "slot3": "T", "slot4": ""},
    "health": {
      "critical_warning": 21, "temperature": 322, "spare": 23, "spare_threshold": 24, "used": 25, "sectors_read": 26001,
      "sectors_written": 27000, "host_reads": 28, "host_writes": 29, "busy_minutes": 30, "power_cycles": 31,
      "power_on_ms": 115200000, "unsafe_shutdowns": 33, "media_errors": 34, "warning_minutes": 35, "critical_minutes": 36,
      "throttle1_count": 37, "throttle2_count": 38, "throttle1_seconds": 39, "throttle2_seconds": 40
    },
    "adapter": {"max_ns": 9, "subsystem_vendor_id": 4660},
    "drives": [{"id": 0, "sectors": 1000}, {"id": 1, "sectors": 3000, "sector_size": 4096}],
    "virtual_disks": [{"id": 0, "raid_mode": "raid0", "members": [0]}],
    "namespaces": [
      {"nsid": 2, "parent_id": 0, "sectors": 100, "shared": true, "nguid": "00112233445566778899aabbccddeeff",
       "eui64": "a0a1a2a3a4a5a6a7"},
      {"nsid": 4, "parent_id": 0, "sectors": 20, "sector_size": 4096, "active": false, "eui64": "0000000000000000"},
      {"nsid": 5, "parent_id": 0, "sectors": 30, "nguid": "00000000000000000000000000000000"},
      {"nsid": 6, "parent_id": 0, "sectors": 40, "valid": false}
    ]
  }]
})json";

class Standard : public testing::Test {
protected:
    Completion features(QRX_U8 opcode, QRX_U32 cdw10, QRX_U32 cdw11 = 0)
    {
        nvme_admin_cmd command{};
        command.opcode = opcode;
        command.cdw10 = cdw10;
        command.cdw11 = cdw11;
        return rig_.machine().admin({}, command, rig_.page);
    }
    Completion get(QRX_U32 cdw10, QRX_U32 cdw11 = 0) { return features(0x0A, cdw10, cdw11); }
    Completion set(QRX_U32 cdw10, QRX_U32 cdw11 = 0) { return features(0x09, cdw10, cdw11); }

    std::vector<QRX_U32> list()
    {
        std::vector<QRX_U32> ids;
        for (std::size_t i = 0; i < 4096 && rig_.at<QRX_U32>(i) != 0; i += 4) {
            ids.push_back(rig_.at<QRX_U32>(i));
        }
        EXPECT_TRUE(rig_.all_from(ids.size() * 4, 0));
        return ids;
    }

    Rig rig_ = Rig::of_text(kText);
};

void fill(QRX_U8* field, std::string_view text)
{
    std::memcpy(field, text.data(), text.size());
}

TEST_F(Standard, IdentifyControllerIsTheWholePage)
{
    EXPECT_EQ(rig_.identify(1).status, kGood);
    nvme_id_ctrl id{};
    id.vid = 0x7A51;
    id.ssvid = 0x1234;
    fill(id.sn, "SERIALSER           ");
    fill(id.mn, "MODEL OF CONTROLLER                     ");
    fill(id.fr, "SECONDSE");
    id.rab = 6;
    fill(id.ieee, "\x58\x51\x02");
    id.mdts = 5;
    id.cntlid = 17;
    id.ver = 0x10400;
    id.rtd3r = 5000000;
    id.rtd3e = 8000000;
    id.cntrltype = 1;
    id.oacs = 0x4C;  // NVMe-MI Send and Receive, namespace attachment, firmware
    id.acl = 3;
    id.frmw = 8;
    id.lpa = 6;
    id.elpe = 63;
    id.wctemp = 343;
    id.cctemp = 358;
    id.fwug = 0xFF;
    const QRX_U64 total = 1000ULL * 512 + 3000ULL * 4096;
    const QRX_U64 unallocated = 3000ULL * 4096;
    std::memcpy(id.tnvmcap, &total, 8);
    std::memcpy(id.unvmcap, &unallocated, 8);
    id.sqes = 0x66;
    id.cqes = 0x44;
    id.nn = 9;
    id.oncs = 0x5B;
    id.vwc = 7;
    fill(id.subnqn, "nqn.2026-01.test:x");
    id.psd[0].mp = 2500;
    EXPECT_EQ(rig_.bytes(0, 4096), raw(id));
}

TEST_F(Standard, IdentifyNamespaceIsTheWholePage)
{
    EXPECT_EQ(rig_.identify(0, 2).status, kGood);
    _nvme_id_ns id{};
    id.nsze = id.ncap = id.nuse = 100;
    id.nmic = 1;
    id.dlfeat = 1;
    const QRX_U64 bytes = 51200;
    std::memcpy(id.nvmcap, &bytes, 8);
    fill(id.nguid, std::string_view("\x00\x11\x22\x33\x44\x55\x66\x77\x88\x99\xaa\xbb\xcc\xdd\xee\xff", 16));
    fill(id.eui64, "\xa0\xa1\xa2\xa3\xa4\xa5\xa6\xa7");
    id.lbaf[0].ds = 9;
    EXPECT_EQ(rig_.bytes(0, 4096), raw(id));
}

TEST_F(Standard, IdentifyOfANamespaceThatIsNotActiveIsZeros)
{
    for (const QRX_U32 nsid : {1U, 4U, 6U, 9U}) {
        EXPECT_EQ(rig_.identify(0, nsid).status, kGood);
        EXPECT_TRUE(rig_.all_from(0, 0));
    }
    EXPECT_EQ(rig_.identify(0x11, 4).status, kGood);
    EXPECT_EQ(rig_.at<_nvme_id_ns>(0).nsze, 20U);
    EXPECT_EQ(rig_.at<_nvme_id_ns>(0).lbaf[0].ds, 12);
}

TEST_F(Standard, IdentifyOfANamespaceThatCannotExistIsRefused)
{
    for (const QRX_U32 cns : {0x00U, 0x11U}) {
        for (const QRX_U32 nsid : {0U, 10U, 0xFFFFFFFFU}) {
            EXPECT_EQ(rig_.identify(cns, nsid).status, 0x00BU);
            EXPECT_TRUE(rig_.all_from(0, kUntouched));
        }
    }
}

TEST_F(Standard, IdentifyListsNamespaces)
{
    EXPECT_EQ(rig_.identify(0x02, 0).status, kGood);
    EXPECT_THAT(list(), ElementsAre(2, 5));
    EXPECT_EQ(rig_.identify(0x02, 2).status, kGood);
    EXPECT_THAT(list(), ElementsAre(5));
    EXPECT_EQ(rig_.identify(0x02, 0xFFFFFFFD).status, kGood);
    EXPECT_THAT(list(), ElementsAre());
    EXPECT_EQ(rig_.identify(0x02, 0xFFFFFFFE).status, 0x00BU);
    EXPECT_EQ(rig_.identify(0x10, 0).status, kGood);
    EXPECT_THAT(list(), ElementsAre(2, 4, 5));
    EXPECT_EQ(rig_.identify(0x10, 4).status, kGood);
    EXPECT_THAT(list(), ElementsAre(5));
    EXPECT_EQ(rig_.identify(0x10, 0xFFFFFFFF).status, 0x00BU);
}

TEST_F(Standard, IdentifyDescribesANamespace)
{
    EXPECT_EQ(rig_.identify(0x03, 2).status, kGood);
    EXPECT_EQ(rig_.bytes(0, 32),
              std::string("\x01\x08\x00\x00\xa0\xa1\xa2\xa3\xa4\xa5\xa6\xa7\x02\x10\x00\x00\x00\x11\x22\x33\x44\x55\x66"
                          "\x77\x88\x99\xaa\xbb\xcc\xdd\xee\xff",
                          32));
    EXPECT_TRUE(rig_.all_from(32, 0));
    EXPECT_EQ(rig_.identify(0x03, 5).status, kGood);
    EXPECT_EQ(rig_.page[0], 1);
    EXPECT_TRUE(rig_.all_from(12, 0)) << "no NGUID";
    EXPECT_EQ(rig_.identify(0x03, 4).status, 0x00BU);
    EXPECT_EQ(rig_.identify(0x03, 0).status, 0x00BU);
}

TEST_F(Standard, IdentifyListsControllers)
{
    const std::string one("\1\0\x11\0", 4);
    EXPECT_EQ(rig_.identify(0x13).status, kGood);
    EXPECT_EQ(rig_.bytes(0, 4), one);
    EXPECT_TRUE(rig_.all_from(4, 0));
    EXPECT_EQ(rig_.identify(17 << 16 | 0x13).status, kGood);
    EXPECT_EQ(rig_.bytes(0, 4), one);
    EXPECT_EQ(rig_.identify(18 << 16 | 0x13).status, kGood);
    EXPECT_TRUE(rig_.all_from(0, 0));
    EXPECT_EQ(rig_.identify(0x12, 2).status, kGood);
    EXPECT_EQ(rig_.bytes(0, 4), one);
    EXPECT_EQ(rig_.identify(0x12, 4).status, kGood);
    EXPECT_TRUE(rig_.all_from(0, 0)) << "attached to none";
    EXPECT_EQ(rig_.identify(0x12, 3).status, 0x002U);
    EXPECT_EQ(rig_.identify(0x12, 0).status, 0x00BU);
}

TEST(StandardOfAPhysicalFunction, IdentifyTellsThePrimaryController)
{
    Rig rig = Rig::of_text(R"json({"controllers": [{"number": 0, "controller_id": 1, "drives": [{"id": 0}]}]})json");
    EXPECT_EQ(rig.identify(0x14).status, kGood);
    EXPECT_EQ(rig.bytes(0, 2), std::string("\1\0", 2));
    EXPECT_TRUE(rig.all_from(2, 0));
}

TEST_F(Standard, OtherIdentifyStructuresAreAnInvalidField)
{
    for (const QRX_U32 cns : {0x04U, 0x05U, 0x14U, 0x16U, 0x1FU, 0xFFU}) {
        EXPECT_EQ(rig_.identify(cns, 2).status, 0x002U);
        EXPECT_TRUE(rig_.all_from(0, kUntouched));
    }
}

TEST_F(Standard, IdentifyIsCutToTheHostsBuffer)
{
    nvme_admin_cmd command{};
    command.opcode = 0x06;
    command.cdw10 = 1;
    rig_.page.fill(kUntouched);
    EXPECT_EQ(rig_.machine().admin({}, command, std::span(rig_.page).first(3)).status, kGood);
    EXPECT_EQ(rig_.at<QRX_U16>(0), 0x7A51);
    EXPECT_TRUE(rig_.all_from(3, kUntouched));
}

_qrx_smart_log expected_health(QRX_U8 errors)
{
    _qrx_smart_log log{};
    log.critical_warning = 21;
    log.temperature[0] = 322 & 0xFF;
    log.temperature[1] = 322 >> 8;
    log.avail_spare = 23;
    log.spare_thresh = 24;
    log.percent_used = 25;
    log.data_units_read[0] = 27;  // 26.001 thousands, rounded up
    log.data_units_written[0] = 27;
    log.host_reads[0] = 28;
    log.host_writes[0] = 29;
    log.ctrl_busy_time[0] = 30;
    log.power_cycles[0] = 31;
    log.power_on_hours[0] = 32;
    log.unsafe_shutdowns[0] = 33;
    log.media_errors[0] = 34;
    log.num_err_log_entries[0] = errors;
    log.warning_temp_time = 35;
    log.critical_comp_time = 36;
    log.tmt1tc = 37;
    log.tmt2tc = 38;
    log.ttftmt1 = 39;
    log.ttftmt2 = 40;
    log.temp_sensor[0] = 322;
    return log;
}

TEST_F(Standard, HealthLogIsTheWholePage)
{
    for (const QRX_U32 nsid : {0U, 0xFFFFFFFFU}) {
        EXPECT_EQ(rig_.log_page(2, 512, nsid).status, kGood);
        EXPECT_EQ(rig_.bytes(0, 512), raw(expected_health(0)));
        EXPECT_TRUE(rig_.all_from(512, kUntouched));
    }
    EXPECT_EQ(rig_.log_page(2, 512, 2).status, 0x002U) << "there is none for a single namespace";
    EXPECT_EQ(rig_.log_page(2, 512).status, kGood);
    EXPECT_EQ(rig_.bytes(0, 512), raw(expected_health(1)));
}

TEST_F(Standard, FirmwareSlotsLogIsTheWholePage)
{
    EXPECT_EQ(rig_.log_page(3, 512).status, kGood);
    nvme_firmware_slot_log log{};
    log.afi = 0x32;
    fill(log.frs[0], "FIRST   ");
    fill(log.frs[1], "SECONDSE");
    fill(log.frs[2], "T       ");
    EXPECT_EQ(rig_.bytes(0, 512), raw(log));
}

TEST_F(Standard, ErrorLogHoldsTheLatest64NewestFirst)
{
    EXPECT_EQ(rig_.log_page(1, 4096).status, kGood);
    EXPECT_TRUE(rig_.all_from(0, 0));
    for (QRX_U32 i = 1; i <= 70; ++i) {
        EXPECT_EQ(rig_.identify(0x00, 1000 + i).status, 0x00BU);
    }
    EXPECT_EQ(rig_.log_page(1, 4096).status, kGood);
    for (QRX_U32 i = 0; i < 64; ++i) {
        nvme_error_log_entry entry{};
        entry.error_count = 70 - i;
        entry.status_field = 0x00B << 1;
        entry.parm_error_location = 0xFFFF;
        entry.nsid = 1070 - i;
        EXPECT_EQ(rig_.bytes(std::size_t{i} * 64, 64), raw(entry));
    }
}

TEST_F(Standard, ErrorLogTellsTheQueueAndTheAddressOfAnIoCommand)
{
    nvme_admin_cmd command{};
    command.opcode = 0x02;
    command.nsid = 2;
    command.cdw10 = 0x12345678;
    command.cdw11 = 0x9A;
    EXPECT_EQ(rig_.machine().io({}, command, rig_.page).status, 0x080U);
    EXPECT_EQ(rig_.log_page(1, 64).status, kGood);
    nvme_error_log_entry entry{};
    entry.error_count = 1;
    entry.sqid = 1;
    entry.status_field = 0x080 << 1;
    entry.parm_error_location = 0xFFFF;
    entry.lba = 0x9A12345678;
    entry.nsid = 2;
    EXPECT_EQ(rig_.bytes(0, 64), raw(entry));
}

TEST_F(Standard, CommandsLogNamesWhatIsCarriedOutAndNothingElse)
{
    EXPECT_EQ(rig_.log_page(5, 4096).status, kGood);
    nvme_effects_log log{};
    for (const int opcode : {0x00, 0x01, 0x02, 0x04, 0x05, 0x06, 0x08, 0x09, 0x0A, 0x0C, 0x10, 0x11,
                             0x1D, 0x1E, 0xC2, 0xC3, 0xC7, 0xCB, 0xCE, 0xD0, 0xD1, 0xD2, 0xD3, 0xE2}) {
        log.acs[opcode] = 1;
    }
    log.acs[0x15] = 9;  // changes which namespaces there are
    log.iocs[0] = log.iocs[2] = log.iocs[5] = 1;
    log.iocs[1] = log.iocs[4] = log.iocs[8] = 3;
    EXPECT_EQ(rig_.bytes(0, 4096), raw(log));
    for (unsigned opcode = 0; opcode < 256; ++opcode) {
        nvme_admin_cmd command{};
        command.opcode = static_cast<QRX_U8>(opcode);
        EXPECT_EQ(rig_.admin(command).status != 0x001U, log.acs[opcode] != 0) << opcode;
        EXPECT_EQ(rig_.machine().io({}, command, {}).status != 0x001U, log.iocs[opcode] != 0) << opcode;
    }
}

TEST_F(Standard, SupportedPagesLogNamesThePages)
{
    EXPECT_EQ(rig_.log_page(0, 1024).status, kGood);
    for (std::size_t page = 0; page < 256; ++page) {
        const bool known = page <= 3 || page == 5 || page == 0xC0 || page == 0xD0;
        EXPECT_EQ(rig_.at<QRX_U32>(page * 4), known ? 1U : 0U);
    }
    for (const int page : {4, 6, 7, 0x0D, 0x80, 0xC1, 0xFF}) {
        EXPECT_EQ(rig_.log_page(static_cast<QRX_U8>(page), 512).status, 0x109U);
    }
}

TEST_F(Standard, LogPagesAreReadFromAnOffset)
{
    EXPECT_EQ(rig_.log_page(3, 16, 0, 8).status, kGood);
    EXPECT_EQ(rig_.bytes(0, 16), "FIRST   SECONDSE");
    EXPECT_TRUE(rig_.all_from(16, kUntouched));
    EXPECT_EQ(rig_.log_page(3, 16, 0, 508).status, kGood);
    EXPECT_TRUE(rig_.all_from(16, kUntouched));
    EXPECT_EQ(rig_.bytes(0, 16), std::string(16, '\0'));
    EXPECT_EQ(rig_.log_page(3, 4, 0, 512).status, kGood);
    EXPECT_EQ(rig_.log_page(3, 4, 0, 516).status, 0x002U);
    EXPECT_EQ(rig_.log_page(3, 4, 0, 2).status, 0x002U);
    nvme_admin_cmd command{};
    command.opcode = 0x02;
    command.cdw10 = 0xFFFF0003;
    command.cdw11 = 0xFFFF;
    EXPECT_EQ(rig_.admin(command).status, kGood) << "more than the buffer and the page have";
    EXPECT_EQ(rig_.bytes(8, 5), "FIRST");
    EXPECT_TRUE(rig_.all_from(512, 0));
    command.cdw13 = 1;
    EXPECT_EQ(rig_.admin(command).status, 0x002U) << "high half of the offset";
}

TEST_F(Standard, FeaturesTellTheirValues)
{
    const std::vector<std::pair<QRX_U32, QRX_U32>> expected{{0x01, 6}, {0x02, 0},          {0x04, 343}, {0x05, 0},
                                                            {0x06, 1}, {0x07, 0x000F000F}, {0x08, 0},   {0x09, 0},
                                                            {0x0A, 0}, {0x0B, 0}};
    for (const auto& [id, value] : expected) {
        EXPECT_EQ(get(id).status, kGood) << id;
        EXPECT_EQ(get(id).result, value) << id;
        EXPECT_EQ(get(0x100 | id).result, value) << "default of " << id;
        EXPECT_EQ(get(0x200 | id).result, value) << "saved value of " << id;
        const bool changeable = id != 0x02 && id != 0x07 && id != 0x09;
        EXPECT_EQ(get(0x300 | id).result, changeable ? 4U : 0U) << "capabilities of " << id;
        EXPECT_EQ(get(0x400 | id).status, 0x002U);
    }
    for (const QRX_U32 id : {0x00U, 0x03U, 0x0CU, 0x0DU, 0x10U, 0x80U, 0xFFU}) {
        EXPECT_EQ(get(id).status, 0x002U) << id;
        EXPECT_EQ(set(id).status, 0x002U) << id;
    }
}

TEST_F(Standard, FeaturesAreSet)
{
    EXPECT_EQ(set(0x0B, 0xFFFFFFFF).status, kGood);
    EXPECT_EQ(get(0x0B).result, 0x1FFU) << "only the bits that exist";
    EXPECT_EQ(get(0x10B).result, 0U);
    EXPECT_EQ(set(0x06, 0).status, kGood);
    EXPECT_EQ(get(0x06).result, 0U);
    EXPECT_EQ(set(0x80000006, 1).status, 0x10DU);
    EXPECT_EQ(get(0x06).result, 0U);
    EXPECT_EQ(set(0x07, 0x00010001).status, 0x00CU);
    EXPECT_EQ(set(0x09, 1).status, 0x10EU);
    EXPECT_EQ(set(0x02, 0).status, kGood);
    EXPECT_EQ(set(0x02, 1).status, 0x002U) << "a power state that is not there";
}

TEST_F(Standard, TemperatureThresholdHasTwoLimitsAndOneSensor)
{
    EXPECT_EQ(set(0x04, 350).status, kGood);
    EXPECT_EQ(set(0x04, 1 << 20 | 280).status, kGood);
    EXPECT_EQ(get(0x04).result, 350U);
    EXPECT_EQ(get(0x04, 1 << 20).result, 280U);
    EXPECT_EQ(get(0x104, 1 << 20).result, 0U);
    for (const QRX_U32 cdw11 : {1U << 16, 0xFU << 16, 2U << 20}) {
        EXPECT_EQ(get(0x04, cdw11).status, 0x002U);
        EXPECT_EQ(set(0x04, cdw11).status, 0x002U);
    }
}

TEST_F(Standard, TimestampIsTheControllersClock)
{
    EXPECT_EQ(get(0x0E).status, kGood);
    EXPECT_EQ(rig_.at<QRX_U64>(0), 1767225600000ULL);
    EXPECT_EQ(get(0x30E).result, 4U);
    const QRX_U64 now = 0xFFFF019A00000000ULL | 1234567;
    std::memcpy(rig_.page.data(), &now, 8);
    EXPECT_EQ(set(0x0E).status, kGood);
    EXPECT_EQ(get(0x0E).status, kGood);
    EXPECT_EQ(rig_.at<QRX_U64>(0), (now & 0xFFFFFFFFFFFFULL) | 1ULL << 49);
    EXPECT_EQ(get(0x10E).status, kGood);
    EXPECT_EQ(rig_.at<QRX_U64>(0), 1767225600000ULL);
    nvme_admin_cmd command{};
    command.opcode = 0x0A;
    command.cdw10 = 0x0E;
    EXPECT_EQ(rig_.machine().admin({}, command, std::span(rig_.page).first(7)).status, 0x002U);
    command.opcode = 0x09;
    EXPECT_EQ(rig_.machine().admin({}, command, std::span(rig_.page).first(7)).status, 0x002U);
}

TEST_F(Standard, OtherCommandsAreEndedSensibly)
{
    const auto end = [&](int opcode) {
        nvme_admin_cmd command{};
        command.opcode = static_cast<QRX_U8>(opcode);
        return rig_.admin(command);
    };
    EXPECT_EQ(end(0x08).status, kGood);
    EXPECT_EQ(end(0x08).result, 1U) << "not aborted";
    EXPECT_EQ(end(0x0C).status, 0x105U);
    for (const int opcode : {0x00, 0x01, 0x04, 0x05}) {
        EXPECT_EQ(end(opcode).status, 0x101U);
    }
    for (const int opcode : {0x0D, 0x14, 0x18, 0x1C, 0x80, 0x81, 0x82, 0x84}) {
        EXPECT_EQ(end(opcode).status, 0x001U) << opcode;
    }
}

TEST_F(Standard, AnSsdHasAnIdentityOfItsOwn)
{
    Rig rig("foreign");
    EXPECT_EQ(rig.identify(1).status, kGood);
    const auto id = rig.at<nvme_id_ctrl>(0);
    EXPECT_EQ(id.vid, 0xFADE);
    EXPECT_EQ(id.nn, 1U);
    EXPECT_EQ(rig.bytes(4, 20), "OTHERMAKER0001      ");
    EXPECT_EQ(rig.bytes(24, 40), "Other Maker SSD 512GB                   ");
    EXPECT_EQ(rig.bytes(64, 8), "OM12.3  ");
    QRX_U64 total = 0;
    std::memcpy(&total, id.tnvmcap, 8);
    EXPECT_EQ(total, 1000215216ULL * 512);
    EXPECT_EQ(rig.log_page(5, 4096).status, kGood);
    EXPECT_EQ(rig.at<nvme_effects_log>(0).acs[0xE2], 0U);
}

}  // namespace

}  // namespace qrx::sim
