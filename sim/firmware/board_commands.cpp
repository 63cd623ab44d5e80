// The vendor commands that reach the board: resets, LEDs, GPIO settings, VPD target, I2C, SPI flash, feature switches.
#include <algorithm>

#include "sim/firmware/controller.h"
#include "sim/firmware/reply.h"

namespace qrx::sim {

namespace {

enum class ResetType : QRX_U8 { kDevice = 0, kPower = 1, kPerst = 2 };
enum class ResetAction : QRX_U8 { kCycle = 0, kOn = 1, kOff = 2 };

const char* on_or_off(bool on)
{
    return on ? "on" : "off";
}

}  // namespace

const Drive* Controller::reachable_drive(QRX_U32 id) const
{
    return board.reachable(id) ? find_drive(id) : nullptr;
}

Drive* Controller::reachable_drive(QRX_U32 id)
{
    return board.reachable(id) ? drive_of(id) : nullptr;
}

Verdict Controller::check_interruptible(QRX_U32 pd) const
{
    const Drive* const drive = find_drive(pd);
    const bool busy = std::any_of(virtual_disks.begin(), virtual_disks.end(), [pd](const VirtualDisk& vd) {
        return vd.activity && vd.uses(static_cast<QRX_U16>(pd));
    });
    return busy || (drive != nullptr && drive->activity) ? Verdict::kActivityRuns : Verdict::kGood;
}

Verdict Controller::check_unused(QRX_U32 pd) const
{
    if (assigned(static_cast<QRX_U16>(pd))) {
        return Verdict::kPdAssigned;
    }
    const bool attached = std::any_of(namespaces.begin(), namespaces.end(), [&](const Namespace& ns) {
        return ns.parent_kind == kNsParentPd && ns.parent == pd && !ns.attached_to(controller_id).empty();
    });
    return attached ? Verdict::kNamespaceAttached : check_interruptible(pd);
}

Verdict Controller::reset_device(QRX_U16 id)
{
    Drive* const drive = drive_of(id);
    if (drive == nullptr) {
        return Verdict::kInvalidPd;
    }
    if (drive->failed || !board.reachable(id)) {
        return Verdict::kFailed;  // it does not come back
    }
    const Verdict verdict = check_interruptible(id);
    if (verdict == Verdict::kGood) {
        drive->restart();
        tell(Event::kPd, id, "was reset");
    }
    return verdict;
}

Verdict Controller::switch_power(QRX_U16 pin, QRX_U8 action)
{
    if (pin >= Board::kPowerPins || action > static_cast<QRX_U8>(ResetAction::kOff)) {
        return Verdict::kInvalidParameter;
    }
    if (!board.controls_power(pin)) {
        return Verdict::kNotSupported;
    }
    const bool off = action == static_cast<QRX_U8>(ResetAction::kOff);
    const bool cycle = action == static_cast<QRX_U8>(ResetAction::kCycle);
    const bool was_on = board.pin_on(pin);
    if (was_on == !off && !cycle) {
        return Verdict::kGood;
    }
    const QRX_U16 first = static_cast<QRX_U16>(pin * Board::kDrivesPerPin);
    for (QRX_U16 pd = first; was_on && pd < first + Board::kDrivesPerPin; ++pd) {
        const Verdict verdict = off ? check_unused(pd) : check_interruptible(pd);
        if (verdict != Verdict::kGood) {
            return verdict;
        }
    }
    board.values =
        static_cast<QRX_U8>(off ? board.values & ~Board::power_bit(pin) : board.values | Board::power_bit(pin));
    for (Drive& drive : drives) {
        if (!off && drive.id / Board::kDrivesPerPin == pin) {
            drive.reset();
        }
    }
    const char* const what = off ? "switched off" : was_on ? "cycled" : "switched on";
    tell(Event::kAdapter, 0, "has power pin " + std::to_string(pin) + " " + what);
    return Verdict::kGood;
}

Verdict Controller::switch_perst(QRX_U16 pd, QRX_U8 action)
{
    if (action > static_cast<QRX_U8>(ResetAction::kOff)) {
        return Verdict::kInvalidParameter;
    }
    if (!Board::has_perst(pd)) {
        return Verdict::kInvalidPd;
    }
    const bool assert_it = action == static_cast<QRX_U8>(ResetAction::kOn);
    const bool was_held = board.held(pd);
    const bool cycle = action == static_cast<QRX_U8>(ResetAction::kCycle);
    if (was_held == assert_it && !cycle) {
        return Verdict::kGood;
    }
    if (!was_held) {
        const Verdict verdict = assert_it ? check_unused(pd) : check_interruptible(pd);
        if (verdict != Verdict::kGood) {
            return verdict;
        }
    }
    const auto bit = static_cast<QRX_U8>(1U << pd);
    board.in_reset = static_cast<QRX_U8>(assert_it ? board.in_reset | bit : board.in_reset & ~bit);
    Drive* const drive = reachable_drive(pd);
    if (drive != nullptr) {
        drive->restart();
    }
    const char* const what = assert_it  ? "is held in reset"
                             : was_held ? "is released from reset"
                                        : "was reset by its PERST#";
    tell(Event::kPd, pd, what);
    return Verdict::kGood;
}

Verdict Controller::reset_back_end_device(QRX_U32 word)
{
    const auto id = static_cast<QRX_U16>(word);
    const auto action = static_cast<QRX_U8>(word >> 24);
    switch (static_cast<ResetType>(word >> 16 & 0xFF)) {
    case ResetType::kDevice:
        return action == static_cast<QRX_U8>(ResetAction::kCycle) ? reset_device(id) : Verdict::kInvalidParameter;
    case ResetType::kPower:
        return switch_power(id, action);
    case ResetType::kPerst:
        return switch_perst(id, action);
    default:
        return Verdict::kInvalidParameter;
    }
}

Verdict Controller::set_led(QRX_U8 object, QRX_U32 word)
{
    const auto id = static_cast<QRX_U16>(word);
    const QRX_U32 state = word >> 16;
    const bool exists = std::any_of(adapter.pcie.begin(), adapter.pcie.end(),
                                    [&](const PciePort& port) { return port.type == object && port.id == id; });
    // A drive's LED shows its activity by itself: it can be made to blink or go out, not to shine.
    const bool wrong = state > Led::kQuickBlink || (object == kPcieRootComplex && state == Led::kOn);
    if (!exists || wrong) {
        return Verdict::kInvalidParameter;
    }
    board.set_led(object, static_cast<QRX_U8>(id), static_cast<QRX_U8>(state));
    return Verdict::kGood;
}

Verdict Controller::set_gpio(const nvme_admin_cmd& command)
{
    const QRX_U32 from_settings = command.cdw12 >> 16;
    const QRX_U32 functions = command.cdw13;
    // Pins change their function in pairs.
    const bool paired = (functions & 0x30) % 0x30 == 0 && (functions & 0xC0) % 0xC0 == 0;
    if (from_settings > 1 || !paired ||
        ((functions | command.cdw14 | command.cdw15) & ~QRX_U32{Board::kSettablePins}) != 0) {
        return Verdict::kInvalidParameter;
    }
    const auto store = [](QRX_U32& setting, QRX_U32 pins) {
        setting = (setting & ~QRX_U32{Board::kSettablePins}) | pins;
    };
    store(settings.gpio_enable, functions);
    store(settings.gpio_levels, command.cdw14);
    store(settings.gpio_values, command.cdw15);
    settings.gpio_from_settings = from_settings == 1;
    tell(Event::kAdapter, 0, "has new GPIO settings, in force from the next boot");
    return Verdict::kGood;
}

Verdict Controller::set_inverse(QRX_U8 value)
{
    if (value > 1) {
        return Verdict::kInvalidParameter;
    }
    settings.gpio_inverse = value;
    tell(Event::kAdapter, 0, std::string("has GPIO 8 to 11 ") + (value == 1 ? "inverted" : "not inverted"));
    return Verdict::kGood;
}

Completion Controller::get_inverse(std::span<QRX_U8> data) const
{
    const auto page = data.first(std::min(data.size(), wire::kPageSize));
    std::fill(page.begin(), page.end(), QRX_U8{0});
    put(page, 0, settings.gpio_inverse);  // this one comes without an envelope
    return complete(status::kSuccess);
}

Verdict Controller::set_vpd_target(QRX_U32 target)
{
    if (target > 1) {
        return Verdict::kInvalidParameter;
    }
    settings.vpd_in_spi = target == 1;
    tell(Event::kAdapter, 0, std::string("has its VPD in the ") + (settings.vpd_in_spi ? "SPI flash" : "EEPROM"));
    return Verdict::kGood;
}

Verdict Controller::test_i2c(QRX_U16 channel) const
{
    if (channel >= 32 || (Board::kChannels >> channel & 1) == 0) {
        return Verdict::kInvalidParameter;
    }
    // Channel 1 leads to the clock buffer on the board, channels 2 and 4 to the bays of drives 0 and 1.
    const QRX_U32 pd = channel / 4U;
    const bool there = channel == 1 || (find_drive(pd) != nullptr && board.powered(pd));
    return there && (board.silent_channels >> channel & 1) == 0 ? Verdict::kGood : Verdict::kFailed;
}

Verdict Controller::switch_feature(bool HbaSettings::*feature, const char* name, QRX_U32 on)
{
    if (on > 1) {
        return Verdict::kInvalidParameter;
    }
    settings.*feature = on == 1;
    tell(Event::kAdapter, 0, std::string("has ") + name + " switched " + on_or_off(on == 1) + " from the next boot");
    return Verdict::kGood;
}

Completion Controller::write_spi(const nvme_admin_cmd& command, std::span<const QRX_U8> data)
{
    constexpr QRX_U32 kDwords = Board::kSpiBlock / sizeof(QRX_U32);
    if (data.size() != Board::kSpiBlock || command.cdw10 != kDwords) {
        return complete(status::kInvalidField);
    }
    if (board.protection) {
        return complete(status::kOperationDenied);
    }
    board.write_spi(data);
    tell(Event::kAdapter, 0, "has its SPI flash written");
    return complete(status::kSuccess);
}

Completion Controller::write_vpd(const nvme_admin_cmd& command, std::span<const QRX_U8> data)
{
    constexpr QRX_U32 kDwords = Board::kVpdArea / sizeof(QRX_U32);
    if (data.size() != Board::kVpdArea || command.cdw10 != kDwords) {
        return complete(status::kInvalidField);
    }
    if (board.protection) {
        return complete(status::kOperationDenied);
    }
    std::vector<QRX_U8> block = board.spi_block();
    std::copy(data.begin(), data.end(), block.begin());
    board.write_spi(block);
    tell(Event::kAdapter, 0, "has the VPD area of its SPI flash written");
    return complete(status::kSuccess);
}

std::vector<QRX_U8> Controller::vendor_log(QRX_U8 page) const
{
    constexpr QRX_U8 kLogSpi = 0xC0;
    switch (page) {
    case kLogSpi:
        return board.spi_block();
    case kMfndEventLog:
        return children.event_log();
    default:
        return {};
    }
}

}  // namespace qrx::sim
