// The words for the failure codes of the firmware.
#pragma once

#include "api/src/interface/wire/types.h"

// The text of a response's cmd_status.
const char* ErrorMessage(QRX_U8 errorCode);
