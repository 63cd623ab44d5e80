// The requests of the pair command road, and what its frames hold of them.
#pragma once

#include <cstddef>

#include "api/src/interface/wire/buffer.h"
#include "api/src/interface/wire/command.h"
#include "api/src/interface/wire/envelope.h"
#include "api/src/interface/wire/types.h"

namespace qrx {

inline constexpr std::size_t kPairRequestMax = wire::kPageSize - kSendDataOffset;    // bytes of a request record
inline constexpr std::size_t kPairAnswerMax = wire::kPageSize - kReceiveDataOffset;  // bytes of an answer
static_assert(kPairRequestMax == 4080 && kPairAnswerMax == 4088);

// Group opcode and sub-opcode of a request: the first two words of its frame.
constexpr QRX_U16 pairCode(QRX_U8 group, QRX_U8 sub)
{
    return static_cast<QRX_U16>(group << 8U | sub);
}

enum class PairCode : QRX_U16 {
    kAdapterGetInfo = pairCode(kGroupAdapter, 0),
    kAdapterGetConfig = pairCode(kGroupAdapter, 1),
    kAdapterSetConfig = pairCode(kGroupAdapter, 2),
    kAdapterLed = pairCode(kGroupAdapter, 7),
    kPdGetInfo = pairCode(kGroupPd, 0),
    kPdOem = pairCode(kGroupPd, 3),
    kPdImport = pairCode(kGroupPd, 9),
    kVdGetInfo = pairCode(kGroupVd, 0),
    kVdGetConfig = pairCode(kGroupVd, 1),
    kVdSetConfig = pairCode(kGroupVd, 2),
    kVdCreate = pairCode(kGroupVd, 3),
    kVdDelete = pairCode(kGroupVd, 4),
    kVdImport = pairCode(kGroupVd, 6),
    kPdGetBgaStatus = pairCode(kGroupBga, 1),
    kVdGetBgaStatus = pairCode(kGroupBga, 2),
    kPdBgaControl = pairCode(kGroupBga, 3),
    kVdBgaControl = pairCode(kGroupBga, 4),
    kPdMediaPatrol = pairCode(kGroupBga, 5),
    kVdInit = pairCode(kGroupBga, 6),
    kVdRebuild = pairCode(kGroupBga, 7),
    kVdSync = pairCode(kGroupBga, 8),
    kVdMigrate = pairCode(kGroupBga, 9),
    kVdMediaPatrol = pairCode(kGroupBga, 10),
    kEventStatus = pairCode(kGroupEvent, 1),
    kNsGetInfoVd = pairCode(kGroupNs, 1),
    kDumpConsole = pairCode(kGroupDump, 0),
    kDumpStatus = pairCode(kGroupDump, 1),
    kGetDumpCfg = pairCode(kGroupDump, 2),
    kSetDumpCfg = pairCode(kGroupDump, 3),
    kPageEvent = pairCode(kGroupDump, 4),
};

// The request of a frame's first two words; one that is none of those above where a word is more than a byte.
constexpr PairCode pairCodeOf(QRX_U16 group, QRX_U16 sub)
{
    return static_cast<PairCode>(group > 0xFF || sub > 0xFF ? 0 : group << 8U | sub);
}

}  // namespace qrx
