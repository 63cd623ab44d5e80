// One of a kind, or all of them: what the pages of `info` have in common whichever way the records come.
#pragma once

#include <functional>
#include <span>

#include "api/src/interface/wire/ns.h"
#include "api/src/interface/wire/types.h"

namespace qrx::info {

// Calls `show` for the controller at a table index, or, with kAllInstances where no controller was named at start, for
// each of them (`every`), and then says how many there are.
void showAdapters(QRX_U16 adapterID, const char* total, const std::function<void(QRX_U8 adapter, bool every)>& show);

// Shows one record: 0 when it was there.
using ShowOne = std::function<QRX_U32(QRX_U16 id)>;

// Calls `show` for the PD `id` of the current controller, or, with kAllInstances, for all ids that there can be; says
// how many were there, or that none was.
void showPds(QRX_U16 id, const ShowOne& show);
// The same for VDs, of which there can be `range`.
void showVds(QRX_U16 id, QRX_U8 range, const ShowOne& show);

// Prints the namespaces that have this NSID, or, with kAllInstances, any NSID, and one of the status bits. Says how
// many there are in all, or that there is none.
inline constexpr QRX_U8 kAnyStatus = 0xFF;
void printNamespaces(std::span<const NVME_NS_Info> records, QRX_U16 nsId, QRX_U8 status);

}  // namespace qrx::info
