// rvxsampl: zeros between samples, and every so-many-th sample.
//
// Each is one pass over memory. A sample and the zeros behind it leave in whole
// vectors, from the last sample to the first, so that samples may be spread where
// they stand.

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

RVX_INLINE Lanes zerosBehind(double sample)
{
    return lanesOf(sample, 0.0, 0.0, 0.0);
}

RVX_INLINE Lanes zerosBehind(ZCplx sample)
{
    return lanesOf(sample.re, sample.im, 0.0, 0.0);
}

// dst[0] = sample and n - 1 zeros behind it, for n of a vector at least. The last
// vector may lie over the one before it, but not over the sample.
template <typename Sample>
RVX_INLINE void putSpaced(Sample sample, Sample *dst, std::ptrdiff_t n)
{
    const std::ptrdiff_t width = laneCount(dst);
    storeLanes(dst, zerosBehind(sample));
    for (std::ptrdiff_t i = width; i < n - width; i += width)
        storeLanes(dst + i, allLanes(0.0));
    if (n > width)
        storeLanes(dst + n - width, allLanes(0.0));
}

template <typename Sample>
RVX_INLINE void putZeros(Sample *dst, std::ptrdiff_t n)
{
    for (std::ptrdiff_t i = 0; i < n; ++i)
        dst[i] = Sample{};
}

// dst[phase] = sample and zeros about it.
template <typename Sample>
RVX_INLINE void putBlock(Sample sample, Sample *dst, int factor, int phase)
{
    putZeros(dst, factor);
    dst[phase] = sample;
}

// The short factors: four samples at a time, whole vectors at multiples of vectors
// from dst on where that can be. Takes samples below k and gives how many are left.
RVX_INLINE std::ptrdiff_t putByFours(const double *src, std::ptrdiff_t k, double *dst, int factor,
                                     int phase)
{
    const LaneMask kept = {(RvxBits{0, 1, 2, 3} & (factor - 1)) == RvxBits{} + phase};
    if (factor == 2) {
        for (; k % 4 != 0; --k)
            putBlock(src[k - 1], dst + 2 * (k - 1), factor, phase);
        for (; k > 0; k -= 4) {
            const Lanes x = loadLanes(src + k - 4);
            storeLanes(dst + 2 * k - 4, onlyWhere(kept, highTwice(x)));
            storeLanes(dst + 2 * k - 8, onlyWhere(kept, lowTwice(x)));
        }
    } else if (factor == 3) {
        dst += phase;
        for (; k >= 4; k -= 4) {
            const Lanes x = loadLanes(src + k - 4);
            storeLanes(dst + 3 * k - 4, lanesOf(0.0, x.v[3], 0.0, 0.0));
            storeLanes(dst + 3 * k - 8, lanesOf(0.0, 0.0, x.v[2], 0.0));
            storeLanes(dst + 3 * k - 12, lanesOf(x.v[0], 0.0, 0.0, x.v[1]));
        }
    } else if (factor == 4) {
        for (; k > 0; --k)
            storeLanes(dst + 4 * (k - 1), onlyWhere(kept, allLanes(src[k - 1])));
    }
    return k;
}

RVX_INLINE std::ptrdiff_t putByFours(const ZCplx *, std::ptrdiff_t k, ZCplx *, int, int)
{
    return k;
}

// dst[k * factor + phase] = src[k] and zeros elsewhere. Sample k is read before
// anything from place k on is written.
template <typename Sample>
RVX_INLINE void spread(const Sample *src, std::ptrdiff_t n, Sample *dst, int factor, int phase)
{
    // The last sample has fewer than factor places from its own on.
    putBlock(src[n - 1], dst + (n - 1) * factor, factor, phase);
    std::ptrdiff_t k = putByFours(src, n - 1, dst, factor, phase);
    if (factor >= laneCount(dst)) {
        for (; k > 0; --k)
            putSpaced(src[k - 1], dst + (k - 1) * factor + phase, factor);
    } else {
        for (; k > 0; --k)
            putBlock(src[k - 1], dst + (k - 1) * factor + phase, factor, 0);
    }
    putZeros(dst, phase);
}

RVX_INLINE Lanes gathered(const double *src, std::ptrdiff_t factor)
{
    return lanesOf(src[0], src[factor], src[2 * factor], src[3 * factor]);
}

RVX_INLINE Lanes gathered(const ZCplx *src, std::ptrdiff_t factor)
{
    return pairLanes(src[0], src[factor]);
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

// Half of the samples, which come with the other half anyway.
RVX_INLINE void keepEveryOther(const double *src, double *dst, std::ptrdiff_t n)
{
    std::ptrdiff_t i = 0;
    for (; i < n - 4; i += 4)
        storeLanes(dst + i, evenElements(loadLanes(src + 2 * i), loadLanes(src + 2 * i + 4)));
    for (; i < n; ++i)
        dst[i] = src[2 * i];
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

} // namespace

// A phase that is too large deliberately has the factor's message.

void rvxdUpSample(const double *src, int srcLen, double *dst, int *dstLen, int factor, int *phase)
{
    RVX_REJECT_IF(srcLen < 1, "Invalid src array length");
    RVX_REJECT_IF(src == nullptr || dst == nullptr, "Null buffer pointer");
    RVX_REJECT_IF(dstLen == nullptr, "Null dstLen pointer");
    RVX_REJECT_IF(phase == nullptr, "Null phase pointer");
    RVX_REJECT_IF(factor < 1, "Invalid factor value");
    RVX_REJECT_IF(*phase < 0, "Invalid phase value");
    RVX_REJECT_IF(factor <= *phase, "Invalid factor value");
    RVX_REJECT_IF(exceedsInt(srcLen, factor), "Invalid src array length");
    *dstLen = srcLen * factor;
    if (factor == 1)
        copyUnlessSame(src, dst, srcLen);
    else
        spreadReal(src, srcLen, dst, factor, *phase);
}

void rvxzUpSample(const ZCplx *src, int srcLen, ZCplx *dst, int *dstLen, int factor, int *phase)
{
    RVX_REJECT_IF(srcLen < 1, "Invalid src array length");
    RVX_REJECT_IF(src == nullptr || dst == nullptr, "Null buffer pointer");
    RVX_REJECT_IF(dstLen == nullptr, "Null dstLen pointer");
    RVX_REJECT_IF(phase == nullptr, "Null phase pointer");
    RVX_REJECT_IF(factor < 1, "Invalid factor value");
    RVX_REJECT_IF(*phase < 0, "Invalid phase value");
    RVX_REJECT_IF(factor <= *phase, "Invalid factor value");
    RVX_REJECT_IF(exceedsInt(srcLen, factor), "Invalid src array length");
    *dstLen = srcLen * factor;
    if (factor == 1)
        copyUnlessSame(src, dst, srcLen);
    else
        spreadCplx(src, srcLen, dst, factor, *phase);
}

void rvxdDownSample(const double *src, int srcLen, double *dst, int *dstLen, int factor, int *phase)
{
    RVX_REJECT_IF(srcLen < 1, "Invalid src array length");
    RVX_REJECT_IF(src == nullptr || dst == nullptr, "Null buffer pointer");
    RVX_REJECT_IF(dstLen == nullptr, "Null dstLen pointer");
    RVX_REJECT_IF(phase == nullptr, "Null phase pointer");
    RVX_REJECT_IF(factor < 1, "Invalid factor value");
    RVX_REJECT_IF(*phase < 0, "Invalid phase value");
    RVX_REJECT_IF(factor <= *phase, "Invalid factor value");
    const int kept = keptCount(srcLen, factor, *phase);
    if (factor == 1)
        copyUnlessSame(src, dst, srcLen);
    else
        keepReal(src, dst, kept, factor, *phase);
    *phase = phaseBehind(srcLen, factor, *phase, kept);
    *dstLen = kept;
}

void rvxzDownSample(const ZCplx *src, int srcLen, ZCplx *dst, int *dstLen, int factor, int *phase)
{
    RVX_REJECT_IF(srcLen < 1, "Invalid src array length");
    RVX_REJECT_IF(src == nullptr || dst == nullptr, "Null buffer pointer");
    RVX_REJECT_IF(dstLen == nullptr, "Null dstLen pointer");
    RVX_REJECT_IF(phase == nullptr, "Null phase pointer");
    RVX_REJECT_IF(factor < 1, "Invalid factor value");
    RVX_REJECT_IF(*phase < 0, "Invalid phase value");
    RVX_REJECT_IF(factor <= *phase, "Invalid factor value");
    const int kept = keptCount(srcLen, factor, *phase);
    if (factor == 1)
        copyUnlessSame(src, dst, srcLen);
    else
        keepCplx(src, dst, kept, factor, *phase);
    *phase = phaseBehind(srcLen, factor, *phase, kept);
    *dstLen = kept;
}
