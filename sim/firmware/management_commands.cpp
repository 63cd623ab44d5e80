// NVMe-MI Send and Receive: the messages that the controller carries out for its host.
//
// They come in two forms. In the first a Send brings the message whole in its data, and the Receive that follows takes
// the answer, its head in front. In the second the head of the message stands in the command words, where the first has
// nothing in CDW10: a Send brings the data of the message alone, a Receive takes the data of the answer alone, each
// without the other, and the status of the answer is the result of the command.
#include <algorithm>
#include <optional>

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

// Opcodes of Management Interface commands beside those that the program sends.
constexpr QRX_U8 kMiReadDataStructure = 0;
constexpr QRX_U8 kMiSubsystemHealthPoll = 1;

template <class Record>
std::vector<QRX_U8> bytes_of(const Record& record)
{
    std::vector<QRX_U8> bytes(sizeof(record));
    put(bytes, 0, record);
    return bytes;
}

nvmemi_message_header answer_header(nvmemi_message_header request)
{
    request.IC = 0;  // in band no integrity check is needed: none is looked at and none is made
    request.ROR = 1;
    return request;
}

bool is_request(const nvmemi_message_header& header)
{
    return header.message_type == kMiMessageType && header.ROR == 0;
}

// `head` holds the first kRequestHead bytes of the message.
ManagementRequest request_of(std::span<const QRX_U8> head, std::span<const QRX_U8> data)
{
    const auto word = [head](std::size_t at) { return wire::read<QRX_U32>(head, at).value_or(0); };
    return {wire::read<nvmemi_message_header>(head).value_or(nvmemi_message_header{}),
            head[offsetof(nvmemi_command_request_message, Opcode)],
            word(offsetof(nvmemi_command_request_message, Request_DW0)),
            word(offsetof(nvmemi_command_request_message, Request_DW1)), data};
}

// The request whose head stands in the command words; nothing for one that is none.
std::optional<ManagementRequest> head_in_words(const nvme_admin_cmd& command, std::span<const QRX_U8> data)
{
    std::array<QRX_U8, kRequestHead> head{};
    put(head, 0, std::array{command.cdw10, command.cdw11, command.cdw12, command.cdw13});
    const ManagementRequest request = request_of(head, data);
    const bool good = is_request(request.header) && request.header.NVMe_MI_Msg_Type == kMiCommand;
    return good ? std::optional(request) : std::nullopt;
}

// The admin command that a message carries.
nvme_admin_cmd command_in(std::span<const QRX_U8> message)
{
    const auto word = [message](std::size_t at) { return wire::read<QRX_U32>(message, at).value_or(0); };
    nvme_admin_cmd inner{};
    inner.opcode = message[offsetof(nvmemi_admin_command_request_message, Opcode)];
    inner.nsid = word(offsetof(nvmemi_admin_command_request_message, Submission_Queue_Entry_Dword1));
    inner.cdw2 = word(offsetof(nvmemi_admin_command_request_message, Submission_Queue_Entry_Dword2));
    inner.cdw3 = word(offsetof(nvmemi_admin_command_request_message, Submission_Queue_Entry_Dword3));
    inner.cdw10 = word(offsetof(nvmemi_admin_command_request_message, Submission_Queue_Entry_Dword10));
    inner.cdw11 = word(offsetof(nvmemi_admin_command_request_message, Submission_Queue_Entry_Dword11));
    inner.cdw12 = word(offsetof(nvmemi_admin_command_request_message, Submission_Queue_Entry_Dword12));
    inner.cdw13 = word(offsetof(nvmemi_admin_command_request_message, Submission_Queue_Entry_Dword13));
    inner.cdw14 = word(offsetof(nvmemi_admin_command_request_message, Submission_Queue_Entry_Dword14));
    inner.cdw15 = word(offsetof(nvmemi_admin_command_request_message, Submission_Queue_Entry_Dword15));
    return inner;
}

}  // namespace

void ManagementEndpoint::keep(const nvmemi_message_header& request, const ManagementAnswer& made)
{
    nvmemi_command_response_message head{};
    head.header = answer_header(request);
    head.Status = made.status;
    answer.assign(kAnswerHead, 0);
    put(answer, 0, head);
    answer.insert(answer.end(), made.data.begin(), made.data.end());
}

Completion Controller::management_send(const nvme_admin_cmd& command, std::span<const QRX_U8> data)
{
    endpoint.answer.clear();
    if (command.cdw10 != 0) {
        const auto request = head_in_words(command, data);
        return request ? complete(status::kSuccess, answer_to(*request).status) : complete(status::kInvalidField);
    }
    // The length is told in dwords, less 1. Of the data less than a dword may be over.
    const QRX_U64 length = (QRX_U64{command.cdw11} + 1) * sizeof(QRX_U32);
    if (length > data.size() || data.size() - length >= sizeof(QRX_U32) || length < kRequestHead) {
        return complete(status::kInvalidField);
    }
    const auto message = data.first(static_cast<std::size_t>(length));
    const ManagementRequest request = request_of(message, message.subspan(kRequestHead));
    if (!is_request(request.header)) {
        return complete(status::kInvalidField);
    }
    switch (request.header.NVMe_MI_Msg_Type) {
    case kMiCommand:
        endpoint.keep(request.header, answer_to(request));
        return complete(status::kSuccess);
    case kMiAdminCommand:
        return management_admin(request.header, message);
    default:
        return complete(status::kInvalidField);
    }
}

Completion Controller::management_receive(const nvme_admin_cmd& command, std::span<QRX_U8> data)
{
    std::vector<QRX_U8> answer;
    QRX_U32 result = 0;
    if (command.cdw10 != 0) {
        const auto request = head_in_words(command, {});
        if (!request) {
            return complete(status::kInvalidField);
        }
        ManagementAnswer made = answer_to(*request);
        result = made.status;
        answer = std::move(made.data);
    } else if (endpoint.answer.empty()) {
        return complete(status::kSequenceError);
    } else {
        answer.swap(endpoint.answer);
    }
    const std::size_t length = std::min(data.size(), answer.size());
    std::copy_n(answer.begin(), length, data.begin());
    std::fill(data.begin() + static_cast<std::ptrdiff_t>(length), data.end(), QRX_U8{0});
    return complete(status::kSuccess, result);
}

ManagementAnswer Controller::answer_to(const ManagementRequest& request)
{
    const auto make = [&]() -> ManagementAnswer {
        switch (request.opcode) {
        case kMiReadDataStructure:
            return management_structure(request.dw0);
        case kMiSubsystemHealthPoll:
            return {kMiSuccess, bytes_of(subsystem_health())};
        case kMiVpdRead:
        case kMiVpdWrite:
            return management_vpd(request);
        default:
            return {kMiInvalidOpcode, {}};
        }
    };
    ManagementAnswer answer = make();
    note_message(std::string(management_opcode_name(request.header.NVMe_MI_Msg_Type, request.opcode)) +
                 " answered with status " + std::to_string(answer.status) + " and " +
                 std::to_string(answer.data.size()) + " bytes");
    return answer;
}

ManagementAnswer Controller::management_vpd(const ManagementRequest& request)
{
    const QRX_U32 offset = request.dw0;
    const QRX_U32 length = request.dw1;
    std::vector<QRX_U8>& store = settings.vpd_in_spi ? vpd.spi : vpd.eeprom;
    if (offset > store.size() || length > store.size() - offset || length > kAnswerDataMax) {
        return {kMiInvalidParameter, {}};
    }
    const auto begin = store.begin() + static_cast<std::ptrdiff_t>(offset);
    if (request.opcode == kMiVpdRead) {
        return {kMiSuccess, std::vector<QRX_U8>(begin, begin + static_cast<std::ptrdiff_t>(length))};
    }
    if (length > request.data.size()) {
        return {kMiInvalidInputSize, {}};
    }
    std::copy_n(request.data.begin(), length, begin);
    tell(Event::kAdapter, 0,
         "has " + std::to_string(length) + " bytes of VPD written at " + std::to_string(offset) +
             (settings.vpd_in_spi ? " of the SPI flash" : " of the EEPROM"));
    return {kMiSuccess, {}};
}

ManagementAnswer Controller::management_structure(QRX_U32 what) const
{
    // The structure in the upper byte, the port below it, the controller in the lower half.
    constexpr QRX_U32 kSubsystem = 0;
    constexpr QRX_U32 kPort = 1;
    constexpr QRX_U32 kControllers = 2;
    constexpr QRX_U32 kController = 3;
    const PciePort* const host = port_of(0);  // the first end point
    switch (what >> 24) {
    case kSubsystem: {
        nvm_subsystem_info_data_structure info{};
        info.NVMeMI_Major_Version_Number = 1;
        info.NVMeMI_Minor_Version_Number = 1;
        return {kMiSuccess, bytes_of(info)};
    }
    case kPort: {
        if ((what >> 16 & 0xFF) != 0 || host == nullptr) {
            return {kMiInvalidParameter, {}};
        }
        port_info_data_structure info{};
        info.Port_Type = 1;  // PCIe
        info.Maximum_MCTP_Transmission_Unit_Size = 64;
        info.Port_Type_Specific.pcie.PCIe_Maximum_Payload_Size = 1;
        info.Port_Type_Specific.pcie.PCIe_Supported_Link_Speeds_Vector = vpd_facts().link_speeds;
        info.Port_Type_Specific.pcie.PCIe_Current_Link_Speed = host->speed;
        info.Port_Type_Specific.pcie.PCIe_Maximum_Link_Width = host->width;
        info.Port_Type_Specific.pcie.PCIe_Negotiated_Link_Width = host->width;
        return {kMiSuccess, bytes_of(info)};
    }
    case kControllers: {
        // How many, and their ids.
        std::vector<QRX_U8> list(2 * sizeof(QRX_U16));
        put(list, 0, QRX_U16{1});
        put(list, sizeof(QRX_U16), controller_id);
        return {kMiSuccess, std::move(list)};
    }
    case kController: {
        if ((what & 0xFFFF) != controller_id) {
            return {kMiInvalidParameter, {}};
        }
        const NVME_Adapter_Info told = adapter_record();
        controller_info_data_structure info{};
        info.PCIe_Routing_ID_Information = 1;  // the routing id is valid
        info.PCIe_Routing_ID =
            static_cast<QRX_U16>(address.bus << 8 | (address.device & 0x1F) << 3 | (address.function & 7));
        info.PCI_Vendor_ID = vendor_id;
        info.PCI_Device_ID = device_id;
        info.PCI_Subsystem_Vendor_ID = told.SVID;
        info.PCI_Subsystem_Device_ID = told.SDID;
        return {kMiSuccess, bytes_of(info)};
    }
    default:
        return {kMiInvalidParameter, {}};
    }
}

nvm_subsystem_health_data_structure Controller::subsystem_health() const
{
    constexpr int kFreezing = 273;  // K
    nvm_subsystem_health_data_structure told{};
    told.nvm_subsystem_status.Port0_PCIe_Link_Active = 1;
    told.nvm_subsystem_status.Reset_Not_Required = slots.next == 0 ? 1 : 0;
    told.nvm_subsystem_status.Drive_Functional = 1;
    told.Smart_Warnings = static_cast<QRX_U8>(~health.critical_warning);
    told.Composite_Temperature = static_cast<QRX_U8>(std::clamp(int{health.temperature} - kFreezing, 0, 0x7F));
    told.Percentage_Drive_Life_Used = health.used;
    told.composite_controller_status.Ready = 1;
    return told;
}

Completion Controller::management_admin(const nvmemi_message_header& header, std::span<const QRX_U8> message)
{
    if (message.size() < offsetof(nvmemi_admin_command_request_message, Request_Data)) {
        return complete(status::kInvalidField);
    }
    const nvme_admin_cmd inner = command_in(message);
    note_message(std::string("admin command ") + admin_opcode_name(inner.opcode));
    switch (inner.opcode) {
    case kTunnelFromDrive:
        return management_tunnel(header, inner);
    case admin::kGetLogPage:
    case admin::kIdentify:
    case admin::kGetFeatures:
        break;
    default:
        endpoint.keep(header, {kMiInvalidOpcode, {}});
        return complete(status::kSuccess);
    }
    // What this controller answers itself comes in an answer of its own form. A length of 0 asks for all.
    const auto word = [message](std::size_t at) { return wire::read<QRX_U32>(message, at).value_or(0); };
    const QRX_U32 offset = word(offsetof(nvmemi_admin_command_request_message, Data_Offset));
    const QRX_U32 wanted = word(offsetof(nvmemi_admin_command_request_message, Data_Length));
    if (offset > kMiAdminDataMax || wanted > kMiAdminDataMax - offset) {
        endpoint.keep(header, {kMiInvalidParameter, {}});
        return complete(status::kSuccess);
    }
    std::vector<QRX_U8> page(wire::kPageSize);
    const Completion done = execute_admin(inner, page);
    nvmemi_admin_command_response_message answer{};
    answer.header = answer_header(header);
    answer.Completion_Queue_Entry_Dword0 = done.result;
    answer.Completion_Queue_Entry_Dword3 = done.status << 17;
    if (done.status == status::kSuccess) {
        std::copy_n(page.begin() + offset, wanted != 0 ? wanted : kMiAdminDataMax - offset, answer.NVMe_Response_Data);
    }
    endpoint.answer = bytes_of(answer);
    return complete(status::kSuccess);
}

Completion Controller::management_tunnel(const nvmemi_message_header& header, const nvme_admin_cmd& inner)
{
    std::vector<QRX_U8> page(wire::kPageSize);
    const Completion completion = tunnel(inner, page);
    if (completion.status == status::kSuccess) {
        // As much of the page as the Receive can bring, where the data of any other command lies.
        page.resize(kAnswerDataMax);
        endpoint.keep(header, {kMiSuccess, std::move(page)});
    }
    return completion;
}

}  // namespace qrx::sim
