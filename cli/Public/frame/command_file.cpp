// The files that options name.
#include "cli/Public/frame/command_file.h"

#include <cerrno>
#include <cstring>
#include <utility>

#include "cli/Public/utility.h"

namespace qrx {

CommandFile* CommandFile::user_ = nullptr;

CommandFile::~CommandFile()
{
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
    errno = 0;
    return open_file(name, mode_) == 0 || fail(Trouble::kOpen);
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
