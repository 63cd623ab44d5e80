#include "tests/unit/cli/fake_phy.h"

#include <gtest/gtest.h>

#include <cstring>

#include "api/src/device/common/DeviceManagement.h"
#include "api/src/device/common/PairCMDDevice.h"
#include "api/src/interface/wire/pcie_phy.h"

namespace qrx::test {

namespace {

constexpr QRX_U32 kCircuit = 0x09C;
constexpr QRX_U32 kCtrl0 = 0x0A0;
constexpr QRX_U32 kCtrl1 = 0x0A4;
constexpr QRX_U32 kSamplesHigh = 0x0D0;
constexpr QRX_U32 kSamplesLow = 0x0D4;
constexpr QRX_U32 kErrorsHigh = 0x0E0;
constexpr QRX_U32 kErrorsLow = 0x0E4;
constexpr QRX_U32 kReady = 1U << 13;
constexpr QRX_U32 kEnable = 1U << 15;

FakePhy* current = nullptr;

QRX_U32 sendPassthru(PDevice /*_this*/, void* pCmd, void* /*in*/, QRX_U16 in_length, void* out, QRX_U16 length,
                     QRX_U32* /*params*/)
{
    EXPECT_EQ(in_length, 0);
    QRX_U32 words[18];
    std::memcpy(words, pCmd, sizeof(words));
    return current->carryOut(words, out, length);
}

}  // namespace

FakePhy::FakePhy()
{
    current = this;
    PDeviceManagement table = GetDeviceManagementInstance();
    table->Final(table);
    auto* device = new _Device{};
    device->sendPassthruAdmin = sendPassthru;
    device->closeHandle = [](PDevice mine) { delete mine; };
    device->getNVMEDevice = [](PDevice mine) { return mine; };
    table->m_devs[0] = CreatePairCMDDeviceInstance(device);
    table->m_count = 1;
}

FakePhy::~FakePhy()
{
    PDeviceManagement table = GetDeviceManagementInstance();
    table->Final(table);
    current = nullptr;
}

QRX_U32 FakePhy::carryOut(const QRX_U32* words, void* out, QRX_U16 length)
{
    EXPECT_EQ(words[0], 226U);
    const QRX_U32 kind = words[12] & 0xFFFF;
    EXPECT_TRUE(kind == 0x09E0 || kind == 0x0AE0) << kind;
    Access access{kind == 0x0AE0, words[13] - kPciePhyBase, words[14]};
    EXPECT_LT(access.offset, sizeof(PciePhy_t));
    EXPECT_EQ(length, access.write ? 0 : 4);
    interface = static_cast<QRX_U8>(words[12] >> 16);
    const QRX_U32 result = status ? status(access, accesses.size()) : 0;
    if (result == 0 && access.write) {
        write(access.offset, access.value);
    } else if (result == 0) {
        access.value = read(access.offset);
        std::memcpy(out, &access.value, sizeof(access.value));
    }
    accesses.push_back(access);
    return result;
}

QRX_U32 FakePhy::read(QRX_U32 offset)
{
    const QRX_U32 ctrl0 = registers[kCtrl0];
    const auto wrong = [&] { return errors ? errors(phase, ctrl0 & 0x3F, ctrl0 >> 6 & 3) : 0; };
    switch (offset) {
    case kCircuit:
        return registers[offset] | ((registers[offset] & kEnable) != 0 && ready ? kReady : 0);
    case kCtrl1:
        return (phase & 0x7F) | ((ctrl0 & kReady) != 0 && measured ? kEnable : 0);
    case kSamplesHigh:
        return samples >> 16;
    case kSamplesLow:
        return samples & 0xFFFF;
    case kErrorsHigh:
        return wrong() >> 16;
    case kErrorsLow:
        return wrong() & 0xFFFF;
    default:
        return registers[offset];
    }
}

void FakePhy::write(QRX_U32 offset, QRX_U32 value)
{
    registers[offset] = offset == kCircuit ? value & ~kReady : value;
    if (offset == kCtrl1) {
        phase = value & 0xFFF;
    }
}

}  // namespace qrx::test
