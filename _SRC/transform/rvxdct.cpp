// rvxdct: the orthonormal cosine transform of any length, type II forward and type III
// inverse.
//
// Powers of two are halved down to 8 by sums and differences, the differences times
// secants (B. G. Lee, A new algorithm to compute the discrete cosine transform, 1984);
// other lengths are sums over one period of the cosine. This file has the front and the
// two caches of tables, which belong to the thread.

#include "rvx.h"

#include <cmath>
#include <cstdint>
#include <cstring>

#include "frame/rvxbuffer.h"
#include "frame/rvxcheck.h"
#include "frame/rvxkernel.h"
#include "frame/rvxthread.h"
#include "transform/rvxdct.h"

RVX_MODULE("rvxdct")

namespace {

constexpr double RVX_PI = 3.141592653589793;
constexpr int RVX_BOTH_DIRECTIONS = RVX_FFT_FORWARD | RVX_FFT_INVERSE;

bool isPowerOfTwo(int n)
{
    return (n & (n - 1)) == 0;
}

double oneOverRoot(int n)
{
    return 1.0 / std::sqrt(static_cast<double>(n));
}

void dropCosines(rvxThreadContext *thread)
{
    if (thread->dctCosTable == nullptr)
        return;
    rvxDropBuffer(thread->dctCosTable);
    thread->dctCosLen = 0;
}

void freeStages(double **tables, int count)
{
    for (int i = 0; i < count; ++i)
        rvxFreeAligned(tables[i]);
    rvxFreeAligned(tables);
}

void dropStages(rvxThreadContext *thread)
{
    if (thread->dctStageTables == nullptr)
        return;
    freeStages(thread->dctStageTables, thread->dctStageCount);
    thread->dctStageTables = nullptr;
    thread->dctStageCount = 0;
}

// The step is rounded to double, as it is in the tables' definition; the product and the
// cosine are not.
Extended cosineOfSteps(std::int64_t i, double step)
{
    return std::cos(static_cast<Extended>(i) * static_cast<Extended>(step));
}

// The cosines of length L, of which the thread keeps one set. False without memory.
bool needCosines(rvxThreadContext *thread, int L)
{
    const std::int64_t count = 4 * static_cast<std::int64_t>(L);
    if (thread->dctCosLen == count)
        return true;
    dropCosines(thread);
    // More than can be counted is more memory than there is.
    const std::int64_t whole = rvxDctCosinesLen(L);
    double *table = count > INT32_MAX || whole > UINT32_MAX
                        ? nullptr
                        : rvxAllocDoubles(static_cast<std::uint32_t>(whole));
    if (table == nullptr)
        return false;
    const double step = RVX_PI / static_cast<double>(2 * static_cast<std::int64_t>(L));
    for (std::int64_t i = 0; i < count; ++i)
        table[i] = static_cast<double>(cosineOfSteps(i, step));
    rvxDctSpreadCosines(table, L);
    thread->dctScale = oneOverRoot(L);
    thread->dctCosTable = table;
    thread->dctCosLen = static_cast<std::int32_t>(count);
    return true;
}

double *buildSecants(int m)
{
    double *table = rvxAllocDoubles(static_cast<std::uint32_t>(m));
    if (table == nullptr)
        return nullptr;
    const double step = RVX_PI / static_cast<double>(4 * static_cast<std::int64_t>(m));
    for (std::int64_t n = 0; n < m; ++n)
        table[n] = static_cast<double>(0.5L / cosineOfSteps(2 * n + 1, step));
    return table;
}

// All or none.
double **buildStages(int count)
{
    auto **tables = reinterpret_cast<double **>(
        rvxAllocBytes(static_cast<std::uint32_t>(count) * sizeof(double *)));
    if (tables == nullptr)
        return nullptr;
    for (int i = 0; i < count; ++i) {
        tables[i] = buildSecants(RVX_DCT_KERNEL_LEN << i);
        if (tables[i] == nullptr) {
            freeStages(tables, i);
            return nullptr;
        }
    }
    return tables;
}

// The secants for all halvings from L to 8, of which the thread keeps one set. A length
// of 8 keeps a set of none; below there is nothing to keep. False without memory.
bool needStages(rvxThreadContext *thread, int L)
{
    if (L < RVX_DCT_KERNEL_LEN)
        return true;
    const int count = __builtin_ctz(static_cast<unsigned>(L)) - 3;
    if (thread->dctStageCount == count)
        return true;
    dropStages(thread);
    double **tables = buildStages(count);
    if (tables == nullptr)
        return false;
    thread->dctStageScale = oneOverRoot(L);
    thread->dctStageTables = tables;
    thread->dctStageCount = count;
    return true;
}

// False without memory for the tables; nothing is written then.
bool transformFast(const double *src, double *copy, double *dst, int L, bool forward)
{
    rvxThreadContext *thread = rvxGetThreadContext();
    if (!needStages(thread, L))
        return false;
    const RvxDctStages stages{thread->dctStageTables, thread->dctStageScale};
    if (forward)
        rvxDctFastForward(src, copy, dst, L, stages);
    else
        rvxDctFastInverse(src, copy, dst, L, stages);
    return true;
}

bool transformDirect(const double *src, double *copy, double *dst, int L, bool forward)
{
    rvxThreadContext *thread = rvxGetThreadContext();
    if (!needCosines(thread, L))
        return false;
    std::memcpy(copy, src, sizeof(double) * static_cast<std::size_t>(L));
    const RvxDctCosines cosines{thread->dctCosTable, thread->dctScale};
    if (forward)
        rvxDctDirectForward(copy, dst, L, cosines);
    else
        rvxDctDirectInverse(copy, dst, L, cosines);
    return true;
}

void releaseTables()
{
    rvxThreadContext *thread = rvxGetThreadContext();
    dropCosines(thread);
    dropStages(thread);
}

} // namespace

void rvxdDct(const double *src, double *dst, int len, int flags)
{
    if (flags == RVX_FFT_FREE_TABLES)
        return releaseTables();
    RVX_REJECT_IF(src == nullptr || dst == nullptr, "\nNull pointer to data buffer\n");
    RVX_REJECT_IF(len < 1, "\nBad value of data buffer size\n");
    const int directions = flags & RVX_BOTH_DIRECTIONS;
    RVX_REJECT_IF(directions == 0 || directions == RVX_BOTH_DIRECTIONS,
                  "\nBad value of the transform flag\n");

    const bool forward = directions == RVX_FFT_FORWARD;
    double *copy = rvxAllocDoubles(static_cast<std::uint32_t>(len));
    bool done = copy != nullptr;
    if (done && isPowerOfTwo(len) && len > 1)
        done = transformFast(src, copy, dst, len, forward);
    else if (done)
        done = transformDirect(src, copy, dst, len, forward);
    rvxFreeAligned(copy);
    if (!done)
        RVX_REPORT(RVX_STATUS_NO_MEMORY, "\nMemory allocation problem\n");
}
