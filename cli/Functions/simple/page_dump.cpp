// A page that the controller keeps, as bytes, in a file, or in words.
#include "cli/Functions/simple/page_dump.h"

#include <array>

#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/output_file.h"
#include "cli/Public/utility.h"

namespace qrx {

namespace {

constexpr char kOutputFile = '1';

constexpr char kLetters[] = "1:a:\x01:h";
constexpr option kLong[] = {
    {"outputfile", required_argument, nullptr, kOutputFile},
    {"action", required_argument, nullptr, 'a'},
    kOutputRow,
    kHelpRow,
    kEndRow,
};

constexpr Keyword kActions[] = {{"show", 0}};

}  // namespace

int dumpPage(int argc, char** argv, PCommand_Info row, const PageDump& dump)
{
    OutputFile output;
    OptionScan scan(argc, argv, kLetters, kLong);
    if (const auto result = passOptions(scan, row, "1a", 0, [&](int letter) {
            if (letter == kOutputFile) {
                (void)output.open(scan.word());  // a failure is told when all options are good
                return true;
            }
            return keyword(scan.word(), kActions) || complain("-a : invalid action '%s'.\n", scan.word());
        })) {
        return *result;
    }
    if (scan.repeated("a")) {
        return duplicateOption();
    }
    if (output.hasFailed()) {
        return refuse(dump.missingFile, "File is not exist.\n");
    }
    dump.command.debug();
    std::array<QRX_U8, wire::kPageSize> page{};
    if (const int status = dump.command.receive(page)) {
        return refuse(status, "\nUnable to dump NVMe Controller info from NVMe Controller %d\n", gCurrentAdapter);
    }
    if (output.isNamed()) {
        if (const int lost = output.save(row, page)) {
            return lost;
        }
    } else if (scan.has('a')) {
        dump.show(page);
    } else {
        _showRAWData(page.data(), static_cast<int>(page.size()));
    }
    return refuse(0, "cmd success\n");
}

}  // namespace qrx
