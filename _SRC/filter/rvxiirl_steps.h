// One sample through either structure, and the arithmetic of its elements. Blocks
// may be scheduled otherwise, but each result is made of these operations in this
// order.

#ifndef RVXIIRL_STEPS_H
#define RVXIIRL_STEPS_H

#include "frame/rvxkernel.h"
#include "rvx.h"

// A real factor meets both parts of a complex one by itself: it is never promoted,
// so that a NaN or an infinity stays in its part.
RVX_INLINE double tapTimes(double tap, double x)
{
    return tap * x;
}

RVX_INLINE ZCplx tapTimes(ZCplx tap, double x)
{
    return {tap.re * x, tap.im * x};
}

RVX_INLINE ZCplx tapTimes(double tap, ZCplx x)
{
    return {tap * x.re, tap * x.im};
}

RVX_INLINE ZCplx tapTimes(ZCplx tap, ZCplx x)
{
    return {tap.re * x.re - tap.im * x.im, tap.im * x.re + tap.re * x.im};
}

RVX_INLINE double delayPlus(double a, double b)
{
    return a + b;
}

RVX_INLINE ZCplx delayPlus(ZCplx a, ZCplx b)
{
    return {a.re + b.re, a.im + b.im};
}

RVX_INLINE double delayMinus(double a, double b)
{
    return a - b;
}

RVX_INLINE ZCplx delayMinus(ZCplx a, ZCplx b)
{
    return {a.re - b.re, a.im - b.im};
}

// Delay elements and results are of this type.
template <typename Tap, typename Sample>
using IirElement = decltype(tapTimes(Tap(), Sample()));

// b[i] x - a[i] y, 1 <= i <= order. Normalised taps are b[0], ..., b[order] and
// then a[1], ..., a[order], so that a[i] stands order places behind b[i].
template <typename Tap, typename Sample>
RVX_INLINE IirElement<Tap, Sample> directTerm(const Tap *taps, int order, int i, Sample x,
                                              IirElement<Tap, Sample> y)
{
    return delayMinus(tapTimes(taps[i], x), tapTimes(taps[order + i], y));
}

// Direct form II transposed: each delay element sums what a future output needs.
template <typename Tap, typename Sample>
RVX_INLINE IirElement<Tap, Sample> directStep(const Tap *taps, int order,
                                              IirElement<Tap, Sample> *d, Sample x)
{
    if (order == 0)
        return tapTimes(taps[0], x);
    const auto y = delayPlus(tapTimes(taps[0], x), d[0]);
    for (int i = 1; i < order; ++i)
        d[i - 1] = delayPlus(directTerm(taps, order, i, x, y), d[i]);
    d[order - 1] = directTerm(taps, order, order, x, y);
    return y;
}

// Sections in direct form II with the gain in front. Normalised taps are the gain
// and then a1, a2, b1, b2 of each section; d holds the newer element first.
template <typename Tap, typename Sample>
RVX_INLINE IirElement<Tap, Sample> cascadeStep(const Tap *taps, int numQuads,
                                               IirElement<Tap, Sample> *d, Sample x)
{
    auto v = tapTimes(taps[0], x);
    for (int q = 0; q < numQuads; ++q) {
        const Tap *t = taps + 1 + 4 * q;
        const auto d0 = d[2 * q];
        const auto d1 = d[2 * q + 1];
        const auto w = delayMinus(delayMinus(v, tapTimes(t[0], d0)), tapTimes(t[1], d1));
        v = delayPlus(w, delayPlus(tapTimes(t[3], d1), tapTimes(t[2], d0)));
        d[2 * q + 1] = d0;
        d[2 * q] = w;
    }
    return v;
}

#endif
