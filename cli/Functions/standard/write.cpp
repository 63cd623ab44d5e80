// `write`.
#include "cli/Functions/standard/write.h"

#include "cli/Functions/standard/ns_io.h"

const char write_sh[] = ":Write data to a namespace. JBOF Support Only.";

const char write_help[] = R"(
write -n <namespace id> -s <starting LBA> -l <number of LBA> [-z <data size>] [-f <inputfile>] [options] [-h]

Options:
    -n, --nsid <namespace id>
        Namespace to write.
    -s, --slba <LBA>
        Starting LBA.
    -l, --nlb <number of LBA>
        Number of logical blocks, less one.
    -z, --datasize=<bytes>
        Bytes to write, at most those of the file; none if left out.
    -f, --inputfile <inputfile>
        Input data from input file.
    --ilbrt=<tag>
        Initial logical block reference tag.
    --lbat=<tag>
        Logical block application tag.
    --lbatm=<mask>
        Logical block application tag mask.
    --dtype=<type>
        Directive type, 4 bits.
    --prinfo=<field>
        Protection information field, 4 bits.
    --fua=<0|1>
        Force unit access.
    --lr=<0|1>
        Limited retry.
    --dsmip=<0|1>
        Dataset management, incompressible.
    --dsmsr=<0|1>
        Dataset management, sequential request.
    --dsmal=<latency>
        Dataset management, access latency, 2 bits.
    --dsmaf=<frequency>
        Dataset management, access frequency, 4 bits.
    -h, --help
Examples:
    write -n 1 -s 0 -l 0 -z 512 -f raw_data
    Write one block of 512 bytes of the file "raw_data" to LBA 0.

)";

int doWrite(int argc, char** argv, PCommand_Info pCmdInfo)
{
    static constexpr qrx::io::IoCommand kCommand{.kind = qrx::io::kWrite,
                                                 .opcode = 0x01,
                                                 .name = "Write",
                                                 .tellsResult = true,
                                                 .fileName = "inputfile",
                                                 .expects = false,
                                                 .oneDash = false};
    return qrx::io::carryOut(argc, argv, pCmdInfo, kCommand);
}
