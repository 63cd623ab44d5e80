// Files in messages of the management interface.
#include "cli/Functions/standard/mi_payload.h"

#include <algorithm>

namespace qrx::mi {

namespace {

constexpr std::size_t kDataOffset = offsetof(nvmemi_command_request_message, Request_Data);
constexpr std::size_t kFileMax = kMessageMax - sizeof(nvmemi_command_request_message);

}  // namespace

std::optional<int> FileMessage::make(PCommand_Info row, InputFile* input, const nvmemi_command_request_message& head,
                                     QRX_U32 length)
{
    std::array<QRX_U8, kFileMax> content{};
    const auto fileLength = input != nullptr ? input->read(content) : std::size_t{0};
    if (!fileLength) {
        return input->refuse(row);
    }
    size_ = sizeof(head) + *fileLength;
    if (input != nullptr) {
        // The controller is told of whole dwords alone.
        const std::size_t room = size_ / sizeof(QRX_U32) * sizeof(QRX_U32) - kDataOffset;
        if (length > room) {
            return refuse(1, "%s: data length %u is over the %zu bytes of the message of a file of %zu bytes\n",
                          row->cmd, length, room, *fileLength);
        }
        length_ = length;
        held_ = std::min(*fileLength, length_);
    }
    (void)wire::write(page_, 0, head);
    std::copy_n(content.begin(), held_, page_.begin() + kDataOffset);
    return std::nullopt;
}

std::span<const QRX_U8> FileMessage::data() const
{
    return std::span(page_).subspan(kDataOffset, length_);
}

std::optional<int> FilePayload::load(PCommand_Info row, InputFile& input, QRX_U32 length)
{
    if (length > page_.size()) {
        return refuse(1, "%s: data length %u is over the %zu bytes of one command\n", row->cmd, length, page_.size());
    }
    length_ = length;
    const auto held = input.readUpTo(data());
    if (!held) {
        return input.refuse(row);
    }
    held_ = *held;
    return std::nullopt;
}

}  // namespace qrx::mi
