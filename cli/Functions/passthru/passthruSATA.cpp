// `passthru_sata`.
#include "cli/Functions/passthru/passthruSATA.h"

#include "api/src/interface/wire/security.h"
#include "cli/Functions/passthru/passthru.h"

const char passthru_sata_sh[] = ":Passthrough ATA command to backend SATA device";
const char passthru_sata_help[] =
    "\n"
    "passthru -r <read | write> -i <SSD backend RC/Slot ID>\n"
    "         [-o <opcode>]\n"
    "         [-n <SSD backend namespace ID>][--cdw2=<cdw2>][--cdw3=<cdw3>] \n"
    "         [--cdw10=<cdw10>][--cdw11=<cdw11>][--cdw12=<cdw12>]\n"
    "         [--cdw13=<cdw13>]\n"
    "         [-d <data-len>]\n"
    "         [--outputfile <outputfile>][--inputfile <inputfile>]\n"
    "         [--showcmd][-h]\n"
    "\n"
    "Notice: CDW14 and CDW15 are used by passthru command.\n"
    "\n"
    "Options:\n"
    "    -r,  --req <read | write | none>\n"
    "         read, data comes from the drive; write and none, it does not\n"
    "    -i,  --id <SSD adapter id>\n"
    "         SSD adapter ID of PD info command.\n"
    "    -o,  --opcode <opcode>\n"
    "         The ATA command. Accept value by decimal or hexadecimal.\n"
    "    --cdw10 <cdw10>\n"
    "         FIS DWORD 0.\n"
    "    --cdw11 <cdw11>\n"
    "         FIS DWORD 1.\n"
    "    --cdw12 <cdw12>\n"
    "         FIS DWORD 2.\n"
    "    --cdw13 <cdw13>\n"
    "         FIS DWORD 3.\n"
    "    -d,  --data-len <data-len>\n"
    "         Bytes of data, up to 4096.\n"
    "    --outputfile <outputfile>\n"
    "    --inputfile <inputfile>\n"
    "    --showcmd\n"
    "    -h,  --help\n"
    "Examples:\n"
    "\tpassthru_sata -i 0 -o 0xec --cdw10=0xec8027 --data-len=512 -r read\n"
    "\tSend IDENTIFY DEVICE to SATA device 0.\n"
    "\n"
    "\tpassthru_sata -i 0 -o 0xe5 --cdw10=0xe58027 -r none\n"
    "\tSend CHECK POWER MODE to SATA device 0.\n";

int doPassthru_sata(int argc, char** argv, PCommand_Info pCmdInfo)
{
    return qrx::passthru::run(argc, argv, pCmdInfo, {kSataFromDrive, kSataToDrive, true});
}
