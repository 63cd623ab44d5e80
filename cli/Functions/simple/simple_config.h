// `get` and `set`: the settings of a RAID controller. `debuglv`: what its firmware logs.
#pragma once

#include "api/src/interface/wire/adapter.h"
#include "cli/Public/common.h"

extern const char simple_get_help[];
extern const char simple_set_help[];
extern const char simple_debuglv_help[];

int doSGet(int argc, char** argv, PCommand_Info pCmdInfo);
int doSSet(int argc, char** argv, PCommand_Info pCmdInfo);
int doSDEBUGLV(int argc, char** argv, PCommand_Info pCmdInfo);

void hbaGet_printf(const NVME_Adapter_Config& config);

namespace qrx {

// Reads the settings of a controller. Returns the device's status; the answer's own verdict is not looked at.
int readConfig(QRX_U8 adapter, NVME_Adapter_Config& config);

}  // namespace qrx
