// The text form of what a controller keeps of the security of its drives.
#include "sim/firmware/describe.h"

namespace qrx::sim {

template <class Io>
void describe(Io& io, Security& security)
{
    io.flag("secure_mode", security.secure_mode);
    io.flag("help_complete", security.help_complete);
    io.flag("reset_acknowledged", security.reset_acknowledged);
    io.list("drives", security.drives, kMaxPdId + 1, [](auto& inner, SecureDrive& drive) {
        inner.number("id", drive.id, 0, kMaxPdId);
        inner.flag("help_provided", drive.help_provided);
        inner.flag("slot_attention", drive.slot_attention);
        inner.flag("firmware_update", drive.firmware_update);
    });
    const auto not_rising = [](const SecureDrive& left, const SecureDrive& right) { return left.id >= right.id; };
    io.check(std::adjacent_find(security.drives.begin(), security.drives.end(), not_rising) == security.drives.end(),
             "drives", "must have rising ids");
    io.flag("eeprom", security.eeprom);
    io.flag("hide_temperature", security.hide_temperature);
}

template void describe(JsonReader&, Security&);
template void describe(JsonWriter&, Security&);

}  // namespace qrx::sim
