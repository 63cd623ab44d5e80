// The state that the access layer and all handlers share. All zero at process start but `stream`.
#pragma once

#include <cstdio>

#include "api/src/interface/wire/adapter.h"
#include "api/src/interface/wire/types.h"

extern FILE* stream;                   // where all normal output goes; stdout, or the file of -output
extern QRX_U8 gCurrentAdapter;         // table index of the controller that commands address
extern QRX_U8 gSpecificAdapterFlag;    // 1: a numeric first argument named a controller
extern QRX_U8 gNumAdaptersFound;       // controllers found, cut to 8 bits
extern PNVME_Adapter_Info g_pAdInfos;  // one record for each controller found; heap, owned by main
extern QRX_U8 g_oneBaseMode;           // 1: ids are shown and typed one-based; always 0 here
extern QRX_U8 dbg_enable;              // debug lines on stream
