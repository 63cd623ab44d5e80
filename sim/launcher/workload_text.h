// The text form of a workload on a namespace: "ns=1,reads=9000,writes=500,blocks=8,seconds=10".
#pragma once

#include <string_view>

#include "sim/firmware/io_statistics.h"
#include "sim/firmware/result.h"

namespace qrx::sim {

struct WorkloadRequest {
    QRX_U32 nsid = 0;
    Workload workload;
};

[[nodiscard]] Result<WorkloadRequest> parse_workload(std::string_view text);

}  // namespace qrx::sim
