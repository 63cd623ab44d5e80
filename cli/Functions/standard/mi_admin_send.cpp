// `mi_admin_send`.
#include "cli/Functions/standard/mi_admin_send.h"

#include <array>

#include "api/src/interface/globals.h"
#include "cli/Functions/standard/mi_front.h"

const char mi_admin_send_sh[] = ":Standard MI-Send for admin command set";

const char mi_admin_send_help[] = R"(
mi_admin_send --msgtype <message type> --ic <IC> --ror <ROR> --csi <CSI> --opcode <opcode> [--offset <data offset>] [--data_len <data length>] [--sqe_dw1 <SQE DW1>] .. [--sqe_dw15 <SQE DW15>] [-f <inputfile>] [-h]

Options:
    --mi_msgtype <NVMe-MI message type>
        2, always.
    --msgtype <message type>
        Message type, 4 for NVMe-MI messages.
    --ic <0|1>
        Integrity check flag.
    --ror <0|1>
        Request or response, 0 for a request.
    --csi <0|1>
        Command slot identifier.
    --opcode <opcode>
        Admin opcode.
    --cflags <command flags>
        0, always.
    --ctrlid <controller id>
        0, always.
    --offset <data offset>
        Data offset.
    --data_len <data length>
        Data length.
    --sqe_dw1 <SQE DW1> to --sqe_dw5 <SQE DW5>, --sqe_dw8 <SQE DW8> to --sqe_dw15 <SQE DW15>
        Dwords of the submission queue entry.
    -f, --inputfile <inputfile>
        Input file. No request data is sent.
    -h, --help
Examples:
    mi_admin_send --msgtype 4 --ic 1 --ror 0 --csi 0 --opcode 6 --data_len 4096 --sqe_dw10 1
    Send Identify Controller.

Notice: Please remember to send mi_admin_receive for getting data when mi_admin_send is success.

)";

namespace {

using qrx::mi::NumberOption;
using Message = nvmemi_admin_command_request_message;

constexpr NumberOption kOptions[] = {
    {'6', "offset", "--offset", "offset"},       {'7', "data_len", "--data_len", "data length"},
    {'8', "sqe_dw1", "--sqe_dw1", "SQE DW1"},    {'9', "sqe_dw2", "--sqe_dw2", "SQE DW2"},
    {'a', "sqe_dw3", "--sqe_dw3", "SQE DW3"},    {'b', "sqe_dw4", "--sqe_dw4", "SQE DW4"},
    {'c', "sqe_dw5", "--sqe_dw5", "SQE DW5"},    {'d', "sqe_dw8", "--sqe_dw8", "SQE DW8"},
    {'e', "sqe_dw9", "--sqe_dw3", "SQE DW9"},  // the complaint names another option
    {'g', "sqe_dw10", "--sqe_dw10", "SQE DW10"}, {'i', "sqe_dw11", "--sqe_dw11", "SQE DW11"},
    {'j', "sqe_dw12", "--sqe_dw12", "SQE DW12"}, {'k', "sqe_dw13", "--sqe_dw13", "SQE DW13"},
    {'l', "sqe_dw14", "--sqe_dw14", "SQE DW14"}, {'m', "sqe_dw15", "--sqe_dw15", "SQE DW15"},
};

// Where the values of the options go, and under which name --debug shows them, in its order.
struct Field {
    char letter;
    QRX_U32 Message::*field;
    const char* name;
};
constexpr Field kFields[] = {
    {'8', &Message::Submission_Queue_Entry_Dword1, "SQE DW1"},
    {'9', &Message::Submission_Queue_Entry_Dword2, "SQE DW2"},
    {'a', &Message::Submission_Queue_Entry_Dword3, "SQE DW3"},
    {'b', &Message::Submission_Queue_Entry_Dword4, "SQE DW4"},
    {'c', &Message::Submission_Queue_Entry_Dword5, "SQE DW5"},
    {'6', &Message::Data_Offset, "Data_Offset"},
    {'7', &Message::Data_Length, "Data_Length"},
    {'d', &Message::Submission_Queue_Entry_Dword8, "SQE DW8"},
    {'e', &Message::Submission_Queue_Entry_Dword9, "SQE DW9"},
    {'g', &Message::Submission_Queue_Entry_Dword10, "SQE DW10"},
    {'i', &Message::Submission_Queue_Entry_Dword11, "SQE DW11"},
    {'j', &Message::Submission_Queue_Entry_Dword12, "SQE DW12"},
    {'k', &Message::Submission_Queue_Entry_Dword13, "SQE DW13"},
    {'l', &Message::Submission_Queue_Entry_Dword14, "SQE DW14"},
    {'m', &Message::Submission_Queue_Entry_Dword15, "SQE DW15"},
};

void debug(const Message& message)
{
    if (dbg_enable == 0) {
        return;
    }
    qrx::mi::debugHead(message.header, message.Opcode);
    for (const Field& field : kFields) {
        qrx::print("%s: 0x%08x\n", field.name, message.*field.field);
    }
    const std::array<QRX_U32, 3> words{0, sizeof(message) / sizeof(QRX_U32) - 1, 0};
    for (std::size_t i = 0; i < words.size(); ++i) {
        qrx::print("Admin DW%zu: 0x%08x\n", 10 + i, words.at(i));
    }
}

}  // namespace

int doMIAdminSend(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::mi::Front front(pCmdInfo, {qrx::mi::kHeadOptions, kOptions});
    if (const auto result = front.read(argc, argv)) {
        return *result;
    }
    Message message{};  // without request data, even if a file was named
    message.header = front.header(kMiAdminCommand);
    message.Opcode = front.opcode();
    for (const Field& field : kFields) {
        message.*field.field = front.value(field.letter);
    }
    debug(message);
    std::array<QRX_U8, sizeof(message)> bytes{};
    (void)qrx::wire::write(bytes, 0, message);
    return qrx::report(qrx::mi::sendMessage(bytes), "MI admin send failed.\n", "MI admin send success.\n");
}
