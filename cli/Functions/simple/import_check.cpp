#include "cli/Functions/simple/import_check.h"

#include "api/src/interface/globals.h"
#include "cli/Public/frame/controller.h"
#include "cli/Public/frame/number.h"
#include "cli/Public/frame/option_scan.h"
#include "cli/Public/frame/report.h"

namespace qrx {
namespace {

constexpr QRX_U8 kImportable = 1;

}  // namespace

bool takeController(std::optional<std::int32_t> id, const char* word, QRX_U8& adapter)
{
    if (!id) {
        return complain("-i : invalid NVMe Controller id '%s'\n", word);
    }
    if (*id >= gNumAdaptersFound) {
        return complain("NVMe Controller %d does not exist.\n", *id);
    }
    return take(id, adapter);
}

bool takeVd(std::optional<std::int32_t> id, const char* word, QRX_U16& vd)
{
    return take(narrowId(id), vd) || complain("-l : invalid VD ID '%s'\n", word);
}

bool canImport(QRX_U8 adapter, QRX_U32 features)
{
    return (recordOf(adapter).Features & features) == features ||
           complain("Importable not support or parameters error.\n");
}

void importVd(const VdImport& how)
{
    NVME_VD_Info vd{};
    if (!how.read(vd)) {
        print("\nUnable to get info of VD\n");
        return;
    }
    if (vd.Importable != kImportable) {
        print("\nVD %d is not importable.\n", how.shown);
        return;
    }
    print(how.send() ? how.success : "\nFail to import VD %d.\n", how.shown);
}

}  // namespace qrx
