#include "tests/unit/support/capture.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <system_error>

namespace qrx::test {

GlobalsGuard::~GlobalsGuard()
{
    stream = stream_;
    gCurrentAdapter = current_adapter_;
    gSpecificAdapterFlag = specific_adapter_;
    gNumAdaptersFound = adapters_found_;
    g_pAdInfos = infos_;
    g_oneBaseMode = one_base_mode_;
    dbg_enable = debug_;
}

StreamCapture::StreamCapture() : saved_(stream), sink_(open_memstream(&memory_, &size_))
{
    if (sink_ == nullptr) {
        throw std::system_error(errno, std::generic_category(), "open_memstream");
    }
    stream = sink_;
}

StreamCapture::~StreamCapture()
{
    stream = saved_;
    std::fclose(sink_);
    std::free(memory_);
}

std::string StreamCapture::text()
{
    std::fflush(sink_);
    return {memory_, size_};
}

FdCapture::FdCapture(FILE* standard) : standard_(standard), saved_(-1), sink_(memfd_create("capture", MFD_CLOEXEC))
{
    std::fflush(standard_);
    saved_ = dup(fileno(standard_));
    if (sink_ < 0 || saved_ < 0 || dup2(sink_, fileno(standard_)) < 0) {
        throw std::system_error(errno, std::generic_category(), "capture");
    }
}

FdCapture::~FdCapture()
{
    std::fflush(standard_);
    dup2(saved_, fileno(standard_));
    close(saved_);
    close(sink_);
}

std::string FdCapture::text()
{
    std::fflush(standard_);
    std::string text;
    char piece[4096];
    for (ssize_t got = 0; (got = pread(sink_, piece, sizeof(piece), static_cast<off_t>(text.size()))) > 0;) {
        text.append(piece, static_cast<std::size_t>(got));
    }
    return text;
}

}  // namespace qrx::test
