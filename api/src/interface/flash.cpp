#include "api/src/interface/flash.h"

#include "api/src/function/flash/common/flash.h"
#include "api/src/function/flash/linux/linuxflash.h"
#include "api/src/function/progressbar/common/ProgressBarManagement.h"

namespace {

// The last update found no record to tell its progress in, and was not begun. A record that can be made later is not
// its own, and must not pass for an update that went well.
bool not_begun = false;

}  // namespace

QRX_U32 QRX_Adapter_Flash(QRX_U8 adapter_id, char* path, QRX_U8 fs, QRX_U8 ca, QRX_U8 type)
{
    static QRXFlashData data;
    PQRXProgressBar progress = progressbar_management_get_instance(adapter_id);
    not_begun = progress == nullptr;
    if (not_begun) {
        return 0;  // QRX_Adapter_Flash_Result tells it
    }
    data.adapter = adapter_id;
    data.fs = fs;
    data.ca = ca;
    data.type = type;
    data.file_name = path;
    progress->startThread(progress, GetAdapterNvmeFlashAdapterFucntion(), &data, sizeof(data));
    return 0;
}

QRX_U32 QRX_Adapter_Flash_Result(QRX_U8 adapter_id, PNVME_Flash_Result p_result)
{
    PQRXProgressBar progress = progressbar_management_get_instance(adapter_id);
    if (p_result == nullptr || progress == nullptr || not_begun) {
        return 1;
    }
    // The status first: the worker writes it last, so that a result read after status 0 is the final one.
    p_result->status = progress->getStatus(progress);
    p_result->result = progress->getResult(progress);
    p_result->percentage = progress->getPercentage(progress);
    return 0;
}
