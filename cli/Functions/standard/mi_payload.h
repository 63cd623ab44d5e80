// Files in messages of the management interface.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <span>

#include "cli/Functions/standard/mi_message.h"
#include "cli/Public/frame/input_file.h"

namespace qrx::mi {

// A message whose head is in front of its data. It is as long as a request and a whole file behind it, and holds the
// first bytes of the file in the request.
class FileMessage {
public:
    // Makes the message of `head` and `length` bytes of data: those of the file, and zeros behind its end. Without a
    // file (`input` null) it is a request alone, with no data. What the handler has to return at once after a
    // complaint; nothing: go on.
    std::optional<int> make(PCommand_Info row, InputFile* input, const nvmemi_command_request_message& head,
                            QRX_U32 length);

    [[nodiscard]] std::span<QRX_U8> bytes() { return std::span(page_).first(size_); }
    [[nodiscard]] std::span<const QRX_U8> data() const;
    // The data without the zeros behind the file's end.
    [[nodiscard]] std::span<const QRX_U8> ofFile() const { return data().first(held_); }

private:
    std::array<QRX_U8, kMessageMax> page_{};
    std::size_t size_ = 0;
    std::size_t length_ = 0;
    std::size_t held_ = 0;
};

// The data of a message whose head travels in the command words: the first bytes of a file.
class FilePayload {
public:
    // Takes `length` bytes of the file, and zeros behind its end. The result is as make()'s.
    std::optional<int> load(PCommand_Info row, InputFile& input, QRX_U32 length);

    [[nodiscard]] std::span<QRX_U8> data() { return std::span(page_).first(length_); }
    [[nodiscard]] std::span<const QRX_U8> ofFile() const { return std::span(page_).first(held_); }

private:
    std::array<QRX_U8, kMessageMax> page_{};
    std::size_t length_ = 0;
    std::size_t held_ = 0;
};

}  // namespace qrx::mi
