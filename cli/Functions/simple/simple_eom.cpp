// `eom`: the handler.
#include "cli/Functions/simple/simple_eom.h"

#include "api/src/interface/wire/pcie_phy.h"
#include "cli/Functions/simple/eom_scan.h"
#include "cli/Functions/simple/simple_pcie.h"
#include "cli/Public/frame/option_scan.h"

const char simple_eom_help[] =
    "\n"
    "eom -i <interface> [-h]\n"
    "\n"
    "Options:\n"
    "    -i,  --interface\n"
    "         PCIe interface\n"
    "              0: RC, Root Complex\n"
    "              1: EP, End Point\n"
    "    -h,  --help\n"
    "Examples:\n"
    "    eom -i 0\n"
    "    Draw RC EOM eye pattern \n"
    "\n"
    "    eom -i 1\n"
    "    Draw EP EOM eye pattern \n"
    "\n";

namespace {

constexpr option kLong[] = {
    {"interface", required_argument, nullptr, 'i'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

}  // namespace

int doSeom(int argc, char** argv, PCommand_Info pCmdInfo)
{
    return qrx::runOnDevice(argc, argv, pCmdInfo, kLong, [](int device) {
        id = device;
        g_base_addr = kPciePhyBase;
        GetEOM();
    });
}
