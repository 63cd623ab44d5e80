// `pcie`.
#include "cli/Functions/simple/simple_pcie.h"

#include <array>
#include <cstdio>

#include "api/src/interface/wire/buffer.h"
#include "api/src/interface/wire/pio.h"
#include "cli/Public/frame/handler.h"
#include "cli/Public/frame/number.h"
#include "cli/Public/frame/register.h"

const char simple_pcie_help[] =
    "\n"
    "pcie -i <id> [-h]\n"
    "\n"
    "Options:\n"
    "    -i,  --id\n"
    "         id means backend device id\n"
    "              device id 0\n"
    "              device id 1\n"
    "    -h,  --help\n"
    "Examples:\n"
    "    pcie -i 0\n"
    "    Get backend device 0 information \n"
    "\n"
    "    pcie -i 1\n"
    "    Get backend device 1 information \n"
    "\n";

namespace {

using namespace qrx::pci;
using qrx::print;

constexpr char kLetters[] = "i:t:a:\x01:h";
constexpr option kLong[] = {
    {"id", required_argument, nullptr, 'i'},
    qrx::kOutputRow,
    qrx::kHelpRow,
    qrx::kEndRow,
};

constexpr int kMostPolls = 100;

QRX_U8 interfaceOf(int pcie_id)
{
    return static_cast<QRX_U8>(static_cast<QRX_U32>(pcie_id) + 2);
}

// The two forms of a capability's first dword: id in the low bits, place of the next one above it.
struct CapabilityList {
    QRX_U32 id_mask;
    unsigned next_shift;
    QRX_U32 next_mask;
    int most;  // capabilities that are looked at
};
constexpr CapabilityList kClassic{0xFF, 8, 0xFF, 16};
constexpr CapabilityList kExtended{0xFFFF, 20, 0xFFF, 72};

QRX_U32 findCapability(const CapabilityList& list, QRX_U32 link, QRX_U32 pos, QRX_U32 cap)
{
    constexpr QRX_U32 kNoDevice = 0xFF;
    for (int step = 0; step < list.most; ++step) {
        QRX_U32 head = 0;
        if (pio_CfgRd(link, pos, &head) == 0) {
            return 0;
        }
        const QRX_U32 id = head & list.id_mask;
        const QRX_U32 next = head >> list.next_shift & list.next_mask;
        if (dbg_enable != 0) {
            print("find cap 0x%x pos 0x%x next_pos 0x%x id 0x%x\n", cap, pos, next, id);
            print(id == cap ? "find cap 0x%x id 0x%x pos 0x%x\n" : "cap 0x%x is not match id 0x%x in pos 0x%x\n", cap,
                  id, pos);
        }
        if (id == cap) {
            return pos;
        }
        if (id == kNoDevice || next < kFirstCapability) {
            return 0;
        }
        pos = next & ~QRX_U32{3};
    }
    return 0;
}

// Gives false, as a read that failed.
QRX_U8 fail(const char* text)
{
    std::fputs(text, stdout);
    return 0;
}

bool isComplete(int pcie_id)
{
    for (int poll = 0; poll < kMostPolls; ++poll) {
        if (read_reg(pcie_id, qrx::kPioIsr) == 1) {
            return true;
        }
    }
    return false;
}

const char* speedText(QRX_U32 speed)
{
    switch (speed) {
    case 3:
        return "Link Speed: Gen3 8.0 GT/s\n\r";
    case 2:
        return "Link Speed: Gen2 5.0 GT/s\n\r";
    default:
        return "Link Speed: Gen1 2.5GT/s\n\r";
    }
}

const char* widthText(QRX_U32 width)
{
    switch (width) {
    case 8:
        return "Link Width: x8\n\r";
    case 4:
        return "Link Width: x4\n\r";
    case 2:
        return "Link Width: x2\n\r";
    default:
        return "Link Width: x1\n\r";
    }
}

}  // namespace

namespace qrx {

bool readRegister(int pcie_id, QRX_U32 address, QRX_U32& value)
{
    value = 0;
    const AdminCommand command = registerRead(interfaceOf(pcie_id), address);
    command.debug();
    std::array<QRX_U8, sizeof(value)> data{};
    if (command.receive(data) != 0) {
        print("Read register failed.\n");
        return false;
    }
    value = wire::read<QRX_U32>(data).value_or(0);
    if (dbg_enable != 0) {
        print("Data:0x%x, Address:0x%x\n", value, address);
    }
    return true;
}

int runOnDevice(int argc, char** argv, PCommand_Info row, const option* rows, void (*work)(int device))
{
    OptionScan scan(argc, argv, kLetters, rows);
    int device = 0;
    if (const auto result = readOptions(scan, row, "i", 0, [&](int) {
            return take(readNumber(scan.word()), device) || complain("-i : invalid device id '%s'\n", scan.word());
        })) {
        return *result;
    }
    if (!scan.has('i')) {
        return optionRequired(row, 'i');
    }
    if (scan.repeated("i")) {
        return duplicateOption();
    }
    work(device);
    return 1;
}

}  // namespace qrx

QRX_U32 read_reg(int pcie_id, QRX_U32 address)
{
    QRX_U32 value = 0;
    (void)qrx::readRegister(pcie_id, address, value);
    return value;
}

int write_reg(int pcie_id, QRX_U32 address, QRX_U32 data)
{
    const qrx::AdminCommand command = qrx::registerWrite(interfaceOf(pcie_id), address, data);
    command.debug();
    const int status = command.send();
    if (status != 0) {
        print("Write register failed.\n");
    }
    return status;
}

QRX_U8 pio_CfgRd(QRX_U32 link, QRX_U32 regaddr, QRX_U32* data)
{
    if (data == nullptr) {
        return fail("data is NULL. ");
    }
    const auto pcie_id = static_cast<int>(link);
    (void)write_reg(pcie_id, qrx::kPioCtrl, (link + qrx::kPioFirstLink) << 24U | qrx::kPioConfigRead);
    (void)read_reg(pcie_id, qrx::kPioCtrl);
    (void)write_reg(pcie_id, qrx::kPioAddr, (regaddr & qrx::kPioOffsetMask) | qrx::kPioBus1);
    (void)write_reg(pcie_id, qrx::kPioAddrHigh, 0);
    (void)write_reg(pcie_id, qrx::kPioStart, 1);
    if (!isComplete(pcie_id)) {
        return fail("pulling pio ISR v !=0x1, pio read fail");
    }
    (void)write_reg(pcie_id, qrx::kPioIsr, 1);
    const QRX_U32 outcome = read_reg(pcie_id, qrx::kPioStatus);
    if ((outcome & qrx::kPioTimeout) != 0) {
        return fail("pio_CfgRd completion timeout");
    }
    switch (outcome >> 28U & 7U) {
    case qrx::kPioRetry:
        return fail("pio_CfgRd completion retry status");
    case qrx::kPioUnsupported:
        return fail("pio_CfgRd unsupport request");
    case qrx::kPioAbort:
        return fail("pio_CfgRd completer abort");
    default:
        break;
    }
    *data = read_reg(pcie_id, qrx::kPioReadData);
    if (dbg_enable != 0) {
        std::printf("CfgRd at %x read data is %x \n", regaddr, *data);
    }
    return 1;
}

QRX_U32 pci_find_cap(QRX_U32 link, QRX_U32 pos, QRX_U32 cap)
{
    return findCapability(kClassic, link, pos, cap);
}

QRX_U32 pci_find_exp_cap(QRX_U32 link, QRX_U32 pos, QRX_U32 cap)
{
    return findCapability(kExtended, link, pos, cap);
}

void mtl_backend_PCIe_checking(QRX_U32 device_id)
{
    const QRX_U32 express = pci_find_cap(device_id, kFirstCapability, kCapabilityExpress);
    QRX_U32 link = 0;
    if (express == 0 || pio_CfgRd(device_id, express + kLinkStatus, &link) == 0) {
        return;
    }
    print("%s%s", speedText(link >> 16U & 0xFU), widthText(link >> 20U & 0xFU));

    const QRX_U32 aer = pci_find_exp_cap(device_id, kFirstExtendedCapability, kCapabilityAer);
    QRX_U32 uncorrectable = 0;
    QRX_U32 correctable = 0;
    if (aer != 0 && pio_CfgRd(device_id, aer + kAerUncorrectable, &uncorrectable) != 0 &&
        pio_CfgRd(device_id, aer + kAerCorrectable, &correctable) != 0) {
        print("Correctable errors: 0x%x\n\r", correctable);
        print("Uncorrectable errors: 0x%x\n\r", uncorrectable);
    }
}

int doSpcie(int argc, char** argv, PCommand_Info pCmdInfo)
{
    return qrx::runOnDevice(argc, argv, pCmdInfo, kLong,
                            [](int device) { mtl_backend_PCIe_checking(static_cast<QRX_U32>(device)); });
}
