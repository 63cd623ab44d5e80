// `eom`: the handler.
#include "cli/Functions/simple/simple_eom.h"

#include "api/src/interface/wire/pcie_phy.h"
#include "cli/Functions/simple/eom_scan.h"
#include "cli/Functions/simple/simple_pcie.h"
#include "cli/Public/frame/option_scan.h"

const char simple_eom_help[] = R"(
eom -i <interface> [-h]

Options:
    -i,  --interface
         PCIe interface
              0: RC, Root Complex
              1: EP, End Point
    -h,  --help
Examples:
    eom -i 0
    Draw RC EOM eye pattern 

    eom -i 1
    Draw EP EOM eye pattern 

)";

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
