// A machine for the commands that make messages of options.
#pragma once

#include "tests/unit/cli/mi_fixture.h"
#include "tests/unit/cli/run_unlisted.h"

namespace qrx::test {

inline const Outcome kDuplicate{1, "Duplicated option specified.\n"};

class FrontTest : public MiTest {
protected:
    // NVMe-MI Send and Receive of the later form: the head in CDW10 to CDW13.
    static test::Command sendData(std::vector<QRX_U32> head, const Bytes& data)
    {
        auto command = test::Command::admin(29, 0, std::move(head)).on(1);
        return data.empty() ? command : std::move(command).sends(data);
    }
    static test::Command receiveData(std::vector<QRX_U32> head)
    {
        return test::Command::admin(30, 0, std::move(head)).receives(4096).carries(Bytes(4096)).on(1);
    }
    [[nodiscard]] std::string fileOf(const Bytes& bytes) const { return scratch.file("in", textOf(bytes)); }
    static void checkHelp(const std::string& word)
    {
        EXPECT_EQ(unlisted({word}), (Outcome{1, helpOf(word)}));
        EXPECT_EQ(unlisted({word, "-h"}), (Outcome{0, helpOf(word)}));
        EXPECT_EQ(unlisted({word, "--help"}), (Outcome{0, helpOf(word)}));
        EXPECT_EQ(unlisted({word, "-Z"}), (Outcome{0, "", "", word + ": illegal option -- Z\n"}));
    }
    // Each option is a number that its place holds whole.
    static void checkWords(const std::string& word,
                           std::initializer_list<std::pair<std::string, std::string>> complaints)
    {
        for (const auto& [option, line] : complaints) {
            for (const std::string number : {"0x100000000", "4294967296", "-0x1", "0x1g", "99999999999999999999"}) {
                EXPECT_EQ(unlisted({word, option, number, "-h"}), (Outcome{0, line})) << option << " " << number;
            }
        }
    }
    // Each option is a number, and comes once.
    static void checkNumbers(const std::string& word,
                             std::initializer_list<std::pair<std::string, std::string>> complaints)
    {
        for (const auto& [option, line] : complaints) {
            EXPECT_EQ(unlisted({word, option, "x", "-h"}), (Outcome{0, line})) << option;
            EXPECT_EQ(unlisted({word, option, "-1", "-h"}), (Outcome{0, line})) << option;
            EXPECT_EQ(unlisted({word, option, "0", option, "0"}), kDuplicate) << option;
        }
    }
};

}  // namespace qrx::test
