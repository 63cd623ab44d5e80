// `linfo`: the light info block of the controller, as bytes or in a file.
#pragma once

#include <span>

#include "api/src/interface/wire/buffer.h"
#include "cli/Public/common.h"

extern const char simple_linfo_help[];
extern const char simple_linfo_sh[];

int doLINFO(int argc, char** argv, PCommand_Info pCmdInfo);

// What `linfo -a show` shows: the block has no readable form yet.
void _showLightData(std::span<const QRX_U8, qrx::wire::kPageSize> page);
