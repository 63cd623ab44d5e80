// Fuzzes what `event` makes of a controller's event ring: 16 pages that may hold anything.
//
// The input is the number of events wanted and a byte of switches, then the text of the ring: it is dealt out page by
// page, and begins anew at its end, so that a short input fills the ring too.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

#include "api/src/interface/wire/command.h"
#include "cli/Functions/simple/simple_event.h"
#include "tests/fuzz/stage.h"

namespace {

std::span<const std::uint8_t> text;
std::size_t at = 0;
bool repeats = false;
unsigned failing = 0;  // pages that fail: a bit for each of the first 4

// Bits of the switches; the upper four are `failing`.
enum : std::uint8_t { kRepeats = 1, kDebug = 2 };

QRX_U32 answer(const QRX_U32 offset, std::span<QRX_U8> page)
{
    if (offset / page.size() < 4 && (failing >> offset / page.size() & 1U) != 0) {
        return 0x704;
    }
    for (std::size_t i = kEventTextOffset; i < page.size() && (at < text.size() || repeats); ++i) {
        page[i] = text[at % text.size()];
        ++at;
    }
    return 0;
}

QRX_U32 send(PDevice, void* command, void*, QRX_U16, void* out, QRX_U16 length, QRX_U32*)
{
    _qrx_admin_command_format record;
    std::memcpy(&record, command, sizeof(record));
    return answer(record.CDW[13], {static_cast<QRX_U8*>(out), length});
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static Device device = qrx::fuzz::makeDevice(send);
    if (size < 3) {
        return 0;
    }
    text = {data + 2, size - 2};
    at = 0;
    repeats = (data[1] & kRepeats) != 0;
    failing = data[1] >> 4U;
    qrx::fuzz::begin(device);
    dbg_enable = (data[1] & kDebug) != 0;
    (void)getPageEventSA(data[0]);
    return 0;
}
