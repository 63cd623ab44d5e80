// The commands that make the head of a management interface message of options: what they share, and their options as
// rows.
//
//     Front front(pCmdInfo, {kHeadOptions, kRequestOptions});
//     if (const auto result = front.read(argc, argv)) return *result;
//     const auto request = front.request();
#pragma once

#include <array>
#include <initializer_list>
#include <optional>
#include <span>

#include "cli/Functions/standard/mi_message.h"
#include "cli/Public/frame/input_file.h"
#include "cli/Public/frame/option_set.h"

namespace qrx::mi {

// An option that takes a number.
struct NumberOption {
    char letter;
    const char* name;    // long
    const char* label;   // in a complaint
    const char* text;    // what it is, in a complaint
    unsigned bits = 32;  // of the number; of a flag all but the lowest are passed over
};

inline constexpr NumberOption kHeadOptions[] = {
    {'0', "msgtype", "--msgtype", "message type"},
    {'1', "ic", "--ic", "IC"},
    {'2', "ror", "--ror", "ROR"},
    {'3', "csi", "--csi", "CSI"},
    {'5', "opcode", "--opcode", "OPcode", 8},
};
// The dwords of a Management Interface command.
inline constexpr NumberOption kRequestOptions[] = {
    {'6', "req_dw0", "--req_dw0", "Request DW0"},
    {'7', "req_dw1", "--req_dw1", "Request DW1"},
};
inline constexpr NumberOption kLengthOption[] = {{'l', "datalen", "-l", "data length"}};

class Front {
public:
    // At most three tables. `receives`: -f names a file for data from the controller, otherwise one for data to it.
    Front(PCommand_Info row, std::initializer_list<std::span<const NumberOption>> tables, bool receives = false);

    // The option pass, up to what all of these commands check: each option once at most, and a file that is there.
    // What the handler has to return at once; nothing: go on.
    std::optional<int> read(int argc, char** argv);

    // 0 for one that was not given.
    [[nodiscard]] QRX_U32 value(char letter) const { return values_[static_cast<unsigned char>(letter)]; }
    // The file to send, or null when none was named.
    [[nodiscard]] InputFile* inputFile() { return input_.isNamed() ? &input_ : nullptr; }
    [[nodiscard]] OutputFile& outputFile() { return output_; }

    [[nodiscard]] nvmemi_message_header header(QRX_U8 type) const;
    [[nodiscard]] QRX_U8 opcode() const { return static_cast<QRX_U8>(value('5')); }
    // The Management Interface command that the options describe, without data.
    [[nodiscard]] nvmemi_command_request_message request() const;

private:
    bool take(int letter, const char* word);

    PCommand_Info row_;
    std::array<std::span<const NumberOption>, 3> tables_{};
    bool receives_;
    OptionSet options_;
    std::array<QRX_U32, 128> values_{};  // by letter
    InputFile input_;
    OutputFile output_;
};

// The lines about a head that --debug wants.
void debugHead(const nvmemi_message_header& header, QRX_U8 opcode);

}  // namespace qrx::mi
