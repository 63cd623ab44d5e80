// The security commands of the controller, its switches, and the tunnel for ATA commands.
#include "sim/firmware/security.h"

#include <algorithm>
#include <array>
#include <string>

#include "api/src/interface/wire/security.h"
#include "sim/firmware/controller.h"
#include "sim/firmware/reply.h"

namespace qrx::sim {

namespace {

// Both blocks: what concerns the controller, from kDrives on a byte for each drive id, with this bit for one that is
// there.
constexpr std::size_t kDrives = 16;
constexpr std::size_t kDriveIds = 256;
constexpr QRX_U8 kThere = 0x80;

const char* on_or_off(bool on)
{
    return on ? " switched on" : " switched off";
}

std::vector<QRX_U8> block_of(const std::vector<QRX_U16>& drives_there)
{
    std::vector<QRX_U8> block(kDrives + kDriveIds);
    for (const QRX_U16 drive : drives_there) {
        block.at(kDrives + drive) = kThere;
    }
    return block;
}

void mark(std::vector<QRX_U8>& block, QRX_U16 drive, bool first, bool second)
{
    QRX_U8& byte = block.at(kDrives + drive);
    if (byte == kThere) {
        byte = static_cast<QRX_U8>(kThere | (first ? 1 : 0) | (second ? 2 : 0));
    }
}

std::vector<QRX_U16> ids_of(const std::vector<Drive>& drives)
{
    std::vector<QRX_U16> ids;
    ids.reserve(drives.size());
    for (const Drive& drive : drives) {
        ids.push_back(drive.id);
    }
    return ids;
}

// Puts a text into ATA words: two letters each, the first in the upper half, blanks behind it.
void put_ata_text(std::span<QRX_U8> data, std::size_t word, std::size_t words, const std::string& text)
{
    for (std::size_t i = 0; i < 2 * words && 2 * word + (i ^ 1) < data.size(); ++i) {
        data[2 * word + (i ^ 1)] = i < text.size() ? static_cast<QRX_U8>(text[i]) : QRX_U8{' '};
    }
}

// IDENTIFY DEVICE, of the ATA Command Set.
std::array<QRX_U8, 512> ata_identity(const Drive& drive)
{
    constexpr QRX_U32 kMost28 = 0x0FFFFFFF;
    std::array<QRX_U8, 512> data{};
    const auto word = [&data](std::size_t index, QRX_U64 value, std::size_t words = 1) {
        for (std::size_t i = 0; i < 2 * words; ++i) {
            data.at(2 * index + i) = static_cast<QRX_U8>(value >> 8 * i);
        }
    };
    word(0, 0x0040);  // not removable
    put_ata_text(data, 10, 10, drive.serial);
    put_ata_text(data, 23, 4, drive.slots.running());
    put_ata_text(data, 27, 20, drive.model);
    word(49, 0x0300);  // LBA and DMA
    word(60, std::min<QRX_U64>(drive.sectors, kMost28), 2);
    word(80, 0x07F0);  // ATA/ATAPI-4 to ACS-3
    word(83, 0x4400);  // 48-bit addresses
    word(86, 0x0400);
    word(100, drive.sectors, 4);
    word(217, 1);  // it does not rotate
    data[510] = 0xA5;
    QRX_U8 sum = 0;
    for (const QRX_U8 byte : data) {
        sum = static_cast<QRX_U8>(sum + byte);
    }
    data[511] = static_cast<QRX_U8>(-sum);
    return data;
}

}  // namespace

SecureDrive& Security::of(QRX_U16 drive)
{
    const auto place = std::lower_bound(drives.begin(), drives.end(), drive,
                                        [](const SecureDrive& entry, QRX_U16 id) { return entry.id < id; });
    if (place != drives.end() && place->id == drive) {
        return *place;
    }
    SecureDrive fresh;
    fresh.id = drive;
    return *drives.insert(place, fresh);
}

std::vector<QRX_U8> Security::light_block(const std::vector<QRX_U16>& drives_there) const
{
    std::vector<QRX_U8> block = block_of(drives_there);
    block[0] = reset_acknowledged ? 1 : 0;
    for (const SecureDrive& drive : drives) {
        mark(block, drive.id, drive.slot_attention, drive.firmware_update);
    }
    return block;
}

std::vector<QRX_U8> Security::info_block(const std::vector<QRX_U16>& drives_there) const
{
    std::vector<QRX_U8> block = block_of(drives_there);
    block[0] = secure_mode ? 1 : 0;
    block[1] = help_complete ? 1 : 0;
    for (const SecureDrive& drive : drives) {
        mark(block, drive.id, drive.help_provided, false);
    }
    return block;
}

Completion Controller::security_command(const nvme_admin_cmd& command, std::span<QRX_U8> data)
{
    const auto send = [data](const std::vector<QRX_U8>& block) {
        const auto payload = open_reply(data, Verdict::kGood);
        std::copy_n(block.begin(), std::min(block.size(), payload.size()), payload.begin());
        return complete(status::kSuccess);
    };
    switch (command.cdw12 >> 16) {
    case kSecurityLight:
        return send(security.light_block(ids_of(drives)));
    case kSecurityInfo:
        return send(security.info_block(ids_of(drives)));
    case kSecurityPresence:
        return complete((command.cdw13 & kSecurityOfDrive) != 0
                            ? acknowledge(static_cast<QRX_U16>(command.cdw13 >> 16), command.cdw14)
                            : provide_help(command.cdw14));
    case kSecuritySet:
        return complete(set_security(command.cdw13, command.cdw14));
    default:
        return complete(status::kInvalidField);
    }
}

// An acknowledged reset looks just like help that was provided to drive 0, so it is noted as both.
Verdict Controller::provide_help(QRX_U32 bitmap)
{
    for (QRX_U16 id = 1; id < 32; ++id) {
        if ((bitmap >> id & 1) != 0 && find_drive(id) == nullptr) {
            return Verdict::kInvalidPd;
        }
    }
    security.reset_acknowledged = (bitmap & 1) != 0;
    for (QRX_U16 id = 0; id < 32; ++id) {
        if ((bitmap >> id & 1) != 0) {
            security.of(id).help_provided = true;
        }
    }
    return Verdict::kGood;
}

Verdict Controller::acknowledge(QRX_U16 drive, QRX_U32 flags)
{
    constexpr QRX_U32 kSlotAttention = 0x001;
    constexpr QRX_U32 kFirmwareUpdate = 0x100;
    if (find_drive(drive) == nullptr) {
        return Verdict::kInvalidPd;
    }
    if ((flags & ~(kSlotAttention | kFirmwareUpdate)) != 0) {
        return Verdict::kInvalidParameter;
    }
    SecureDrive& entry = security.of(drive);
    entry.slot_attention = (flags & kSlotAttention) != 0;
    entry.firmware_update = (flags & kFirmwareUpdate) != 0;
    return Verdict::kGood;
}

Verdict Controller::set_security(QRX_U32 subject, QRX_U32 flag)
{
    if (flag > 1) {
        return Verdict::kInvalidParameter;
    }
    const bool on = flag == 1;
    if ((subject & kSecurityOfDrive) != 0) {
        const auto drive = static_cast<QRX_U16>(subject >> 16);
        if (find_drive(drive) == nullptr) {
            return Verdict::kInvalidPd;
        }
        security.of(drive).help_provided = on;
        return Verdict::kGood;
    }
    switch (subject >> 24) {
    case kSelectSecureMode:
        security.secure_mode = on;
        tell(Event::kAdapter, 0, std::string("has secure mode") + on_or_off(on));
        return Verdict::kGood;
    case kSelectHelpComplete:
        security.help_complete = on;
        return Verdict::kGood;
    default:
        return Verdict::kInvalidParameter;
    }
}

Verdict Controller::hide_temperature(QRX_U16 on)
{
    if (on > 1) {
        return Verdict::kInvalidParameter;
    }
    security.hide_temperature = on == 1;
    return Verdict::kGood;
}

Verdict Controller::switch_eeprom(QRX_U32 on)
{
    if (on > 1) {
        return Verdict::kInvalidParameter;
    }
    security.eeprom = on == 1;
    tell(Event::kAdapter, 0, std::string("has its EEPROM") + on_or_off(on == 1));
    return Verdict::kGood;
}

Completion Controller::sata_tunnel(const nvme_admin_cmd& command, std::span<QRX_U8> data)
{
    constexpr QRX_U32 kCommandFis = 0x8027;  // the type, and the bit that tells of a command
    constexpr QRX_U8 kIdentifyDevice = 0xEC;
    constexpr QRX_U8 kCheckPowerMode = 0xE5;
    constexpr QRX_U32 kActive = 0xFF;
    const auto opcode = static_cast<QRX_U8>(command.cdw14);
    if ((command.cdw10 & 0xFFFF) != kCommandFis || (command.cdw10 >> 16 & 0xFF) != opcode || command.cdw14 > 0xFF) {
        return complete(status::kInvalidField);
    }
    const Drive* const drive = reachable_drive(command.nsid);
    if (drive == nullptr) {
        return complete(Verdict::kInvalidPd);
    }
    if (drive->failed) {
        return complete(Verdict::kFailed);
    }
    if (!drive->sata) {
        return complete(Verdict::kNotSupported);
    }
    switch (opcode) {
    case kIdentifyDevice:
        return command.opcode == kSataFromDrive ? answer_with(data, ata_identity(*drive))
                                                : complete(status::kInvalidField);
    case kCheckPowerMode:
        return complete(status::kSuccess, kActive);
    default:
        return complete(status::kInvalidOpcode);
    }
}

}  // namespace qrx::sim
