// `list_pd_allocated_ns`.
#include "cli/Functions/passthru/list_pd_allocated_ns.h"

#include <array>

#include "cli/Functions/passthru/passthru_options.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/tunnel.h"

const char list_pd_allocated_ns_sh[] = ":Get Backend PD allocated NS ID list";
const char list_pd_allocated_ns_help[] =
    "\n"
    "list_pd_allocated_ns  -i <id> [-h]\n"
    "\n"
    "Options:\n"
    "    -i,  --id <SSD backend RC/Slot ID>\n"
    "         SSD adapter ID of PD info command.\n"
    "    -h,  --help\n"
    "Examples:\n"
    "    list_pd_allocated_ns -i 0\n"
    "    Show the ids of all namespaces that are allocated on PD 0\n"
    "\n";

namespace {

constexpr char kLetters[] = "i:\x01:h";
constexpr option kLong[] = {
    {"id", required_argument, nullptr, 'i'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

constexpr QRX_U32 kAllocatedNamespaces = 0x10;  // CNS

void show(std::span<const QRX_U8> page)
{
    qrx::print("\nNS List:\n");
    bool found = false;
    for (std::size_t offset = 0; offset < page.size(); offset += sizeof(QRX_U32)) {
        if (const QRX_U32 nsid = qrx::wire::read<QRX_U32>(page, offset).value_or(0)) {
            qrx::print("NS ID: %d\n", static_cast<int>(nsid));
            found = true;
        }
    }
    if (!found) {
        qrx::print("Ns list is not found\n");
    }
}

}  // namespace

int dolist_pd_allocated_ns(int argc, char** argv, PCommand_Info pCmdInfo)
{
    qrx::OptionScan scan(argc, argv, kLetters, kLong);
    QRX_U32 disk = 0;
    if (const auto result =
            qrx::readOptions(scan, pCmdInfo, "i", 0, [&](int) { return qrx::passthru::readDisk(scan.word(), disk); })) {
        return *result;
    }
    if (scan.repeated("i")) {
        return qrx::duplicateOption(0);
    }
    if (!scan.has('i')) {
        return qrx::optionRequired(pCmdInfo, 'i');
    }
    const auto command = qrx::tunnelFromDrive(disk, qrx::kDriveIdentify)
                             .word(10, kAllocatedNamespaces)
                             .controlId(static_cast<QRX_U16>(disk));
    command.debug();
    std::array<QRX_U8, qrx::wire::kPageSize> page{};
    if (const int status = command.receive(page)) {
        return qrx::refuse(status, "Passthru_ns_list command is failed.\n");
    }
    show(page);
    return qrx::refuse(0, "Passthru_ns_list command is success.\n\n");
}
