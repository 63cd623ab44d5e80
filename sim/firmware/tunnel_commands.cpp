// The way to the drives behind the controller, and the vendor commands of firmware and health.
#include <algorithm>

#include "api/src/interface/wire/command.h"
#include "sim/firmware/controller.h"
#include "sim/firmware/opcodes.h"
#include "sim/firmware/reply.h"

namespace qrx::sim {

Completion Controller::tunnel(const nvme_admin_cmd& command, std::span<QRX_U8> data)
{
    constexpr QRX_U32 kFuseAndPsdt = 0xC300;
    // The words from 16 on of the drive's first word would be its command identifier, which is the controller's own.
    const auto opcode = static_cast<QRX_U8>(command.cdw14);
    const bool from_drive = command.opcode == kTunnelFromDrive;
    Drive* const drive = reachable_drive(command.nsid);
    if (drive == nullptr) {
        return complete(Verdict::kInvalidPd);
    }
    if (drive->failed) {
        return complete(Verdict::kFailed);
    }
    if (drive->sata) {
        return complete(Verdict::kNotSupported);
    }
    const bool wrong_way = from_drive ? data_to_device(opcode) : data_from_device(opcode);
    if (wrong_way || (command.cdw14 & kFuseAndPsdt) != 0) {
        return complete(status::kInvalidField);
    }
    nvme_admin_cmd inner{};
    inner.opcode = opcode;
    inner.nsid = command.cdw15;
    inner.cdw2 = command.cdw2;
    inner.cdw3 = command.cdw3;
    inner.cdw10 = command.cdw10;
    inner.cdw11 = command.cdw11;
    inner.cdw12 = command.cdw12;
    inner.cdw13 = command.cdw13;
    // A hidden temperature is hidden in what the drive tells of its health, too.
    const QRX_U16 temperature = drive->health.temperature;
    if (security.hide_temperature) {
        drive->health.temperature = 0;
    }
    const Completion completion = drive->execute_admin(inner, data);
    drive->health.temperature = temperature;
    const bool deletes = opcode == admin::kNamespaceManagement && (inner.cdw10 & 0xF) == 1;
    if (completion.status == status::kSuccess && (opcode == admin::kFormat || deletes)) {
        tell(Event::kPd, drive->id, deletes ? "has a namespace deleted through the tunnel" : "formatted");
        forget_contents(*drive);
    }
    return completion;
}

void Controller::forget_contents(Drive& drive)
{
    const QRX_U16 pd = drive.id;
    drive.activity.reset();
    drive.importable = false;
    drive.foreign_namespaces.clear();
    drop_namespaces(kNsParentPd, pd);
    if (assigned(pd)) {
        lose_member(pd, true);
    }
    auto_rebuild();
}

Verdict Controller::check_raw_image(const nvme_admin_cmd& command)
{
    constexpr QRX_U32 kKey = 'Q' | 'R' << 8 | 'X' << 16 | ' ' << 24;
    constexpr QRX_U32 kRawImage = 1;
    if (command.cdw13 != kKey || (command.cdw12 >> 16 & 0xFF) != kRawImage) {
        return Verdict::kInvalidParameter;
    }
    const auto image = download.whole();
    if (!image) {
        return Verdict::kInvalidRequest;
    }
    if (raw_image_crc(*image) != command.cdw15) {
        download.clear();  // what arrived is not what was sent: it must not be committed
        return Verdict::kFailed;
    }
    return Verdict::kGood;
}

Completion Controller::read_namespace_health(QRX_U16 nsid, std::span<QRX_U8> data) const
{
    const Namespace* const ns = find_namespace(*this, nsid);
    if (ns == nullptr || !ns->valid) {
        return complete(Verdict::kInvalidParameter);
    }
    put(data, 0, ns->health());  // this one comes without an envelope
    return complete(status::kSuccess);
}

QRX_U64 Controller::firmware_limit() const
{
    // A host's last piece is a whole one.
    constexpr QRX_U64 kPiece = wire::kPageSize;
    return adapter.flash_size == 0 ? NvmeFunction::firmware_limit()
                                   : (QRX_U64{adapter.flash_size} + kPiece - 1) / kPiece * kPiece;
}

void Controller::take_version(const std::string& version)
{
    if (const auto numbers = parse_version(version)) {
        adapter.firmware = *numbers;
    }
}

void Controller::reset_back_end()
{
    mailbox = {};
    endpoint = {};
    host_functions.reset();
    diagnostics.stall = 0;
    for (PcieInterface& interface : interfaces) {
        interface.reset();
    }
    children.restart();
    board.boot(settings);
    gate = {};
    for (Namespace& ns : namespaces) {
        ns.io = {};
    }
    for (Drive& drive : drives) {
        if (board.powered(drive.id)) {
            drive.reset();
        }
    }
    tell(Event::kAdapter, 0, "was reset; firmware " + slots.running() + " runs");
}

}  // namespace qrx::sim
