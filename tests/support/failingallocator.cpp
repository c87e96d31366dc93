#include "support/failingallocator.h"

#include <cerrno>
#include <cstdlib>
#include <new>

#include <pthread.h>

#if defined(__SANITIZE_ADDRESS__)
#define HAS_ALLOCATOR_OF_ITS_OWN
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define HAS_ALLOCATOR_OF_ITS_OWN
#endif
#endif

namespace {

/// So many allocations are granted before one fails; less than 0 while none is to fail.
int grantsLeft = -1;
bool hasFailed = false;
pthread_t failingThread;

bool failsNow()
{
    if (grantsLeft < 0 || pthread_equal(failingThread, pthread_self()) == 0 || grantsLeft-- > 0)
        return false;
    hasFailed = true;
    errno = ENOMEM;
    return true;
}

} // namespace

void failing::arm(int granted)
{
    failingThread = pthread_self();
    hasFailed = false;
    grantsLeft = granted;
}

bool failing::disarm()
{
    grantsLeft = -1;
    return hasFailed;
}

#ifdef HAS_ALLOCATOR_OF_ITS_OWN

void* operator new(size_t size)
{
    void* const memory = failsNow() ? nullptr : std::malloc(size);
    if (!memory)
        throw std::bad_alloc();
    return memory;
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, size_t) noexcept
{
    std::free(memory);
}

#else

// What the C library's own functions stand for; operator new asks them too.
extern "C" {

void* __libc_malloc(size_t size); // NOLINT(bugprone-reserved-identifier)
void* __libc_calloc(size_t count, size_t size); // NOLINT(bugprone-reserved-identifier)
void* __libc_realloc(void* memory, size_t size); // NOLINT(bugprone-reserved-identifier)

// Hidden by default, they would serve this program alone.
#pragma GCC visibility push(default)

void* malloc(size_t size)
{
    return failsNow() ? nullptr : __libc_malloc(size);
}

void* calloc(size_t count, size_t size)
{
    return failsNow() ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* memory, size_t size)
{
    return failsNow() ? nullptr : __libc_realloc(memory, size);
}

#pragma GCC visibility pop
}

#endif
