// The sums of four steps of an FIR filter side by side, over the element types.

#ifndef RVXFIRH_SUMS_H
#define RVXFIRH_SUMS_H

#include "frame/rvxcplx.h"
#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"
#include "rvx.h"

template <typename Element>
constexpr int partsOf = sizeof(Element) / sizeof(double);

RVX_INLINE Lanes startSums(const double *)
{
    return allLanes(0.0);
}

RVX_INLINE Quad startSums(const ZCplx *)
{
    return {allLanes(0.0), allLanes(0.0)};
}

// Once, also where they are used twice: compilers would load them again, or keep
// them for later taps in registers that there are not.
RVX_INLINE Lanes loadSamples(const double *plane, int, const double *)
{
    return loadLanesOnce(plane);
}

RVX_INLINE Quad loadSamples(const double *plane, int stride, const ZCplx *)
{
    return {loadLanesOnce(plane), loadLanesOnce(plane + stride)};
}

RVX_INLINE void storeFourSums(Lanes sums, double *out)
{
    storeLanes(out, sums);
}

RVX_INLINE void storeFourSums(Quad sums, ZCplx *out)
{
    storeLanes(out, interleaveLow(sums.re, sums.im));
    storeLanes(out + 2, interleaveHigh(sums.re, sums.im));
}

RVX_INLINE Lanes loadFourSums(const double *out)
{
    return loadLanes(out);
}

RVX_INLINE Quad loadFourSums(const ZCplx *out)
{
    const Lanes low = loadLanes(out), high = loadLanes(out + 2);
    return {evenElements(low, high), oddElements(low, high)};
}

#endif
