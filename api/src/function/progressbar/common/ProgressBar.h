// How far a long work on one controller is: written by the thread that does it, polled by another.
#pragma once

#include <pthread.h>

#include <atomic>

#include "api/src/interface/wire/types.h"

struct _QRXProgressBar;
using QRXProgressBar = _QRXProgressBar;
using PQRXProgressBar = _QRXProgressBar*;
using QRXThreadFunction = void* (*)(void*);

struct _QRXProgressBar {
    std::atomic<QRX_U8> m_percentage;  // 0 to 100
    std::atomic<QRX_U32> m_result;     // 0, or the failure or status of the last step
    std::atomic<QRX_U32> m_status;     // 1 while the worker runs, else 0; written last, so that the result stands
    QRXThreadFunction m_function;      // not set
    pthread_t m_thread_handle;         // the worker

    // Sets percentage 0, result 0 and status 1, and runs `func(mem)` as the worker. An earlier worker is waited for.
    // Without a thread to be had the result is 1 and the status 0. `size` has no effect.
    void (*startThread)(PQRXProgressBar _this, QRXThreadFunction func, void* mem, QRX_U32 size);
    void (*setPercentage)(PQRXProgressBar _this, QRX_U8 percentage);
    void (*setResult)(PQRXProgressBar _this, QRX_U32 result);
    QRX_U8 (*getPercentage)(PQRXProgressBar _this);
    QRX_U32 (*getResult)(PQRXProgressBar _this);
    QRX_U32 (*getStatus)(PQRXProgressBar _this);
    // Sets status 0. The worker calls it on itself as its last word; from any other thread it waits for the worker.
    void (*closeThread)(PQRXProgressBar _this);
    void (*destructor)(PQRXProgressBar _this);  // waits for the worker and frees the record

    // Of the running worker, see LinuxProgressBar.
    QRXThreadFunction m_start;
    void* m_argument;
    bool m_joinable;  // m_thread_handle has not been waited for; not touched by the worker
};

// Percentage, result and status 0. Null when memory is short.
PQRXProgressBar CreateQRXProgressBarInstance();
