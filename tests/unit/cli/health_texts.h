// The pages of help of the commands for health, identity and the drives behind a controller, line by line.
#pragma once

namespace expected {

inline constexpr char kSmartPage[] =
    "Description:Get SSD backend RC/Slot SMART info.\n"
    "smart [-i <SSD backend RC/Slot ID> | -o hba] [-h]\n"
    "\n"
    "Options:\n"
    "    -i,  --SSD backend RC/Slot ID.\n"
    "         SSD backend RC/Slot ID, field in PD info.\n"
    "    -o,  --object\n"
    "         hba, it means getting SMART from adapter\n"
    "    -h,  --help\n"
    "Examples:\n"
    "    smart -i 0\n"
    "    get SSD backend RC/Slot ID 0 smart info\n"
    "\n"
    "    smart -o hba\n"
    "    get current NVMe Controller SMART info\n"
    "\n";

inline constexpr char kIdentifyPage[] =
    "Description:Get controller identify info.\n"
    "identify -c <cns> [-i <cntid>] [-n <namespace id>] [--rawdata] [-h]\n"
    "\n"
    "Options:\n"
    "    -c,  --cns.\n"
    "         Controller or Namespace Structure\n"
    "    -i,  --cntid.\n"
    "         Controller Identifier\n"
    "    -n,  --namespace.\n"
    "         namespace id\n"
    "    --rawdata.\n"
    "    -h,  --get help of identify command.\n"
    "Examples:\n"
    "    identify -c 1\n"
    "    get identify controller info\n"
    "\n"
    "    identify -c 0 -n 1\n"
    "    get identify namespace id 1 info\n"
    "\n";

}  // namespace expected
