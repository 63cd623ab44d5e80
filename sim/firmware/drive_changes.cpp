// What happens to drives from outside: they fail, are pulled, are plugged in.
#include <algorithm>

#include "sim/firmware/controller.h"

namespace qrx::sim {

namespace {

// "SERIAL", "SERIAL-2", "SERIAL-3", ...: the drives that have stood in one place.
std::string next_serial(const std::string& serial)
{
    const std::size_t dash = serial.rfind('-');
    unsigned number = 1;
    std::string base = serial;
    const std::string digits = dash == std::string::npos ? "" : serial.substr(dash + 1);
    if (!digits.empty() && digits.size() < 6 && digits.find_first_not_of("0123456789") == std::string::npos) {
        number = static_cast<unsigned>(std::stoul(digits));
        base = serial.substr(0, dash);
    }
    const std::string tail = "-" + std::to_string(number + 1);
    return base.substr(0, sizeof(NVME_PD_Info::SerialNo) - tail.size()) + tail;
}

Failure no_such_drive(const Controller& controller, QRX_U32 id)
{
    std::string ids;
    for (const Drive& drive : controller.drives) {
        ids += (ids.empty() ? "" : ", ") + std::to_string(drive.id);
    }
    return {"there is no drive " + std::to_string(id) +
            (ids.empty() ? "; there are none at all" : "; there are " + ids)};
}

}  // namespace

void Controller::lose_member(QRX_U16 pd, bool gone)
{
    for (VirtualDisk& vd : virtual_disks) {
        if (!vd.uses(pd)) {
            continue;
        }
        if (vd.activity && !vd.foreign()) {
            const bool rebuilds_another = vd.rebuild_target != kMissingMember && vd.rebuild_target != pd;
            const bool migrates = vd.activity->type == QRX_NVME_BGA_TYPE_VD_MIGRATE;
            if (!rebuilds_another && !migrates) {
                abort_activity(vd, "PD " + std::to_string(pd) + " is lost");
            }
        }
        if (gone) {
            std::replace(vd.members.begin(), vd.members.end(), pd, kMissingMember);
        }
        update_status(vd);
    }
}

std::optional<Failure> Controller::fail_drive(QRX_U32 id)
{
    constexpr QRX_U8 kReliabilityDegraded = 1U << 2;
    Drive* const drive = drive_of(id);
    if (drive == nullptr) {
        return no_such_drive(*this, id);
    }
    if (drive->failed) {
        return Failure{"drive " + std::to_string(id) + " has failed already"};
    }
    drive->health.critical_warning |= kReliabilityDegraded;
    set_down(*drive, "has failed", "_SETDOWN", QRX_NVME_EVT_SEVERITY_CRITICAL);
    return std::nullopt;
}

void Controller::set_down(Drive& drive, const char* text, std::string_view what, QRX_U8 severity)
{
    drive.failed = true;
    drive.activity.reset();
    tell(Event::kPd, drive.id, text, what, severity);
    lose_member(drive.id, false);
    auto_rebuild();
}

std::optional<Failure> Controller::answer_config_reads(QRX_U32 id, ConfigSpace::Answer answer)
{
    Drive* const drive = drive_of(id);
    if (drive == nullptr) {
        return no_such_drive(*this, id);
    }
    drive->config_space.answer = answer;
    return std::nullopt;
}

std::optional<Failure> Controller::remove_drive(QRX_U32 id)
{
    const Drive* const drive = find_drive(id);
    if (drive == nullptr) {
        return no_such_drive(*this, id);
    }
    const QRX_U16 pd = drive->id;
    tell(Event::kPd, pd, "plugged out", "_OFFLINE", QRX_NVME_EVT_SEVERITY_WARNING);
    drop_namespaces(kNsParentPd, pd);
    drives.erase(drives.begin() + (drive - drives.data()));
    lose_member(pd, true);
    auto_rebuild();
    return std::nullopt;
}

std::optional<Failure> Controller::replace_drive(QRX_U32 id)
{
    const unsigned ids = adapter.drive_ids();
    if (id >= ids) {
        return Failure{"the controller has no place for a drive " + std::to_string(id) + "; its ids are 0 to " +
                       std::to_string(ids == 0 ? 0 : ids - 1)};
    }
    Drive fresh;
    fresh.id = static_cast<QRX_U16>(id);
    fresh.slot = fresh.id;
    fresh.serial = serial + "D" + std::to_string(id);
    if (const Drive* const old = find_drive(id)) {
        fresh.model = old->model;
        fresh.slots.contents[0].revision = old->slots.running();
        fresh.nsid = old->nsid;
        fresh.sector_size = old->sector_size;
        fresh.sectors = old->sectors;
        fresh.slot = old->slot;
        fresh.serial = old->serial;
        const std::size_t before = drives.size();
        tell(Event::kPd, fresh.id, "plugged out", "_OFFLINE", QRX_NVME_EVT_SEVERITY_WARNING);
        drop_namespaces(kNsParentPd, fresh.id);
        std::erase_if(drives, [id](const Drive& drive) { return drive.id == id; });
        if (drives.size() != before) {
            lose_member(fresh.id, true);
        }
    }
    fresh.serial = next_serial(fresh.serial);
    fresh.make_default_namespace();
    tell(Event::kPd, fresh.id, "plugged in, serial number " + fresh.serial, "_ONLINE");
    const auto place =
        std::find_if(drives.begin(), drives.end(), [&](const Drive& other) { return other.id > fresh.id; });
    drives.insert(place, std::move(fresh));
    auto_rebuild();
    return std::nullopt;
}

}  // namespace qrx::sim
