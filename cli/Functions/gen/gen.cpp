// `gen`.
#include "cli/Functions/gen/gen.h"

#include <array>
#include <string_view>

#include "api/src/interface/wire/buffer.h"
#include "api/src/interface/wire/ns.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/list.h"
#include "cli/Public/frame/number.h"
#include "cli/Public/frame/output_file.h"
#include "cli/Public/utility.h"

const char gen_help[] =
    "\n"
    "gen -t [attachns --list=<identifier0, identifier1, ..> | createns --nsze=<nsze> --ncap=<ncap> --flbas=<flbas> "
    "--dps=<dps> --nmic=<nmic>] [-h]\n"
    "\n"
    "Options:\n"
    "    -t,  --type.\n"
    "         attachns, generate PRP data for attachment used\n"
    "         createns, generate PRP data for management used\n"
    "    --list <controller list>\n"
    "         List the controller id, it will output a prp_data which contain number of identifier and identifier id "
    "list.\n"
    "    --nsze <nsze>\n"
    "         NVMe specific field of namesapce create used\n"
    "    --ncap <ncap>\n"
    "         NVMe specific field of namesapce create used\n"
    "    --flbas <flbas>\n"
    "         NVMe specific field of namesapce create used\n"
    "    --dps <dps>\n"
    "         NVMe specific field of namesapce create used\n"
    "    --nmic <nmic>\n"
    "         NVMe specific field of namesapce create used\n"
    "    -h, --help\n"
    "Examples:\n"
    "    gen -t attachns --list=0,1\n"
    "    Generate PRP data which number of identifiers is 2 and identifier id are 0 and 1.\n"
    "\n"
    "    gen -t createns --nsze=2000 --ncap=2000 --flbas=1 --dps=0 --nmic=0\n"
    "    Generate PRP data which nsze is 2000, ncap is 2000, flbas is 1 , dps is zero and nmic is zero.\n"
    "\n"
    "\n";

namespace {

using qrx::complain;

constexpr char kFileName[] = "prp_data";
constexpr char kLetters[] = "t:0:1:2:3:4:5:\x01:h";
constexpr char kKnown[] = "t012345";
constexpr option kLong[] = {
    {"type", required_argument, nullptr, 't'},
    {"list", required_argument, nullptr, '0'},
    {"nsze", required_argument, nullptr, '1'},
    {"ncap", required_argument, nullptr, '2'},
    {"flbas", required_argument, nullptr, '3'},
    {"dps", required_argument, nullptr, '4'},
    {"nmic", required_argument, nullptr, '5'},
    {"output", required_argument, nullptr, '1'},  // here alone it is another name of --nsze
    qrx::kHelpRow,
    qrx::kEndRow,
};

enum Type { kAttach, kCreate };
constexpr qrx::Keyword kTypes[] = {{"attachns", kAttach}, {"createns", kCreate}};

struct Wish {
    int type = kAttach;
    NVME_NS_ATTACHMENT_PRP controllers{};
    NVME_NS_HSSF space{};
};

// Appends comma-separated controller ids to the list.
bool addControllers(std::string_view list, NVME_NS_ATTACHMENT_PRP& controllers)
{
    return qrx::eachElement(list, [&](const char* element) {
        const auto id = qrx::narrowId(qrx::readNumber(element));
        if (!id) {
            return complain("--list : controller ids should be a number\n");
        }
        if (controllers.NumOfIdentifiers == kControllerListMax) {
            return complain("--list : at most %zu controller ids\n", kControllerListMax);
        }
        controllers.Identifier[controllers.NumOfIdentifiers++] = *id;
        return true;
    });
}

// A negative number fills a wider field with its sign.
template <class Field>
bool takeNumber(const char* word, Field& field, const char* name)
{
    return qrx::take(qrx::readHexOrNumber(word), field) || complain("--%s : invalid %s value '%s'\n", name, name, word);
}

// Stores the option's argument; false after a complaint.
bool read(int letter, const char* word, Wish& wish)
{
    switch (letter) {
    case 't':
        return qrx::take(qrx::keyword(word, kTypes), wish.type) || complain("-t : invalid type '%s'\n", word);
    case '0':
        return addControllers(word, wish.controllers);
    case '1':
        return takeNumber(word, wish.space.nsze, "nsze");
    case '2':
        return takeNumber(word, wish.space.ncap, "ncap");
    case '3':
        return takeNumber(word, wish.space.flbas, "flbas");
    case '4':
        return takeNumber(word, wish.space.dps, "dps");
    default:
        return takeNumber(word, wish.space.nmic, "nmic");
    }
}

}  // namespace

int doGen(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    Wish wish;
    if (const auto result =
            qrx::passOptions(scan, pCmdInfo, kKnown, 0, [&](int letter) { return read(letter, scan.word(), wish); })) {
        return *result;
    }
    if (scan.repeated(kKnown)) {
        return qrx::duplicateOption();
    }
    if (!scan.has('t')) {
        return qrx::optionRequired(pCmdInfo, 't');
    }
    std::array<QRX_U8, qrx::wire::kPageSize> block{};
    (void)(wish.type == kAttach ? qrx::wire::write(block, 0, wish.controllers)
                                : qrx::wire::write(block, 0, wish.space));
    qrx::OutputFile output;
    if (!output.open(kFileName)) {
        return output.refuse(pCmdInfo);
    }
    _showRAWData(block.data(), static_cast<int>(block.size()));
    return output.save(pCmdInfo, block);
}
