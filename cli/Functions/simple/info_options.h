// What `info` is asked for.
#pragma once

#include <optional>

#include "cli/Functions/simple/simple_info.h"
#include "cli/Public/frame/option_scan.h"

namespace qrx::info {

enum Object { kHba, kPd, kVd, kNs };
enum Type { kOfHost, kOfVd };

// The options of one command.
struct Wish {
    int object = kHba;
    int id = kAllInstances;
    int type = kOfHost;  // of namespaces
    int vd = kAllInstances;
};

enum class BareWord { kShowsHelp, kIsIncomplete };

// Reads the options o, i, t, v and a, the last of which is only counted; the first that is bad ends the scan. Gives
// what the handler has to return at once, or nothing when there is an object to be shown.
std::optional<int> readWish(OptionScan& scan, PCommand_Info row, BareWord bareWord, Wish& wish);

// The 16-bit id to ask for. In one-based mode a typed 0 is told about, and asked for all the same.
QRX_U16 zeroBased(const OptionScan& scan, int id);

}  // namespace qrx::info
