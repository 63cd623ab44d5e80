#include "tests/program/rows.h"

std::vector<Command_Info> qrx::test::unlistedRows()
{
    std::vector<Command_Info> all;
    for (const std::span<const Command_Info> rows :
         {virtualDiskRows(), settingsRows(), activityRows(), monitorRows(), diagnosticsRows(), dumpRows(), mfndRows(),
          managementRows(), ioRows(), securityRows()}) {
        all.insert(all.end(), rows.begin(), rows.end());
    }
    return all;
}
