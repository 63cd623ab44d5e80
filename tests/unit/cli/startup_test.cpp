// main: the scan of the process arguments, start-up, one command, and the shell.
#include "cli/qxsetup/startup.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <deque>
#include <filesystem>
#include <fstream>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "api/src/device/common/DeviceManagement.h"
#include "api/src/interface/api.h"
#include "cli/qxsetup/shell.h"
#include "tests/unit/cli/run.h"
#include "tests/unit/cli/texts.h"
#include "tests/unit/support/libc.h"

namespace {

using namespace qrx::test;

// The terminal and the access layer of these tests. Start-up finds the controllers of the scripted machine.
struct FakeHost {
    std::vector<std::string> calls;
    std::deque<std::optional<std::string>> lines;  // empty: the end of input
    std::vector<std::string> history;
    std::function<void()> onInit;
} host;

const qrx::Host kHost{
    [] {
        host.calls.emplace_back("init");
        if (host.onInit) {
            host.onInit();
        }
    },
    [] { host.calls.emplace_back("final"); },
    [](const char* prompt) -> char* {
        host.calls.emplace_back(prompt);
        if (host.lines.empty()) {
            ADD_FAILURE() << "the shell asks for more lines than the test has";
            return strdup("exit");
        }
        const auto line = host.lines.front();
        host.lines.pop_front();
        return line ? strdup(line->c_str()) : nullptr;
    },
    [](const char* line) {
        host.history.emplace_back(line);
        return 0;
    },
    [] { host.calls.emplace_back("pause"); },
};

NVME_Adapter_Info adapterWithPorts(QRX_U8 count)
{
    NVME_Adapter_Info info{};
    info.PortCount = count;
    return info;
}

// A machine with controllers at /dev/nvme1 and /dev/nvme3.
class StartUp : public testing::Test {
protected:
    StartUp()
    {
        host = {};
        gCurrentAdapter = 0;
        gSpecificAdapterFlag = 0;
        gNumAdaptersFound = 0;
        g_pAdInfos = nullptr;
        g_oneBaseMode = 0;
        dbg_enable = 0;
        std::string name = testing::TempDir() + "qrx_cli_XXXXXX";
        folder = mkdtemp(name.data());
        out = (folder / "x.txt").string();
    }
    ~StartUp() override
    {
        if (stream != stdout) {
            std::fclose(stream);
        }
        std::free(g_pAdInfos);
        std::filesystem::remove_all(folder);
        *QRX_Adapter_GetDeviceVID() = 0;
    }
    StartUp(const StartUp&) = delete;
    StartUp& operator=(const StartUp&) = delete;

    void addControllers()
    {
        machine.addController({.path = "/dev/nvme1", .bdf = "03:00.00"});
        machine.addController({.path = "/dev/nvme3", .bdf = "04:00.00"});
    }
    // What start-up itself asks of the two controllers.
    void expectStart()
    {
        for (unsigned slot : {0U, 1U}) {
            machine.expect(
                Command::vendor(0xE0).flag(0x5001).receives(4096).on(slot).data(envelope(adapterWithPorts(1))));
        }
    }
    // The program with these arguments; `stream` is standard output unless they say otherwise.
    Outcome run(std::initializer_list<std::string> arguments)
    {
        std::vector<std::string> all{"qrx_cli"};
        all.insert(all.end(), arguments);
        Words words(all);
        StdoutCapture standard;
        StderrCapture error;
        Outcome outcome;
        outcome.result = qrx::run(words.argc(), words.argv(), kHost);
        outcome.out = standard.text();
        outcome.err = error.text();
        after = words.now();
        return outcome;
    }
    // With controllers.
    Outcome runOn(std::initializer_list<std::string> arguments)
    {
        addControllers();
        expectStart();
        return run(arguments);
    }
    [[nodiscard]] std::string written() const
    {
        std::ifstream in(out);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    GlobalsGuard guard;
    ScriptedMachine machine;
    std::filesystem::path folder;
    std::string out;
    std::vector<std::string> after;
};

const std::string kWelcome = "CLI Version: 1.0.0.1046\nWelcome to NVMe Command Line Interface.\n\n";
const std::string kVersion = "CLI Version: 1.0.0.1046\nSupport Firmware Version: 1.0.x.1039 above\n";
const std::string kNone = "No NVMe Controller is found.\n";

Outcome printed(int result, std::string text)
{
    return {result, "", std::move(text), ""};
}

TEST_F(StartUp, OneCommandRunsBetweenInitAndFinal)
{
    EXPECT_EQ(runOn({"version"}), printed(0, kVersion));
    EXPECT_EQ(host.calls, (std::vector<std::string>{"init", "final"}));
    EXPECT_EQ(gNumAdaptersFound, 2);
    EXPECT_EQ(g_pAdInfos, nullptr);
}

TEST_F(StartUp, TheResultOfTheHandlerIsTheExitValue)
{
    EXPECT_EQ(runOn({"version", "-z"}), (Outcome{1, "", "", "version: illegal option -- z\n"}));
}

TEST_F(StartUp, ExitIsMinusOneAsACommand)
{
    EXPECT_EQ(runOn({"EXIT"}), printed(-1, ""));
    EXPECT_EQ(host.calls, (std::vector<std::string>{"init", "final"}));
}

TEST_F(StartUp, ReadsARecordOfEachController)
{
    addControllers();
    machine.expect(Command::vendor(0xE0).flag(0x5001).receives(4096).on(0).status(2));
    machine.expect(Command::vendor(0xE0).flag(0x5001).receives(4096).on(1).data(envelope(adapterWithPorts(5))));
    // The records are looked at through the shell: `info -o vd` probes PortCount indices of the current controller.
    host.lines = {"adapter -i 3", "info -o vd", "exit"};
    for (QRX_U32 i = 0; i < 5; ++i) {
        machine.expect(Command::vendor(0xE2).word(14, i).flag(0x5001).receives(4096).on(1));
    }
    EXPECT_EQ(run({}), printed(0, kWelcome + "Updated current NVMe Controller id : 3\n\nNo virtual disk is found.\n"));
}

TEST_F(StartUp, AFailedRecordIsToldUnderDebug)
{
    dbg_enable = 1;
    addControllers();
    machine.expect(Command::vendor(0xE0).flag(0x5001).receives(4096).status(2));
    machine.expect(Command::vendor(0xE0).flag(0x5001).receives(4096).on(1).status(2));
    EXPECT_EQ(run({"version"}), printed(0,
                                        "\nUnable to get info of NVMe Controller \n"
                                        "\nUnable to get info of NVMe Controller 0\n"
                                        "\nUnable to get info of NVMe Controller \n"
                                        "\nUnable to get info of NVMe Controller 1\n" +
                                            kVersion));
}

TEST_F(StartUp, ANumberNamesTheControllerByItsDevice)
{
    host.lines = {"adapter --list", "exit"};
    EXPECT_EQ(runOn({"3"}), printed(0, kWelcome + "Total number of NVMe Controllers: 2\n"
                                                  "Current default NVMe Controller ID for CLI commands: 3\n"));
    EXPECT_EQ(gCurrentAdapter, 1);
    EXPECT_EQ(gSpecificAdapterFlag, 1);
}

TEST_F(StartUp, ANumberOfNoControllerEndsAtOnce)
{
    addControllers();
    EXPECT_EQ(run({"2", "info", "-o", "hba"}), printed(0, "Adapter ID 2 is not exist.\n"));
    EXPECT_EQ(host.calls, (std::vector<std::string>{"init"}));
    EXPECT_EQ(run({"99999999999"}), printed(0, "Adapter ID 2147483647 is not exist.\n"));
}

TEST_F(StartUp, AnEmptyWordIsTheNumberZero)
{
    addControllers();
    EXPECT_EQ(run({""}), printed(0, "Adapter ID 0 is not exist.\n"));
}

TEST_F(StartUp, OutputBehindTheCommandAppendsToTheFile)
{
    std::ofstream(out) << "before\n";
    EXPECT_EQ(runOn({"version", "-OUTPUT", out}), printed(0, ""));
    EXPECT_EQ(written(), "before\n" + kVersion);
    EXPECT_EQ(after[2], "-\x01UTPUT");
    EXPECT_EQ(stream, stdout);
}

TEST_F(StartUp, OutputWithHelpTakesTheFileAsACommandName)
{
    EXPECT_EQ(runOn({"help", "-output", out}), printed(0, ""));
    EXPECT_EQ(written(), "No help available for '" + out + "'\n");
}

TEST_F(StartUp, OutputInFrontOfTheCommandIsDispatchedItself)
{
    EXPECT_EQ(runOn({"-output", out}), printed(1, ""));
    EXPECT_EQ(written(), "Invalid command '-\x01utput'!\n");
}

TEST_F(StartUp, OutputBehindANumber)
{
    EXPECT_EQ(runOn({"1", "version", "-output", out}), printed(0, ""));
    EXPECT_EQ(written(), kVersion);
}

TEST_F(StartUp, OutputAsTheLastWordHasNoFile)
{
    EXPECT_EQ(runOn({"version", "-output"}), (Outcome{1, "", "", "version: illegal option -- o\n"}));
}

TEST_F(StartUp, OnlyTheFirstOutputIsTaken)
{
    EXPECT_EQ(runOn({"version", "-output", out, "-output", (folder / "y").string()}),
              (Outcome{1, "", "", "version: illegal option -- o\n"}));
    EXPECT_FALSE(std::filesystem::exists(folder / "y"));
    EXPECT_EQ(after[4], "-output");
}

TEST_F(StartUp, AFileThatCannotBeOpenedEndsBeforeAnyCommand)
{
    const std::string bad = (folder / "none" / "x").string();
    EXPECT_EQ(run({"version", "-output", bad}),
              (Outcome{1, "", "", "qrx_cli: cannot open '" + bad + "': No such file or directory\n"}));
    EXPECT_TRUE(host.calls.empty());
}

TEST_F(StartUp, AFileThatCannotBeWrittenIsTold)
{
    const Outcome outcome = runOn({"version", "-output", "/dev/full"});
    EXPECT_EQ(outcome, (Outcome{0, "", "", "qrx_cli: cannot write all of the output file\n"}));
}

TEST_F(StartUp, StatusTextsStayOnStandardOutput)
{
    addControllers();
    expectStart();
    machine.expect(Command::vendor(0xE0).flag(0x5001).word(14, 0).receives(4096).on(1).status(2));
    EXPECT_EQ(run({"3", "info", "-o", "hba", "-output", out}),
              printed(0, "Invalid Field in Command (Status Code: 0x2)\n"));
    EXPECT_EQ(written(), "\nUnable to get info of NVMe Controller, BDF:Not found\n\n");
}

TEST_F(StartUp, AVendorIdOpensTheShellWhateverElseStandsThere)
{
    static QRX_U16 seen;
    host.onInit = [] { seen = *QRX_Adapter_GetDeviceVID(); };
    host.lines = {"exit"};
    EXPECT_EQ(runOn({"--vid=0x1234", "info", "-o", "hba"}), printed(0, kWelcome));
    EXPECT_EQ(seen, 0x1234);
}

TEST_F(StartUp, AVendorIdBehindANumberRunsTheCommandBehindIt)
{
    EXPECT_EQ(runOn({"1", "--vid=0x1234", "version"}), printed(0, kVersion));
}

TEST_F(StartUp, AVendorIdBehindANumberAndNoCommand)
{
    EXPECT_EQ(runOn({"1", "--vid=0x1234"}), printed(1, "Ambiguous command ''!\n"));
    EXPECT_EQ(host.calls, (std::vector<std::string>{"init", "final"}));
}

TEST_F(StartUp, AVendorIdOfZeroIsNone)
{
    EXPECT_EQ(runOn({"--vid=0x0"}), printed(0, ""));
    EXPECT_EQ(host.calls, (std::vector<std::string>{"init", "final"}));
}

TEST_F(StartUp, AnOldVendorIdIsForgotten)
{
    *QRX_Adapter_GetDeviceVID() = 0x4321;
    EXPECT_EQ(runOn({"version"}), printed(0, kVersion));
    EXPECT_EQ(*QRX_Adapter_GetDeviceVID(), 0);
}

TEST_F(StartUp, TheLastVendorIdWins)
{
    const auto vidOf = [](std::initializer_list<std::string> list) {
        Words words(list);
        return qrx::scanArguments(words.argc(), words.argv()).vid;
    };
    EXPECT_EQ(vidOf({"qrx_cli", "--vid=0x1", "--VID=0xABCD"}), 0xABCD);
    EXPECT_EQ(*QRX_Adapter_GetDeviceVID(), 0xABCD);
    EXPECT_EQ(vidOf({"qrx_cli", "x--vid=0x17y"}), 0x17);
    EXPECT_EQ(vidOf({"qrx_cli", "--vid=0x12345678"}), 0x5678);
    EXPECT_EQ(vidOf({"qrx_cli", "--vid=0xFFFFFFFFFF"}), 0xFFFF);
    EXPECT_EQ(vidOf({"qrx_cli", "0x9--vid=0x7"}), 9);
    EXPECT_EQ(vidOf({"qrx_cli", "--Vid=0x7", "--vid=7"}), 0);
    EXPECT_EQ(vidOf({"qrx_cli", "5"}), 0);
}

TEST_F(StartUp, TheScanOfTheArguments)
{
    Words words{"qrx_cli", "300", "info"};
    const qrx::Arguments arguments = qrx::scanArguments(words.argc(), words.argv());
    EXPECT_EQ(arguments.argc, 2);
    EXPECT_STREQ(arguments.argv[1], "info");
    EXPECT_EQ(arguments.adapterId, 300);
    EXPECT_EQ(gCurrentAdapter, 300 & 0xFF);
    EXPECT_EQ(gSpecificAdapterFlag, 1);
    EXPECT_FALSE(arguments.outPut);
}

TEST_F(StartUp, TheChoiceOfMode)
{
    const auto shell = [](int argc, bool outPut, QRX_U8 specific, QRX_U16 vid) {
        gSpecificAdapterFlag = specific;
        qrx::Arguments arguments;
        arguments.argc = argc;
        arguments.outPut = outPut;
        arguments.vid = vid;
        return qrx::wantsShell(arguments);
    };
    EXPECT_TRUE(shell(1, false, 0, 0));
    EXPECT_TRUE(shell(1, false, 1, 0));
    EXPECT_TRUE(shell(2, true, 0, 0));
    EXPECT_TRUE(shell(5, true, 0, 1));
    EXPECT_FALSE(shell(2, false, 0, 0));
    EXPECT_FALSE(shell(3, true, 0, 0));
    EXPECT_FALSE(shell(3, false, 1, 1));
}

TEST_F(StartUp, WithoutAControllerOnlyHelpAndVersionWork)
{
    EXPECT_EQ(run({"version"}), printed(0, kNone + kVersion));
    EXPECT_EQ(host.calls, (std::vector<std::string>{"init", "final"}));
    EXPECT_EQ(run({"help", "version"}).out,
              kNone + "Description:Show API, CLI and support firmware version" + expected::kVersionHelp);
    host.calls.clear();
    for (const char* word : {"hel", "HELP", "info", "exit", "helper"}) {
        EXPECT_EQ(run({word}), printed(0, kNone)) << word;
    }
    EXPECT_EQ(host.calls, (std::vector<std::string>(5, "init")));
    EXPECT_EQ(run({"3", "version"}), printed(0, kNone + kVersion));
    EXPECT_EQ(run({"3", "--vid=0x1"}), printed(0, kNone));
}

TEST_F(StartUp, WithoutAControllerTheShellWelcomesAndEnds)
{
    EXPECT_EQ(run({}), printed(0, kNone + kWelcome));
    EXPECT_EQ(host.calls, (std::vector<std::string>{"init"}));
}

TEST_F(StartUp, ADeniedControllerIsToldApart)
{
    PDeviceManagement table = GetDeviceManagementInstance();
    host.onInit = [] { GetDeviceManagementInstance()->m_sysDenied = 1; };
    EXPECT_EQ(run({"info"}), printed(0, "NVMe Controller is found, but need administrator permission.\n"));
    EXPECT_EQ(gSysDenied, 1);
    table->m_sysDenied = 0;
    host.onInit = nullptr;
    EXPECT_EQ(run({"info"}), printed(0, kNone));
    EXPECT_EQ(gSysDenied, 0);
}

TEST_F(StartUp, WithoutMemoryForTheScanItEndsBeforeAnyCommand)
{
    addControllers();
    host.onInit = [] { throw std::bad_alloc(); };
    EXPECT_EQ(run({"version", "-output", out}), (Outcome{1, "", "", "qrx_cli: out of memory\n"}));
    EXPECT_EQ(host.calls, (std::vector<std::string>{"init", "final"}));
    EXPECT_EQ(stream, stdout);
}

TEST_F(StartUp, WithoutMemoryForTheRecordsItEndsCleanly)
{
    addControllers();
    Libc libc;
    host.onInit = [&] { libc.failAllocation(1); };
    const Outcome outcome = run({"version", "-output", out});
    EXPECT_EQ(outcome, (Outcome{1, "", "", "qrx_cli: out of memory\n"}));
    EXPECT_EQ(host.calls, (std::vector<std::string>{"init", "final"}));
    EXPECT_EQ(stream, stdout);
}

// Puts a handler into the row of `version` over its life.
class SwappedHandler {
public:
    explicit SwappedHandler(CommandHandler handler) { generalCmdTableV1[3].cmdHandler = handler; }
    ~SwappedHandler() { generalCmdTableV1[3].cmdHandler = saved_; }
    SwappedHandler(const SwappedHandler&) = delete;
    SwappedHandler& operator=(const SwappedHandler&) = delete;

private:
    CommandHandler saved_ = generalCmdTableV1[3].cmdHandler;
};

int outOfMemory(int /*argc*/, char** /*argv*/, PCommand_Info /*row*/)
{
    throw std::bad_alloc();
}

TEST_F(StartUp, ACommandThatRunsOutOfMemoryIsOneAndEndsCleanly)
{
    const SwappedHandler swapped(outOfMemory);
    EXPECT_EQ(runOn({"version"}), (Outcome{1, "", "", "qrx_cli: out of memory\n"}));
    EXPECT_EQ(host.calls, (std::vector<std::string>{"init", "final"}));
}

class Shell : public StartUp {
protected:
    // A shell session. The welcome lines are taken off.
    Outcome session(std::initializer_list<std::optional<std::string>> lines)
    {
        host.lines = lines;
        Outcome outcome = runOn({});
        EXPECT_EQ(outcome.out.substr(0, kWelcome.size()), kWelcome);
        EXPECT_TRUE(host.lines.empty());
        outcome.out.erase(0, kWelcome.size());
        return outcome;
    }
};

TEST_F(Shell, RunsLinesUntilExit)
{
    EXPECT_EQ(session({"version", "EXIT"}), printed(0, kVersion));
    EXPECT_EQ(host.calls, (std::vector<std::string>{"init", "> ", "> ", "final"}));
}

TEST_F(Shell, EveryLineIsHistory)
{
    session({"version", "", "   ", "help \"unclosed", "quit"});
    EXPECT_EQ(host.history, (std::vector<std::string>{"version", "", "   ", "help \"unclosed", "quit"}));
}

TEST_F(Shell, SlipsBringThePromptBack)
{
    EXPECT_EQ(session({"", "help \"unclosed", " help", "bogus", "--vid=0x1234", "version -z", "exit"}),
              (Outcome{0, "",
                       "Type 'exit' to exit CLI.\nInvalid quoted string.\nAmbiguous command ''!\n"
                       "Invalid command 'bogus'!\n",
                       "version: illegal option -- z\n"}));
}

TEST_F(Shell, TooManyWordsBringThePromptBack)
{
    std::string words = "version";
    for (int i = 0; i < 63; ++i) {
        words += " w";
    }
    EXPECT_EQ(session({words, words + " x", "exit"}), printed(0, kVersion + "Too many words (at most 64).\n"));
}

TEST_F(Shell, TheEndOfInputIsAskedAgainAfterAPause)
{
    session({std::nullopt, std::nullopt, "exit"});
    EXPECT_EQ(host.calls, (std::vector<std::string>{"init", "> ", "pause", "> ", "pause", "> ", "final"}));
    EXPECT_EQ(host.history, (std::vector<std::string>{"exit"}));
}

TEST_F(Shell, ALineOf2047BytesIsRead)
{
    const std::string line = std::string("bogus") + std::string(2042, 'x');
    EXPECT_EQ(session({line, "exit"}).out, "Invalid command '" + line + "'!\n");
}

TEST_F(Shell, ALongerLineEndsTheProgramCleanly)
{
    EXPECT_EQ(session({"version", std::string(2048, 'x')}),
              (Outcome{1, "", kVersion, "qrx_cli: the line is too long (at most 2047 bytes).\n"}));
    EXPECT_EQ(host.calls, (std::vector<std::string>{"init", "> ", "> ", "final"}));
    EXPECT_EQ(g_pAdInfos, nullptr);
}

TEST_F(Shell, AFailedDriverCallOfInfoDoesNotEndIt)
{
    addControllers();
    expectStart();
    machine.expect(Command::vendor(0xE0).flag(0x5001).word(14, 0).receives(4096).error(5));
    machine.expect(Command::vendor(0xE0).flag(0x5001).word(14, 0).receives(4096).on(1).error(5));
    host.lines = {"info -o hba", "exit"};
    EXPECT_EQ(run({}).result, 0);
    EXPECT_TRUE(host.lines.empty());
}

TEST_F(Shell, ACommandThatRunsOutOfMemoryBringsThePromptBack)
{
    const SwappedHandler swapped(outOfMemory);
    EXPECT_EQ(session({"version", "exit"}), (Outcome{0, "", "", "qrx_cli: out of memory\n"}));
}

TEST_F(Shell, AHandlersMinusOneEndsItWithZero)
{
    const SwappedHandler swapped([](int, char**, PCommand_Info) { return -1; });
    EXPECT_EQ(session({"version"}), printed(0, ""));
}

TEST_F(Shell, OnAFileOfVendorIdAndOutput)
{
    host.lines = {"version", "exit"};
    EXPECT_EQ(runOn({"--vid=0x1234", "-output", out}), printed(0, ""));
    EXPECT_EQ(written(), kWelcome + kVersion);
}

TEST_F(Shell, OutputAtThePromptHasNoMeaning)
{
    EXPECT_EQ(session({"version -output " + out, "exit"}), (Outcome{0, "", "", "version: illegal option -- o\n"}));
    EXPECT_FALSE(std::filesystem::exists(out));
}

}  // namespace
