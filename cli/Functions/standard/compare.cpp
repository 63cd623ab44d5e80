// `compare`.
#include "cli/Functions/standard/compare.h"

#include "cli/Functions/standard/ns_io.h"

const char compare_sh[] = ":Compare data of a namespace. JBOF Support Only.";

const char compare_help[] = R"(
compare -n <namespace id> -s <starting LBA> -l <number of LBA> [-f <inputfile>] [options] [-h]

Options:
    -n, --nsid <namespace id>
        Namespace to compare.
    -s, --slba <LBA>
        Starting LBA.
    -l, --nlb <number of LBA>
        Number of logical blocks, less one.
    -f, --inputfile <inputfile>
        Data to compare with, at most 0x20000 bytes of it.
    --eilbrt=<tag>
        Expected initial logical block reference tag.
    --elbat=<tag>
        Expected logical block application tag.
    --elbatm=<mask>
        Expected logical block application tag mask.
    --prinfo=<field>
        Protection information field, 4 bits.
    --fua=<0|1>
        Force unit access.
    --lr=<0|1>
        Limited retry.
    -h, --help
Examples:
    compare -n 1 -s 0 -l 0 -f raw_data
    Compare the block at LBA 0 with the file "raw_data".

)";

int doCompare(int argc, char** argv, PCommand_Info pCmdInfo)
{
    static constexpr qrx::io::IoCommand kCommand{.kind = qrx::io::kCompare,
                                                 .opcode = 0x05,
                                                 .name = "Compare",
                                                 .tellsResult = false,
                                                 .fileName = "inputfile",
                                                 .expects = true,
                                                 .oneDash = true};
    return qrx::io::carryOut(argc, argv, pCmdInfo, kCommand);
}
