// `id`.
#include "cli/Functions/smart/idpd.h"

#include <array>

#include "api/src/interface/pd.h"
#include "api/src/interface/wire/nvme.h"
#include "cli/Functions/standard/identify.h"
#include "cli/Public/frame/controller.h"
#include "cli/Public/frame/device_text.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/number.h"
#include "cli/Public/frame/read_one.h"
#include "cli/Public/frame/tunnel.h"

const char id_sh[] = ":Get pd identify info.";

const char id_help[] = R"(
id -i <pd id> [-d <simple|detail>][-h]

Options:
    -i,  --pd_id <pd id>
         Physical disk id.
    -d,  --description <simple|detail>
         simple, the first facts; this is the default
         detail, all fields
    -h,  --help
Examples:
    id -i 0
    Get identify info of physical disk 0

    id -i 0 -d detail
    Get all fields of identify info of physical disk 0

)";

namespace {

constexpr char kLetters[] = "i:d:\x01:h";
constexpr option kLong[] = {
    {"pd_id", required_argument, nullptr, 'i'},
    {"description", required_argument, nullptr, 'd'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

enum Description { kSimple, kDetail };
constexpr qrx::Keyword kDescriptions[] = {{"simple", kSimple}, {"detail", kDetail}};

bool exists(int id)
{
    return id < qrx::recordOf(gCurrentAdapter).MaxPD && checkHDID(static_cast<QRX_U16>(id)) == 0;
}

}  // namespace

QRX_U32 checkHDID(QRX_U16 id)
{
    NVME_PD_Info_Request request{};
    return qrx::readOne(QRX_PD_GetInfo, id, request);
}

void showIDInfo(std::span<const QRX_U8, qrx::wire::kPageSize> page)
{
    const auto id = qrx::wire::read<QRX_IDENTIFY_CONTROLLER_DATA>(page).value_or(QRX_IDENTIFY_CONTROLLER_DATA{});
    const auto text = [](std::span<const QRX_U8> field) { return qrx::fieldText(field, field.size()); };
    qrx::print("\nNVME identify Information :\n\n");
    qrx::print("PCI Vendor ID                       : 0x%x\n", id.vid);
    qrx::print("Serial Number                       : %s\n", text(id.sn).c_str());
    qrx::print("Model Number                        : %s\n", text(id.mn).c_str());
    qrx::print("Firmware Revision                   : %s\n", text(id.fr).c_str());
    qrx::print("Maximum Data Transfer Size          : 0x%x\n", id.mdts);
    qrx::print("Number of Namespaces                : %u\n", id.nn);
    qrx::print("\n");
}

void showIDDetail(std::span<const QRX_U8, qrx::wire::kPageSize> page)
{
    qrx::showIdPage(page, qrx::IdPage::kOfId);
}

int doPDID(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    int id = 0;
    int description = kSimple;
    if (const auto result = qrx::readOptions(scan, pCmdInfo, "id", 0, [&](int letter) {
            if (letter == 'i') {
                (void)qrx::take(qrx::readNumber(scan.word()), id);  // what is no number is passed over
                return true;
            }
            return qrx::take(qrx::keyword(scan.word(), kDescriptions), description) ||
                   qrx::complain("-d : invalid description mode '%s'\n", scan.word());
        })) {
        return *result;
    }
    if (scan.repeated("id")) {
        return qrx::duplicateOption();
    }
    if (!scan.has('i')) {
        return qrx::optionRequired(pCmdInfo, 'i');
    }
    if (!exists(id)) {
        return qrx::refuse(1, "\nUnable to get identify of PD\n");
    }
    const auto command = qrx::tunnelFromDrive(static_cast<QRX_U32>(id), qrx::kIdentify)
                             .word(10, qrx::kIdentifyController)
                             .controlId(static_cast<QRX_U16>(id));
    command.debug();
    std::array<QRX_U8, qrx::wire::kPageSize> page{};
    if (const int status = command.receive(page)) {
        return qrx::refuse(status, "get identify info failed.\n");
    }
    if (description == kDetail) {
        showIDDetail(page);
    } else {
        showIDInfo(page);
    }
    return 0;
}
