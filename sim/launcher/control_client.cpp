#include "sim/launcher/control_client.h"

#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>

#include "sim/firmware/factory.h"
#include "sim/launcher/control_command.h"
#include "sim/launcher/control_socket.h"
#include "sim/launcher/files.h"

namespace qrx::sim {
namespace {

constexpr int kRefused = 1;

struct Question {
    ControlRequest request;
    std::string socket;
    std::string state_file;
    std::string file_to_write;
};

int complain(const std::string& text, int value)
{
    (void)std::fprintf(stderr, "qrx_sim ctl: %s\n", text.c_str());
    return value;
}

// The options in front of the command. Leaves `at` at the command's name.
std::optional<Failure> read_options(const std::vector<std::string>& words, std::size_t& at, Question& question)
{
    for (; at < words.size() && words[at].starts_with("--"); ++at) {
        const std::string name = words[at].substr(0, words[at].find('='));
        if (name != "--controller" && name != "--control" && name != "--state") {
            return Failure{"unknown option '" + name + "'; known are --controller, --control, --state"};
        }
        std::string value;
        if (name.size() != words[at].size()) {
            value = words[at].substr(name.size() + 1);
        } else if (at + 1 < words.size()) {
            value = words[++at];
        }
        if (value.empty()) {
            return Failure{name + " needs a value"};
        }
        if (name == "--control") {
            question.socket = value;
        } else if (name == "--state") {
            question.state_file = value;
        } else {
            unsigned number = 0;
            const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
            if (error != std::errc() || end != value.data() + value.size()) {
                return Failure{"--controller: '" + value + "' is no controller number"};
            }
            question.request.controller = number;
        }
    }
    return std::nullopt;
}

Result<Question> read_words(const Options& options)
{
    const std::vector<std::string>& words = options.program.command;
    Question question;
    question.socket = options.control;
    question.state_file = options.state_file;
    std::size_t at = 0;
    if (std::optional<Failure> failure = read_options(words, at, question)) {
        return *failure;
    }
    if (at == words.size()) {
        return Failure{"no command given; 'qrx_sim ctl help' lists them"};
    }
    ControlRequest& request = question.request;
    request.command = words[at++];
    const Result<ControlArgument> kind = control_argument(request.command);
    if (!kind) {
        return Failure{kind.error()};
    }
    const std::size_t given = words.size() - at;
    if (*kind == ControlArgument::optional_text) {
        if (given > 1) {
            return Failure{request.command + " takes at most one word behind it"};
        }
        request.argument = given == 1 ? words[at] : "";
        return question;
    }
    const std::size_t wanted = *kind == ControlArgument::none ? 0 : 1;
    if (given != wanted) {
        return Failure{request.command + (wanted == 0 ? " takes nothing behind it" : " takes one word behind it")};
    }
    if (*kind == ControlArgument::text) {
        request.argument = words[at];
    } else if (*kind == ControlArgument::file_to_write) {
        question.file_to_write = words[at];
    } else if (*kind == ControlArgument::file_to_read) {
        const std::optional<std::string> content = read_file(words[at]);
        if (!content) {
            return Failure{request.command + ": cannot read '" + words[at] + "': " + std::strerror(errno)};
        }
        request.argument = *content;
    }
    return question;
}

// Carries the request out on a machine at rest.
int change_state(const Question& question, std::string& answer)
{
    const std::optional<std::string> text = read_file(question.state_file);
    if (!text) {
        return complain("cannot read '" + question.state_file + "': " + std::strerror(errno), kExitOwnFailure);
    }
    const Result<std::unique_ptr<Machine>> machine = load_machine(*text, question.state_file);
    if (!machine) {
        return complain(machine.error(), kExitOwnFailure);
    }
    const Result<std::string> done = carry_out(**machine, question.request);
    if (!done) {
        return complain(done.error(), kRefused);
    }
    answer = *done;
    if (!replace_file(question.state_file, save_machine(**machine))) {
        return complain("cannot write '" + question.state_file + "': " + std::strerror(errno), kExitOwnFailure);
    }
    return 0;
}

int ask_simulator(const Question& question, std::string& answer)
{
    std::string path = question.socket;
    if (path.empty()) {
        const char* const known = std::getenv(kControlVariable);
        if (known == nullptr || *known == '\0') {
            return complain(std::string("no simulator: run it in a program under qrx_sim, where ") + kControlVariable +
                                " is set, or name one with --control <socket> or --state <file>",
                            kExitOwnFailure);
        }
        path = known;
    }
    bool reached = false;
    const Result<std::string> done = ask(path, question.request, reached);
    if (!done) {
        return complain(done.error(), reached ? kRefused : kExitOwnFailure);
    }
    answer = *done;
    return 0;
}

}  // namespace

int run_control(const Options& options)
{
    const Result<Question> question = read_words(options);
    if (!question) {
        return complain(question.error(), kExitOwnFailure);
    }
    std::string answer;
    if (question->request.command == "help") {
        answer = control_usage();
    } else {
        const int value =
            question->state_file.empty() ? ask_simulator(*question, answer) : change_state(*question, answer);
        if (value != 0) {
            return value;
        }
    }
    if (!question->file_to_write.empty()) {
        return replace_file(question->file_to_write, answer)
                   ? 0
                   : complain("save: cannot write '" + question->file_to_write + "': " + std::strerror(errno),
                              kRefused);
    }
    std::cout << answer;
    return std::cout.flush() ? 0 : kExitOwnFailure;
}

}  // namespace qrx::sim
