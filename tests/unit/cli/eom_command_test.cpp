// `eom`.
#include "cli/Functions/simple/simple_eom.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <map>
#include <utility>

#include "cli/Functions/simple/eom_scan.h"
#include "tests/unit/cli/fake_phy.h"
#include "tests/unit/cli/run.h"

namespace {

using namespace qrx::test;

const std::string kPage =
    "Description:Draw RC/EP EOM eye pattern\n"
    "eom -i <interface> [-h]\n\nOptions:\n    -i,  --interface\n         PCIe interface\n"
    "              0: RC, Root Complex\n              1: EP, End Point\n    -h,  --help\nExamples:\n"
    "    eom -i 0\n    Draw RC EOM eye pattern \n\n    eom -i 1\n    Draw EP EOM eye pattern \n\n";

const std::string kRestored = "The settings of the PHY are restored.\n";
const std::string kInit = "InitEOM...\n<<<<<<<<InitEOM Done...>>>>>>>>>>\nFindEyeCenter...\nScanning Phase...\n";

// Offsets.
constexpr QRX_U32 kPower = 0x004;
constexpr QRX_U32 kDfe = 0x020;
constexpr QRX_U32 kCircuit = 0x09C;
constexpr QRX_U32 kCtrl0 = 0x0A0;
constexpr QRX_U32 kCtrl1 = 0x0A4;
constexpr QRX_U32 kValid = 0x2000;

using Accesses = std::vector<Access>;

Accesses operator+(Accesses left, const Accesses& right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}
Accesses reads(QRX_U32 offset, QRX_U32 value)
{
    return {{false, offset, value}};
}
// A register read and written back.
Accesses changes(QRX_U32 offset, QRX_U32 before, QRX_U32 after)
{
    return {{false, offset, before}, {true, offset, after}};
}
// SetValid with eomSet1Ctrl0 at `ctrl0` but for EOM_SET1_VLD, and the phase in eomSet1Ctrl1.
Accesses handshake(QRX_U32 ctrl0, QRX_U32 phase, int polls = 1)
{
    Accesses all = changes(kCtrl0, ctrl0, ctrl0) + changes(kCtrl0, ctrl0, ctrl0 | kValid);
    for (int poll = 1; poll <= polls; ++poll) {
        all = all + reads(kCtrl1, phase | (poll == polls ? 0x8000U : 0U)) +
              changes(kCtrl0, ctrl0 | kValid, ctrl0 | kValid);
    }
    return all + changes(kCtrl0, ctrl0 | kValid, ctrl0);
}

class EomCommand : public testing::Test {
protected:
    EomCommand()
    {
        gCurrentAdapter = 0;
        g_oneBaseMode = 0;
        dbg_enable = 0;
        id = 1;
        g_base_addr = 0xE2A00000;
        qrx::eom::patience = {5, std::chrono::milliseconds(0), 3};
        phy.registers[kPower] = 0x00007570;
        phy.registers[kDfe] = 0x0000AFD5;
        phy.registers[kCircuit] = 0x00000030;
        // A scan of a few measurements: three phases of search at least, four columns and two rows each half.
        eom_window = 4;
        voltage_skip = 60;
    }
    ~EomCommand() override
    {
        voltage_skip = 4;
        eom_window = 64;
        eom_search_range = 2560;
        min_width = 16;
        phase_skip = 8;
        no_plot_loop = 0;
        qrx::eom::patience = before_;
        nCurrentPhase = 0;
        eyeCenter = leftEdge = eyeWidth = sv_dfe_fx_force = sv_pu_dfe = 0;
        id = 0;
        g_base_addr = 0;
    }
    // Clean from the first to the last of these phases, all voltages.
    void openEye(QRX_U32 first, QRX_U32 last)
    {
        phy.errors = [first, last](QRX_U32 phase, QRX_U32, QRX_U32) {
            return phase >= first && phase <= last ? 0U : 40000U;
        };
    }
    static std::string search(const std::function<void()>& stage = FindEyeCenter)
    {
        return outcomeOf([&] {
                   stage();
                   return 0;
               })
            .stream;
    }
    static std::string estimate(int left, int center, int right, int width)
    {
        char text[256];
        std::snprintf(text, sizeof(text),
                      "\n Estimated Left edge is at:  %d  0x%x\n Estimated Center is at:       %d  0x%x\n"
                      " Estimated Right edge is at:   %d  0x%x\n Estimated Eye width is:       %d  0x%x\n",
                      left, left, center, center, right, right, width, width);
        return text;
    }
    static std::string phaseLine(unsigned phase, unsigned rate)
    {
        char text[128];
        std::snprintf(text, sizeof(text), "Phase:  %u  0x%x  0x%x, BER: %07u e-4 \n", phase, phase, phase & 0x7F, rate);
        return text;
    }
    // The lines of a search, clean from `first` to `last`, up to `end`.
    static std::string phaseLines(unsigned first, unsigned last, unsigned end)
    {
        std::string text;
        for (unsigned phase = 0; phase <= end; phase += 8) {
            text += phaseLine(phase, phase >= first && phase <= last ? 0 : 5000);
        }
        return text;
    }
    [[nodiscard]] bool settingsAreAsBefore()
    {
        return phy.registers[kPower] == 0x7570 && phy.registers[kDfe] == 0xAFD5 &&
               (phy.registers[kCircuit] & ~0xC00U) == 0x30;
    }

    GlobalsGuard guard;
    FakePhy phy;

private:
    qrx::eom::Patience before_ = qrx::eom::patience;
};

TEST_F(EomCommand, Help)
{
    EXPECT_EQ(command({"eom"}), (Outcome{1, kPage}));
    EXPECT_EQ(command({"eom", "-h"}), (Outcome{0, kPage}));
    EXPECT_EQ(command({"eom", "-t", "1"}), (Outcome{0, kPage}));
    EXPECT_EQ(command({"eom", "-i", "1", "-a", "1"}), (Outcome{0, kPage}));
    EXPECT_EQ(command({"eom", "-x"}), (Outcome{0, "", "", "eom: illegal option -- x\n"}));
    EXPECT_TRUE(phy.accesses.empty());
}

TEST_F(EomCommand, Refusals)
{
    for (const char* word : {"-1", "0x1", "RC", "1 "}) {
        EXPECT_EQ(command({"eom", "-i", word}), (Outcome{0, std::string("-i : invalid device id '") + word + "'\n"}));
    }
    EXPECT_EQ(command({"eom", "--output", "x"}), (Outcome{0, "eom: option -i is required\n"}));
    EXPECT_EQ(command({"eom", "-i", "0", "--interface", "0"}), (Outcome{1, "Duplicated option specified.\n"}));
    EXPECT_TRUE(phy.accesses.empty());
}

TEST_F(EomCommand, TheParametersOfAScan)
{
    eom_window = 64;
    voltage_skip = 4;
    openEye(72, 128);
    const std::string page = command({"eom", "-i", "0"}).stream;
    std::string row(64, '#');
    for (std::size_t column = 0; column < row.size(); ++column) {
        row[column] = column >= 4 && column <= 60 ? '.' : '#';  // 68 to 131, clean from 72 to 128
    }
    std::string map;
    for (int voltage = 63; voltage >= 3; voltage -= 4) {
        char label[16];
        std::snprintf(label, sizeof(label), "%02x ", voltage);
        map += label + row + "\n";
    }
    for (int voltage = 0; voltage <= 60; voltage += 4) {
        char label[16];
        std::snprintf(label, sizeof(label), "%02x ", voltage);
        map += label + row + "\n";
    }
    EXPECT_EQ(page, kInit + phaseLines(72, 128, 136) + estimate(64, 100, 136, 72) +
                        "MapEye eyeCenter=100, window=64\n"
                        "Map the eye digram between left phase= 68   to right phase=  132\n" +
                        map + "\n eye height is:  128   0x80\n eye width is:   57   0x39\nEnd of EOM capture\n");
    EXPECT_EQ(phy.interface, 2);
    EXPECT_TRUE(settingsAreAsBefore());
    EXPECT_GT(phy.accesses.size(), 100000U);
    EXPECT_EQ(rightEdge, 0U);
}

TEST_F(EomCommand, TheHandshake)
{
    phy.registers[kCtrl0] = 0xABCDD19F;  // all but EOM_SET1_VLD of what may be there
    phy.phase = 0x15;
    SetValid();
    EXPECT_EQ(phy.accesses, handshake(0xABCDD19F, 0x15));
}

TEST_F(EomCommand, TheHandshakeClearsWhatAnEarlierOneLeft)
{
    phy.registers[kCtrl0] = kValid | 0x11;
    SetValid();
    EXPECT_EQ(phy.accesses, changes(kCtrl0, kValid | 0x11, 0x11) + changes(kCtrl0, 0x11, kValid | 0x11) +
                                reads(kCtrl1, 0x8000) + changes(kCtrl0, kValid | 0x11, kValid | 0x11) +
                                changes(kCtrl0, kValid | 0x11, 0x11));
}

TEST_F(EomCommand, TheHandshakeIsRepeatedUntilItIsAnswered)
{
    phy.measured = false;
    phy.status = [this](const Access&, std::size_t count) {
        phy.measured = count >= 9;
        return 0U;
    };
    SetValid();
    EXPECT_EQ(phy.accesses, handshake(0, 0, 3));
}

TEST_F(EomCommand, OneMeasurementAccessByAccess)
{
    nCurrentPhase = 0x15;
    phy.phase = 0x15;
    phy.registers = {
        {0xA8, 0x1234FFFF},     {0xAC, 0x5678ABCD}, {0xB0, 0x9ABCFFFE}, {0xB4, 0xFFFFFFFF}, {kCtrl0, 0xABCD9FFF},
        {kCircuit, 0xABCD4F30}, {0xD8, 1},          {0xDC, 2},          {0xC8, 3},          {0xCC, 4}};
    phy.registers[kCtrl0] &= ~kValid;
    phy.samples = 0x13880;
    phy.errors = [](QRX_U32 phase, QRX_U32 voltage, QRX_U32 sign) {
        EXPECT_EQ(phase, 0x15U);
        EXPECT_EQ(voltage, 0x2AU);
        return sign == 3 ? 40U : 0U;
    };
    EXPECT_EQ(GetBER(0x15, 0x2A, 80000, 3, 1), 2U);  // 40 of 160000

    Accesses expected = changes(0xA8, 0x1234FFFF, 0x12340000) + changes(0xAC, 0x5678ABCD, 0x56780000) +
                        changes(0xB0, 0x9ABCFFFE, 0x9ABC0001) + changes(0xB4, 0xFFFFFFFF, 0x3880) +
                        changes(kCtrl0, 0xABCD9FFF, 0xABCD9FEA);
    QRX_U32 ctrl0 = 0xABCD9FEA;
    QRX_U32 circuit = 0xABCD4F30;
    for (const QRX_U32 sign : {3U, 1U}) {
        const QRX_U32 signedCtrl0 = (ctrl0 & ~0xC0U) | sign << 6;
        const QRX_U32 signedCircuit = (circuit & ~0xC00U) | sign << 10;
        expected = expected + changes(kCtrl0, ctrl0, signedCtrl0) + changes(kCircuit, circuit, signedCircuit) +
                   handshake(signedCtrl0, 0x15) + reads(0xD8, 1) + reads(0xDC, 2) + reads(0xE0, 0) +
                   reads(0xE4, sign == 3 ? 40 : 0) + reads(0xC8, 3) + reads(0xCC, 4) + reads(0xD0, 1) +
                   reads(0xD4, 0x3880);
        ctrl0 = signedCtrl0;
        circuit = signedCircuit;
    }
    EXPECT_EQ(phy.accesses, expected);
    EXPECT_EQ(phy.accesses.size(), 52U);
}

TEST_F(EomCommand, ThePhaseMovesInStepsAndBeyondItsField)
{
    nCurrentPhase = 115;
    phy.phase = 115;
    (void)GetBER(134, 0, 80000, 3, 1);
    std::vector<QRX_U32> phases;
    for (const Access& access : phy.accesses) {
        if (access.write && access.offset == kCtrl1) {
            phases.push_back(access.value);
        }
    }
    EXPECT_EQ(phases, (std::vector<QRX_U32>{123, 131, 134}));
    EXPECT_EQ(nCurrentPhase, 134U);

    phy.accesses.clear();
    phases.clear();
    phy.phase = 0x0C05;  // a stale phase reads as its low bits
    (void)GetBER(118, 0, 80000, 3, 1);
    for (std::size_t i = 0; i + 1 < phy.accesses.size(); ++i) {
        if (phy.accesses[i + 1].write && phy.accesses[i + 1].offset == kCtrl1) {
            EXPECT_EQ(phy.accesses[i], (Access{false, kCtrl1, phases.empty() ? 0x05 : phases.back() & 0x7F}));
            phases.push_back(phy.accesses[i + 1].value);
        }
    }
    EXPECT_EQ(phases, (std::vector<QRX_U32>{126, 118}));
}

TEST_F(EomCommand, WhatStandsAboveThePhaseIsAddedTo)
{
    nCurrentPhase = 120;
    phy.registers[kCtrl0] = kValid;  // so that eomSet1Ctrl1 shows EOM_SET1_RDY
    (void)GetBER(128, 0, 80000, 3, 1);
    const auto written = std::find_if(phy.accesses.begin(), phy.accesses.end(),
                                      [](const Access& access) { return access.write && access.offset == kCtrl1; });
    ASSERT_NE(written, phy.accesses.end());
    EXPECT_EQ(written->value, 0x8000U + 128);
}

TEST_F(EomCommand, ErrorRates)
{
    const struct {
        QRX_U32 errors;  // of each of the two measurements
        QRX_U32 samples;
        QRX_U32 rate;
    } kRates[] = {{0, 80000, 0},          {0, 0, 0},         {7, 80000, 0},         {8, 80000, 1},
                  {72, 80000, 9},         {80, 80000, 10},   {80000, 80000, 10000}, {5, 0, 10000},
                  {214748, 80000, 26843}, {214749, 80000, 0}};  // the product takes 32 bits
    for (const auto& [errors, samples, rate] : kRates) {
        phy.samples = samples;
        phy.errors = [count = errors](QRX_U32, QRX_U32, QRX_U32) { return count; };
        EXPECT_EQ(GetBER(0, 0, 80000, 3, 1), rate) << errors << " of " << samples;
    }
}

TEST_F(EomCommand, TheWholeHighRegisterCounts)
{
    phy.errors = [](QRX_U32, QRX_U32, QRX_U32) {
        return 0xFFFF0001;
    };  // eomSet1ErrCntr2 0xFFFF, shifted out in the sum
    phy.samples = 0x00010001;
    // Twice 0xFFFF0001 is 0xFFFE0002, times 10000 in 32 bits, over twice 0x10001.
    EXPECT_EQ(GetBER(0, 0, 80000, 3, 1), static_cast<QRX_U32>(0xFFFE0002U * 10000U) / 0x20002U);
}

TEST_F(EomCommand, AFewSamplesAreAskedForWithoutBit16)
{
    const std::pair<QRX_U32, QRX_U32> kCounts[] = {{16, 0}, {17, 1}, {80000, 1}, {0x12345, 1}};
    for (const auto& [population, bit] : kCounts) {
        phy.registers[0xB0] = 0xFFFFFFFF;
        (void)GetBER(0, 0, population, 2, 0);
        EXPECT_EQ(phy.registers[0xB0], 0xFFFF0000U | bit) << population;
        EXPECT_EQ(phy.registers[0xB4], population & 0xFFFF) << population;
    }
}

TEST_F(EomCommand, Symbols)
{
    EXPECT_EQ(search([] {
                  for (const QRX_U32 rate : {0U, 1U, 9U, 10U, 999U, 1000U, 0xFFFFFFFFU}) {
                      PlotSymbol(rate);
                  }
              }),
              ".**++##");
}

TEST_F(EomCommand, SwitchingTheMonitorOnAccessByAccess)
{
    nCurrentPhase = 77;
    phy.phase = 0x7F;
    phy.registers[kCtrl0] = 0xABCDDFFF;
    phy.registers[kCircuit] = 0xABCDDFFF;  // switched on
    EXPECT_EQ(search(InitEOM), "<<<<<<<<InitEOM Done...>>>>>>>>>>\n");
    EXPECT_EQ(phy.accesses, changes(kCtrl1, 0x7F, 0) + changes(kCtrl0, 0xABCDDFFF, 0xABCDDFC0) +
                                changes(kCircuit, 0xABCDFFFF, 0xABCD7FFF) + reads(kCircuit, 0xABCD5FFF) +
                                changes(kCircuit, 0xABCD5FFF, 0xABCDDFFF) + reads(kCircuit, 0xABCDFFFF) +
                                changes(kDfe, 0xAFD5, 0xAFD4) + reads(kPower, 0x7570));
    EXPECT_EQ(sv_dfe_fx_force, 0x15U);
    EXPECT_EQ(sv_pu_dfe, 1U);
    EXPECT_EQ(nCurrentPhase, 77U);

    phy.registers[kDfe] = 0xFFFFFFE9;
    phy.registers[kPower] = 0xFFFFFBFF;
    (void)search(InitEOM);
    EXPECT_EQ(sv_dfe_fx_force, 0x29U);
    EXPECT_EQ(sv_pu_dfe, 0U);
}

TEST_F(EomCommand, AnEyeIsFound)
{
    openEye(40, 55);
    EXPECT_EQ(search(), "Scanning Phase...\n" + phaseLines(40, 55, 56) + estimate(32, 44, 56, 24));
    EXPECT_EQ(eyeCenter, 44U);
    EXPECT_EQ(leftEdge, 32U);
    EXPECT_EQ(eyeWidth, 24U);
    EXPECT_EQ(phy.accesses.front(), (Access{false, kCtrl0, 0}));
}

TEST_F(EomCommand, ANarrowRunIsPassedOver)
{
    phy.errors = [](QRX_U32 phase, QRX_U32, QRX_U32) { return phase == 40 || (phase >= 64 && phase < 88) ? 0U : 80U; };
    std::string lines;
    for (unsigned phase = 0; phase <= 88; phase += 8) {
        lines += phaseLine(phase, phase == 40 || (phase >= 64 && phase < 88) ? 0 : 10);
    }
    EXPECT_EQ(search(), "Scanning Phase...\n" + lines + estimate(56, 72, 88, 32));
}

TEST_F(EomCommand, AnEyeAtPhase0IsNone)
{
    openEye(0, 39);
    EXPECT_EQ(search(), "Scanning Phase...\n" + phaseLines(0, 39, 40) + estimate(0, 0, 40, 40));
    EXPECT_EQ(eyeCenter, 0U);
}

TEST_F(EomCommand, TheSearchHasItsEnd)
{
    eyeCenter = leftEdge = 99;
    openEye(1, 0);  // none
    EXPECT_EQ(search(), "Scanning Phase...\n" + phaseLines(1, 0, 2552) + estimate(0, 0, 0, 0));
    openEye(2500, 2551);
    EXPECT_EQ(search(), "Scanning Phase...\n" + phaseLines(2500, 2551, 2552) + estimate(0, 0, 2552, 2552));
    openEye(2500, 2600);
    EXPECT_EQ(search(), "Scanning Phase...\n" + phaseLines(2500, 2600, 2552) + estimate(0, 0, 0, 0));
    openEye(2500, 2543);
    EXPECT_EQ(search(), "Scanning Phase...\n" + phaseLines(2500, 2543, 2544) + estimate(2496, 2520, 2544, 48));
}

TEST_F(EomCommand, TheMapPlotsBothHalves)
{
    phy.errors = [](QRX_U32 phase, QRX_U32 voltage, QRX_U32 sign) {
        EXPECT_EQ(sign & 1U, voltage == 63 || voltage == 3 ? 1U : 0U) << voltage;
        const QRX_U32 rates[] = {0, 8, 80, 8000};
        return voltage == 0 || voltage == 3 ? 0 : rates[phase - 100];
    };
    EXPECT_EQ(search([] { MapEye(100, 104, 101); }),
              "Map the eye digram between left phase= 100   to right phase=  104\n"
              "3f .*+#\n03 ....\n00 ....\n3c .*+#\n\n eye height is:  120   0x78\n eye width is:   4   0x4\n");
    EXPECT_EQ(eyeWidth, 4U);
}

TEST_F(EomCommand, TheWidestRunCounts)
{
    eom_window = 64;
    phy.errors = [](QRX_U32 phase, QRX_U32 voltage, QRX_U32) {
        const std::string row = ".#.#.#.#.#.#.#.#.#.#.#...##...........";  // more than ten runs
        return voltage == 0 && row.at(phase - 200) == '.' ? 0U : 8000U;
    };
    const std::string map = search([] { MapEye(200, 238, 219); });
    EXPECT_NE(map.find("00 .#.#.#.#.#.#.#.#.#.#.#...##...........\n"), std::string::npos) << map;
    EXPECT_NE(map.find("\n eye height is:  0   0x0\n eye width is:   11   0xb\n"), std::string::npos) << map;
}

TEST_F(EomCommand, AMapWithoutACleanPhase)
{
    openEye(1, 0);
    eyeWidth = 99;
    EXPECT_EQ(search([] { MapEye(100, 102, 101); }),
              "Map the eye digram between left phase= 100   to right phase=  102\n"
              "3f ##\n03 ##\n00 ##\n3c ##\n\n Eye not open at lower half! \n"
              "\n eye height is:  0   0x0\n eye width is:   0   0x0\n");
    EXPECT_EQ(eyeWidth, 0U);
}

TEST_F(EomCommand, PassesThatMeasureAlone)
{
    no_plot_loop = 2;
    std::map<std::pair<QRX_U32, QRX_U32>, int> measured;
    phy.errors = [&measured](QRX_U32 phase, QRX_U32 voltage, QRX_U32) {
        ++measured[{voltage, phase}];
        return phase == 99 ? 80U : 0U;
    };
    EXPECT_EQ(search([] { MapEye(98, 102, 100); }),
              "Map the eye digram between left phase= 98   to right phase=  102\n"
              "3f 03 00 3c \n eye height is:  240   0xf0\n eye width is:   2   0x2\n");
    std::vector<std::pair<QRX_U32, QRX_U32>> points;
    points.reserve(measured.size());
    for (const auto& [point, times] : measured) {
        points.push_back(point);
    }
    EXPECT_EQ(points, (std::vector<std::pair<QRX_U32, QRX_U32>>{
                          {0, 98}, {0, 99}, {0, 100}, {0, 101}, {3, 100}, {60, 100}, {63, 100}}));

    openEye(40, 55);
    const std::string page = command({"eom", "-i", "1"}).stream;
    const std::string map =
        "Map the eye digram between left phase= 42   to right phase=  46\n3f 03 00 3c "
        "\n eye height is:  240   0xf0\n eye width is:   4   0x4\n";
    EXPECT_EQ(page.substr(page.find("MapEye")), "MapEye eyeCenter=44, window=4\n" + map + map + "End of EOM capture\n");
}

TEST_F(EomCommand, AScan)
{
    openEye(40, 55);
    EXPECT_EQ(command({"eom", "-i", "1"}),
              (Outcome{1, kInit + phaseLines(40, 55, 56) + estimate(32, 44, 56, 24) +
                              "MapEye eyeCenter=44, window=4\n"
                              "Map the eye digram between left phase= 42   to right phase=  46\n"
                              "3f ....\n03 ....\n00 ....\n3c ....\n\n eye height is:  240   0xf0\n"
                              " eye width is:   4   0x4\nEnd of EOM capture\n"}));
    EXPECT_EQ(phy.interface, 3);
    EXPECT_EQ(Accesses(phy.accesses.end() - 6, phy.accesses.end()),
              changes(kCircuit, 0xA030, 0x2030) + changes(kDfe, 0xAFD4, 0xAFD5) + changes(kPower, 0x7570, 0x7570));
    EXPECT_TRUE(settingsAreAsBefore());
}

TEST_F(EomCommand, TheNextScanGoesOnFromThePhaseOfTheLast)
{
    openEye(40, 55);
    (void)command({"eom", "-i", "1"});
    EXPECT_EQ(nCurrentPhase, 45U);
    phy.accesses.clear();
    EXPECT_EQ(command({"eom", "-i", "1"}).result, 1);
    std::vector<QRX_U32> phases;
    for (const Access& access : phy.accesses) {
        if (access.write && access.offset == kCtrl1 && phases.size() < 8) {
            phases.push_back(access.value);
        }
    }
    EXPECT_EQ(phases, (std::vector<QRX_U32>{0, 37, 29, 21, 13, 5, 0, 8}));
}

TEST_F(EomCommand, TenAttemptsAreMadeAndTheSettingsAreThoseOfBefore)
{
    openEye(0, 39);
    const Outcome outcome = command({"eom", "-i", "0"});
    std::string page;
    for (int attempt = 0; attempt < 10; ++attempt) {
        page += kInit + phaseLines(0, 39, 40) + estimate(0, 0, 40, 40);
    }
    EXPECT_EQ(outcome,
              (Outcome{1, page + "MapEye eyeCenter=0, window=4\n"
                                 "Map the eye digram between left phase= -2   to right phase=  2\n"
                                 "3f \n03 \n00 \n3c \n\n Eye not open at lower half! \n"
                                 "\n eye height is:  0   0x0\n eye width is:   0   0x0\nEnd of EOM capture\n"}));
    EXPECT_TRUE(settingsAreAsBefore());  // though all but the first attempt find what the one before them left
}

TEST_F(EomCommand, ARetryMayFind)
{
    int searches = 0;
    phy.status = [&searches](const Access& access, std::size_t) {
        searches += access == Access{true, kDfe, 0xAFD4} ? 1 : 0;
        return 0U;
    };
    phy.errors = [&searches](QRX_U32 phase, QRX_U32, QRX_U32) {
        return phase >= (searches < 3 ? 0 : 40) && phase <= 55 ? 0U : 40000U;
    };
    const std::string page = command({"eom", "-i", "0"}).stream;
    EXPECT_NE(page.find("MapEye eyeCenter=44, window=4\n"), std::string::npos);
    EXPECT_EQ(searches, 3);
    EXPECT_TRUE(settingsAreAsBefore());
}

TEST_F(EomCommand, AMonitorThatDoesNotGetReadyIsGivenUp)
{
    phy.ready = false;
    EXPECT_EQ(command({"eom", "-i", "0"}),
              (Outcome{1, "InitEOM...\n\nThe eye opening monitor does not get ready.\n" + kRestored}));
    EXPECT_TRUE(settingsAreAsBefore());
    // Six accesses up to the switch, five looks at the bit, and the monitor switched off.
    EXPECT_EQ(phy.accesses.size(), 9U + 5 + 2);
}

TEST_F(EomCommand, AMeasurementThatDoesNotEndIsGivenUp)
{
    openEye(40, 55);
    phy.status = [this](const Access&, std::size_t count) {
        phy.measured = count < 300;
        return 0U;
    };
    const Outcome outcome = command({"eom", "-i", "0"});
    EXPECT_EQ(outcome.result, 1);
    const std::string end = "\nThe eye opening monitor does not get ready.\n" + kRestored;
    ASSERT_GT(outcome.stream.size(), end.size());
    EXPECT_EQ(outcome.stream.substr(outcome.stream.size() - end.size()), end);
    EXPECT_EQ(outcome.stream.find("Estimated"), std::string::npos);
    EXPECT_TRUE(settingsAreAsBefore());
    EXPECT_LT(phy.accesses.size(), 400U);
    EXPECT_EQ(phy.registers[kCtrl0] & kValid, 0U);
}

TEST_F(EomCommand, AMonitorIsWaitedForSoLongAndSoOften)
{
    qrx::eom::patience = {3, std::chrono::milliseconds(30), 3};
    phy.ready = false;
    const auto start = std::chrono::steady_clock::now();
    (void)command({"eom", "-i", "0"});
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(30));
    EXPECT_GT(phy.accesses.size(), 20U);  // time alone was left
}

TEST_F(EomCommand, AMonitorThatCannotBeReadIsGivenUp)
{
    phy.status = [](const Access& access, std::size_t count) { return count > 200 && !access.write ? 0x704U : 0U; };
    openEye(40, 55);
    const Outcome outcome = command({"eom", "-i", "0"});
    EXPECT_EQ(outcome.result, 1);
    EXPECT_NE(outcome.stream.find("\nThe eye opening monitor cannot be read.\n"), std::string::npos);
    EXPECT_NE(outcome.stream.find(kRestored), std::string::npos);
    EXPECT_TRUE(settingsAreAsBefore());  // written from what was read before
}

TEST_F(EomCommand, AFailedAccessDoesNotEndTheScan)
{
    openEye(40, 55);
    const std::string page = command({"eom", "-i", "0"}).stream;
    phy.accesses.clear();
    nCurrentPhase = 0;
    phy.registers[kCtrl1] = 0;
    phy.status = [](const Access& access, std::size_t count) {
        return access.offset == 0xD8 && count < 100 ? 0x704U : 0U;  // a counter of which nothing is used
    };
    const Outcome outcome = command({"eom", "-i", "0"});
    std::string stream = outcome.stream;
    std::size_t failures = 0;
    const std::string failed = "Read register failed.\n";
    for (std::size_t at = stream.find(failed); at != std::string::npos; at = stream.find(failed)) {
        stream.erase(at, failed.size());
        ++failures;
    }
    EXPECT_EQ(stream, page);
    EXPECT_EQ(failures, 2U);
    EXPECT_EQ(outcome.out.find("Invalid parameter (Status Code: 0x704)\n"), 0U);
}

TEST_F(EomCommand, WhatAFailedReadTookFromARegisterIsPutBack)
{
    openEye(40, 55);
    phy.registers[kCircuit] = 0xABCD5370;  // every bit that is not the monitor's own
    int reads = 0;
    phy.status = [&reads](const Access& access, std::size_t) {
        return access.offset == kCircuit && !access.write && ++reads == 9 ? 0x704U : 0U;
    };
    (void)command({"eom", "-i", "0"});
    EXPECT_NE(std::find(phy.accesses.begin(), phy.accesses.end(), Access{true, kCircuit, 0xC00}), phy.accesses.end());
    EXPECT_EQ(phy.registers[kCircuit] & ~0xC00U, 0xABCD5370U);
}

TEST_F(EomCommand, WhatCouldNotBeReadIsNotChanged)
{
    openEye(40, 55);
    phy.status = [](const Access& access, std::size_t) {
        return access.offset == kDfe || access.offset == kPower ? 0x704U : 0U;
    };
    const Outcome outcome = command({"eom", "-i", "0"});
    EXPECT_EQ(outcome.stream.find("restored"), std::string::npos);
    for (const Access& access : phy.accesses) {
        EXPECT_FALSE(access.write && (access.offset == kDfe || access.offset == kPower));
    }
    EXPECT_TRUE(settingsAreAsBefore());
}

TEST_F(EomCommand, PuttingBackIsTriedThreeTimes)
{
    openEye(40, 55);
    for (const bool write : {false, true}) {
        std::map<QRX_U32, int> failures;
        bool done = false;
        phy.accesses.clear();
        phy.status = [&](const Access& access, std::size_t) {
            done = done || (access.write && access.offset == kCircuit && (access.value & 0x8000) == 0 &&
                            phy.accesses.size() > 100);
            const bool restores = done && (access.offset == kDfe || access.offset == kPower);
            return restores && access.write == write && ++failures[access.offset] < 3 ? 0x701U : 0U;
        };
        const Outcome outcome = command({"eom", "-i", "0"});
        EXPECT_EQ(outcome.stream.find("is not restored"), std::string::npos);
        EXPECT_EQ(failures[kDfe], 3);
        EXPECT_EQ(failures[kPower], 3);
        EXPECT_TRUE(settingsAreAsBefore());
    }
}

TEST_F(EomCommand, WhatCannotBePutBackIsTold)
{
    openEye(40, 55);
    bool searched = false;
    phy.status = [&searched](const Access& access, std::size_t count) {
        searched = searched || count > 100;
        return searched && access.write && (access.offset == kDfe || access.offset == kPower) ? 0x701U : 0U;
    };
    const std::string page = command({"eom", "-i", "0"}).stream;
    const std::string failed = "Write register failed.\n";
    EXPECT_EQ(page.substr(page.find("End of EOM capture")),
              "End of EOM capture\n" + failed + failed + failed +
                  "The PHY's dfeUpdateCtrl is not restored: its bits 0x3f should be 0x15.\n" + failed + failed +
                  failed + "The PHY's powerAndPllCtrl is not restored: its bits 0x400 should be 0x400.\n");
}

TEST_F(EomCommand, AControllerThatIsGoneEndsTheScan)
{
    phy.status = [](const Access&, std::size_t) { return 0xFFFFFFFFU; };
    const Outcome outcome = command({"eom", "-i", "0"});
    EXPECT_EQ(outcome.result, 1);
    EXPECT_NE(outcome.stream.find("The eye opening monitor cannot be read.\n"), std::string::npos);
    EXPECT_NE(outcome.stream.find("The PHY's eomCircuitCtrl is not restored: its bits 0x8000 should be 0x0.\n"),
              std::string::npos);
    EXPECT_LT(phy.accesses.size(), 40U);
}

TEST_F(EomCommand, AnInterruptedScanPutsEverythingBack)
{
    openEye(40, 55);
    (void)command({"eom", "-i", "0"});
    const std::size_t whole = phy.accesses.size();
    for (std::size_t at = 0; at + 8 < whole; at += 97) {
        phy.accesses.clear();
        nCurrentPhase = 0;
        phy.status = [at](const Access&, std::size_t count) {
            if (count == at) {
                (void)std::raise(SIGINT);
            }
            return 0U;
        };
        const Outcome outcome = command({"eom", "-i", "0"});
        const std::string end = "\nThe scan was interrupted.\n" + kRestored;
        EXPECT_EQ(outcome.result, 1);
        ASSERT_GE(outcome.stream.size(), end.size());
        EXPECT_EQ(outcome.stream.substr(outcome.stream.size() - end.size()), end) << at;
        EXPECT_EQ(outcome.stream.find("End of EOM"), std::string::npos);
        EXPECT_TRUE(settingsAreAsBefore()) << at;
        EXPECT_LT(phy.accesses.size(), at + 80) << "the scan goes on";
    }
}

TEST_F(EomCommand, AnInterruptEndsAWaitWithoutEnd)
{
    qrx::eom::patience = {1000000, std::chrono::hours(1), 1000000};
    phy.ready = false;
    phy.status = [](const Access&, std::size_t count) {
        if (count == 500) {
            (void)std::raise(SIGINT);
        }
        return 0U;
    };
    EXPECT_EQ(command({"eom", "-i", "0"}), (Outcome{1, "InitEOM...\n\nThe scan was interrupted.\n" + kRestored}));
    EXPECT_TRUE(settingsAreAsBefore());
}

void mark(int /*signal*/) {}

TEST_F(EomCommand, SignalsAreHandledAfterwardsAsBefore)
{
    struct sigaction mine {};
    mine.sa_handler = mark;
    struct sigaction before {};
    ASSERT_EQ(sigaction(SIGINT, &mine, &before), 0);
    openEye(40, 55);
    (void)command({"eom", "-i", "0"});
    struct sigaction after {};
    ASSERT_EQ(sigaction(SIGINT, &before, &after), 0);
    EXPECT_EQ(after.sa_handler, mark);
}

TEST_F(EomCommand, ASignalThatIsIgnoredStaysIgnored)
{
    const auto before = std::signal(SIGINT, SIG_IGN);
    openEye(40, 55);
    phy.status = [](const Access&, std::size_t count) {
        if (count == 500) {
            (void)std::raise(SIGINT);
        }
        return 0U;
    };
    EXPECT_NE(command({"eom", "-i", "0"}).stream.find("End of EOM capture\n"), std::string::npos);
    (void)std::signal(SIGINT, before);
}

FakePhy* endingPhy = nullptr;

// What a signal does to the process in the test below: the exit value tells whether the settings are back.
void endProcess(int /*signal*/)
{
    const bool good = endingPhy->registers.at(kDfe) == 0xAFD5 && (endingPhy->registers.at(kCircuit) & 0x8000) == 0;
    std::_Exit(good ? 77 : 78);
}

void scanUntil(int signal, FakePhy& phy)
{
    endingPhy = &phy;
    struct sigaction ending {};
    ending.sa_handler = endProcess;
    (void)sigaction(signal, &ending, nullptr);
    phy.status = [signal](const Access&, std::size_t count) {
        if (count == 500) {
            (void)std::raise(signal);
        }
        return 0U;
    };
    (void)command({"eom", "-i", "0"});
}

TEST_F(EomCommand, ASignalToEndEndsTheProcessWhenTheSettingsAreBack)
{
    openEye(40, 55);
    for (const int signal : {SIGTERM, SIGHUP, SIGPIPE}) {
        EXPECT_EXIT(scanUntil(signal, phy), testing::ExitedWithCode(77), "") << signal;
    }
}

}  // namespace
