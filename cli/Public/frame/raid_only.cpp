#include "cli/Public/frame/raid_only.h"

#include "api/src/interface/globals.h"
#include "cli/Public/frame/controller.h"
#include "cli/Public/frame/report.h"

bool qrx::refusedInJbof()
{
    if (!isJbof(recordOf(gCurrentAdapter))) {
        return false;
    }
    print("%s", kRefusedInJbof);
    return true;
}

bool qrx::refusedInRaid()
{
    if (isJbof(recordOf(gCurrentAdapter))) {
        return false;
    }
    print("%s", kRefusedInRaid);
    return true;
}
