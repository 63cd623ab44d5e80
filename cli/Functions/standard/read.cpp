// `read`.
#include "cli/Functions/standard/read.h"

#include "cli/Functions/standard/ns_io.h"

const char read_sh[] = ":Read data from a namespace. JBOF Support Only.";

const char read_help[] = R"(
read -n <namespace id> -s <starting LBA> -l <number of LBA> [-z <data size>] [-f <outputfile>] [options] [-h]

Options:
    -n, --nsid <namespace id>
        Namespace to read.
    -s, --slba <LBA>
        Starting LBA.
    -l, --nlb <number of LBA>
        Number of logical blocks, less one.
    -z, --datasize=<bytes>
        Bytes to read, at most 0x20000; none if left out.
    -f, --outputfile <outputfile>
        Output data into output file.
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
    read -n 1 -s 0 -l 0 -z 512
    Read one block of 512 bytes from LBA 0 and show it.

    read -n 1 -s 0x100 -l 7 -z 4096 -f raw_data
    Read 8 blocks of 512 bytes from LBA 0x100 into the file "raw_data".

)";

int doRead(int argc, char** argv, PCommand_Info pCmdInfo)
{
    static constexpr qrx::io::IoCommand kCommand{.kind = qrx::io::kRead,
                                                 .opcode = 0x02,
                                                 .name = "Read",
                                                 .tellsResult = false,
                                                 .fileName = "outputfile",
                                                 .expects = true,
                                                 .oneDash = false};
    return qrx::io::carryOut(argc, argv, pCmdInfo, kCommand);
}
