// How `info` reads: one vendor command, a fresh page, and the debug lines around it.
#pragma once

#include <initializer_list>
#include <vector>

#include "api/src/interface/globals.h"
#include "api/src/interface/wire/ns.h"
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

// Reads a controller's record. False when the call failed.
bool fetchAdapter(QRX_U8 adapterID, Response& response);
// Prints the record of such an answer, with `all` the SUBNQN too, and behind it a blank line if wanted; or what its
// verdict is.
void printFetched(QRX_U8 adapterID, const Response& response, bool all, bool blankLine);

// The MaxNS records of a list of namespaces, as far as the page holds them.
std::vector<NVME_NS_Info> namespacesIn(const Response& response);

}  // namespace qrx::info
