// Arithmetic, file helpers and the plain hex dump.
#include "cli/Public/utility.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstring>

#include "api/src/function/file/common/crc32.h"
#include "api/src/interface/globals.h"
#include "cli/Public/common.h"

FILE* file = nullptr;

namespace {

constexpr double kTwoToThe32 = 4294967296.0;
constexpr std::size_t kNameSize = 1024;  // of a file name with its terminator

// The same table as that of the firmware image.
constexpr const auto& crc32Table = crc_tab;

}  // namespace

QRX_U32 pow_nvme(QRX_U8 base, QRX_U8 power)
{
    const double result = std::pow(base, power);
    if (!std::isfinite(result)) {
        return 0;
    }
    return static_cast<QRX_U32>(std::fmod(std::trunc(result), kTwoToThe32));
}

QRX_U32 calCRC32(QRX_U8* byte, QRX_U16 length)
{
    QRX_U32 crc = 0xFFFFFFFF;
    for (QRX_U16 i = 0; i < length; ++i) {
        crc = (crc >> 8) ^ crc32Table[(crc ^ byte[i]) & 0xFF];
    }
    return crc;
}

std::optional<std::string> qrx::nameOfFile(const char* filename)
{
    const bool quoted = filename[0] == '"';
    const char* const first = quoted ? filename + 1 : filename;
    const std::size_t length = quoted ? std::strcspn(first, "\"") : std::strlen(first);  // a closing quote may miss
    if (length >= kNameSize) {
        errno = ENAMETOOLONG;
        return std::nullopt;
    }
    std::array<char, kNameSize> name{};
    if (!quoted && qrx::noQuoteCopy(name, first) != 0) {
        errno = EINVAL;
        return std::nullopt;
    }
    return std::string(first, length);
}

int open_file(const char* filename, const char* mode)
{
    close_file();
    const auto name = qrx::nameOfFile(filename);
    file = name ? std::fopen(name->c_str(), mode) : nullptr;
    return file == nullptr ? 1 : 0;
}

long get_file_length()
{
    if (file == nullptr) {
        return 0;
    }
    const long position = std::ftell(file);
    if (position < 0 || std::fseek(file, 0, SEEK_END) != 0) {
        return 0;
    }
    const long length = std::ftell(file);
    if (std::fseek(file, position, SEEK_SET) != 0 || length < 0) {
        return 0;
    }
    return length;
}

void read_file(void* buffer, int size)
{
    if (file != nullptr && size > 0) {
        (void)std::fread(buffer, 1, static_cast<std::size_t>(size), file);
    }
}

void write_file(const void* buffer, int size)
{
    if (file != nullptr && size > 0) {
        (void)std::fwrite(buffer, 1, static_cast<std::size_t>(size), file);
    }
}

void close_file()
{
    if (file != nullptr) {
        (void)std::fclose(file);
        file = nullptr;
    }
}

void _showRAWData(const QRX_U8* p_data_buff, int data_len)
{
    for (int i = 0; i < data_len; ++i) {
        if (i % 16 == 0) {
            std::fputs("\n", stream);
        }
        std::fprintf(stream, "0x%02x ", p_data_buff[i]);
    }
    std::fputs("\n", stream);
}
