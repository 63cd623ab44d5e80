#include "api/src/function/flash/common/flash.h"

#include <algorithm>
#include <array>
#include <new>

#include "api/src/device/common/DeviceManagement.h"
#include "api/src/function/file/common/crc32.h"
#include "api/src/function/flash/common/image.h"
#include "api/src/function/log/log.h"
#include "api/src/function/progressbar/common/ProgressBarManagement.h"
#include "api/src/interface/wire/buffer.h"
#include "api/src/interface/wire/command.h"
#include "api/src/interface/wire/image.h"

namespace {

constexpr QRX_U8 kGetLogPage = 2;
constexpr QRX_U8 kFirmwareCommit = 16;
constexpr QRX_U8 kFirmwareDownload = 17;
constexpr QRX_U8 kSubSpCommit = 0x0B;
constexpr QRX_U32 kSignWord = 'Q' | 'R' << 8U | 'X' << 16U | QRX_U32{' '} << 24U;
constexpr QRX_U16 kSpCommitFlag = 0xB001;
constexpr QRX_U16 kSegment = qrx::wire::kPageSize;
constexpr QRX_U64 kMaxImage = 0xFFFFF000;  // offsets are 32 bits wide and grow by whole segments
constexpr QRX_U8 kBegun = 1;               // percentages
constexpr QRX_U8 kDone = 100;
constexpr QRX_U32 kSegmentsShare = 98;

void fail(PQRXFlash flash)
{
    if (flash->m_progress != nullptr) {
        flash->m_progress->setResult(flash->m_progress, 1);
    }
}

void findDevice(PQRXFlash flash, QRX_U8 adapter)
{
    PDeviceManagement table = GetDeviceManagementInstance();
    PDevice front = table->getDevice(table, adapter);
    flash->m_d = front->getNVMEDevice(front);
}

void begin(PQRXFlash flash, QRX_U32 result)
{
    flash->m_progress->setResult(flash->m_progress, result);
    flash->m_progress->setPercentage(flash->m_progress, kBegun);
}

// Reads the whole file and does the sums. False when it could not be read, or is not to be sent.
bool checkImage(PQRXFlash flash, char* name, QRX_U32 length)
{
    PQRXFileBuffer file = flash->m_file;
    if (file->open_for_read(file, name, length) != 0) {
        return false;
    }
    const QRX_U8* image = file->read(file);
    if (image == nullptr || file->m_got != length || file->get_file_length(file) != length) {
        return false;
    }
    flash->m_checked_crc = crc32(qrx::kCrcStart, image, length);
    file->m_checksum_ret = checksumResult(image, length);
    if (file->m_checksum_ret != 0) {
        return true;  // the worker refuses it if it is a raw one
    }
    if (flash->m_ca != kCommitActivateNow && flash->m_type != 0 && !qrx::componentsFit(image, length)) {
        return false;
    }
    file->m_crc = crcMake(image, length);
    return true;
}

QRX_U32 QRXFlash_init(PQRXFlash _this, char* name, QRX_U8 adapter)
{
    PQRXFileBuffer file = _this->m_file;
    _this->m_progress = progressbar_management_get_instance(adapter);
    if (_this->m_progress == nullptr) {
        return 1;
    }
    if (_this->m_ca == kCommitActivateAtReset) {
        findDevice(_this, adapter);
        begin(_this, 0);
        return 0;
    }
    if (file->open_for_read(file, name, 0) != 0) {
        return 1;
    }
    const QRX_U64 length = file->get_file_length(file);
    if (length == 0 && _this->m_ca == kCommitActivateNow) {
        findDevice(_this, adapter);
        begin(_this, 0);
        return 0;
    }
    if (length == 0 || length > kMaxImage || !checkImage(_this, name, static_cast<QRX_U32>(length))) {
        return 1;
    }
    const QRX_U32 opened = file->open_for_read(file, name, _this->m_segment_size);
    if (opened == 0) {
        if (file->get_file_length(file) != length) {
            return 1;
        }
        findDevice(_this, adapter);
        _this->m_total_size = static_cast<QRX_U32>(length);
    }
    if (_this->m_ca != kCommitActivateNow) {
        begin(_this, opened);
    }
    return opened;
}

// Sends the segment at `offset`, which has been read.
QRX_U32 sendSegment(PQRXFlash flash, QRX_U32 offset)
{
    std::array<QRX_U32, 2> cdw{flash->m_segment_size / QRX_U32{4} - 1, offset / 4};
    const QRX_U32 status = flash->m_d->sendCommand(flash->m_d, kFirmwareDownload, 0, cdw.data(), cdw.size(),
                                                   flash->m_file->m_data, flash->m_segment_size, nullptr, 0);
    add_log("firmware image download CDW10 0x%x CDW11 0x%x ret %d.\n", cdw[0], cdw[1], static_cast<int>(status));
    return status;
}

void QRXFlash_download(PQRXFlash _this)
{
    PQRXFileBuffer file = _this->m_file;
    PQRXProgressBar progress = _this->m_progress;
    if (file == nullptr || _this->m_d == nullptr || progress == nullptr) {
        return;
    }
    QRX_U32 sent_crc = qrx::kCrcStart;
    QRX_U32 status = 0;
    do {
        const QRX_U32 offset = file->get_offset(file);
        const QRX_U32 wanted = std::min<QRX_U32>(_this->m_segment_size, _this->m_total_size - offset);
        const QRX_U8* data = file->read(file);
        if (data == nullptr || wanted == 0 || file->m_got < wanted) {  // the file has shrunk, or cannot be read
            fail(_this);
            return;
        }
        sent_crc = crc32(sent_crc, data, wanted);
        status = sendSegment(_this, offset);
        progress->setResult(progress, status);
        progress->setPercentage(progress,
                                static_cast<QRX_U8>(file->get_offset(file) * kSegmentsShare / _this->m_total_size + 1));
    } while (_this->m_total_size > file->get_offset(file) && status == 0);
    // Not the image that was checked, or no longer all of it.
    if (status == 0 && (sent_crc != _this->m_checked_crc || file->get_file_length(file) != _this->m_total_size)) {
        fail(_this);
    }
}

void QRXFlash_sp_active(PQRXFlash _this)
{
    if (_this->m_d == nullptr) {
        fail(_this);
        return;
    }
    _qrx_admin_command_format record{};
    record.CDW[0] = kVendorRead;
    record.CDW[12] = qrx::vendorWord(kGroupAdapter, kSubSpCommit, _this->m_type);
    record.CDW[13] = kSignWord;
    record.CDW[15] = _this->m_file->m_crc;
    record.cdw_flag = kSpCommitFlag;
    const QRX_U32 status = _this->m_d->sendPassthruAdmin(_this->m_d, &record, nullptr, 0, nullptr, 0, nullptr);
    add_log("firmware sp active ret %d.\n", static_cast<int>(status));
    _this->m_progress->setResult(_this->m_progress, status);
    _this->m_progress->setPercentage(_this->m_progress, kDone);
}

void QRXFlash_active(PQRXFlash _this)
{
    if (_this->m_d == nullptr) {
        fail(_this);
        return;
    }
    QRX_U32 cdw10 = _this->m_slot | QRX_U32{_this->m_ca} << 3U;
    const QRX_U32 status = _this->m_d->sendCommand(_this->m_d, kFirmwareCommit, 0, &cdw10, 1, nullptr, 0, nullptr, 0);
    add_log("firmware active ret %d.\n", static_cast<int>(status));
    _this->m_progress->setResult(_this->m_progress, status);
    _this->m_progress->setPercentage(_this->m_progress, kDone);
}

void QRXFlash_destructor(PQRXFlash _this)
{
    _this->m_file->close(_this->m_file);
    delete _this;
}

}  // namespace

PQRXFlash CreateQRXFlashAdapterInstance(QRX_U8 fs, QRX_U8 ca, QRX_U8 type)
{
    auto* flash = new (std::nothrow) QRXFlash{};
    if (flash == nullptr) {
        return nullptr;
    }
    flash->m_file = CreateQRXFileBufferInstance();
    if (flash->m_file == nullptr) {
        delete flash;
        return nullptr;
    }
    flash->m_slot = fs;
    flash->m_ca = ca;
    flash->m_type = type;
    flash->m_segment_size = kSegment;
    flash->download = QRXFlash_download;
    flash->active = QRXFlash_active;
    flash->sp_active = QRXFlash_sp_active;
    flash->init = QRXFlash_init;
    flash->destructor = QRXFlash_destructor;
    return flash;
}

QRX_U32 QRXFlash_query(PQRXFlash _this)
{
    constexpr QRX_U32 kLogFirmwareSlots = 3;
    constexpr QRX_U8 kActiveSlot = 7;
    if (_this->m_d == nullptr) {
        return 1;
    }
    std::array<QRX_U8, qrx::wire::kPageSize> log{};
    QRX_U32 cdw10 = kLogFirmwareSlots;
    const QRX_U32 status = _this->m_d->sendCommand(_this->m_d, kGetLogPage, 0, &cdw10, 1, nullptr, 0, log.data(),
                                                   static_cast<QRX_U16>(log.size()));
    if (status == 0) {
        _this->m_slot = log[0] & kActiveSlot;
        _this->m_has_read_flash_info = 1;
        add_log("Active Slot: %d, segment_size %d\n", _this->m_slot, _this->m_segment_size);
    }
    return status;
}
