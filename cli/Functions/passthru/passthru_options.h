// The options of `passthru` and its kin.
#pragma once

#include <array>

#include "api/src/interface/wire/types.h"
#include "cli/Public/frame/input_file.h"
#include "cli/Public/frame/option_scan.h"
#include "cli/Public/frame/output_file.h"

namespace qrx::passthru {

extern const char kLetters[];
extern const option kLong[];
inline constexpr char kKnown[] = "tirpfon23md456789s";
inline constexpr char kOnce[] = "tirpfon23md456789";  // an error when repeated

// The options for words of the drive's command, and their indices.
struct WordOption {
    char letter;
    unsigned index;
};
inline constexpr std::array<WordOption, 6> kWords{{{'2', 2}, {'3', 3}, {'4', 10}, {'5', 11}, {'6', 12}, {'7', 13}}};

// What the options ask for. Texts are words of the command line.
struct Wish {
    QRX_U32 disk = 0;  // 0-based
    bool reads = true;
    QRX_U32 psdt = 0;
    QRX_U32 fuse = 0;
    QRX_U32 opcode = 0;
    QRX_U32 nsid = 0;
    std::array<QRX_U32, 14> words{};  // of the drive's command, by index
    int length = 0;                   // bytes of data, as typed
    const char* lengthWord = "";
    OutputFile output;
    InputFile input;
};

// Stores the id of a disk, 0-based; false after a complaint.
bool readDisk(const char* word, QRX_U32& disk);

// Stores the option's argument, and opens its file; false after a complaint. That a file cannot be opened is told when
// it is to be used.
bool read(int letter, const char* word, Wish& wish);

}  // namespace qrx::passthru
