// What lies behind the PCIe interfaces: a drive's configuration space, and the PHY with its eye monitor.
#include <gmock/gmock.h>

#include <vector>

#include "api/src/interface/wire/pcie_phy.h"
#include "tests/unit/sim/firmware/rig.h"

namespace qrx::sim {

namespace {

constexpr QRX_U32 kInterface = 2;  // the root complex of drive 0

class Link : public Rig {
public:
    using Rig::Rig;
    static Link of_text(std::string_view text) { return Link(text, 0); }

    QRX_U32 get(QRX_U32 address, QRX_U32 interface = kInterface)
    {
        EXPECT_EQ(vendor(0x09E0 | interface << 16, 0, address).status, kGood);
        return at<QRX_U32>(0);
    }
    void put(QRX_U32 address, QRX_U32 value, QRX_U32 interface = kInterface)
    {
        EXPECT_EQ(vendor(0x0AE0 | interface << 16, value, address).status, kGood);
    }
    // The registers of the PHY, by offset.
    QRX_U32 phy(QRX_U32 offset) { return get(kPciePhyBase + offset); }
    void phy(QRX_U32 offset, QRX_U32 value) { put(kPciePhyBase + offset, value); }

    // Starts a configuration read.
    void start(QRX_U32 offset, QRX_U32 interface = kInterface)
    {
        put(0xE2C00000, (interface - 2 + 0x90) << 24 | 4, interface);
        put(0xE2C00008, 0x01000000 | offset, interface);
        put(0xE2C0000C, 0, interface);
        put(0xE2C0001C, 1, interface);
    }
    // pio_status of a configuration read that ends.
    QRX_U32 outcome(QRX_U32 offset, QRX_U32 interface = kInterface)
    {
        start(offset, interface);
        EXPECT_EQ(get(0xE2C00020, interface), 1U);
        put(0xE2C00020, 1, interface);
        EXPECT_EQ(get(0xE2C00020, interface), 0U);
        return get(0xE2C00004, interface);
    }
    QRX_U32 config(QRX_U32 offset, QRX_U32 interface = kInterface)
    {
        EXPECT_EQ(outcome(offset, interface), 0U) << offset;
        return get(0xE2C00018, interface);
    }

    // Switches the monitor on.
    void enable()
    {
        phy(0x09C, phy(0x09C) | 0x8000);
        while ((phy(0x09C) & 0x2000) == 0) {
        }
    }
    struct Counts {
        QRX_U32 errors;
        QRX_U32 samples;
    };
    Counts measure(QRX_U32 phase, QRX_U32 voltage, QRX_U32 sign, QRX_U32 state, QRX_U32 population = 80000)
    {
        phy(0x0B0, population >> 16);
        phy(0x0B4, population & 0xFFFF);
        phy(0x0A4, phase);
        phy(0x0A0, voltage | sign << 6);
        phy(0x09C, (phy(0x09C) & ~0xC00U) | state << 10);
        phy(0x0A0, voltage | sign << 6 | 0x2000);
        while ((phy(0x0A4) & 0x8000) == 0) {
        }
        EXPECT_EQ(phy(0x0D8), 0U);
        EXPECT_EQ(phy(0x0DC), 0U);
        EXPECT_EQ(phy(0x0C8), 0U);
        EXPECT_EQ(phy(0x0CC), 0U);
        return {phy(0x0E0) << 16 | phy(0x0E4), phy(0x0D0) << 16 | phy(0x0D4)};
    }

private:
    Link(std::string_view text, int) : Rig(Rig::of_text(text)) {}
};

TEST(ConfigurationSpace, IsAnNvmeDrivesWithItsCapabilities)
{
    Link link("links");
    EXPECT_EQ(link.config(0x00), 0x0D017A51U);
    EXPECT_EQ(link.config(0x08) >> 8, 0x010802U);
    // Classic: power management, MSI, PCI Express, MSI-X.
    std::vector<QRX_U32> ids;
    for (QRX_U32 at = link.config(0x34); at != 0; at = link.config(at) >> 8 & 0xFF) {
        ids.push_back(link.config(at) & 0xFF);
    }
    EXPECT_EQ(ids, (std::vector<QRX_U32>{0x01, 0x05, 0x10, 0x11}));
    EXPECT_EQ(link.config(0x40) >> 8 & 0xFF, 0x50U);
    EXPECT_EQ(link.config(0x50) >> 8 & 0xFF, 0x70U);
    // Extended: serial number, errors, secondary.
    ids.clear();
    for (QRX_U32 at = 0x100; at != 0; at = link.config(at) >> 20) {
        ids.push_back(link.config(at) & 0xFFFF);
    }
    EXPECT_EQ(ids, (std::vector<QRX_U32>{0x03, 0x01, 0x19}));
    EXPECT_EQ(link.config(0x100) >> 20, 0x148U);
    EXPECT_EQ(link.config(0x148 + 4), 1310720U);
    EXPECT_EQ(link.config(0x148 + 16), 8193U);
    EXPECT_EQ(link.config(0xFFC), 0U);
}

TEST(ConfigurationSpace, TellsTheLinkOfTheRootComplex)
{
    Link link("links");
    EXPECT_EQ(link.config(0x80, 2) >> 16 & 0xFFF, 0x083U);
    EXPECT_EQ(link.config(0x80, 3) >> 16 & 0xFFF, 0x042U);
    EXPECT_EQ(link.config(0x80, 4) >> 16 & 0xFFF, 0x021U);
    EXPECT_EQ(link.config(0x80, 5) >> 16 & 0xFFF, 0x104U);
    Link other = Link::of_text(
        R"({"controllers": [{"drives": [{"id": 0, "config_space": {"speed": "2.5Gb/s", "width": 2}}]}]})");
    EXPECT_EQ(other.config(0x80) >> 16 & 0xFFF, 0x021U);
}

TEST(ConfigurationSpace, MayLackCapabilities)
{
    Link link("links");
    EXPECT_EQ(link.config(0x100, 4) >> 20, 0x190U);  // no Advanced Error Reporting
    EXPECT_EQ(link.config(0x148, 4), 0U);
    EXPECT_EQ(link.config(0x14C, 4), 0U);
    EXPECT_EQ(link.config(0x50, 6) >> 8 & 0xFF, 0xB0U);  // no PCI Express
    EXPECT_EQ(link.config(0x70, 6), 0U);
    EXPECT_EQ(link.config(0x80, 6), 0U);
}

TEST(ConfigurationSpace, IsReadAsTheScenarioSays)
{
    Link link("links");
    EXPECT_EQ(link.outcome(0, 7), 0x80000000U);   // timeout
    EXPECT_EQ(link.outcome(0, 8), 0x10000000U);   // unsupported request
    EXPECT_EQ(link.outcome(0, 9), 0x20000000U);   // retry
    EXPECT_EQ(link.outcome(0, 10), 0x40000000U);  // abort
    EXPECT_EQ(link.get(0xE2C00018, 10), 0xFFFFFFFFU);
    link.start(0, 11);  // never complete
    EXPECT_EQ(link.get(0xE2C00020, 11), 0U);
    EXPECT_EQ(link.outcome(0, 12), 0x80000000U);  // a failed drive
    EXPECT_EQ(link.outcome(0, 13), 0x10000000U);  // no drive
}

TEST(ConfigurationSpace, GoesWithTheDrivesPower)
{
    Link link = Link::of_text(R"({"controllers": [{"drives": [{"id": 0}, {"id": 1}], "board": {"in_reset": 2}}]})");
    EXPECT_EQ(link.outcome(0, 2), 0U);
    EXPECT_EQ(link.outcome(0, 3), 0x10000000U);
}

TEST(PioEngine, ReadsFunction0BehindItsOwnLinkAlone)
{
    Link link("raid");
    link.start(0);
    link.put(0xE2C00020, 1);
    link.put(0xE2C00000, 0x91000004);
    link.put(0xE2C0001C, 1);
    EXPECT_EQ(link.get(0xE2C00004), 0x80000000U);  // another link
    link.put(0xE2C00000, 0x90000005);
    link.put(0xE2C0001C, 1);
    EXPECT_EQ(link.get(0xE2C00004), 0x80000000U);  // another kind of access
    link.put(0xE2C00000, 0x90000004);
    for (const QRX_U32 target : {0x02000000U, 0x01080000U, 0x01010000U}) {
        link.put(0xE2C00008, target);
        link.put(0xE2C0001C, 1);
        EXPECT_EQ(link.get(0xE2C00004), 0x10000000U) << target;
    }
    link.put(0xE2C00008, 0x01000000);
    link.put(0xE2C0000C, 1);
    link.put(0xE2C0001C, 1);
    EXPECT_EQ(link.get(0xE2C00004), 0x10000000U);  // beyond configuration space
}

TEST(PioEngine, TellsOfTheLastAccess)
{
    Link link("raid");
    EXPECT_EQ(link.config(0), 0x0D017A51U);
    link.put(0xE2C00004, 5);
    link.put(0xE2C00018, 5);
    EXPECT_EQ(link.get(0xE2C00004), 0U);
    EXPECT_EQ(link.get(0xE2C00018), 0x0D017A51U);
    link.put(0xE2C0001C, 0);
    EXPECT_EQ(link.get(0xE2C00020), 0U);
    EXPECT_EQ(link.get(0xE2C00000), 0x90000004U);
}

TEST(PioEngine, IsBehindRootComplexesAlone)
{
    Link link("raid");
    link.put(0xE2C0001C, 1, 0);
    EXPECT_EQ(link.get(0xE2C00020, 0), 0U);
    EXPECT_EQ(link.get(0xE2C0001C, 0), 1U);
}

TEST(PhyRegisters, StartAsTheyAreNeeded)
{
    Link link("raid");
    EXPECT_EQ(link.phy(0x000), 0x000100C0U);
    EXPECT_EQ(link.phy(0x004), 0x7570U);
    EXPECT_EQ(link.phy(0x020), 0xAFD5U);
    EXPECT_EQ(link.phy(0x09C), 0x0030U);
    EXPECT_EQ(link.phy(0x29C), 0U);
}

TEST(PhyRegisters, HoldWhatCanBeWritten)
{
    Link link("raid");
    for (const QRX_U32 offset : {0x000U, 0x004U, 0x020U, 0x0A4U, 0x0A8U, 0x0C4U, 0x0C8U, 0x0E4U, 0x0E8U, 0x29CU}) {
        link.phy(offset, 0xFFFFFFFF);
    }
    EXPECT_EQ(link.phy(0x000), 0x000100C0U);
    EXPECT_EQ(link.phy(0x004), 0xFFFFFFFFU);
    EXPECT_EQ(link.phy(0x020), 0xFFFFFFFFU);
    EXPECT_EQ(link.phy(0x0A4), 0x7FU);  // the upper part of the phase does not show
    EXPECT_EQ(link.phy(0x0A8), 0xFFFFFFFFU);
    EXPECT_EQ(link.phy(0x0C4), 0xFFFFFFFFU);
    EXPECT_EQ(link.phy(0x0C8), 0U);
    EXPECT_EQ(link.phy(0x0E4), 0U);
    EXPECT_EQ(link.phy(0x0E8), 0xFFFFFFFFU);
    EXPECT_EQ(link.phy(0x29C), 0xFFFFFFFFU);
    link.phy(0x004, 0);
    EXPECT_EQ(link.phy(0x004), 0x100U);  // locked
    link.machine().controller(0)->reset();
    EXPECT_EQ(link.phy(0x004), 0x7570U);
    EXPECT_EQ(link.phy(0x29C), 0U);
}

TEST(EyeMonitor, GetsReadyAtTheSecondLook)
{
    Link link("raid");
    link.phy(0x09C, 0x8030);
    EXPECT_EQ(link.phy(0x09C), 0x8030U);
    EXPECT_EQ(link.phy(0x09C), 0xA030U);
    link.phy(0x09C, 0x2030);
    EXPECT_EQ(link.phy(0x09C), 0x2030U);
    EXPECT_EQ(link.phy(0x09C), 0x0030U);
}

TEST(EyeMonitor, MayNeverGetReady)
{
    Link link("eye-stuck");
    link.phy(0x09C, 0x8030);
    for (int look = 0; look < 1000; ++look) {
        ASSERT_EQ(link.phy(0x09C), 0x8030U);
    }
    link.put(kPciePhyBase + 0x09C, 0x8030, 3);
    (void)link.get(kPciePhyBase + 0x09C, 3);
    EXPECT_EQ(link.get(kPciePhyBase + 0x09C, 3), 0xA030U);
    link.put(kPciePhyBase + 0x0A0, 0x2000, 3);
    for (int look = 0; look < 1000; ++look) {
        ASSERT_EQ(link.get(kPciePhyBase + 0x0A4, 3), 0U);
    }
}

TEST(EyeMonitor, MeasuresOnlyWhenItIsReady)
{
    Link link("raid");
    link.phy(0x0B4, 100);
    link.phy(0x0A0, 0x2000);
    EXPECT_EQ(link.phy(0x0A4), 0U);
    EXPECT_EQ(link.phy(0x0A4), 0U);
    EXPECT_EQ(link.phy(0x0D4), 0U);
}

TEST(EyeMonitor, ShowsItsResultUntilItIsAskedAgain)
{
    Link link("raid");
    link.enable();
    link.phy(0x0B4, 100);
    link.phy(0x0A0, 0x2000);
    EXPECT_EQ(link.phy(0x0A4), 0U);
    EXPECT_EQ(link.phy(0x0A4), 0x8000U);
    EXPECT_EQ(link.phy(0x0D4), 100U);
    link.phy(0x0A0, 0x2000);
    EXPECT_EQ(link.phy(0x0A4), 0x8000U);
    link.phy(0x0A0, 0);
    EXPECT_EQ(link.phy(0x0A4), 0U);
    EXPECT_EQ(link.phy(0x0D4), 100U);
}

TEST(EyeMonitor, CountsTheErrorsOfItsPoint)
{
    Link link("raid");  // center 100, width 64, height 96
    link.enable();
    EXPECT_EQ(link.measure(100, 0, 3, 3).errors, 0U);
    EXPECT_EQ(link.measure(100, 0, 3, 3).samples, 80000U);
    EXPECT_EQ(link.measure(100, 63, 1, 1).errors, 39999U);  // five standard deviations outside
    EXPECT_EQ(link.measure(68, 0, 2, 2).errors, 40000U);    // both edges are here
    EXPECT_EQ(link.measure(200, 0, 0, 0).errors, 40000U);
    EXPECT_EQ(link.measure(100, 48, 0, 0).errors, 20000U);  // the upper edge
    EXPECT_EQ(link.measure(100, 0, 3, 2).errors, 40000U);   // compared with another sign
    EXPECT_EQ(link.measure(100, 63, 3, 3, 9).samples, 9U);
}

TEST(EyeMonitor, ReachesPhasesBeyondItsField)
{
    Link link("eye-past-range");
    link.enable();
    EXPECT_EQ(link.measure(2540, 0, 3, 3).errors, 0U);
    EXPECT_EQ(link.phy(0x0A4) & 0x7F, 2540U % 128);
    EXPECT_EQ(link.measure(2540 % 128, 0, 3, 3).errors, 40000U);
}

TEST(EyeMonitor, CountsBeyond32Bits)
{
    Link link("raid");
    link.enable();
    link.phy(0x0A8, 0x1234);
    link.phy(0x0AC, 0x5678);
    link.phy(0x0B0, 0x9ABC);
    link.phy(0x0B4, 0xDEF0);
    link.phy(0x0A4, 500);
    link.phy(0x0A0, 0x2000);
    EXPECT_EQ(link.phy(0x0C8), 0x1234U);
    EXPECT_EQ(link.phy(0x0CC), 0x5678U);
    EXPECT_EQ(link.phy(0x0D0), 0x9ABCU);
    EXPECT_EQ(link.phy(0x0D4), 0xDEF0U);
    EXPECT_EQ(link.phy(0x0D8), 0x1234U / 2);
    EXPECT_EQ(link.phy(0x0DC), 0x5678U / 2);
    EXPECT_EQ(link.phy(0x0E0), 0x9ABCU / 2);
    EXPECT_EQ(link.phy(0x0E4), 0xDEF0U / 2);
}

TEST(Eye, IsCleanInsideAndBlindOutside)
{
    const Eye eye{.center = 50, .width = 40, .height = 60, .jitter = 10, .noise = 20};
    QRX_U64 last = 0;
    for (QRX_U32 off = 0; off <= 50; ++off) {  // the same to the left and to the right, more and more
        const QRX_U64 now = eye.errors(50 + off, 0, 1000000);
        EXPECT_EQ(eye.errors(50 - off, 0, 1000000), now) << off;
        EXPECT_GE(now, last) << off;
        last = now;
    }
    EXPECT_EQ(last, 500000U);
    last = 0;
    for (QRX_U32 voltage = 0; voltage < 64; ++voltage) {
        const QRX_U64 now = eye.errors(50, voltage, 1000000);
        EXPECT_GE(now, last) << voltage;
        last = now;
    }
    EXPECT_EQ(last, 500000U);
    EXPECT_EQ(eye.errors(50, 0, 1000000), 0U);
    EXPECT_EQ(eye.errors(50, 30, 1000000), 250000U);  // half of a half on its edge
}

TEST(Eye, WithoutJitterAndNoiseHasSharpEdges)
{
    const Eye eye{.center = 50, .width = 40, .height = 60, .jitter = 0, .noise = 0};
    EXPECT_EQ(eye.errors(50, 29, 100), 0U);
    EXPECT_EQ(eye.errors(50, 30, 100), 50U);
    EXPECT_EQ(eye.errors(69, 0, 100), 0U);
    EXPECT_EQ(eye.errors(70, 0, 100), 50U);
}

TEST(Eye, MoreNoiseOpensItLess)
{
    const Eye quiet{.center = 50, .width = 40, .height = 60, .jitter = 10, .noise = 10};
    const Eye loud{.center = 50, .width = 40, .height = 60, .jitter = 10, .noise = 80};
    EXPECT_EQ(quiet.errors(50, 20, 100000), 0U);
    EXPECT_GT(loud.errors(50, 20, 100000), 4000U);  // 1.25 standard deviations from the edge: half of a tenth
    EXPECT_LT(loud.errors(50, 20, 100000), 6000U);
}

TEST(Eye, ThatIsClosedIsBlindEverywhere)
{
    const Eye closed{.width = 0};
    EXPECT_EQ(closed.errors(100, 0, 1000), 500U);
}

TEST(Interfaces, AreKeptInTheState)
{
    Link link("eye-narrow");
    link.enable();
    (void)link.measure(96, 3, 1, 1);
    link.phy(0x09C, 0x0030);
    (void)link.phy(0x09C);  // one look at a bit that is to follow
    link.phy(0x004, 0);
    (void)link.config(0x40);
    const std::string saved = save_machine(link.machine());
    Link again = Link::of_text(saved);
    EXPECT_EQ(again.machine().parts(), link.machine().parts());
    EXPECT_EQ(again.controller().interfaces.at(0).phy.looks, 1);
}

TEST(Interfaces, InAFileAreChecked)
{
    const auto refusal = [](const std::string& controller) {
        return load_machine("{\"controllers\": [{" + controller + "}]}", "x").error();
    };
    EXPECT_EQ(refusal(R"("interfaces": [{"eye": {"width": 65536}}])"), "x:1: 'width' is 65536; allowed are 0 to 65535");
    EXPECT_NE(refusal(R"("interfaces": [{"eye": {"depth": 1}}])").find("'depth'"), std::string::npos);
    EXPECT_EQ(refusal(R"("interfaces": [{"registers": [{"address": 3802136608, "value": 0}]}])"), "");
    EXPECT_NE(refusal(R"("drives": [{"id": 0, "config_space": {"answer": "perhaps"}}])").find("unsupported-request"),
              std::string::npos);
}

}  // namespace

}  // namespace qrx::sim
