#include "sim/launcher/options.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace qrx::sim {
namespace {

using Store = std::optional<Failure> (*)(Options&, std::string_view value);

struct Row {
    std::string_view name;
    std::string_view value;    // what it takes, or empty for an option without value
    std::string_view meaning;  // as --help tells it
    Store store;
};

std::optional<Failure> store_transport(Options& options, std::string_view value)
{
    constexpr std::array<std::pair<std::string_view, Transport>, 3> kTransports = {
        {{"auto", Transport::automatic}, {"seccomp", Transport::seccomp}, {"preload", Transport::preload}}};
    for (const auto& [name, transport] : kTransports) {
        if (name == value) {
            options.program.transport = transport;
            return std::nullopt;
        }
    }
    return Failure{"--transport: '" + std::string(value) + "' is none of auto, seccomp, preload"};
}

std::optional<Failure> store_clock(Options& options, std::string_view value)
{
    if (value != "running" && value != "stopped") {
        return Failure{"--clock: '" + std::string(value) + "' is none of running, stopped"};
    }
    options.clock_runs = value == "running";
    return std::nullopt;
}

std::optional<Failure> store_fault(Options& options, std::string_view value)
{
    Result<Fault> fault = parse_fault(value);
    if (!fault) {
        return Failure{"--fault: " + fault.error()};
    }
    options.faults.push_back(*fault);
    return std::nullopt;
}

template <std::string Options::*Member>
std::optional<Failure> store_text(Options& options, std::string_view value)
{
    options.*Member = value;
    return std::nullopt;
}

template <Options::Action Action>
std::optional<Failure> store_action(Options& options, std::string_view)
{
    options.action = Action;
    return std::nullopt;
}

constexpr std::array<Row, 12> kRows = {{
    {"--scenario", "<name|file>", "the machine to simulate: a name of --list-scenarios, or a file (default: raid)",
     store_text<&Options::scenario>},
    {"--state", "<file>", "keep the machine's state there from run to run; a missing file starts with the scenario",
     store_text<&Options::state_file>},
    {"--trace", "<file>", "write each command down, decoded, one line each", store_text<&Options::trace_file>},
    {"--mtab", "<file>", "the mount table that programs find at /etc/mtab", store_text<&Options::mount_table>},
    {"--fault", "<what>", "make commands fail, such as nth=3,status=0x706; may be given more than once", store_fault},
    {"--transport", "<auto|seccomp|preload>",
     "how programs reach the machine (default: auto, the first way that works)", store_transport},
    {"--clock", "<running|stopped>",
     "simulated time: running as the real one does (default), or stopped but for 'ctl advance'", store_clock},
    {"--control", "<socket>", "where 'qrx_sim ctl' of another terminal reaches this machine",
     store_text<&Options::control>},
    {"--verbose", "", "say which way is taken",
     [](Options& options, std::string_view) {
         options.program.verbose = true;
         return std::optional<Failure>();
     }},
    {"--list-scenarios", "", "list the machines that can be simulated", store_action<Options::Action::list_scenarios>},
    {"--version", "", "print the version", store_action<Options::Action::version>},
    {"--help", "", "print this page", store_action<Options::Action::help>},
}};

constexpr std::string_view kUsageHead = R"(Usage: qrx_sim [options] -- <program> [arguments]
       qrx_sim ctl <command>
       qrx_sim make-image [options] <file>

Runs a program on a machine with a simulated RAID controller. The program, and every program that it starts, finds
the controller at /dev/nvme0, under /sys and in the SMBIOS tables; everything else is the real machine's.

)";

constexpr std::string_view kUsageTail = R"(
  qrx_sim -- qrx_cli info -o hba                     one command
  qrx_sim --scenario jbof -- bash                    a shell on the simulated machine
  qrx_sim --state lab.json -- qrx_cli                the tool's own shell, with a machine that remembers
  qrx_sim ctl fail-drive 1                           in a program under qrx_sim: what happens in the lab; 'ctl help'
  qrx_sim make-image --revision 2.5.0.1100 new.bin   a firmware image to update with; 'make-image --help'

Exit value: the program's own; 128 + signal when it was killed; 127 when it was not found, 126 when it could not be
run, 125 for a failure of qrx_sim itself.
)";

std::string known_options()
{
    std::string text;
    for (const Row& row : kRows) {
        text += (text.empty() ? "" : ", ") + std::string(row.name);
    }
    return text;
}

// The options as --help tells them.
std::string option_lines()
{
    constexpr std::size_t kMeaningAt = 39;
    std::string text;
    for (const Row& row : kRows) {
        std::string line = "  " + std::string(row.name) + (row.value.empty() ? "" : " ") + std::string(row.value);
        line.resize(std::max(line.size() + 2, kMeaningAt), ' ');
        text += line + std::string(row.meaning) + "\n";
    }
    return text;
}

const Row* find_row(std::string_view name)
{
    for (const Row& row : kRows) {
        if (row.name == name) {
            return &row;
        }
    }
    return nullptr;
}

}  // namespace

Result<Options> parse_options(std::span<const char* const> words)
{
    Options options;
    std::size_t at = 0;
    bool program_follows = false;  // "--" was there: what follows is a program, whatever it is called
    for (; at < words.size() && words[at][0] == '-'; ++at) {
        const std::string_view word = words[at];
        if (word == "--") {
            ++at;
            program_follows = true;
            break;
        }
        const std::size_t equals = word.find('=');
        const std::string name(word.substr(0, equals));
        const Row* const row = find_row(name);
        if (row == nullptr) {
            return Failure{"unknown option '" + name + "'; known are " + known_options()};
        }
        std::string_view value;
        if (row->value.empty()) {
            if (equals != std::string_view::npos) {
                return Failure{name + " takes no value"};
            }
        } else if (equals != std::string_view::npos) {
            value = word.substr(equals + 1);
        } else if (at + 1 < words.size()) {
            value = words[++at];
        }
        if (value.empty() && !row->value.empty()) {
            std::string text = name;
            text.append(" needs a value: ").append(name).append(" ").append(row->value);
            return Failure{std::move(text)};
        }
        if (std::optional<Failure> failure = row->store(options, value)) {
            return *std::move(failure);
        }
    }
    if (options.action == Options::Action::run && !program_follows && at < words.size()) {
        const std::string_view word = words[at];
        if (word == "ctl" || word == "make-image") {
            options.action = word == "ctl" ? Options::Action::control : Options::Action::make_image;
            ++at;
        }
    }
    for (const char* const word : words.subspan(at)) {
        options.program.command.emplace_back(word);
    }
    if (options.action == Options::Action::run && options.program.command.empty()) {
        return Failure{
            "no program given; 'qrx_sim -- bash' starts a shell on the simulated machine, --help tells more"};
    }
    return options;
}

std::string_view usage()
{
    static const std::string page = std::string(kUsageHead) + option_lines() + std::string(kUsageTail);
    return page;
}

}  // namespace qrx::sim
