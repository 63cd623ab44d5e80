// The words of the commands to drives, power pins and LEDs.
#pragma once

#include <cstddef>

#include "api/src/interface/wire/types.h"

// CDW14 of a reset.
struct _NVME_AP_Reset {
    QRX_U16 id;     // of a drive, or of a power pin
    QRX_U8 type;    // 0 drive, 1 power pin, 2 PERST#
    QRX_U8 action;  // 0 cycle, 1 on, 2 off
};
using NVME_AP_Reset = _NVME_AP_Reset;
static_assert(sizeof(_NVME_AP_Reset) == 4);
static_assert(offsetof(_NVME_AP_Reset, type) == 2);
static_assert(offsetof(_NVME_AP_Reset, action) == 3);

// CDW14 and CDW15 of an LED's state.
struct _NVME_AP_LED {
    QRX_U16 id;     // of the drive or port that it belongs to
    QRX_U8 status;  // 0 off, 1 on, 2 slow blink, 3 quick blink
    QRX_U8 reserved[5];
};
using NVME_AP_LED = _NVME_AP_LED;
static_assert(sizeof(_NVME_AP_LED) == 8);
static_assert(offsetof(_NVME_AP_LED, status) == 2);
