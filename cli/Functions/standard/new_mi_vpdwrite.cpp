// `new_vpdwrite`.
#include "cli/Functions/standard/new_mi_vpdwrite.h"

#include "cli/Functions/standard/mi_vpdwrite.h"

const char new_vpdwrite_sh[] = ":Write VPD via standard 1.1 MI-Send";

const char new_vpdwrite_help[] = R"(
new_vpdwrite -o <offset> -l <data length> -f <input file> [-h]

Options:
    -o, --offset.
        Offset of VPD data
    -l, --datalen.
        Data length of input data from offset to set
    -f, --inputfile <inputfile>
         Input data which want to write into VPD.
    -h, --help
Examples:
    new_vpdwrite -o 0 -l 32 -f raw_data
    Write VPD data from offset 0 and data length is 32 bytes from file 'raw_data'.

)";

int doNewVPDWrite(int argc, char** argv, PCommand_Info pCmdInfo)
{
    return qrx::mi::writeVpd(argc, argv, pCmdInfo, {.headInWords = true});
}
