// Identify, as every handler sends it.
#include "cli/Public/frame/identify.h"

#include <algorithm>

#include "api/src/interface/agent.h"

namespace qrx {

int identify(QRX_U32 nsid, QRX_U32 cns, std::span<QRX_U8, wire::kPageSize> page, QRX_U8 adapter)
{
    std::fill(page.begin(), page.end(), QRX_U8{0});
    return static_cast<int>(QRX_Adapter_Admin(adapter, kIdentify, nsid, &cns, 1, nullptr, 0, page.data(), page.size()));
}

}  // namespace qrx
