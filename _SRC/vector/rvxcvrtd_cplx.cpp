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
#include "vector/rvxwalk.h"

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

// Brought in order behind the operation: two loads of pairs cost less than four.
template <typename Op>
RVX_INLINE Lanes combineFour(const ZCplx *src, Op op)
{
    const Quad parts = loadFour(src);
    return swapMiddle(op(parts.re, parts.im));
}

// dst[i] = op(src[i].re, src[i].im) from the first element up, each group read before
// it is written: dst may begin where src does. Both ends are read first and stored last;
// what lies between overlaps them, so that its stores are in step with the lanes.
template <typename Op>
RVX_INLINE void combineParts(const ZCplx *src, double *dst, std::ptrdiff_t n, Op op)
{
    if (n < 4) {
        for (std::ptrdiff_t i = 0; i < n; ++i)
            dst[i] = op(src[i].re, src[i].im);
        return;
    }
    const Lanes first = combineFour(src, op), last = combineFour(src + n - 4, op);
    std::ptrdiff_t i = 4 - doublesBehindLanes(dst);
    for (; n - i >= 8; i += 8) {
        const Lanes low = combineFour(src + i, op), high = combineFour(src + i + 4, op);
        storeLanes(dst + i, low);
        storeLanes(dst + i + 4, high);
    }
    for (; n - i > 4; i += 4)
        storeLanes(dst + i, combineFour(src + i, op));
    storeLanes(dst, first);
    storeLanes(dst + n - 4, last);
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

RVX_INLINE void storeParts(double *re, double *im, Quad parts)
{
    storeLanes(re, swapMiddle(parts.re));
    storeLanes(im, swapMiddle(parts.im));
}

// In step with re; both ends as above.
RVX_KERNEL void takeParts(const ZCplx *src, double *re, double *im, std::ptrdiff_t n)
{
    if (n < 4) {
        for (std::ptrdiff_t i = 0; i < n; ++i) {
            const ZCplx z = src[i];
            re[i] = z.re;
            im[i] = z.im;
        }
        return;
    }
    const Quad first = loadFour(src), last = loadFour(src + n - 4);
    for (std::ptrdiff_t i = 4 - doublesBehindLanes(re); n - i > 4; i += 4)
        storeParts(re + i, im + i, loadFour(src + i));
    storeParts(re, im, first);
    storeParts(re + n - 4, im + n - 4, last);
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

// Of two NaNs the power is that of im, and not the one that a compiler puts first:
// rvxdbSqrt2 reports by its sign.
RVX_INLINE Lanes powerByImag(Quad z)
{
    const Lanes square = z.im * z.im;
    return choose(isEqual(z.im, z.im), square + z.re * z.re, square);
}

// The powers of a run and their roots. False where a power is subnormal, infinite or
// NaN: then rvxdbSqrt2 has results of its own. Sixteen that are ordinary and no zeros
// are told by one test.
RVX_KERNEL bool formRun(const ZCplx *src, double *power, double *mag)
{
    const Lanes smallest = allLanes(0x1p-1022), none = allLanes(HUGE_VAL);
    LaneMask failed = {};
    for (int i = 0; i < RVX_MAGNITUDE_RUN; i += 16) {
        Quad parts[4];
        Lanes p[4];
        LaneMask normal = isEqual(none, none);
        for (int j = 0; j < 4; ++j) {
            parts[j] = loadFour(src + i + 4 * j);
            p[j] = parts[j].im * parts[j].im + parts[j].re * parts[j].re;
            normal = normal & isAtMost(smallest, p[j]) & isBelow(p[j], none);
        }
        if (!everyLane(normal))
            for (int j = 0; j < 4; ++j) {
                p[j] = powerByImag(parts[j]);
                const LaneMask isZero = isEqual(p[j], allLanes(0.0));
                const LaneMask isUsual = isAtMost(smallest, p[j]) & isBelow(p[j], none);
                failed = failed | ~(isZero | isUsual);
            }
        for (int j = 0; j < 4; ++j) {
            const Lanes inOrder = swapMiddle(p[j]);
            storeLanes(power + i + 4 * j, inOrder);
            storeLanes(mag + i + 4 * j, sqrtLanes(inOrder));
        }
    }
    return !anyLane(failed);
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
