// What the commands for virtual disks have in common: options, and vendor commands.
#pragma once

#include <cctype>
#include <cstdint>
#include <cstring>

#include "api/src/interface/wire/types.h"
#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/number.h"

namespace qrx::vd {

// Readers store their option's argument, or say on `stream` what is wrong with it and give false.

// -r: a RAID mode code.
bool readMode(const char* word, QRX_U8& mode);

// -b: the code of a stripe block size: 0, 1, 2 for 128, 256, 512 KB.
bool readStripe(const char* word, QRX_U8& code);

// -d: gives each id of a comma-separated list, 0-based, to `add`, which gives false for one that is none of a PD. An
// id ends at its first character that is no digit. False too where an element does not begin with a digit, or is
// below the first id; what that means is the caller's to say.
template <class Add>
bool eachPd(const char* list, Add&& add)
{
    for (const char* element = list; element != nullptr;) {
        if (std::isdigit(static_cast<unsigned char>(*element)) == 0) {
            return false;
        }
        const std::int32_t id = strtol32(element, 10) - idBase();
        if (id < 0 || !add(id)) {
            return false;
        }
        const char* comma = std::strchr(element, ',');
        element = comma != nullptr ? comma + 1 : nullptr;
    }
    return true;
}

// The command that makes a virtual disk of a RAID mode and stripe code. CDW13, its members, and CDW14 are the caller's.
AdminCommand createCommand(QRX_U8 mode, QRX_U8 stripe);
// The command that deletes one. Nothing guards it.
AdminCommand deleteCommand(QRX_U16 id);

// Sends either, and says how it went. Returns the device's status.
int carryOut(const AdminCommand& command);

}  // namespace qrx::vd
