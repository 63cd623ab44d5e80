#include "api/src/interface/dump.h"

#include "api/src/interface/pair_request.h"

using qrx::PairCode;

QRX_U32 QRX_Dump_Console(QRX_U8 adapter_id, PNVME_Debug_Dump_Request dump)
{
    return qrx::pairRequest(adapter_id, {PairCode::kDumpConsole}, {}, qrx::bytesFrom(dump, qrx::kPairAnswerMax));
}

QRX_U32 QRX_Dump_Status(QRX_U8 adapter_id, PNVME_Debug_Dump_Status dumpStatus)
{
    return qrx::pairReceive(adapter_id, {PairCode::kDumpStatus}, dumpStatus);
}

QRX_U32 QRX_Get_Dump_Cfg(QRX_U8 adapter_id, PNVME_Debug_Dump_Config dumpCfg)
{
    return qrx::pairReceive(adapter_id, {PairCode::kGetDumpCfg}, dumpCfg);
}

QRX_U32 QRX_Set_Dump_Cfg(QRX_U8 adapter_id, PNVME_Debug_Dump_Config dumpCfg)
{
    return qrx::pairSend(adapter_id, {PairCode::kSetDumpCfg}, *dumpCfg);
}
