// The file whose content a command sends: opened in the option pass, read later.
//
//     InputFile input;                                         // before the option pass; closed at its end
//     case 'f': input.open(scan.word()); break;                // in the option pass
//     const auto length = input.read(space);
//     if (!length) return input.refuse(pCmdInfo);              // before anything is sent
#pragma once

#include <cstddef>
#include <optional>
#include <span>

#include "cli/Public/common.h"
#include "cli/Public/frame/command_file.h"

namespace qrx {

class InputFile : public CommandFile {
public:
    InputFile() : CommandFile("r") {}

    // Puts the file's content into `space` and gives its length. Nothing when it was not opened, cannot be read, or
    // is longer than the space.
    std::optional<std::size_t> read(std::span<QRX_U8> space);
    // Puts as much as both hold into `space`, and gives that length. What is behind it is left alone: a pipe may go on.
    // Nothing when the file was not opened or cannot be read.
    std::optional<std::size_t> readUpTo(std::span<QRX_U8> space);
    // The beginning of a file and the length of all of it.
    struct Head {
        std::size_t held = 0;  // bytes in the space
        QRX_U64 length = 0;
    };
    // As readUpTo(), for who must know how long the file is. What cannot be measured, a pipe, is read to its end. A
    // file is too long from 2 GiB on.
    std::optional<Head> readHead(std::span<QRX_U8> space);

    // Says on `stream` why there is no content. There must have been a failure. Returns 1.
    [[nodiscard]] int refuse(PCommand_Info row) const;

private:
    std::size_t most_ = 0;  // bytes that it may have
};

}  // namespace qrx
