// What the commands of the NVMe Management Interface share: how a message is made and carried, and their options for
// a piece of data.
//
//     auto message = request(kMiVpdRead, offset, length);
//     if (const int status = sendMessage(bytes)) ...
//     if (const int status = receiveAnswer(page)) ...          // its data is behind kAnswerHead
#pragma once

#include <cstddef>
#include <span>

#include "api/src/interface/wire/buffer.h"
#include "api/src/interface/wire/mi.h"
#include "api/src/interface/wire/types.h"
#include "cli/Public/frame/number.h"
#include "cli/Public/frame/option_scan.h"
#include "cli/Public/frame/report.h"

namespace qrx::mi {

// Bytes in front of an answer's data.
inline constexpr std::size_t kAnswerHead = offsetof(nvmemi_command_response_message, Response_Data_Frame);
// Most bytes of a message, and most data that one answer brings.
inline constexpr std::size_t kMessageMax = wire::kPageSize;
inline constexpr std::size_t kAnswerDataMax = wire::kPageSize - kAnswerHead;

// The request for VPD Read or VPD Write, without data.
nvmemi_command_request_message vpdRequest(QRX_U8 opcode, QRX_U32 offset, QRX_U32 length);

// Send a message of at most kMessageMax bytes to the current controller, and fetch the answer into a zeroed page.
// Both return the device's status, whose text is printed.
int sendMessage(std::span<QRX_U8> message);
int receiveAnswer(std::span<QRX_U8, wire::kPageSize> page);

// The two lines about offset and length, on standard output even under -output.
void showRange(QRX_U32 offset, QRX_U32 length);
// The bytes on standard output, a blank behind each and a line break in front of each eighth, counted from `first`.
// All of them have two digits, unless `shortest`.
void showBytes(std::span<const QRX_U8> bytes, std::size_t first = 0, bool shortest = false);

// Store the argument of -o and -l, cut to the field's width; false after a complaint.
template <class Field>
bool takeOffset(const char* word, Field& offset)
{
    return take(readHexOrNumber(word), offset) || complain("-o: Invalid offset value\n");
}
template <class Field>
bool takeLength(const char* word, Field& length)
{
    return take(readHexOrNumber(word), length) || complain("-l: Invalid data length value\n");
}

}  // namespace qrx::mi
