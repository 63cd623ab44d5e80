// A preload library that makes one memory allocation of qrx_cli fail: the n-th since the program's own start.
//
//     QRX_FAIL_ALLOC=7 QRX_FAIL_ALLOC_SEEN=/tmp/seen LD_PRELOAD=libqrx_fail_alloc.so qrx_cli info -o hba
//
// The file named in QRX_FAIL_ALLOC_SEEN is created when the failure came about, so that a caller who counts up knows
// when the program makes fewer allocations than that. Other programs that inherit the preload are left alone.
#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <string_view>

// The C library's own allocator, under the names that it keeps for those who replace malloc.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
}

namespace {

std::atomic<long> allocations_left = 0;  // until the one that fails; 0: none does

__attribute__((constructor)) void readTheWish()
{
    const char* wish = std::getenv("QRX_FAIL_ALLOC");
    if (wish != nullptr && std::string_view(program_invocation_short_name) == "qrx_cli") {
        allocations_left = std::atol(wish);
    }
}

bool fails()
{
    if (allocations_left.load(std::memory_order_relaxed) == 0 || allocations_left.fetch_sub(1) != 1) {
        return false;
    }
    if (const char* seen = std::getenv("QRX_FAIL_ALLOC_SEEN"); seen != nullptr) {
        ::close(::open(seen, O_CREAT | O_WRONLY | O_CLOEXEC, 0600));
    }
    errno = ENOMEM;
    return true;
}

}  // namespace

extern "C" {

void* malloc(std::size_t size)
{
    return fails() ? nullptr : __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size)
{
    return fails() ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* block, std::size_t size)
{
    return fails() ? nullptr : __libc_realloc(block, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size)
{
    return fails() ? nullptr : __libc_memalign(alignment, size);
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size)
{
    *block = fails() ? nullptr : __libc_memalign(alignment, size);
    return *block == nullptr ? ENOMEM : 0;
}
}
