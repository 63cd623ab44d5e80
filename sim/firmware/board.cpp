#include "sim/firmware/board.h"

#include <algorithm>
#include <array>
#include <tuple>

namespace qrx::sim {

namespace {

auto place_of(std::vector<Led>& leds, QRX_U8 object, QRX_U8 id)
{
    return std::lower_bound(leds.begin(), leds.end(), std::tie(object, id),
                            [](const Led& led, const std::tuple<const QRX_U8&, const QRX_U8&>& key) {
                                return std::tie(led.object, led.id) < key;
                            });
}

}  // namespace

void Board::boot(const HbaSettings& settings)
{
    const auto pins = [&](QRX_U32 stored) {
        return settings.gpio_from_settings ? static_cast<QRX_U8>(stored & kSettablePins) : kDefaultPins;
    };
    functions = pins(settings.gpio_enable);
    levels = pins(settings.gpio_levels);
    values = pins(settings.gpio_values);
    in_reset = 0;
    leds.clear();
    flash_tools = settings.flash_tools;
    sriov = settings.sriov;
    protection = settings.protection;
}

unsigned Board::perst_gpio(unsigned pd)
{
    constexpr std::array<unsigned, kPerstLines> kGpios{8, 10, 9, 11};
    return kGpios.at(pd);
}

bool Board::powered(QRX_U32 pd) const
{
    const QRX_U32 pin = pd / kDrivesPerPin;
    return pin >= kPowerPins || pin_on(pin);
}

QRX_U8 Board::led(QRX_U8 object, QRX_U8 id) const
{
    const auto found = std::find_if(leds.begin(), leds.end(), [&](const Led& candidate) {
        return candidate.object == object && candidate.id == id;
    });
    return found == leds.end() ? QRX_U8{Led::kOff} : found->state;
}

void Board::set_led(QRX_U8 object, QRX_U8 id, QRX_U8 state)
{
    std::erase_if(leds, [&](const Led& candidate) { return candidate.object == object && candidate.id == id; });
    if (state != Led::kOff) {
        leds.insert(place_of(leds, object, id), Led{object, id, state});
    }
}

std::vector<QRX_U8> Board::spi_block() const
{
    std::vector<QRX_U8> block = spi;
    block.resize(kSpiBlock, kErased);
    return block;
}

void Board::write_spi(std::span<const QRX_U8> block)
{
    // Kept without its erased tail, so that two blocks of the same content are equal.
    const auto end = std::find_if(block.rbegin(), block.rend(), [](QRX_U8 byte) { return byte != kErased; }).base();
    spi.assign(block.begin(), end);
}

}  // namespace qrx::sim
