// Fuzzes what `pcie` and `eom` make of the registers of a controller that answers whatever it likes.
//
// The input: the command, then for each access a byte that says how it ends and, for a read that succeeds, its four
// bytes. What is not there any more is 0.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "api/src/interface/wire/pcie_phy.h"
#include "cli/Functions/simple/eom_scan.h"
#include "cli/Functions/simple/simple_pcie.h"
#include "tests/fuzz/stage.h"

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

QRX_U32 answer(void* out, QRX_U16 length)
{
    const std::uint8_t how = nextByte();
    if ((how & 0x80) != 0) {
        return how;
    }
    for (QRX_U16 i = 0; i < length; ++i) {
        static_cast<QRX_U8*>(out)[i] = nextByte();
    }
    return 0;
}

QRX_U32 send(PDevice, void*, void*, QRX_U16, void* out, QRX_U16 length, QRX_U32*)
{
    return answer(out, length);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static Device device = qrx::fuzz::makeDevice(send);
    if (size == 0) {
        return 0;
    }
    speech = {data, size};
    const std::uint8_t which = nextByte();
    qrx::fuzz::begin(device);
    dbg_enable = (which & 0x80) != 0;
    if ((which & 1) == 0) {
        mtl_backend_PCIe_checking(which >> 1 & 3U);
        return 0;
    }
    // A scan of a few points; a bit that does not follow is given up soon.
    id = which >> 1 & 3;
    g_base_addr = kPciePhyBase;
    nCurrentPhase = 0;
    voltage_skip = 30;
    eom_window = 4;
    eom_search_range = 64;
    min_width = 8;
    no_plot_loop = which >> 3 & 3U;
    qrx::eom::patience = {3, std::chrono::milliseconds(0), 3};
    GetEOM();
    return 0;
}
