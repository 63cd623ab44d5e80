// `vf-manage`.
#include "cli/Functions/standard/vf_management.h"

#include <array>
#include <bit>

#include "api/src/interface/agent.h"
#include "api/src/interface/globals.h"
#include "api/src/interface/wire/ns_format.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/number.h"

const char vf_management_sh[] = ":For virtualization management control.";

const char vf_management_help[] = R"(
vf-manage [-c <controller identifier>]  [-n <number of controller resources>][-h]

Options:
    -c, --cntlid <controller identifier>
        0 and 1, the primary controllers
        2 to 33, the secondary controllers
    -n, --nr <number of controller resources>
        Flexible resources that the controller is to have.
    -h, --help
Examples:
    vf-manage -c 0 -n 16
    Allocate 16 resources to the primary controller 0 from its next controller level reset on.

    vf-manage -c 2 -n 16
    Take the secondary controller 2 offline, assign 16 resources to it and bring it online.

)";

namespace {

constexpr QRX_U8 kVirtualizationManagement = 28;
constexpr unsigned kBits = 32;  // of either number

constexpr char kLetters[] = "c:n:\x01:h";
constexpr option kLong[] = {
    {"cntlid", required_argument, nullptr, 'c'},
    {"nr", required_argument, nullptr, 'n'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

struct Wish {
    QRX_U32 controller = 0;
    QRX_U32 count = 0;
};

bool read(int letter, const char* word, Wish& wish)
{
    return letter == 'c' ? qrx::take(qrx::readExact(word, kBits), wish.controller) ||
                               qrx::complain("-c : invalid controller identifier '%s'\n", word)
                         : qrx::take(qrx::readExact(word, kBits), wish.count) ||
                               qrx::complain("-n : invalid number of controller '%s'\n", word);
}

// One command. Returns the device's status.
int manage(QRX_U32 action, QRX_U32 controller, QRX_U32 count)
{
    _virtualization_management what{};
    what.action = action & 0xF;
    what.controller_identifier = controller & 0xFFFF;
    std::array<QRX_U32, 2> words{std::bit_cast<QRX_U32>(what), count};
    if (dbg_enable != 0) {
        qrx::print("CDW 10 : 0x%08x\n", words[0]);
        qrx::print("CDW 11 : 0x%08x\n", words[1]);
    }
    return static_cast<int>(QRX_Adapter_Admin(gCurrentAdapter, kVirtualizationManagement, 0, words.data(), words.size(),
                                              nullptr, 0, nullptr, 0));
}

// A secondary function takes resources while it is offline alone. After a failure it stays as far as it has come.
bool assign(const Wish& wish)
{
    return manage(kVirtualizationOffline, wish.controller, 0) == 0 &&
           manage(kVirtualizationAssign, wish.controller, wish.count) == 0 &&
           manage(kVirtualizationOnline, wish.controller, wish.count) == 0;
}

}  // namespace

int doVFManage(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    Wish wish;
    if (const auto result =
            qrx::passOptions(scan, pCmdInfo, "cn", 0, [&](int letter) { return read(letter, scan.word(), wish); })) {
        return *result;
    }
    if (scan.repeated("cn")) {
        return qrx::duplicateOption();
    }
    if (!scan.has('c') && !scan.has('n')) {
        return qrx::showHelp(pCmdInfo, 0);
    }
    if (const auto result = qrx::requireOptions(scan, pCmdInfo, "cn")) {
        return *result;
    }
    if (wish.controller < UCD_HIU_VF0) {
        return qrx::report(manage(kVirtualizationAllocate, wish.controller, wish.count), "cmd failed\n",
                           "cmd success, please doing controller level reset to update host queue source\n");
    }
    if (wish.controller >= UCD_HIU_NUM) {
        return qrx::refuse(0, "controller ID: out of range\n");
    }
    return qrx::refuse(0, assign(wish) ? "cmd success\n" : "cmd failed\n");
}
