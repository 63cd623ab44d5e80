// The file whose content a command sends: opened in the option pass, read whole later.
//
//     InputFile input;                                         // before the option pass; closed at its end
//     case 'f': input.open(scan.word()); break;                // in the option pass
//     const auto length = input.read(space);
//     if (!length) return input.refuse(pCmdInfo);              // before anything is sent
//
// It is the process's one `file`: two of these at a time, or one beside an output file, take it from each other.
#pragma once

#include <cstddef>
#include <optional>
#include <span>

#include "api/src/interface/wire/types.h"
#include "cli/Public/common.h"

namespace qrx {

class InputFile {
public:
    InputFile() = default;
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    // Opens `name`, without its double quotes. False when that failed, which nobody is told yet. `name` must outlive
    // this.
    bool open(const char* name);
    // Puts the file's content into `space` and gives its length. Nothing when it was not opened, cannot be read, or
    // is longer than the space.
    std::optional<std::size_t> read(std::span<QRX_U8> space);

    // Says on `stream` why there is no content. There must have been a failure. Returns 1.
    [[nodiscard]] int refuse(PCommand_Info row) const;

private:
    enum class Trouble : QRX_U8 { kNone, kOpen, kRead, kLength };

    bool fail(Trouble trouble);

    const char* name_ = "";
    std::size_t most_ = 0;  // bytes that it may have
    Trouble trouble_ = Trouble::kNone;
    int error_ = 0;  // errno of the trouble
};

}  // namespace qrx
