// Fuzzes what `log -a show` makes of a controller's answers, on the screen and in a file.
//
// The input is the controller's speech: for each command a byte that says how it ends, then a page of data. When it
// has nothing left to say it answers with zeros, which ends the log.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include "cli/Functions/simple/simple_log.h"
#include "tests/fuzz/stage.h"

namespace {

std::span<const std::uint8_t> speech;

// Bits of the byte that says how a command ends.
enum : std::uint8_t { kFails = 1, kIsOn = 2 };

QRX_U32 answer(std::span<QRX_U8> out)
{
    if (speech.empty()) {
        return 0;
    }
    const std::uint8_t how = speech.front();
    speech = speech.subspan(1);
    if ((how & kFails) != 0) {
        return how;
    }
    if ((how & kIsOn) != 0) {
        constexpr QRX_U8 kOn[] = {'Q', 'R', 'X', 0, 0, 0, 0, 0, 1};
        std::copy(std::begin(kOn), std::end(kOn), out.begin());
        return 0;
    }
    const std::size_t length = std::min(out.size(), speech.size());
    std::copy_n(speech.begin(), length, out.begin());
    speech = speech.subspan(length);
    return 0;
}

QRX_U32 send(PDevice, void*, void*, QRX_U16, void* out, QRX_U16 length, QRX_U32*)
{
    return answer({static_cast<QRX_U8*>(out), length});
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static Device device = qrx::fuzz::makeDevice(send);
    speech = {data, size};
    qrx::fuzz::begin(device);
    char command[] = "log";
    char option[] = "-a";
    char action[] = "show";
    char file[] = "--outputfile=/dev/null";
    char* argv[] = {command, option, action, file, nullptr};
    Command_Info row{"log", 4, doSLog, simple_log_help, "", 1};
    (void)doSLog(4, argv, &row);
    return 0;
}
