// The OEM record of the current controller: reading and judging it, and what hangs on it.
#pragma once

#include "api/src/interface/wire/buffer.h"
#include "api/src/interface/wire/oem.h"
#include "api/src/interface/wire/types.h"

// What getoemdata found.
inline constexpr int kOemBad = 1;  // the read failed, or signature or checksum are wrong
inline constexpr int kOemValid = 2;
inline constexpr int kOemNone = 3;  // data_length is outside 1 to 4096

// The sum modulo 2^32 of the len / 4 32-bit words from `data` on, or, for a `check` of 0, what makes it 0.
QRX_U32 __checksumResult(const void* data, QRX_U32 len, QRX_U8 check);

// Reads the record, and what lies behind it, into the 4096 bytes of `data`; its zerochksum is 0 there afterwards.
// Returns one of the above. With `print_info` it tells what it found, on standard output, and prints the status text
// of a failed read; without, a failure is silent.
int getoemdata(char print_info, void* data);

// The subsystem ids as the controller reports them now. Returns the device's status, without its text; both stay as
// they are unless it is 0.
int QRX_Adapter_GetSimpleInfo_SVID_SDID(QRX_U16* SVID, QRX_U16* SDID);

// Reads the SUBNQN of the current controller anew: its first 60 characters, and the byte behind them as a number.
void reinit_API_Layrer_SUBNQN();

namespace qrx {

// CDW10 of a transfer of a page: dwords less 1.
inline constexpr QRX_U32 kOemWholePage = wire::kPageSize / 4 - 1;
inline constexpr QRX_U8 kSubReadOem = 0x04;
inline constexpr QRX_U8 kSubWriteOem = 0x13;

}  // namespace qrx
