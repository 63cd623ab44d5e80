// The RAID controller: an NVMe function with vendor commands, and drives and virtual disks behind it.
#pragma once

#include <span>
#include <vector>

#include "sim/firmware/adapter.h"
#include "sim/firmware/drive.h"
#include "sim/firmware/hba_settings.h"
#include "sim/firmware/nvme_function.h"
#include "sim/firmware/pair_mailbox.h"
#include "sim/firmware/virtual_disk.h"

namespace qrx::sim {

class Controller : public NvmeFunction {
public:
    // The id that asks for the namespaces of all virtual disks.
    static constexpr QRX_U8 kAllVirtualDisks = 255;
    // Most namespaces whose records fit behind the envelope of one page.
    static constexpr QRX_U8 kMaxNamespaces = 42;

    Controller();

    Adapter adapter;
    AdapterConfig config;
    HbaSettings settings;
    std::vector<Drive> drives;               // in order of id
    std::vector<VirtualDisk> virtual_disks;  // in order of id
    PairMailbox mailbox;

    friend bool operator==(const Controller&, const Controller&) = default;

    [[nodiscard]] const Drive* find_drive(QRX_U32 id) const;
    [[nodiscard]] const VirtualDisk* find_virtual_disk(QRX_U32 id) const;
    [[nodiscard]] bool assigned(QRX_U16 pd) const;

    // The records that the firmware reports.
    [[nodiscard]] NVME_PD_Info pd_record(const Drive& drive) const;
    [[nodiscard]] NVME_VD_Info vd_record(const VirtualDisk& vd) const;
    [[nodiscard]] NVME_NS_Info ns_record(const Namespace& ns) const;
    [[nodiscard]] _hba_info hba_info() const;

protected:
    Completion vendor_admin(const nvme_admin_cmd& command, std::span<QRX_U8> data) override;
    [[nodiscard]] std::span<const QRX_U8> vendor_opcodes() const override;
    [[nodiscard]] Capacity capacity() const override;
    [[nodiscard]] QRX_U32 max_namespaces() const override { return adapter.max_ns; }
    void advance_back_end(Clock::Duration passed) override;

private:
    // The vendor commands of opcode 0xE2.
    Completion vendor_read(const nvme_admin_cmd& command, std::span<QRX_U8> data);
    Completion read_pd(QRX_U32 id, std::span<QRX_U8> data) const;
    Completion read_vd(QRX_U32 id, std::span<QRX_U8> data) const;
    Completion read_activity(QRX_U32 id, std::span<QRX_U8> data) const;
    Completion read_namespaces(std::span<QRX_U8> data) const;
    Completion read_namespaces_of(QRX_U8 vd, std::span<QRX_U8> data) const;
    Completion read_sharing(QRX_U16 nsid, std::span<QRX_U8> data) const;
    Completion write_config(QRX_U32 word);
    Completion set_time(QRX_U32 high, QRX_U32 low);
    // Writes the records of the namespaces that lie on `vd`, or on any virtual disk, from `payload` on.
    void put_namespaces_of(QRX_U8 vd, std::span<QRX_U8> payload) const;

    // The two halves of a pair command, and the requests that it carries.
    Completion pair_send(const nvme_admin_cmd& command, std::span<const QRX_U8> data);
    Completion pair_receive(const nvme_admin_cmd& command, std::span<QRX_U8> data);
    Verdict answer_pair(std::span<QRX_U8> payload);
    Verdict pair_set_config();
    // Answers a list request: a head and then what `put` writes for each id from the head's start on. `put` says
    // whether the id exists.
    template <std::size_t RecordSize, class Put>
    Verdict pair_list(std::span<QRX_U8> payload, QRX_U32 ids, Verdict absent, Put put) const;
};

}  // namespace qrx::sim
