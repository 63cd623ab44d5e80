// Fuzzes the splitter of shell lines: every word lies inside the line, in order, and no more words than there are
// entries for.
#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "cli/Public/common.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::string line(reinterpret_cast<const char*>(data), size);
    line.resize(std::strlen(line.c_str()));  // a line ends at its terminator

    std::array<char*, kMaxWords> words{};
    int count = -1;
    const int result = parse(&count, words.data(), line.data());
    assert(result == 1 || result == 0 || result == -1);
    if (result != 1) {
        return 0;
    }
    assert(count >= 0 && count <= kMaxWords);
    const char* end = line.data();
    for (int i = 0; i < count; ++i) {
        const char* word = words[static_cast<std::size_t>(i)];
        assert(word >= end && word <= line.data() + line.size());
        end = word + std::strlen(word);
        assert(end <= line.data() + line.size());
    }
    return 0;
}
