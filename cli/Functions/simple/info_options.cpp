#include "cli/Functions/simple/info_options.h"

#include "cli/Public/frame/number.h"
#include "cli/Public/frame/report.h"

namespace qrx::info {
namespace {

constexpr Keyword kObjects[] = {{"hba", kHba}, {"pd", kPd}, {"hd", kPd}, {"vd", kVd}, {"ld", kVd}, {"ns", kNs}};
constexpr Keyword kTypes[] = {{"host", kOfHost}, {"vd", kOfVd}, {"ld", kOfVd}};

// Stores the option's argument, null where it was left out; false after a complaint.
bool read(int letter, const char* value, const char* word, Wish& wish)
{
    switch (letter) {
    case 'o':
        return take(keyword(value, kObjects), wish.object) || complain("-o : invalid object '%s'\n", word);
    case 'i':
        return take(readNumber(value), wish.id) || complain("-i : id should be a number\n");
    case 't':
        return take(keyword(value, kTypes), wish.type) || complain("-t : invalid type '%s'\n", word);
    case 'v':
        return take(readNumber(value), wish.vd) || complain("-v : VD id should be a number\n");
    default:
        return true;
    }
}

}  // namespace

std::optional<int> readWish(OptionScan& scan, PCommand_Info row, BareWord bareWord, Wish& wish)
{
    bool good = true;  // a bad option ends the scan, not yet the command
    for (int letter; good && (letter = scan.next()) != OptionScan::kEnd;) {
        switch (letter) {
        case 'o':
        case 'i':
        case 't':
        case 'v':
        case 'a':
            good = read(letter, optarg, scan.word(), wish);
            break;
        case OptionScan::kError:
            good = false;
            break;
        default:
            return showHelp(row, 0);
        }
    }
    if (scan.argc() == 1 && bareWord == BareWord::kShowsHelp) {
        return showHelp(row, 1);
    }
    if (scan.repeated("oitva")) {
        return duplicateOption();
    }
    if (!scan.has('o')) {
        return optionRequired(row, 'o', 1);
    }
    return good ? std::nullopt : std::optional<int>(1);
}

QRX_U16 zeroBased(const OptionScan& scan, int id)
{
    if (scan.has('i')) {
        id -= idBase();
        if (id < 0) {
            print("-i : id should be a number\n");
        }
    }
    return static_cast<QRX_U16>(id);
}

}  // namespace qrx::info
