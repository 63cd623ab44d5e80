// `iomon`.
#include "cli/Functions/simple/simple_iomon.h"

#include "cli/Functions/simple/iomon_options.h"
#include "cli/Functions/simple/iomon_report.h"
#include "cli/Public/frame/handler.h"

const char simple_iomon_sh[] = ":For get IO monitor statistics";
const char simple_iomon_help[] =
    "\n"
    "iomon [-a <show> | -i <NS id> |-h ]\n"
    "\n"
    "Options:\n"
    "    -a, --action <show>\n"
    "        show, show the statistics of all namespaces\n"
    "    -i, --id <NS id>\n"
    "        show the statistics of one namespace, 1 to 32\n"
    "    --outputfile <outputfile>\n"
    "        Output the statistics of one namespace into output file too.\n"
    "    -h, --help\n"
    "Examples:\n"
    "    iomon -a show\n"
    "    Show I/O counters and busy time of all namespaces\n"
    "\n"
    "    iomon -i 1\n"
    "    Show I/O counters and busy time of namespace 1\n"
    "\n"
    "    iomon -i 1 --outputfile=iomon.txt\n"
    "    Show them, and write them into text file which named \"iomon.txt\"\n"
    "\n";

namespace {

constexpr char kLetters[] = "a:i:\x01:h";
constexpr option kLong[] = {
    qrx::iomon::kActionRow,     qrx::iomon::kIdRow, qrx::kOutputRow,
    qrx::iomon::kOutputFileRow, qrx::kHelpRow,      qrx::kEndRow,
};

}  // namespace

int doSIOmon(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    qrx::iomon::Wish wish;
    if (const auto result = qrx::readOptions(
            scan, pCmdInfo, "ai1", 0, [&](int letter) { return qrx::iomon::readOption(letter, scan.word(), wish); })) {
        return *result;
    }
    if (scan.repeated("ai")) {
        return qrx::duplicateOption();
    }
    if (!scan.has('a') && !scan.has('i')) {
        return qrx::optionRequired(pCmdInfo, 'a');
    }
    if (!qrx::iomon::checkFile(wish.output)) {
        return 0;
    }
    return scan.has('a') ? qrx::iomon::showAll() : qrx::iomon::showOne(pCmdInfo, wish.id, wish.output);
}
