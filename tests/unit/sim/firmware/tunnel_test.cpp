// The drives behind the controller, as the tunnel reaches them.
#include "sim/firmware/firmware_image.h"
#include "tests/unit/sim/firmware/rig.h"

namespace qrx::sim {
namespace {

constexpr QRX_U32 kAll = 0xFFFFFFFF;
constexpr QRX_U32 kInvalidOpcode = 0x001;
constexpr QRX_U32 kInvalidField = 0x002;
constexpr QRX_U32 kInvalidNamespace = 0x00B;
constexpr QRX_U32 kInvalidFormat = 0x10A;

// A command for a drive.
struct Inner {
    QRX_U32 word0 = 0;  // opcode, FUSE, PSDT
    QRX_U32 nsid = 0;
    QRX_U32 cdw10 = 0;
    QRX_U32 cdw11 = 0;
};

class Tunnel : public testing::Test {
protected:
    static nvme_admin_cmd wrap(QRX_U8 opcode, QRX_U32 drive, const Inner& inner)
    {
        nvme_admin_cmd command{};
        command.opcode = opcode;
        command.nsid = drive;
        command.cdw10 = inner.cdw10;
        command.cdw11 = inner.cdw11;
        command.cdw14 = inner.word0;
        command.cdw15 = inner.nsid;
        return command;
    }
    Completion from(QRX_U32 drive, const Inner& inner) { return rig.admin(wrap(0xC2, drive, inner)); }
    Completion to(QRX_U32 drive, const Inner& inner, std::span<QRX_U8> data = {})
    {
        return rig.machine().admin({}, wrap(0xC3, drive, inner), data);
    }
    const Drive& drive(QRX_U32 id) { return *rig.controller().find_drive(id); }
    _nvme_id_ns wanted_namespace(QRX_U64 sectors, QRX_U8 format = 0)
    {
        _nvme_id_ns ns{};
        ns.nsze = ns.ncap = sectors;
        ns.flbas = format;
        return ns;
    }
    Completion create(QRX_U32 id, const _nvme_id_ns& ns)
    {
        std::array<QRX_U8, 4096> page{};
        EXPECT_TRUE(wire::write(page, 0, ns));
        return to(id, {0x0D, 0, 0, 0}, page);
    }
    Completion attach(QRX_U32 id, QRX_U32 nsid, bool attached, QRX_U16 count = 1, QRX_U16 controller = 0)
    {
        std::array<QRX_U8, 4096> page{};
        _controller_list_format list{};
        list.num_of_id = count;
        list.id[0] = controller;
        EXPECT_TRUE(wire::write(page, 0, list));
        return to(id, {0x15, nsid, attached ? 0U : 1U, 0}, page);
    }

    Rig rig = Rig::of_text(R"({"controllers": [{
        "drives": [
            {"id": 0}, {"id": 1},
            {"id": 2, "model": "MODEL TWO", "serial": "SERIAL2", "firmware": "FW2", "sectors": 80000, "sector_size": 512,
             "temperature": 299, "critical_warning": 2, "nsid": 5, "health": {"power_cycles": 77, "spare": 88}},
            {"id": 3, "failed": true}],
        "virtual_disks": [{"id": 0, "raid_mode": "raid1", "members": [0, 1]}],
        "namespaces": [{"nsid": 1, "parent_id": 0}]
    }]})");
};

TEST_F(Tunnel, IdentifyIsTheDrivesOwn)
{
    EXPECT_EQ(from(2, {6, 0, 1, 0}).status, kGood);
    const auto id = rig.at<nvme_id_ctrl>(0);
    EXPECT_EQ(id.vid, 0xFADE);
    EXPECT_EQ(rig.bytes(4, 20), "SERIAL2             ");
    EXPECT_EQ(rig.bytes(24, 40), "MODEL TWO                               ");
    EXPECT_EQ(rig.bytes(64, 8), "FW2     ");
    EXPECT_EQ(id.oacs, 0x0E) << "format, firmware, namespaces";
    EXPECT_EQ(id.frmw, 0x16) << "three slots, activation without reset";
    EXPECT_EQ(id.fna, 0x04);
    EXPECT_EQ(id.nn, 8U);
    QRX_U64 total = 0;
    std::memcpy(&total, id.tnvmcap, 8);
    EXPECT_EQ(total, 80000U * 512);
    EXPECT_TRUE(std::all_of(std::begin(id.unvmcap), std::end(id.unvmcap), [](QRX_U8 byte) { return byte == 0; }));
}

TEST_F(Tunnel, NamespacesAreTheDrivesOwn)
{
    EXPECT_EQ(from(2, {6, 5, 0, 0}).status, kGood);
    const auto ns = rig.at<_nvme_id_ns>(0);
    EXPECT_EQ(ns.nsze, 80000U);
    EXPECT_EQ(ns.nlbaf, 1);
    EXPECT_EQ(ns.lbaf[0].ds, 9);
    EXPECT_EQ(ns.lbaf[1].ds, 12);
    EXPECT_EQ(ns.flbas, 0);
    EXPECT_EQ(from(2, {6, 0, 2, 0}).status, kGood);
    EXPECT_EQ(rig.at<QRX_U32>(0), 5U);
    EXPECT_EQ(rig.at<QRX_U32>(4), 0U);
    EXPECT_EQ(from(2, {6, 9, 0, 0}).status, kInvalidNamespace);
}

TEST_F(Tunnel, LogsAreTheDrivesOwn)
{
    EXPECT_EQ(from(2, {2, kAll, 0x7F0002, 0}).status, kGood);
    const auto health = rig.at<_qrx_smart_log>(0);
    EXPECT_EQ(health.critical_warning, 2);
    EXPECT_EQ(health.temperature[0] | health.temperature[1] << 8, 299);
    EXPECT_EQ(health.avail_spare, 88);
    EXPECT_EQ(health.power_cycles[0], 77);
    EXPECT_TRUE(rig.all_from(512, kUntouched));
    EXPECT_EQ(from(2, {2, kAll, 0x7F0003, 0}).status, kGood);
    EXPECT_EQ(rig.page[0], 0x01);
    EXPECT_EQ(rig.bytes(8, 8), "FW2     ");
    EXPECT_EQ(from(2, {6, 9, 0, 0}).status, kInvalidNamespace);
    EXPECT_EQ(from(2, {2, kAll, 0x0F0001, 0}).status, kGood);
    const auto error = rig.at<nvme_error_log_entry>(0);
    EXPECT_EQ(error.error_count, 1U);
    EXPECT_EQ(error.status_field, kInvalidNamespace << 1);
    EXPECT_EQ(error.nsid, 9U);
    EXPECT_EQ(from(0, {2, kAll, 0x0F0001, 0}).status, kGood);
    EXPECT_EQ(rig.at<nvme_error_log_entry>(0).error_count, 0U) << "another drive has its own";
}

TEST_F(Tunnel, CommandsLogNamesWhatADriveCarriesOut)
{
    EXPECT_EQ(from(2, {2, kAll, 0x3FF0005, 0}).status, kGood);
    const auto log = rig.at<nvme_effects_log>(0);
    for (unsigned opcode = 0; opcode < 256; ++opcode) {
        if ((opcode & 3) == 3) {
            EXPECT_EQ(from(2, {opcode, 0, 15, 0}).status, kInvalidField) << "both ways at once: " << opcode;
            EXPECT_EQ(to(2, {opcode, 0, 15, 0}).status, kInvalidField) << opcode;
            continue;
        }
        const Completion completion = (opcode & 1) != 0 ? to(2, {opcode, 0, 15, 0}) : from(2, {opcode, 0, 15, 0});
        EXPECT_EQ(completion.status != kInvalidOpcode, log.acs[opcode] != 0) << opcode;
    }
    EXPECT_EQ(log.acs[0x80], 0x07U);
    EXPECT_EQ(log.acs[0x0D], 0x0BU);
    EXPECT_EQ(log.acs[0xE2], 0U);
}

TEST_F(Tunnel, FeaturesAreTheDrivesOwnAndTheResultComesBack)
{
    EXPECT_EQ(to(2, {9, 0, 4, 0x123}).status, kGood);
    EXPECT_EQ(from(2, {10, 0, 4, 0}).result, 0x123U);
    EXPECT_EQ(from(0, {10, 0, 4, 0}).result, 343U);
    EXPECT_EQ(rig.controller().features, Features());
}

TEST_F(Tunnel, DriveThatIsNotThereOrHasFailedIsRefused)
{
    EXPECT_EQ(from(4, {6, 0, 1, 0}).status, 0x706U);
    EXPECT_EQ(from(kAll, {6, 0, 1, 0}).status, 0x706U);
    EXPECT_EQ(from(3, {6, 0, 1, 0}).status, 0x701U);
    EXPECT_EQ(to(3, {0x80, kAll, 0, 0}).status, 0x701U);
    EXPECT_TRUE(rig.all_from(0, kUntouched));
}

TEST_F(Tunnel, WrongDirectionIsRefused)
{
    EXPECT_EQ(to(2, {6, 0, 1, 0}).status, kInvalidField) << "Identify brings data";
    EXPECT_EQ(from(2, {9, 0, 4, 0x123}).status, kInvalidField) << "Set Features takes them";
    EXPECT_EQ(from(2, {0x11, 0, 1023, 0}).status, kInvalidField);
    EXPECT_EQ(drive(2).features, Features());
    EXPECT_EQ(from(2, {0x10, 0, 1U << 3 | 1, 0}).status, 0x107U) << "no data at all: either way";
    EXPECT_EQ(to(2, {0x10, 0, 1U << 3 | 1, 0}).status, 0x107U);
}

TEST_F(Tunnel, FusedCommandsAndSglsAreRefused)
{
    for (const QRX_U32 bits : {0x100U, 0x200U, 0x4000U, 0x8000U}) {
        EXPECT_EQ(from(2, {bits | 6, 0, 1, 0}).status, kInvalidField) << bits;
    }
}

TEST_F(Tunnel, FirmwareOfADriveRunsAtOnceOrAfterTheReset)
{
    std::vector<QRX_U8> image = *make_image({"LAB2.0.0", ImageKind::kPlain, 6000, false});
    const auto download = [&] {
        EXPECT_EQ(to(2, {0x11, 0, 1023, 0}, std::span(image).first(4096)).status, kGood);
        EXPECT_EQ(to(2, {0x11, 0, 475, 1024}, std::span(image).subspan(4096)).status, kGood);
    };
    download();
    EXPECT_TRUE(rig.controller().download.empty()) << "the controller's own is another";
    EXPECT_EQ(to(2, {0x10, 0, 1U << 3 | 2, 0}).status, kGood);
    EXPECT_EQ(drive(2).slots.contents[1].crc, image_crc(image));
    EXPECT_EQ(rig.vendor(0xE1, 2).status, kGood);
    EXPECT_EQ(drive(2).record(false, false).FWVersion[0], 'F');
    rig.machine().controller(0)->reset();
    EXPECT_EQ(drive(2).slots.running(), "LAB2.0.0");
    EXPECT_EQ(drive(2).record(false, false).FWVersion[0], 'L');
    EXPECT_EQ(drive(0).slots.running(), "LAB1.0.4");
    EXPECT_EQ(to(2, {0x10, 0, 3U << 3 | 1, 0}).status, kGood) << "at once";
    EXPECT_EQ(drive(2).slots.running(), "FW2");
    EXPECT_EQ(to(2, {0x11, 0, 225, 0}, std::span(image).first(905)).status, kInvalidField);
}

TEST_F(Tunnel, FormatOfAMemberTakesItOutOfItsVirtualDisk)
{
    EXPECT_EQ(to(1, {0x80, kAll, 1U << 9, 0}).status, kGood);
    EXPECT_EQ(rig.controller().virtual_disks[0].status, kVdRebuilding) << "auto rebuild takes the free drive";
    EXPECT_EQ(to(0, {0x80, kAll, 1U << 9, 0}).status, kGood);
    EXPECT_FALSE(rig.controller().virtual_disks[0].online()) << "the last good member is gone";
}

TEST_F(Tunnel, FormatTakesTheNamespacesThatLieOnTheDrive)
{
    rig = Rig("jbof");
    const std::size_t before = rig.controller().namespaces.size();
    const QRX_U16 parent = rig.controller().namespaces.front().parent;
    EXPECT_EQ(to(parent, {0x80, 1, 0, 0}).status, kGood);
    EXPECT_LT(rig.controller().namespaces.size(), before);
    for (const Namespace& ns : rig.controller().namespaces) {
        EXPECT_NE(ns.parent, parent);
    }
}

TEST_F(Tunnel, FormatChangesTheSectorSize)
{
    EXPECT_EQ(to(2, {0x80, 5, 1, 0}).status, kGood);
    EXPECT_EQ(drive(2).sector_size, 4096U);
    EXPECT_EQ(drive(2).sectors, 10000U);
    EXPECT_EQ(from(2, {6, 5, 0, 0}).status, kGood);
    EXPECT_EQ(rig.at<_nvme_id_ns>(0).flbas, 1);
    EXPECT_EQ(rig.at<_nvme_id_ns>(0).nsze, 10000U);
}

TEST_F(Tunnel, FormatThatCannotBeIsRefusedAndChangesNothing)
{
    const Drive before = drive(2);
    EXPECT_EQ(to(2, {0x80, 0, 0, 0}).status, kInvalidNamespace);
    EXPECT_EQ(to(2, {0x80, 4, 0, 0}).status, kInvalidNamespace);
    EXPECT_EQ(to(2, {0x80, 5, 2, 0}).status, kInvalidFormat);
    EXPECT_EQ(to(2, {0x80, 5, 1U << 5, 0}).status, kInvalidFormat);
    EXPECT_EQ(to(2, {0x80, 5, 1U << 4, 0}).status, kInvalidFormat);
    EXPECT_EQ(to(2, {0x80, 5, 3U << 9, 0}).status, kInvalidField);
    EXPECT_EQ(drive(2).namespaces, before.namespaces);
    EXPECT_EQ(drive(2).sectors, before.sectors);
}

TEST_F(Tunnel, NamespacesAreDeletedMadeAndAttached)
{
    EXPECT_EQ(to(2, {0x0D, 4, 1, 0}).status, kInvalidNamespace);
    EXPECT_EQ(create(2, wanted_namespace(1)).status, 0x115U) << "no room";
    EXPECT_EQ(to(2, {0x0D, 5, 1, 0}).status, kGood);
    EXPECT_TRUE(drive(2).namespaces.empty());
    const Completion made = create(2, wanted_namespace(1000, 1));
    EXPECT_EQ(made.status, kGood);
    EXPECT_EQ(made.result, 1U);
    EXPECT_EQ(create(2, wanted_namespace(72000)).result, 2U) << "the rest";
    EXPECT_EQ(create(2, wanted_namespace(1)).status, 0x115U);
    EXPECT_EQ(from(2, {6, 0, 2, 0}).status, kGood);
    EXPECT_EQ(rig.at<QRX_U32>(0), 0U) << "not attached yet";
    EXPECT_EQ(attach(2, 1, true).status, kGood);
    EXPECT_EQ(from(2, {6, 0, 2, 0}).status, kGood);
    EXPECT_EQ(rig.at<QRX_U32>(0), 1U);
    EXPECT_EQ(attach(2, 1, true).status, 0x118U);
    EXPECT_EQ(attach(2, 1, false).status, kGood);
    EXPECT_EQ(attach(2, 1, false).status, 0x11AU);
    EXPECT_EQ(to(2, {0x0D, kAll, 1, 0}).status, kGood);
    EXPECT_TRUE(drive(2).namespaces.empty());
}

TEST_F(Tunnel, NamespacesThatCannotBeAreRefused)
{
    EXPECT_EQ(to(2, {0x0D, kAll, 1, 0}).status, kGood);
    _nvme_id_ns ns = wanted_namespace(10);
    ns.ncap = 9;
    EXPECT_EQ(create(2, ns).status, 0x11BU);
    EXPECT_EQ(create(2, wanted_namespace(10, 2)).status, kInvalidFormat);
    EXPECT_EQ(create(2, wanted_namespace(0)).status, kInvalidField);
    ns = wanted_namespace(10);
    ns.nmic = 1;
    EXPECT_EQ(create(2, ns).status, kInvalidField);
    ns = wanted_namespace(10);
    ns.dps = 1;
    EXPECT_EQ(create(2, ns).status, kInvalidField);
    EXPECT_EQ(to(2, {0x0D, 0, 0, 0}).status, kInvalidField) << "no data";
    EXPECT_EQ(to(2, {0x0D, 0, 2, 0}).status, kInvalidField) << "neither create nor delete";
    for (QRX_U32 i = 1; i <= 8; ++i) {
        EXPECT_EQ(create(2, wanted_namespace(10)).result, i);
    }
    EXPECT_EQ(create(2, wanted_namespace(10)).status, 0x116U);
    EXPECT_EQ(attach(2, 9, true).status, kInvalidNamespace);
    EXPECT_EQ(attach(2, 1, true, 2).status, 0x11CU);
    EXPECT_EQ(attach(2, 1, true, 0).status, 0x11CU);
    EXPECT_EQ(attach(2, 1, true, 1, 3).status, 0x11FU);
    EXPECT_EQ(to(2, {0x15, 1, 2, 0}).status, kInvalidField);
}

TEST_F(Tunnel, NamespaceHealthCountsWhatHostsDid)
{
    EXPECT_EQ(rig.vendor(1U << 16 | 0x08E5).status, kGood);
    EXPECT_EQ(rig.bytes(0, 512), std::string(512, '\0'));
    EXPECT_TRUE(rig.all_from(512, kUntouched)) << "no envelope, no page";
    std::vector<QRX_U8> data(std::size_t{8} * 512);
    nvme_admin_cmd io{};
    io.nsid = 1;
    io.cdw12 = 7;
    io.opcode = 1;
    EXPECT_EQ(rig.machine().io({0, 1}, io, data).status, kGood);
    io.opcode = 2;
    EXPECT_EQ(rig.machine().io({0, 1}, io, data).status, kGood);
    EXPECT_EQ(rig.machine().io({0, 1}, io, data).status, kGood);
    _qrx_smart_log log{};
    log.data_units_read[0] = 1;
    log.data_units_written[0] = 1;
    log.host_reads[0] = 2;
    log.host_writes[0] = 1;
    EXPECT_EQ(rig.vendor(1U << 16 | 0x08E5).status, kGood);
    EXPECT_EQ(rig.bytes(0, 512), raw(log));
    EXPECT_EQ(rig.vendor(2U << 16 | 0x08E5).status, 0x704U);
    EXPECT_EQ(rig.vendor(0x08E5).status, 0x704U);
}

TEST_F(Tunnel, StateKeepsAllOfADrive)
{
    EXPECT_EQ(to(2, {9, 0, 4, 0x123}).status, kGood);
    EXPECT_EQ(to(2, {0x0D, kAll, 1, 0}).status, kGood);
    EXPECT_EQ(create(2, wanted_namespace(10, 1)).status, kGood);
    std::vector<QRX_U8> piece(4096, 9);
    EXPECT_EQ(to(2, {0x11, 0, 1023, 0}, piece).status, kGood);
    EXPECT_EQ(from(2, {6, 9, 0, 0}).status, kInvalidNamespace);
    Result<std::unique_ptr<Machine>> loaded = load_machine(save_machine(rig.machine()), "state.json");
    ASSERT_TRUE(loaded) << loaded.error();
    EXPECT_EQ((*loaded)->parts(), rig.machine().parts());
    EXPECT_EQ((*loaded)->parts().controllers[0].drives[2].download.size(), 4096U);
}

}  // namespace
}  // namespace qrx::sim
