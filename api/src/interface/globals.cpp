#include "api/src/interface/globals.h"

FILE* stream = stdout;
QRX_U8 gCurrentAdapter = 0;
QRX_U8 gSpecificAdapterFlag = 0;
QRX_U8 gNumAdaptersFound = 0;
PNVME_Adapter_Info g_pAdInfos = nullptr;
QRX_U8 g_oneBaseMode = 0;
QRX_U8 dbg_enable = 0;
