// The rows of the handlers that no command table names, family by family, so that tests can reach them by a word.
#pragma once

#include <span>
#include <vector>

#include "cli/Public/common.h"

namespace qrx::test {

std::span<const Command_Info> virtualDiskRows();  // the earlier commands for virtual disks
std::span<const Command_Info> settingsRows();     // the earlier `get`, `set` and `info`
std::span<const Command_Info> activityRows();     // the earlier background, namespace and device commands
std::span<const Command_Info> monitorRows();      // I/O counters, rate limits, vendor opcodes, error registers
std::span<const Command_Info> diagnosticsRows();  // diagnostics of the controller
std::span<const Command_Info> dumpRows();         // the binary event log and the debug dump
std::span<const Command_Info> mfndRows();         // the multi-function device
std::span<const Command_Info> managementRows();   // the management interface
std::span<const Command_Info> ioRows();           // namespace I/O and standard admin commands
std::span<const Command_Info> securityRows();     // OEM security, light info, switches and SATA

// All of them.
std::vector<Command_Info> unlistedRows();

}  // namespace qrx::test
