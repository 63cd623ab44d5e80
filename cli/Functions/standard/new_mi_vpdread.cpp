// `new_vpdread`.
#include "cli/Functions/standard/new_mi_vpdread.h"

#include "cli/Functions/standard/mi_vpdread.h"

const char new_vpdread_sh[] = ":Read VPD via standard 1.1 MI-Send and MI-Receive";

const char new_vpdread_help[] = R"(
new_vpdread -o <offset> -l <data length> [-f <outputfile>] [-h]

Options:
    -o, --offset.
        Offset of VPD data
    -l, --datalen.
        Data length of VPD data from offset to get
    -f, --outputfile <outputfile>
         Output data into output file.
    -h, --help
Examples:
    new_vpdread -o 0 -l 32
    Read VPD data from offset 0 and data length is 32 bytes.

    new_vpdread -o 0 -l 32 -f raw_data
    Read VPD data from offset 0 and data length is 32 bytes and write into file which named raw_data.

)";

int doNewVPDRead(int argc, char** argv, PCommand_Info pCmdInfo)
{
    return qrx::mi::readVpd(argc, argv, pCmdInfo, true);
}
