// `linfo`.
#include "cli/Functions/simple/simple_oem_linfo.h"

#include "cli/Functions/simple/oem_security.h"
#include "cli/Functions/simple/page_dump.h"
#include "cli/Public/frame/report.h"

const char simple_linfo_sh[] = ":For dump light info data structure";
const char simple_linfo_help[] =
    "\n"
    "linfo [--outputfile <outputfile>] [-a show] [-h]\n"
    "\n"
    "Options:\n"
    "    --outputfile <outputfile>\n"
    "         Output data into output file.\n"
    "    -a, --action <show>\n"
    "         show light info readable.\n"
    "    -h, --help\n"
    "Examples:\n"
    "    linfo\n"
    "    Output raw data\n"
    "\n"
    "    linfo --outputfile=raw_data\n"
    "    Output raw data into file \"raw_data\"\n"
    "\n";

void _showLightData(std::span<const QRX_U8, qrx::wire::kPageSize> /*page*/)
{
    qrx::print("\n\n");
}

int doLINFO(int argc, char** argv, PCommand_Info pCmdInfo)
{
    const auto command = qrx::security::command(kSecurityLight).word(10, qrx::kWholePage);
    return qrx::dumpPage(argc, argv, pCmdInfo, {command, _showLightData, 1});
}
