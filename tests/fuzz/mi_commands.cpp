// Fuzzes the commands of the management interface, and the numbers and lists of `gen`: whatever the options, the file
// and the controller's answer hold, a message is what the file and the options make it, and fits into one transfer.
//
// The input: which command, a byte for how the controller answers, offset and length as 32-bit numbers, and then the
// bytes of the file, of the answer, or of the list.
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <span>
#include <string>
#include <vector>

#include "tests/fuzz/stage.h"

namespace {

constexpr std::size_t kPage = 4096;
constexpr std::size_t kRequest = 1040;

enum Command : std::uint8_t { kVpdRead, kVpdWrite, kTwinWrite, kTunnelRead, kGen, kCommands };
// Bits of the byte that says how the controller answers, and what is shown.
enum : std::uint8_t { kSendFails = 1, kReceiveFails = 2, kSaves = 4, kHexadecimal = 8 };

struct Input {
    std::uint8_t command = 0;
    std::uint8_t how = 0;
    std::uint32_t offset = 0;
    std::uint32_t length = 0;
    std::span<const std::uint8_t> bytes;
} input;

// What the controller got.
std::vector<std::uint8_t> message;
bool asked = false;

QRX_U32 answer(QRX_U8 opcode, const QRX_U32* words, const void* in, QRX_U16 in_length, void* out, QRX_U16 out_length)
{
    if (opcode == 29) {
        assert(in_length >= kRequest && in_length <= kPage && out_length == 0);
        assert(words[0] == 0 && words[1] == in_length / 4U - 1);
        message.assign(static_cast<const std::uint8_t*>(in), static_cast<const std::uint8_t*>(in) + in_length);
        return (input.how & kSendFails) != 0 ? 0x4002 : 0;
    }
    assert(opcode == 30 && in_length == 0 && out_length == kPage && !message.empty());
    asked = true;
    std::copy_n(input.bytes.begin(), std::min<std::size_t>(out_length, input.bytes.size()), static_cast<QRX_U8*>(out));
    return (input.how & kReceiveFails) != 0 ? 0x4006 : 0;
}

Device fuzzedDevice()
{
    Device device = qrx::fuzz::makeDevice();
    device.sendCommand = [](PDevice, QRX_U8 opcode, QRX_U32 nsid, QRX_U32* words, QRX_U8, void* in, QRX_U16 in_length,
                            void* out, QRX_U16 out_length) {
        assert(nsid == 0);
        return answer(opcode, words, in, in_length, out, out_length);
    };
    return device;
}

int run(std::vector<std::string> words)
{
    std::vector<char*> argv;
    for (std::string& word : words) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);
    return cmdDispatcher(static_cast<int>(words.size()), argv.data());
}

std::string number(std::uint32_t value)
{
    std::array<char, 16> text{};
    (void)std::snprintf(text.data(), text.size(), (input.how & kHexadecimal) != 0 ? "0x%x" : "%u", value);
    return text.data();
}

// A file with the bytes of the input, by its name in /proc.
class MemoryFile {
public:
    MemoryFile() : fd_(memfd_create("fuzz", 0))
    {
        assert(fd_ >= 0);
        assert(write(fd_, input.bytes.data(), input.bytes.size()) == static_cast<ssize_t>(input.bytes.size()));
    }
    ~MemoryFile() { close(fd_); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    [[nodiscard]] std::string name() const { return "/proc/self/fd/" + std::to_string(fd_); }

private:
    int fd_;
};

void writeVpd(const char* word)
{
    const MemoryFile content;
    run({word, "-o", number(input.offset), "-l", number(input.length), "-f", content.name()});
    if (message.empty()) {
        return;
    }
    assert(!asked && message.size() == kRequest + input.bytes.size() && message[4] == 6);
    std::uint32_t length = 0;
    std::memcpy(&length, &message[12], sizeof(length));
    assert(16 + length <= message.size());
    for (std::size_t i = 0; i < message.size() - 16; ++i) {
        assert(message[16 + i] == (i < length && i < input.bytes.size() ? input.bytes[i] : 0));
    }
}

void readVpd(const char* word, std::vector<std::string> more)
{
    std::vector<std::string> words{word, "-o", number(input.offset), "-l", number(input.length)};
    words.insert(words.end(), more.begin(), more.end());
    if ((input.how & kSaves) != 0) {
        words.insert(words.end(), {"-f", "/dev/null"});
    }
    run(words);
    assert(message.empty() || asked == ((input.how & kSendFails) == 0));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static Device device = fuzzedDevice();
    if (size < 10) {
        return 0;
    }
    input.command = data[0] % kCommands;
    input.how = data[1];
    std::memcpy(&input.offset, data + 2, 4);
    std::memcpy(&input.length, data + 6, 4);
    input.bytes = std::span(data, size).subspan(10);
    message.clear();
    asked = false;
    qrx::fuzz::begin(device);

    const std::string text(input.bytes.begin(), std::find(input.bytes.begin(), input.bytes.end(), 0));
    switch (input.command) {
    case kVpdRead:
        readVpd("vpdread", {});
        break;
    case kVpdWrite:
        writeVpd("vpdwrite");
        break;
    case kTwinWrite:
        writeVpd("mi_passthruwrite");
        break;
    case kTunnelRead:
        readVpd("mi_passthruread", {"-i", number(input.offset)});
        break;
    default:
        // Without a type it stops before it makes its file.
        run({"gen", "--list=" + text, "--nsze", number(input.offset), "--flbas", text});
        assert(message.empty());
        break;
    }
    return 0;
}
