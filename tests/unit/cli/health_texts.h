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

}  // namespace expected
