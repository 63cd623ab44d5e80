// `writezero`.
#include "cli/Functions/standard/writezero.h"

#include "cli/Functions/standard/ns_io.h"

const char writezero_sh[] = ":Write zeros to a namespace. JBOF Support Only.";

const char writezero_help[] = R"(
writezero -n <namespace id> -s <starting LBA> -l <number of LBA> [options] [-h]

Options:
    -n, --nsid <namespace id>
        Namespace to write.
    -s, --slba <LBA>
        Starting LBA.
    -l, --nlb <number of LBA>
        Number of logical blocks, less one.
    --ilbrt=<tag>
        Initial logical block reference tag.
    --lbat=<tag>
        Logical block application tag.
    --lbatm=<mask>
        Logical block application tag mask.
    --deac=<0|1>
        Deallocate the blocks.
    --prinfo=<field>
        Protection information field, 4 bits.
    --fua=<0|1>
        Force unit access.
    --lr=<0|1>
        Limited retry.
    -h, --help
Examples:
    writezero -n 1 -s 0 -l 7
    Make zeros of the 8 blocks from LBA 0.

    writezero -n 1 -s 0 -l 7 --deac=1
    Make zeros of them and deallocate them.

)";

int doWritezero(int argc, char** argv, PCommand_Info pCmdInfo)
{
    static constexpr qrx::io::IoCommand kCommand{.kind = qrx::io::kWriteZero,
                                                 .opcode = 0x08,
                                                 .name = "Write zero",
                                                 .tellsResult = true,
                                                 .fileName = nullptr,
                                                 .expects = false,
                                                 .oneDash = false};
    return qrx::io::carryOut(argc, argv, pCmdInfo, kCommand);
}
