// Requests about the debug console. They travel the pair command road; pair_request.h tells what all such calls
// return.
#pragma once

#include "api/src/interface/wire/dump.h"
#include "api/src/interface/wire/types.h"

// Reads the next page of the console's text. `dump` is a whole record; an answer brings its first 4088 bytes, and so
// at most kDumpTextMax of text, whatever `length` in it says.
QRX_U32 QRX_Dump_Console(QRX_U8 adapter_id, PNVME_Debug_Dump_Request dump);
// Reads how much text the console can hold.
QRX_U32 QRX_Dump_Status(QRX_U8 adapter_id, PNVME_Debug_Dump_Status dumpStatus);
// Read and set whether the console is written.
QRX_U32 QRX_Get_Dump_Cfg(QRX_U8 adapter_id, PNVME_Debug_Dump_Config dumpCfg);
QRX_U32 QRX_Set_Dump_Cfg(QRX_U8 adapter_id, PNVME_Debug_Dump_Config dumpCfg);
