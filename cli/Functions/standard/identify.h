// `identify`: the Identify command of the NVMe standard, its answer in words or as it stands.
#pragma once

#include <span>

#include "api/src/interface/wire/buffer.h"
#include "api/src/interface/wire/types.h"
#include "cli/Public/common.h"

extern const char identify_help[];

int doIdentify(int argc, char** argv, PCommand_Info pCmdInfo);

// Print Identify Controller data, and Identify Namespace data, to `stream`.
void _showIDDetail(std::span<const QRX_U8, qrx::wire::kPageSize> page);
void _showNSDetail(std::span<const QRX_U8, qrx::wire::kPageSize> page);

namespace qrx {

// The two pages of Identify Controller data: that of `identify`, and that of `id`, which has fewer lines and labels of
// its own.
enum class IdPage { kOfIdentify, kOfId };
void showIdPage(std::span<const QRX_U8, wire::kPageSize> page, IdPage form);

}  // namespace qrx
