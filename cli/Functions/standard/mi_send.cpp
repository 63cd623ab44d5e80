// `mi_send`.
#include "cli/Functions/standard/mi_send.h"

#include "api/src/interface/globals.h"
#include "cli/Functions/standard/mi_front.h"
#include "cli/Functions/standard/mi_payload.h"

const char mi_send_sh[] = ":Standard MI-Send for management interface command set";

const char mi_send_help[] = R"(
mi_send --msgtype <message type> --ic <IC> --ror <ROR> --csi <CSI> --opcode <opcode> [--req_dw0 <Request DW0>] [--req_dw1 <Request DW1>] [-f <inputfile>] [-h]

Options:
    --msgtype <message type>
        Message type, 4 for NVMe-MI messages.
    --ic <0|1>
        Integrity check flag.
    --ror <0|1>
        Request or response, 0 for a request.
    --csi <0|1>
        Command slot identifier.
    --opcode <opcode>
        Management Interface opcode.
    --req_dw0 <Request DW0>
        Request dword 0. VPD commands: the data offset.
    --req_dw1 <Request DW1>
        Request dword 1. VPD commands: the data length.
    -f, --inputfile <inputfile>
        Request data from input file.
    -h, --help
Examples:
    mi_send --msgtype 4 --ic 1 --ror 0 --csi 0 --opcode 5 --req_dw0 0 --req_dw1 32
    Send VPD Read of 32 bytes from offset 0.

    mi_send --msgtype 4 --ic 1 --ror 0 --csi 0 --opcode 6 --req_dw0 0 --req_dw1 32 -f raw_data
    Send VPD Write of 32 bytes of file "raw_data" to offset 0.

Notice: Please remember to send mi_receive for getting data when mi_send is success.

)";

namespace {

void debug(const nvmemi_command_request_message& request, std::size_t length)
{
    if (dbg_enable == 0) {
        return;
    }
    qrx::print("offset  mi_prp_data->Request_DW0: 0x%x\n", request.Request_DW0);
    qrx::print("datalen mi_prp_data->Request_DW1: 0x%x\n", request.Request_DW1);
    qrx::mi::debugHead(request.header, request.Opcode);
    qrx::print("prpDataLen: 0x%x\n", static_cast<unsigned>(length));
}

}  // namespace

int doMISend(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::mi::Front front(pCmdInfo, {qrx::mi::kHeadOptions, qrx::mi::kRequestOptions});
    if (const auto result = front.read(argc, argv)) {
        return *result;
    }
    const nvmemi_command_request_message request = front.request();
    qrx::mi::FileMessage message;
    if (const auto result = message.make(pCmdInfo, front.inputFile(), request, request.Request_DW1)) {
        return *result;
    }
    debug(request, message.bytes().size());
    if (front.inputFile() != nullptr) {
        qrx::mi::showFrom(request.Request_DW0, message.data());
    }
    return qrx::report(qrx::mi::sendMessage(message.bytes()), "MI send failed.\n", "MI send success.\n");
}
