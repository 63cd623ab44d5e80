// The registers of the eye opening monitor of interface `id`, by their offset in the PHY.
#pragma once

#include <cstddef>

#include "api/src/interface/wire/pcie_phy.h"
#include "cli/Functions/simple/eom_scan.h"
#include "cli/Functions/simple/simple_pcie.h"

namespace qrx::eom {

inline constexpr QRX_U32 kCtrl0 = offsetof(PciePhy_t, eomSet1Ctrl0);
inline constexpr QRX_U32 kCtrl1 = offsetof(PciePhy_t, eomSet1Ctrl1);
inline constexpr QRX_U32 kPhaseMask = 0x7F;  // of kCtrl1

inline QRX_U32 get(QRX_U32 offset)
{
    return read_reg(id, g_base_addr + offset);
}

inline void set(QRX_U32 offset, QRX_U32 value)
{
    (void)write_reg(id, g_base_addr + offset, value);
}

// Reads a register, lets `change` have its fields, and writes it back.
template <class Register, class Change>
void modify(QRX_U32 offset, Change change)
{
    Register value{.all = get(offset)};
    change(value);
    set(offset, value.all);
}

inline void setVoltage(QRX_U32 nVoltage)
{
    modify<EomSet1Ctrl0_t>(kCtrl0, [nVoltage](auto& reg) { reg.b.EOM_SET1_VOLTAGE = nVoltage & 0x3FU; });
}

}  // namespace qrx::eom
