// The options that `iomon` and `iomon_polling` have in common.
#include "cli/Functions/simple/iomon_options.h"

#include "api/src/interface/wire/iomon.h"
#include "cli/Public/frame/number.h"
#include "cli/Public/frame/report.h"

namespace qrx::iomon {

namespace {

constexpr Keyword kActions[] = {{"show", 0}};

bool readNamespace(const char* word, int& id)
{
    constexpr int kLast = kIomonNamespaces;
    if (!take(readNumber(word), id)) {
        return complain("-i : id should be a number\n");
    }
    return (id >= 1 && id <= kLast) || complain("-i : invalid id range, it should from 1 to 32.\n");
}

}  // namespace

bool readOption(int letter, const char* word, Wish& wish)
{
    switch (letter) {
    case 'a':
        return keyword(word, kActions).has_value() || complain("-a : invalid action '%s'.\n", word);
    case 'i':
        return readNamespace(word, wish.id);
    default:
        (void)wish.output.open(word);  // that it failed is told when all else is right
        return true;
    }
}

bool checkFile(const OutputFile& output)
{
    return !output.hasFailed() || complain("File is not exist.\n");
}

}  // namespace qrx::iomon
