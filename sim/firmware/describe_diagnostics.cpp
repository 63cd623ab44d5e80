// The text form of what the firmware keeps for those who diagnose it.
#include "sim/firmware/describe.h"

namespace qrx::sim {

template <class Io>
void describe(Io& io, Diagnostics& diagnostics)
{
    io.number("error_status", diagnostics.error_status, 0, kAny32);
    io.flag("dual_port", diagnostics.dual_port);
    io.number("stall_ms", diagnostics.stall, 0, Diagnostics::kLongestStall);
    io.flag("vdm_on", diagnostics.vdm_on);
    io.object("vdm_log", [&](auto& inner) { describe(inner, diagnostics.vdm_log); });
}

template void describe(JsonReader&, Diagnostics&);
template void describe(JsonWriter&, Diagnostics&);

}  // namespace qrx::sim
