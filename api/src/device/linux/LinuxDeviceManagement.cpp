#include "api/src/device/linux/LinuxDeviceManagement.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "api/src/device/common/AdapterRecord.h"
#include "api/src/device/common/IdentifyController.h"
#include "api/src/device/common/PairCMDDevice.h"
#include "api/src/device/linux/NVMEDevice.h"
#include "api/src/device/linux/SystemBIOS.h"
#include "api/src/function/log/log.h"
#include "api/src/interface/wire/nvme.h"

namespace {

constexpr char kScanCommand[] = "find /sys/devices | grep -o \"[0-9a-f]*:[0-9a-f]*.[0-9]/nvme/nvme[0-9]*\" | sort -u";
constexpr std::string_view kTreeMark = "/nvme/";
constexpr std::string_view kNumberMark = "/nvme/nvme";  // the device number stands behind it
constexpr char kDeviceDirectory[] = "/dev";
constexpr std::string_view kDevicePrefix = "nvme";
constexpr std::size_t kLocationSize = sizeof(BusDevFun::bus_dev_fun);
constexpr std::size_t kSubnqnSize = 223;

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
struct ClosePipe {
    void operator()(FILE* pipe) const { pclose(pipe); }
};
struct CloseDirectory {
    void operator()(DIR* directory) const { closedir(directory); }
};

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

// The decimal number at the front of `text`, 0 without one. Saturates as a 32-bit long does.
QRX_U32 leadingNumber(std::string_view text)
{
    constexpr QRX_U64 kLargest = std::numeric_limits<std::int32_t>::max();
    QRX_U64 number = 0;
    for (const char c : text) {
        if (!isDigit(c)) {
            break;
        }
        number = std::min(number * 10 + static_cast<QRX_U64>(c - '0'), kLargest);
    }
    return static_cast<QRX_U32>(number);
}

void putText(char* field, std::size_t size, std::string_view text)
{
    const std::size_t length = std::min(text.size(), size - 1);
    std::copy_n(text.data(), length, field);
    std::fill(field + length, field + size, '\0');
}

// The vendor's adapter read: the status of the call, and the record unless the firmware refused.
struct AdapterAnswer {
    QRX_U32 status;
    std::optional<NVME_Adapter_Info> info;
};

AdapterAnswer readAdapter(PDevice handle)
{
    _qrx_admin_command_format command = qrx::readAdapterCommand();
    qrx::Page page{};
    const QRX_U32 status =
        handle->sendPassthruAdmin(handle, &command, nullptr, 0, page.data(), qrx::wire::kPageSize, nullptr);
    if (status != 0 || qrx::commandStatus(page) != 0) {
        return {status, std::nullopt};
    }
    return {status, qrx::payload<NVME_Adapter_Info>(page)};
}

// Text of `size` bytes with each zero byte as a blank.
void putPadded(char* text, const QRX_U8* field, std::size_t size)
{
    std::transform(field, field + size, text, [](QRX_U8 c) { return c != 0 ? static_cast<char>(c) : ' '; });
}

// Whether the table takes one controller more. Says once that it does not.
bool hasRoom(PDeviceManagement table)
{
    if (table->m_count < kMaxDevices) {
        return true;
    }
    std::fprintf(stderr, "More NVMe Controllers than the %zu that can be managed.\n", kMaxDevices);
    return false;
}

// Opens `path` read-write; a refusal for want of rights is noted in the table.
int openDevice(PDeviceManagement table, const char* path)
{
    const int fd = open(path, O_RDWR);
    if (fd < 0) {
        const int error = errno;
        add_log("open %s fail, %s\n", path, std::strerror(error));
        if (error == EACCES) {
            table->m_sysDenied = 1;
        }
        errno = error;
    }
    return fd;
}

// Makes the device over `fd` the table's next, if it is one to be kept. Returns the NVMe device, or null; `fd` is
// taken over in either case. Throws std::bad_alloc.
PDevice enroll(PDeviceManagement table, int fd)
{
    PDevice device = CreateNVMEDeviceInstance(fd, table->m_count);
    if (device == nullptr) {
        close(fd);
        throw std::bad_alloc();
    }
    if (DeviceManagement_identify(device) == 0) {
        device->closeHandle(device);
        return nullptr;
    }
    PDevice pair = CreatePairCMDDeviceInstance(device);
    if (pair == nullptr) {
        device->closeHandle(device);
        throw std::bad_alloc();
    }
    table->m_devs[table->m_count] = pair;
    return device;
}

// The scan's records. There is room for all of them, but only those that are filled take up memory: none is
// touched before. Throws std::bad_alloc.
std::unique_ptr<BusDevFun[], Free> makeRecords()
{
    std::unique_ptr<BusDevFun[], Free> records(static_cast<PBusDevFun>(std::calloc(kMaxScanLines, sizeof(BusDevFun))));
    if (records == nullptr) {
        throw std::bad_alloc();
    }
    return records;
}

}  // namespace

void DeviceManagement_ScanV2(PDeviceManagement _this)
{
    const auto records = makeRecords();
    const QRX_U32 count = busDevFunScan(records.get());
    for (QRX_U32 i = 0; i < count && hasRoom(_this); ++i) {
        const BusDevFun& record = records[i];
        char devstr[32];
        std::snprintf(devstr, sizeof(devstr), "%s/%s%d", kDeviceDirectory, kDevicePrefix.data(),
                      static_cast<int>(record.id));
        const int fd = openDevice(_this, devstr);
        if (fd < 0) {
            std::printf("  [%s]: open fail, errno=%d, %s\n", devstr, errno, std::strerror(errno));
            continue;
        }
        PDevice device = enroll(_this, fd);
        if (device == nullptr) {
            continue;
        }
        PDevice slot = _this->m_devs[_this->m_count];
        if (GetBDFfromSimpleAdapterInfo(device, slot->bus_dev_fun) != 0) {
            std::memcpy(device->bus_dev_fun, record.bus_dev_fun, kLocationSize);
            std::memcpy(slot->bus_dev_fun, record.bus_dev_fun, kLocationSize);
        }
        putText(slot->device_path, sizeof(slot->device_path), devstr);
        get_SMBIOS_slot_ID(slot->bus_dev_fun, &slot->slot_id);
        get_identify_subnqn_gen(device, slot->subnqn);
        ++_this->m_count;
    }
    if (_this->m_count != 0) {
        sorting(_this->m_devs, _this->m_count);
    }
}

void DeviceManagement_Scan(PDeviceManagement _this)
{
    const std::unique_ptr<DIR, CloseDirectory> directory(opendir(kDeviceDirectory));
    if (directory == nullptr) {
        return;
    }
    while (const dirent* entry = readdir(directory.get())) {
        const std::string_view name(entry->d_name);
        const std::string_view behind = name.substr(std::min(name.size(), kDevicePrefix.size()));
        if (name.find(kDevicePrefix) == std::string_view::npos || !std::all_of(behind.begin(), behind.end(), isDigit)) {
            continue;
        }
        if (!hasRoom(_this)) {
            return;
        }
        const int fd = openDevice(_this, (std::string(kDeviceDirectory) + '/' + entry->d_name).c_str());
        if (fd < 0) {
            return;
        }
        if (enroll(_this, fd) != nullptr) {
            ++_this->m_count;
        }
    }
}

QRX_U32 busDevFunScan(PBusDevFun pBusDevFun)
{
    const std::unique_ptr<FILE, ClosePipe> pipe(popen(kScanCommand, "r"));
    if (pipe == nullptr) {
        if (errno == ENOMEM) {
            throw std::bad_alloc();
        }
        return 0;
    }
    char buf[4096];
    QRX_U32 count = 0;
    bool at_line_start = true;
    while (std::fgets(buf, sizeof(buf), pipe.get()) != nullptr) {
        const bool starts_line = std::exchange(at_line_start, std::strchr(buf, '\n') != nullptr);
        if (!starts_line) {
            continue;  // the rest of a line that is longer than the buffer
        }
        if (count < kMaxScanLines) {
            parseBusDevFun(&pBusDevFun[count], buf);
        } else if (count == kMaxScanLines) {
            std::fprintf(stderr, "More lines of NVMe Controllers than the %zu that can be scanned.\n", kMaxScanLines);
        }
        ++count;
    }
    return std::min(count, QRX_U32{kMaxScanLines});
}

void parseBusDevFun(PBusDevFun pBusDevFun, const char* line)
{
    const std::string_view text(line);
    const std::size_t mark = text.find(kTreeMark);
    if (mark == std::string_view::npos) {
        return;
    }
    // The location is one word: leading blanks are skipped, and the next one ends it.
    std::string_view location = text.substr(0, mark);
    constexpr std::string_view kBlanks = " \t\n\v\f\r";
    location.remove_prefix(std::min(location.find_first_not_of(kBlanks), location.size()));
    location = location.substr(0, location.find_first_of(kBlanks));
    if (!location.empty()) {
        putText(pBusDevFun->bus_dev_fun, kLocationSize, location);
    }
    pBusDevFun->id = leadingNumber(text.substr(std::min(mark + kNumberMark.size(), text.size())));
}

QRX_U8 DeviceManagement_identify(PDevice handle)
{
    const auto ctrl = qrx::identifyController(handle);
    if (!ctrl) {
        return 0;
    }
    if (gVIDFormCLI != 0) {
        return ctrl->vid == gVIDFormCLI ? 1 : 0;
    }
    return ctrl->vid == kControllerVendorId && DeviceManagement_DeviceID(handle) != 0 ? 1 : 0;
}

QRX_U8 DeviceManagement_DeviceID(PDevice handle)
{
    const AdapterAnswer answer = readAdapter(handle);
    return answer.info && answer.info->DID == kControllerDeviceId ? 1 : 0;
}

QRX_U32 GetBDFfromSimpleAdapterInfo(PDevice handle, char* bdf)
{
    const AdapterAnswer answer = readAdapter(handle);
    if (answer.info) {
        const NVME_Adapter_Info& info = *answer.info;
        // A function of 8 and more is a routing number: device and function in one.
        const bool routing = info.FunctionNumber >= 8;
        const unsigned device = routing ? info.FunctionNumber >> 3U : info.DeviceNumber;
        const unsigned function = info.FunctionNumber & 7U;
        std::snprintf(bdf, kLocationSize, "%02x:%02x.%02x", info.BusNumber, device, function);
    }
    return answer.status;
}

void get_identify_subnqn_gen(PDevice handle, char* subnqn)
{
    std::fill_n(subnqn, kSubnqnSize, '\0');
    if (const auto ctrl = qrx::identifyController(handle)) {
        putPadded(subnqn, ctrl->subnqn, kSubnqnSize);
    }
}

void sorting(PDevice* m_devs, QRX_U16 arrayLen)
{
    const auto number = [](PDevice device) { return qrx::deviceNumber(device->device_path).value_or(0); };
    for (std::size_t i = 0; i < arrayLen; ++i) {
        for (std::size_t j = i; j < arrayLen; ++j) {
            if (number(m_devs[j]) < number(m_devs[i])) {
                std::swap(m_devs[i], m_devs[j]);
            }
        }
    }
}

QRX_U8 IsSupportVenderCmd(PDevice handle)
{
    return readAdapter(handle).info ? 1 : 0;
}

void get_identify_subnqn(PDevice handle, char* subnqn)
{
    constexpr std::size_t kNameSize = 60;
    constexpr std::size_t kNumberSize = 32;
    static_assert(offsetof(nvme_id_ctrl, subnqn) + kNameSize == 828);
    std::fill_n(subnqn, kNameSize + kNumberSize, '\0');
    if (const auto ctrl = qrx::identifyController(handle)) {
        putPadded(subnqn, ctrl->subnqn, kNameSize);
        QRX_U32 number = 0;
        std::memcpy(&number, ctrl->subnqn + kNameSize, sizeof(number));
        std::snprintf(subnqn + kNameSize, kNumberSize, "%u", number);
    }
}
