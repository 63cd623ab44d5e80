// The road of `qrx_sim ctl`, and the simulated clock beside the real one.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>

#include <cstdlib>
#include <filesystem>
#include <thread>

#include "sim/firmware/factory.h"
#include "sim/launcher/control_socket.h"
#include "sim/launcher/workload_text.h"
#include "tests/unit/sim/transport/temporary_directory.h"

namespace qrx::sim {
namespace {

using std::chrono::milliseconds;

std::unique_ptr<Machine> lab()
{
    return std::move(*make_scenario("lab"));
}

// Asks while this thread answers.
Result<std::string> ask_of(ControlSocket& socket, const std::string& path, const ControlRequest& request, bool& reached)
{
    Result<std::string> answer = Failure{"never asked"};
    std::thread client([&] { answer = ask(path, request, reached); });
    pollfd wait{socket.descriptor(), POLLIN, 0};
    EXPECT_EQ(poll(&wait, 1, 10000), 1);
    socket.serve();
    client.join();
    return answer;
}

TEST(ControlSocket, CarriesRequestsAndTheirAnswers)
{
    const auto machine = lab();
    ControlSocket socket(*machine, "", false);
    const std::string path = std::getenv(kControlVariable);
    bool reached = false;
    EXPECT_EQ(*ask_of(socket, path, {std::nullopt, "events", ""}, reached), "nothing has happened yet\n");
    EXPECT_TRUE(ask_of(socket, path, {0, "fail-drive", "3"}, reached));
    EXPECT_TRUE(machine->parts().controllers[0].drives[3].failed);
    EXPECT_EQ(*ask_of(socket, path, {0, "events", ""}, reached), "0:00:00  PD 3 has failed\n");
    const Result<std::string> refused = ask_of(socket, path, {7, "show", ""}, reached);
    EXPECT_TRUE(reached);
    EXPECT_EQ(refused.error(), "there is no controller 7; there are 0");
    EXPECT_TRUE(ask_of(socket, path, {0, "mount-table", "a b\nc\n"}, reached));
    EXPECT_EQ(machine->mount_table(), "a b\nc\n");
    EXPECT_EQ(*ask_of(socket, path, {0, "save", ""}, reached), save_machine(*machine));
}

TEST(ControlSocket, LeavesNothingBehind)
{
    const auto machine = lab();
    std::string path;
    {
        const ControlSocket socket(*machine, "", false);
        path = std::getenv(kControlVariable);
        EXPECT_TRUE(std::filesystem::exists(path));
    }
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::path(path).parent_path()));
    bool reached = true;
    EXPECT_EQ(ask(path, {}, reached).error(), "no simulator answers at '" + path + "': No such file or directory");
    EXPECT_FALSE(reached);
}

TEST(ControlSocket, TakesThePlaceOfOneThatWasKilledButNotOfOneThatAnswers)
{
    const TemporaryDirectory directory;
    const std::string path = directory.path() + "/socket";
    const auto machine = lab();
    const ControlSocket first(*machine, path, false);
    EXPECT_THROW(ControlSocket(*machine, path, false), std::runtime_error);
    EXPECT_THROW(ControlSocket(*machine, directory.path() + "/none/socket", false), std::runtime_error);
    EXPECT_THROW(ControlSocket(*machine, path + std::string(200, 'x'), false), std::runtime_error);
}

TEST(SimulatedClock, RunsWithTheRealOneOrStandsStill)
{
    const auto running = lab();
    const auto stopped = lab();
    ControlSocket follows(*running, "", true);
    ControlSocket stands(*stopped, "", false);
    std::this_thread::sleep_for(milliseconds(30));
    follows.tick();
    stands.tick();
    EXPECT_GE(running->parts().controllers[0].clock.uptime, 30U);
    EXPECT_EQ(stopped->parts().controllers[0].clock.uptime, 0U);
}

TEST(ControlCommand, TimesAreNumbersWithAUnit)
{
    EXPECT_EQ(*parse_duration("30s"), std::chrono::seconds(30));
    EXPECT_EQ(*parse_duration("5m"), std::chrono::minutes(5));
    EXPECT_EQ(*parse_duration("24000h"), std::chrono::hours(24000));
    for (const char* const text : {"", "s", "5", "5d", "-5s", "+5s", "5.5s", " 5s", "24001h", "99999999999s"}) {
        EXPECT_EQ(parse_duration(text).error(),
                  "'" + std::string(text) +
                      "' is no time; allowed are a number and a unit, such as 30s, 5m or 2h, up to 24000h");
    }
}

TEST(ControlCommand, AWorkloadIsAListOfWords)
{
    const auto whole = parse_workload("ns=32,reads=1000000000,writes=0x10,blocks=65536,seconds=86400");
    ASSERT_TRUE(whole) << whole.error();
    EXPECT_EQ(whole->nsid, 32U);
    EXPECT_TRUE((whole->workload == Workload{1000000000, 16, 65536, 86400000, 0}));
    const auto least = parse_workload("writes=1,ns=1");
    ASSERT_TRUE(least) << least.error();
    EXPECT_TRUE((least->workload == Workload{0, 1, 8, 1000, 0})) << "8 blocks each, within a second";
}

TEST(ControlCommand, AWorkloadThatIsWrongIsTold)
{
    const auto error = [](const char* text) { return parse_workload(text).error(); };
    const std::string missing = "' does not tell a namespace (ns=) and what happens to it (reads=, writes=)";
    EXPECT_EQ(error("ns=1"), "'ns=1" + missing);
    EXPECT_EQ(error("reads=1"), "'reads=1" + missing);
    EXPECT_EQ(error("ns=1,reads=0,writes=0"), "'ns=1,reads=0,writes=0" + missing);
    EXPECT_EQ(error(""), "unknown word ''; allowed are ns=, reads=, writes=, blocks= and seconds=");
    EXPECT_EQ(error("ns=1,count=1"), "unknown word 'count'; allowed are ns=, reads=, writes=, blocks= and seconds=");
    EXPECT_EQ(error("ns=1,reads=1,reads=1"), "'reads' is given twice");
    EXPECT_EQ(error("ns=0,reads=1"), "'0' is no value of 'ns'; allowed are numbers from 1 to 32");
    EXPECT_EQ(error("ns=33,reads=1"), "'33' is no value of 'ns'; allowed are numbers from 1 to 32");
    EXPECT_EQ(error("ns=1,reads"), "'' is no value of 'reads'; allowed are numbers from 0 to 1000000000");
    EXPECT_EQ(error("ns=1,writes=1000000001"),
              "'1000000001' is no value of 'writes'; allowed are numbers from 0 to 1000000000");
    EXPECT_EQ(error("ns=1,reads=1,blocks=0"), "'0' is no value of 'blocks'; allowed are numbers from 1 to 65536");
    EXPECT_EQ(error("ns=1,reads=1,seconds=1m"), "'1m' is no value of 'seconds'; allowed are numbers from 1 to 86400");
}

}  // namespace
}  // namespace qrx::sim
