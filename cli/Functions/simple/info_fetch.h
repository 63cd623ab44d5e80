// How `info` reads: one vendor command, a fresh page, and the debug lines around it.
#pragma once

#include <initializer_list>

#include "api/src/interface/globals.h"
#include "cli/Public/frame/admin_command.h"

namespace qrx::info {

enum class Status {
    Spoken,  // a failure prints its status text
    Silent,  // a probe: only the answer decides
};

// Sends `command` and fills `response`. Under dbg_enable shows the named words before, cmd_status and a wrong signature
// after. Returns the device's status.
int fetch(const AdminCommand& command, std::initializer_list<unsigned> shown, Response& response, Status spoken,
          QRX_U8 adapter = gCurrentAdapter);

// Prints from a list of namespaces the one with this NSID, or for kAllInstances those with one of the status bits,
// and how many.
inline constexpr QRX_U8 kAnyStatus = 0xFF;
void printNamespaces(const Response& response, QRX_U16 nsId, QRX_U8 wantedStatus);

}  // namespace qrx::info
