// What commands write into files and show of bytes, reckoned by the tests themselves.
#pragma once

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include "tests/unit/support/bytes.h"

namespace qrx::test {

// The plain dump.
inline std::string rawOf(const Bytes& data)
{
    std::string text;
    char piece[8];
    for (std::size_t i = 0; i < data.size(); ++i) {
        std::snprintf(piece, sizeof(piece), "0x%02x ", data[i]);
        text += (i % 16 == 0 ? "\n" : "") + std::string(piece);
    }
    return text + "\n";
}

inline std::string contentOf(const std::string& path)
{
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

inline std::string textOf(const Bytes& bytes)
{
    return {bytes.begin(), bytes.end()};
}

}  // namespace qrx::test
