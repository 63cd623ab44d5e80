#include "api/src/interface/pair_request.h"

#include "api/src/device/common/DeviceManagement.h"

namespace {

constexpr QRX_U8 kPairRequest = 250;  // the pair device looks at neither this nor the namespace

}  // namespace

QRX_U32 qrx::pairRequest(QRX_U16 adapter_id, PairWords words, std::span<const QRX_U8> request, std::span<QRX_U8> answer)
{
    if (request.size() > kPairRequestMax || answer.size() > kPairAnswerMax) {
        return kPairFailed;
    }
    const auto code = static_cast<QRX_U32>(words.code);
    QRX_U32 cmd[] = {code >> 8U, code & 0xFFU, words.argument.value_or(0)};
    PDeviceManagement table = GetDeviceManagementInstance();
    PDevice device = table->getDevice(table, adapter_id);
    return device->sendCommand(device, kPairRequest, 0, cmd, words.argument ? 3 : 2,
                               const_cast<QRX_U8*>(request.data()), static_cast<QRX_U16>(request.size()), answer.data(),
                               static_cast<QRX_U16>(answer.size()));
}
