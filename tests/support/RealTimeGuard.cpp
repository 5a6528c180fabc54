#include "tests/support/RealTimeGuard.h"

#include "soundlayer/soundlayer.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <cstdlib>
#include <ctime>

#include <dlfcn.h>
#include <execinfo.h>
#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define VELMORA_SANITIZED 1
#endif

namespace velmora::testing {
namespace {

constexpr int kDepth = 32;

std::atomic<bool> g_watching{false};
std::atomic<std::uint64_t> g_memory{0};
std::atomic<std::uint64_t> g_waits{0};
std::atomic<std::uint64_t> g_files{0};
std::atomic<bool> g_stackTaken{false};
std::array<void*, kDepth> g_stack{};
std::atomic<int> g_stackDepth{0};

/// What notes a breach must not be noted itself.
[[gnu::tls_model("initial-exec")]] thread_local bool t_noting = false;

void Note(std::atomic<std::uint64_t>& count)
{
    if (!g_watching.load(std::memory_order_acquire) || t_noting || !Sound_OnMixingThread()) {
        return;
    }
    t_noting = true;
    count.fetch_add(1, std::memory_order_relaxed);
    if (!g_stackTaken.exchange(true)) {
        g_stackDepth = backtrace(g_stack.data(), kDepth);
    }
    t_noting = false;
}

/// The function of that name that this program's own stands before.
void* Next(std::atomic<void*>& known, const char* name)
{
    void* function = known.load(std::memory_order_relaxed);
    if (!function) {
        function = dlsym(RTLD_NEXT, name);
        known.store(function, std::memory_order_relaxed);
    }
    return function;
}

#ifdef VELMORA_SANITIZED
void OnMalloc(const volatile void*, std::size_t)
{
    Note(g_memory);
}
void OnFree(const volatile void*)
{
    Note(g_memory);
}
#endif

} // namespace
} // namespace velmora::testing

// The interposed functions keep their given signatures.
#define INTERPOSED extern "C" __attribute__((visibility("default")))
#define NEXT(name)                                                                                                     \
    reinterpret_cast<decltype(&::name)>([] {                                                                           \
        static std::atomic<void*> known{nullptr};                                                                      \
        return Next(known, #name);                                                                                     \
    }())

using namespace velmora::testing;

#ifdef VELMORA_SANITIZED
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*)(const volatile void*, std::size_t),
                                                         void (*)(const volatile void*));
#else
extern "C" {
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void* __libc_memalign(std::size_t, std::size_t);
void __libc_free(void*);
}

INTERPOSED void* malloc(std::size_t size) noexcept
{
    Note(g_memory);
    return __libc_malloc(size);
}

INTERPOSED void* calloc(std::size_t count, std::size_t size) noexcept
{
    Note(g_memory);
    return __libc_calloc(count, size);
}

INTERPOSED void* realloc(void* block, std::size_t size) noexcept
{
    Note(g_memory);
    return __libc_realloc(block, size);
}

INTERPOSED void* memalign(std::size_t alignment, std::size_t size) noexcept
{
    Note(g_memory);
    return __libc_memalign(alignment, size);
}

INTERPOSED void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept
{
    Note(g_memory);
    return __libc_memalign(alignment, size);
}

INTERPOSED int posix_memalign(void** block, std::size_t alignment, std::size_t size) noexcept
{
    Note(g_memory);
    *block = __libc_memalign(alignment, size);
    return *block ? 0 : ENOMEM;
}

INTERPOSED void free(void* block) noexcept
{
    Note(g_memory);
    __libc_free(block);
}
#endif

INTERPOSED int pthread_mutex_lock(pthread_mutex_t* mutex) noexcept
{
    Note(g_waits);
    return NEXT(pthread_mutex_lock)(mutex);
}

INTERPOSED int nanosleep(const timespec* time, timespec* rest)
{
    Note(g_waits);
    return NEXT(nanosleep)(time, rest);
}

INTERPOSED int clock_nanosleep(clockid_t clock, int flags, const timespec* time, timespec* rest)
{
    Note(g_waits);
    return NEXT(clock_nanosleep)(clock, flags, time, rest);
}

INTERPOSED int open(const char* path, int flags, ...)
{
    Note(g_files);
    va_list rest;
    va_start(rest, flags);
    const auto mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(rest, unsigned) : 0U;
    va_end(rest);
    return NEXT(open)(path, flags, mode);
}

INTERPOSED ssize_t read(int file, void* buffer, std::size_t size)
{
    Note(g_files);
    return NEXT(read)(file, buffer, size);
}

INTERPOSED ssize_t pread(int file, void* buffer, std::size_t size, off_t at)
{
    Note(g_files);
    return NEXT(pread)(file, buffer, size, at);
}

INTERPOSED ssize_t write(int file, const void* buffer, std::size_t size)
{
    Note(g_files);
    return NEXT(write)(file, buffer, size);
}

INTERPOSED int fsync(int file)
{
    Note(g_files);
    return NEXT(fsync)(file);
}

namespace velmora::testing {

RealTimeGuard::RealTimeGuard()
{
#ifdef VELMORA_SANITIZED
    static const int installed = __sanitizer_install_malloc_and_free_hooks(&OnMalloc, &OnFree);
    static_cast<void>(installed);
#endif
    // The first call loads a library.
    g_stackDepth = backtrace(g_stack.data(), kDepth);
    g_stackDepth = 0;
    g_stackTaken = false;
    g_memory = 0;
    g_waits = 0;
    g_files = 0;
    g_watching.store(true, std::memory_order_release);
}

RealTimeGuard::~RealTimeGuard()
{
    g_watching = false;
}

RealTimeGuard::Breaches RealTimeGuard::Count() const
{
    return {g_memory, g_waits, g_files};
}

std::string RealTimeGuard::FirstBreach() const
{
    std::string calls;
    char** names = backtrace_symbols(g_stack.data(), g_stackDepth);
    for (int i = 0; names && i < g_stackDepth; ++i) {
        calls += names[i];
        calls += '\n';
    }
    std::free(names);
    return calls;
}

} // namespace velmora::testing
