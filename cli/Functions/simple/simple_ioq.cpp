// `ioq`.
#include "cli/Functions/simple/simple_ioq.h"

#include <algorithm>
#include <iterator>

#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/handler.h"

const char simple_ioq_help[] = "\nNo help exist.\n";

namespace {

constexpr char kLetters[] = "a:\x01:h";
constexpr option kLong[] = {
    {"action", required_argument, nullptr, 'a'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};
constexpr qrx::Keyword kActions[] = {{"show", 0}};
constexpr QRX_U8 kSubReadIoQueues = 0x24;

}  // namespace

void ioqdata_printf(const IOQNData& data)
{
    const std::size_t shown = std::min<std::size_t>(data.maxCtrl, std::size(data.ioqnh));
    for (std::size_t i = 0; i < shown; ++i) {
        qrx::print("HOST ID %d, IO queue number: %d\n", static_cast<int>(i), data.ioqnh[i].NIOQ);
    }
    qrx::print("Max Controllers: %d\n", static_cast<int>(data.maxCtrl));
    if (shown < data.maxCtrl) {
        qrx::print("ioq: the answer has room for %zu of them\n", shown);
    }
}

int doIOQ(int argc, char** argv, PCommand_Info pCmdInfo)
{
    const QRX_U8 adapter = gCurrentAdapter;
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    if (const auto result = qrx::readOptions(scan, pCmdInfo, "a", 1, [&](int) {
            return qrx::keyword(scan.word(), kActions) || qrx::complain("-a : invalid action '%s'.\n", scan.word());
        })) {
        return *result;
    }
    if (scan.repeated("a")) {
        return qrx::duplicateOption();
    }
    const auto command = qrx::vendorCommand(kGroupAdapter, kSubReadIoQueues);
    command.debug();
    qrx::Response response;
    const int status = command.receive(response.bytes(), adapter);
    if ((static_cast<unsigned>(status) & 0xFF) != 0) {  // the code alone decides, not the type of the status
        return qrx::refuse(status, "\nUnable to query IO queue number of controllers %d\n", adapter);
    }
    ioqdata_printf(response.record<IOQNData>().value_or(IOQNData{}));
    return status;
}
