// What the OEM security commands have in common.
#pragma once

#include <string_view>

#include "api/src/interface/wire/security.h"
#include "api/src/interface/wire/types.h"
#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/option_scan.h"

namespace qrx::security {

inline constexpr Keyword kSwitch[] = {{"enable", 1}, {"disable", 0}};

enum Type : QRX_U8 { kAdapter, kPd };
inline constexpr Keyword kTypes[] = {{"adapter", kAdapter}, {"pd", kPd}};

AdminCommand command(QRX_U16 which);

// CDW13 for a drive.
constexpr QRX_U32 ofDrive(QRX_U16 drive)
{
    return QRX_U32{drive} << 16U | kSecurityOfDrive;
}

// Stores the id of a drive; false after a complaint: `notNumber`, or one of ids that the command cannot carry.
bool readDrive(const char* word, QRX_U16& drive, const char* notNumber);

// Tells how a command ended, of which `what` is the purpose: "set security info". Returns `status`.
int tell(int status, const char* what);

// Carries out a command without data, and tells it.
int set(const AdminCommand& command, const char* what);

}  // namespace qrx::security
