// How `info` reads: one vendor command, a fresh page, and the debug lines around it.
#pragma once

#include <initializer_list>
#include <string>

#include "api/src/interface/globals.h"
#include "api/src/interface/wire/adapter.h"
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

// The controller's record as read at start; zeros where there is none.
const NVME_Adapter_Info& recordOf(QRX_U8 adapter);
inline bool isJbof(const NVME_Adapter_Info& record)
{
    return (record.Features & kFeatureRaid) == 0;
}

// A fixed-size text field without its leading blanks, of which at most `mostBlanks` are dropped. It ends at the first
// zero byte or at the end of the field.
std::string fieldText(std::span<const QRX_U8> field, std::size_t mostBlanks = 0);

}  // namespace qrx::info
