#include "api/src/function/progressbar/linux/LinuxProgressBar.h"

#include <pthread.h>

namespace {

// The record whose worker this thread is. Told this way, and not by m_thread_handle, because the worker may be at
// its end before pthread_create has stored the handle.
thread_local PQRXProgressBar own_bar = nullptr;

void* runWorker(void* argument)
{
    auto* bar = static_cast<PQRXProgressBar>(argument);
    own_bar = bar;
    return bar->m_start(bar->m_argument);
}

void waitForWorker(PQRXProgressBar bar)
{
    if (own_bar != bar && bar->m_joinable) {
        pthread_join(bar->m_thread_handle, nullptr);
        bar->m_joinable = false;
    }
}

}  // namespace

void QRXProgressBar_startThread(PQRXProgressBar _this, QRXThreadFunction func, void* mem, QRX_U32 /*size*/)
{
    waitForWorker(_this);
    _this->m_start = func;
    _this->m_argument = mem;
    _this->m_percentage = 0;
    _this->m_result = 0;
    _this->m_status = 1;
    if (pthread_create(&_this->m_thread_handle, nullptr, runWorker, _this) == 0) {
        _this->m_joinable = true;
    } else {
        _this->m_result = 1;
        _this->m_status = 0;
    }
}

void QRXProgressBar_closeThread(PQRXProgressBar _this)
{
    _this->m_status = 0;
    waitForWorker(_this);
}
