// The earlier `import`: takes over a virtual disk that carries the configuration of another controller.
#pragma once

#include "api/src/interface/wire/types.h"
#include "cli/Public/common.h"

extern const char import_help[];
extern const char import_sh[];

int doImport(int argc, char** argv, PCommand_Info pCmdInfo);

// Imports a VD of a controller, and tells how it went.
void importVD(QRX_U8 adapterID, QRX_U16 vd_id);
