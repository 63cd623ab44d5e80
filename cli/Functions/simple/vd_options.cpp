#include "cli/Functions/simple/vd_options.h"

#include "cli/Public/common.h"
#include "cli/Public/frame/option_scan.h"
#include "cli/Public/frame/report.h"

namespace qrx::vd {

namespace {

constexpr QRX_U8 kUnknownMode = 255;
constexpr Keyword kStripes[] = {{"128", 0}, {"256", 1}, {"512", 2}};

}  // namespace

bool readMode(const char* word, QRX_U8& mode)
{
    mode = chooseRaidMode(word);
    return mode != kUnknownMode || complain("-r : invalid raid mode %s\n", word);
}

bool readStripe(const char* word, QRX_U8& code)
{
    return take(keyword(word, kStripes), code) || complain("-b : invalid stripe block size '%s'.\n", word);
}

}  // namespace qrx::vd
