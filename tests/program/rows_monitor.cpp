// Rows of I/O counters, rate limits, vendor opcodes, error registers.
#include <array>

#include "cli/Functions/simple/simple_aer.h"
#include "cli/Functions/simple/simple_cse.h"
#include "cli/Functions/simple/simple_iomon.h"
#include "cli/Functions/simple/simple_iomon_polling.h"
#include "cli/Functions/simple/simple_qos.h"
#include "tests/program/rows.h"

std::span<const Command_Info> qrx::test::monitorRows()
{
    static constexpr auto kRows = std::to_array<Command_Info>({
        commandRow("iomon", doSIOmon, simple_iomon_help, simple_iomon_sh),
        commandRow("iomon_polling", doSIOmonPolling, simple_iomon_polling_help, simple_iomon_polling_sh),
        commandRow("qos", doQOS, simple_qos_help, simple_qos_sh),
        commandRow("cse", doScse, simple_cse_help, simple_cse_sh),
        commandRow("aer", doSaer, simple_aer_help, simple_aer_sh),
    });
    return kRows;
}
