// The update of a disk behind the controller, through the controller's tunnel.
#include <algorithm>
#include <array>
#include <limits>

#include "api/src/interface/globals.h"
#include "api/src/interface/wire/image.h"
#include "api/src/interface/wire/status.h"
#include "cli/Functions/flash/flash.h"
#include "cli/Functions/flash/flash_file.h"
#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/number.h"
#include "cli/Public/frame/report.h"
#include "cli/Public/frame/tunnel.h"

namespace {

using qrx::print;

constexpr QRX_U32 kFirmwareCommit = 0x10;
constexpr QRX_U32 kFirmwareDownload = 0x11;
constexpr QRX_U32 kSegment = qrx::wire::kPageSize;
// The statuses of a commit that took effect and waits for a reset.
constexpr QRX_U32 kWaitsForReset[] = {
    kStatusCommandSpecific | QRX_FAR_NVM_SR,
    kStatusCommandSpecific | QRX_FARR,
    kStatusCommandSpecific | QRX_FWACT_REQ_CON_RESET,
};

template <class... Values>
void debug(const char* format, Values... values)
{
    if (dbg_enable != 0) {
        print(format, values...);
    }
}

void debugWords(const qrx::AdminCommand& command, std::initializer_list<unsigned> words)
{
    for (const unsigned index : words) {
        debug("admin_cmd.CDW[%u]: 0x%x\n", index, command.record().CDW[index]);
    }
}

// The length of the open file; 0, after a complaint, when it cannot be sent.
QRX_U32 sendableLength(const char* filename)
{
    const QRX_U64 length = get_file_length_for_flash();
    if (length == 0) {
        print("file %s is empty\n", filename);
        return 0;
    }
    if (length > std::numeric_limits<QRX_U32>::max() - kSegment) {
        print("file %s is too large\n", filename);
        return 0;
    }
    return static_cast<QRX_U32>(length);
}

// Sends the open file. Returns 0, or what the command returns after a complaint.
QRX_U32 download(QRX_U8 adapterID, const char* filename, QRX_U32 pd_id)
{
    const QRX_U32 total_size = sendableLength(filename);
    if (total_size == 0) {
        return 1;
    }
    debug("total_size: %d\n", total_size);
    int status = 0;
    QRX_U32 offset = 0;
    for (int count = 0; offset < total_size && status == 0; ++count) {
        print("Download firmware percentage:%d\n", static_cast<int>(offset * 100 / total_size));
        debug("count: %d, offset: %d\n", count, offset);
        const QRX_U32 data_len = std::min(kSegment, total_size - offset);
        if (data_len < kSegment) {
            debug("It is last page: current data length: %d\n", kSegment);
            debug("offset: %d, data length: %d, total_size: %d\n", offset, data_len, total_size);
        }
        std::array<QRX_U8, kSegment> buffer{};
        if (read_file_for_flash(buffer) < data_len) {
            print("failed to read file %s\n", filename);
            return 1;
        }
        const auto command =
            qrx::tunnelToDrive(pd_id, kFirmwareDownload).word(10, data_len / 4 - 1).word(11, offset / 4);
        debugWords(command, {10, 11, 14});
        status = command.transmit(std::span(buffer).first(data_len), adapterID);
        offset += data_len;
    }
    if (status == 0 && get_file_length_for_flash() != total_size) {
        print("file %s has grown\n", filename);
        return 1;
    }
    if (status == 0) {
        return 0;
    }
    print(
        "\nStart to flash NVMe Controller disk %d firmware failed (Invalid firmware image, please check image and try "
        "again.)\n",
        static_cast<int>(pd_id) + qrx::idBase());
    return offset;
}

QRX_U32 commit(QRX_U8 adapterID, QRX_U32 pd_id, QRX_U32 CDW10, QRX_U8 ca)
{
    const int shown = static_cast<int>(pd_id) + qrx::idBase();
    const auto command = qrx::tunnelToDrive(pd_id, kFirmwareCommit).word(10, CDW10);
    debugWords(command, {0, 1, 10, 14});
    const auto status = static_cast<QRX_U32>(command.send(adapterID));
    debug("errStatus: 0x%x\n", status);
    if (status != 0 && std::ranges::find(kWaitsForReset, status) == std::end(kWaitsForReset)) {
        print("Flash NVMe Controller disk %d firmware failed.\n", shown);
        return status;
    }
    if (ca == kCommitActivateNow) {
        print("flash NVMe Controller firmware success\n");
    } else {
        print(
            "Flash NVMe Controller disk %d firmware success, please shutdown and boot again to make firmware active.\n",
            shown);
    }
    return 0;
}

}  // namespace

QRX_U32 updateHdFlash(QRX_U8 adapterID, const char* filename, QRX_U32 pd_id, QRX_U32 CDW10, QRX_U8 ca)
{
    if (ca != kCommitActivateAtReset && filename[0] != '\0') {
        if (open_file_for_flash(filename) != 0) {
            print("failed to open file %s\n", filename);
            return 1;
        }
        const QRX_U32 failure = download(adapterID, filename, pd_id);
        close_file_for_flash();
        if (failure != 0) {
            return failure;
        }
    }
    return commit(adapterID, pd_id, CDW10, ca);
}
