#include "sim/firmware/eye.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace qrx::sim {

namespace {

// A probability, in units of 2^-32.
using Probability = QRX_U64;
constexpr Probability kOne = Probability{1} << 32;

// How often a normal deviate is beyond n eighths of a standard deviation.
constexpr std::array<Probability, 57> kTail{
    2147483648, 1933859599, 1723543207, 1519689280, 1325158638, 1142399148, 973357067, 819423723, 681419127, 559610690,
    453762323,  363207012,  286934745,  223687392,  172052769,  130551380,  97711073,  72126702,  52503710,  37686084,
    26670309,   18607724,   12797986,   8676424,    5797768,    3818335,    2478304,   1585180,   999134,    620540,
    379749,     228975,     136027,     79615,      45907,      26077,      14593,     8044,      4368,      2337,
    1231,       639,        327,        164,        82,         40,         19,        9,         4,         2,
    1,          0,          0,          0,          0,          0,          0,
};
constexpr std::int64_t kStepsPerDeviation = 8;

// How often a point `halves` half steps inside an edge is outside of it, when the edge is blurred by so many tenths of
// a step.
Probability beyond(std::int64_t halves, QRX_U16 tenths)
{
    constexpr std::int64_t kFine = 256;  // between two steps of the table
    if (tenths == 0) {
        return halves > 0 ? 0 : kOne;
    }
    const std::int64_t distance = (halves < 0 ? -halves : halves) * 5 * kStepsPerDeviation * kFine / tenths;
    const auto step = static_cast<std::size_t>(distance / kFine);
    Probability tail = 0;
    if (step + 1 < kTail.size()) {
        const auto rest = static_cast<Probability>(distance % kFine);
        tail = kTail[step] - (kTail[step] - kTail[step + 1]) * rest / kFine;
    }
    return halves < 0 ? kOne - tail : tail;
}

}  // namespace

QRX_U64 Eye::errors(QRX_U32 phase, QRX_U32 voltage, QRX_U64 samples) const
{
    // Far outside every other bit is right by chance.
    Probability wrong = kOne / 2;
    if (width != 0) {
        const std::int64_t wide = width;
        const std::int64_t off = 2 * (std::int64_t{phase} - center);
        const std::int64_t opening = height * (wide * wide - off * off) / (wide * wide);
        const Probability outside =
            beyond(wide - (off < 0 ? -off : off), jitter) + beyond(opening - 2 * std::int64_t{voltage}, noise);
        wrong = std::min(outside / 2, wrong);
    }
    return (samples >> 32) * wrong + ((samples & (kOne - 1)) * wrong >> 32);
}

}  // namespace qrx::sim
