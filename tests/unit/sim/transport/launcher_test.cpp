// The command line of qrx_sim, and its files.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "sim/firmware/factory.h"
#include "sim/launcher/files.h"
#include "sim/launcher/options.h"
#include "tests/unit/sim/transport/temporary_directory.h"

namespace qrx::sim {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

Result<Options> parse(std::vector<const char*> words)
{
    return parse_options(words);
}

TEST(Options, AllAreRead)
{
    const Result<Options> options = parse({"--scenario", "jbof", "--state=lab.json", "--trace", "t.txt", "--mtab", "m",
                                           "--fault", "nth=3,status=0x706", "--fault=nth=1,errno=5", "--transport",
                                           "preload", "--verbose", "--", "prog", "--scenario", "x"});
    ASSERT_TRUE(options) << options.error();
    EXPECT_EQ(options->scenario, "jbof");
    EXPECT_EQ(options->state_file, "lab.json");
    EXPECT_EQ(options->trace_file, "t.txt");
    EXPECT_EQ(options->mount_table, "m");
    EXPECT_EQ(options->faults.size(), 2U);
    EXPECT_EQ(options->program.transport, Transport::preload);
    EXPECT_TRUE(options->program.verbose);
    EXPECT_THAT(options->program.command, ElementsAre("prog", "--scenario", "x"));
}

TEST(Options, CtlIsACommandUnlessAProgramIsMeant)
{
    const Result<Options> control = parse({"--clock=stopped", "--control", "s", "ctl", "advance", "5m"});
    ASSERT_TRUE(control) << control.error();
    EXPECT_EQ(control->action, Options::Action::control);
    EXPECT_FALSE(control->clock_runs);
    EXPECT_EQ(control->control, "s");
    EXPECT_THAT(control->program.command, ElementsAre("advance", "5m"));
    const Result<Options> program = parse({"--", "ctl"});
    ASSERT_TRUE(program) << program.error();
    EXPECT_EQ(program->action, Options::Action::run);
    EXPECT_TRUE(program->clock_runs);
}

TEST(Options, WhatIsWrongIsSaidWithWhatIsAllowed)
{
    EXPECT_EQ(parse({"--clock", "backwards", "x"}).error(), "--clock: 'backwards' is none of running, stopped");
    EXPECT_EQ(
        parse({"--bogus", "--", "x"}).error(),
        "unknown option '--bogus'; known are --scenario, --state, --trace, --mtab, --fault, --transport, --clock, "
        "--control, --verbose, --list-scenarios, --version, --help");
    EXPECT_EQ(parse({"--transport", "pigeon", "x"}).error(), "--transport: 'pigeon' is none of auto, seccomp, preload");
    EXPECT_EQ(parse({"--state"}).error(), "--state needs a value: --state <file>");
    EXPECT_EQ(parse({"--verbose=1", "x"}).error(), "--verbose takes no value");
    EXPECT_THAT(parse({"--fault", "nonsense", "x"}).error(), StartsWith("--fault: "));
    EXPECT_EQ(parse({}).error(),
              "no program given; 'qrx_sim -- bash' starts a shell on the simulated machine, --help tells more");
    EXPECT_EQ(parse({"--state="}).error(), "--state needs a value: --state <file>");
}

TEST(Options, ProgramMayFollowWithoutDashes)
{
    const Result<Options> options = parse({"--verbose", "ls", "-l"});
    ASSERT_TRUE(options);
    EXPECT_THAT(options->program.command, ElementsAre("ls", "-l"));
}

TEST(ReplaceFile, PutsTheNewContentUnderTheNameWithTheOldRights)
{
    const TemporaryDirectory directory;
    const std::string path = directory.path() + "/state";
    ASSERT_TRUE(replace_file(path, "first"));
    ASSERT_EQ(chmod(path.c_str(), 0640), 0);
    ASSERT_TRUE(replace_file(path, "second"));
    EXPECT_EQ(read_file(path), "second");
    struct stat status {};
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640U);
    const auto left = std::filesystem::directory_iterator(directory.path());
    EXPECT_EQ(std::distance(begin(left), end(left)), 1);
}

TEST(ReplaceFile, FollowsALink)
{
    const TemporaryDirectory directory;
    const std::string path = directory.path() + "/state";
    const std::string link = directory.path() + "/link";
    ASSERT_TRUE(replace_file(path, "first"));
    std::filesystem::create_symlink("state", link);
    ASSERT_TRUE(replace_file(link, "second"));
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    EXPECT_EQ(read_file(path), "second");
}

TEST(ReplaceFile, FailureLeavesNothingBehind)
{
    const TemporaryDirectory directory;
    EXPECT_FALSE(replace_file(directory.path() + "/missing/state", "x"));
    std::filesystem::create_directory(directory.path() + "/taken");
    EXPECT_FALSE(replace_file(directory.path() + "/taken", "x"));
    const auto left = std::filesystem::directory_iterator(directory.path());
    EXPECT_EQ(std::distance(begin(left), end(left)), 1);
}

// The built program.
class QrxSim : public testing::Test {
protected:
    struct Outcome {
        int value = 0;
        std::string output;
        std::string error;
    };
    // A shell line in the test's directory in which qrx_sim is on the path.
    Outcome run(const std::string& line)
    {
        const std::string whole =
            "cd " + directory.path() + " && PATH=" QRX_BIN ":$PATH && { " + line + "\n} >out.txt 2>err.txt";
        Outcome outcome;
        const int status = std::system(whole.c_str());
        outcome.value = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        outcome.output = content("out.txt");
        outcome.error = content("err.txt");
        return outcome;
    }
    std::string content(const std::string& name) { return read_file(directory.path() + "/" + name).value_or("(none)"); }

    TemporaryDirectory directory;
};

// Sends one namespace's removal with nvme's own words; python stands in for a client that sends any command.
constexpr const char* kIdentify =
    R"(python3 -c '
import ctypes, fcntl, struct
data = ctypes.create_string_buffer(4096)
command = bytearray(struct.pack("<BBHIIIQQIIIIIIIIII", 6, 0, 0, 0, 0, 0, 0, ctypes.addressof(data), 0, 4096,
                                1, 0, 0, 0, 0, 0, 0, 0))
try:
    print(fcntl.ioctl(open("/dev/nvme0", "rb"), 0xc0484e41, command), data.raw[0:2].hex())
except OSError as error:
    print(error.strerror)
')";

TEST_F(QrxSim, ScenariosAreListedOneALine)
{
    const Outcome outcome = run("qrx_sim --list-scenarios");
    EXPECT_EQ(outcome.value, 0);
    for (const Scenario& scenario : scenarios()) {
        EXPECT_THAT(outcome.output, HasSubstr(std::string(scenario.name) + " "));
        EXPECT_THAT(outcome.output, HasSubstr(std::string(scenario.description) + "\n"));
    }
}

TEST_F(QrxSim, HelpAndVersionGoToStandardOutput)
{
    EXPECT_EQ(run("qrx_sim --help").output, usage());
    EXPECT_THAT(run("qrx_sim --version").output, StartsWith("qrx_sim "));
}

TEST_F(QrxSim, OwnFailuresExitWith125)
{
    const Outcome unknown = run("qrx_sim --scenario nowhere -- true");
    EXPECT_EQ(unknown.value, 125);
    EXPECT_THAT(unknown.error,
                StartsWith("qrx_sim: --scenario: 'nowhere' is neither a file nor the name of a scenario; the scenarios "
                           "are raid, jbof, pair"));
    EXPECT_EQ(run("qrx_sim").value, 125);
    EXPECT_EQ(run("qrx_sim --trace /nonexistent/t -- true").value, 125);
    EXPECT_EQ(run("qrx_sim --mtab /nonexistent/t -- true").error,
              "qrx_sim: --mtab: cannot read '/nonexistent/t': No such file or directory\n");
}

TEST_F(QrxSim, VerboseNamesTheWayTaken)
{
    EXPECT_EQ(run("qrx_sim --verbose -- true").error, "qrx_sim: transport: seccomp user notification\n");
    EXPECT_EQ(run("qrx_sim --verbose --transport preload -- true").error, "qrx_sim: transport: preload library\n");
}

TEST_F(QrxSim, InsideAnotherItFallsBackToThePreloadLibrary)
{
    const Outcome outcome = run(std::string("qrx_sim -- qrx_sim --verbose -- ") + kIdentify);
    EXPECT_THAT(outcome.error,
                StartsWith("qrx_sim: transport: preload library (no seccomp user notification: the kernel refuses"));
    EXPECT_EQ(outcome.output, "0 517a\n");
}

TEST_F(QrxSim, MissingStateIsMadeFromTheScenario)
{
    EXPECT_EQ(run("qrx_sim --state lab.json --scenario jbof --clock stopped -- true").value, 0);
    Result<std::unique_ptr<Machine>> saved = load_machine(content("lab.json"), "lab.json");
    ASSERT_TRUE(saved) << saved.error();
    EXPECT_EQ((*saved)->parts(), (*make_scenario("jbof"))->parts());
}

TEST_F(QrxSim, StateIsWrittenHoweverTheProgramEnds)
{
    const char* const kSetName = "nvme set-feature /dev/nvme0 -f 4 -v 0x155 >/dev/null";
    const std::pair<std::string, int> ends[] = {{"exit 3", 3},
                                                {"kill -KILL $$", 137},
                                                {"kill -TERM $PPID; sleep 10", 143},
                                                {"kill -HUP $PPID; sleep 10", 129},
                                                {"kill -INT $PPID; exit 4", 4}};
    if (std::system("nvme version >/dev/null 2>&1") != 0) {
        GTEST_SKIP() << "nvme-cli is not installed";
    }
    for (const auto& [end, value] : ends) {
        ASSERT_EQ(run("rm -f lab.json; qrx_sim --state lab.json -- true").value, 0);
        const std::string before = content("lab.json");
        EXPECT_EQ(run(std::string("qrx_sim --state lab.json -- sh -c '") + kSetName + "; " + end + "'").value, value)
            << end;
        EXPECT_NE(content("lab.json"), before) << end;
        EXPECT_TRUE(load_machine(content("lab.json"), "lab.json")) << end;
    }
}

TEST_F(QrxSim, ProgramThatIgnoresTheEndIsKilledAndTheStateKept)
{
    const Outcome outcome =
        run("qrx_sim --state lab.json -- sh -c 'trap \"\" TERM; kill -TERM $PPID; while :; do sleep 1; done'");
    EXPECT_EQ(outcome.value, 137);
    EXPECT_TRUE(load_machine(content("lab.json"), "lab.json"));
}

TEST_F(QrxSim, DamagedStateIsRefusedWithItsLineBeforeAnythingRuns)
{
    ASSERT_TRUE(replace_file(directory.path() + "/lab.json", "{\n  \"controllers\": [\n    {]\n}\n"));
    const Outcome outcome = run("qrx_sim --state lab.json -- touch ran");
    EXPECT_EQ(outcome.value, 125);
    EXPECT_THAT(outcome.error, StartsWith("qrx_sim: lab.json:3:"));
    EXPECT_EQ(content("ran"), "(none)");
    EXPECT_EQ(content("lab.json"), "{\n  \"controllers\": [\n    {]\n}\n");
}

TEST_F(QrxSim, StateThatCannotBeWrittenIsFoundBeforeAnythingRuns)
{
    const Outcome outcome = run("qrx_sim --state missing/lab.json -- touch ran");
    EXPECT_EQ(outcome.value, 125);
    EXPECT_EQ(outcome.error, "qrx_sim: --state: cannot write 'missing/lab.json': No such file or directory\n");
    EXPECT_EQ(content("ran"), "(none)");
}

TEST_F(QrxSim, AStateThatMayNotGrowIsToldAndTheOldOneKept)
{
    ASSERT_EQ(run("qrx_sim --state lab.json -- true").value, 0);
    const std::string before = content("lab.json");
    const Outcome outcome = run("ulimit -f 4; qrx_sim --state lab.json -- qrx_sim ctl fail-drive 1");
    EXPECT_EQ(outcome.value, 125);
    EXPECT_EQ(outcome.error, "qrx_sim: --state: cannot write 'lab.json': File too large\n");
    EXPECT_EQ(content("lab.json"), before);
    const Outcome at_rest = run("ulimit -f 4; qrx_sim ctl --state lab.json fail-drive 1");
    EXPECT_EQ(at_rest.value, 125);
    EXPECT_THAT(at_rest.error, HasSubstr("cannot write 'lab.json': File too large\n"));
    EXPECT_EQ(content("lab.json"), before);
    EXPECT_EQ(run("ls").output, "err.txt\nlab.json\nout.txt\n");
}

TEST_F(QrxSim, ProgramsIgnoreTheSignalsThatTheyWouldIgnoreWithoutIt)
{
    const std::string bare = run("grep SigIgn /proc/self/status").output;
    for (const std::string way : {"seccomp", "preload"}) {
        EXPECT_EQ(run("qrx_sim --transport " + way + " -- grep SigIgn /proc/self/status").output, bare) << way;
    }
}

TEST_F(QrxSim, ATraceThatMayNotGrowIsTold)
{
    const Outcome outcome = run("ulimit -f 1; qrx_sim --trace t.txt -- qrx_cli info -o hba >/dev/null");
    EXPECT_EQ(outcome.value, 125);
    EXPECT_EQ(outcome.error, "qrx_sim: --trace: cannot write all of it\n");
    EXPECT_EQ(content("t.txt").size(), 512U);
}

TEST_F(QrxSim, TraceHasALineForEachCommand)
{
    EXPECT_EQ(run(std::string("qrx_sim --trace t.txt -- ") + kIdentify).output, "0 517a\n");
    EXPECT_THAT(content("t.txt"), StartsWith("1 nvme0 admin identify(0x06) cdw10=0x1 in=4096 -> success"));
}

TEST_F(QrxSim, ProgramInheritsNoDescriptorOfTheSimulators)
{
    const Outcome outcome =
        run("ls /proc/self/fd >outside; qrx_sim --trace t.txt --state s --transport seccomp -- "
            "ls /proc/self/fd >inside; cmp outside inside && wc -l <inside");
    EXPECT_EQ(outcome.value, 0) << outcome.output;
    EXPECT_GE(std::stoi("0" + outcome.output), 4);
}

TEST_F(QrxSim, FaultsHitTheChosenCommand)
{
    EXPECT_EQ(run(std::string("qrx_sim --fault nth=1,status=0x706 -- ") + kIdentify).output, "1798 0000\n");
    EXPECT_EQ(run(std::string("qrx_sim --fault nth=1,errno=ENODEV -- ") + kIdentify).output, "No such device\n");
}

TEST_F(QrxSim, MountTableOfTheOptionIsServed)
{
    ASSERT_TRUE(replace_file(directory.path() + "/table", "/dev/nvme0n1p1 /boot vfat rw 0 0\n"));
    EXPECT_EQ(run("qrx_sim --mtab table -- cat /etc/mtab").output, "/dev/nvme0n1p1 /boot vfat rw 0 0\n");
}

TEST_F(QrxSim, ProgramStaysInTheForegroundProcessGroup)
{
    EXPECT_EQ(run("qrx_sim -- python3 -c 'import os; print(os.getpgid(0) == os.getpgid(os.getppid()))'").output,
              "True\n");
}

TEST_F(QrxSim, InteractiveShellHasJobControlInATerminal)
{
    const Outcome outcome = run(R"(python3 - <<'END'
import os, pty, sys, time
child, terminal = pty.fork()
if child == 0:
    os.execvp("qrx_sim", ["qrx_sim", "--", "bash", "--norc", "--noprofile", "-i"])
os.write(terminal, b"sleep 30 &\njobs\nkill %1; echo ready-$((40+2)); ls /dev/nvme0; exit 9\n")
seen = b""
try:
    while True:
        piece = os.read(terminal, 4096)
        if not piece:
            break
        seen += piece
except OSError:
    pass
status = os.waitstatus_to_exitcode(os.waitpid(child, 0)[1])
print(status, b"Running" in seen, b"ready-42" in seen, b"\r\n/dev/nvme0\r\n" in seen, b"no job control" in seen)
END
)");
    EXPECT_EQ(outcome.output, "9 True True True False\n") << outcome.error;
}

}  // namespace
}  // namespace qrx::sim
