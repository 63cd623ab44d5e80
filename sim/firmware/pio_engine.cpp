#include "sim/firmware/pio_engine.h"

namespace qrx::sim {

namespace {

// pio_status of each answer.
QRX_U32 status_of(QRX_U8 answer)
{
    switch (answer) {
    case ConfigSpace::kUnsupported:
        return kPioUnsupported << 28;
    case ConfigSpace::kRetry:
        return kPioRetry << 28;
    case ConfigSpace::kAbort:
        return kPioAbort << 28;
    case ConfigSpace::kTimeout:
        return kPioTimeout;
    default:
        return kPioSuccess << 28;
    }
}

}  // namespace

QRX_U8 PioEngine::ask(QRX_U32 link, const ConfigSpace* behind) const
{
    constexpr QRX_U32 kFunction = 0xFFFF0000;
    const QRX_U32 control = read(kPioCtrl);
    if (control >> 24 != kPioFirstLink + link || (control & 0xF) != kPioConfigRead) {
        return ConfigSpace::kTimeout;
    }
    if (behind == nullptr || (read(kPioAddr) & kFunction) != kPioBus1 || read(kPioAddrHigh) != 0) {
        return ConfigSpace::kUnsupported;
    }
    return behind->answer;
}

void PioEngine::write(QRX_U32 address, QRX_U32 value, QRX_U32 link, const ConfigSpace* behind)
{
    const auto reg = [this](QRX_U32 at) -> QRX_U32& { return registers[index(at)]; };
    switch (address) {
    case kPioIsr:
        reg(kPioIsr) &= ~value;
        return;
    case kPioStatus:
    case kPioReadData:
        return;  // tell how the last access ended
    case kPioStart:
        break;
    default:
        reg(address) = value;
        return;
    }
    const QRX_U8 answer = value == 1 ? ask(link, behind) : QRX_U8{ConfigSpace::kNone};
    if (answer == ConfigSpace::kNone) {
        return;
    }
    reg(kPioStatus) = status_of(answer);
    reg(kPioReadData) = answer == ConfigSpace::kData ? behind->dword(read(kPioAddr) & kPioOffsetMask) : 0xFFFFFFFF;
    reg(kPioIsr) = 1;
}

}  // namespace qrx::sim
