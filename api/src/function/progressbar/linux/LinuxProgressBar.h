// The worker thread of a progress record.
#pragma once

#include "api/src/function/progressbar/common/ProgressBar.h"

void QRXProgressBar_startThread(PQRXProgressBar _this, QRXThreadFunction func, void* mem, QRX_U32 size);
void QRXProgressBar_closeThread(PQRXProgressBar _this);
