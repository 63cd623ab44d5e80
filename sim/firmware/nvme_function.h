// One NVMe controller as the host's stock driver sees it: Identify, logs, features, namespaces and their data.
// The RAID controller adds its vendor commands; an SSD of another maker is this and no more.
#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "sim/firmware/clock.h"
#include "sim/firmware/error_log.h"
#include "sim/firmware/features.h"
#include "sim/firmware/firmware_download.h"
#include "sim/firmware/firmware_slots.h"
#include "sim/firmware/health.h"
#include "sim/firmware/host.h"
#include "sim/firmware/namespace.h"
#include "sim/firmware/pci_address.h"
#include "sim/firmware/status.h"

namespace qrx::sim {

class NvmeFunction {
public:
    virtual ~NvmeFunction() = default;

    unsigned number = 0;  // the N of /dev/nvme<N>
    PciAddress address{0, 3, 0, 0};
    QRX_U16 slot = 1;  // System Slot
    QRX_U16 vendor_id = 0;
    QRX_U16 device_id = 0;
    QRX_U16 subsystem_vendor_id = 0;
    QRX_U16 controller_id = 0;
    std::string model;   // at most 40 letters
    std::string serial;  // at most 20 letters
    std::string subnqn;  // at most 223 letters
    FirmwareSlots slots;
    FirmwareDownload download;  // the image that a host is sending
    Health health;
    ErrorLog errors;
    Features features;
    Clock clock;
    std::vector<Namespace> namespaces;  // in order of nsid

    friend bool operator==(const NvmeFunction&, const NvmeFunction&) = default;

    // Carry out a command; one that fails enters the error log.
    Completion execute_admin(const nvme_admin_cmd& command, std::span<QRX_U8> data);
    Completion execute_io(const nvme_admin_cmd& command, std::span<QRX_U8> data);

    // How it identifies itself: by the fields above, unless something else has been stored in the device.
    struct Identity {
        QRX_U16 subsystem_vendor_id = 0;
        QRX_U16 subsystem_device_id = 0;
        std::string model;
        std::string serial;
        std::string subnqn;
    };
    [[nodiscard]] virtual Identity identity() const { return {subsystem_vendor_id, device_id, model, serial, subnqn}; }

    [[nodiscard]] ControllerNode node() const;
    // Lets simulated time go by.
    void advance(Clock::Duration passed);
    // Takes the power away and gives it back: the firmware that waits for it runs, a download that was not committed
    // is lost, features and clock start anew.
    void reset();
    // Only resets it: the firmware that waits runs, a download is lost, features start anew; power and clock stay.
    void restart();

    // The namespace, or null. `of` may be const.
    template <class Function>
    [[nodiscard]] static auto find_namespace(Function& of, QRX_U32 nsid) -> decltype(of.namespaces.data())
    {
        for (auto& candidate : of.namespaces) {
            if (candidate.nsid == nsid) {
                return &candidate;
            }
        }
        return nullptr;
    }

    // Most pages of one transfer, as a power of two.
    static constexpr QRX_U8 kMaxTransferPages = 5;

protected:
    struct Capacity {
        QRX_U64 total = 0;  // bytes
        QRX_U64 unallocated = 0;
    };

    NvmeFunction() = default;
    NvmeFunction(const NvmeFunction&) = default;
    NvmeFunction(NvmeFunction&&) = default;
    NvmeFunction& operator=(const NvmeFunction&) = default;
    NvmeFunction& operator=(NvmeFunction&&) = default;

    // A command whose opcode is in the vendor's range.
    virtual Completion vendor_admin(const nvme_admin_cmd& command, std::span<QRX_U8> data);
    // The vendor opcodes that vendor_admin knows.
    [[nodiscard]] virtual std::vector<QRX_U8> vendor_opcodes() const { return {}; }
    // A log page of the vendor's, whole; empty where there is no such page.
    [[nodiscard]] virtual std::vector<QRX_U8> vendor_log(QRX_U8 /*page*/) const { return {}; }
    // Get and Set Features of a feature of the vendor's; nothing where there is no such feature.
    [[nodiscard]] virtual std::optional<Completion> vendor_feature(const nvme_admin_cmd& /*command*/,
                                                                   std::span<QRX_U8> /*data*/) const
    {
        return std::nullopt;
    }
    virtual std::optional<Completion> set_vendor_feature(const nvme_admin_cmd& /*command*/,
                                                         std::span<const QRX_U8> /*data*/)
    {
        return std::nullopt;
    }
    [[nodiscard]] virtual Capacity capacity() const;
    // Highest namespace id that may exist.
    [[nodiscard]] virtual QRX_U32 max_namespaces() const { return 1; }
    // Lets time go by for all that is behind the function. Called by advance, never for longer than next_change().
    virtual void advance_back_end(Clock::Duration /*passed*/) {}
    // How long until something behind the function comes to its end.
    [[nodiscard]] virtual Clock::Duration next_change() const { return Clock::Duration::max(); }
    // Namespaces can be attached and detached.
    [[nodiscard]] virtual bool attaches_namespaces() const { return false; }
    // Namespace Attachment, if attaches_namespaces().
    virtual Completion attach(const nvme_admin_cmd& command, std::span<const QRX_U8> data);
    // Namespaces can be made and deleted.
    [[nodiscard]] virtual bool manages_namespaces() const { return false; }
    // Namespace Management, if manages_namespaces().
    virtual Completion manage(const nvme_admin_cmd& command, std::span<const QRX_U8> data);
    // Namespaces can be formatted, with sectors of 512 bytes as format 0 and of 4096 bytes as format 1.
    [[nodiscard]] virtual bool formats() const { return false; }
    // Format NVM, if formats().
    virtual Completion format(const nvme_admin_cmd& command);
    // What every device does for Format NVM: checks it, and makes the namespaces anew.
    Completion reformat(const nvme_admin_cmd& command);
    // Bytes of a sector of format `index`, or nothing where there is no such format.
    [[nodiscard]] static std::optional<QRX_U32> format_size(QRX_U32 index);
    // Has primary and secondary functions whose resources can be managed.
    [[nodiscard]] virtual bool virtualizes() const { return false; }
    // Virtualization Management, if virtualizes().
    virtual Completion virtualize(const nvme_admin_cmd& command);
    // Has a management endpoint that NVMe-MI Send and Receive reach.
    [[nodiscard]] virtual bool has_management_endpoint() const { return false; }
    // Both, if has_management_endpoint().
    virtual Completion management_send(const nvme_admin_cmd& command, std::span<const QRX_U8> data);
    virtual Completion management_receive(const nvme_admin_cmd& command, std::span<QRX_U8> data);
    // The subsystem has two ports.
    [[nodiscard]] virtual bool dual_port() const { return false; }
    // Most bytes of a firmware image.
    [[nodiscard]] virtual QRX_U64 firmware_limit() const { return QRX_U64{16} << 20; }
    // The version that runs, in full, where the device knows it beside the slot's revision.
    [[nodiscard]] virtual std::string firmware_version() const { return {}; }
    // From now on firmware of this version runs.
    virtual void take_version(const std::string& /*version*/) {}
    // A commit has put an image into slot `target`.
    virtual void firmware_stored(unsigned /*target*/) {}
    // The part of a reset that concerns what is behind the function.
    virtual void reset_back_end() {}
    // An I/O command has ended.
    virtual void io_ended(const nvme_admin_cmd& /*command*/, const Completion& /*completion*/) {}
    // Whether what lies under the namespace can be read and written.
    [[nodiscard]] virtual bool in_service(const Namespace& /*ns*/) const { return true; }

private:
    Completion admin(const nvme_admin_cmd& command, std::span<QRX_U8> data);
    Completion io(const nvme_admin_cmd& command, std::span<QRX_U8> data);
    Completion identify(const nvme_admin_cmd& command, std::span<QRX_U8> data) const;
    Completion identify_descriptors(QRX_U32 nsid, std::span<QRX_U8> page) const;
    Completion identify_namespaces(QRX_U32 after, bool allocated, std::span<QRX_U8> page) const;
    [[nodiscard]] nvme_id_ctrl identify_controller() const;
    [[nodiscard]] _nvme_id_ns identify_namespace(const Namespace& ns) const;
    Completion get_log_page(const nvme_admin_cmd& command, std::span<QRX_U8> data) const;
    [[nodiscard]] std::array<QRX_U32, 256> supported_pages() const;
    [[nodiscard]] nvme_effects_log effects_log() const;
    Completion get_features(const nvme_admin_cmd& command, std::span<QRX_U8> data) const;
    Completion set_features(const nvme_admin_cmd& command, std::span<const QRX_U8> data);
    Completion download_firmware(const nvme_admin_cmd& command, std::span<const QRX_U8> data);
    Completion commit_firmware(const nvme_admin_cmd& command);
    // Keeps the running version with the running image, before another takes its place.
    void remember_version();
    void run_firmware(unsigned target);
    Completion transfer(Namespace& target, const nvme_admin_cmd& command, std::span<QRX_U8> data);
    // The medium's part of a command without data, and of one with data. Return its status.
    static QRX_U32 change(Namespace& target, QRX_U8 opcode, QRX_U64 lba, QRX_U64 count);
    QRX_U32 move(Namespace& target, QRX_U8 opcode, QRX_U64 lba, std::span<QRX_U8> data);
    Completion finish_io(Namespace& target, QRX_U8 opcode, QRX_U64 bytes, QRX_U32 outcome);
    void log_error(QRX_U16 queue, const nvme_admin_cmd& command, const Completion& completion, QRX_U64 lba);
};

}  // namespace qrx::sim
