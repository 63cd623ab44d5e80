// Fuzzes what `info` makes of a controller's answers: every page, of a controller that answers whatever it likes.
//
// The input is the controller's speech: for each command a byte that says how it ends, then bytes of data.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <span>

#include "api/src/device/common/DeviceManagement.h"
#include "api/src/interface/globals.h"
#include "api/src/interface/wire/adapter.h"
#include "api/src/interface/wire/envelope.h"
#include "cli/Public/common.h"
#include "cli/qxsetup/command_table.h"

namespace {

std::span<const std::uint8_t> speech;

std::uint8_t nextByte()
{
    if (speech.empty()) {
        return 0;
    }
    const std::uint8_t byte = speech.front();
    speech = speech.subspan(1);
    return byte;
}

// Bits of the byte that says how a command ends.
enum : std::uint8_t { kFails = 1, kSigns = 2, kShort = 4 };

QRX_U32 answer(void* out_data, QRX_U16 out_data_length)
{
    const std::uint8_t how = nextByte();
    auto* out = static_cast<QRX_U8*>(out_data);
    if (out != nullptr && (how & kFails) == 0) {
        std::size_t length = std::min<std::size_t>(out_data_length, speech.size());
        if ((how & kShort) != 0) {
            length = std::min<std::size_t>(length, nextByte());
            length = std::min(length, speech.size());
        }
        std::copy_n(speech.begin(), length, out);
        speech = speech.subspan(length);
        if ((how & kSigns) != 0 && out_data_length >= kReceiveDataOffset) {
            std::copy(std::begin(kFrameSign), std::end(kFrameSign), out);
            out[4] = 0;
        }
    }
    return (how & kFails) != 0 ? nextByte() * 0x10001U : 0;
}

Device fuzzedDevice()
{
    Device device{};
    device.sendCommand = [](PDevice, QRX_U8, QRX_U32, QRX_U32*, QRX_U8, void*, QRX_U16, void* out, QRX_U16 length) {
        return answer(out, length);
    };
    device.sendNVM = device.sendCommand;
    device.sendPassthruAdmin = [](PDevice, void*, void*, QRX_U16, void* out, QRX_U16 length, QRX_U32*) {
        return answer(out, length);
    };
    device.closeHandle = [](PDevice) {};
    device.getNVMEDevice = [](PDevice self) { return self; };
    std::strcpy(device.bus_dev_fun, "03:00.00");
    std::strcpy(device.device_path, "/dev/nvme0");
    return device;
}

void run(std::initializer_list<const char*> words)
{
    std::array<std::array<char, 16>, 8> storage{};
    std::array<char*, 9> argv{};
    std::size_t count = 0;
    for (const char* word : words) {
        std::strncpy(storage[count].data(), word, storage[count].size() - 1);
        argv[count] = storage[count].data();
        ++count;
    }
    cmdDispatcher(static_cast<int>(count), argv.data());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static Device device = fuzzedDevice();
    static FILE* const nowhere = std::fopen("/dev/null", "w");
    static const bool quiet = std::freopen("/dev/null", "w", stdout) != nullptr;
    if (!quiet || nowhere == nullptr || size < 2 + sizeof(NVME_Adapter_Info)) {
        return 0;
    }
    speech = {data, size};

    const PDeviceManagement table = GetDeviceManagementInstance();
    const std::uint8_t page = nextByte();
    table->m_devs[0] = &device;
    table->m_count = 1;
    pCmdTable = generalCmdTableV1;
    cmdTableSize = static_cast<QRX_U16>(generalCmdTableV1Size());
    stream = nowhere;
    dbg_enable = (page & 0x80) != 0;
    gNumAdaptersFound = 1;
    gCurrentAdapter = 0;
    gSpecificAdapterFlag = (page & 0x40) != 0;

    NVME_Adapter_Info info;  // as start-up read it
    std::memcpy(&info, speech.data(), sizeof(info));
    speech = speech.subspan(sizeof(info));
    g_pAdInfos = &info;

    switch (page & 7) {
    case 0:
        run({"info", "-o", "hba", "--all"});
        break;
    case 1:
        run({"info", "-o", "pd"});
        break;
    case 2:
        run({"info", "-o", "vd"});
        break;
    case 3:
        run({"info", "-o", "ns"});
        break;
    case 4:
        run({"info", "-o", "ns", "-t", "vd", "-v", "0"});
        break;
    case 5:
        run({"info", "-o", "pd", "-i", "1"});
        break;
    case 6:
        run({"info", "-o", "vd", "-i", "1"});
        break;
    default:
        run({"info", "-o", "ns", "-i", "1"});
        break;
    }
    g_pAdInfos = nullptr;
    return 0;
}
