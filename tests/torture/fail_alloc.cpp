// A preload library that makes one memory allocation of a program fail: see fail_nth.h.
#include <cerrno>
#include <cstddef>

#include "tests/torture/fail_nth.h"

// The C library's own allocator, under the names that it keeps for those who replace malloc.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
}

namespace {

qrx::torture::FailNth allocations;

__attribute__((constructor)) void begin()
{
    allocations.begin();
}

__attribute__((destructor)) void end()
{
    allocations.end();
}

bool fails()
{
    if (!allocations.now()) {
        return false;
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
