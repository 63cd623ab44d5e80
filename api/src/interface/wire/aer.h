// The Advanced Error Reporting capability of a drive, register by register as the PCI Express standard lays it out.
#pragma once

#include <cstddef>

#include "api/src/interface/wire/types.h"

// It stands behind the envelope.
struct _AER_Data {
    QRX_U32 AERID;      // bits 15 to 0 the capability's id, 19 to 16 its version, 31 to 20 where the next one lies
    QRX_U32 AERUCES;    // uncorrectable errors: those that have been seen
    QRX_U32 AERUCEM;    // those that are masked
    QRX_U32 AERUCESEV;  // those that are fatal
    QRX_U32 AERCS;      // correctable errors: those that have been seen
    QRX_U32 AERCEM;     // those that are masked
    QRX_U32 AERCC;      // bits 4 to 0 the uncorrectable error that came first; ECRC; what the logs hold
    QRX_U8 AERHL[16];   // header of the packet with the first error; each four bytes in reverse
    QRX_U8 AERTLP[16];  // the prefixes of that packet, likewise
};
using AER_Data = _AER_Data;
static_assert(sizeof(_AER_Data) == 60);
static_assert(offsetof(_AER_Data, AERUCES) == 4);
static_assert(offsetof(_AER_Data, AERUCEM) == 8);
static_assert(offsetof(_AER_Data, AERUCESEV) == 12);
static_assert(offsetof(_AER_Data, AERCS) == 16);
static_assert(offsetof(_AER_Data, AERCEM) == 20);
static_assert(offsetof(_AER_Data, AERCC) == 24);
static_assert(offsetof(_AER_Data, AERHL) == 28);
static_assert(offsetof(_AER_Data, AERTLP) == 44);
