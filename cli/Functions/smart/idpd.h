// `id`: the Identify Controller data of a disk behind the controller.
#pragma once

#include <span>

#include "api/src/interface/wire/buffer.h"
#include "api/src/interface/wire/types.h"
#include "cli/Public/common.h"

extern const char id_sh[];
extern const char id_help[];

int doPDID(int argc, char** argv, PCommand_Info pCmdInfo);

// 0 when the current controller has a disk of this id; it is asked over the pair command road.
QRX_U32 checkHDID(QRX_U16 id);

// Print Identify Controller data to `stream`: its first facts, and all of its fields.
void showIDInfo(std::span<const QRX_U8, qrx::wire::kPageSize> page);
void showIDDetail(std::span<const QRX_U8, qrx::wire::kPageSize> page);
