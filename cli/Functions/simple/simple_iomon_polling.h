// `iomon_polling`: bandwidth and I/O rate of one namespace, second by second.
#pragma once

#include <ctime>

#include "cli/Public/common.h"

extern const char simple_iomon_polling_help[];
extern const char simple_iomon_polling_sh[];

int doSIOmonPolling(int argc, char** argv, PCommand_Info pCmdInfo);

namespace qrx {

// The clock by which the samples are taken; nobody can set it.
struct PollingClock {
    timespec (*now)();
    // Returns when the clock has come there, at once when it has already.
    void (*sleepUntil)(const timespec& time);
};
extern PollingClock pollingClock;

}  // namespace qrx
