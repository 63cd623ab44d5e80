#include "api/src/interface/ns.h"

#include <algorithm>
#include <cstring>

#include "api/src/device/common/AdapterRecord.h"
#include "api/src/interface/agent.h"
#include "api/src/interface/pair_request.h"

namespace {

constexpr QRX_U8 kSubListNs = 0x00;

}  // namespace

QRX_U32 QRX_NS_GetInfo(QRX_U8 adapter_id, PNVME_NS_Info ns_info, QRX_U8 maxNS)
{
    _qrx_admin_command_format command{};
    command.CDW[0] = kVendorRead;
    command.CDW[12] = qrx::vendorWord(kGroupNs, kSubListNs);
    command.cdw_flag = 0x1001;

    qrx::Page page{};
    const QRX_U32 status =
        QRX_Adapter_PassthruAdmin(adapter_id, &command, nullptr, 0, page.data(), qrx::wire::kPageSize, nullptr);
    if (status != 0) {
        return status;
    }
    if (std::memcmp(page.data(), kFrameSign, sizeof(kFrameSign) - 1) != 0) {
        return 1;
    }
    if (qrx::commandStatus(page) != 0) {
        return qrx::commandStatus(page);
    }
    std::memcpy(ns_info, page.data() + kReceiveDataOffset, std::min(maxNS, kNsListMax) * sizeof(*ns_info));
    return 0;
}

QRX_U32 QRX_NS_GetInfo_VD(QRX_U8 adapter_id, PNVME_NS_Info ns_info, QRX_U16 vd_id, QRX_U8 numOfNS)
{
    return qrx::pairRequest(adapter_id, {qrx::PairCode::kNsGetInfoVd, vd_id}, {},
                            qrx::bytesFrom(ns_info, std::min(numOfNS, kNsListMax) * sizeof(*ns_info)));
}
