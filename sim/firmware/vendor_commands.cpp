// The vendor admin commands of the controller.
#include <algorithm>
#include <array>

#include "api/src/interface/wire/command.h"
#include "sim/firmware/controller.h"
#include "sim/firmware/opcodes.h"
#include "sim/firmware/reply.h"

namespace qrx::sim {

namespace {

const char* rate_name(QRX_U8 rate)
{
    switch (rate) {
    case 0:
        return "high";
    case 2:
        return "medium";
    case 32:
        return "low";
    default:
        return "what it was";
    }
}

// The virtual disk that a create command describes.
VirtualDiskPlan plan_of(const nvme_admin_cmd& command)
{
    constexpr std::array<QRX_U16, 16> kStripes{256, 512, 1024};  // by code; the other codes are none
    constexpr QRX_U32 kNamespacesMax = 255;
    VirtualDiskPlan plan;
    plan.stripe = kStripes[command.cdw12 >> 16 & 0xF];
    plan.raid_mode = static_cast<QRX_U8>(command.cdw12 >> 24);
    for (QRX_U16 id = 0; id < 32; ++id) {
        if ((command.cdw13 >> id & 1) != 0) {
            plan.members.push_back(id);
        }
    }
    plan.namespace_sizes.assign(std::clamp<QRX_U32>(command.cdw14, 1, kNamespacesMax), 0);
    return plan;
}

// The command that opens and closes opcodes is never closed: who closed it could not open it any more.
bool opens_gate(const nvme_admin_cmd& command)
{
    return command.opcode == kVendorWrite && static_cast<QRX_U16>(command.cdw12) == vendor::kPermitOpcodes;
}

}  // namespace

Completion Controller::vendor_admin(const nvme_admin_cmd& command, std::span<QRX_U8> data)
{
    const Completion completion = vendor_command(command, data);
    log_refusal(command, completion);
    return completion;
}

Completion Controller::vendor_command(const nvme_admin_cmd& command, std::span<QRX_U8> data)
{
    if (gate.closed(is_virtual(), command.opcode) && !opens_gate(command)) {
        return complete(status::kInvalidOpcode);
    }
    switch (command.opcode) {
    case kVendorRead:
        return vendor_read(command, data);
    case kVendorWrite:
        return vendor_write(command, data);
    case kTunnelFromDrive:
    case kTunnelToDrive:
        return tunnel(command, data);
    case kPairSend:
        return pair_send(command, data);
    case kPairReceive:
        return pair_receive(command, data);
    case kMfndControl:
    case kMfndManage:
    case kMfndQuery:
        return is_child_command(command) ? child_command(command, data) : sata_tunnel(command, data);
    case kSataToDrive:
        return sata_tunnel(command, data);
    default:
        return complete(status::kInvalidOpcode);
    }
}

Completion Controller::vendor_read(const nvme_admin_cmd& command, std::span<QRX_U8> data)
{
    const auto argument = static_cast<QRX_U16>(command.cdw12 >> 16);
    switch (static_cast<QRX_U16>(command.cdw12)) {
    case vendor::kReadAdapterInfo:
        return reply_with(data, adapter_record());
    case vendor::kReadAdapterConfig:
        return adapter.raid() ? reply_with(data, config.record()) : reply(data, Verdict::kNotSupported);
    case vendor::kSetTime:
        return set_time(command.cdw13, command.cdw14);
    case vendor::kReadRegister:
        return read_register(command, data);
    case vendor::kReadHbaInfo:
        return answer_with(data, hba_info());
    case vendor::kReadOemData:
        oem.read(data);  // without an envelope, too
        return complete(status::kSuccess);
    case vendor::kReadRateLimits:
        return read_rate_limits(argument, data);
    case vendor::kReadIoCounters:
        return read_io_counters(data);
    case vendor::kReadIdleWindows:
        return read_idle_windows(data);
    case vendor::kReadPdAer:
        return read_pd_aer(command.cdw14, data);
    case vendor::kReadPdInfo:
        return read_pd(command.cdw14, data);
    case vendor::kReadVdInfo:
        return read_vd(command.cdw14, data);
    case vendor::kReadBgaStatus:
        return read_activity(command.cdw14, data);
    case vendor::kReadNsList:
        return read_namespaces(data);
    case vendor::kReadNsListOfVd:
        return read_namespaces_of(static_cast<QRX_U8>(argument), data);
    case vendor::kReadNsSharing:
        return read_sharing(argument, data);
    case vendor::kReadNsHealth:
        return read_namespace_health(argument, data);
    case vendor::kGetInverse:
        return get_inverse(data);
    case vendor::kGetEeprom:
        return reply_with(data, QRX_U32{security.eeprom ? 1U : 0U});
    case vendor::kSecurity:
        return security_command(command, data);
    case vendor::kReadLog:
        return read_log(spi_console(), data);
    case vendor::kReadLogStatus:
        return read_log_status(spi_console(), data);
    case vendor::kReadEvents:
        return read_events(command.cdw13, command.cdw14, data);
    default: {
        if (const std::optional<Completion> diagnosis = diagnose(command, data)) {
            return *diagnosis;
        }
        const std::optional<Verdict> verdict = carry_out(command);
        return verdict ? complete(*verdict) : complete(status::kInvalidField);
    }
    }
}

Completion Controller::vendor_write(const nvme_admin_cmd& command, std::span<const QRX_U8> data)
{
    switch (static_cast<QRX_U16>(command.cdw12)) {
    case vendor::kWriteVpd:
        return write_vpd(command, data);
    case vendor::kWriteSpi:
        return write_spi(command, data);
    case vendor::kWriteOemData:
        return write_oem_data(command, data);
    case vendor::kPermitOpcodes:
        return permit_opcodes(command, data);
    default:
        return complete(status::kInvalidField);
    }
}

Completion Controller::write_oem_data(const nvme_admin_cmd& command, std::span<const QRX_U8> data)
{
    const QRX_U64 length = (QRX_U64{command.cdw10} + 1) * sizeof(QRX_U32);
    if (length != data.size() || data.size() != OemStore::kSize) {
        return complete(status::kInvalidField);
    }
    const Verdict verdict = oem.write(data);
    if (verdict == Verdict::kGood) {
        tell(Event::kAdapter, 0, "has new OEM data");
    }
    return complete(verdict);
}

std::optional<Verdict> Controller::carry_out(const nvme_admin_cmd& command)
{
    const auto argument = static_cast<QRX_U16>(command.cdw12 >> 16);
    const auto low = static_cast<QRX_U16>(command.cdw14);
    const auto high = static_cast<QRX_U16>(command.cdw14 >> 16);
    switch (static_cast<QRX_U16>(command.cdw12)) {
    case vendor::kWriteAdapterConfig:
        return set_config(static_cast<QRX_U8>(low), static_cast<QRX_U8>(low >> 8));
    case vendor::kWriteRegister:
        return write_register(command);
    case vendor::kActivateFirmware:
        return check_raw_image(command);
    case vendor::kLedOfEndPoint:
        return set_led(kPcieEndPoint, command.cdw14);
    case vendor::kSwitchFlashTool:
        return switch_feature(&HbaSettings::flash_tools, "the manufacturing flash tool", command.cdw14);
    case vendor::kSwitchSriov:
        return switch_feature(&HbaSettings::sriov, "SR-IOV", command.cdw14);
    case vendor::kSwitchProtection:
        return switch_feature(&HbaSettings::protection, "the protection of its SPI flash", command.cdw14);
    case vendor::kSwitchVpdTarget:
        return set_vpd_target(command.cdw14);
    case vendor::kSetGpio:
        return set_gpio(command);
    case vendor::kTestI2c:
        return test_i2c(static_cast<QRX_U8>(argument));
    case vendor::kSetRateLimits:
        return set_rate_limits(argument, command.cdw13, command.cdw14);
    case vendor::kHideTemperature:
        return hide_temperature(argument);
    case vendor::kSetEeprom:
        return switch_eeprom(command.cdw14);
    case vendor::kSetInverse:
        return set_inverse(static_cast<QRX_U8>(argument));
    case vendor::kLedOfRootComplex:
        return set_led(kPcieRootComplex, command.cdw14);
    case vendor::kResetBackEnd:
        return reset_back_end_device(command.cdw14);
    case vendor::kSetDebugLevel:
        return set_debug_level(argument);
    case vendor::kImportNsTable:
        return import_table(low, high);
    case vendor::kCreateVd:
        return create_vd(plan_of(command));
    case vendor::kDeleteVd:
        return delete_vd(argument);
    case vendor::kImportVd:
        return import_vd(command.cdw14);
    case vendor::kStopBga:
        return control_vd_activity(low, high);
    case vendor::kStartInitialization:
        return start_initialization(low, high);
    case vendor::kStartRebuild:
        return start_rebuild(low, high);
    case vendor::kStartMediaPatrol:
        return start_media_patrol(command.cdw14);
    case vendor::kInitializeNs:
        return initialize_namespaces(argument, command.cdw14);
    case vendor::kSetNsSharing:
        return set_sharing(argument, command.cdw14);
    case vendor::kSwitchLog:
        return switch_log(spi_console(), command.cdw14);
    case vendor::kCreateNs:
        return create_namespace(static_cast<QRX_U8>(argument), static_cast<QRX_U8>(argument >> 8),
                                QRX_U64{command.cdw14} << 32 | command.cdw13);
    default:
        return std::nullopt;
    }
}

Completion Controller::read_pd(QRX_U32 id, std::span<QRX_U8> data) const
{
    const Drive* const drive = reachable_drive(id);
    return drive != nullptr ? reply_with(data, pd_record(*drive)) : reply(data, Verdict::kInvalidPd);
}

Completion Controller::read_vd(QRX_U32 id, std::span<QRX_U8> data) const
{
    if (!adapter.raid()) {
        return reply(data, Verdict::kNotSupported);
    }
    const VirtualDisk* const vd = find_virtual_disk(id);
    return vd != nullptr ? reply_with(data, vd_record(*vd)) : reply(data, Verdict::kInvalidVd);
}

Completion Controller::read_activity(QRX_U32 id, std::span<QRX_U8> data) const
{
    if (!adapter.raid()) {
        return reply(data, Verdict::kNotSupported);
    }
    const VirtualDisk* const vd = find_virtual_disk(id);
    return vd != nullptr ? reply_with(data, vd->activity_record()) : reply(data, Verdict::kInvalidVd);
}

Completion Controller::read_namespaces(std::span<QRX_U8> data) const
{
    const auto payload = open_reply(data, Verdict::kGood);
    std::size_t offset = 0;
    for (const Namespace& ns : namespaces) {
        put(payload, offset, ns_record(ns));
        offset += sizeof(NVME_NS_Info);
    }
    return complete(status::kSuccess);
}

void Controller::put_namespaces_of(QRX_U8 vd, std::span<QRX_U8> payload) const
{
    std::size_t offset = 0;
    for (const Namespace& ns : namespaces) {
        if (ns.parent_kind == kNsParentVd && (vd == kAllVirtualDisks || ns.parent == vd)) {
            put(payload, offset, ns_record(ns));
            offset += sizeof(NVME_NS_Info);
        }
    }
}

Completion Controller::read_namespaces_of(QRX_U8 vd, std::span<QRX_U8> data) const
{
    if (!adapter.raid()) {
        return reply(data, Verdict::kNotSupported);
    }
    if (vd != kAllVirtualDisks && find_virtual_disk(vd) == nullptr) {
        return reply(data, Verdict::kInvalidVd);
    }
    put_namespaces_of(vd, open_reply(data, Verdict::kGood));
    return complete(status::kSuccess);
}

Completion Controller::read_sharing(QRX_U16 nsid, std::span<QRX_U8> data) const
{
    const Namespace* const ns = find_namespace(*this, nsid);
    return ns != nullptr ? reply_with(data, ns->sharing()) : reply(data, Verdict::kInvalidParameter);
}

Verdict Controller::set_config(QRX_U8 auto_rebuild_on, QRX_U8 rate)
{
    if (!adapter.raid()) {
        return Verdict::kNotSupported;
    }
    const AdapterConfig before = config;
    const Verdict verdict = config.set(auto_rebuild_on, rate);
    if (verdict != Verdict::kGood) {
        return verdict;
    }
    if (config.rate != before.rate) {
        for (VirtualDisk& vd : virtual_disks) {
            if (vd.activity) {
                vd.activity->stretch(rate_factor(before.rate), rate_factor(config.rate));
            }
        }
        tell(Event::kAdapter, 0, std::string("has its background rate set to ") + rate_name(config.rate),
             "_BGA_CHANGE");
    }
    if (config.auto_rebuild != before.auto_rebuild) {
        const bool on = config.auto_rebuild == 1;
        tell(Event::kAdapter, 0, std::string("has auto rebuild switched ") + (on ? "on" : "off"),
             on ? "_AUTOREBUILD_ON" : "_AUTOREBUILD_OFF");
        auto_rebuild();
    }
    return verdict;
}

Verdict Controller::set_debug_level(QRX_U16 level)
{
    if (level > 1) {
        return Verdict::kInvalidParameter;
    }
    settings.errors_only = level == 1;
    tell(Event::kAdapter, 0, std::string("has its debug level set to ") + (level == 1 ? "error only" : "normal"));
    return Verdict::kGood;
}

Completion Controller::set_time(QRX_U32 high, QRX_U32 low)
{
    // Bits 47 to 32 stand below bits 31 to 16 in the first word; the last 16 bits have the second one.
    const QRX_U64 seconds = QRX_U64{high & 0xFFFF} << 32 | QRX_U64{high >> 16} << 16 | (low & 0xFFFF);
    clock.set_to(seconds * 1000);
    return complete(Verdict::kGood);
}

}  // namespace qrx::sim
