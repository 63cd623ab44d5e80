// NVMe-MI Send and Receive: the messages that the controller carries out for its host.
#include <algorithm>

#include "api/src/interface/wire/command.h"
#include "api/src/interface/wire/mi.h"
#include "sim/firmware/controller.h"
#include "sim/firmware/opcodes.h"
#include "sim/firmware/reply.h"

namespace qrx::sim {

namespace {

// Bytes of a request in front of its data, and of an answer.
constexpr std::size_t kRequestHead = offsetof(nvmemi_command_request_message, Request_Data);
constexpr std::size_t kAnswerHead = offsetof(nvmemi_command_response_message, Response_Data_Frame);
constexpr std::size_t kAnswerDataMax = wire::kPageSize - kAnswerHead;

}  // namespace

void Controller::answer_management(const nvmemi_message_header& request, QRX_U8 mi_status, std::span<const QRX_U8> data)
{
    nvmemi_command_response_message head{};
    head.header = request;
    head.header.IC = 0;  // in band no integrity check is needed: none is looked at and none is made
    head.header.ROR = 1;
    head.Status = mi_status;
    endpoint.answer.assign(kAnswerHead, 0);
    put(endpoint.answer, 0, head);
    endpoint.answer.insert(endpoint.answer.end(), data.begin(), data.end());
}

Completion Controller::management_send(const nvme_admin_cmd& command, std::span<const QRX_U8> data)
{
    endpoint.answer.clear();
    // The length is told in dwords, less 1. Of the data less than a dword may be over.
    const QRX_U64 length = (QRX_U64{command.cdw11} + 1) * sizeof(QRX_U32);
    if (length > data.size() || data.size() - length >= sizeof(QRX_U32) || length < kRequestHead) {
        return complete(status::kInvalidField);
    }
    const auto message = data.first(static_cast<std::size_t>(length));
    const auto header = wire::read<nvmemi_message_header>(message).value_or(nvmemi_message_header{});
    if (header.message_type != kMiMessageType || header.ROR != 0) {
        return complete(status::kInvalidField);
    }
    switch (header.NVMe_MI_Msg_Type) {
    case kMiCommand:
        return management_command(header, message);
    case kMiAdminCommand:
        return management_tunnel(header, message);
    default:
        return complete(status::kInvalidField);
    }
}

Completion Controller::management_command(const nvmemi_message_header& header, std::span<const QRX_U8> message)
{
    const QRX_U8 opcode = message[offsetof(nvmemi_command_request_message, Opcode)];
    const auto word = [message](std::size_t at) { return wire::read<QRX_U32>(message, at).value_or(0); };
    const QRX_U32 offset = word(offsetof(nvmemi_command_request_message, Request_DW0));
    const QRX_U32 length = word(offsetof(nvmemi_command_request_message, Request_DW1));
    std::vector<QRX_U8>& store = settings.vpd_in_spi ? vpd.spi : vpd.eeprom;
    if (opcode != kMiVpdRead && opcode != kMiVpdWrite) {
        answer_management(header, kMiInvalidOpcode);
    } else if (offset > store.size() || length > store.size() - offset || length > kAnswerDataMax) {
        answer_management(header, kMiInvalidParameter);
    } else if (opcode == kMiVpdRead) {
        answer_management(header, kMiSuccess, std::span(store).subspan(offset, length));
    } else if (length > message.size() - kRequestHead) {
        answer_management(header, kMiInvalidInputSize);
    } else {
        const auto data = message.subspan(kRequestHead, length);
        std::copy(data.begin(), data.end(), store.begin() + static_cast<std::ptrdiff_t>(offset));
        tell(Event::kAdapter, 0,
             "has " + std::to_string(length) + " bytes of VPD written at " + std::to_string(offset) +
                 (settings.vpd_in_spi ? " of the SPI flash" : " of the EEPROM"));
        answer_management(header, kMiSuccess);
    }
    return complete(status::kSuccess);
}

Completion Controller::management_tunnel(const nvmemi_message_header& header, std::span<const QRX_U8> message)
{
    const QRX_U8 opcode = message[offsetof(nvmemi_admin_command_request_message, Opcode)];
    if (opcode != kTunnelFromDrive) {
        answer_management(header, kMiInvalidOpcode);
        return complete(status::kSuccess);
    }
    if (message.size() < offsetof(nvmemi_admin_command_request_message, Request_Data)) {
        return complete(status::kInvalidField);
    }
    const auto word = [message](std::size_t at) { return wire::read<QRX_U32>(message, at).value_or(0); };
    nvme_admin_cmd inner{};
    inner.opcode = opcode;
    inner.nsid = word(offsetof(nvmemi_admin_command_request_message, Submission_Queue_Entry_Dword1));
    inner.cdw2 = word(offsetof(nvmemi_admin_command_request_message, Submission_Queue_Entry_Dword2));
    inner.cdw3 = word(offsetof(nvmemi_admin_command_request_message, Submission_Queue_Entry_Dword3));
    inner.cdw10 = word(offsetof(nvmemi_admin_command_request_message, Submission_Queue_Entry_Dword10));
    inner.cdw11 = word(offsetof(nvmemi_admin_command_request_message, Submission_Queue_Entry_Dword11));
    inner.cdw12 = word(offsetof(nvmemi_admin_command_request_message, Submission_Queue_Entry_Dword12));
    inner.cdw13 = word(offsetof(nvmemi_admin_command_request_message, Submission_Queue_Entry_Dword13));
    inner.cdw14 = word(offsetof(nvmemi_admin_command_request_message, Submission_Queue_Entry_Dword14));
    inner.cdw15 = word(offsetof(nvmemi_admin_command_request_message, Submission_Queue_Entry_Dword15));
    std::vector<QRX_U8> page(wire::kPageSize);
    const Completion completion = tunnel(inner, page);
    if (completion.status == status::kSuccess) {
        // As much of the page as the Receive can bring, where the data of any other command lies.
        answer_management(header, kMiSuccess, std::span(page).first(kAnswerDataMax));
    }
    return completion;
}

Completion Controller::management_receive(std::span<QRX_U8> data)
{
    if (endpoint.answer.empty()) {
        return complete(status::kSequenceError);
    }
    const std::size_t length = std::min(data.size(), endpoint.answer.size());
    std::copy_n(endpoint.answer.begin(), length, data.begin());
    std::fill(data.begin() + static_cast<std::ptrdiff_t>(length), data.end(), QRX_U8{0});
    endpoint.answer.clear();
    return complete(status::kSuccess);
}

}  // namespace qrx::sim
