// The long texts as they must appear, line by line.
#pragma once

namespace expected {

inline constexpr char kHelpHead[] =
    "\n"
    "Legend: \n"
    "  [options] - the options within [] are optional. \n"
    "  <x|y|z>   - choose one of the x, y or z. \n"
    "  [<x|y|z>] - choose none or one of the x, y or z. \n"
    "\n"
    "Abbreviation: \n"
    "    VD  - Virtual Disk\n"
    "    PD  - Physical Disk\n"
    "    NS  - Namespace\n"
    "    BGA - BackGround Activity\n"
    "\n"
    "Type '-output [filename]' to output to a file. \n"
    "Type 'help' to display this page. \n"
    "Type 'help command' to display the help page of 'command'. \n"
    "Type 'command -h' to display help for 'command'. \n"
    "\n"
    "Command name is not case sensitive and may be abbreviated if the  \n"
    "abbreviation is unique. Most commands support both short (-) and   \n"
    "long (--) options.Long option names may be abbreviated if the abbreviation  \n"
    "is unique. A long option may take a parameter of the form '--arg=param'  \n"
    "or '--arg param'. Option name is case sensitive, option parameter is not.  \n"
    "\n"
    "COMMAND   BRIEF DESCRIPTION \n"
    "-----------------------------------------------------------------\n";

inline constexpr char kHelpFoot[] =
    "\n"
    "Non-shell mode \n"
    "  qrx_cli [<Adapter ID>] <COMMAND> <OPTIONS>\n"
    "  Default Adapter ID is 0.\n"
    "E.g.\n"
    "  qrx_cli info -o pd\n"
    "  Show all PD information of adapter ID 0.\n"
    "\n"
    "  qrx_cli 1 info -o pd\n"
    "  Show all PD information of adapter ID 1.\n";

inline constexpr char kHelpHelp[] =
    "\n"
    "help [<command list>]\n"
    "\n"
    "Options:\n"
    "    <command list>display specified commands' help page \n"
    "    If no option specified, brief description on each command is displayed.\n"
    "\n";

inline constexpr char kVersionHelp[] =
    "\n"
    "Options:\n"
    "    -h, --help\n"
    "Examples:\n"
    "    version \n"
    "    CLI Version: 1.0.0.1046\n"
    "    API Version: 1.0.0.1046\n"
    "    Support Firmware Version: 1.0.x.1039 above\n"
    "\n";

inline constexpr char kAdapterHelpHead[] =
    "\n"
    "adapter [-i <NVMe Controller ID> | -s <bus slot> | -n <SUBNQN> | --list]\n"
    "\n"
    "Options:\n"
    "    -i, --id <NVMe Controller ID>\n"
    "        ID of the NVMe Controller to be selected. \n"
    "        If -i is not specified, display current NVMe Controller ID\n"
    "    -s, --slot <bus slot>\n"
    "        The value format is \"bus:slot.func\"(In some OS, slot means device)\n"
    "    -n, --SUBNQN <SUBNQN>\n";

inline constexpr char kAdapterHelpOptions[] =
    "    --list \n"
    "        Show current NVMe Controller ID and total NVMe Controllers.\n"
    "    -h, --help\n"
    "\n"
    "Examples:\n";

inline constexpr char kInfoHelp[] =
    "\n"
    "info -o <hba|vd|pd|ns> [-i <id>] [-t <host | vd>[-v <vd_id>]] [--all] [-h]\n"
    "\n"
    "Options:\n"
    "    -o, --object <hba|vd|pd|ns>\n"
    "        hba - NVMe Controller\n"
    "        vd  - Virtual Disk\n"
    "        pd  - Physical Disk\n"
    "        ns  - Name Space\n"
    "    -i, --id <VD id|PD id|NS id>\n"
    "        Virtual disk id, Physcial disk id or Namespace id.\n"
    "        If not specified, all instances of the HBA, VD, PD or NS will be retrieved.\n"
    "    -t, --type <Host | VD>\n"
    "        For ns info only.\n"
    "        Host, namespace information which report for OS.\n"
    "        VD, namespace information which can be list from specific VD ID.\n"
    "        If not specified, default type is Host. CLI will list all namespace information which report for OS.\n"
    "    -v, --vd_id <VD id>\n"
    "        For ns info of VD only. This is for list all namespace information of specific VD ID.\n"
    "        If not specified, all instances of the NS will be retrieved.\n"
    "    --all, Display SUBNQN when get HBA info.\n"
    "    -h, --help\n"
    "\n"
    "Examples:\n"
    "    info -o hba\n"
    "    Information of NVMe controller.\n"
    "\n"
    "    info -o vd -i 0\n"
    "    Information of VD ID 0.\n"
    "\n"
    "    info -o pd -i 0\n"
    "    Information of PD ID 0.\n"
    "\n"
    "    info -o ns\n"
    "    Information of all namespace which NVMe controller report to OS.\n"
    "\n"
    "    info -o ns -t vd -v 0\n"
    "    Information of all namespace which VD ID 0 contains.\n"
    "\n"
    "    info -o hba --all\n"
    "    Information of NVMe controller include SUBNQN.\n"
    "\n";

}  // namespace expected
