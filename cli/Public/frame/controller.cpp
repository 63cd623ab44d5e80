#include "cli/Public/frame/controller.h"

#include "api/src/interface/globals.h"

const NVME_Adapter_Info& qrx::recordOf(QRX_U8 adapter)
{
    static constexpr NVME_Adapter_Info kNone{};
    return g_pAdInfos != nullptr && adapter < gNumAdaptersFound ? g_pAdInfos[adapter] : kNone;
}
