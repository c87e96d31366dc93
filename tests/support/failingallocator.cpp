#include "support/failingallocator.h"

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <new>

#include <dlfcn.h>
#include <pthread.h>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define HAS_ALLOCATOR_OF_ITS_OWN
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define HAS_ALLOCATOR_OF_ITS_OWN
#endif
#endif

namespace {

/// So many allocations are granted before one fails; less than 0 while none is to fail.
std::atomic<int> grantsLeft{ -1 };
std::atomic<bool> hasFailed{ false };
failing::Calls failingCalls = failing::Calls::Malloc;
const char* failingLibrary = nullptr;
pthread_t armingThread;
failing::Threads failingThreads = failing::Threads::Own;

bool isOfLibrary(const void* caller)
{
    Dl_info info{};
    return !failingLibrary
        || (dladdr(caller, &info) != 0 && std::strstr(info.dli_fname, failingLibrary));
}

bool isOfThreads()
{
    const bool isOwn = pthread_equal(armingThread, pthread_self()) != 0;
    return isOwn == (failingThreads == failing::Threads::Own);
}

bool failsNow(bool isNew, const void* caller)
{
    if (grantsLeft < 0 || isNew == (failingCalls == failing::Calls::Malloc) || !isOfThreads()
        || !isOfLibrary(caller) || grantsLeft-- > 0)
        return false;
    hasFailed = true;
    errno = ENOMEM;
    return true;
}

} // namespace

bool failing::canFailMalloc()
{
#ifdef HAS_ALLOCATOR_OF_ITS_OWN
    return false;
#else
    return true;
#endif
}

void failing::arm(Calls calls, int granted, const char* library)
{
    failingLibrary = library;
    failingCalls = calls;
    failingThreads = Threads::Own;
    armingThread = pthread_self();
    hasFailed = false;
    grantsLeft = granted;
}

void failing::arm(Calls calls, int granted, Threads threads)
{
    arm(calls, -1);
    failingThreads = threads;
    grantsLeft = granted;
}

bool failing::disarm()
{
    grantsLeft = -1;
    return hasFailed;
}

void* operator new(size_t size)
{
    void* const memory = failsNow(true, __builtin_return_address(0)) ? nullptr : std::malloc(size);
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

#ifndef HAS_ALLOCATOR_OF_ITS_OWN

// What the C library's own functions stand for.
extern "C" {

void* __libc_malloc(size_t size); // NOLINT(bugprone-reserved-identifier)
void* __libc_calloc(size_t count, size_t size); // NOLINT(bugprone-reserved-identifier)
void* __libc_realloc(void* memory, size_t size); // NOLINT(bugprone-reserved-identifier)

// Hidden by default, they would serve this program alone.
#pragma GCC visibility push(default)

void* malloc(size_t size)
{
    return failsNow(false, __builtin_return_address(0)) ? nullptr : __libc_malloc(size);
}

void* calloc(size_t count, size_t size)
{
    return failsNow(false, __builtin_return_address(0)) ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* memory, size_t size)
{
    return failsNow(false, __builtin_return_address(0)) ? nullptr : __libc_realloc(memory, size);
}

#pragma GCC visibility pop
}

#endif
