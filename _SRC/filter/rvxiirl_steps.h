// One sample through either structure. Blocks may be scheduled otherwise, but each
// result is made of these operations in this order.

#ifndef RVXIIRL_STEPS_H
#define RVXIIRL_STEPS_H

#include "frame/rvxcplx.h"
#include "frame/rvxkernel.h"
#include "rvx.h"

// Delay elements and results are of this type.
template <typename Tap, typename Sample>
using IirElement = decltype(Tap() * Sample());

// b[i] x - a[i] y, 1 <= i <= order. Normalised taps are b[0], ..., b[order] and
// then a[1], ..., a[order], so that a[i] stands order places behind b[i].
template <typename Tap, typename Sample>
RVX_INLINE IirElement<Tap, Sample> directTerm(const Tap *taps, int order, int i, Sample x,
                                              IirElement<Tap, Sample> y)
{
    return taps[i] * x - taps[order + i] * y;
}

// Direct form II transposed: each delay element sums what a future output needs.
template <typename Tap, typename Sample>
RVX_INLINE IirElement<Tap, Sample> directStep(const Tap *taps, int order,
                                              IirElement<Tap, Sample> *d, Sample x)
{
    if (order == 0)
        return taps[0] * x;
    const auto y = taps[0] * x + d[0];
    for (int i = 1; i < order; ++i)
        d[i - 1] = directTerm(taps, order, i, x, y) + d[i];
    d[order - 1] = directTerm(taps, order, order, x, y);
    return y;
}

// Sections in direct form II with the gain in front. Normalised taps are the gain
// and then a1, a2, b1, b2 of each section; d holds the newer element first.
template <typename Tap, typename Sample>
RVX_INLINE IirElement<Tap, Sample> cascadeStep(const Tap *taps, int numQuads,
                                               IirElement<Tap, Sample> *d, Sample x)
{
    auto v = taps[0] * x;
    for (int q = 0; q < numQuads; ++q) {
        const Tap *t = taps + 1 + 4 * q;
        const auto d0 = d[2 * q];
        const auto d1 = d[2 * q + 1];
        const auto w = (v - t[0] * d0) - t[1] * d1;
        v = w + (t[3] * d1 + t[2] * d0);
        d[2 * q + 1] = d0;
        d[2 * q] = w;
    }
    return v;
}

#endif
