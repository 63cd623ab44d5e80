// The RAID controller: an NVMe function with vendor commands, and drives and virtual disks behind it.
#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "api/src/interface/wire/command.h"
#include "api/src/interface/wire/security.h"
#include "sim/firmware/adapter.h"
#include "sim/firmware/board.h"
#include "sim/firmware/child_controllers.h"
#include "sim/firmware/diagnostics.h"
#include "sim/firmware/drive.h"
#include "sim/firmware/event_list.h"
#include "sim/firmware/event_ring.h"
#include "sim/firmware/hba_settings.h"
#include "sim/firmware/host_functions.h"
#include "sim/firmware/management_endpoint.h"
#include "sim/firmware/nvme_function.h"
#include "sim/firmware/oem_store.h"
#include "sim/firmware/opcode_gate.h"
#include "sim/firmware/pair_mailbox.h"
#include "sim/firmware/pcie_interface.h"
#include "sim/firmware/rate_limits.h"
#include "sim/firmware/result.h"
#include "sim/firmware/security.h"
#include "sim/firmware/spi_log.h"
#include "sim/firmware/virtual_disk.h"
#include "sim/firmware/vpd.h"

namespace qrx::sim {

// What a virtual disk is to be.
struct VirtualDiskPlan {
    QRX_U8 raid_mode = kRaid0;
    QRX_U16 stripe = 256;  // sectors of 512 bytes; one that is none is refused
    std::vector<QRX_U16> members;
    QRX_U8 parity_disks = 0;               // in all; 0: as many as the mode has when nothing else is asked for
    std::string name;                      // empty: one of the controller's own
    std::vector<QRX_U64> namespace_sizes;  // sectors of each namespace; 0: an equal part of what the others leave
    bool initialize = false;               // quickly, once it is made, if it is redundant and the controller can
};

class Controller : public NvmeFunction {
public:
    // The id that asks for the namespaces of all virtual disks.
    static constexpr QRX_U8 kAllVirtualDisks = 255;
    // Most namespaces whose records fit behind the envelope of one page.
    static constexpr QRX_U8 kMaxNamespaces = 42;
    // Host functions: two physical ones and the virtual ones behind them.
    static constexpr QRX_U16 kHostFunctions = 34;
    static constexpr QRX_U16 kFirstVirtualFunction = 2;
    static constexpr std::array<QRX_U8, 10> kVendorOpcodes{kPairSend,
                                                           kPairReceive,
                                                           static_cast<QRX_U8>(kVendorRead),
                                                           static_cast<QRX_U8>(kVendorWrite),
                                                           static_cast<QRX_U8>(kTunnelFromDrive),
                                                           static_cast<QRX_U8>(kTunnelToDrive),
                                                           kMfndControl,
                                                           kMfndManage,
                                                           kMfndQuery,  // and ATA commands of drives
                                                           static_cast<QRX_U8>(kSataToDrive)};
    // Asks for every namespace table of a drive.
    static constexpr QRX_U16 kAllTables = 255;

    Controller();

    Adapter adapter;
    AdapterConfig config;
    HbaSettings settings;
    Board board;
    OemStore oem;                            // goes before what the fields of the function and the adapter say
    std::vector<Drive> drives;               // in order of id
    std::vector<VirtualDisk> virtual_disks;  // in order of id
    PairMailbox mailbox;
    Vpd vpd;
    ManagementEndpoint endpoint;
    HostFunctions host_functions;
    ChildControllers children;
    Security security;
    std::vector<PcieInterface> interfaces;  // those that differ from a fresh one, in order of id
    EventList events;
    EventRing ring;
    SpiLog spi_log;
    std::array<RateLimits, kHostFunctions> rate_limits{};
    OpcodeGate gate;
    Diagnostics diagnostics;
    QRX_U64 namespaces_made = 0;  // since the start, so that no two have the same identifiers

    friend bool operator==(const Controller&, const Controller&) = default;

    [[nodiscard]] const Drive* find_drive(QRX_U32 id) const;
    [[nodiscard]] const VirtualDisk* find_virtual_disk(QRX_U32 id) const;
    [[nodiscard]] bool assigned(QRX_U16 pd) const;
    // What the adapter says of a PCIe interface, or null where there is none.
    [[nodiscard]] const PciePort* port_of(QRX_U8 interface) const;
    // What a configuration read over an interface finds, or null where it finds no drive.
    [[nodiscard]] const ConfigSpace* config_space_behind(QRX_U8 interface) const;

    // What happens to drives in a lab; nothing when it could be done, else why not.
    std::optional<Failure> fail_drive(QRX_U32 id);
    // Pulls the drive and all that lies on it.
    std::optional<Failure> remove_drive(QRX_U32 id);
    // Pulls it, if it is there, and plugs in a fresh one of the same kind with the same id.
    std::optional<Failure> replace_drive(QRX_U32 id);

    // How reads of a drive's configuration space end from now on.
    std::optional<Failure> answer_config_reads(QRX_U32 id, ConfigSpace::Answer answer);

    // Other programs read and write a namespace, in place of a workload that is on it.
    std::optional<Failure> start_workload(QRX_U32 nsid, const Workload& workload);
    // Puts an error into the PCIe error registers of a drive, as put_aer_error does.
    std::optional<Failure> put_pcie_error(QRX_U32 id, std::string_view error);
    // What befalls a child controller, as ChildControllers::befall.
    std::optional<Failure> befall_child(QRX_U16 id, std::string_view what);

    // Makes the OEM store hold what the controller left its factory with, or spoils it as OemStore::spoil does.
    std::optional<Failure> set_oem_data(std::string_view what);

    [[nodiscard]] Identity identity() const override;

    // The records that the firmware reports.
    [[nodiscard]] NVME_Adapter_Info adapter_record() const;
    [[nodiscard]] NVME_PD_Info pd_record(const Drive& drive) const;
    [[nodiscard]] NVME_VD_Info vd_record(const VirtualDisk& vd) const;
    [[nodiscard]] NVME_NS_Info ns_record(const Namespace& ns) const;
    [[nodiscard]] _hba_info hba_info() const;
    // What the factory writes into its VPD.
    [[nodiscard]] VpdFacts vpd_facts() const;

protected:
    Completion vendor_admin(const nvme_admin_cmd& command, std::span<QRX_U8> data) override;
    [[nodiscard]] std::vector<QRX_U8> vendor_opcodes() const override;
    [[nodiscard]] std::vector<QRX_U8> vendor_log(QRX_U8 page) const override;
    [[nodiscard]] std::optional<Completion> vendor_feature(const nvme_admin_cmd& command,
                                                           std::span<QRX_U8> data) const override;
    std::optional<Completion> set_vendor_feature(const nvme_admin_cmd& command, std::span<const QRX_U8> data) override;
    [[nodiscard]] Capacity capacity() const override;
    [[nodiscard]] QRX_U32 max_namespaces() const override { return adapter.max_ns; }
    void advance_back_end(Clock::Duration passed) override;
    [[nodiscard]] Clock::Duration next_change() const override;
    [[nodiscard]] bool attaches_namespaces() const override { return (adapter.features & kFeatureNamespace) != 0; }
    Completion attach(const nvme_admin_cmd& command, std::span<const QRX_U8> data) override;
    [[nodiscard]] bool formats() const override { return !adapter.raid(); }
    Completion format(const nvme_admin_cmd& command) override;
    [[nodiscard]] bool virtualizes() const override { return controller_id < kFirstVirtualFunction; }
    Completion virtualize(const nvme_admin_cmd& command) override;
    [[nodiscard]] bool has_management_endpoint() const override { return true; }
    [[nodiscard]] bool dual_port() const override { return diagnostics.dual_port; }
    Completion management_send(const nvme_admin_cmd& command, std::span<const QRX_U8> data) override;
    Completion management_receive(const nvme_admin_cmd& command, std::span<QRX_U8> data) override;
    [[nodiscard]] QRX_U64 firmware_limit() const override;
    [[nodiscard]] std::string firmware_version() const override { return version_text(adapter.firmware); }
    void take_version(const std::string& version) override;
    void reset_back_end() override;
    void firmware_stored(unsigned target) override;
    [[nodiscard]] bool in_service(const Namespace& ns) const override;
    void io_ended(const nvme_admin_cmd& command, const Completion& completion) override;

private:
    // The tunnel: lets a drive carry out the command that the words of this one describe.
    Completion tunnel(const nvme_admin_cmd& command, std::span<QRX_U8> data);
    // The management interface: its commands, and the messages for admin commands, the controller's own and those of
    // the tunnel.
    ManagementAnswer answer_to(const ManagementRequest& request);
    ManagementAnswer management_vpd(const ManagementRequest& request);
    [[nodiscard]] ManagementAnswer management_structure(QRX_U32 what) const;
    [[nodiscard]] nvm_subsystem_health_data_structure subsystem_health() const;
    Completion management_admin(const nvmemi_message_header& header, std::span<const QRX_U8> message);
    Completion management_tunnel(const nvmemi_message_header& header, const nvme_admin_cmd& inner);
    // The tunnel for ATA commands, the security commands, and two switches.
    Completion sata_tunnel(const nvme_admin_cmd& command, std::span<QRX_U8> data);
    Completion security_command(const nvme_admin_cmd& command, std::span<QRX_U8> data);
    Verdict provide_help(QRX_U32 bitmap);
    Verdict acknowledge(QRX_U16 drive, QRX_U32 flags);
    Verdict set_security(QRX_U32 subject, QRX_U32 flag);
    Verdict hide_temperature(QRX_U16 on);
    Verdict switch_eeprom(QRX_U32 on);
    // What lay on the drive is gone: its place in a virtual disk, its namespaces, what others left on it.
    void forget_contents(Drive& drive);
    // Takes over a raw image that a host has sent, before its commit.
    Verdict check_raw_image(const nvme_admin_cmd& command);
    // The vendor commands of opcode 0xC7.
    Completion vendor_write(const nvme_admin_cmd& command, std::span<const QRX_U8> data);
    Completion write_oem_data(const nvme_admin_cmd& command, std::span<const QRX_U8> data);
    Completion read_namespace_health(QRX_U16 nsid, std::span<QRX_U8> data) const;

    // The commands of the multi-function device, where is_child_command().
    Completion child_command(const nvme_admin_cmd& command, std::span<QRX_U8> data);
    Completion identify_child(const nvme_admin_cmd& command, std::span<QRX_U8> data) const;
    Completion manage_children(const nvme_admin_cmd& command, std::span<const QRX_U8> data);
    Completion control_child(const nvme_admin_cmd& command);
    Completion read_child_log(const nvme_admin_cmd& command, std::span<QRX_U8> data) const;

    // Registers. The interface, made if need be.
    [[nodiscard]] PcieInterface& interface_at(QRX_U8 id);
    Completion read_register(const nvme_admin_cmd& command, std::span<QRX_U8> data);
    Verdict write_register(const nvme_admin_cmd& command);

    Completion vendor_command(const nvme_admin_cmd& command, std::span<QRX_U8> data);
    // The vendor commands of opcode 0xE2.
    Completion vendor_read(const nvme_admin_cmd& command, std::span<QRX_U8> data);
    Completion read_pd(QRX_U32 id, std::span<QRX_U8> data) const;
    Completion read_vd(QRX_U32 id, std::span<QRX_U8> data) const;
    Completion read_activity(QRX_U32 id, std::span<QRX_U8> data) const;
    Completion read_namespaces(std::span<QRX_U8> data) const;
    Completion read_namespaces_of(QRX_U8 vd, std::span<QRX_U8> data) const;
    Completion read_sharing(QRX_U16 nsid, std::span<QRX_U8> data) const;
    Verdict set_config(QRX_U8 auto_rebuild, QRX_U8 rate);
    Verdict set_debug_level(QRX_U16 level);
    Completion set_time(QRX_U32 high, QRX_U32 low);
    // The vendor commands without data, or a refusal with kNotSupported where there is no such command here.
    [[nodiscard]] std::optional<Verdict> carry_out(const nvme_admin_cmd& command);
    // Writes the records of the namespaces that lie on `vd`, or on any virtual disk, from `payload` on.
    void put_namespaces_of(QRX_U8 vd, std::span<QRX_U8> payload) const;

    // Monitoring, rate limits, and the opcodes that hosts may use.
    [[nodiscard]] bool is_virtual() const { return controller_id >= kFirstVirtualFunction; }
    void advance_io(Clock::Duration passed);
    Completion read_io_counters(std::span<QRX_U8> data) const;
    Completion read_idle_windows(std::span<QRX_U8> data) const;
    Completion read_rate_limits(QRX_U16 host, std::span<QRX_U8> data) const;
    Verdict set_rate_limits(QRX_U16 host, QRX_U32 iops, QRX_U32 bandwidth);
    Completion permit_opcodes(const nvme_admin_cmd& command, std::span<const QRX_U8> data);
    Completion read_pd_aer(QRX_U32 id, std::span<QRX_U8> data) const;

    // The board. A drive as long as it has power and is out of reset, or null.
    [[nodiscard]] const Drive* reachable_drive(QRX_U32 id) const;
    [[nodiscard]] Drive* reachable_drive(QRX_U32 id);
    // Whether a drive may go away for a moment: nothing runs on it.
    [[nodiscard]] Verdict check_interruptible(QRX_U32 pd) const;
    // Whether it may stay away: nobody uses it besides.
    [[nodiscard]] Verdict check_unused(QRX_U32 pd) const;
    Verdict reset_back_end_device(QRX_U32 word);
    Verdict reset_device(QRX_U16 id);
    Verdict switch_power(QRX_U16 pin, QRX_U8 action);
    Verdict switch_perst(QRX_U16 pd, QRX_U8 action);
    Verdict set_led(QRX_U8 object, QRX_U32 word);
    Verdict set_gpio(const nvme_admin_cmd& command);
    Verdict set_inverse(QRX_U8 value);
    Completion get_inverse(std::span<QRX_U8> data) const;
    Verdict set_vpd_target(QRX_U32 target);
    [[nodiscard]] Verdict test_i2c(QRX_U16 channel) const;
    Verdict switch_feature(bool HbaSettings::*feature, const char* name, QRX_U32 on);
    Completion write_spi(const nvme_admin_cmd& command, std::span<const QRX_U8> data);
    Completion write_vpd(const nvme_admin_cmd& command, std::span<const QRX_U8> data);

    // Virtual disks.
    [[nodiscard]] VirtualDisk* vd_of(QRX_U32 id);
    [[nodiscard]] Drive* drive_of(QRX_U32 id);
    // Whether a drive can become a member: there, nobody's, healthy, idle.
    [[nodiscard]] Verdict check_free(QRX_U32 pd) const;
    // The verdict on a plan; with kGood `made` is the virtual disk and the plan has the size of every namespace.
    [[nodiscard]] Verdict plan_vd(VirtualDiskPlan& plan, VirtualDisk& made) const;
    // Whether drives can be members side by side: each of `own` or free, none named twice, all with sectors of one
    // size. With kGood `share` is what the smallest of them gives, in sectors.
    [[nodiscard]] Verdict check_members(std::span<const QRX_U16> members, const VirtualDisk* own, QRX_U64& share) const;
    Verdict create_vd(VirtualDiskPlan plan);
    // From its start on the virtual disk is one of `raid_mode` over `members`, to which all that it had must belong.
    // `parity_disks` are as of a plan.
    Verdict start_migration(QRX_U32 id, QRX_U8 raid_mode, QRX_U8 parity_disks, std::span<const QRX_U16> members);
    Verdict delete_vd(QRX_U32 id);
    Verdict import_vd(QRX_U32 id);

    // Background activities.
    Verdict start_initialization(QRX_U32 vd, QRX_U16 type);
    Verdict start_media_patrol(QRX_U32 vd);
    Verdict start_rebuild(QRX_U32 vd, QRX_U32 pd);
    Verdict start_synchronization(QRX_U32 vd);
    Verdict start_drive_patrol(QRX_U32 pd);
    Verdict control_vd_activity(QRX_U32 vd, QRX_U16 operation);
    Verdict control_pd_activity(QRX_U32 pd, QRX_U16 operation);
    // Whether a virtual disk may begin an activity at all; `bit` is the one that it has in the adapter's mask. The
    // second is for those that need redundancy.
    [[nodiscard]] Verdict check_activity(QRX_U32 vd, unsigned bit) const;
    [[nodiscard]] Verdict check_redundant_activity(QRX_U32 vd, unsigned bit) const;
    [[nodiscard]] Verdict check_rebuild_target(const VirtualDisk& vd, QRX_U32 pd) const;
    void start_activity(VirtualDisk& vd, QRX_U8 type);
    void finish_activity(VirtualDisk& vd);
    // `wanted`: a host asked for it.
    void abort_activity(VirtualDisk& vd, const std::string& why, bool wanted = false);
    // Sectors that every member of the virtual disk gives.
    [[nodiscard]] QRX_U64 share_of(const VirtualDisk& vd) const;
    [[nodiscard]] bool member_lost(const VirtualDisk& vd, std::size_t index) const;
    // Gives a virtual disk the status that its members leave it, after one of them was lost or came to hold its data.
    void update_status(VirtualDisk& vd);
    void update_health();
    void auto_rebuild();

    // Namespaces.
    [[nodiscard]] std::optional<QRX_U8> free_nsid() const;
    [[nodiscard]] std::size_t free_nsids() const;
    [[nodiscard]] std::size_t namespaces_on(QRX_U8 parent_kind, QRX_U16 parent) const;
    // Makes a namespace that waits to be attached. There must be a free id.
    Namespace& make_namespace(QRX_U8 parent_kind, QRX_U16 parent, QRX_U64 sectors, QRX_U32 sector_size);
    void drop_namespaces(QRX_U8 parent_kind, QRX_U16 parent);
    Verdict initialize_namespaces(QRX_U16 pd, QRX_U32 count);
    Verdict create_namespace(QRX_U8 parent_plus_one, QRX_U8 owner, QRX_U64 sectors);
    Verdict set_sharing(QRX_U16 nsid, QRX_U32 word);
    Verdict import_table(QRX_U32 pd, QRX_U16 table);

    // Keeps what has happened in the list of events. `what` is the word for it in the ring ("_CREATED"), empty for
    // what the ring has no word for.
    void tell(Event::Subject subject, QRX_U16 id, std::string text, std::string_view what = {},
              QRX_U8 severity = QRX_NVME_EVT_SEVERITY_NOTIFY);
    // The part of it that concerns the ring and the debug console, which gets `sentence`.
    void note(Event::Subject subject, QRX_U16 id, std::string_view what, QRX_U8 severity, std::string_view sentence);
    // Notes every tenth of its way that the activity has passed between two percentages.
    void tell_progress(const VirtualDisk& vd, unsigned from, unsigned to);
    // A line of the debug console about a command that failed.
    void log_refusal(const nvme_admin_cmd& command, const Completion& completion);
    Completion read_events(QRX_U32 offset, QRX_U32 length, std::span<QRX_U8> data) const;
    // A log that a host switches on and off, and reads page by page.
    struct Console {
        SpiLog& log;
        bool& on;
        const char* name;
    };
    [[nodiscard]] Console spi_console() { return {spi_log, settings.debug_dump, "debug console"}; }
    [[nodiscard]] Console vdm_console() { return {diagnostics.vdm_log, diagnostics.vdm_on, "VDM log"}; }
    Completion read_log_status(Console console, std::span<QRX_U8> data);
    Completion read_log(Console console, std::span<QRX_U8> data);
    Verdict switch_log(Console console, QRX_U32 word);
    // What both roads to the debug console share: a host begins to read it; its next page, with a head in front.
    Verdict begin_log(Console console);
    Verdict put_log(Console console, std::span<QRX_U8> payload);
    // A line of the log of vendor-defined messages, which carry those of the management interface.
    void note_message(const std::string& line);

    // The vendor commands that diagnose the controller; nothing for any other.
    [[nodiscard]] std::optional<Completion> diagnose(const nvme_admin_cmd& command, std::span<QRX_U8> data);
    void crash();
    Completion read_io_queues(std::span<QRX_U8> data) const;
    Verdict switch_ports(QRX_U16 dual);
    Verdict take_offline(QRX_U16 pd);
    // The drive counts as failed from now on.
    void set_down(Drive& drive, const char* text, std::string_view what, QRX_U8 severity);
    // Takes a member out of its virtual disk: `gone` when its slot is empty from now on.
    void lose_member(QRX_U16 pd, bool gone);

    // The two halves of a pair command, and the requests that it carries.
    Completion pair_send(const nvme_admin_cmd& command, std::span<const QRX_U8> data);
    Completion pair_receive(const nvme_admin_cmd& command, std::span<QRX_U8> data);
    struct PairAnswers;
    Verdict answer_pair(std::span<QRX_U8> payload);
};

}  // namespace qrx::sim
