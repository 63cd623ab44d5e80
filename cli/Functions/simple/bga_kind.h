// What a virtual disk can be busy with, as far as the commands that start and stop it go.
#pragma once

#include "api/src/interface/wire/bga.h"

namespace qrx::bga {

enum class Kind { kNone, kInit, kRebuild, kMediaPatrol };

// kNone for no activity, and for those without a command.
constexpr Kind kindOf(QRX_U8 type)
{
    switch (type) {
    case QRX_NVME_BGA_TYPE_VD_INIT_QUICK:
    case QRX_NVME_BGA_TYPE_VD_INIT_BACKGROUND:
        return Kind::kInit;
    case QRX_NVME_BGA_TYPE_VD_REBUILD:
        return Kind::kRebuild;
    case QRX_NVME_BGA_TYPE_VD_MEDIAPATROL:
        return Kind::kMediaPatrol;
    default:
        return Kind::kNone;
    }
}

}  // namespace qrx::bga
