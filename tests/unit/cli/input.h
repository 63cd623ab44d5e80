// What a command reads from standard input.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <string>

namespace qrx::test {

// Standard input holds this text over its life.
class Input {
public:
    explicit Input(const std::string& text) : saved_(dup(STDIN_FILENO))
    {
        int ends[2];
        EXPECT_EQ(pipe(ends), 0);
        EXPECT_EQ(write(ends[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
        close(ends[1]);
        dup2(ends[0], STDIN_FILENO);
        close(ends[0]);
    }
    ~Input()
    {
        dup2(saved_, STDIN_FILENO);
        close(saved_);
    }
    Input(const Input&) = delete;
    Input& operator=(const Input&) = delete;

    // What nobody has read.
    static std::string rest()
    {
        char text[64];
        const ssize_t got = read(STDIN_FILENO, text, sizeof(text));
        return {text, static_cast<std::size_t>(std::max<ssize_t>(got, 0))};
    }

private:
    int saved_;
};

}  // namespace qrx::test
