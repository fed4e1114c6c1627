// What the sums of FIR filters are made of: products added one by one, or four steps
// side by side, over the element types.

#ifndef RVXFIRH_SUMS_H
#define RVXFIRH_SUMS_H

#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"
#include "rvx.h"

template <typename Element>
constexpr int partsOf = sizeof(Element) / sizeof(double);

// The sums of four steps, and the taps that they share.
struct RealSums {
    Lanes re;
};

struct CplxSums {
    Lanes re, im;
};

RVX_INLINE RealSums startSums(const double *)
{
    return {allLanes(0.0)};
}

RVX_INLINE CplxSums startSums(const ZCplx *)
{
    return {allLanes(0.0), allLanes(0.0)};
}

RVX_INLINE RealSums broadcast(double tap)
{
    return {allLanes(tap)};
}

RVX_INLINE CplxSums broadcast(ZCplx tap)
{
    return {allLanes(tap.re), allLanes(tap.im)};
}

// Once, also where they are used twice: compilers would load them again, or keep
// them for later taps in registers that there are not.
RVX_INLINE RealSums loadSamples(const double *plane, int, const double *)
{
    return {loadLanesOnce(plane)};
}

RVX_INLINE CplxSums loadSamples(const double *plane, int stride, const ZCplx *)
{
    return {loadLanesOnce(plane), loadLanesOnce(plane + stride)};
}

// sum + tap * sample. A real factor works on each part by itself, so that a NaN or
// an infinity in one part stays there.
RVX_INLINE RealSums addProduct(RealSums sum, RealSums tap, RealSums sample)
{
    return {sum.re + tap.re * sample.re};
}

RVX_INLINE CplxSums addProduct(CplxSums sum, CplxSums tap, RealSums sample)
{
    return {sum.re + tap.re * sample.re, sum.im + tap.im * sample.re};
}

RVX_INLINE CplxSums addProduct(CplxSums sum, RealSums tap, CplxSums sample)
{
    return {sum.re + tap.re * sample.re, sum.im + tap.re * sample.im};
}

RVX_INLINE CplxSums addProduct(CplxSums sum, CplxSums tap, CplxSums sample)
{
    return {sum.re + (tap.re * sample.re - tap.im * sample.im),
            sum.im + (tap.re * sample.im + tap.im * sample.re)};
}

RVX_INLINE double addProduct(double sum, double tap, double sample)
{
    return sum + tap * sample;
}

RVX_INLINE ZCplx addProduct(ZCplx sum, ZCplx tap, double sample)
{
    return {sum.re + tap.re * sample, sum.im + tap.im * sample};
}

RVX_INLINE ZCplx addProduct(ZCplx sum, double tap, ZCplx sample)
{
    return {sum.re + tap * sample.re, sum.im + tap * sample.im};
}

RVX_INLINE ZCplx addProduct(ZCplx sum, ZCplx tap, ZCplx sample)
{
    return {sum.re + (tap.re * sample.re - tap.im * sample.im),
            sum.im + (tap.re * sample.im + tap.im * sample.re)};
}

RVX_INLINE void storeFour(RealSums sums, double *out)
{
    storeLanes(out, sums.re);
}

RVX_INLINE void storeFour(CplxSums sums, ZCplx *out)
{
    storeLanes(out, interleaveLow(sums.re, sums.im));
    storeLanes(out + 2, interleaveHigh(sums.re, sums.im));
}

RVX_INLINE RealSums loadFour(const double *out)
{
    return {loadLanes(out)};
}

RVX_INLINE CplxSums loadFour(const ZCplx *out)
{
    const Lanes low = loadLanes(out), high = loadLanes(out + 2);
    return {evenElements(low, high), oddElements(low, high)};
}

#endif
