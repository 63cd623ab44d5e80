#include "api/src/device/linux/NVMEDevice.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <mutex>

#include "api/src/function/log/log.h"
#include "api/src/interface/wire/buffer.h"
#include "api/src/interface/wire/command.h"
#include "api/src/interface/wire/nvme_ioctl.h"

namespace {

using qrx::wire::kPageSize;

constexpr QRX_U32 kNotSent = 1;
constexpr std::size_t kCommandWords = 6;             // cdw10 to cdw15
constexpr std::size_t kStandardMax = 2 * kPageSize;  // bytes of a standard command: a message may be over a page
constexpr QRX_U8 kDownloadFirmware = 0x11;

// The admin commands that sendCommand lets through.
struct AdminCommand {
    QRX_U8 opc_code;     // as callers name it
    QRX_U8 opcode;       // as sent
    QRX_U32 timeout_ms;  // 0: the driver's default
};
constexpr AdminCommand kAdminCommands[] = {
    {2, 0x02, 0},                    // Get Log Page
    {6, 0x06, 0},                    // Identify
    {13, 0x0D, 0},                   // Namespace Management
    {16, 0x10, 160000},              // Firmware Commit
    {17, kDownloadFirmware, 0},      // Firmware Image Download
    {21, 0x15, 0},                   // Namespace Attachment
    {28, 0x1C, 0},                   // Virtualization Management
    {29, 0x1D, 0},                   // NVMe-MI Send
    {30, 0x1E, 0},                   // NVMe-MI Receive
    {128, 0x80, 0},                  // Format NVM
    {199, QRX_U8{kVendorWrite}, 0},  // vendor write with data
    {251, kPairSend, 0},             // the two halves of a pair command
    {252, kPairReceive, 0},
};

// The I/O commands of sendNVM, with the ioctl that carries each.
struct NvmCommand {
    QRX_U8 opcode;
    unsigned long request;
};
constexpr NvmCommand kNvmCommands[] = {
    {1, NVME_IOCTL_SUBMIT_IO},  // write
    {2, NVME_IOCTL_SUBMIT_IO},  // read
    {4, NVME_IOCTL_IO_CMD},     // write uncorrectable
    {5, NVME_IOCTL_SUBMIT_IO},  // compare
    {8, NVME_IOCTL_IO_CMD},     // write zeroes
};

template <class Row, std::size_t size>
const Row* rowOf(const Row (&table)[size], QRX_U8 Row::*key, QRX_U8 value)
{
    const Row* row = std::find_if(table, table + size, [key, value](const Row& r) { return r.*key == value; });
    return row != table + size ? row : nullptr;
}

const NVMEDevice& nvme(PDevice device)
{
    return *reinterpret_cast<PNVMEDevice>(device);  // in_device is the first field
}

QRX_U64 address(const void* data)
{
    return reinterpret_cast<std::uintptr_t>(data);
}

// The data of one command as the caller gave it. The opcode tells the controller which way it flows.
struct Transfer {
    const void* in;
    std::size_t in_length;
    void* out;
    std::size_t out_length;

    [[nodiscard]] bool pointersGiven() const
    {
        return (in != nullptr || in_length == 0) && (out != nullptr || out_length == 0);
    }
    [[nodiscard]] bool fits(std::size_t most) const
    {
        return pointersGiven() && in_length <= most && out_length <= most;
    }
    // What goes along with the command: the data to the device, or else the buffer for the answer, which may carry
    // a request.
    [[nodiscard]] const void* sent() const { return in_length != 0 ? in : out; }
    [[nodiscard]] std::size_t sentLength() const { return in_length != 0 ? in_length : out_length; }
};

// Pages for when memory is short, of one command at a time.
alignas(kPageSize) std::array<QRX_U8, kStandardMax> reserve;
std::mutex reserve_in_use;

// Pages of their own for the data of one command, since the driver maps a transfer by pages: one, unless the transfer
// is longer. A command never fails for want of them: one that did would seem to have been answered, and a controller or
// a system disk that could not be asked would count as absent.
class BouncePages {
public:
    explicit BouncePages(const Transfer& transfer)
        : size_(std::max(transfer.in_length, transfer.out_length) > kPageSize ? kStandardMax : kPageSize),
          pages_(static_cast<QRX_U8*>(qx_memalign(kPageSize, static_cast<QRX_U32>(size_), &raw_)))
    {
        if (pages_ == nullptr) {
            turn_ = std::unique_lock(reserve_in_use);
            pages_ = reserve.data();
        }
    }
    ~BouncePages() { std::free(raw_); }
    BouncePages(const BouncePages&) = delete;
    BouncePages& operator=(const BouncePages&) = delete;

    [[nodiscard]] const void* data() const { return pages_; }

    // The data at the front, zeroes behind it: each byte is written once.
    void load(const Transfer& transfer)
    {
        const std::size_t length = transfer.sentLength();
        if (length != 0) {
            std::memcpy(pages_, transfer.sent(), length);
        }
        std::memset(pages_ + length, 0, size_ - length);
    }

    void unload(const Transfer& transfer) const
    {
        if (transfer.out_length != 0) {
            std::memcpy(transfer.out, pages_, transfer.out_length);
        }
    }

private:
    std::size_t size_;
    void* raw_ = nullptr;
    QRX_U8* pages_;
    std::unique_lock<std::mutex> turn_;  // of the reserve, where it is used
};

// Copies the caller's words to cdw10 onward. False when there are more of them than the command has.
bool setWords(nvme_admin_cmd& command, const QRX_U32* words, QRX_U8 count)
{
    std::array<QRX_U32, kCommandWords> cdw{};
    if (count > cdw.size() || (words == nullptr && count != 0)) {
        return false;
    }
    std::copy_n(words, count, cdw.begin());
    command.cdw10 = cdw[0];
    command.cdw11 = cdw[1];
    command.cdw12 = cdw[2];
    command.cdw13 = cdw[3];
    command.cdw14 = cdw[4];
    command.cdw15 = cdw[5];
    return true;
}

QRX_U32 submit(PDevice device, unsigned long request, nvme_admin_cmd& command)
{
    const int status = ioctl(nvme(device).m_fd, request, &command);
    if (status != 0) {
        add_log("opcode 0x%x failed: %d, %s\n", command.opcode, status, std::strerror(errno));
    }
    return static_cast<QRX_U32>(status);
}

// Sends an admin command with its data in `pages`, which are loaded for it.
QRX_U32 submitAdmin(PDevice device, nvme_admin_cmd& command, const Transfer& transfer, BouncePages& pages)
{
    pages.load(transfer);
    command.addr = address(pages.data());
    command.data_len = static_cast<QRX_U32>(transfer.sentLength());
    return submit(device, NVME_IOCTL_ADMIN_CMD, command);
}

QRX_U32 NVMEDevice_sendCommand(PDevice _this, QRX_U8 opc_code, QRX_U32 name_space, QRX_U32* cmd, QRX_U8 cmd_length,
                               void* in_data, QRX_U16 in_data_length, void* out_data, QRX_U16 out_data_length)
{
    const Transfer transfer{in_data, in_data_length, out_data, out_data_length};
    const AdminCommand* row = rowOf(kAdminCommands, &AdminCommand::opc_code, opc_code);
    nvme_admin_cmd command{};
    if (_this == nullptr || row == nullptr || !transfer.fits(kStandardMax) || !setWords(command, cmd, cmd_length)) {
        return kNotSent;
    }
    BouncePages pages(transfer);
    command.opcode = row->opcode;
    command.nsid = name_space;
    command.timeout_ms = row->timeout_ms;
    const QRX_U32 status = submitAdmin(_this, command, transfer, pages);
    if (status != 0) {
        return row->opcode == kDownloadFirmware ? 1 : status;
    }
    pages.unload(transfer);
    return status;
}

QRX_U32 NVMEDevice_sendNVM(PDevice _this, QRX_U8 opc_code, QRX_U32 name_space, QRX_U32* cmd, QRX_U8 cmd_length,
                           void* in_data, QRX_U32 in_data_length, void* out_data, QRX_U32 out_data_length)
{
    const Transfer transfer{in_data, in_data_length, out_data, out_data_length};
    const NvmCommand* row = rowOf(kNvmCommands, &NvmCommand::opcode, opc_code);
    nvme_admin_cmd command{};
    if (_this == nullptr || row == nullptr || !transfer.pointersGiven() || !setWords(command, cmd, cmd_length)) {
        return kNotSent;
    }
    command.opcode = row->opcode;
    command.nsid = name_space;
    command.addr = address(transfer.sent());
    command.data_len = static_cast<QRX_U32>(transfer.sentLength());
    return submit(_this, row->request, command);
}

QRX_U32 NVMEDevice_sendPassthruAdmin(PDevice _this, void* pCmd, void* in_data, QRX_U16 in_data_length, void* out_data,
                                     QRX_U16 out_data_length, QRX_U32* params)
{
    const Transfer transfer{in_data, in_data_length, out_data, out_data_length};
    if (_this == nullptr || pCmd == nullptr || !transfer.fits(kPageSize)) {
        return kNotSent;
    }
    BouncePages pages(transfer);
    static_assert(sizeof(nvme_admin_cmd) == sizeof(_qrx_admin_command_format::CDW));
    nvme_admin_cmd command;
    std::memcpy(&command, pCmd, sizeof(command));
    const QRX_U32 status = submitAdmin(_this, command, transfer, pages);
    if (params != nullptr) {
        *params = command.result;
    }
    pages.unload(transfer);
    return status;
}

void NVMEDevice_closeHandle(PDevice _this)
{
    close(nvme(_this).m_fd);
    if (_this->m_lock != nullptr) {
        _this->m_lock->close(_this->m_lock);
    }
    std::free(_this);
}

PDevice NVMEDevice_getNVMEDevice(PDevice _this)
{
    return _this;
}

}  // namespace

PDevice CreateSimpleNVMEDeviceInstance(int fd)
{
    auto* device = static_cast<PNVMEDevice>(std::calloc(1, sizeof(NVMEDevice)));
    if (device == nullptr) {
        return nullptr;
    }
    device->m_fd = fd;
    PDevice in_device = &device->in_device;
    in_device->sendCommand = NVMEDevice_sendCommand;
    in_device->sendNVM = NVMEDevice_sendNVM;
    in_device->sendPassthruAdmin = NVMEDevice_sendPassthruAdmin;
    in_device->closeHandle = NVMEDevice_closeHandle;
    in_device->getNVMEDevice = NVMEDevice_getNVMEDevice;
    return in_device;
}

PDevice CreateNVMEDeviceInstance(int fd, QRX_U16 index)
{
    PDevice device = CreateSimpleNVMEDeviceInstance(fd);
    if (device == nullptr) {
        return nullptr;
    }
    // The name must be the same in every process, so it is made of the table index: "qrxd00", "qrxd01", ...
    const char lock_name[7] = {
        'q', 'r', 'x', 'd', static_cast<char>('0' + (index >> 8)), static_cast<char>('0' + (index & 0xFF)), '\0'};
    device->m_lock = CreateQRXLockInstance();
    if (device->m_lock != nullptr) {
        device->m_lock->init(device->m_lock, lock_name);
    }
    return device;
}

QRX_U8 NVMEDevice_Identify_BY_NS(PDevice _this, void* out_data, QRX_U16 out_data_length)
{
    QRX_U32 nsid = 0;
    if (_this == nullptr || out_data == nullptr || out_data_length < sizeof(nsid)) {
        return 1;
    }
    nsid = static_cast<QRX_U32>(ioctl(nvme(_this).m_fd, NVME_IOCTL_ID));
    std::memcpy(out_data, &nsid, sizeof(nsid));
    return 0;
}

void* qx_memalign(QRX_U32 align, QRX_U32 size, void** oriPtr)
{
    void* raw = std::malloc(std::size_t{size} + align);
    if (raw == nullptr) {
        return nullptr;
    }
    *oriPtr = raw;
    const std::size_t past = reinterpret_cast<std::uintptr_t>(raw) % align;
    return static_cast<QRX_U8*>(raw) + (past != 0 ? align - past : 0);
}
