// Rows of the binary event log and the debug dump.
#include "cli/Functions/dump/dump.h"
#include "cli/Functions/event/event.h"
#include "tests/program/rows.h"

namespace {

constexpr Command_Info kRows[] = {
    qrx::commandRow("event", doEvent, event_help, ":For getting event from NVMe Controller."),
    qrx::commandRow("dump", doDump, dump_help, ":For get/set/show debug dump of NVMe Controller."),
};

}  // namespace

std::span<const Command_Info> qrx::test::dumpRows()
{
    return kRows;
}
