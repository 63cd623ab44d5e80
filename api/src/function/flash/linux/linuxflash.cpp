#include "api/src/function/flash/linux/linuxflash.h"

#include "api/src/function/flash/common/flash.h"
#include "api/src/function/progressbar/common/ProgressBarManagement.h"
#include "api/src/interface/wire/image.h"

namespace {

bool refused(PQRXProgressBar progress)
{
    progress->setResult(progress, 1);
    return false;
}

// The segments, and the vendor step of a raw image. False: nothing may follow.
bool sendImage(PQRXFlash flash, PQRXProgressBar progress)
{
    if (flash->m_ca == kCommitActivateAtReset) {
        progress->setResult(progress, 0);
        return true;
    }
    if (flash->m_ca == kCommitActivateNow && flash->m_file->get_file_length(flash->m_file) == 0) {
        return true;
    }
    if (flash->m_type != 0 && flash->m_file->m_checksum_ret != 0) {
        return refused(progress);
    }
    flash->download(flash);
    if (flash->m_type != 0 && progress->getResult(progress) == 0) {
        flash->sp_active(flash);
    }
    return progress->getResult(progress) == 0;
}

bool sendAll(PQRXFlash flash, PQRXProgressBar progress, const QRXFlashData& data)
{
    if (flash->init(flash, data.file_name, data.adapter) != 0) {
        return refused(progress);
    }
    if (!sendImage(flash, progress)) {
        return false;
    }
    flash->active(flash);
    return true;
}

}  // namespace

void* thread_flash_adapter_nvme(void* argument)
{
    const QRXFlashData data = *static_cast<const QRXFlashData*>(argument);
    PQRXProgressBar progress = progressbar_management_get_instance(data.adapter);
    PQRXFlash flash = CreateQRXFlashAdapterInstance(data.fs, data.ca, data.type);
    if (flash == nullptr) {
        refused(progress);
        progress->closeThread(progress);
        return nullptr;
    }
    sendAll(flash, progress, data);
    progress->closeThread(progress);
    flash->destructor(flash);
    return nullptr;
}

QRXThreadFunction GetAdapterNvmeFlashAdapterFucntion()
{
    return thread_flash_adapter_nvme;
}
