// The file that --outputfile names.
#include "cli/Public/frame/output_file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

#include "cli/Public/frame/report.h"
#include "cli/Public/utility.h"

namespace qrx {

OutputFile::~OutputFile()
{
    if (isNamed()) {
        close_file();
    }
}

bool OutputFile::open(const char* name)
{
    name_ = name;
    written_ = false;
    trouble_ = Trouble::kNone;
    errno = 0;
    return open_file(name, "wb") == 0 || fail(Trouble::kOpen);
}

bool OutputFile::write(std::span<const QRX_U8> bytes)
{
    if (!isOpen()) {
        return !isNamed();
    }
    errno = 0;
    write_file(bytes.data(), static_cast<int>(bytes.size()));
    if (file == nullptr || std::fflush(file) != 0 || std::ferror(file) != 0) {
        return fail(Trouble::kWrite);
    }
    written_ = written_ || !bytes.empty();
    return true;
}

bool OutputFile::close()
{
    if (isOpen() && file != nullptr) {
        errno = 0;
        // Some file systems tell only now that there was no room.
        if (std::fclose(std::exchange(file, nullptr)) != 0) {
            fail(Trouble::kWrite);
        }
    }
    return trouble_ == Trouble::kNone;
}

int OutputFile::refuse(PCommand_Info row) const
{
    return trouble_ == Trouble::kOpen
               ? qrx::refuse(1, "%s: cannot open '%s': %s\n", row->cmd, name_, std::strerror(error_))
               : qrx::refuse(1, "%s: cannot write '%s': %s; the file is incomplete\n", row->cmd, name_,
                             std::strerror(error_));
}

void OutputFile::warnOfMissingRest(PCommand_Info row) const
{
    if (written_) {
        std::fprintf(stderr, "%s: '%s' is incomplete\n", row->cmd, name_);
    }
}

bool OutputFile::fail(Trouble trouble)
{
    trouble_ = trouble;
    error_ = errno != 0 ? errno : EIO;
    return false;
}

}  // namespace qrx
