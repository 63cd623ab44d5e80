// The rate limits of a host function.
#pragma once

#include <cstddef>

#include "api/src/interface/wire/types.h"

// 0 and 1 are physical functions, the rest virtual functions 0 to 31.
inline constexpr QRX_U16 kQosHostIdMax = 33;
inline constexpr QRX_U16 kQosIopsMin = 5;  // the smallest limits, but for 0, which lifts a limit
inline constexpr QRX_U16 kQosBandwidthMin = 50;

// It stands at the head of the answer.
struct _QoSTable {
    QRX_U16 IOPS_read;  // thousands; 0: no limit
    QRX_U16 IOPS_write;
    QRX_U16 bandwidth_read;  // Mib; 0: no limit
    QRX_U16 bandwidth_write;
    QRX_U8 control;
    QRX_U8 reserved[3];
};
using QoSTable = _QoSTable;
static_assert(sizeof(_QoSTable) == 12);
static_assert(offsetof(_QoSTable, IOPS_write) == 2);
static_assert(offsetof(_QoSTable, bandwidth_read) == 4);
static_assert(offsetof(_QoSTable, bandwidth_write) == 6);
static_assert(offsetof(_QoSTable, control) == 8);
