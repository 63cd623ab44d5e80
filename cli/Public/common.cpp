// The small converters that handlers share.
#include "cli/Public/common.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

#include "api/src/interface/globals.h"
#include "api/src/interface/wire/bga.h"
#include "api/src/interface/wire/vd.h"

namespace {

struct RaidMode {
    std::string_view word;
    QRX_U8 code;
    const char* text;
};
constexpr std::array<RaidMode, 8> kRaidModes{{
    {"0", kRaid0, "RAID0"},
    {"1", kRaid1, "RAID1"},
    {"10", kRaid10, "RAID10"},
    {"5", kRaid5, "RAID5"},
    {"50", kRaid50, "RAID50"},
    {"6", kRaid6, "RAID6"},
    {"60", kRaid60, "RAID60"},
    {"JBOD", kJbod, "JBOD"},
}};
constexpr QRX_U8 kUnknownWord = 255;
constexpr int kBytesPerRow = 16;

}  // namespace

int noQuoteStrncpy(char* desc, char* source, int maxLen)
{
    if (source[0] == '\'') {
        std::fputs("Please use double quotation mark to include strings.\n", stdout);
        return 1;
    }
    if (source[0] == '"' && maxLen > 0 && source[maxLen - 1] == '"') {
        const int inner = std::min(maxLen, static_cast<int>(std::strlen(source)) - 2);
        if (inner < 0) {  // a quote alone
            desc[0] = '\0';
            return 0;
        }
        std::strncpy(desc, source + 1, static_cast<std::size_t>(inner));
        desc[inner + 1] = '\0';  // desc[inner] is the caller's zero
        return 0;
    }
    std::strncpy(desc, source, static_cast<std::size_t>(maxLen));
    desc[maxLen] = '\0';
    return 0;
}

int qrx::noQuoteCopy(std::span<char> desc, const char* word)
{
    std::string source = std::string(word).substr(0, desc.size() - 1);
    return noQuoteStrncpy(desc.data(), source.data(), static_cast<int>(source.size()));
}

void dumpContent(QRX_U8* data, int len)
{
    std::fputs("[RAW Data]\n      ", stream);
    for (int column = 0; column < kBytesPerRow; ++column) {
        std::fprintf(stream, "%02d ", column);
    }
    std::fputs("\n", stream);
    for (int i = 0; i < len; ++i) {
        if (i % kBytesPerRow == 0) {
            std::fprintf(stream, "\n%04d  ", i);
        }
        std::fprintf(stream, "%02x ", data[i]);
    }
    std::fputs("\n", stream);
}

bool isNumber(const char* digitStr)
{
    const std::string_view text(digitStr);
    return std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isdigit(c) != 0; });
}

char* strlwr(char* a)
{
    for (char* c = a; *c != '\0'; ++c) {
        *c = static_cast<char>(std::tolower(static_cast<unsigned char>(*c)));
    }
    return a;
}

QRX_U8 chooseRaidMode(const char* mode)
{
    for (const RaidMode& row : kRaidModes) {
        if (row.word == mode) {
            return row.code;
        }
    }
    return kUnknownWord;
}

const char* RaidModeStr(QRX_U8 RaidMode)
{
    for (const auto& row : kRaidModes) {
        if (row.code == RaidMode) {
            return row.text;
        }
    }
    return "unknown";
}

QRX_U8 chooseBGAAction(const char* str)
{
    const std::string_view word(str);
    if (word == "start") {
        return QRX_NVME_BGA_OPERATION_START;
    }
    return word == "stop" ? QRX_U8{QRX_NVME_BGA_OPERATION_ABORT} : kUnknownWord;
}
