// `mi_passthruwrite`.
#include "cli/Functions/standard/mi_passthruwrite.h"

#include "cli/Functions/standard/mi_vpdwrite.h"

const char mi_passthruwrite_help[] = R"(
mi_passthruwrite -o <offset> -l <data length> -f <input file> [-h]

Options:
    -o, --offset.
        Offset of VPD data
    -l, --datalen.
        Data length of input data from offset to set
    -f, --inputfile <inputfile>
         Input data which want to write into VPD.
    -h, --help
Examples:
    mi_passthruwrite -o 0 -l 32 -f raw_data
    Write VPD data from offset 0 and data length is 32 bytes from file 'raw_data'.


)";

int doMIPassthruWrite(int argc, char** argv, PCommand_Info pCmdInfo)
{
    return qrx::mi::writeVpd(argc, argv, pCmdInfo, {.helpsWhenBare = false, .showsFile = false, .shortestBytes = true});
}
