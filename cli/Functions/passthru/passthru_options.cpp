// The options of `passthru`: their texts, and what they accept.
#include "cli/Functions/passthru/passthru_options.h"

#include <algorithm>
#include <cstdio>

#include "cli/Functions/passthru/passthru.h"
#include "cli/Public/frame/number.h"
#include "cli/Public/frame/report.h"

const char passthru_help[] =
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
    "         send read and write command\n"
    "         Non direct command can use read or write command to send\n"
    "    -i,  --id <SSD adapter id>\n"
    "         This will mapping to SSD adapter ID of PD info command.\n"
    "    -o,  --opcode <opcode>\n"
    "         This is opcode of standard NVMe admin command set\n"
    "         Accept value by decimal or hexadecimal.\n"
    "    -n,  --nsid <SSD backend namespace ID>\n"
    "    --cdw10 <cdw10>\n"
    "         Bytes 43:40 in admin command format.\n"
    "    --cdw11 <cdw11>\n"
    "         Bytes 47:44 in admin command format.\n"
    "    --cdw12 <cdw12>\n"
    "         Bytes 51:48 in admin command format.\n"
    "    --cdw13 <cdw13>\n"
    "         Bytes 55:52 in admin command format.\n"
    "    -d,  --data-len <data-len>\n"
    "         Set data length buffer for admin command.\n"
    "    --outputfile <outputfile>\n"
    "         Output data into output file.\n"
    "    --inputfile <inputfile>\n"
    "         Input data from input file.\n"
    "    -h,  --get help of passthru command.\n"
    "Examples:\n"
    "\tpassthru -i 0 -o 0xa -n 1 --cdw10=0x103 --data-len=4096 -r read \n"
    "\tSend a read command for default LBA Range Type of get feature to SSD backend RC/Slot ID 0 and SSD backend "
    "namespace ID 1 of Halix.\n"
    "\n"
    "\tpassthru -i 0 -o 0x2 -n 0xffffffff --cdw10=0x7f0002 --data-len=512 -r read \n"
    "\tSend a read command for getting SMART information of SSD backend RC/Slot ID 0 of Halix.\n"
    "\n"
    "\tpassthru -i 0 -o 6 --cdw10=1 --data-len=4096 -r read \n"
    "\tSend a read command for getting primary controller information of identify to SSD backend RC/Slot ID 0 of "
    "Halix.\n"
    "\n"
    "\tpassthru -i 0 -o 0x6 --cdw10=1 --data-len=4096 -r read --outputfile id_data \n"
    "\tSend a read command for getting primary controller information of identify to SSD backend RC/Slot ID 0 of "
    "Halix into output file \"id_data\".\n"
    "\n"
    "\tpassthru -i 0 -o 0x15 --cdw10=0 --data-len=4096 -n 1 --inputfile prp_data -r write \n"
    "\tSend a write command for SSD backend RC/Slot ID 0 to attach SSD backend namespace ID 1 with controller id list "
    "of input file \"prp_data\"\n";

namespace qrx::passthru {

namespace {

constexpr char kOutput = '8';
constexpr char kInput = '9';

}  // namespace

const char kLetters[] = "t:i:u:r:p:f:o:n:m:d:\x01:s:h";
const option kLong[] = {
    {"id", required_argument, nullptr, 'i'},
    {"request", required_argument, nullptr, 'r'},
    {"psdt", required_argument, nullptr, 'p'},
    {"fuse", required_argument, nullptr, 'f'},
    {"opcode", required_argument, nullptr, 'o'},
    {"nsid", required_argument, nullptr, 'n'},
    {"cdw2", required_argument, nullptr, '2'},
    {"cdw3", required_argument, nullptr, '3'},
    {"metadata-len", required_argument, nullptr, 'm'},
    {"data-len", required_argument, nullptr, 'd'},
    {"cdw10", required_argument, nullptr, '4'},
    {"cdw11", required_argument, nullptr, '5'},
    {"cdw12", required_argument, nullptr, '6'},
    {"cdw13", required_argument, nullptr, '7'},
    {"outputfile", required_argument, nullptr, kOutput},
    {"inputfile", required_argument, nullptr, kInput},
    {"showcmd", no_argument, nullptr, 's'},
    kOutputRow,
    kHelpRow,
    kEndRow,
};

namespace {

constexpr Keyword kRequests[] = {{"read", 1}, {"write", 0}, {"none", 0}};  // reads
constexpr Keyword kActions[] = {{"admin", 0}, {"nvm", 1}};                 // of no effect

template <class Field>
bool number(const char* word, Field& field, const char* name)
{
    return take(readHexOrNumber(word), field) || complain("%s should be a decimal or hexadecimal\n", name);
}

// Alone among the numbers, a hexadecimal one may take all 32 bits.
bool nsid(const char* word, Wish& wish)
{
    return take(readWideHexOrNumber(word), wish.nsid) ||
           complain("-n: Backend Namespace ID should be a decimal or hexadecimal\n");
}

bool word(char letter, const char* text, Wish& wish)
{
    const auto* row = std::find_if(kWords.begin(), kWords.end(),
                                   [letter](const WordOption& candidate) { return candidate.letter == letter; });
    std::array<char, 32> name{};
    (void)std::snprintf(name.data(), name.size(), "--cdw%u: CDW%u", row->index, row->index);
    return number(text, wish.words.at(row->index), name.data());
}

}  // namespace

bool readDisk(const char* word, QRX_U32& disk)
{
    const auto typed = readNumber(word);
    if (!typed) {
        return complain("-i: SSD backend RC/Slot ID should be a number\n");
    }
    return take(readId(word), disk) || complain("-i : invalid SSD backend RC/Slot ID '%s'.\n", word);
}

bool read(int letter, const char* text, Wish& wish)
{
    switch (letter) {
    case 't':
        return keyword(text, kActions) || complain("-t : invalid action '%s'\n", text);
    case 'i':
        return readDisk(text, wish.disk);
    case 'r':
        return take(keyword(text, kRequests), wish.reads) || complain("-r : invalid request '%s'\n", text);
    case 'p':
        return number(text, wish.psdt, "-p: PSDT");
    case 'f':
        return number(text, wish.fuse, "-f: FUSE");
    case 'o':
        return number(text, wish.opcode, "-o: OPCode");
    case 'n':
        return nsid(text, wish);
    case 'm': {
        QRX_U32 unused = 0;  // no command carries metadata
        return number(text, unused, "-m: Metadata length id");
    }
    case 'd':
        wish.lengthWord = text;
        return number(text, wish.length, "-d: data length id");
    case kOutput:
        (void)wish.output.open(text);
        return true;
    case kInput:
        (void)wish.input.open(text);
        return true;
    case 's':
        return true;
    default:
        return word(static_cast<char>(letter), text, wish);
    }
}

}  // namespace qrx::passthru
