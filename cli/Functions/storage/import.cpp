#include "cli/Functions/storage/import.h"

#include "api/src/interface/globals.h"
#include "api/src/interface/vd.h"
#include "api/src/interface/wire/adapter.h"
#include "cli/Functions/simple/import_check.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/number.h"
#include "cli/Public/frame/read_one.h"

const char import_help[] = R"(
import -l <VD id> [-i <NVMe Controller id>] [-h]

Options:
    -l, --vd_id <VD id>
        ID of the VD to be imported.
    -i, --id <NVMe Controller id>
        NVMe Controller id.
        If not specified, the VD is imported into the current NVMe Controller.
    -h, --help

Examples:
    import -l 0
    Import VD ID 0 into NVMe Controller.

)";

const char import_sh[] = ":For import VD";

namespace {

constexpr char kLetters[] = "i:l:\x01:h";
constexpr option kLong[] = {
    {"id", required_argument, nullptr, 'i'},
    {"vd_id", required_argument, nullptr, 'l'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

struct Wish {
    QRX_U8 adapter = gCurrentAdapter;
    QRX_U16 vd = 0;
};

// Stores the option's argument, unshifted in every numbering; false after a complaint.
bool read(int letter, const char* word, Wish& wish)
{
    return letter == 'i' ? qrx::takeController(qrx::readNumber(word), word, wish.adapter)
                         : qrx::takeVd(qrx::readNumber(word), word, wish.vd);
}

}  // namespace

int doImport(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    Wish wish;
    if (const auto result =
            qrx::readOptions(scan, pCmdInfo, "il", 1, [&](int letter) { return read(letter, scan.word(), wish); })) {
        return *result;
    }
    if (scan.repeated("i")) {
        return qrx::duplicateOption();
    }
    if (!scan.has('l')) {
        return qrx::optionRequired(pCmdInfo, 'l', 1);
    }
    if (qrx::canImport(wish.adapter, kFeatureImport | kFeatureRaid)) {
        importVD(wish.adapter, wish.vd);
    }
    return 0;
}

void importVD(QRX_U8 adapterID, QRX_U16 vd_id)
{
    qrx::importVd({.shown = vd_id,
                   .read =
                       [&](NVME_VD_Info& vd) {
                           NVME_VD_Info_Request request{};
                           const bool good = qrx::readOne(QRX_VD_GetInfo, vd_id, request, adapterID) == 0;
                           vd = request.vd_info;
                           return good;
                       },
                   .send =
                       [&] {
                           RequestHeader request = qrx::oneOf(vd_id);
                           return QRX_VD_Import(adapterID, &request) == 0;
                       },
                   .success = "VD %d import successfully. Please shutdown and power on the system.\n"});
}
