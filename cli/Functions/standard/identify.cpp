// `identify`.
#include "cli/Functions/standard/identify.h"

#include <array>
#include <cstdio>

#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/identify.h"
#include "cli/Public/frame/number.h"

const char identify_help[] = R"(
identify -c <cns> [-i <cntid>] [-n <namespace id>] [--rawdata] [-h]

Options:
    -c,  --cns.
         Controller or Namespace Structure
    -i,  --cntid.
         Controller Identifier
    -n,  --namespace.
         namespace id
    --rawdata.
    -h,  --get help of identify command.
Examples:
    identify -c 1
    get identify controller info

    identify -c 0 -n 1
    get identify namespace id 1 info

)";

namespace {

using qrx::complain;
using qrx::readHexOrNumber;
using qrx::take;

constexpr char kLetters[] = "c:i:n:r:\x01:h";
constexpr option kLong[] = {
    {"cns", required_argument, nullptr, 'c'},
    {"cntid", optional_argument, nullptr, 'i'},
    {"namespace", optional_argument, nullptr, 'n'},
    {"rawdata", no_argument, nullptr, 'r'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

struct Wish {
    QRX_U8 cns = qrx::kIdentifyNamespace;
    QRX_U16 controller = 0;  // checked, and of no use to the command
    QRX_U32 nsid = 0;
};

// Stores the option's argument, null where it was left out; false after a complaint.
bool read(int letter, const char* value, const char* word, Wish& wish)
{
    switch (letter) {
    case 'c':
        return take(readHexOrNumber(value), wish.cns) ||
               complain("-c : invalid controller or namespace structure '%s'\n", word);
    case 'i':
        return take(readHexOrNumber(value), wish.controller) ||
               complain("-i : invalid controller identifier '%s'\n", word);
    case 'n':
        return take(readHexOrNumber(value), wish.nsid) || complain("-n : invalid namespace id '%s'\n", word);
    default:
        return true;  // the short -r has a value that nobody reads
    }
}

void show(QRX_U8 cns, std::span<QRX_U8, qrx::wire::kPageSize> page, bool raw)
{
    if (cns == qrx::kIdentifyController) {
        _showIDDetail(page);
    } else if (cns == qrx::kIdentifyNamespace) {
        _showNSDetail(page);
    } else {
        dumpContent(page.data(), static_cast<int>(page.size()));
        return;
    }
    if (raw) {
        std::fputs("\n", stdout);  // there even under -output
        dumpContent(page.data(), static_cast<int>(page.size()));
    }
}

}  // namespace

int doIdentify(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    Wish wish;
    const auto ended = qrx::readOptions(scan, pCmdInfo, "cinr", 0,
                                        [&](int letter) { return read(letter, optarg, scan.word(), wish); });
    if (ended) {
        return 0;  // after the help of a bare word too
    }
    if (!scan.has('c') && !scan.has('i') && !scan.has('n') && !scan.has('r')) {
        return qrx::showHelp(pCmdInfo, 0);
    }
    if (scan.repeated("cinr")) {
        return qrx::duplicateOption();
    }
    if (scan.has('c') && wish.cns == qrx::kIdentifyNamespace) {
        if (!scan.has('n')) {
            return qrx::optionRequired(pCmdInfo, 'n');
        }
        if (wish.nsid == 0) {
            return qrx::refuse(0, "namespace ID can not be zero when you identify namespace. (NS ID: 0x%d)\n", 0);
        }
    }
    std::array<QRX_U8, qrx::wire::kPageSize> page{};
    if (const int status = qrx::identify(wish.nsid, wish.cns, page)) {
        return qrx::refuse(status, "get identify info failed.\n");
    }
    show(wish.cns, page, scan.has('r'));
    return 0;
}
