// `format`.
#include "cli/Functions/standard/format.h"

#include <algorithm>
#include <array>
#include <bit>
#include <optional>

#include "api/src/interface/agent.h"
#include "api/src/interface/globals.h"
#include "api/src/interface/wire/ns_format.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/number.h"
#include "cli/Public/frame/option_set.h"
#include "cli/Public/frame/raid_only.h"

const char format_sh[] = ":Format a namespace. JBOF Support Only.";

const char format_help[] = R"(
format -n <namespace> -f <LBA format> [-m <Metadata Settings>] [-i <Protection Information>] [-l <Protection Information Location>] [-s <Secure Erase Settings>]  [-h]

Options:
    -n, --namespace <namespace>
        Namespace to format. All its data is lost.
    -f, --lbaf <LBA format>
        LBA format, 0 to 15.
    -m, --mset <Metadata Settings>
        0, metadata in a separate buffer
        1, metadata at the end of the data
    -i, --pi <Protection Information>
        0, none
        1 to 3, the type of protection information
    -l, --pil <Protection Information Location>
        0, last bytes of the metadata
        1, first bytes of the metadata
    -s, --ses <Secure Erase Settings>
        0, none
        1, erase user data
        2, cryptographic erase
    -h, --help
Examples:
    format -n 1 -f 0
    Format namespace 1 with LBA format 0.

    format -n 1 -f 1 -s 1
    Format namespace 1 with LBA format 1 and erase its data.

)";

namespace {

constexpr QRX_U8 kFormatNvm = 128;

// The options, with what a complaint calls them and the most that the command has room for.
struct Field {
    char letter;
    const char* name;
    const char* text;
    QRX_U32 most;
};
constexpr Field kFields[] = {
    {'n', "namespace", "namespace ID", 0xFFFFFFFF},
    {'f', "lbaf", "LBA format", 15},
    {'m', "mset", "Metadata Settings", 1},
    {'i', "pi", "Protection Information", 7},
    {'l', "pil", "Protection Information Location", 1},
    {'s', "ses", "Secure Erase Settings", 7},
};

using Values = std::array<QRX_U32, 128>;  // by letter

bool read(int letter, const char* word, Values& values)
{
    const Field& field = *std::find_if(std::begin(kFields), std::end(kFields),
                                       [letter](const Field& candidate) { return candidate.letter == letter; });
    const auto number = isNumber(word) ? qrx::readExact(word) : std::nullopt;  // decimal alone
    if (!number || *number > field.most) {
        return qrx::complain("-%c : invalid %s '%s'\n", field.letter, field.text, word);
    }
    values.at(static_cast<std::size_t>(letter)) = static_cast<QRX_U32>(*number);
    return true;
}

}  // namespace

int doFormat(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionSet options;
    for (const Field& field : kFields) {
        options.add(field.letter, field.name);
    }
    qrx::OptionScan scan(argc, argv, options.letters(), options.rows());
    Values values{};
    if (const auto result = qrx::readOptions(scan, pCmdInfo, options.known(), 0,
                                             [&](int letter) { return read(letter, scan.word(), values); })) {
        return *result;
    }
    if (scan.repeated(options.known())) {
        return qrx::duplicateOption();
    }
    if (!scan.has('n')) {
        return qrx::optionRequired(pCmdInfo, 'n');
    }
    if (qrx::refusedInRaid()) {
        return static_cast<int>(scan.count('n'));
    }
    _ns_format format{};  // each value fits its field; & tells the compiler so
    format.lbaf = values['f'] & 0xF;
    format.mset = values['m'] & 1;
    format.pi = values['i'] & 7;
    format.pil = values['l'] & 1;
    format.ses = values['s'] & 7;
    auto word = std::bit_cast<QRX_U32>(format);
    if (dbg_enable != 0) {
        qrx::print("cdw10: 0x%x\n", word);
    }
    const QRX_U32 status =
        QRX_Adapter_Admin(gCurrentAdapter, kFormatNvm, values['n'], &word, 1, nullptr, 0, nullptr, 0);
    return qrx::report(static_cast<int>(status), "Format namespace failed.\n", "Format namespace success..\n");
}
