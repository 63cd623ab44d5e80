// A file descriptor with an owner.
#pragma once

#include <unistd.h>

#include <utility>

namespace qrx::sim {

class UniqueFd {
public:
    UniqueFd() = default;
    explicit UniqueFd(int fd) : fd_(fd) {}
    UniqueFd(UniqueFd&& other) noexcept : fd_(other.release()) {}
    UniqueFd& operator=(UniqueFd&& other) noexcept
    {
        reset(other.release());
        return *this;
    }
    UniqueFd(const UniqueFd&) = delete;
    UniqueFd& operator=(const UniqueFd&) = delete;
    ~UniqueFd() { reset(); }

    [[nodiscard]] int get() const { return fd_; }
    [[nodiscard]] explicit operator bool() const { return fd_ >= 0; }
    [[nodiscard]] int release() { return std::exchange(fd_, -1); }
    void reset(int fd = -1)
    {
        const int old = std::exchange(fd_, fd);
        if (old >= 0) {
            close(old);
        }
    }

private:
    int fd_ = -1;
};

}  // namespace qrx::sim
