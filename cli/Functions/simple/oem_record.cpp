// The OEM record of the current controller.
#include "cli/Functions/simple/oem_record.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "api/src/interface/api.h"
#include "api/src/interface/wire/adapter.h"
#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/debug_dump.h"
#include "cli/Public/frame/device_text.h"
#include "cli/Public/frame/identify.h"
#include "cli/Public/frame/report.h"

namespace {

constexpr std::size_t kSubnqnAt = 768;  // in Identify Controller
constexpr std::size_t kCachedLetters = 60;
constexpr std::size_t kCachedTail = 32;

void showRecord(const NVMEOEMData& record, QRX_U32 checksum)
{
    std::printf("Signature: '%c' '%c' '%c' '%c'\n", record.sign[0], record.sign[1], record.sign[2], record.sign[3]);
    std::printf("Data length:%d\n", record.data_length);
    std::printf("Data offset:%d\n", record.data_offset);
    std::printf("Zero checksum:0x%x\n", checksum);
    std::printf("Sub VID:0x%x\n", record.subsystemVID);
    std::printf("Sub Device ID:0x%x\n", record.subDevID);
    std::printf("Serial Number:%s\n", qrx::fieldText(record.SN).c_str());
    std::printf("Model:%s\n", qrx::fieldText(record.model).c_str());
}

// The verdict on a page that was read, told if it `tells`.
int judge(std::span<QRX_U8, qrx::wire::kPageSize> page, bool tells)
{
    NVMEOEMData record{};
    std::memcpy(&record, page.data(), sizeof(record));
    const QRX_U32 stored = record.zerochksum;
    record.zerochksum = 0;
    std::memcpy(page.data(), &record, sizeof(record));
    if (record.data_length < 1 || record.data_length > kOemDataLengthMax) {
        std::fputs(tells ? "OEM raw data is not exist.\n" : "", stdout);
        return kOemNone;
    }
    if (std::memcmp(record.sign, kOemSign, sizeof(record.sign)) != 0) {
        if (tells) {
            std::printf("Signature is incorrect, '0x%02x', '0x%02x', '0x%02x', '0x%02x'.\n", record.sign[0],
                        record.sign[1], record.sign[2], record.sign[3]);
        }
        return kOemBad;
    }
    const QRX_U32 computed = __checksumResult(page.data(), record.data_length, 0);
    if (computed != stored) {
        if (tells) {
            std::printf("Zero checksumis 0x%x, it should be 0x%x\n", stored, computed);
        }
        return kOemBad;
    }
    if (tells) {
        showRecord(record, stored);
    }
    return kOemValid;
}

}  // namespace

QRX_U32 __checksumResult(const void* data, QRX_U32 len, QRX_U8 check)
{
    const auto* at = static_cast<const QRX_U8*>(data);
    QRX_U32 sum = 0;
    for (std::size_t words = len / sizeof(sum); words > 0; --words, at += sizeof(sum)) {
        QRX_U32 word = 0;
        std::memcpy(&word, at, sizeof(word));
        sum += word;
    }
    return check != 0 ? sum : 0U - sum;
}

int getoemdata(char print_info, void* data)
{
    const std::span<QRX_U8, qrx::wire::kPageSize> page(static_cast<QRX_U8*>(data), qrx::wire::kPageSize);
    const bool tells = print_info != 0;
    std::fill(page.begin(), page.end(), QRX_U8{0});
    const auto command = qrx::vendorCommand(kGroupAdapter, qrx::kSubReadOem).word(10, qrx::kOemWholePage);
    command.debug();
    if (const int status = tells ? command.receive(page) : command.receiveQuietly(page)) {
        return tells ? qrx::refuse(kOemBad, "Read OEM data failed.(error code: 0x%02x)\n", status) : kOemBad;
    }
    if (tells) {
        qrx::debugDump(page.first<sizeof(NVMEOEMData)>());
    }
    return judge(page, tells);
}

int QRX_Adapter_GetSimpleInfo_SVID_SDID(QRX_U16* SVID, QRX_U16* SDID)
{
    qrx::Response response;
    const int status = qrx::vendorCommand(kGroupAdapter, 0).word(14, 0).receiveQuietly(response.bytes());
    if (status != 0) {
        if (dbg_enable != 0) {
            qrx::print("\nUnable to get info of NVMe Controller %s", "\n");
        }
        return status;
    }
    if (response.status() != 0 && dbg_enable != 0) {
        qrx::print("\nUnable to get info of Adapter, cmd_status:0x%x\n", response.status());
    }
    if (const auto record = response.record<NVME_Adapter_Info>()) {  // after a refusal too
        *SVID = record->SVID;
        *SDID = record->SDID;
    }
    return status;
}

void reinit_API_Layrer_SUBNQN()
{
    char* const cached = QRX_Adapter_GetDeviceSUBNQN(gCurrentAdapter);
    std::array<QRX_U8, qrx::wire::kPageSize> page{};
    if (qrx::identify(0, qrx::kIdentifyController, page) != 0) {
        return;
    }
    const std::span<const QRX_U8> letters = std::span<const QRX_U8>(page).subspan(kSubnqnAt, kCachedLetters);
    std::transform(letters.begin(), letters.end(), cached,
                   [](QRX_U8 byte) { return byte == 0 ? ' ' : static_cast<char>(byte); });
    std::array<char, kCachedTail> tail{};
    (void)std::snprintf(tail.data(), tail.size(), "%d", page[kSubnqnAt + kCachedLetters]);
    std::copy(tail.begin(), tail.end(), cached + kCachedLetters);
}
