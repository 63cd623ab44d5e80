// How a scan of `eom` ends before its time, and that the PHY is then as it was.
#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <map>
#include <string>

#include "tests/unit/cli/eom_fixture.h"

namespace {

using namespace qrx::test;

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

TEST_F(EomCommand, TheFirstReadOfASettingIsTriedThreeTimes)
{
    openEye(40, 55);
    phy.registers[kCircuit] = 0xABCD5370;
    int failing = 0;
    int reads = 0;
    phy.status = [&](const Access& access, std::size_t) {
        return access.offset == kCircuit && !access.write && ++reads <= failing ? 0x704U : 0U;
    };
    for (failing = 1; failing < 3; ++failing) {
        reads = 0;
        EXPECT_NE(command({"eom", "-i", "0"}).stream.find("End of EOM capture\n"), std::string::npos);
        EXPECT_EQ(phy.registers[kCircuit] & ~0xC00U, 0xABCD5370U) << failing;
    }
    phy.accesses.clear();
    reads = 0;
    const std::string page = command({"eom", "-i", "0"}).stream;
    EXPECT_EQ(page,
              "InitEOM...\nRead register failed.\nRead register failed.\nRead register failed.\n"
              "\nThe eye opening monitor cannot be read.\nThe settings of the PHY are restored.\n");
    EXPECT_EQ(phy.registers[kCircuit] & ~0xC00U, 0xABCD5370U);
    for (const Access& access : phy.accesses) {
        EXPECT_FALSE(access.write && access.offset == kCircuit);
    }
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
    for (const std::size_t answers : {0U, 6U}) {  // none; until the monitor's own register has been read
        phy.accesses.clear();
        phy.status = [answers](const Access&, std::size_t count) { return count > answers ? 0xFFFFFFFFU : 0U; };
        const Outcome outcome = command({"eom", "-i", "0"});
        EXPECT_EQ(outcome.result, 1);
        EXPECT_NE(outcome.stream.find("The eye opening monitor cannot be read.\n"), std::string::npos);
        const char* const lost = "The PHY's eomCircuitCtrl is not restored: its bits 0x8000 should be 0x0.\n";
        EXPECT_EQ(outcome.stream.find(lost) != std::string::npos, answers != 0);
        EXPECT_LT(phy.accesses.size(), 40U);
    }
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
    for (const int signal : {SIGQUIT, SIGTERM, SIGHUP, SIGPIPE}) {
        EXPECT_EXIT(scanUntil(signal, phy), testing::ExitedWithCode(77), "") << signal;
    }
}

}  // namespace
