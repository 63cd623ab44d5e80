// The update of a controller: a worker does it, this thread tells how far it is.
#include <unistd.h>

#include <cstdio>
#include <optional>

#include "api/src/interface/flash.h"
#include "api/src/interface/globals.h"
#include "api/src/interface/wire/image.h"
#include "api/src/interface/wire/status.h"
#include "cli/Functions/flash/flash.h"
#include "cli/Functions/flash/flash_file.h"
#include "cli/Public/frame/controller.h"
#include "cli/Public/frame/report.h"

namespace {

using qrx::print;

constexpr QRX_U32 kResetNeeded = kStatusCommandSpecific | QRX_FARR;
constexpr QRX_U32 kConventionalResetNeeded = kStatusCommandSpecific | QRX_FWACT_REQ_CON_RESET;
constexpr QRX_U32 kProhibited = kStatusCommandSpecific | QRX_FAP;
constexpr QRX_U32 kFinished = 0;
constexpr QRX_U32 kRunning = 1;

constexpr char kStartFailed[] =
    "start to flash NVMe Controller firmware failed (Invalid firmware image, please check image and try again.)\n";
constexpr char kSuccess[] = "flash NVMe Controller firmware success. Please shutdown and power on the system.\n";

void sleepASecond()
{
    constexpr useconds_t kSecond = 1000000;
    usleep(kSecond);
}

QRX_U32 reportResult(QRX_U32 result)
{
    if (result == kResetNeeded || result == kConventionalResetNeeded) {
        print("%s", kSuccess);
        return 0;
    }
    if ((result & kProhibited) == kProhibited) {
        print("Flash NVMe Controller firmware failed(Firmware commit rohibited)\n");
    } else {
        print(
            "Flash NVMe Controller firmware failed (error code: %d, Invalid firmware image, please check image and try "
            "again.)\n",
            static_cast<int>(result));
    }
    return result;
}

// One look at the progress record. Nothing while the worker runs, otherwise what the command returns.
std::optional<QRX_U32> look(QRX_U8 adapterID)
{
    NVME_Flash_Result progress{};
    if (const QRX_U32 failure = QRX_Adapter_Flash_Result(adapterID, &progress); failure != 0) {
        print("Get NVMe Controller flash result failed (Invalid firmware image, please check image and try again.)\n");
        return failure;
    }
    if (progress.result != 0) {
        return reportResult(progress.result);
    }
    if (progress.status == kRunning) {
        print("flash NVMe Controller, percentage %d\n", progress.percentage == 100 ? 99 : progress.percentage);
        return std::nullopt;
    }
    if (progress.status == kFinished) {
        print("%s", kSuccess);
        return 0;
    }
    print("Unknown flash NVMe Controller status %d\n", static_cast<int>(progress.status));
    return progress.result;
}

}  // namespace

void (*qrx::flashPause)() = sleepASecond;

QRX_U32 checkFileSize(QRX_U8 adapterID, const char* filename)
{
    if (open_file_for_flash(filename) != 0) {
        print("failed to open file %s\n", filename);
        return 1;
    }
    const QRX_U64 length = get_file_length_for_flash();
    close_file_for_flash();
    const QRX_U32 most = qrx::recordOf(adapterID).MaxFlashSize;
    return most != 0 && length > most ? 1 : 0;
}

QRX_U32 updateAdapterFlash(QRX_U8 adapterID, char* filename, QRX_U8 fs, QRX_U8 ca, QRX_U8 type)
{
    if (ca != kCommitActivateAtReset && filename[0] != '\0') {
        if (const QRX_U32 refused = checkFileSize(adapterID, filename); refused != 0) {
            print("%s", kStartFailed);
            return refused;
        }
    }
    const QRX_U32 started = QRX_Adapter_Flash(adapterID, filename, fs, ca, type);
    print("%s", started == 0 ? "start to flash NVMe Controller firmware\n" : kStartFailed);
    for (;;) {
        const std::optional<QRX_U32> outcome = look(adapterID);
        (void)std::fflush(stream);
        qrx::flashPause();
        if (outcome) {
            return *outcome;
        }
    }
}
