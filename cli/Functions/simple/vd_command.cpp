#include "cli/Functions/simple/vd_command.h"

#include "cli/Public/common.h"
#include "cli/Public/frame/option_scan.h"
#include "cli/Public/frame/report.h"

namespace qrx::vd {

namespace {

constexpr QRX_U8 kUnknownMode = 255;
constexpr QRX_U8 kSubCreateVd = 3;
constexpr QRX_U8 kSubDeleteVd = 4;
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

AdminCommand createCommand(QRX_U8 mode, QRX_U8 stripe)
{
    return vendorCommand(kGroupVd, kSubCreateVd, static_cast<QRX_U16>(stripe | mode << 8));
}

AdminCommand deleteCommand(QRX_U16 id)
{
    return vendorCommand(kGroupVd, kSubDeleteVd, id);
}

int carryOut(const AdminCommand& command)
{
    return qrx::carryOut(command, "cmd failed.\n", "cmd success\n");
}

}  // namespace qrx::vd
