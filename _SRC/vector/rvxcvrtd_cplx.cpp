// Complex blocks taken apart and put together: real and imaginary parts, power,
// magnitude, phase, polar form.
//
// Parts are moved and powers formed four at a time, loads and stores being the limit;
// the polar forms have kernels of their own.

#include <cmath>
#include <cstddef>

#include "frame/rvxcheck.h"
#include "frame/rvxcplx.h"
#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"
#include "rvx.h"
#include "vector/rvxarith.h"
#include "vector/rvxcvrtd_polar.h"

RVX_MODULE("rvxcvrtd")

namespace {

struct RealPart {
    template <typename T>
    RVX_INLINE T operator()(T re, T) const
    {
        return re;
    }
};

struct ImagPart {
    template <typename T>
    RVX_INLINE T operator()(T, T im) const
    {
        return im;
    }
};

struct Power {
    template <typename T>
    RVX_INLINE T operator()(T re, T im) const
    {
        return im * im + re * re;
    }
};

// How many elements to do one by one so that the stores to dst are in step with lanes.
RVX_INLINE std::ptrdiff_t untilAligned(const double *dst, std::ptrdiff_t n)
{
    return n >= RVX_WORTH_ALIGNING ? (4 - doublesBehindLanes(dst)) % 4 : 0;
}

// dst[i] = op(src[i].re, src[i].im) from the first element up, each group read before
// it is written: dst may begin where src does.
template <typename Op>
RVX_INLINE void combineParts(const ZCplx *src, double *dst, std::ptrdiff_t n, Op op)
{
    std::ptrdiff_t i = 0;
    for (const std::ptrdiff_t past = untilAligned(dst, n); i < past; ++i)
        dst[i] = op(src[i].re, src[i].im);
    for (; n - i >= 8; i += 8) {
        const Quad low = loadInOrder(src + i);
        const Quad high = loadInOrder(src + i + 4);
        storeLanes(dst + i, op(low.re, low.im));
        storeLanes(dst + i + 4, op(high.re, high.im));
    }
    for (; i < n; ++i)
        dst[i] = op(src[i].re, src[i].im);
}

RVX_KERNEL void takeReal(const ZCplx *src, double *dst, std::ptrdiff_t n)
{
    combineParts(src, dst, n, RealPart{});
}

RVX_KERNEL void takeImag(const ZCplx *src, double *dst, std::ptrdiff_t n)
{
    combineParts(src, dst, n, ImagPart{});
}

RVX_KERNEL void formPower(const ZCplx *src, double *dst, std::ptrdiff_t n)
{
    combineParts(src, dst, n, Power{});
}

RVX_KERNEL void takeParts(const ZCplx *src, double *re, double *im, std::ptrdiff_t n)
{
    std::ptrdiff_t i = 0;
    for (; n - i >= 4; i += 4) {
        const Quad parts = loadInOrder(src + i);
        storeLanes(re + i, parts.re);
        storeLanes(im + i, parts.im);
    }
    for (; i < n; ++i) {
        re[i] = src[i].re;
        im[i] = src[i].im;
    }
}

// Sources of parts: a block has its elements, a missing one zeros.
struct PartBlock {
    const double *elements;
    RVX_INLINE double at(std::ptrdiff_t i) const { return elements[i]; }
    RVX_INLINE Lanes lanesAt(std::ptrdiff_t i) const { return loadLanes(elements + i); }
};

struct NoPart {
    RVX_INLINE double at(std::ptrdiff_t) const { return 0.0; }
    RVX_INLINE Lanes lanesAt(std::ptrdiff_t) const { return allLanes(0.0); }
};

template <typename Real, typename Imag>
RVX_INLINE void joinParts(Real re, Imag im, ZCplx *dst, std::ptrdiff_t n)
{
    std::ptrdiff_t i = 0;
    if (n >= RVX_WORTH_ALIGNING && doublesBehindLanes(dst) == 2) {
        dst[0] = {re.at(0), im.at(0)};
        i = 1;
    }
    for (; n - i >= 4; i += 4) {
        const Lanes reals = re.lanesAt(i);
        const Lanes imags = im.lanesAt(i);
        storeLanes(dst + i, interleaveLow(reals, imags));
        storeLanes(dst + i + 2, interleaveHigh(reals, imags));
    }
    for (; i < n; ++i)
        dst[i] = {re.at(i), im.at(i)};
}

RVX_KERNEL void joinBoth(const double *re, const double *im, ZCplx *dst, std::ptrdiff_t n)
{
    joinParts(PartBlock{re}, PartBlock{im}, dst, n);
}

RVX_KERNEL void joinReal(const double *re, ZCplx *dst, std::ptrdiff_t n)
{
    joinParts(PartBlock{re}, NoPart{}, dst, n);
}

RVX_KERNEL void joinImag(const double *im, ZCplx *dst, std::ptrdiff_t n)
{
    joinParts(NoPart{}, PartBlock{im}, dst, n);
}

// Magnitudes are made in runs of this length while more than one run is wanted.
constexpr int RVX_MAGNITUDE_RUN = 128;

struct Magnitude {
    RVX_INLINE Lanes operator()(Lanes re, Lanes im) const { return sqrtLanes(im * im + re * re); }
    RVX_INLINE double operator()(double re, double im) const
    {
        return __builtin_sqrt(im * im + re * re);
    }
};

RVX_KERNEL void formMagnitudes(const ZCplx *src, double *mag, std::ptrdiff_t n)
{
    combineParts(src, mag, n, Magnitude{});
}

// The powers of a run and their roots. False where a power is subnormal, infinite or
// NaN: then rvxdbSqrt2 has results of its own. Of two NaNs the power is that of im, and
// not the one that a compiler puts first: rvxdbSqrt2 reports by its sign.
RVX_KERNEL bool formRun(const ZCplx *src, double *power, double *mag)
{
    LaneMask ordinary = isEqual(allLanes(0.0), allLanes(0.0));
    for (int i = 0; i < RVX_MAGNITUDE_RUN; i += 4) {
        const Quad parts = loadInOrder(src + i);
        const Lanes square = parts.im * parts.im;
        const Lanes p = choose(isEqual(parts.im, parts.im), square + parts.re * parts.re, square);
        const Lanes smallest = choose(isEqual(p, allLanes(0.0)), p, allLanes(0x1p-1022));
        ordinary = ordinary & isAtMost(smallest, p) & isBelow(p, allLanes(HUGE_VAL));
        storeLanes(power + i, p);
        storeLanes(mag + i, sqrtLanes(p));
    }
    return everyLane(ordinary);
}

// mag[i] = |src[i]| for one run, as rvxzbPowerSpectr and then rvxdbSqrt2 would do.
void findRun(const ZCplx *src, double *mag)
{
    alignas(32) double power[RVX_MAGNITUDE_RUN];
    // The root leaves these two as they are if their powers have a sign.
    constexpr int last = RVX_MAGNITUDE_RUN - 1;
    const double before[] = {mag[last - 1], mag[last]};
    if (formRun(src, power, mag))
        return;
    mag[last - 1] = before[0];
    mag[last] = before[1];
    rvxdbSqrt2(power, mag, RVX_MAGNITUDE_RUN);
}

void findMagnitudes(const ZCplx *src, double *mag, int length)
{
    int i = 0;
    if (length > RVX_MAGNITUDE_RUN) {
        for (; length - i >= RVX_MAGNITUDE_RUN; i += RVX_MAGNITUDE_RUN)
            findRun(src + i, mag + i);
    }
    formMagnitudes(src + i, mag + i, length - i);
}

} // namespace

void rvxzbReal(const ZCplx *src, double *dst, int length)
{
    RVX_REJECT_IF(length <= 0, "length<=0");
    RVX_REJECT_IF(src == nullptr, "src==0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    takeReal(src, dst, length);
}

void rvxzbImag(const ZCplx *src, double *dst, int length)
{
    RVX_REJECT_IF(length <= 0, "length<=0");
    RVX_REJECT_IF(src == nullptr, "src==0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    takeImag(src, dst, length);
}

void rvxzbCplxTo2Real(const ZCplx *src, double *dstReal, double *dstImag, int length)
{
    RVX_REJECT_IF(length <= 0, "length<=0");
    RVX_REJECT_IF(src == nullptr, "src==0");
    RVX_REJECT_IF(dstReal == nullptr, "dstReal==0");
    RVX_REJECT_IF(dstImag == nullptr, "dstImag==0");
    takeParts(src, dstReal, dstImag, length);
}

void rvxzb2RealToCplx(const double *srcReal, const double *srcImag, ZCplx *dst, int length)
{
    RVX_REJECT_IF(length <= 0, "length<=0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    if (srcReal != nullptr && srcImag != nullptr)
        joinBoth(srcReal, srcImag, dst, length);
    else if (srcReal != nullptr)
        joinReal(srcReal, dst, length);
    else if (srcImag != nullptr)
        joinImag(srcImag, dst, length);
    else
        rvxzbZero(dst, length);
}

void rvxzbPowerSpectr(const ZCplx *src, double *spectr, int length)
{
    RVX_REJECT_IF(length <= 0, "length<=0");
    RVX_REJECT_IF(spectr == nullptr, "spectr==0"); // deliberate: the result before the source
    RVX_REJECT_IF(src == nullptr, "src==0");
    formPower(src, spectr, length);
}

void rvxzbCartToPolar(const ZCplx *src, double *mag, double *phase, int length)
{
    RVX_REJECT_IF(length <= 0, "length<=0");
    RVX_REJECT_IF(src == nullptr, "src==0");
    RVX_REJECT_IF(mag == nullptr, "mag==0");
    RVX_REJECT_IF(phase == nullptr, "phase==0");
    rvxSplitPolar(src, mag, phase, length);
}

void rvxzbPolarToCart(const double *mag, const double *phase, ZCplx *dst, int length)
{
    RVX_REJECT_IF(length <= 0, "length<=0");
    RVX_REJECT_IF(mag == nullptr, "mag==0");
    RVX_REJECT_IF(phase == nullptr, "phase==0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    rvxJoinPolar(mag, phase, dst, length);
}

// The next two, as the power: the result before the source.

void rvxzbMag(const ZCplx *src, double *mag, int length)
{
    RVX_REJECT_IF(length <= 0, "length<=0");
    RVX_REJECT_IF(mag == nullptr, "mag==0");
    RVX_REJECT_IF(src == nullptr, "src==0");
    findMagnitudes(src, mag, length);
}

void rvxzbPhase(const ZCplx *src, double *phase, int length)
{
    RVX_REJECT_IF(length <= 0, "length<=0");
    RVX_REJECT_IF(phase == nullptr, "phase==0");
    RVX_REJECT_IF(src == nullptr, "src==0");
    rvxFindPhases(src, phase, length);
}
