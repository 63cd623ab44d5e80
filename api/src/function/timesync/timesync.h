// Sets the clocks of the controllers to the host's.
#pragma once

#include "api/src/interface/wire/types.h"

// Seconds since the epoch, UTC. The time is that of a 32-bit signed clock, sign-extended.
QRX_U64 qrx_get_utc_now();

// Sends the present time to the controller at table index `adapter_id`. A refusal is nobody's concern.
void TimeSyncFunction(QRX_U16 adapter_id);
