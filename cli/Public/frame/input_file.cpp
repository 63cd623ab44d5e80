// The file whose content a command sends.
#include "cli/Public/frame/input_file.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <limits>

#include "cli/Public/frame/report.h"
#include "cli/Public/utility.h"

namespace qrx {

std::optional<std::size_t> InputFile::read(std::span<QRX_U8> space)
{
    most_ = space.size();
    const auto length = readUpTo(space);
    if (length != space.size()) {
        return length;
    }
    const bool more = std::fgetc(file) != EOF;
    if (more || std::ferror(file) != 0) {
        fail(more ? Trouble::kLength : Trouble::kRead);
        return std::nullopt;
    }
    return length;
}

std::optional<std::size_t> InputFile::readUpTo(std::span<QRX_U8> space)
{
    if (!use() || trouble() == Trouble::kOpen || trouble() == Trouble::kInUse) {
        return std::nullopt;
    }
    errno = 0;
    const std::size_t length = std::fread(space.data(), 1, space.size(), file);
    if (std::ferror(file) != 0) {
        fail(Trouble::kRead);
        return std::nullopt;
    }
    return length;
}

std::optional<InputFile::Head> InputFile::readHead(std::span<QRX_U8> space)
{
    const auto held = readUpTo(space);
    if (!held) {
        return std::nullopt;
    }
    most_ = std::numeric_limits<std::int32_t>::max();
    Head head{*held, *held};
    if (head.held == space.size()) {
        if (fseeko(file, 0, SEEK_END) == 0) {
            head.length = std::max(head.length, static_cast<QRX_U64>(ftello(file)));
        } else {
            std::array<QRX_U8, 16384> rest;
            for (std::size_t more = 1; more != 0 && head.length <= most_; head.length += more) {
                more = std::fread(rest.data(), 1, rest.size(), file);
            }
        }
    }
    if (std::ferror(file) != 0 || head.length > most_) {
        fail(std::ferror(file) != 0 ? Trouble::kRead : Trouble::kLength);
        return std::nullopt;
    }
    return head;
}

int InputFile::refuse(PCommand_Info row) const
{
    if (trouble() == Trouble::kInUse) {
        return qrx::refuse(1, "%s: '%s' is the output file\n", row->cmd, name());
    }
    if (trouble() == Trouble::kLength) {
        return qrx::refuse(1, "%s: '%s' has more than %zu bytes\n", row->cmd, name(), most_);
    }
    return qrx::refuse(1, "%s: cannot %s '%s': %s\n", row->cmd, trouble() == Trouble::kRead ? "read" : "open", name(),
                       reason());
}

}  // namespace qrx
