#include "api/src/function/progressbar/common/ProgressBarManagement.h"

#include <array>

#include "api/src/device/common/DeviceManagement.h"

namespace {

std::array<PQRXProgressBar, kMaxDevices> m_flash_list;

// What stands for work that was never begun: a failure that is over.
QRXProgressBar default_pb;

}  // namespace

void progressbar_management_init()
{
    m_flash_list.fill(nullptr);
    default_pb.m_percentage = 0;
    default_pb.m_result = 1;
    default_pb.m_status = 0;
}

PQRXProgressBar progressbar_management_get_instance(QRX_U16 adapter_id)
{
    if (adapter_id >= m_flash_list.size()) {
        return nullptr;
    }
    PQRXProgressBar& bar = m_flash_list[adapter_id];
    if (bar == nullptr) {
        bar = CreateQRXProgressBarInstance();
    }
    return bar;
}

void progressbar_management_close()
{
    for (PQRXProgressBar& bar : m_flash_list) {
        if (bar != nullptr) {
            bar->destructor(bar);
            bar = nullptr;
        }
    }
}
