// `passthru`, and what its kin is made of: any admin command of the NVMe standard to a drive behind the controller.
#pragma once

#include <span>

#include "api/src/interface/wire/command.h"
#include "api/src/interface/wire/types.h"
#include "cli/Public/common.h"

extern const char passthru_help[];

int doPassthru(int argc, char** argv, PCommand_Info pCmdInfo);

namespace qrx::passthru {

// A tunnel to the drives.
struct Tunnel {
    QRX_U32 fromDrive;  // its opcodes, by the way of the data
    QRX_U32 toDrive;
    bool showsOpcode;  // on every run
};

// The command, whole.
int run(int argc, char** argv, PCommand_Info row, const Tunnel& tunnel);

}  // namespace qrx::passthru

// Prints CDW0 to CDW15 as they go out. The data's address (its low 32 bits) and length stand in the place of words 7
// and 9, as the driver will see them.
void _showCommandFormat(const _qrx_admin_command_format& pCmd, std::span<const QRX_U8> data);
