#include "support/allocations.h"

#include <cerrno>
#include <cstddef>

namespace {

struct Watch {
    bool armed = false;
    bool sticky = false;
    long failAt = 0;
    long asked = 0;
    long failed = 0;
    long live = 0;
};

__thread Watch watch;

bool mustFail()
{
    if (!watch.armed)
        return false;
    ++watch.asked;
    const bool fail = watch.failAt > 0 &&
                      (watch.sticky ? watch.asked >= watch.failAt : watch.asked == watch.failAt);
    if (fail) {
        ++watch.failed;
        errno = ENOMEM;
    }
    return fail;
}

void *counted(void *block)
{
    if (watch.armed && block != nullptr)
        ++watch.live;
    return block;
}

void countRelease(void *block)
{
    if (watch.armed && block != nullptr)
        --watch.live;
}

} // namespace

AllocationWatch::AllocationWatch(long failAt)
{
    watch = Watch{};
    watch.failAt = failAt;
    watch.armed = true;
}

AllocationWatch::~AllocationWatch()
{
    watch.armed = false;
}

AllocationPause::AllocationPause() : armedBefore(watch.armed)
{
    watch.armed = false;
}

AllocationPause::~AllocationPause()
{
    watch.armed = armedBefore;
}

void AllocationWatch::failAllFrom(long k)
{
    watch.failAt = k;
    watch.sticky = true;
}

long AllocationWatch::allocations() const
{
    return watch.asked;
}

long AllocationWatch::failures() const
{
    return watch.failed;
}

long AllocationWatch::live() const
{
    return watch.live;
}

#ifdef RVX_TEST_SANITIZED
#define RVX_REAL(name) __real_##name
#define RVX_OURS(name) __wrap_##name
#else
#define RVX_REAL(name) __libc_##name
#define RVX_OURS(name) name
#endif

extern "C" {

#ifdef RVX_TEST_SANITIZED
// A request for more memory than there is gives null, as the system's malloc does.
const char *__asan_default_options()
{
    return "allocator_may_return_null=1";
}

const char *__tsan_default_options()
{
    return "allocator_may_return_null=1";
}
#endif

void *RVX_REAL(malloc)(std::size_t);
void *RVX_REAL(calloc)(std::size_t, std::size_t);
void *RVX_REAL(realloc)(void *, std::size_t);
void RVX_REAL(free)(void *);

void *RVX_OURS(malloc)(std::size_t bytes) noexcept
{
    return mustFail() ? nullptr : counted(RVX_REAL(malloc)(bytes));
}

void *RVX_OURS(calloc)(std::size_t n, std::size_t bytes) noexcept
{
    return mustFail() ? nullptr : counted(RVX_REAL(calloc)(n, bytes));
}

void *RVX_OURS(realloc)(void *block, std::size_t bytes) noexcept
{
    if (mustFail())
        return nullptr;
    if (block == nullptr)
        return counted(RVX_REAL(realloc)(block, bytes));
    return RVX_REAL(realloc)(block, bytes);
}

void RVX_OURS(free)(void *block) noexcept
{
    countRelease(block);
    RVX_REAL(free)(block);
}

#ifndef RVX_TEST_SANITIZED

void *__libc_memalign(std::size_t, std::size_t);

void *memalign(std::size_t alignment, std::size_t bytes) noexcept
{
    return mustFail() ? nullptr : counted(__libc_memalign(alignment, bytes));
}

void *aligned_alloc(std::size_t alignment, std::size_t bytes) noexcept
{
    return memalign(alignment, bytes);
}

int posix_memalign(void **block, std::size_t alignment, std::size_t bytes) noexcept
{
    *block = memalign(alignment, bytes);
    return *block != nullptr ? 0 : ENOMEM;
}

#endif

} // extern "C"
