#include "sim/launcher/show_board.h"

#include <algorithm>
#include <array>

namespace qrx::sim {
namespace {

const char* voltage(bool high)
{
    return high ? "high" : "low";
}

bool bit(QRX_U8 pins, unsigned gpio)
{
    return (pins >> gpio & 1) != 0;
}

// GPIO 4 to 7.
std::string settable_pin(const Board& board, unsigned gpio)
{
    constexpr unsigned kFirst = 4;
    const std::string name = "  GPIO " + std::to_string(gpio) + ": ";
    if (!bit(board.functions, gpio)) {
        return name + "other function\n";
    }
    const bool active = bit(board.values, gpio);
    const bool active_high = bit(board.levels, gpio);
    const unsigned pin = gpio - kFirst;
    std::string text = name;
    if (pin < Board::kPowerPins) {
        const unsigned pd = pin * Board::kDrivesPerPin;
        text += "power pin " + std::to_string(pin) + " of PD " + std::to_string(pd) + " and " + std::to_string(pd + 1) +
                ", " + (active ? "on" : "off");
    } else {
        text += std::string("value ") + (active ? "1" : "0");
    }
    return text + ", " + voltage(active == active_high) + " (active " + voltage(active_high) + ")\n";
}

std::string perst_line(const Board& board, unsigned pd, bool inverted)
{
    const bool held = board.held(pd);
    return "  GPIO " + std::to_string(Board::perst_gpio(pd)) + ": PERST# of PD " + std::to_string(pd) + ", " +
           (held ? "in reset" : "released") + ", " + voltage(held == inverted) + (inverted ? " (inverted)" : "") + "\n";
}

const char* led_text(QRX_U8 state)
{
    constexpr std::array<const char*, 4> kTexts{"off", "on", "blinks slowly", "blinks quickly"};
    return kTexts.at(std::min<std::size_t>(state, kTexts.size() - 1));
}

std::string feature_line(const char* name, bool now, bool next)
{
    return std::string("  ") + name + ": " + (now ? "on" : "off") +
           (now == next ? ""
            : next      ? ", on from the next boot"
                        : ", off from the next boot") +
           "\n";
}

}  // namespace

std::string show_pins(const Controller& controller)
{
    const Board& board = controller.board;
    std::string text = "controller " + std::to_string(controller.number) + ":\n";
    for (const unsigned gpio : {4U, 5U, 6U, 7U}) {
        text += settable_pin(board, gpio);
    }
    for (const unsigned pd : {0U, 2U, 1U, 3U}) {  // in the order of their GPIOs
        text += perst_line(board, pd, controller.settings.gpio_inverse != 0);
    }
    for (const PciePort& port : controller.adapter.pcie) {
        text += std::string("  LED of ") + (port.type == kPcieEndPoint ? "end point " : "root complex ") +
                std::to_string(port.id) + ": " + led_text(board.led(port.type, port.id)) + "\n";
    }
    return text;
}

std::string show_features(const Controller& controller)
{
    const Board& board = controller.board;
    const HbaSettings& settings = controller.settings;
    const auto written =
        std::count_if(board.spi.begin(), board.spi.end(), [](QRX_U8 byte) { return byte != Board::kErased; });
    return "controller " + std::to_string(controller.number) + ":\n" +
           feature_line("manufacturing flash tool", board.flash_tools, settings.flash_tools) +
           feature_line("SR-IOV", board.sriov, settings.sriov) +
           feature_line("protection", board.protection, settings.protection) + "  VPD: in the " +
           (settings.vpd_in_spi ? "SPI flash" : "EEPROM") +
           "\n  bytes of the SPI flash that are not erased: " + std::to_string(written) + "\n";
}

std::string show_diagnostics(const Controller& controller)
{
    const Diagnostics& diagnostics = controller.diagnostics;
    return "controller " + std::to_string(controller.number) +
           ":\n  error status: " + std::to_string(diagnostics.error_status) +
           ((diagnostics.error_status & Diagnostics::kCrashLog) != 0 ? ", a crash log" : "") +
           "\n  ports: " + (diagnostics.dual_port ? "two" : "one") +
           "\n  stalls for: " + std::to_string(diagnostics.stall) +
           " ms\n  VDM log: " + (diagnostics.vdm_on ? "on" : "off") + "\n";
}

}  // namespace qrx::sim
