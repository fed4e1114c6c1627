// rvxsampl: zeros between samples, and every so-many-th sample.
//
// Each is one pass over memory. Samples and the zeros between them leave in whole
// vectors that begin where vectors begin in memory, from the last to the first, so
// that samples may be spread where they stand.

#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "frame/rvxcheck.h"
#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"
#include "rvx.h"

RVX_MODULE("rvxsampl")

namespace {

constexpr std::ptrdiff_t laneCount(const double *)
{
    return 4;
}

constexpr std::ptrdiff_t laneCount(const ZCplx *)
{
    return 2;
}

// How far at is behind a place where a vector begins in memory.
template <typename Sample>
RVX_INLINE std::ptrdiff_t placeInVector(const Sample *at)
{
    const auto place = reinterpret_cast<std::uintptr_t>(at) / sizeof(Sample);
    return static_cast<std::ptrdiff_t>(place) & (laneCount(at) - 1);
}

// The lanes of sample q of a vector.
RVX_INLINE LaneMask lanesOfSample(const double *, std::ptrdiff_t q)
{
    return {RvxBits{0, 1, 2, 3} == RvxBits{} + q};
}

RVX_INLINE LaneMask lanesOfSample(const ZCplx *, std::ptrdiff_t q)
{
    return {RvxBits{0, 0, 1, 1} == RvxBits{} + q};
}

template <typename Sample>
RVX_INLINE void putZeros(Sample *dst, std::ptrdiff_t n)
{
    const std::ptrdiff_t width = laneCount(dst);
    std::ptrdiff_t i = 0;
    for (; i <= n - width; i += width)
        storeLanes(dst + i, allLanes(0.0));
    for (; i < n; ++i)
        dst[i] = Sample{};
}

// Samples from to to - 1, a vector of them at most, among zeros from place begin to
// place end - 1. All are read before anything is written.
template <typename Sample>
RVX_INLINE void putFew(const Sample *src, std::ptrdiff_t from, std::ptrdiff_t to, Sample *dst,
                       std::ptrdiff_t begin, std::ptrdiff_t end, std::ptrdiff_t factor,
                       std::ptrdiff_t phase)
{
    Sample few[4] = {};
    for (std::ptrdiff_t k = from; k < to; ++k)
        few[k - from] = src[k];
    putZeros(dst + begin, end - begin);
    for (std::ptrdiff_t k = from; k < to; ++k)
        dst[k * factor + phase] = few[k - from];
}

// Sample s of a group, where it stands in its vector.
template <int s, typename Sample>
RVX_INLINE Lanes loneSample(const Sample *src, std::ptrdiff_t factor, std::ptrdiff_t q)
{
    const std::ptrdiff_t width = laneCount(src);
    if (s >= width)
        return allLanes(0.0);
    return onlyWhere(lanesOfSample(src, (s * factor) % width + q), allLanes(src[s]));
}

// The vector of sample s of a group and those up to that of the next one.
template <typename Sample>
RVX_INLINE void putRun(Lanes x, Sample *dst, std::ptrdiff_t s, std::ptrdiff_t factor)
{
    const std::ptrdiff_t width = laneCount(dst);
    const std::ptrdiff_t at = s * factor / width;
    const std::ptrdiff_t next = (s + 1) * factor / width;
    for (std::ptrdiff_t v = next - 1; v > at; --v)
        storeLanes(dst + v * width, allLanes(0.0));
    storeLanes(dst + at * width, x);
}

// As many samples as a vector has, in as many vectors as the factor says: the first
// sample stands at place q of the first vector, which is below what the factor and
// the width of a vector have in common. So each sample is in the same vector for
// every q, and, from factors of a vector's width on, alone in it.
template <typename Sample>
RVX_INLINE void putVectors(const Sample *src, Sample *dst, std::ptrdiff_t factor, std::ptrdiff_t q)
{
    const Lanes x0 = loneSample<0>(src, factor, q), x1 = loneSample<1>(src, factor, q);
    if (laneCount(dst) == 4) {
        const Lanes x2 = loneSample<2>(src, factor, q), x3 = loneSample<3>(src, factor, q);
        putRun(x3, dst, 3, factor);
        putRun(x2, dst, 2, factor);
        putRun(x1, dst, 1, factor);
    } else {
        putRun(x1, dst, 1, factor);
    }
    putRun(x0, dst, 0, factor);
}

// The same for the factors by which samples share a vector.
RVX_INLINE void putVectorsByTwo(const double *src, double *dst, std::ptrdiff_t q)
{
    const Lanes x = loadLanes(src);
    const LaneMask kept = lanesOfSample(src, q) | lanesOfSample(src, q + 2);
    storeLanes(dst, onlyWhere(kept, lowTwice(x)));
    storeLanes(dst + 4, onlyWhere(kept, highTwice(x)));
}

RVX_INLINE void putVectorsByThree(const double *src, double *dst)
{
    const Lanes x = loadLanes(src);
    const Lanes third = allLanes(src[2]), fourth = allLanes(src[3]);
    storeLanes(dst, onlyWhere(lanesOfSample(src, 0) | lanesOfSample(src, 3), lowTwice(x)));
    storeLanes(dst + 4, onlyWhere(lanesOfSample(src, 2), third));
    storeLanes(dst + 8, onlyWhere(lanesOfSample(src, 1), fourth));
}

template <int fixedFactor>
RVX_INLINE void putVectorsBy(const double *src, double *dst, std::ptrdiff_t factor,
                             std::ptrdiff_t q)
{
    if (fixedFactor == 2)
        putVectorsByTwo(src, dst, q);
    else if (fixedFactor == 3)
        putVectorsByThree(src, dst);
    else
        putVectors(src, dst, factor, q);
}

template <int fixedFactor>
RVX_INLINE void putVectorsBy(const ZCplx *src, ZCplx *dst, std::ptrdiff_t factor, std::ptrdiff_t q)
{
    putVectors(src, dst, factor, q);
}

// dst[k * factor + phase] = src[k] and zeros elsewhere. Sample k is read before
// anything from place k on is written. A fixed factor of 0 stands for any.
template <int fixedFactor, typename Sample>
RVX_INLINE void spreadBy(const Sample *src, std::ptrdiff_t n, Sample *dst, std::ptrdiff_t anyFactor,
                         std::ptrdiff_t phase)
{
    const std::ptrdiff_t width = laneCount(dst);
    const std::ptrdiff_t factor = fixedFactor != 0 ? fixedFactor : anyFactor;
    const std::ptrdiff_t common = factor % 2 != 0 ? 1 : factor % width != 0 ? 2 : width;
    // The last sample that can be the first of its vectors, and place q of these.
    std::ptrdiff_t k = n - 1;
    std::ptrdiff_t q = placeInVector(dst + k * factor + phase);
    for (; q >= common && k > 0; --k)
        q = placeInVector(dst + (k - 1) * factor + phase);
    if (q >= common)
        k = 0;
    std::ptrdiff_t begin = k == 0 ? 0 : k * factor + phase - q; // where its vectors begin
    putFew(src, k, n, dst, begin, n * factor, factor, phase);
    for (; k >= width && begin >= width * factor; k -= width) {
        begin -= width * factor;
        putVectorsBy<fixedFactor>(src + k - width, dst + begin, factor, q);
    }
    putFew(src, 0, k, dst, 0, begin, factor, phase);
}

// Factors that are known when compiled have no inner loops.
template <typename Sample>
RVX_INLINE void spread(const Sample *src, int n, Sample *dst, int factor, int phase)
{
    switch (factor) {
    case 2:
        return spreadBy<2>(src, n, dst, factor, phase);
    case 3:
        return spreadBy<3>(src, n, dst, factor, phase);
    case 4:
        return spreadBy<4>(src, n, dst, factor, phase);
    case 5:
        return spreadBy<5>(src, n, dst, factor, phase);
    case 6:
        return spreadBy<6>(src, n, dst, factor, phase);
    case 7:
        return spreadBy<7>(src, n, dst, factor, phase);
    case 8:
        return spreadBy<8>(src, n, dst, factor, phase);
    default:
        return spreadBy<0>(src, n, dst, factor, phase);
    }
}

RVX_INLINE Lanes gathered(const double *src, std::ptrdiff_t factor)
{
    return lanesOf(src[0], src[factor], src[2 * factor], src[3 * factor]);
}

RVX_INLINE Lanes gathered(const ZCplx *src, std::ptrdiff_t factor)
{
    return pairLoads(src, src + factor);
}

// dst[i] = src[i * factor], n of them. Reading stays ahead of writing.
template <typename Sample>
RVX_INLINE void keep(const Sample *src, Sample *dst, std::ptrdiff_t n, std::ptrdiff_t factor)
{
    const std::ptrdiff_t width = laneCount(dst);
    std::ptrdiff_t i = 0;
    for (; i <= n - width; i += width)
        storeLanes(dst + i, gathered(src + i * factor, factor));
    for (; i < n; ++i)
        dst[i] = src[i * factor];
}

// x[0], x[2], x[4] and x[6], or those behind them.
template <bool odd>
RVX_INLINE Lanes everyOther(const double *x)
{
    const Lanes low = loadLanes(x), high = loadLanes(x + 4);
    return odd ? oddElements(low, high) : evenElements(low, high);
}

// Half of the samples. Whole vectors are read, from where vectors begin in memory:
// the samples kept are the even ones of these or the odd ones, and nothing behind
// the last one is read.
template <bool odd>
RVX_INLINE void keepHalf(const double *src, double *dst, std::ptrdiff_t n)
{
    std::ptrdiff_t i = 0;
    for (; i < n && (i == 0 || placeInVector(src + 2 * i) > 1); ++i)
        dst[i] = src[2 * i];
    const double *x = odd ? src - 1 : src;
    for (; i < n - 8; i += 8) {
        const Lanes a = everyOther<odd>(x + 2 * i), b = everyOther<odd>(x + 2 * i + 8);
        storeLanes(dst + i, a);
        storeLanes(dst + i + 4, b);
    }
    for (; i < n; ++i)
        dst[i] = src[2 * i];
}

RVX_INLINE void keepEveryOther(const double *src, double *dst, std::ptrdiff_t n)
{
    if (placeInVector(src) % 2 == 0)
        keepHalf<false>(src, dst, n);
    else
        keepHalf<true>(src, dst, n);
}

RVX_KERNEL void spreadReal(const double *src, int n, double *dst, int factor, int phase)
{
    spread(src, n, dst, factor, phase);
}

RVX_KERNEL void spreadCplx(const ZCplx *src, int n, ZCplx *dst, int factor, int phase)
{
    spread(src, n, dst, factor, phase);
}

// The place of the first sample is none where nothing is kept.

RVX_KERNEL void keepReal(const double *src, double *dst, int n, int factor, int phase)
{
    if (n > 0 && factor == 2)
        keepEveryOther(src + phase, dst, n);
    else if (n > 0)
        keep(src + phase, dst, n, factor);
}

RVX_KERNEL void keepCplx(const ZCplx *src, ZCplx *dst, int n, int factor, int phase)
{
    if (n > 0)
        keep(src + phase, dst, n, factor);
}

template <typename Sample>
void copyUnlessSame(const Sample *src, Sample *dst, int n)
{
    if (src != dst)
        std::memmove(dst, src, static_cast<std::size_t>(n) * sizeof(Sample));
}

// How many samples phase, phase + factor, ... stand below srcLen.
int keptCount(int srcLen, int factor, int phase)
{
    return phase < srcLen ? (srcLen - 1 - phase) / factor + 1 : 0;
}

int phaseBehind(int srcLen, int factor, int phase, int kept)
{
    return static_cast<int>(phase + std::int64_t{kept} * factor - srcLen);
}

bool exceedsInt(int srcLen, int factor)
{
    return std::int64_t{srcLen} * factor > INT_MAX;
}

// A phase that is too large deliberately has the factor's message.
bool accepts(const char *func, const void *src, int srcLen, const void *dst, const int *dstLen,
             int factor, const int *phase)
{
    RVX_REJECT_AS(func, srcLen < 1, "Invalid src array length", false);
    RVX_REJECT_AS(func, src == nullptr || dst == nullptr, "Null buffer pointer", false);
    RVX_REJECT_AS(func, dstLen == nullptr, "Null dstLen pointer", false);
    RVX_REJECT_AS(func, phase == nullptr, "Null phase pointer", false);
    RVX_REJECT_AS(func, factor < 1, "Invalid factor value", false);
    RVX_REJECT_AS(func, *phase < 0, "Invalid phase value", false);
    RVX_REJECT_AS(func, factor <= *phase, "Invalid factor value", false);
    return true;
}

template <auto kernel, typename Sample>
void upSample(const char *func, const Sample *src, int srcLen, Sample *dst, int *dstLen, int factor,
              const int *phase)
{
    if (!accepts(func, src, srcLen, dst, dstLen, factor, phase))
        return;
    RVX_REJECT_AS(func, exceedsInt(srcLen, factor), "Invalid src array length");
    *dstLen = srcLen * factor;
    if (factor == 1)
        copyUnlessSame(src, dst, srcLen);
    else
        kernel(src, srcLen, dst, factor, *phase);
}

template <auto kernel, typename Sample>
void downSample(const char *func, const Sample *src, int srcLen, Sample *dst, int *dstLen,
                int factor, int *phase)
{
    if (!accepts(func, src, srcLen, dst, dstLen, factor, phase))
        return;
    const int kept = keptCount(srcLen, factor, *phase);
    if (factor == 1)
        copyUnlessSame(src, dst, srcLen);
    else
        kernel(src, dst, kept, factor, *phase);
    *phase = phaseBehind(srcLen, factor, *phase, kept);
    *dstLen = kept;
}

} // namespace

void rvxdUpSample(const double *src, int srcLen, double *dst, int *dstLen, int factor, int *phase)
{
    upSample<spreadReal>(__func__, src, srcLen, dst, dstLen, factor, phase);
}

void rvxzUpSample(const ZCplx *src, int srcLen, ZCplx *dst, int *dstLen, int factor, int *phase)
{
    upSample<spreadCplx>(__func__, src, srcLen, dst, dstLen, factor, phase);
}

void rvxdDownSample(const double *src, int srcLen, double *dst, int *dstLen, int factor, int *phase)
{
    downSample<keepReal>(__func__, src, srcLen, dst, dstLen, factor, phase);
}

void rvxzDownSample(const ZCplx *src, int srcLen, ZCplx *dst, int *dstLen, int factor, int *phase)
{
    downSample<keepCplx>(__func__, src, srcLen, dst, dstLen, factor, phase);
}
