#include "sim/firmware/errno_name.h"

#include <array>
#include <cerrno>
#include <charconv>

namespace qrx::sim {

namespace {

struct Name {
    int error;
    std::string_view text;
};

// What the driver and the system calls in front of it end with.
constexpr auto kNames = std::to_array<Name>({
    {EIO, "EIO"},
    {EINVAL, "EINVAL"},
    {ENODEV, "ENODEV"},
    {ENXIO, "ENXIO"},
    {EACCES, "EACCES"},
    {EPERM, "EPERM"},
    {EINTR, "EINTR"},
    {EAGAIN, "EAGAIN"},
    {EBUSY, "EBUSY"},
    {ENOMEM, "ENOMEM"},
    {EFAULT, "EFAULT"},
    {ENOTTY, "ENOTTY"},
    {ENOSPC, "ENOSPC"},
    {ETIME, "ETIME"},
    {ETIMEDOUT, "ETIMEDOUT"},
    {EREMOTEIO, "EREMOTEIO"},
    {ECANCELED, "ECANCELED"},
});

constexpr int kMaxErrno = 4095;

}  // namespace

std::string errno_name(int error)
{
    for (const Name& name : kNames) {
        if (name.error == error) {
            return std::string(name.text);
        }
    }
    return std::to_string(error);
}

std::optional<int> parse_errno(std::string_view text)
{
    for (const Name& name : kNames) {
        if (name.text == text) {
            return name.error;
        }
    }
    int number = 0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), number);
    if (parsed.ec != std::errc() || parsed.ptr != text.data() + text.size() || number < 1 || number > kMaxErrno) {
        return std::nullopt;
    }
    return number;
}

std::string errno_names()
{
    std::string text;
    for (const Name& name : kNames) {
        text += text.empty() ? "" : ", ";
        text += name.text;
    }
    return text;
}

}  // namespace qrx::sim
