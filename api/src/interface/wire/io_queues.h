// The I/O queues that each host has at the controller.
#pragma once

#include <cstddef>

#include "api/src/interface/wire/buffer.h"
#include "api/src/interface/wire/envelope.h"
#include "api/src/interface/wire/types.h"

struct _IOQNH {
    QRX_U8 NIOQ;  // I/O queues of this host
    QRX_U8 reserved[3];
};
using IOQNH = _IOQNH;
static_assert(sizeof(_IOQNH) == 4);

// Behind the envelope of the answer: as many hosts as its page has room for.
inline constexpr std::size_t kIoqHostsMax =
    (qrx::wire::kPageSize - kReceiveDataOffset - sizeof(QRX_U32)) / sizeof(_IOQNH);
struct _IOQNData {
    QRX_U32 maxCtrl;  // hosts that there are
    _IOQNH ioqnh[kIoqHostsMax];
};
using IOQNData = _IOQNData;
static_assert(kIoqHostsMax == 1021);
static_assert(sizeof(_IOQNData) == 4088);
static_assert(offsetof(_IOQNData, ioqnh) == 4);
