#include "tests/fuzz/controller.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cassert>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "api/src/device/common/AdapterRecord.h"
#include "api/src/interface/wire/envelope.h"
#include "cli/Functions/simple/eom_scan.h"
#include "tests/fuzz/stage.h"

namespace qrx::fuzz {

void limitPorts(std::uint8_t& ports)
{
    ports &= 1U;
}

namespace {

Answer answer;
std::span<const std::uint8_t> content;
std::atomic<bool> sealed = false;  // a world lives

QRX_U32 reply(void* out, QRX_U32 length)
{
    return out == nullptr ? answer({}) : answer({static_cast<std::uint8_t*>(out), length});
}

Device device()
{
    Device made = makeDevice();
    made.sendCommand = [](PDevice, QRX_U8, QRX_U32, QRX_U32*, QRX_U8, void*, QRX_U16, void* out, QRX_U16 length) {
        return reply(out, length);
    };
    made.sendNVM = [](PDevice, QRX_U8, QRX_U32, QRX_U32*, QRX_U8, void*, QRX_U32, void* out, QRX_U32 length) {
        return reply(out, length);
    };
    made.sendPassthruAdmin = [](PDevice, void* record, void*, QRX_U16, void* out, QRX_U16 length, QRX_U32* result) {
        if (result != nullptr) {
            *result = 0x51525801;
        }
        const QRX_U32 status = reply(out, length);
        _qrx_admin_command_format command;
        std::memcpy(&command, record, sizeof(command));
        if (out != nullptr && length >= wire::kPageSize && command.CDW[12] == readAdapterCommand().CDW[12]) {
            limitPorts(static_cast<std::uint8_t*>(out)[kReceiveDataOffset + offsetof(NVME_Adapter_Info, PortCount)]);
        }
        return status;
    };
    return made;
}

}  // namespace

std::uint8_t Speech::next()
{
    const std::span<const std::uint8_t> byte = next(1);
    return byte.empty() ? std::uint8_t{0} : byte.front();
}

std::span<const std::uint8_t> Speech::next(std::size_t most)
{
    const std::span<const std::uint8_t> taken = left_.first(std::min(most, left_.size()));
    left_ = left_.subspan(taken.size());
    return taken;
}

std::size_t goRound(std::span<std::uint8_t> out, std::span<const std::uint8_t> told, std::size_t at)
{
    if (out.empty() || told.empty()) {
        std::fill(out.begin(), out.end(), std::uint8_t{0});
        return at;
    }
    const std::size_t first = std::min(told.size() - at, out.size());
    std::memcpy(out.data(), told.data() + at, first);
    std::size_t done = std::min(told.size(), out.size());
    if (done > first) {
        std::memcpy(out.data() + first, told.data(), done - first);
    }
    while (done < out.size()) {  // whole rounds, twice as many each time
        const std::size_t piece = std::min(done, out.size() - done);
        std::memcpy(out.data() + done, out.data(), piece);
        done += piece;
    }
    return (at + out.size()) % told.size();
}

Answer spoken(Speech& speech)
{
    return [&speech](std::span<std::uint8_t> out) -> std::uint32_t {
        const std::uint8_t how = speech.next();
        if ((how & kFails) != 0) {
            const unsigned low = speech.next();
            const unsigned high = speech.next();
            return (how & kSigns) != 0 ? ~0U : low | (high & 0x7FU) << 8U;
        }
        const std::span<const std::uint8_t> told =
            speech.next(std::size_t{speech.next()} * ((how & kPages) != 0 ? 64 : 8));
        const std::size_t most = (how & kShort) != 0 ? std::min(told.size(), out.size()) : out.size();
        goRound(out.first(most), told, 0);
        if ((how & kSigns) != 0 && out.size() >= kReceiveDataOffset) {
            std::copy(std::begin(kFrameSign), std::end(kFrameSign), out.begin());
            out[offsetof(NVMEReceiveData, cmd_status)] = 0;
        }
        return 0;
    };
}

namespace {

Device& freshDevice()
{
    static Device plugged;
    plugged = device();
    return plugged;
}

}  // namespace

void plugIn()
{
    plugIn(freshDevice());
}

World::World(Answer answers, std::span<const std::uint8_t> file)
{
    answer = std::move(answers);
    content = file;
    begin(freshDevice());
    eom::patience = {3, std::chrono::milliseconds(0), 3};
    sealed = true;
}

World::~World()
{
    sealed = false;
    GetDeviceManagementInstance()->m_count = 0;
    stream = stdout;
}

int World::run(const char* line)
{
    std::string text = line;
    std::array<char*, kMaxWords> words{};
    int count = 0;
    return parse(&count, words.data(), text.data()) == 1 && count != 0 ? cmdDispatcher(count, words.data()) : 0;
}

}  // namespace qrx::fuzz

// The linker sends the calls of the program here (--wrap).
extern "C" {

FILE* __real_fopen(const char* path, const char* mode);
int __real_open(const char* path, int flags, ...);
FILE* __real_popen(const char* command, const char* mode);
int __real_usleep(useconds_t time);
int __real_nanosleep(const timespec* time, timespec* left);

int qrx_fuzz_file()
{
    const int file = ::memfd_create("file", MFD_CLOEXEC);
    assert(file >= 0);
    const auto written = ::write(file, qrx::fuzz::content.data(), qrx::fuzz::content.size());
    assert(written == static_cast<ssize_t>(qrx::fuzz::content.size()));
    (void)::lseek(file, 0, SEEK_SET);
    return file;
}

FILE* __wrap_fopen(const char* path, const char* mode)
{
    if (!qrx::fuzz::sealed) {
        return __real_fopen(path, mode);
    }
    return mode[0] == 'r' ? ::fdopen(qrx_fuzz_file(), mode) : __real_fopen("/dev/null", mode);
}

int __wrap_open(const char* path, int flags, ...)
{
    if (!qrx::fuzz::sealed) {
        va_list more;
        va_start(more, flags);
        const auto permissions = va_arg(more, mode_t);
        va_end(more);
        return __real_open(path, flags, permissions);
    }
    return (flags & O_ACCMODE) == O_RDONLY ? qrx_fuzz_file() : __real_open("/dev/null", flags & ~O_CREAT);
}

FILE* __wrap_popen(const char* command, const char* mode)
{
    return qrx::fuzz::sealed ? nullptr : __real_popen(command, mode);
}

int __wrap_usleep(useconds_t time)
{
    return qrx::fuzz::sealed ? ::sched_yield() : __real_usleep(time);
}

int __wrap_nanosleep(const timespec* time, timespec* left)
{
    return qrx::fuzz::sealed ? ::sched_yield() : __real_nanosleep(time, left);
}
}
