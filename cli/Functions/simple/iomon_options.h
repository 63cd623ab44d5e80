// The options that `iomon` and `iomon_polling` have in common.
#pragma once

#include "cli/Public/common.h"
#include "cli/Public/frame/option_scan.h"
#include "cli/Public/frame/output_file.h"

namespace qrx::iomon {

inline constexpr option kActionRow{"action", required_argument, nullptr, 'a'};
inline constexpr option kIdRow{"id", required_argument, nullptr, 'i'};
inline constexpr option kOutputFileRow{"outputfile", required_argument, nullptr, '1'};

struct Wish {
    int id = 0;  // of the namespace, from 1 to kIomonNamespaces
    OutputFile output;
};

// Stores the argument of one of the three options; false after a complaint. `word` must outlive the wish.
bool readOption(int letter, const char* word, Wish& wish);

// The check for a file that could not be opened; false after a complaint.
bool checkFile(const OutputFile& output);

}  // namespace qrx::iomon
