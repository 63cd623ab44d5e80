// Messages of the NVMe Management Interface.
#include "cli/Functions/standard/mi_message.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "api/src/interface/agent.h"
#include "api/src/interface/globals.h"

namespace qrx::mi {

namespace {

constexpr QRX_U8 kNvmeMiSend = 29;
constexpr QRX_U8 kNvmeMiReceive = 30;

}  // namespace

nvmemi_command_request_message vpdRequest(QRX_U8 opcode, QRX_U32 offset, QRX_U32 length)
{
    nvmemi_command_request_message request{};
    request.header = miRequestHeader(kMiCommand);
    request.Opcode = opcode;
    request.Request_DW0 = offset;
    request.Request_DW1 = length;
    return request;
}

int sendMessage(std::span<QRX_U8> message)
{
    // The length is told in dwords, less 1; what is over whole dwords is in the data all the same.
    std::array<QRX_U32, 2> words{0, static_cast<QRX_U32>(message.size() / sizeof(QRX_U32) - 1)};
    return static_cast<int>(QRX_Adapter_Admin(gCurrentAdapter, kNvmeMiSend, 0, words.data(), words.size(),
                                              message.data(), static_cast<QRX_U16>(message.size()), nullptr, 0));
}

int receiveAnswer(std::span<QRX_U8, wire::kPageSize> page)
{
    std::fill(page.begin(), page.end(), QRX_U8{0});
    return static_cast<int>(
        QRX_Adapter_Admin(gCurrentAdapter, kNvmeMiReceive, 0, nullptr, 0, nullptr, 0, page.data(), page.size()));
}

void showRange(QRX_U32 offset, QRX_U32 length)
{
    std::printf("offset mi_prp_data->Request_DW0: 0x%x\n", offset);
    std::printf("offset mi_prp_data->Request_DW1: 0x%x\n", length);
}

void showBytes(std::span<const QRX_U8> bytes, std::size_t first, bool shortest)
{
    constexpr std::size_t kPerRow = 8;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if ((first + i) % kPerRow == 0) {
            std::fputs("\n", stdout);
        }
        std::printf(shortest ? "0x%x " : "0x%02x ", bytes[i]);
    }
    std::fputs("\n", stdout);
}

}  // namespace qrx::mi
