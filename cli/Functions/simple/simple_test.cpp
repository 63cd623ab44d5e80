// `test`.
#include "cli/Functions/simple/simple_test.h"

#include <algorithm>

#include "api/src/interface/api.h"
#include "cli/Functions/simple/info_fetch.h"
#include "cli/Functions/simple/simple_info.h"
#include "cli/Public/frame/controller.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/number.h"

const char simple_test_help[] = R"(
test [-h]

Options:
    -t,  --times <times>
         How often all controllers and their physical disks are queried.
    -o,  --object <hba|pd|vd|ns>
         Accepted, and of no effect.
    -h,  --help
Examples:
    test -t 10
    Query all controllers and their physical disks 10 times

)";

namespace {

using qrx::print;
using qrx::Response;
using qrx::info::Status;

constexpr char kLetters[] = "t:o:\x01:h";
constexpr option kLong[] = {
    {"times", required_argument, nullptr, 't'},
    {"object", required_argument, nullptr, 'o'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};
constexpr qrx::Keyword kObjects[] = {{"hba", 0}, {"pd", 0}, {"hd", 0}, {"vd", 0}, {"ld", 0}, {"ns", 0}};

constexpr QRX_U16 kDisks = 2;          // of each controller, from id 0 on
constexpr QRX_U16 kAddressable = 256;  // controllers that an 8-bit index reaches

void showAdapter(QRX_U8 adapter)
{
    Response response;
    if (qrx::info::fetchAdapter(adapter, response)) {
        qrx::info::printFetched(adapter, response, false, false);
    } else {
        print("\nUnable to get info of NVMe Controller %d\n", adapter);
    }
}

// What keeps a disk's record from being shown: the status of the command, or the verdict of its answer. 0: nothing.
int showDisk(QRX_U8 adapter, QRX_U16 id)
{
    Response response;
    int error =
        qrx::info::fetch(qrx::vendorCommand(kGroupPd, 0).word(14, id), {0, 12, 14}, response, Status::Spoken, adapter);
    if (error == 0 && !response.isGood()) {
        error = std::max<int>(response.status(), 1);
    }
    const auto pd = response.record<NVME_PD_Info>();
    if (error == 0 && pd) {
        HD_PrintInfo(*pd, qrx::isJbof(qrx::recordOf(adapter)));
    }
    return error;
}

void showDisks(QRX_U8 adapter)
{
    bool found = false;
    for (QRX_U16 id = 0; id < kDisks; ++id) {
        if (const int error = showDisk(adapter, id)) {
            print("Error code:0x%x\n", static_cast<unsigned>(error));
        } else {
            found = true;
        }
    }
    if (!found) {
        print("No physical disk is found.\n");
    }
}

void query(int number)
{
    const auto count = static_cast<unsigned>(std::min(QRX_Adapter_GetCount(), kAddressable));
    print("[Time#%d]\n=====Get all adapters====start\n", number);
    for (unsigned adapter = 0; adapter < count; ++adapter) {
        showAdapter(static_cast<QRX_U8>(adapter));
    }
    print("=====Get all pds=====start\n");
    for (unsigned adapter = 0; adapter < count; ++adapter) {
        showDisks(static_cast<QRX_U8>(adapter));
    }
}

}  // namespace

int doSTest(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    int times = 0;
    if (const auto result = qrx::readOptions(scan, pCmdInfo, "to", 0, [&](int letter) {
            if (letter == 't') {
                return qrx::take(qrx::readNumber(scan.word()), times) ||
                       qrx::complain("-t : times should be a number\n");
            }
            return qrx::keyword(scan.word(), kObjects) || qrx::complain("-o : invalid object '%s'\n", scan.word());
        })) {
        return *result;
    }
    if (scan.repeated("to")) {
        return qrx::duplicateOption();
    }
    if (!scan.has('t')) {
        return qrx::refuse(0, "please input what times you need\n");
    }
    for (int i = 0; i < times; ++i) {
        query(i);
    }
    return 0;
}
