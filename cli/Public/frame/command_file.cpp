// The files that options name.
#include "cli/Public/frame/command_file.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "cli/Public/utility.h"

namespace qrx {

CommandFile* CommandFile::user_ = nullptr;
CommandFile* CommandFile::newest_ = nullptr;

CommandFile::~CommandFile()
{
    CommandFile** link = &newest_;
    while (*link != this) {
        link = &(*link)->next_;
    }
    *link = next_;
    if (user_ == this) {
        close_file();
        user_ = nullptr;
    } else if (aside_ != nullptr) {
        (void)std::fclose(aside_);
    }
}

bool CommandFile::open(const char* name)
{
    use();
    name_ = name;
    trouble_ = Trouble::kNone;
    close_file();
    const auto path = nameOfFile(name);
    if (path && isInUse(*path)) {
        return fail(Trouble::kInUse);
    }
    file = path ? std::fopen(path->c_str(), mode_) : nullptr;
    return file != nullptr || fail(Trouble::kOpen);
}

FILE* CommandFile::held() const
{
    return user_ == this ? file : aside_;
}

// Whether another one has the regular file of that name open, and one of both writes.
bool CommandFile::isInUse(const std::string& path) const
{
    struct stat wanted {};
    if (stat(path.c_str(), &wanted) != 0 || !S_ISREG(wanted.st_mode)) {
        return false;
    }
    for (const CommandFile* other = newest_; other != nullptr; other = other->next_) {
        struct stat open {};
        const bool writes = *mode_ == 'w' || *other->mode_ == 'w';
        if (other != this && writes && other->held() != nullptr && fstat(fileno(other->held()), &open) == 0 &&
            open.st_dev == wanted.st_dev && open.st_ino == wanted.st_ino) {
            return true;
        }
    }
    return false;
}

bool CommandFile::use()
{
    if (user_ != this) {
        if (user_ != nullptr) {
            user_->aside_ = std::exchange(file, nullptr);
        }
        close_file();
        file = std::exchange(aside_, nullptr);
        user_ = this;
    }
    return file != nullptr;
}

int CommandFile::close()
{
    return use() ? std::fclose(std::exchange(file, nullptr)) : 0;
}

bool CommandFile::fail(Trouble trouble)
{
    trouble_ = trouble;
    error_ = errno != 0 ? errno : EIO;
    return false;
}

const char* CommandFile::reason() const
{
    return std::strerror(error_);
}

}  // namespace qrx
