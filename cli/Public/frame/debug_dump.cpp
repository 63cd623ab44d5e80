// The dump of a data block under `--debug`.
#include "cli/Public/frame/debug_dump.h"

#include <string>

#include "api/src/interface/globals.h"
#include "cli/Public/frame/report.h"

namespace qrx {

void debugDump(std::span<const QRX_U8> bytes)
{
    constexpr unsigned kRow = 16;
    if (dbg_enable == 0) {
        return;
    }
    print("\n%04x:", 0U);
    std::string characters;
    for (unsigned i = 0; i < bytes.size(); ++i) {
        print("%02x ", bytes[i]);
        if (bytes[i] != 0) {
            characters += static_cast<char>(bytes[i]);
        }
        if (i % kRow == kRow - 1) {
            print("          %s\n%04x:", characters.c_str(), i);  // of the byte just shown
            characters.clear();
        }
    }
    print("%s\n", "End list");
}

}  // namespace qrx
