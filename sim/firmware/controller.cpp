#include "sim/firmware/controller.h"

#include <algorithm>
#include <iterator>

#include "sim/firmware/text.h"

namespace qrx::sim {

Controller::Controller()
{
    vendor_id = kControllerVendorId;
    device_id = kControllerDeviceId;
    subsystem_vendor_id = kControllerVendorId;
    model = "QRX NVMe RAID Controller";
}

const Drive* Controller::find_drive(QRX_U32 id) const
{
    const auto found = std::find_if(drives.begin(), drives.end(), [id](const Drive& drive) { return drive.id == id; });
    return found == drives.end() ? nullptr : &*found;
}

Drive* Controller::drive_of(QRX_U32 id)
{
    return const_cast<Drive*>(find_drive(id));  // NOLINT(cppcoreguidelines-pro-type-const-cast): *this is not const
}

VirtualDisk* Controller::vd_of(QRX_U32 id)
{
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): *this is not const
    return const_cast<VirtualDisk*>(find_virtual_disk(id));
}

const VirtualDisk* Controller::find_virtual_disk(QRX_U32 id) const
{
    const auto found =
        std::find_if(virtual_disks.begin(), virtual_disks.end(), [id](const VirtualDisk& vd) { return vd.id == id; });
    return found == virtual_disks.end() ? nullptr : &*found;
}

bool Controller::assigned(QRX_U16 pd) const
{
    return std::any_of(virtual_disks.begin(), virtual_disks.end(), [pd](const VirtualDisk& vd) { return vd.uses(pd); });
}

NVME_PD_Info Controller::pd_record(const Drive& drive) const
{
    const bool patrolled = std::any_of(virtual_disks.begin(), virtual_disks.end(),
                                       [&](const VirtualDisk& vd) { return vd.uses(drive.id) && vd.patrolling(); });
    NVME_PD_Info record = drive.record(assigned(drive.id), patrolled);
    if (security.hide_temperature) {
        std::fill(std::begin(record.Temperature), std::end(record.Temperature), QRX_U8{0});
    }
    return record;
}

NVME_VD_Info Controller::vd_record(const VirtualDisk& vd) const
{
    std::array<QRX_U8, kMaxNamespaces> nsids{};
    std::size_t count = 0;
    for (const Namespace& ns : namespaces) {
        if (ns.parent_kind == kNsParentVd && ns.parent == vd.id && count < nsids.size()) {
            nsids[count++] = ns.nsid;
        }
    }
    return vd.record(std::span(nsids).first(count));
}

NVME_NS_Info Controller::ns_record(const Namespace& ns) const
{
    const VirtualDisk* const parent = ns.parent_kind == kNsParentVd ? find_virtual_disk(ns.parent) : nullptr;
    return ns.record(parent != nullptr ? parent->status : kVdFunctional);
}

NvmeFunction::Identity Controller::identity() const
{
    Identity own = NvmeFunction::identity();
    own.subsystem_device_id = adapter.subsystem_device_id;
    if (auto stored = oem.identity()) {
        // A name that the firmware made of the serial number follows it.
        if (!own.serial.empty() && own.subnqn.ends_with(own.serial)) {
            own.subnqn.replace(own.subnqn.size() - own.serial.size(), std::string::npos, stored->serial);
        }
        own.subsystem_vendor_id = stored->subsystem_vendor_id;
        own.subsystem_device_id = stored->subsystem_device_id;
        own.serial = std::move(stored->serial);
        own.model = std::move(stored->model);
    }
    return own;
}

NVME_Adapter_Info Controller::adapter_record() const
{
    NVME_Adapter_Info info = adapter.record(address);
    if (!board.sriov) {
        info.VisibleVfNum[0] = 0;
        info.VisibleVfNum[1] = 0;
    }
    if (const auto stored = oem.identity()) {
        info.SVID = stored->subsystem_vendor_id;
        info.SDID = stored->subsystem_device_id;
    }
    return info;
}

std::optional<Failure> Controller::set_oem_data(std::string_view what)
{
    if (what != "factory") {
        return oem.spoil(what);
    }
    oem.make({adapter.subsystem_vendor_id, adapter.subsystem_device_id, serial, model});
    return std::nullopt;
}

_hba_info Controller::hba_info() const
{
    const NVME_Adapter_Info told = adapter_record();
    _hba_info info{};
    settings.fill(info);
    info.raid.Raid_Setting.Auto_Rebuild_On = config.auto_rebuild;
    info.raid.Raid_Setting.RAID_Feature = adapter.background;
    info.raid.Raid_Setting.Bga_Rate = config.rate;
    info.raid.Raid_Setting.RAID_Mode = adapter.raid() ? 1 : 0;
    info.adatper.vendor_id = vendor_id;
    info.adatper.device_id = device_id;
    info.adatper.subvendor_id = told.SVID;
    info.adatper.subdevice_id = told.SDID;
    pad_with_blanks(info.adatper.id_ctrl_sn, identity().serial);
    settings.seal(info);
    return info;
}

VpdFacts Controller::vpd_facts() const
{
    VpdFacts facts{model, serial, 0, 0, 0};
    for (const Drive& drive : drives) {
        facts.capacity += drive.bytes();
    }
    const auto host = std::find_if(adapter.pcie.begin(), adapter.pcie.end(),
                                   [](const PciePort& port) { return port.type == kPcieEndPoint; });
    if (host != adapter.pcie.end()) {
        facts.link_speeds = static_cast<QRX_U8>((1U << std::min<unsigned>(host->speed, 8)) - 1);
        facts.link_width = host->width;
    }
    return facts;
}

std::vector<QRX_U8> Controller::vendor_opcodes() const
{
    std::vector<QRX_U8> open;
    std::copy_if(kVendorOpcodes.begin(), kVendorOpcodes.end(), std::back_inserter(open),
                 [this](QRX_U8 opcode) { return !gate.closed(is_virtual(), opcode); });
    return open;
}

NvmeFunction::Capacity Controller::capacity() const
{
    Capacity capacity;
    for (const Drive& drive : drives) {
        capacity.total += drive.bytes();
        if (assigned(drive.id)) {
            continue;
        }
        QRX_U64 used = 0;
        for (const Namespace& ns : namespaces) {
            used += ns.parent_kind == kNsParentPd && ns.parent == drive.id ? ns.sectors * ns.sector_size : 0;
        }
        capacity.unallocated += drive.bytes() - std::min(used, drive.bytes());
    }
    return capacity;
}

bool Controller::in_service(const Namespace& ns) const
{
    if (ns.parent_kind == kNsParentVd) {
        const VirtualDisk* const vd = find_virtual_disk(ns.parent);
        // I/O waits for a member that has lost its power, as it would for one that is slow: it may come back.
        return vd != nullptr && vd->online() &&
               std::all_of(vd->members.begin(), vd->members.end(), [this](QRX_U16 pd) { return board.reachable(pd); });
    }
    const Drive* const drive = reachable_drive(ns.parent);
    return drive != nullptr && !drive->failed;
}

Clock::Duration Controller::next_change() const
{
    Clock::Duration next = Clock::Duration::max();
    for (const Drive& drive : drives) {
        next = drive.activity ? std::min(next, drive.activity->left()) : next;
    }
    for (const VirtualDisk& vd : virtual_disks) {
        next = vd.activity ? std::min(next, vd.activity->left_of_tenth()) : next;
    }
    return next;
}

void Controller::advance_back_end(Clock::Duration passed)
{
    advance_io(passed);
    diagnostics.advance(passed);
    for (Drive& drive : drives) {
        drive.advance(passed);
    }
    for (VirtualDisk& vd : virtual_disks) {
        if (vd.activity) {
            const unsigned before = vd.activity->percentage();
            vd.activity->advance(passed);
            tell_progress(vd, before, vd.activity->percentage());
            if (vd.activity->finished()) {
                finish_activity(vd);
            }
        }
    }
}

}  // namespace qrx::sim
