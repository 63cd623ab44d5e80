// A controller that answers register accesses from a PHY of its own: for scans that no script could list.
#pragma once

#include <functional>
#include <map>
#include <vector>

#include "api/src/device/common/Device.h"
#include "api/src/interface/wire/types.h"

namespace qrx::test {

// One access, in order.
struct Access {
    bool write = false;
    QRX_U32 offset = 0;  // from the base of the PHY
    QRX_U32 value = 0;   // read or written

    bool operator==(const Access&) const = default;
};

// Stands in slot 0 of the device table over its life. Everything is a plain register, but: EOM_READY follows EOM_EN,
// EOM_SET1_RDY follows EOM_SET1_VLD, and the counters answer for the point that is set.
class FakePhy {
public:
    FakePhy();
    ~FakePhy();
    FakePhy(const FakePhy&) = delete;
    FakePhy& operator=(const FakePhy&) = delete;

    // Errors of one measurement, of the samples.
    std::function<QRX_U32(QRX_U32 phase, QRX_U32 voltage, QRX_U32 sign)> errors;
    QRX_U32 samples = 80000;
    // The status of an access; 0 lets it pass. `count` is the number of accesses before it.
    std::function<QRX_U32(const Access& access, std::size_t count)> status;
    bool ready = true;     // EOM_READY follows EOM_EN
    bool measured = true;  // EOM_SET1_RDY follows EOM_SET1_VLD

    std::map<QRX_U32, QRX_U32> registers;  // by offset
    std::vector<Access> accesses;
    QRX_U8 interface = 0;  // of the last access
    QRX_U32 phase = 0;     // last written, in full

    // The device's side of one command.
    QRX_U32 carryOut(const QRX_U32* words, void* out, QRX_U16 length);

private:
    [[nodiscard]] QRX_U32 read(QRX_U32 offset);
    void write(QRX_U32 offset, QRX_U32 value);
};

}  // namespace qrx::test
