#include "cli/Functions/flash/flash_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>

#include "api/src/interface/wire/buffer.h"
#include "cli/Public/common.h"
#include "cli/Public/utility.h"

int open_file_for_flash(const char* filename)
{
    constexpr std::size_t kNameSize = 1024;
    close_file();
    std::array<char, kNameSize> name{};
    if (qrx::noQuoteCopy(name, filename) != 0) {
        return 1;
    }
    const int descriptor = open(name.data(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);  // a pipe must not keep us waiting
    if (descriptor < 0) {
        return 1;
    }
    struct stat status {};
    if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)) {
        file = fdopen(descriptor, "rb");
    }
    if (file == nullptr) {
        close(descriptor);
        return 1;
    }
    return 0;
}

QRX_U32 read_file_for_flash(std::span<QRX_U8> data_buffer)
{
    const std::size_t size = std::min(data_buffer.size(), qrx::wire::kPageSize);
    return file != nullptr ? static_cast<QRX_U32>(std::fread(data_buffer.data(), 1, size, file)) : 0;
}

QRX_U64 get_file_length_for_flash()
{
    return static_cast<QRX_U64>(get_file_length());
}

void close_file_for_flash()
{
    close_file();
}
