// The earlier `get`: each controller shows its own settings, and virtual disks have some too.
#include "api/src/interface/adapter.h"
#include "api/src/interface/api.h"
#include "api/src/interface/globals.h"
#include "api/src/interface/vd.h"
#include "cli/Functions/simple/simple_config.h"
#include "cli/Functions/storage/config.h"
#include "cli/Public/frame/controller.h"
#include "cli/Public/frame/device_text.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/lines.h"
#include "cli/Public/frame/number.h"
#include "cli/Public/frame/raid_only.h"
#include "cli/Public/frame/read_one.h"

const char get_help[] = R"(
get -o <hba|vd> [-i <VD id>] [-h]

Options:
    -o, --object <hba|vd>
        hba - NVMe Controller
        vd  - Virtual Disk
    -i, --id <VD id>
        Virtual disk id, for vd only.
        If not specified, all instances of the NVMe Controller or VD will be retrieved.
    -h, --help

Examples:
    get -o hba
    Get configuration information of NVMe Controller.

    get -o vd -i 0
    Get configuration information of VD ID 0.

)";

const char get_sh[] = ":For getting configuration information of NVMe Controller or virtual disk.";

namespace {

using qrx::complain;
using qrx::refuse;
using qrx::take;

constexpr char kLetters[] = "o:i:\x01:h";
constexpr option kLong[] = {
    {"object", required_argument, nullptr, 'o'},
    {"id", required_argument, nullptr, 'i'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

enum Object { kHba, kVd };
constexpr qrx::Keyword kObjects[] = {{"hba", kHba}, {"vd", kVd}, {"ld", kVd}};

struct Wish {
    int object = kHba;
    QRX_U16 id = 0;
};

// Stores the option's argument; false after a complaint.
bool read(int letter, const char* word, Wish& wish)
{
    if (letter == 'o') {
        return take(qrx::keyword(word, kObjects), wish.object) ||
               complain("-o : invalid object '%s', should be VD or NVMe Controller\n", word);
    }
    if (!isNumber(word)) {
        return complain("-i : id is not a number\n");
    }
    return take(qrx::readId(word), wish.id) || complain("-i : invalid id '%s'\n", word);
}

// All that show something return the low 8 bits of a status.
QRX_U8 showController(QRX_U16 adapter)
{
    NVME_Adapter_Config config{};
    const QRX_U32 status = QRX_Adapter_GetConfig(adapter, &config);
    if (status != 0) {
        qrx::print("\nUnable to get configuration of NVMe Controller\n");
    } else {
        hbaGet_printf(config);
    }
    return static_cast<QRX_U8>(status);
}

// Up to the first that does not answer.
QRX_U8 showEveryController()
{
    QRX_U8 status = 0;
    for (QRX_U16 adapter = 0; adapter < QRX_Adapter_GetCount() && status == 0; ++adapter) {
        status = showController(adapter);
    }
    return status;
}

QRX_U8 showVd(QRX_U16 id)
{
    const QRX_U32 status = getOneVDConfig(id);
    if (status != 0) {
        qrx::print("\nUnable to get configuration of vd %d\n", id + qrx::idBase());
    }
    return static_cast<QRX_U8>(status);
}

int showEveryVd()
{
    int found = 0;
    for (QRX_U16 id = 0; id < qrx::recordOf(gCurrentAdapter).MaxVD; ++id) {
        found += getOneVDConfig(id) == 0 ? 1 : 0;
    }
    return found != 0 ? 0 : refuse(0, "No virtual disk is found.\n");
}

}  // namespace

int doGet(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    Wish wish;
    if (const auto result =
            qrx::readOptions(scan, pCmdInfo, "oi", 1, [&](int letter) { return read(letter, scan.word(), wish); })) {
        return *result;
    }
    if (scan.repeated("oi")) {
        return qrx::duplicateOption();
    }
    if (!scan.has('o')) {
        return qrx::optionRequired(pCmdInfo, 'o', 1);
    }
    if (qrx::refusedInJbof()) {
        return qrx::kJbofResult;
    }
    if (wish.object == kVd) {
        return scan.has('i') ? showVd(wish.id) : showEveryVd();
    }
    if (scan.has('i')) {
        return refuse(1, "'-o hba' does not support '-i' action\n");
    }
    return gSpecificAdapterFlag == 1 ? showController(gCurrentAdapter) : showEveryController();
}

QRX_U32 getOneVDConfig(QRX_U16 vdId)
{
    NVME_VD_Config_Request request{};
    const QRX_U32 status = qrx::readOne(QRX_VD_GetConfig, vdId, request);
    if (status == 0) {
        ldGet_printf(request.vd_config);
    }
    return status;
}

void ldGet_printf(const NVME_VD_Config& config)
{
    const qrx::Lines lines(24);
    lines.id("virtual disk id:", config.ID);
    lines.text("Name:", qrx::fieldText(config.Name).c_str());
    qrx::print("\n");
}
