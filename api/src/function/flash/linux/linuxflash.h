// The worker thread of a firmware update.
#pragma once

#include "api/src/function/progressbar/common/ProgressBar.h"

// Carries out a whole update. `argument` is a _QRXFlashData. Whatever happens, the progress record of the controller
// tells the end: a result, and status 0.
void* thread_flash_adapter_nvme(void* argument);

QRXThreadFunction GetAdapterNvmeFlashAdapterFucntion();
