// `eom`: the monitor access by access, the search, the map.
#include "cli/Functions/simple/simple_eom.h"

#include <algorithm>
#include <map>
#include <string>
#include <utility>

#include "tests/unit/cli/eom_fixture.h"

namespace {

using namespace qrx::test;

const std::string kPage =
    "Description:Draw RC/EP EOM eye pattern\n"
    "eom -i <interface> [-h]\n\nOptions:\n    -i,  --interface\n         PCIe interface\n"
    "              0: RC, Root Complex\n              1: EP, End Point\n    -h,  --help\nExamples:\n"
    "    eom -i 0\n    Draw RC EOM eye pattern \n\n    eom -i 1\n    Draw EP EOM eye pattern \n\n";

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

}  // namespace
