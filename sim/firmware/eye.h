// The eye of a received signal: where, and how surely, a sampler tells one bit from the other.
#pragma once

#include "api/src/interface/wire/types.h"

namespace qrx::sim {

// Phases and voltages in steps of the monitor; 0 V is the middle of the eye. The eye is a lens, whose edges are
// blurred.
struct Eye {
    QRX_U16 center = 100;  // phase
    QRX_U16 width = 64;    // from edge to edge at 0 V, 0: closed
    QRX_U16 height = 96;   // from edge to edge at the center
    QRX_U16 jitter = 10;   // of the edges along the phase, tenths of a step (one standard deviation)
    QRX_U16 noise = 30;    // along the voltage, tenths of a step

    friend bool operator==(const Eye&, const Eye&) = default;

    // How many of `samples` bits are read wrongly at a point. As a mean: the same each time.
    [[nodiscard]] QRX_U64 errors(QRX_U32 phase, QRX_U32 voltage, QRX_U64 samples) const;
};

}  // namespace qrx::sim
