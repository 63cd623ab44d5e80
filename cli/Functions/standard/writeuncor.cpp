// `writeuncor`.
#include "cli/Functions/standard/writeuncor.h"

#include "cli/Functions/standard/ns_io.h"

const char writeuncor_sh[] = ":Make blocks of a namespace uncorrectable. JBOF Support Only.";

const char writeuncor_help[] = R"(
writeuncor -n <namespace id> -s <starting LBA> -l <number of LBA> [-h]

Options:
    -n, --nsid <namespace id>
        Namespace to spoil.
    -s, --slba <LBA>
        Starting LBA.
    -l, --nlb <number of LBA>
        Number of logical blocks, less one.
    -h, --help
Examples:
    writeuncor -n 1 -s 0 -l 0
    Make the block at LBA 0 one that cannot be read until it is written again.

)";

int doWriteuncor(int argc, char** argv, PCommand_Info pCmdInfo)
{
    static constexpr qrx::io::IoCommand kCommand{.kind = qrx::io::kWriteUncor,
                                                 .opcode = 0x04,
                                                 .name = "Write uncorrectable",
                                                 .tellsResult = false,
                                                 .fileName = nullptr,
                                                 .expects = false,
                                                 .oneDash = false};
    return qrx::io::carryOut(argc, argv, pCmdInfo, kCommand);
}
