// Conjugates of complex blocks, and the conjugate-symmetric extension that makes a
// whole spectrum of its first half.
//
// Signs turn as bits and all else is moved, so that zeros, infinities and payloads of
// NaNs come through; loads and stores are the limit.

#include <cstddef>

#include "frame/rvxcheck.h"
#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"
#include "rvx.h"

RVX_MODULE("rvxarith")

namespace {

RVX_INLINE ZCplx conjugated(ZCplx z)
{
    return {z.re, -z.im};
}

// dst[i] = conj(src[i]); dst may be src.
RVX_KERNEL void conjugateBlock(const ZCplx *src, ZCplx *dst, std::ptrdiff_t n)
{
    std::ptrdiff_t i = 0;
    if (n >= RVX_WORTH_ALIGNING && doublesBehindLanes(dst) == 2) {
        dst[0] = conjugated(src[0]);
        i = 1;
    }
    for (; n - i >= 4; i += 4) {
        const Lanes low = loadLanes(src + i);
        const Lanes high = loadLanes(src + i + 2);
        storeLanes(dst + i, conjugated(low));
        storeLanes(dst + i + 2, conjugated(high));
    }
    for (; i < n; ++i)
        dst[i] = conjugated(src[i]);
}

// dst[n - 1 - k] = conj(src[k]); the blocks are apart.
RVX_KERNEL void conjugateReversed(const ZCplx *src, ZCplx *dst, std::ptrdiff_t n)
{
    ZCplx *past = dst + n; // element k goes to past[-1 - k]
    std::ptrdiff_t k = 0;
    if (n >= RVX_WORTH_ALIGNING && doublesBehindLanes(past) == 2) {
        past[-1] = conjugated(src[0]);
        k = 1;
    }
    for (; n - k >= 4; k += 4) {
        const Lanes low = loadLanes(src + k);
        const Lanes high = loadLanes(src + k + 2);
        storeLanes(past - k - 2, conjugated(swapHalves(low)));
        storeLanes(past - k - 4, conjugated(swapHalves(high)));
    }
    for (; k < n; ++k)
        past[-1 - k] = conjugated(src[k]);
}

// dst[i] = src[i] and, behind past, past[-1 - i] = conj(src[i]): one pass over src.
// dst may be src.
RVX_KERNEL void copyAndMirror(const ZCplx *src, ZCplx *dst, ZCplx *past, std::ptrdiff_t n)
{
    std::ptrdiff_t i = 0;
    if (n >= RVX_WORTH_ALIGNING && doublesBehindLanes(past) == 2) {
        const ZCplx z = src[0];
        dst[0] = z;
        past[-1] = conjugated(z);
        i = 1;
    }
    for (; n - i >= 4; i += 4) {
        const Lanes low = loadLanes(src + i);
        const Lanes high = loadLanes(src + i + 2);
        storeLanes(dst + i, low);
        storeLanes(dst + i + 2, high);
        storeLanes(past - i - 2, conjugated(swapHalves(low)));
        storeLanes(past - i - 4, conjugated(swapHalves(high)));
    }
    for (; i < n; ++i) {
        const ZCplx z = src[i];
        dst[i] = z;
        past[-1 - i] = conjugated(z);
    }
}

// Where a block of 2 * n - 2 elements ends.
std::ptrdiff_t extendedLength(int n)
{
    return 2 * static_cast<std::ptrdiff_t>(n) - 2;
}

} // namespace

void rvxzbConj1(ZCplx *vec, int n)
{
    RVX_REJECT_IF(n <= 0, "n<=0");
    RVX_REJECT_IF(vec == nullptr, "vec==0");
    conjugateBlock(vec, vec, n);
}

void rvxzbConj2(const ZCplx *src, ZCplx *dst, int n)
{
    RVX_REJECT_IF(n <= 0, "n<=0");
    RVX_REJECT_IF(src == nullptr, "src==0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    conjugateBlock(src, dst, n);
}

void rvxzbConjFlip2(const ZCplx *src, ZCplx *dst, int n)
{
    RVX_REJECT_IF(n <= 0, "n<=0");
    RVX_REJECT_IF(src == nullptr, "src==0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    conjugateReversed(src, dst, n);
}

void rvxzbConjExtend1(ZCplx *vec, int n)
{
    RVX_REJECT_IF(n <= 0, "n<=0");
    RVX_REJECT_IF(vec == nullptr, "vec==0");
    if (n >= 3)
        conjugateReversed(vec + 1, vec + n, n - 2);
}

void rvxzbConjExtend2(const ZCplx *src, ZCplx *dst, int n)
{
    RVX_REJECT_IF(n <= 0, "n<=0");
    RVX_REJECT_IF(src == nullptr, "src==0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    dst[0] = src[0];
    dst[1] = src[1]; // deliberate: for n of 1 too
    dst[n - 1] = src[n - 1];
    if (n >= 3)
        copyAndMirror(src + 1, dst + 1, dst + extendedLength(n), n - 2);
}
