// `new_mi_receive`.
#include "cli/Functions/standard/new_mi_receive.h"

#include <algorithm>
#include <array>

#include "cli/Functions/standard/mi_front.h"

const char new_mi_receive_sh[] = ":Standard 1.1 MI-Receive for management interface command set";

const char new_mi_receive_help[] = R"(
new_mi_receive --msgtype <message type> --ic <IC> --ror <ROR> --csi <CSI> --opcode <opcode> [--req_dw0 <Request DW0>] [--req_dw1 <Request DW1>] [-l <data length>] [-f <outputfile>] [-h]

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
        Length of the data to show, at most 4096 bytes.
    -f, --outputfile <outputfile>
        Output the data that is shown into output file too.
    -h, --help
Examples:
    new_mi_receive --msgtype 4 --ic 1 --ror 0 --csi 0 --opcode 5 --req_dw0 0 --req_dw1 32 -l 32
    Receive the answer of VPD Read of 32 bytes from offset 0.

)";

namespace {

// Shows the data from `first` on, as much of it as there is, and saves it too if a file was named. 0, or 1 after a
// complaint about the file.
int deliver(PCommand_Info row, qrx::OutputFile& output, std::span<const QRX_U8> page, QRX_U32 first, QRX_U32 length)
{
    const std::size_t begin = std::min<std::size_t>(first, page.size());
    const auto data = page.subspan(begin, std::min<std::size_t>(length, page.size() - begin));
    qrx::mi::showContent(data, first);
    return !output.isNamed() || (output.write(data) && output.close()) ? 0 : output.refuse(row);
}

}  // namespace

int doNewMIReceive(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::mi::Front front(pCmdInfo, {qrx::mi::kHeadOptions, qrx::mi::kRequestOptions, qrx::mi::kLengthOption}, true);
    if (const auto result = front.read(argc, argv)) {
        return *result;
    }
    const QRX_U32 length = front.value('l');
    if (length > qrx::wire::kPageSize) {
        return qrx::mi::refuseLength(pCmdInfo, length, qrx::wire::kPageSize);
    }
    const nvmemi_command_request_message request = front.request();
    std::array<QRX_U8, qrx::wire::kPageSize> page{};
    int status = qrx::mi::receiveData(request, page);
    if (status != 0) {
        qrx::print("MI receive failed.\n");
    } else {
        status = deliver(pCmdInfo, front.outputFile(), page, request.Request_DW0, length);
    }
    qrx::print("release response_info.\nall flow done.\n");
    return status;
}
