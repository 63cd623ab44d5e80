#include "api/src/function/progressbar/common/ProgressBar.h"

#include <new>

#include "api/src/function/progressbar/linux/LinuxProgressBar.h"

namespace {

void QRXProgressBar_setPercentage(PQRXProgressBar _this, QRX_U8 percentage)
{
    _this->m_percentage = percentage;
}

void QRXProgressBar_setResult(PQRXProgressBar _this, QRX_U32 result)
{
    _this->m_result = result;
}

QRX_U8 QRXProgressBar_getPercentage(PQRXProgressBar _this)
{
    return _this->m_percentage;
}

QRX_U32 QRXProgressBar_getResult(PQRXProgressBar _this)
{
    return _this->m_result;
}

QRX_U32 QRXProgressBar_getStatus(PQRXProgressBar _this)
{
    return _this->m_status;
}

void QRXProgressBar_destructor(PQRXProgressBar _this)
{
    QRXProgressBar_closeThread(_this);
    delete _this;
}

}  // namespace

PQRXProgressBar CreateQRXProgressBarInstance()
{
    auto* bar = new (std::nothrow) QRXProgressBar{};
    if (bar == nullptr) {
        return nullptr;
    }
    bar->startThread = QRXProgressBar_startThread;
    bar->setPercentage = QRXProgressBar_setPercentage;
    bar->setResult = QRXProgressBar_setResult;
    bar->getPercentage = QRXProgressBar_getPercentage;
    bar->getResult = QRXProgressBar_getResult;
    bar->getStatus = QRXProgressBar_getStatus;
    bar->closeThread = QRXProgressBar_closeThread;
    bar->destructor = QRXProgressBar_destructor;
    return bar;
}
