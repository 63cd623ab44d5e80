// What the OEM security commands have in common.
#include "cli/Functions/simple/oem_security.h"

#include <algorithm>

#include "cli/Public/frame/number.h"
#include "cli/Public/frame/report.h"

namespace qrx::security {

AdminCommand command(QRX_U16 which)
{
    return vendorCommand(kGroupSecurity, kSubSecurity, which);
}

bool readDrive(const char* word, QRX_U16& drive, const char* notNumber)
{
    const auto id = readId(word);
    if (!id) {
        return complain("%s", notNumber);
    }
    return take(narrowId(id), drive) || complain("-i : invalid PD id '%s'\n", word);
}

int tell(int status, const char* what)
{
    return status == 0 ? refuse(0, "cmd success\n")
                       : refuse(status, "\nUnable to %s from NVMe Controller %d\n", what, gCurrentAdapter);
}

int set(const AdminCommand& command, const char* what)
{
    command.debug();
    return tell(command.send(), what);
}

}  // namespace qrx::security
