// `import`: a virtual disk where the controller has RAID, a namespace table where it has not.
#include "cli/Functions/simple/simple_import.h"

#include <cstring>

#include "api/src/interface/globals.h"
#include "api/src/interface/vd.h"
#include "cli/Functions/simple/import_check.h"
#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/controller.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/number.h"

const char simple_import_help[] =
    "\n"
    "import -l <VD ID> \n"
    "   If NVMe Controller support RAID, this function will be import VD.\n"
    "\n"
    "Options:\n"
    "    -l, --ldid <VD ID>\n"
    "        ID of the VD to be selected. \n"
    "    -h, --help\n"
    "\n"
    "Examples:\n"
    "    import -l 0\n"
    "    Import VD ID 0 into NVMe Controller.\n"
    "\n";

namespace {

using qrx::complain;
using qrx::print;
using qrx::take;

constexpr char kLetters[] = "i:p:n:l:\x01:h";
constexpr option kLong[] = {
    {"id", required_argument, nullptr, 'i'},
    {"pdid", required_argument, nullptr, 'p'},
    {"nstableid", required_argument, nullptr, 'n'},
    {"ld_id", required_argument, nullptr, 'l'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

constexpr QRX_U8 kSubImportVd = 6;
constexpr QRX_U8 kSubImportNsTable = 9;
constexpr int kAnyTable = 255;  // when typed in hexadecimal; the same in every numbering

struct Wish {
    QRX_U8 adapter = gCurrentAdapter;
    QRX_U16 pd = 0;
    QRX_U16 table = 0;
    QRX_U16 vd = 0;
};

std::optional<std::int32_t> readTableId(const char* word)
{
    if (std::strstr(word, "0x") == nullptr) {
        return qrx::readId(word);
    }
    const std::int32_t number = qrx::strtol32(word, 16);
    if (number == kAnyTable) {
        return number;
    }
    return number < qrx::idBase() ? std::nullopt : std::optional(number - qrx::idBase());
}

// Stores the option's argument; false after a complaint.
bool read(int letter, const char* word, Wish& wish)
{
    switch (letter) {
    case 'i':
        return qrx::takeController(qrx::readId(word), word, wish.adapter);
    case 'p':
        return take(qrx::narrowId(qrx::readId(word)), wish.pd) || complain("-p : invalid PD ID '%s'\n", word);
    case 'n':
        return take(qrx::narrowId(readTableId(word)), wish.table) || complain("-n : invalid NS Table ID '%s'\n", word);
    default:
        return qrx::takeVd(qrx::readId(word), word, wish.vd);
    }
}

}  // namespace

int doSImport(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    Wish wish;
    if (const auto result =
            qrx::readOptions(scan, pCmdInfo, "ipnl", 1, [&](int letter) { return read(letter, scan.word(), wish); })) {
        return *result;
    }
    if (scan.repeated("ipn")) {
        return qrx::duplicateOption();
    }
    if (!scan.has('l')) {
        return qrx::optionRequired(pCmdInfo, 'l', 1);
    }
    if (!qrx::canImport(wish.adapter, kFeatureImport)) {
        return 0;
    }
    if (qrx::isJbof(qrx::recordOf(wish.adapter))) {
        importPDSA(wish.adapter, wish.pd, wish.table);
    } else {
        importVDSA(wish.adapter, wish.vd);
    }
    return 0;
}

void importVDSA(QRX_U8 adapterID, QRX_U16 ld_id)
{
    qrx::importVd({.shown = ld_id + qrx::idBase(),
                   .read = [&](NVME_VD_Info& vd) { return QRX_Adapter_GetSimpleVDInfo(adapterID, ld_id, &vd) == 0; },
                   .send =
                       [&] {
                           const auto command = qrx::vendorCommand(kGroupVd, kSubImportVd).word(14, ld_id);
                           command.debug();
                           return command.send(adapterID) == 0;
                       },
                   .success = "VD %d import successfully.\n"});
}

void importPDSA(QRX_U8 adapterID, QRX_U16 pd_id, QRX_U16 ns_table_id)
{
    const auto command =
        qrx::vendorCommand(kGroupPd, kSubImportNsTable).word(14, pd_id | static_cast<QRX_U32>(ns_table_id) << 16);
    command.debug();
    print(command.send(adapterID) == 0 ? "NS Table ID %d import successfully.\n" : "\nFail to import NS Table ID %d.\n",
          ns_table_id + qrx::idBase());
}
