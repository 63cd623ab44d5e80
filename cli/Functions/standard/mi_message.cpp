// Messages of the NVMe Management Interface.
#include "cli/Functions/standard/mi_message.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>

#include "api/src/interface/agent.h"
#include "api/src/interface/globals.h"

namespace qrx::mi {

namespace {

constexpr QRX_U8 kNvmeMiSend = 29;
constexpr QRX_U8 kNvmeMiReceive = 30;

// CDW10 to CDW13 with the first bytes of a message.
using HeadWords = std::array<QRX_U32, 4>;
static_assert(sizeof(HeadWords) == offsetof(nvmemi_command_request_message, Request_Data));

HeadWords wordsOf(const nvmemi_command_request_message& head)
{
    HeadWords words{};
    std::memcpy(words.data(), &head, sizeof(words));
    return words;
}

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

int receiveAnswer(std::span<QRX_U8> space)
{
    std::fill(space.begin(), space.end(), QRX_U8{0});
    return static_cast<int>(QRX_Adapter_Admin(gCurrentAdapter, kNvmeMiReceive, 0, nullptr, 0, nullptr, 0, space.data(),
                                              static_cast<QRX_U16>(space.size())));
}

int sendData(const nvmemi_command_request_message& head, std::span<QRX_U8> data)
{
    HeadWords words = wordsOf(head);
    return static_cast<int>(QRX_Adapter_Admin(gCurrentAdapter, kNvmeMiSend, 0, words.data(), words.size(),
                                              data.empty() ? nullptr : data.data(), static_cast<QRX_U16>(data.size()),
                                              nullptr, 0));
}

int receiveData(const nvmemi_command_request_message& head, std::span<QRX_U8, wire::kPageSize> page)
{
    HeadWords words = wordsOf(head);
    std::fill(page.begin(), page.end(), QRX_U8{0});
    return static_cast<int>(QRX_Adapter_Admin(gCurrentAdapter, kNvmeMiReceive, 0, words.data(), words.size(), nullptr,
                                              0, page.data(), page.size()));
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

void showFrom(QRX_U32 offset, std::span<const QRX_U8> bytes, bool shortest)
{
    std::array<QRX_U8, kMessageMax> shown{};
    const auto rest = bytes.subspan(std::min<std::size_t>(offset, bytes.size()));
    std::copy(rest.begin(), rest.end(), shown.begin());
    showBytes(std::span<const QRX_U8>(shown).first(bytes.size()), offset, shortest);
}

void showContent(std::span<const QRX_U8> bytes, std::size_t first)
{
    std::fputs("content.....\n", stdout);
    showBytes(bytes, first);
}

int deliver(PCommand_Info row, OutputFile& output, std::span<const QRX_U8> bytes)
{
    if (output.isNamed()) {
        return output.save(row, bytes);
    }
    showContent(bytes);
    return 0;
}

int refuseLength(PCommand_Info row, QRX_U32 length, std::size_t most)
{
    return refuse(1, "%s: data length %u is over the %zu bytes of one answer\n", row->cmd, length, most);
}

}  // namespace qrx::mi
