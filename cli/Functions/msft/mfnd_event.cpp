// `mfnd-event`: the event log of the child controllers.
#include <algorithm>
#include <array>

#include "api/src/interface/agent.h"
#include "api/src/interface/globals.h"
#include "cli/Functions/msft/mfnd.h"
#include "cli/Public/frame/admin_command.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/lines.h"

const char mfnd_event_sh[] = ":For getting MFND event log.";

const char mfnd_event_help[] = R"(
mfnd-event [-h]

Options:
    -h,  --help
Examples:
    mfnd-event
    Get event log of child controllers

)";

namespace {

using Page = std::array<QRX_U8, qrx::wire::kPageSize>;

constexpr char kLetters[] = "\x01:h";
constexpr option kLong[] = {qrx::kOutputRow, qrx::kHelpRow, qrx::kEndRow};

constexpr QRX_U8 kGetLogPage = 2;
constexpr std::size_t kFirst = offsetof(_MSFT_CHILD_CTRL_EVENT, entries);
constexpr std::size_t kStride = sizeof(_MSFT_CHILD_CTRL_PROPERTIES);
// Of the last entry only its beginning is in the page.
constexpr std::size_t kHeld = (qrx::wire::kPageSize - kFirst - sizeof(_MSFT_CHILD_CTRL_EVENT_ENTRY)) / kStride + 1;
static_assert(kHeld == 8);

void show(const _MSFT_CHILD_CTRL_EVENT_ENTRY& event)
{
    const qrx::Lines lines(20);
    lines.number("Child Controller ID:", event.childCtrlID);
    lines.number("Child Log page Identifier:", event.childLogPageIdentifier);
    lines.number("Events:", event.flags);
    if ((event.flags & qrx::kMfndEventHasLogPage) != 0) {
        lines.text("Log Page Identifier Valid:", "Yes");
    }
    if ((event.flags & qrx::kMfndEventIsFatal) != 0) {
        lines.text("Controller Fatal Status:", "Yes");
    }
    if ((event.flags & (qrx::kMfndEventHasLogPage | qrx::kMfndEventIsFatal)) == 0) {
        qrx::print("Unknown\n");
    }
    qrx::print("\n");
}

}  // namespace

int doMFND_event(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    if (const auto result = qrx::passOptions(scan, pCmdInfo, "", 0, [](int) { return true; })) {
        return *result;
    }
    Page page{};
    QRX_U32 cdw10 = qrx::kWholePage << 16U | qrx::kMfndEventLog;
    const auto status = static_cast<int>(QRX_Adapter_Admin(gCurrentAdapter, kGetLogPage, 0, &cdw10, 1, nullptr, 0,
                                                           page.data(), static_cast<QRX_U16>(page.size())));
    if (status != 0) {
        return qrx::refuse(status, "\nUnable to get child controller event log (Error Code: 0x%x)\n",
                           static_cast<unsigned>(status));
    }
    const std::size_t told = page[offsetof(_MSFT_CHILD_CTRL_EVENT, numOfEntries)];
    if (told == 0) {
        qrx::print("No entries exist\n");
    }
    for (std::size_t i = 0; i < std::min(told, kHeld); ++i) {
        show(*qrx::wire::read<_MSFT_CHILD_CTRL_EVENT_ENTRY>(page, kFirst + i * kStride));
    }
    qrx::tellMfndRest(told, kHeld);
    return 0;
}
