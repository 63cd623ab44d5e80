// How tests call a command: its words, and all that comes of them.
#pragma once

#include <functional>
#include <initializer_list>
#include <ostream>
#include <string>
#include <vector>

#include "api/src/interface/globals.h"
#include "cli/Public/common.h"
#include "cli/qxsetup/command_table.h"
#include "tests/unit/support/capture.h"
#include "tests/unit/support/scripted_machine.h"

namespace qrx::test {

// Words that may be written to and reordered, as main and the shell hand them out.
class Words {
public:
    Words(std::initializer_list<std::string> words) : Words(std::vector<std::string>(words)) {}
    explicit Words(std::vector<std::string> words) : text_(std::move(words))
    {
        for (std::string& word : text_) {
            pointers_.push_back(word.data());
        }
        pointers_.push_back(nullptr);
    }
    Words(const Words&) = delete;
    Words& operator=(const Words&) = delete;

    [[nodiscard]] int argc() const { return static_cast<int>(text_.size()); }
    char** argv() { return pointers_.data(); }
    // The words in their present order.
    std::vector<std::string> now() { return {pointers_.begin(), pointers_.end() - 1}; }

private:
    std::vector<std::string> text_;
    std::vector<char*> pointers_;
};

// What a call gave back, and all that it printed.
struct Outcome {
    int result = 0;
    std::string stream;
    std::string out = {};  // standard output
    std::string err = {};  // standard error

    bool operator==(const Outcome&) const = default;
    friend std::ostream& operator<<(std::ostream& os, const Outcome& outcome)
    {
        return os << "result " << outcome.result << "\n--stream--\n"
                  << outcome.stream << "--stdout--\n"
                  << outcome.out << "--stderr--\n"
                  << outcome.err;
    }
};

inline Outcome outcomeOf(const std::function<int()>& call)
{
    StdoutCapture out;
    StderrCapture err;
    StreamCapture captured;
    Outcome outcome;
    outcome.result = call();
    outcome.stream = captured.text();
    outcome.out = out.text();
    outcome.err = err.text();
    return outcome;
}

// One command on the real tables.
inline Outcome command(std::initializer_list<std::string> words)
{
    pCmdTable = generalCmdTableV1;
    cmdTableSize = static_cast<QRX_U16>(generalCmdTableV1Size());
    Words mine(words);
    return outcomeOf([&] { return cmdDispatcher(mine.argc(), mine.argv()); });
}

}  // namespace qrx::test
