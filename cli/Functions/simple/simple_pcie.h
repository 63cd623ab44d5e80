// `pcie`: the negotiated link and the error status of a drive, read from its configuration space; and the register
// accesses that `eom` uses too.
//
// A device (`pcie_id`, `link`) is the number that the user types; its registers lie behind PCIe interface `pcie_id`
// plus 2. An access that fails is told on `stream`, and does not stop whoever asked for it.
#pragma once

#include "api/src/interface/wire/types.h"
#include "cli/Public/common.h"
#include "cli/Public/getopt.h"

extern const char simple_pcie_help[];

int doSpcie(int argc, char** argv, PCommand_Info pCmdInfo);

// The register's value; 0 when it cannot be read.
QRX_U32 read_reg(int pcie_id, QRX_U32 address);
// The device's status.
int write_reg(int pcie_id, QRX_U32 address, QRX_U32 data);

// One dword of configuration space. Returns 1, or 0 after a complaint on standard output.
QRX_U8 pio_CfgRd(QRX_U32 link, QRX_U32 regaddr, QRX_U32* data);
// The place of a capability in the list that begins at `pos`, or 0.
QRX_U32 pci_find_cap(QRX_U32 link, QRX_U32 pos, QRX_U32 cap);
QRX_U32 pci_find_exp_cap(QRX_U32 link, QRX_U32 pos, QRX_U32 cap);
// Prints link and errors, as far as they can be read.
void mtl_backend_PCIe_checking(QRX_U32 device_id);

namespace qrx {

// read_reg that says whether it succeeded: `value` is 0 if not.
bool readRegister(int pcie_id, QRX_U32 address, QRX_U32& value);

// What `pcie` and `eom` are around their work: one option -i, a number. `rows` is the long table. Calls `work` with
// the number. Returns what the handler returns.
int runOnDevice(int argc, char** argv, PCommand_Info row, const option* rows, void (*work)(int device));

}  // namespace qrx
