// What the controller's firmware drives on its board: the power and PERST# lines of the drives, LEDs, I2C channels, and
// the block of SPI flash that hosts reach. And the features as they were switched when it booted.
//
// Of the pins, GPIO 4 and 5 are power pins where they serve as GPIOs; each feeds two drives. GPIO 8, 10, 9 and 11 are
// the PERST# lines of drives 0 to 3. Drives with higher ids hang on none of them.
#pragma once

#include <span>
#include <vector>

#include "api/src/interface/wire/adapter.h"
#include "api/src/interface/wire/buffer.h"
#include "api/src/interface/wire/types.h"
#include "sim/firmware/hba_settings.h"

namespace qrx::sim {

// An LED that is not off.
struct Led {
    enum State : QRX_U8 { kOff, kOn, kSlowBlink, kQuickBlink };

    QRX_U8 object = kPcieEndPoint;  // or kPcieRootComplex
    QRX_U8 id = 0;
    QRX_U8 state = kOn;

    friend bool operator==(const Led&, const Led&) = default;
};

struct Board {
    static constexpr unsigned kPowerPins = 2;
    static constexpr unsigned kDrivesPerPin = 2;
    static constexpr unsigned kPerstLines = 4;
    static constexpr QRX_U8 kSettablePins = 0xF0;  // GPIO 4 to 7
    static constexpr QRX_U8 kDefaultPins = 0x30;   // what the firmware takes for all three bitmaps by itself
    static constexpr QRX_U32 kChannels = 1U << 1 | 1U << 2 | 1U << 4;
    static constexpr std::size_t kSpiBlock = wire::kPageSize;
    static constexpr std::size_t kVpdArea = 256;  // at the beginning of the block, where earlier tools have the VPD
    static constexpr QRX_U8 kErased = 0xFF;

    // GPIO 4 to 7, in the bits of their numbers.
    QRX_U8 functions = kDefaultPins;  // set: a GPIO; clear: something else that the firmware does not tell
    QRX_U8 levels = kDefaultPins;     // set: active high
    QRX_U8 values = kDefaultPins;     // set: active
    QRX_U8 in_reset = 0;              // a bit for each drive whose PERST# is asserted
    std::vector<Led> leds;            // in order of object and id, at most one of each
    QRX_U32 silent_channels = 0;      // a bit for each I2C channel that does not answer, whatever is there
    std::vector<QRX_U8> spi;          // the block's bytes; those behind its end are erased

    // The features as they are until the next boot.
    bool flash_tools = false;
    bool sriov = false;
    bool protection = false;

    friend bool operator==(const Board&, const Board&) = default;

    // The firmware starts: pins and features become what the settings say, PERST# is released, LEDs go out.
    void boot(const HbaSettings& settings);

    [[nodiscard]] static constexpr QRX_U8 power_bit(unsigned pin) { return static_cast<QRX_U8>(1U << (4 + pin)); }
    // The GPIO of a drive's PERST# line.
    [[nodiscard]] static unsigned perst_gpio(unsigned pd);
    [[nodiscard]] static bool has_perst(QRX_U32 pd) { return pd < kPerstLines; }
    [[nodiscard]] bool controls_power(unsigned pin) const { return (functions & power_bit(pin)) != 0; }
    // A pin with another function leaves its drives powered.
    [[nodiscard]] bool pin_on(unsigned pin) const { return !controls_power(pin) || (values & power_bit(pin)) != 0; }
    [[nodiscard]] bool powered(QRX_U32 pd) const;
    [[nodiscard]] bool held(QRX_U32 pd) const { return has_perst(pd) && (in_reset >> pd & 1) != 0; }
    // Whether the drive has power and is out of reset.
    [[nodiscard]] bool reachable(QRX_U32 pd) const { return powered(pd) && !held(pd); }

    [[nodiscard]] QRX_U8 led(QRX_U8 object, QRX_U8 id) const;
    void set_led(QRX_U8 object, QRX_U8 id, QRX_U8 state);

    // The whole block, with what is erased.
    [[nodiscard]] std::vector<QRX_U8> spi_block() const;
    void write_spi(std::span<const QRX_U8> block);
};

}  // namespace qrx::sim
