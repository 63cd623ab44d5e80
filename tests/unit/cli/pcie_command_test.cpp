// `pcie`, and the register accesses below it.
#include "cli/Functions/simple/simple_pcie.h"

#include "tests/unit/cli/storage_fixture.h"

namespace {

using namespace qrx::test;

const std::string kPage =
    "Description:For get PCIe information from backend device\n"
    "pcie -i <id> [-h]\n\nOptions:\n    -i,  --id\n         id means backend device id\n"
    "              device id 0\n              device id 1\n    -h,  --help\nExamples:\n    pcie -i 0\n"
    "    Get backend device 0 information \n\n    pcie -i 1\n    Get backend device 1 information \n\n";

Bytes dword(QRX_U32 value)
{
    Bytes bytes;
    for (unsigned shift = 0; shift < 32; shift += 8) {
        bytes.push_back(static_cast<QRX_U8>(value >> shift));
    }
    return bytes;
}

class PcieCommand : public StorageTest {
protected:
    static Command readOf(QRX_U32 device, QRX_U32 address)
    {
        return plain(0x09E0 | (device + 2) % 256 << 16, 0x3401).word(13, address).receives(4).carries(Bytes(4));
    }
    static Command writeOf(QRX_U32 device, QRX_U32 address, QRX_U32 data)
    {
        return plain(0x0AE0 | (device + 2) % 256 << 16, 0x7001).word(13, address).word(14, data);
    }
    // A configuration read up to its start.
    void expectStart(QRX_U32 offset, QRX_U32 device = 1)
    {
        const QRX_U32 control = (0x90 + device) << 24 | 4;
        machine.expect(writeOf(device, 0xE2C00000, control));
        machine.expect(readOf(device, 0xE2C00000).data(dword(0x12345678)));
        machine.expect(writeOf(device, 0xE2C00008, 0x01000000 | offset));
        machine.expect(writeOf(device, 0xE2C0000C, 0));
        machine.expect(writeOf(device, 0xE2C0001C, 1));
    }
    // From its end to pio_status.
    void expectEnd(QRX_U32 status, QRX_U32 device = 1)
    {
        machine.expect(readOf(device, 0xE2C00020).data(dword(1)));
        machine.expect(writeOf(device, 0xE2C00020, 1));
        machine.expect(readOf(device, 0xE2C00004).data(dword(status)));
    }
    void expectConfig(QRX_U32 offset, QRX_U32 value, QRX_U32 device = 1)
    {
        expectStart(offset, device);
        expectEnd(0x0FFFFFFF, device);
        machine.expect(readOf(device, 0xE2C00018).data(dword(value)));
    }
    static Outcome walk(QRX_U32 (*find)(QRX_U32, QRX_U32, QRX_U32), QRX_U32 pos, QRX_U32 cap)
    {
        return outcomeOf([&] { return static_cast<int>(find(1, pos, cap)); });
    }
};

TEST_F(PcieCommand, Help)
{
    EXPECT_EQ(command({"pcie"}), (Outcome{1, kPage}));
    EXPECT_EQ(command({"pcie", "-h"}), (Outcome{0, kPage}));
    EXPECT_EQ(command({"pcie", "--help"}), (Outcome{0, kPage}));
    EXPECT_EQ(command({"pcie", "-t", "x"}), (Outcome{0, kPage}));
    EXPECT_EQ(command({"pcie", "-i", "1", "-a", "x"}), (Outcome{0, kPage}));
    EXPECT_EQ(command({"pcie", "-x"}), (Outcome{0, "", "", "pcie: illegal option -- x\n"}));
}

TEST_F(PcieCommand, Refusals)
{
    for (const char* word : {"-1", "0x1", "1a", "x", "+1", " 1"}) {
        EXPECT_EQ(command({"pcie", "-i", word}), (Outcome{0, std::string("-i : invalid device id '") + word + "'\n"}));
    }
    EXPECT_EQ(command({"pcie", "--output", "x"}), (Outcome{0, "pcie: option -i is required\n"}));
    EXPECT_EQ(command({"pcie", "-i", "1", "--id", "1"}), (Outcome{1, "Duplicated option specified.\n"}));
}

TEST_F(PcieCommand, TellsLinkAndErrors)
{
    expectConfig(0x40, 0xABCD7001);
    expectConfig(0x70, 0xABCDB010);
    expectConfig(0x80, 0x00830000);
    expectConfig(0x100, 0x14810003);
    expectConfig(0x148, 0x19020001);
    expectConfig(0x14C, 0x11223344);
    expectConfig(0x158, 0x55667788);
    EXPECT_EQ(command({"pcie", "-i", "1"}),
              (Outcome{1,
                       "Link Speed: Gen3 8.0 GT/s\n\rLink Width: x8\n\r"
                       "Correctable errors: 0x55667788\n\rUncorrectable errors: 0x11223344\n\r"}));
}

TEST_F(PcieCommand, SpeedsAndWidths)
{
    const struct {
        QRX_U32 link;
        const char* text;
    } kLinks[] = {{0x00410000, "Link Speed: Gen1 2.5GT/s\n\rLink Width: x4\n\r"},
                  {0x00220000, "Link Speed: Gen2 5.0 GT/s\n\rLink Width: x2\n\r"},
                  {0x00130000, "Link Speed: Gen3 8.0 GT/s\n\rLink Width: x1\n\r"},
                  {0x00840000, "Link Speed: Gen1 2.5GT/s\n\rLink Width: x8\n\r"},
                  {0x01000000, "Link Speed: Gen1 2.5GT/s\n\rLink Width: x1\n\r"},
                  {0xFF83FFFF, "Link Speed: Gen3 8.0 GT/s\n\rLink Width: x8\n\r"}};
    for (const auto& [link, text] : kLinks) {
        expectConfig(0x40, 0x10, 0);
        expectConfig(0x50, link, 0);
        expectConfig(0x100, 0, 0);
        EXPECT_EQ(command({"pcie", "-i", "0"}), (Outcome{1, text})) << link;
    }
}

TEST_F(PcieCommand, StopsWhereAReadFails)
{
    expectConfig(0x40, 0x0001);
    EXPECT_EQ(command({"pcie", "-i", "1"}), (Outcome{1, ""}));

    expectConfig(0x40, 0x10);
    expectStart(0x50);
    expectEnd(0x80000000);
    EXPECT_EQ(command({"pcie", "-i", "1"}), (Outcome{1, "", "pio_CfgRd completion timeout"}));

    const std::string kLink = "Link Speed: Gen2 5.0 GT/s\n\rLink Width: x1\n\r";
    for (const int good : {0, 1}) {
        expectConfig(0x40, 0x10);
        expectConfig(0x50, 0x00020000);
        expectConfig(0x100, 0x00000001);
        if (good == 1) {
            expectConfig(0x104, 0x5);
        }
        expectStart(good == 0 ? 0x104 : 0x110);
        expectEnd(0x40000000);
        EXPECT_EQ(command({"pcie", "-i", "1"}), (Outcome{1, kLink, "pio_CfgRd completer abort"}));
    }
}

TEST_F(PcieCommand, TheNumberOfADeviceIsUsedAsItIs)
{
    g_oneBaseMode = 1;
    expectConfig(0x40, 0, 255);
    EXPECT_EQ(command({"pcie", "-i", "255"}), (Outcome{1, ""}));
}

TEST_F(PcieCommand, AConfigurationReadHasItsEnds)
{
    const struct {
        QRX_U32 status;
        const char* text;
    } kEnds[] = {{0x80000000, "pio_CfgRd completion timeout"},
                 {0xF0000000, "pio_CfgRd completion timeout"},
                 {0x20000000, "pio_CfgRd completion retry status"},
                 {0x10000000, "pio_CfgRd unsupport request"},
                 {0x4FFFFFFF, "pio_CfgRd completer abort"}};
    for (const auto& [status, text] : kEnds) {
        QRX_U32 data = 0x99;
        expectStart(0x7C);
        expectEnd(status);
        EXPECT_EQ(outcomeOf([&] { return pio_CfgRd(1, 0x7C, &data); }), (Outcome{0, "", text})) << status;
        EXPECT_EQ(data, 0x99U);
    }
    for (const QRX_U32 status : {0x00000000U, 0x30000000U, 0x50000000U, 0x60000000U, 0x70000000U}) {
        QRX_U32 data = 0;
        expectStart(0x7C);
        expectEnd(status);
        machine.expect(readOf(1, 0xE2C00018).data(dword(0xCAFE0000 + status)));
        EXPECT_EQ(outcomeOf([&] { return pio_CfgRd(1, 0x7C, &data); }), (Outcome{1, ""})) << status;
        EXPECT_EQ(data, 0xCAFE0000 + status);
    }
    EXPECT_EQ(outcomeOf([] { return pio_CfgRd(1, 0x7C, nullptr); }), (Outcome{0, "", "data is NULL. "}));
}

TEST_F(PcieCommand, AConfigurationReadIsWaitedForAHundredTimes)
{
    QRX_U32 data = 0;
    expectStart(0xFFC);
    for (QRX_U32 i = 0; i < 100; ++i) {
        machine.expect(readOf(1, 0xE2C00020).data(dword(i == 0 ? 0 : i + 1)));
    }
    EXPECT_EQ(outcomeOf([&] { return pio_CfgRd(1, 0xFFFF, &data); }),
              (Outcome{0, "", "pulling pio ISR v !=0x1, pio read fail"}));

    expectStart(0);
    for (int i = 0; i < 99; ++i) {
        machine.expect(readOf(1, 0xE2C00020).data(dword(0)));
    }
    expectEnd(0);
    machine.expect(readOf(1, 0xE2C00018).data(dword(7)));
    EXPECT_EQ(outcomeOf([&] { return pio_CfgRd(1, 0, &data); }), (Outcome{1, ""}));
    EXPECT_EQ(data, 7U);
}

TEST_F(PcieCommand, AFailedAccessStopsNobody)
{
    QRX_U32 data = 0x99;
    machine.expect(writeOf(1, 0xE2C00000, 0x91000004).status(0x701));
    machine.expect(readOf(1, 0xE2C00000).status(0x702));
    machine.expect(writeOf(1, 0xE2C00008, 0x01000040).status(0x703));
    machine.expect(writeOf(1, 0xE2C0000C, 0).status(0x704));
    machine.expect(writeOf(1, 0xE2C0001C, 1).error(5));
    machine.expect(readOf(1, 0xE2C00020).data(dword(1)).status(0x705));  // what comes with a failure is no value
    machine.expect(readOf(1, 0xE2C00020).data(dword(1)));
    machine.expect(writeOf(1, 0xE2C00020, 1).status(0x706));
    machine.expect(readOf(1, 0xE2C00004).data(dword(0x80000000)).status(0x707));
    machine.expect(readOf(1, 0xE2C00018).data(dword(0x11)).status(0x708));
    const std::string write = "Write register failed.\n";
    const std::string read = "Read register failed.\n";
    EXPECT_EQ(outcomeOf([&] { return pio_CfgRd(1, 0x40, &data); }),
              (Outcome{1, write + read + write + write + write + read + write + read + read,
                       "Failed (Status Code: 0x701)\nUnknown error (Status Code: 0x702)\n"
                       "Invalid request (Status Code: 0x703)\nInvalid parameter (Status Code: 0x704)\n"
                       "Unknown error (Status Code: 0xffffffff)\nNot supported (Status Code: 0x705)\n"
                       "Invalid HD ID (Status Code: 0x706)\nInvalid LD ID (Status Code: 0x707)\n"
                       "No resource (Status Code: 0x708)\n"}));
    EXPECT_EQ(data, 0U);
}

TEST_F(PcieCommand, ARegisterCanBeReadAndWritten)
{
    dbg_enable = 1;
    machine.expect(readOf(0xA3, 0xE1234568).data(dword(0x89ABCDEF)));
    EXPECT_EQ(outcomeOf([] { return static_cast<int>(read_reg(0xA3, 0xE1234568) - 0x89ABCDEF); }),
              (Outcome{0,
                       "CDW[0] : 0x000000e2\nCDW[10]: 0x00000000\nCDW[12]: 0x00a509e0\nCDW[13]: 0xe1234568\n"
                       "Data:0x89abcdef, Address:0xe1234568\n"}));
    machine.expect(writeOf(0xA3, 0xE1234568, 0x13572468).status(0x704));
    EXPECT_EQ(outcomeOf([] { return write_reg(0xA3, 0xE1234568, 0x13572468); }),
              (Outcome{0x704,
                       "CDW[0] : 0x000000e2\nCDW[12]: 0x00a50ae0\nCDW[13]: 0xe1234568\nCDW[14]: 0x13572468\n"
                       "Write register failed.\n",
                       "Invalid parameter (Status Code: 0x704)\n"}));
    dbg_enable = 0;
    machine.expect(readOf(0xFE, 4).error(5));  // interface 0: the sum is cut to 8 bits
    EXPECT_EQ(outcomeOf([] { return static_cast<int>(read_reg(0xFE, 4)); }),
              (Outcome{0, "Read register failed.\n", "Unknown error (Status Code: 0xffffffff)\n"}));
    machine.expect(writeOf(0, 0, 0));
    EXPECT_EQ(outcomeOf([] { return write_reg(0, 0, 0); }), (Outcome{0, ""}));
}

TEST_F(PcieCommand, TheWalkIsToldWhenDebugging)
{
    expectConfig(0x40, 0x0005'7301, 0);
    expectConfig(0x70, 0xB010, 0);
    dbg_enable = 1;
    const Outcome outcome = outcomeOf([] { return static_cast<int>(pci_find_cap(0, 0x40, 0x10)); });
    std::string told;
    for (std::size_t at = 0; at < outcome.stream.size();) {
        const std::size_t end = outcome.stream.find('\n', at) + 1;
        const std::string line = outcome.stream.substr(at, end - at);
        told += line.find("cap") != std::string::npos ? line : "";
        at = end;
    }
    EXPECT_EQ(told,
              "find cap 0x10 pos 0x40 next_pos 0x73 id 0x1\ncap 0x10 is not match id 0x1 in pos 0x40\n"
              "find cap 0x10 pos 0x70 next_pos 0xb0 id 0x10\nfind cap 0x10 id 0x10 pos 0x70\n");
    EXPECT_EQ(outcome.out, "CfgRd at 40 read data is 57301 \nCfgRd at 70 read data is b010 \n");
    EXPECT_EQ(outcome.result, 0x70);
}

TEST_F(PcieCommand, TheWalkEnds)
{
    const struct {
        QRX_U32 head;
        const char* why;
    } kLasts[] = {{0xFFFFFFFF, "no device"}, {0x00003F05, "next below 0x40"}, {0x00000005, "no next"}};
    for (const auto& [head, why] : kLasts) {
        expectConfig(0x40, head);
        EXPECT_EQ(walk(pci_find_cap, 0x40, 0x10), (Outcome{0, ""})) << why;
    }
    for (const QRX_U32 head : {0xFFF000FFU, 0x03F00005U, 0x00000005U}) {
        expectConfig(0x100, head);
        EXPECT_EQ(walk(pci_find_exp_cap, 0x100, 1), (Outcome{0, ""})) << head;
    }
    expectStart(0x40);
    expectEnd(0x10000000);
    EXPECT_EQ(walk(pci_find_cap, 0x40, 0x10), (Outcome{0, "", "pio_CfgRd unsupport request"}));
}

TEST_F(PcieCommand, AnEndlessListIsLeft)
{
    for (int step = 0; step < 16; ++step) {
        expectConfig(0x40, 0x4005);
    }
    EXPECT_EQ(walk(pci_find_cap, 0x40, 0x10), (Outcome{0, ""}));
    for (int step = 0; step < 72; ++step) {
        expectConfig(0x100, 0x100FFFFF);
    }
    EXPECT_EQ(walk(pci_find_exp_cap, 0x100, 1), (Outcome{0, ""}));
}

TEST_F(PcieCommand, TheLastStepOfAWalkMayFind)
{
    for (int step = 0; step < 15; ++step) {
        expectConfig(0x40, 0x4005);
    }
    expectConfig(0x40, 0x10);
    EXPECT_EQ(walk(pci_find_cap, 0x40, 0x10).result, 0x40);
    for (int step = 0; step < 71; ++step) {
        expectConfig(0x200, 0x20300005);
    }
    expectConfig(0x200, 1);
    EXPECT_EQ(walk(pci_find_exp_cap, 0x200, 1).result, 0x200);
}

}  // namespace
