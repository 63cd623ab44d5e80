#include "api/src/device/common/PairCMDDevice.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>

#include "api/src/function/log/log.h"
#include "api/src/interface/wire/buffer.h"
#include "api/src/interface/wire/envelope.h"

namespace {

constexpr QRX_U32 kFailed = 1;
constexpr QRX_U32 kNoIoRoad = 5;
constexpr QRX_U8 kSendCode = 251;  // sendCommand's names for the two halves
constexpr QRX_U8 kReceiveCode = 252;
constexpr QRX_U16 kFrameSize = sizeof(PairCMDDevice::m_in_buffer);

PairCMDDevice& pair(PDevice device)
{
    return *reinterpret_cast<PPairCMDDevice>(device);  // in_device is the first field
}

// Holds the lock of a device, if it has one. A lock that times out does not stop the request.
class Locked {
public:
    explicit Locked(PQRXLock lock) : lock_(lock)
    {
        if (lock_ != nullptr) {
            lock_->lock(lock_);
        }
    }
    ~Locked()
    {
        if (lock_ != nullptr) {
            lock_->unlock(lock_);
        }
    }
    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;

private:
    PQRXLock lock_;
};

// The words of either half: CDW10 is the frame in dwords, CDW15 the signature.
struct HalfWords {
    QRX_U32 cdw[6] = {kFrameSize / 4, 0, 0, 0, 0, kFrameSignWord};
};

void fillFrame(PairCMDDevice& device, const QRX_U32* cmd, QRX_U8 cmd_length, const void* in_data, QRX_U16 length)
{
    // One byte more than each head is cleared; the rest stays from the request before and is sent along.
    std::memset(device.m_in_buffer, 0, kSendDataOffset + 1);
    std::memset(device.m_out_buffer, 0, kReceiveDataOffset + 1);
    NVMESendData head{};
    std::memcpy(head.sign, kFrameSign, sizeof(kFrameSign) - 1);
    head.cmd_length = std::min<QRX_U8>(cmd_length, std::size(head.vendor_cmd));
    head.data_offset = kSendDataOffset;
    head.data_length = length;
    std::transform(cmd, cmd + head.cmd_length, head.vendor_cmd,
                   [](QRX_U32 word) { return static_cast<QRX_U16>(word); });
    std::memcpy(device.m_in_buffer, &head, sizeof(head));
    if (length != 0) {
        std::memcpy(device.m_in_buffer + kSendDataOffset, in_data, length);
    }
}

// The verdict in the receive frame: cmd_status, or kFailed on a wrong signature.
QRX_U32 verdict(const PairCMDDevice& device)
{
    const auto head = *qrx::wire::read<NVMEReceiveData>(device.m_out_buffer);
    if (std::memcmp(head.sign, kFrameSign, sizeof(kFrameSign) - 1) != 0) {
        add_log("receive sign get 0x%x 0x%x 0x%x expect 0x%x 0x%x 0x%x\n", head.sign[0], head.sign[1], head.sign[2],
                kFrameSign[0], kFrameSign[1], kFrameSign[2]);
        return kFailed;
    }
    return head.cmd_status;
}

// Sends the frame and fetches the answer.
QRX_U32 exchange(PairCMDDevice& device)
{
    PDevice nvme = device.m_nvme_device;
    const Locked locked(nvme->m_lock);
    HalfWords send;
    QRX_U32 status = nvme->sendCommand(nvme, kSendCode, 0, send.cdw, std::size(send.cdw), device.m_in_buffer,
                                       kFrameSize, nullptr, 0);
    if (status != 0) {
        add_log("send failed %d\n", static_cast<int>(status));
        return kFailed;
    }
    HalfWords receive;
    status = nvme->sendCommand(nvme, kReceiveCode, 0, receive.cdw, std::size(receive.cdw), nullptr, 0,
                               device.m_out_buffer, kFrameSize);
    if (status != 0) {
        add_log("receive failed %d\n", static_cast<int>(status));
        return kFailed;
    }
    return verdict(device);
}

QRX_U32 PairCMDDevice_sendCommand(PDevice _this, QRX_U8 /*opc_code*/, QRX_U32 /*name_space*/, QRX_U32* cmd,
                                  QRX_U8 cmd_length, void* in_data, QRX_U16 in_data_length, void* out_data,
                                  QRX_U16 out_data_length)
{
    const bool fits =
        in_data_length <= kFrameSize - kSendDataOffset && out_data_length <= kFrameSize - kReceiveDataOffset;
    const bool given = (cmd != nullptr || cmd_length == 0) && (in_data != nullptr || in_data_length == 0) &&
                       (out_data != nullptr || out_data_length == 0);
    if (_this == nullptr || !fits || !given || pair(_this).m_nvme_device == nullptr) {
        return kFailed;
    }
    PairCMDDevice& device = pair(_this);
    fillFrame(device, cmd, cmd_length, in_data, in_data_length);
    const QRX_U32 status = exchange(device);
    if (status == 0 && out_data_length != 0) {
        std::memcpy(out_data, device.m_out_buffer + kReceiveDataOffset, out_data_length);
    }
    return status;
}

QRX_U32 PairCMDDevice_sendNVM(PDevice, QRX_U8, QRX_U32, QRX_U32*, QRX_U8, void*, QRX_U32, void*, QRX_U32)
{
    return kNoIoRoad;
}

QRX_U32 PairCMDDevice_sendPassthruAdmin(PDevice, void*, void*, QRX_U16, void*, QRX_U16, QRX_U32*)
{
    add_log("Send passthrough command fail, please contact with vendor.\n");
    return kFailed;
}

void PairCMDDevice_closeHandle(PDevice _this)
{
    PDevice nvme = pair(_this).m_nvme_device;
    if (nvme != nullptr) {
        nvme->closeHandle(nvme);
    }
    std::free(_this);
}

PDevice PairCMDDevice_getNVMEDevice(PDevice _this)
{
    return pair(_this).m_nvme_device;
}

}  // namespace

PDevice CreatePairCMDDeviceInstance(PDevice NVME_Device)
{
    auto* device = static_cast<PPairCMDDevice>(std::calloc(1, sizeof(PairCMDDevice)));
    if (device == nullptr) {
        return nullptr;
    }
    device->m_nvme_device = NVME_Device;
    PDevice in_device = &device->in_device;
    in_device->sendCommand = PairCMDDevice_sendCommand;
    in_device->sendNVM = PairCMDDevice_sendNVM;
    in_device->sendPassthruAdmin = PairCMDDevice_sendPassthruAdmin;
    in_device->closeHandle = PairCMDDevice_closeHandle;
    in_device->getNVMEDevice = PairCMDDevice_getNVMEDevice;
    return in_device;
}
