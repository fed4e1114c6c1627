// rvxwlt: the two Haar banks, without a sum over taps. A pair of neighbours becomes half
// its difference and, from that, its mean; the way back is a difference and a sum. One
// pass per level, bound by loads and stores.

#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"
#include "transform/rvxwlt_levels.h"

namespace {

// Pairs (base, other): high = (other - base) / 2, low = base + high. The low band is
// formed from the high one and not from the sum; infinities show which.
RVX_INLINE void splitOne(double base, double other, double *low, double *high)
{
    const double d = (other - base) * 0.5;
    *high = d;
    *low = base + d;
}

// In memory the base is the first of each pair, or the second.
template <bool baseIsFirst>
RVX_INLINE void splitPairs(const double *x, int pairs, double *low, double *high)
{
    int k = 0;
    for (; k <= pairs - 4; k += 4) {
        const Lanes a = loadLanes(x + 2 * k), b = loadLanes(x + 2 * k + 4);
        const Lanes even = evenElements(a, b), odd = oddElements(a, b);
        const Lanes base = baseIsFirst ? even : odd;
        const Lanes other = baseIsFirst ? odd : even;
        const Lanes d = (other - base) * allLanes(0.5);
        storeLanes(high + k, d);
        storeLanes(low + k, base + d);
    }
    for (; k < pairs; ++k)
        splitOne(x[2 * k + (baseIsFirst ? 0 : 1)], x[2 * k + (baseIsFirst ? 1 : 0)], low + k,
                 high + k);
}

// base = low - high, other = low + high
template <bool baseIsFirst>
RVX_INLINE void joinPairs(const double *low, const double *high, int pairs, double *y)
{
    int k = 0;
    for (; k <= pairs - 4; k += 4) {
        const Lanes a = loadLanes(low + k), d = loadLanes(high + k);
        const Lanes first = baseIsFirst ? a - d : a + d;
        const Lanes second = baseIsFirst ? a + d : a - d;
        storeLanes(y + 2 * k, interleaveLow(first, second));
        storeLanes(y + 2 * k + 4, interleaveHigh(first, second));
    }
    for (; k < pairs; ++k) {
        y[2 * k + (baseIsFirst ? 0 : 1)] = low[k] - high[k];
        y[2 * k + (baseIsFirst ? 1 : 0)] = low[k] + high[k];
    }
}

RVX_KERNEL void splitPairsUp(const double *x, int pairs, double *low, double *high)
{
    splitPairs<true>(x, pairs, low, high);
}

RVX_KERNEL void splitPairsDown(const double *x, int pairs, double *low, double *high)
{
    splitPairs<false>(x, pairs, low, high);
}

RVX_KERNEL void joinPairsUp(const double *low, const double *high, int pairs, double *y)
{
    joinPairs<true>(low, high, pairs, y);
}

RVX_KERNEL void joinPairsDown(const double *low, const double *high, int pairs, double *y)
{
    joinPairs<false>(low, high, pairs, y);
}

} // namespace

void rvxWtSplitHaar(const rvxWtState &, const double *x, int n, double *low, double *high)
{
    splitPairsUp(x, n / 2, low, high);
    if (n % 2 == 1) {
        low[n / 2] = x[n - 1];
        high[n / 2] = 0.0;
    }
}

void rvxWtJoinHaar(const rvxWtState &, const double *low, const double *high, int n, double *y)
{
    joinPairsUp(low, high, n / 2, y);
    if (n % 2 == 1)
        y[n - 1] = low[n / 2] - high[n / 2];
}

// The first pair goes around the end.
void rvxWtSplitShiftedHaar(const rvxWtState &, const double *x, int n, double *low, double *high)
{
    splitOne(x[0], x[n - 1], low, high);
    splitPairsDown(x + 1, (n - 1) / 2, low + 1, high + 1);
}

void rvxWtJoinShiftedHaar(const rvxWtState &, const double *low, const double *high, int n,
                          double *y)
{
    y[0] = low[0] - high[0];
    joinPairsDown(low + 1, high + 1, (n - 1) / 2, y + 1);
    if (n % 2 == 0)
        y[n - 1] = low[0] + high[0];
}
