// `new_mi_send`.
#include "cli/Functions/standard/new_mi_send.h"

#include "api/src/interface/globals.h"
#include "cli/Functions/standard/mi_front.h"
#include "cli/Functions/standard/mi_payload.h"

const char new_mi_send_sh[] = ":Standard 1.1 MI-Send for management interface command set";

const char new_mi_send_help[] = R"(
new_mi_send --msgtype <message type> --ic <IC> --ror <ROR> --csi <CSI> --opcode <opcode> [--req_dw0 <Request DW0>] [--req_dw1 <Request DW1>] [-l <data length> -f <inputfile>] [-h]

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
        Request dword 0.
    --req_dw1 <Request DW1>
        Request dword 1.
    -l, --datalen <data length>
        Length of the request data, at most 4096 bytes.
    -f, --inputfile <inputfile>
        Request data from input file.
    -h, --help
Examples:
    new_mi_send --msgtype 4 --ic 1 --ror 0 --csi 0 --opcode 6 --req_dw0 0 --req_dw1 32 -l 32 -f raw_data
    Send VPD Write of 32 bytes of file "raw_data" to offset 0.

)";

namespace {

void debug(const nvmemi_command_request_message& request, QRX_U32 length)
{
    if (dbg_enable == 0) {
        return;
    }
    qrx::print("datalen: 0x%x\n", length);
    qrx::mi::debugHead(request.header, request.Opcode);
    qrx::print("req_dw0: 0x%x\n", request.Request_DW0);
    qrx::print("req_dw1: 0x%x\n", request.Request_DW1);
}

}  // namespace

int doNewMISend(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::mi::Front front(pCmdInfo, {qrx::mi::kHeadOptions, qrx::mi::kRequestOptions, qrx::mi::kLengthOption});
    if (const auto result = front.read(argc, argv)) {
        return *result;
    }
    const nvmemi_command_request_message request = front.request();
    qrx::InputFile* const input = front.inputFile();
    qrx::mi::FilePayload payload;  // without a file there is no data, whatever its length
    if (input != nullptr) {
        if (const auto result = payload.load(pCmdInfo, *input, front.value('l'))) {
            return *result;
        }
    }
    debug(request, front.value('l'));
    if (input != nullptr) {
        qrx::mi::showFrom(request.Request_DW0, payload.data());
    }
    const int status =
        qrx::report(qrx::mi::sendData(request, payload.data()), "MI send failed.\n", "MI send success.\n");
    if (input != nullptr) {
        qrx::print("release buffer\nclose file\n");
    }
    qrx::print("all flow done\n");
    return status;
}
