#include "sim/firmware/tracer.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

#include "api/src/interface/wire/buffer.h"
#include "api/src/interface/wire/command.h"
#include "api/src/interface/wire/envelope.h"
#include "api/src/interface/wire/mi.h"
#include "sim/firmware/errno_name.h"
#include "sim/firmware/opcodes.h"
#include "sim/firmware/status.h"

namespace qrx::sim {

namespace {

std::string hex(QRX_U64 value, std::size_t digits = 1)
{
    std::array<char, 16> buffer{};
    const auto written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, 16);
    const std::string text(buffer.data(), written.ptr);
    return "0x" + std::string(text.size() < digits ? digits - text.size() : 0, '0') + text;
}

std::string name_of(const Node& node)
{
    const std::string name = "nvme" + std::to_string(node.controller);
    return node.nsid == 0 ? name : name + "n" + std::to_string(node.nsid);
}

// Whether the command's CDW12 holds a vendor command.
bool vendor_coded(QRX_U8 opcode)
{
    return opcode == kVendorRead || opcode == kVendorWrite;
}

void append_word(std::string& line, const char* name, QRX_U64 value)
{
    if (value != 0) {
        line += ' ';
        line += name;
        line += '=';
        line += hex(value);
    }
}

void append_words(std::string& line, const nvme_admin_cmd& command)
{
    append_word(line, "flags", command.flags);
    append_word(line, "rsvd1", command.rsvd1);
    append_word(line, "nsid", command.nsid);
    append_word(line, "cdw2", command.cdw2);
    append_word(line, "cdw3", command.cdw3);
    append_word(line, "metadata_len", command.metadata_len);
    append_word(line, "cdw10", command.cdw10);
    append_word(line, "cdw11", command.cdw11);
    append_word(line, "cdw12", command.cdw12);
    append_word(line, "cdw13", command.cdw13);
    append_word(line, "cdw14", command.cdw14);
    append_word(line, "cdw15", command.cdw15);
    append_word(line, "timeout_ms", command.timeout_ms);
}

void append_message_name(std::string& line, QRX_U8 type, QRX_U8 opcode)
{
    line += ' ';
    line += management_opcode_name(type, opcode);
    line += '(' + hex(opcode, 2) + ')';
}

// Whether the head of the message stands in the command words, and not in its data.
bool head_in_words(const nvme_admin_cmd& command)
{
    return command.cdw10 != 0;
}

// What a message of the management interface asks for.
void append_message(std::string& line, std::span<const QRX_U8> message)
{
    const auto header = wire::read<nvmemi_message_header>(message);
    const auto opcode = wire::read<QRX_U8>(message, offsetof(nvmemi_command_request_message, Opcode));
    if (!header || !opcode) {
        return;
    }
    append_message_name(line, header->NVMe_MI_Msg_Type, *opcode);
    const auto append = [&](const char* name, std::size_t at) {
        append_word(line, name, wire::read<QRX_U32>(message, at).value_or(0));
    };
    if (header->NVMe_MI_Msg_Type == kMiCommand) {
        append("dw0", offsetof(nvmemi_command_request_message, Request_DW0));
        append("dw1", offsetof(nvmemi_command_request_message, Request_DW1));
    } else {
        append("sqe1", offsetof(nvmemi_admin_command_request_message, Submission_Queue_Entry_Dword1));
        append("sqe10", offsetof(nvmemi_admin_command_request_message, Submission_Queue_Entry_Dword10));
        append("sqe14", offsetof(nvmemi_admin_command_request_message, Submission_Queue_Entry_Dword14));
        append("sqe15", offsetof(nvmemi_admin_command_request_message, Submission_Queue_Entry_Dword15));
    }
}

// The request in a send frame, with its words.
void append_request(std::string& line, std::span<const QRX_U8> frame)
{
    const auto head = wire::read<NVMESendData>(frame);
    if (!head || std::memcmp(head->sign, kFrameSign, sizeof(kFrameSign)) != 0) {
        return;
    }
    const std::size_t count = std::min<std::size_t>(head->cmd_length, std::size(head->vendor_cmd));
    line += ' ';
    line += pair_request_name(pairCodeOf(head->vendor_cmd[0], head->vendor_cmd[1]));
    for (std::size_t i = 0; i < count; ++i) {
        line += (i == 0 ? '(' : ',') + std::to_string(head->vendor_cmd[i]);
    }
    line += count == 0 ? "" : ")";
}

const char* direction(QRX_U8 opcode)
{
    if (data_to_device(opcode) == data_from_device(opcode)) {
        return " data=";
    }
    return data_to_device(opcode) ? " out=" : " in=";
}

QRX_U16 vendor_code(const nvme_admin_cmd& command)
{
    return static_cast<QRX_U16>(command.cdw12);
}

// The cmd_status of an answer that has an envelope, else 0.
QRX_U8 verdict_of(const nvme_admin_cmd& command, std::span<const QRX_U8> data)
{
    if (command.opcode != kVendorRead && command.opcode != kPairReceive) {
        return 0;
    }
    if (command.opcode == kVendorRead &&
        (vendor_code(command) == vendor::kReadOemData || vendor_code(command) == vendor::kReadHbaInfo)) {
        return 0;  // the record of these comes alone, and may well begin with the same letters
    }
    const auto envelope = wire::read<NVMEReceiveData>(data);
    return envelope && std::memcmp(envelope->sign, kFrameSign, 3) == 0 ? envelope->cmd_status : QRX_U8{0};
}

// The status of an answer of the management interface, else 0.
QRX_U8 management_status_of(const nvme_admin_cmd& command, std::span<const QRX_U8> data)
{
    constexpr std::size_t kStatus = sizeof(nvmemi_message_header);
    return command.opcode == admin::kManagementReceive && !head_in_words(command)
               ? wire::read<QRX_U8>(data, kStatus).value_or(0)
               : QRX_U8{0};
}

}  // namespace

Completion Tracer::admin(const Node& node, const nvme_admin_cmd& command, std::span<QRX_U8> data)
{
    const Completion completion = inner().admin(node, command, data);
    write_line(node, true, command, data, completion);
    return completion;
}

Completion Tracer::io(const Node& node, const nvme_admin_cmd& command, std::span<QRX_U8> data)
{
    const Completion completion = inner().io(node, command, data);
    write_line(node, false, command, data, completion);
    return completion;
}

void Tracer::write_line(const Node& node, bool admin_queue, const nvme_admin_cmd& command, std::span<const QRX_U8> data,
                        const Completion& completion)
{
    const QRX_U8 opcode = command.opcode;
    std::string line = std::to_string(++count_);
    line += ' ';
    line += name_of(node);
    line += admin_queue ? " admin " : " io ";
    line += admin_queue ? admin_command_name(command) : io_opcode_name(opcode);
    line += '(' + hex(opcode, 2) + ')';
    if (admin_queue && vendor_coded(opcode)) {
        const QRX_U16 code = vendor_code(command);
        line += ' ';
        line += vendor_command_name(code);
        line += '(' + hex(code, 4) + ')';
    }
    if (admin_queue && (opcode == admin::kManagementSend || opcode == admin::kManagementReceive)) {
        if (head_in_words(command)) {
            append_message_name(line, static_cast<QRX_U8>(command.cdw10 >> 11 & 0xF),
                                static_cast<QRX_U8>(command.cdw11));
        } else if (opcode == admin::kManagementSend) {
            append_message(line, data);
        }
    }
    if (admin_queue && opcode == kPairSend) {
        append_request(line, data);
    }
    append_words(line, command);
    if (!data.empty()) {
        line += direction(opcode);
        line += std::to_string(data.size());
    }
    line += " -> ";
    if (completion.error != 0) {
        line += "errno " + errno_name(completion.error);
    } else {
        line += status_name(completion.status);
        if (completion.status != status::kSuccess) {
            line += '(' + hex(completion.status) + ')';
        }
        append_word(line, "result", completion.result);
        if (admin_queue && completion.status == status::kSuccess) {
            append_word(line, "cmd_status", verdict_of(command, data));
            append_word(line, "mi_status", management_status_of(command, data));
        }
    }
    line += '\n';
    out_ << line << std::flush;
}

}  // namespace qrx::sim
