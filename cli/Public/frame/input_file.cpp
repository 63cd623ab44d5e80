// The file whose content a command sends.
#include "cli/Public/frame/input_file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "cli/Public/frame/report.h"
#include "cli/Public/utility.h"

namespace qrx {

InputFile::~InputFile()
{
    close_file();
}

bool InputFile::open(const char* name)
{
    name_ = name;
    trouble_ = Trouble::kNone;
    errno = 0;
    return open_file(name, "r") == 0 || fail(Trouble::kOpen);
}

std::optional<std::size_t> InputFile::read(std::span<QRX_U8> space)
{
    if (trouble_ == Trouble::kOpen || file == nullptr) {
        return std::nullopt;
    }
    most_ = space.size();
    errno = 0;
    const std::size_t length = std::fread(space.data(), 1, space.size(), file);
    const bool more = length == space.size() && std::fgetc(file) != EOF;
    if (std::ferror(file) != 0) {
        fail(Trouble::kRead);
        return std::nullopt;
    }
    if (more) {
        fail(Trouble::kLength);
        return std::nullopt;
    }
    return length;
}

int InputFile::refuse(PCommand_Info row) const
{
    if (trouble_ == Trouble::kLength) {
        return qrx::refuse(1, "%s: '%s' has more than %zu bytes\n", row->cmd, name_, most_);
    }
    return qrx::refuse(1, "%s: cannot %s '%s': %s\n", row->cmd, trouble_ == Trouble::kRead ? "read" : "open", name_,
                       std::strerror(error_));
}

bool InputFile::fail(Trouble trouble)
{
    trouble_ = trouble;
    error_ = errno != 0 ? errno : EIO;
    return false;
}

}  // namespace qrx
