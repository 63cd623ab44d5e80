// The file that --outputfile names.
#include "cli/Public/frame/output_file.h"

#include <cerrno>
#include <cstdio>

#include "cli/Public/frame/report.h"
#include "cli/Public/utility.h"

namespace qrx {

bool OutputFile::open(const char* name)
{
    written_ = false;
    return CommandFile::open(name);
}

bool OutputFile::write(std::span<const QRX_U8> bytes)
{
    if (!isOpen()) {
        return !isNamed();
    }
    const bool usable = use();
    errno = 0;
    write_file(bytes.data(), static_cast<int>(bytes.size()));
    if (!usable || std::fflush(file) != 0 || std::ferror(file) != 0) {
        return fail(Trouble::kWrite);
    }
    written_ = written_ || !bytes.empty();
    return true;
}

bool OutputFile::close()
{
    errno = 0;
    // Some file systems tell only now that there was no room.
    if (CommandFile::close() != 0 && isOpen()) {
        fail(Trouble::kWrite);
    }
    return trouble() == Trouble::kNone;
}

int OutputFile::save(PCommand_Info row, std::span<const QRX_U8> bytes)
{
    return write(bytes) && close() ? 0 : refuse(row);
}

int OutputFile::refuse(PCommand_Info row) const
{
    if (trouble() == Trouble::kInUse) {
        return qrx::refuse(1, "%s: '%s' is the input file\n", row->cmd, name());
    }
    return trouble() == Trouble::kOpen
               ? qrx::refuse(1, "%s: cannot open '%s': %s\n", row->cmd, name(), reason())
               : qrx::refuse(1, "%s: cannot write '%s': %s; the file is incomplete\n", row->cmd, name(), reason());
}

int OutputFile::finish(PCommand_Info row, int result)
{
    if (!close()) {
        const int refused = refuse(row);
        return result != 0 ? result : refused;
    }
    if (result != 0) {
        warnOfMissingRest(row);
    }
    return result;
}

void OutputFile::warnOfMissingRest(PCommand_Info row) const
{
    if (written_) {
        std::fprintf(stderr, "%s: '%s' is incomplete\n", row->cmd, name());
    }
}

}  // namespace qrx
