#include "api/src/interface/pair_request.h"

#include <algorithm>
#include <array>
#include <cassert>

#include "api/src/device/common/DeviceManagement.h"

namespace {

constexpr QRX_U8 kPairRequest = 250;  // the pair device looks at neither this nor the namespace
constexpr std::size_t kWordsMax = 4;

}  // namespace

QRX_U32 qrx::pairRequest(QRX_U16 adapter_id, std::initializer_list<QRX_U32> words, std::span<const QRX_U8> request,
                         void* answer, QRX_U16 length)
{
    assert(words.size() <= kWordsMax);
    std::array<QRX_U32, kWordsMax> cmd{};
    std::copy(words.begin(), words.end(), cmd.begin());
    PDeviceManagement table = GetDeviceManagementInstance();
    PDevice device = table->getDevice(table, adapter_id);
    return device->sendCommand(device, kPairRequest, 0, cmd.data(), static_cast<QRX_U8>(words.size()),
                               const_cast<QRX_U8*>(request.data()), static_cast<QRX_U16>(request.size()), answer,
                               length);
}
