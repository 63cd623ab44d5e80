// The null device, which fills every free slot of the device table: each operation does nothing and returns 1.
#pragma once

#include "api/src/device/common/Device.h"

// The one instance, never freed.
PDevice CreateDefaultDeviceInstance();
