// `import`: takes over disks that carry the configuration of another controller.
#pragma once

#include "api/src/interface/wire/types.h"
#include "cli/Public/common.h"

extern const char simple_import_help[];

int doSImport(int argc, char** argv, PCommand_Info pCmdInfo);

// Imports a VD, or a namespace table of a PD, and tells how it went.
void importVDSA(QRX_U8 adapterID, QRX_U16 ld_id);
void importPDSA(QRX_U8 adapterID, QRX_U16 pd_id, QRX_U16 ns_table_id);
