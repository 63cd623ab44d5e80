// What `iomon` and `iomon_polling` read of the controller's counters, and their page.
#pragma once

#include <optional>

#include "api/src/interface/wire/iomon.h"
#include "cli/Public/common.h"
#include "cli/Public/frame/output_file.h"

namespace qrx::iomon {

// The counters of one namespace in one direction.
struct Direction {
    QRX_U64 ios = 0;
    QRX_U64 sectors = 0;
    QRX_U64 successes = 0;
    QRX_U64 failures = 0;
    QRX_U64 microseconds = 0;
};
// `id` is from 1 to kIomonNamespaces.
Direction readsOf(const NVME_IOmon_NS_Stat_Table& table, int id);
Direction writesOf(const NVME_IOmon_NS_Stat_Table& table, int id);

// Reads the counters. 0 and the table, or the device's status after its failure line.
int fetchCounters(NVME_IOmon_NS_Stat_Table& table);

// The whole page: of all namespaces, or of one, whose lines go to `output` too, if it is named. Return the device's
// status, and 1 for a file that could not be written whole.
int showAll();
int showOne(PCommand_Info row, int id, OutputFile& output);

}  // namespace qrx::iomon
