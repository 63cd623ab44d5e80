// What the commands of the NVMe Management Interface share: how a message is made and carried, and their options for
// a piece of data.
//
//     auto message = request(kMiVpdRead, offset, length);
//     if (const int status = sendMessage(bytes)) ...
//     if (const int status = receiveAnswer(page)) ...          // its data is behind kAnswerHead
//
// A later form of the interface has the head of the message in the command words, and only data beside them:
//     if (const int status = sendData(request, data)) ...
//     if (const int status = receiveData(request, page)) ...   // the answer's data alone
#pragma once

#include <cstddef>
#include <span>

#include "api/src/interface/wire/buffer.h"
#include "api/src/interface/wire/mi.h"
#include "api/src/interface/wire/types.h"
#include "cli/Public/frame/number.h"
#include "cli/Public/frame/option_scan.h"
#include "cli/Public/frame/output_file.h"
#include "cli/Public/frame/report.h"

namespace qrx::mi {

// Bytes in front of an answer's data.
inline constexpr std::size_t kAnswerHead = offsetof(nvmemi_command_response_message, Response_Data_Frame);
// Most bytes of a message, and most data that one answer brings.
inline constexpr std::size_t kMessageMax = wire::kPageSize;
inline constexpr std::size_t kAnswerDataMax = wire::kPageSize - kAnswerHead;

// The request for VPD Read or VPD Write, without data.
nvmemi_command_request_message vpdRequest(QRX_U8 opcode, QRX_U32 offset, QRX_U32 length);

// Send a message to the current controller, and fetch the answer into zeroed space. Both are at most kMessageMax bytes,
// or those of a message for an admin command. Both return the device's status, whose text is printed.
int sendMessage(std::span<QRX_U8> message);
int receiveAnswer(std::span<QRX_U8> space);

// The same for a request with its head in the command words.
int sendData(const nvmemi_command_request_message& head, std::span<QRX_U8> data);
int receiveData(const nvmemi_command_request_message& head, std::span<QRX_U8, wire::kPageSize> page);

// The two lines about offset and length, on standard output even under -output.
void showRange(QRX_U32 offset, QRX_U32 length);
// The bytes on standard output, a blank behind each and a line break in front of each eighth, counted from `first`.
// All of them have two digits, unless `shortest`.
void showBytes(std::span<const QRX_U8> bytes, std::size_t first = 0, bool shortest = false);
// As many of them as there are, but from `offset` on, with zeros behind their end: what is listed of data that is to
// go to that offset. So it is not what is sent, unless the offset is 0.
void showFrom(QRX_U32 offset, std::span<const QRX_U8> bytes, bool shortest = false);
// "content.....", and the bytes.
void showContent(std::span<const QRX_U8> bytes, std::size_t first = 0);
// Puts the bytes into the file that was named, or shows them as content. 0, or 1 after a complaint about the file.
int deliver(PCommand_Info row, OutputFile& output, std::span<const QRX_U8> bytes);

// A complaint about a length over the `most` bytes that an answer has. Returns 1.
int refuseLength(PCommand_Info row, QRX_U32 length, std::size_t most);

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
