// `info -o pd`: physical disks.
#include "cli/Functions/simple/info_fetch.h"
#include "cli/Functions/simple/info_list.h"
#include "cli/Functions/simple/simple_info.h"
#include "cli/Public/frame/controller.h"
#include "cli/Public/frame/device_text.h"
#include "cli/Public/frame/lines.h"

namespace {

using qrx::fieldText;

// Leading blanks that each text may lose.
constexpr std::size_t kModelBlanks = 15;
constexpr std::size_t kSerialBlanks = 39;
constexpr std::size_t kFirmwareBlanks = 8;

const char* statusWord(QRX_U8 status)
{
    if ((status & kPdFailed) != 0) {
        return "Fail";
    }
    return (status & kPdMediaPatrol) != 0 ? "Media Patrol Executing" : "Idle";
}

}  // namespace

void getHDInfoSA(QRX_U16 HDID)
{
    const bool isJBOF = qrx::isJbof(qrx::recordOf(gCurrentAdapter));
    qrx::info::showPds(HDID, [isJBOF](QRX_U16 id) { return getOneHDInfoSA(id, isJBOF); });
}

QRX_U32 getOneHDInfoSA(QRX_U16 HDID, bool isJBOF)
{
    qrx::Response response;
    // An absent disk is an expected answer: the page decides, not the call.
    (void)qrx::info::fetch(qrx::vendorCommand(kGroupPd, 0).word(14, HDID), {0, 12, 14}, response,
                           qrx::info::Status::Silent);
    const auto pd = response.record<NVME_PD_Info>();
    if (!response.isSigned() || !pd) {
        return 1;
    }
    if (response.status() == 0) {
        HD_PrintInfo(*pd, isJBOF);
    }
    return response.status();
}

void HD_PrintInfo(const NVME_PD_Info& pd, bool isJBOF)
{
    const qrx::Lines lines(32);
    lines.id("PD ID:", pd.ID);
    lines.text("Model:", fieldText(pd.Model, kModelBlanks).c_str());
    lines.text("Serial:", fieldText(pd.SerialNo, kSerialBlanks).c_str());
    lines.textf("Sector Size:", "%d bytes", static_cast<int>(pd.SectorSize));
    lines.number64("LBA:", pd.LBA);
    lines.gigabytes("Size:", pd.LBA, pd.SectorSize);
    lines.id("SSD backend RC/Slot ID:", pd.SSDAdapterID);
    lines.number("SSD backend Namespace ID:", pd.SSDNSID);
    lines.text("Firmware version:", fieldText(pd.FWVersion, kFirmwareBlanks).c_str());
    lines.text("Status:", statusWord(pd.Status));
    lines.yesNo("Assigned:", (pd.Status & kPdAssigned) != 0);
    if (isJBOF) {
        lines.yesNo("Importable:", (pd.Status & kPdImportable) != 0);
    }
    lines.yesNo("SMART Critical Warning:", (pd.Status & kPdSmartWarning) != 0);
}
