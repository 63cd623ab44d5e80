// The text form of a controller's board.
#include <algorithm>
#include <tuple>

#include "sim/firmware/describe.h"

namespace qrx::sim {

namespace {

constexpr auto kPortWords = std::to_array<JsonWord>({{kPcieEndPoint, "end-point"}, {kPcieRootComplex, "root-complex"}});
constexpr auto kLedWords =
    std::to_array<JsonWord>({{Led::kOn, "on"}, {Led::kSlowBlink, "slow-blink"}, {Led::kQuickBlink, "quick-blink"}});
constexpr auto kChannelBits = std::to_array<JsonWord>({{1, "clock-buffer"}, {2, "bay-1"}, {4, "bay-2"}});

template <class Io>
void describe_pins(Io& io, const char* key, QRX_U8& pins)
{
    io.number(key, pins, 0, Board::kSettablePins);
    io.check((pins & ~Board::kSettablePins) == 0, key, "holds a bit below 4; the pins are GPIO 4 to 7");
}

template <class Io>
void describe(Io& io, Led& led, const Board& board)
{
    io.code("object", led.object, kPortWords);
    io.number("id", led.id, 0, kAny8);
    io.code("state", led.state, kLedWords);
    io.check(led.object <= kPcieRootComplex, "object", "is neither an end point nor a root complex");
    io.check(led.state > Led::kOff && led.state <= Led::kQuickBlink, "state", "is none of an LED that is listed");
    const auto same = [&](const Led& other) { return other.object == led.object && other.id == led.id; };
    io.check(!Io::kReads || std::none_of(board.leds.begin(), board.leds.end() - 1, same), "id",
             "is the id of an earlier LED");
}

}  // namespace

template <class Io>
void describe(Io& io, Board& board)
{
    describe_pins(io, "functions", board.functions);
    describe_pins(io, "levels", board.levels);
    describe_pins(io, "values", board.values);
    io.number("in_reset", board.in_reset, 0, (1U << Board::kPerstLines) - 1);
    io.list("leds", board.leds, kPcieInfoMax, [&](auto& inner, Led& led) { describe(inner, led, board); });
    std::sort(board.leds.begin(), board.leds.end(), [](const Led& left, const Led& right) {
        return std::tie(left.object, left.id) < std::tie(right.object, right.id);
    });
    io.mask("silent_channels", board.silent_channels, kChannelBits);
    io.check((board.silent_channels & ~Board::kChannels) == 0, "silent_channels", "names a channel that is not there");
    io.flag("flash_tools", board.flash_tools);
    io.flag("sriov", board.sriov);
    io.flag("protection", board.protection);
    std::vector<QRX_U8> spi = board.spi;
    io.bytes("spi", spi, Board::kSpiBlock);
    board.write_spi(spi);
}

template void describe(JsonReader&, Board&);
template void describe(JsonWriter&, Board&);

}  // namespace qrx::sim
