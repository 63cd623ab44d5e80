// Both ways into a simulated machine, with real programs on the stub machine.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/utsname.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "sim/launcher/files.h"
#include "sim/launcher/program.h"
#include "sim/transport/seccomp.h"
#include "tests/unit/sim/transport/stub_host.h"
#include "tests/unit/sim/transport/temporary_directory.h"

namespace qrx::sim {
namespace {

using testing::HasSubstr;

struct Outcome {
    int value = 0;
    std::string output;
    std::string error;
};

class WaysIn : public testing::TestWithParam<Transport> {
protected:
    // Runs a shell command line on the stub machine; "$caller" in it is the test's own program.
    Outcome run(const std::string& line) { return run_words({"/bin/sh", "-c", redirected(line)}); }
    Outcome run_words(std::vector<std::string> words)
    {
        ProgramOptions options;
        options.transport = GetParam();
        options.command = std::move(words);
        Outcome outcome;
        outcome.value = run_program(host, options);
        outcome.output = read_file(directory.path() + "/out").value_or("");
        outcome.error = read_file(directory.path() + "/err").value_or("");
        return outcome;
    }
    // The same command line on the real machine.
    Outcome run_outside(const std::string& line)
    {
        Outcome outcome;
        outcome.value = WEXITSTATUS(std::system(redirected(line).c_str()));
        outcome.output = read_file(directory.path() + "/out").value_or("");
        outcome.error = read_file(directory.path() + "/err").value_or("");
        return outcome;
    }
    std::string caller(const std::string& action) { return run(QRX_CALLER " " + action).output; }

    StubHost host;
    TemporaryDirectory directory;

private:
    std::string redirected(const std::string& line) const
    {
        return "LC_ALL=C; export LC_ALL; { " + line + "\n} >" + directory.path() + "/out 2>" + directory.path() +
               "/err";
    }
};

TEST_P(WaysIn, NodesAreDevices)
{
    EXPECT_EQ(run("stat -c '%F %t:%T %a' /dev/nvme0 /dev/nvme0n1").output,
              "character special file f0:0 666\nblock special file 103:0 666\n");
}

TEST_P(WaysIn, ListingOfANodeHasNoComplaint)
{
    const Outcome outcome = run("ls -l /dev/nvme0");
    EXPECT_EQ(outcome.error, "");
    EXPECT_THAT(outcome.output, HasSubstr("crw-rw-rw- 1 root root 240, 0"));
}

TEST_P(WaysIn, NodesAreFoundByPattern)
{
    EXPECT_EQ(run("echo /dev/nvme*").output, "/dev/nvme0 /dev/nvme0n1\n");
}

TEST_P(WaysIn, NodesThatTheMachineLacksDoNotExist)
{
    const Outcome outcome = run("cat /dev/nvme7 /dev/nvme1n1 /dev/ng0n1; test -e /dev/nvme3");
    EXPECT_EQ(outcome.value, 1);
    EXPECT_EQ(outcome.error,
              "cat: /dev/nvme7: No such file or directory\ncat: /dev/nvme1n1: No such file or directory\n"
              "cat: /dev/ng0n1: No such file or directory\n");
}

TEST_P(WaysIn, DiscoveryPipelineFindsTheController)
{
    const Outcome outcome = run(R"(find /sys/devices | grep -o "[0-9a-f]*:[0-9a-f]*.[0-9]/nvme/nvme[0-9]*" | sort -u)");
    EXPECT_EQ(outcome.output, "03:00.0/nvme/nvme0\n");
    EXPECT_EQ(outcome.error, "");
}

TEST_P(WaysIn, WalkWithStatusesHasNoComplaint)
{
    for (const char* const line : {"find /sys/devices -maxdepth 6 -ls", "find /sys/class/ -ls",
                                   "ls -lR /sys/class/nvme/", "find /dev/ -maxdepth 1 -ls"}) {
        const Outcome outcome = run(line);
        EXPECT_EQ(outcome.error, "") << line;
        EXPECT_EQ(outcome.value, 0) << line;
    }
}

TEST_P(WaysIn, RealEntriesOfSharedDirectoriesAreListedAndReachable)
{
    EXPECT_EQ(run("cat /sys/devices/system/cpu/online").output,
              run_outside("cat /sys/devices/system/cpu/online").output);
    const std::string listed = run("ls /sys/devices /sys/class /dev").output;
    for (const char* const place : {"/sys/devices", "/sys/class", "/dev"}) {
        for (const auto& entry : std::filesystem::directory_iterator(place)) {
            const std::string name = entry.path().filename();
            if (!is_real_nvme(entry.path().string())) {
                EXPECT_THAT(listed, HasSubstr(name + "\n"));
            }
        }
    }
}

TEST_P(WaysIn, OrdinaryDevicesStayWhatTheyAre)
{
    const char* const line = "stat -c '%F %t:%T' /dev/null /dev/zero; ls -l /dev/null; echo x >/dev/null; tty";
    EXPECT_EQ(run(line).output, run_outside(line).output);
}

TEST_P(WaysIn, RelativePathsAndParentsAreFollowed)
{
    EXPECT_EQ(run("cd /sys/devices && cat ../class/nvme/nvme0/serial").output, "STUBSERIAL01\n");
    EXPECT_EQ(run("cd /dev && stat -c %F nvme0").output, "character special file\n");
    EXPECT_EQ(run("cat /sys/class/nvme/../nvme/./nvme0//model").output, "STUB MODEL\n");
    EXPECT_EQ(run("cat /sys/class/nvme/nvme0/device/vendor").output, "0x7a51\n");
}

TEST_P(WaysIn, LinksLeadToTheMachine)
{
    EXPECT_EQ(run("readlink /sys/class/nvme/nvme0").output, "../../devices/pci0000:03/0000:03:00.0/nvme/nvme0\n");
    EXPECT_EQ(run("readlink -f /sys/block/nvme0n1").output,
              "/sys/devices/pci0000:03/0000:03:00.0/nvme/nvme0/nvme0n1\n");
    const std::string link = directory.path() + "/link";
    EXPECT_EQ(run("ln -s /dev/nvme0 " + link + " && stat -Lc %F " + link + " && stat -c %F " + link).output,
              "character special file\nsymbolic link\n");
}

TEST_P(WaysIn, MountTableIsTheMachines)
{
    EXPECT_EQ(run("cat /etc/mtab").output, host.mounts);
    const Outcome outcome = run("echo x > /etc/mtab; cat /etc/mtab");
    EXPECT_THAT(outcome.error, HasSubstr("ermission denied"));
    EXPECT_EQ(outcome.output, host.mounts);
}

TEST_P(WaysIn, MountTableIsTheRealOneWhenTheMachineHasNone)
{
    host.mounts.clear();
    EXPECT_EQ(run("head -n 1 /etc/mtab").output, run_outside("head -n 1 /etc/mtab").output);
}

TEST_P(WaysIn, CommandArrivesWholeAndItsAnswerComesBack)
{
    EXPECT_EQ(caller("command"), "0\ndead bbbbbbbb\n");
    ASSERT_EQ(host.seen.size(), 1U);
    const StubHost::Seen& seen = host.seen.front();
    EXPECT_TRUE(seen.admin);
    EXPECT_EQ(seen.node, (Node{0, 0}));
    EXPECT_EQ(seen.data, std::vector<QRX_U8>(8, 'a'));
    EXPECT_EQ(seen.command.opcode, 0xe2);
    EXPECT_EQ(seen.command.nsid, 0x11U);
    EXPECT_EQ(seen.command.cdw2, 0x22U);
    EXPECT_EQ(seen.command.cdw3, 0x33U);
    EXPECT_EQ(seen.command.data_len, 8U);
    EXPECT_EQ(seen.command.cdw10, 0xa0U);
    EXPECT_EQ(seen.command.cdw11, 0xa1U);
    EXPECT_EQ(seen.command.timeout_ms, 1234U);
}

TEST_P(WaysIn, DataOfACommandThatWritesStayAsTheyAre)
{
    EXPECT_EQ(caller("write"), "0\naaaaaaaa\n");
}

TEST_P(WaysIn, WideCommandGetsAWideResult)
{
    EXPECT_EQ(caller("wide"), "0\ndead 0 bbbbbbbb\n");
}

TEST_P(WaysIn, StatusIsTheValueOfTheCall)
{
    EXPECT_EQ(caller("status"), "16386\n");
}

TEST_P(WaysIn, DriverErrorIsTheCallsAndLeavesTheData)
{
    EXPECT_EQ(caller("error"), "ENODEV\naaaaaaaa\n");
}

TEST_P(WaysIn, BadAddressesAreTheCallersFault)
{
    for (const char* const action : {"bad-record", "bad-data", "half-bad-data"}) {
        EXPECT_EQ(caller(action), "EFAULT\n") << action;
    }
    EXPECT_TRUE(host.seen.empty());
    EXPECT_EQ(caller("read-only-data"), "EFAULT\n");
}

TEST_P(WaysIn, CommandWithoutDataNeedsNoAddress)
{
    EXPECT_EQ(caller("no-data"), "0\n");
    ASSERT_EQ(host.seen.size(), 1U);
    EXPECT_TRUE(host.seen.front().data.empty());
}

TEST_P(WaysIn, OverlongDataAreRefused)
{
    EXPECT_EQ(caller("huge-data"), "EINVAL\n");
    EXPECT_TRUE(host.seen.empty());
}

TEST_P(WaysIn, DataAreTakenFromWhereEachCommandSays)
{
    EXPECT_EQ(caller("moving-data"), "0\nbbbb\n0\nccccc\n0\ndddddd\n0\nllll\n0\nmmmm\n");
}

TEST_P(WaysIn, DescriptorSurvivesDupForkAndExec)
{
    for (const char* const action : {"dup", "fork", "exec"}) {
        EXPECT_EQ(caller(action), "0\ndead bbbbbbbb\n") << action;
    }
}

TEST_P(WaysIn, NumberTakenByAnotherFileIsNoLongerTheNodes)
{
    EXPECT_EQ(caller("reused-number"), "0\ndead bbbbbbbb\n1\nENOTTY\n1\n");
    EXPECT_EQ(host.seen.size(), 1U);
}

TEST_P(WaysIn, WhatIsNoDescriptorIsRefusedByTheKernel)
{
    EXPECT_EQ(caller("no-descriptor"), "EBADF\nEBADF\n");
}

TEST_P(WaysIn, NamespaceTellsItsIdAndSize)
{
    EXPECT_EQ(caller("namespace"), "1\n0\n0\n1048576 512\nENOTTY\n1\n");
}

TEST_P(WaysIn, SubmittedBlocksBecomeAnIoCommand)
{
    EXPECT_EQ(caller("submit"), "0\nb\n0\nbbbb\n");
    ASSERT_EQ(host.seen.size(), 2U);
    const StubHost::Seen& seen = host.seen.front();
    EXPECT_FALSE(seen.admin);
    EXPECT_EQ(seen.node, (Node{0, 1}));
    EXPECT_EQ(seen.command.nsid, 1U);
    EXPECT_EQ(seen.command.cdw10, 0x3456789aU);
    EXPECT_EQ(seen.command.cdw11, 0x12U);
    EXPECT_EQ(seen.command.cdw12, 1U);
    EXPECT_EQ(seen.data.size(), 1024U);
    EXPECT_FALSE(host.seen.back().admin);
    EXPECT_EQ(host.seen.back().node, (Node{0, 0}));
}

TEST_P(WaysIn, ThreadsAreServedEachWithItsOwn)
{
    host.keep_commands = false;
    EXPECT_EQ(caller("threads"), "200\n200\n200\n200\n");
}

TEST_P(WaysIn, NodesComeAndGoWithTheNamespaces)
{
    const std::string caller_program = QRX_CALLER;
    EXPECT_EQ(run(caller_program + " remove; echo /dev/nvme*; ls /sys/block | grep nvme; " + caller_program +
                  " add; echo /dev/nvme*; cat /sys/block/nvme0n2/queue/logical_block_size /sys/block/nvme0n2/size")
                  .output,
              "0\n/dev/nvme0\n0\n/dev/nvme0 /dev/nvme0n2\n4096\n32768\n");
}

TEST_P(WaysIn, ProgramKilledInTheMiddleHarmsNobodyElse)
{
    host.keep_commands = false;
    const Outcome outcome = run("timeout -s KILL 0.3 " QRX_CALLER " endless; " QRX_CALLER " command");
    EXPECT_EQ(outcome.output, "0\ndead bbbbbbbb\n");
}

TEST_P(WaysIn, ExitValueIsTheProgramsOwn)
{
    EXPECT_EQ(run_words({"/bin/sh", "-c", "exit 7"}).value, 7);
    EXPECT_EQ(run_words({"/bin/sh", "-c", "kill -KILL $$"}).value, 128 + SIGKILL);
    EXPECT_EQ(run_words({"/bin/sh", "-c", "kill -TERM $$"}).value, 128 + SIGTERM);
    EXPECT_EQ(run_words({"true"}).value, 0);
}

TEST_P(WaysIn, ProgramThatCannotBeRunIsNamed)
{
    testing::internal::CaptureStderr();
    EXPECT_EQ(run_words({"/nonexistent/program"}).value, kExitNotFound);
    EXPECT_EQ(run_words({"/etc/passwd"}).value, kExitCannotRun);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "qrx_sim: cannot run '/nonexistent/program': No such file or directory\n"
              "qrx_sim: cannot run '/etc/passwd': Permission denied\n");
}

TEST_P(WaysIn, WaitingInterruptedProgramsGoOn)
{
    // The signal goes to the program alone; the launcher serves on.
    EXPECT_EQ(run("trap 'echo caught' INT; kill -INT $$; " QRX_CALLER " command").output, "caught\n0\ndead bbbbbbbb\n");
}

TEST_P(WaysIn, ProgramsWithoutInterestInNvmeRunUnchanged)
{
    const std::string work = directory.path();
    for (const std::string& line : {
             std::string("ls -l /usr"),
             std::string("python3 -c 'import os, json; print(json.dumps(sorted(os.listdir(\"/usr\"))))'"),
             std::string("cat /proc/self/comm; readlink /proc/self/exe"),
             std::string("id; pwd; bash -c 'echo $BASH_VERSION; type cd'"),
             "cd " + work + " && rm -rf r && git init -q r && cd r && echo a > f && git add f && git status --short",
             "cd " + work + " && echo 'int main(void) { return 3; }' > p.c && cc -o p p.c && ./p; echo $?",
             std::string("python3 -c 'import threading; t = threading.Thread(target=lambda: print(1)); t.start(); "
                         "t.join()'"),
             std::string("sh -c 'exec 5>&1; echo x >&5'"),
             std::string("echo text | sort | tee /dev/stderr; cat < /etc/passwd | head -1"),
         }) {
        const Outcome inside = run(line);
        const Outcome outside = run_outside(line);
        EXPECT_EQ(inside.output, outside.output) << line;
        EXPECT_EQ(inside.error, outside.error) << line;
        EXPECT_EQ(inside.value, outside.value) << line;
    }
}

TEST_P(WaysIn, PrivateDirectoryIsGoneAfterwards)
{
    ASSERT_EQ(setenv("TMPDIR", directory.path().c_str(), 1), 0);
    const std::size_t entries_inside = std::stoul("0" + run("ls -d $TMPDIR/qrx_sim.* | wc -l").output);
    ASSERT_EQ(unsetenv("TMPDIR"), 0);
    EXPECT_EQ(entries_inside, 1U);
    EXPECT_EQ(run_outside("ls -d " + directory.path() + "/qrx_sim.* | wc -l").output, "0\n");
}

std::string name_of(const testing::TestParamInfo<Transport>& way)
{
    return way.param == Transport::seccomp ? "seccomp" : "preload";
}

INSTANTIATE_TEST_SUITE_P(Both, WaysIn, testing::Values(Transport::seccomp, Transport::preload), name_of);

#ifdef QRX_STATIC_CALLER
class StaticProgram : public WaysIn {};

TEST_P(StaticProgram, IsServedToo)
{
    EXPECT_EQ(run(QRX_STATIC_CALLER " command").output, "0\ndead bbbbbbbb\n");
}

INSTANTIATE_TEST_SUITE_P(By, StaticProgram, testing::Values(Transport::seccomp), name_of);
#endif

TEST(SeccompProbe, SaysNothingWhereItWorks)
{
    EXPECT_EQ(probe_seccomp(), "");
}

}  // namespace
}  // namespace qrx::sim
