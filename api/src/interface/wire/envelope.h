// The heads of the frames in which vendor data travels.
#pragma once

#include <cstddef>

#include "api/src/interface/wire/types.h"

// The signature that opens every vendor frame, without its terminator.
inline constexpr char kFrameSign[4] = "QRX";
inline constexpr QRX_U32 kFrameSignWord = 0x585251;  // the same letters and a zero byte as a little-endian word

// Head of every vendor response of a page; the payload follows at kReceiveDataOffset.
struct _NVMEReceiveData {
    QRX_U8 sign[4];     // bytes 0 to 2: "QRX"; byte 3 is not tested
    QRX_U8 cmd_status;  // 0: carried out; else the firmware's failure code for this request
    QRX_U8 reserved[3];
};
using NVMEReceiveData = _NVMEReceiveData;
inline constexpr std::size_t kReceiveDataOffset = 8;
static_assert(sizeof(_NVMEReceiveData) == kReceiveDataOffset);
static_assert(offsetof(_NVMEReceiveData, cmd_status) == 4);

// Head of a pair command's send frame; the request record follows at kSendDataOffset.
struct _NVMESendData {
    QRX_U8 sign[4];         // "QRX" and a zero byte
    QRX_U8 cmd_length;      // valid entries of vendor_cmd, at most 4
    QRX_U8 data_offset;     // always 16
    QRX_U16 data_length;    // bytes of the request record
    QRX_U16 vendor_cmd[4];  // group opcode, sub-opcode, arguments; 0 beyond cmd_length
};
using NVMESendData = _NVMESendData;
inline constexpr std::size_t kSendDataOffset = 16;
static_assert(sizeof(_NVMESendData) == kSendDataOffset);
static_assert(offsetof(_NVMESendData, data_length) == 6);
static_assert(offsetof(_NVMESendData, vendor_cmd) == 8);

// Prefix of the list requests of the pair command road.
struct _RequestHeader {
    QRX_U16 size;        // left 0
    QRX_U8 requestType;  // kRequestType
    QRX_U8 reserved1;
    QRX_U16 start;        // first index wanted
    QRX_U8 numRequested;  // count wanted
    QRX_U8 numReturned;   // count delivered
    QRX_U16 nextStart;    // index to continue from
    QRX_U8 reserved2[6];
};
using RequestHeader = _RequestHeader;
using PRequestHeader = _RequestHeader*;
inline constexpr QRX_U8 kRequestType = 2;
static_assert(sizeof(_RequestHeader) == 16);
static_assert(offsetof(_RequestHeader, start) == 4);
static_assert(offsetof(_RequestHeader, numReturned) == 7);
static_assert(offsetof(_RequestHeader, nextStart) == 8);

namespace qrx {

// The header of a request about the one disk `id`.
constexpr RequestHeader oneOf(QRX_U16 id)
{
    RequestHeader header{};
    header.requestType = kRequestType;
    header.start = id;
    header.numRequested = 1;
    return header;
}

}  // namespace qrx
