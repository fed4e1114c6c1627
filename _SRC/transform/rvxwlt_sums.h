// Two weighted sums over the same positions, for many outputs side by side.
//
// Both directions of the transform come down to it: in a decomposition the two sums are
// the two filters over one signal, in a reconstruction the even and the odd samples over
// one band. A position is loaded once for both. Each sum starts from +0.0 and takes its
// positions in ascending order, every product rounded before it is added, at the edges of
// a level and in tails too.

#ifndef RVXWLT_SUMS_H
#define RVXWLT_SUMS_H

#include <algorithm>
#include <cstddef>

#include "frame/rvxlanes.h"

// Longer filters are for the plain loops.
constexpr int RVX_WT_TAPS_IN_LANES = 1023;

// What output 0 meets at position 2c stands at even + c * step, and at position 2c + 1 at
// odd + c * step; output k meets what is k elements behind.
struct RvxWtWalk {
    const double *even;
    const double *odd;
    std::ptrdiff_t step;
};

// The weight of position i, begin <= i < end, is first[(i - begin) * step].
struct RvxWtTaps {
    const double *first;
    std::ptrdiff_t step;
    int begin;
    int end;
};

struct RvxWtSums {
    RvxWtWalk walk;
    RvxWtTaps a;
    RvxWtTaps b;
};

template <int vectors>
struct SumsInLanes {
    Lanes a[vectors];
    Lanes b[vectors];
};

template <bool toA, bool toB, int vectors>
RVX_INLINE void addPosition(SumsInLanes<vectors> &sums, const double *x, const double *tapA,
                            const double *tapB)
{
    const Lanes weightA = toA ? allLanes(*tapA) : Lanes{};
    const Lanes weightB = toB ? allLanes(*tapB) : Lanes{};
#pragma GCC unroll 8
    for (int v = 0; v < vectors; ++v) {
        const Lanes sample = loadLanesOnce(x + 4 * v);
        if (toA)
            sums.a[v] = sums.a[v] + sample * weightA;
        if (toB)
            sums.b[v] = sums.b[v] + sample * weightB;
    }
}

// Positions from begin to end - 1, for outputs from k on.
template <bool toA, bool toB, int vectors>
RVX_INLINE void addPositions(SumsInLanes<vectors> &sums, const RvxWtSums &of, std::ptrdiff_t k,
                             int begin, int end)
{
    if (begin >= end)
        return;
    const RvxWtWalk &walk = of.walk;
    const std::ptrdiff_t pair = begin / 2;
    const bool fromEven = begin % 2 == 0;
    const double *x = (fromEven ? walk.even : walk.odd) + pair * walk.step + k;
    const double *next = (fromEven ? walk.odd : walk.even + walk.step) + pair * walk.step + k;
    const double *tapA = toA ? of.a.first + (begin - of.a.begin) * of.a.step : nullptr;
    const double *tapB = toB ? of.b.first + (begin - of.b.begin) * of.b.step : nullptr;
    const std::ptrdiff_t stepA = toA ? of.a.step : 0, stepB = toB ? of.b.step : 0;
    for (int pairs = (end - begin) / 2; pairs > 0; --pairs) {
        addPosition<toA, toB>(sums, x, tapA, tapB);
        addPosition<toA, toB>(sums, next, tapA + stepA, tapB + stepB);
        x += walk.step;
        next += walk.step;
        tapA += 2 * stepA;
        tapB += 2 * stepB;
    }
    if ((end - begin) % 2 != 0)
        addPosition<toA, toB>(sums, x, tapA, tapB);
}

// The sums of 4 * vectors outputs from k on.
template <int vectors>
RVX_INLINE SumsInLanes<vectors> twoSums(const RvxWtSums &of, std::ptrdiff_t k)
{
    SumsInLanes<vectors> sums;
#pragma GCC unroll 8
    for (int v = 0; v < vectors; ++v)
        sums.a[v] = sums.b[v] = allLanes(0.0);
    // What both have in common, together, and before and behind that each by itself.
    const int begin = std::max(of.a.begin, of.b.begin);
    const int end = std::max(begin, std::min(of.a.end, of.b.end));
    addPositions<true, false>(sums, of, k, of.a.begin, std::min(begin, of.a.end));
    addPositions<false, true>(sums, of, k, of.b.begin, std::min(begin, of.b.end));
    addPositions<true, true>(sums, of, k, begin, end);
    addPositions<true, false>(sums, of, k, std::max(end, of.a.begin), of.a.end);
    addPositions<false, true>(sums, of, k, std::max(end, of.b.begin), of.b.end);
    return sums;
}

// The first n lanes, of which there are four at most.
RVX_INLINE void storeAtMost(double *p, Lanes a, std::ptrdiff_t n)
{
    if (n >= 4) {
        storeLanes(p, a);
        return;
    }
    double some[4];
    storeLanes(some, a);
    for (std::ptrdiff_t i = 0; i < n; ++i)
        p[i] = some[i];
}

#endif
