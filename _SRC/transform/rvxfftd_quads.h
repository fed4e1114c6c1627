// Four complex values side by side, where they stand in memory, and the
// butterflies on them.
//
// Between passes the real and the imaginary parts of four consecutive elements
// stand in a register each, so that a twiddle product or a quarter turn moves
// nothing between lanes. The lanes hold the elements in the order 0, 2, 1, 3,
// which is how the cheapest instructions take interleaved values apart and put
// them together again.

#ifndef RVXFFTD_QUADS_H
#define RVXFFTD_QUADS_H

#include <utility>

#include "frame/rvxcplx.h"
#include "frame/rvxlanes.h"

// a and b become a + b and a - b.
RVX_INLINE void sumDiff(Quad &a, Quad &b)
{
    const Quad sum = a + b;
    b = a - b;
    a = sum;
}

// a and b become a - jb and a + jb.
RVX_INLINE void sumDiffTurned(Quad &a, Quad &b)
{
    const Quad minus{a.re + b.im, a.im - b.re};
    b = {a.re - b.im, a.im + b.re};
    a = minus;
}

// a and b become a + b and -j(a - b).
RVX_INLINE void sumTurnedDiff(Quad &a, Quad &b)
{
    const Quad sum = a + b;
    b = {a.im - b.im, b.re - a.re};
    a = sum;
}

// The transform of four elements in natural order.
RVX_INLINE void transform4(Quad &a, Quad &b, Quad &c, Quad &d)
{
    sumDiff(a, c);
    sumDiff(b, d);
    sumDiff(a, b);
    sumDiffTurned(c, d);
    std::swap(b, c);
}

// From the transforms of the even elements, x[0] to x[3], and of the odd ones,
// x[4] to x[7], to the transform of all eight. The odd factors (1 -+ j) / sqrt(2)
// cost two additions and two products each.
RVX_INLINE void merge8(Quad *x)
{
    const Lanes half = allLanes(0.70710678118654752440);
    x[5] = Quad{x[5].re + x[5].im, x[5].im - x[5].re} * half;
    x[7] = Quad{x[7].im - x[7].re, x[7].re + x[7].im} * half;
    sumDiff(x[0], x[4]);
    sumDiff(x[1], x[5]);
    sumDiffTurned(x[2], x[6]);
    const Quad sum{x[3].re + x[7].re, x[3].im - x[7].im};
    x[7] = {x[3].re - x[7].re, x[3].im + x[7].im};
    x[3] = sum;
}

// The mirror image: eight elements in natural order to what the transforms of
// the even results, x[0] to x[3], and of the odd ones, x[4] to x[7], start from.
RVX_INLINE void split8(Quad *x)
{
    const Lanes half = allLanes(0.70710678118654752440);
    sumDiff(x[0], x[4]);
    sumDiff(x[1], x[5]);
    sumTurnedDiff(x[2], x[6]);
    sumTurnedDiff(x[3], x[7]);
    x[5] = Quad{x[5].re + x[5].im, x[5].im - x[5].re} * half;
    x[7] = Quad{x[7].re + x[7].im, x[7].im - x[7].re} * half;
}

// Lane l of each of the four, in the order of a quad, becomes register l.
RVX_INLINE void transpose(Lanes &a, Lanes &b, Lanes &c, Lanes &d)
{
    transposeLanes(a, c, b, d);
    std::swap(b, c);
}

RVX_INLINE void transpose(Quad &a, Quad &b, Quad &c, Quad &d)
{
    transpose(a.re, b.re, c.re, d.re);
    transpose(a.im, b.im, c.im, d.im);
}

// Where elements stand. i is a multiple of 4.

// Quads between passes: real and imaginary parts in blocks of four by turns, in
// the memory of interleaved values (step 2), or in arrays of their own (step 1).
template <int step>
struct Quads {
    double *re;
    double *im;

    RVX_INLINE Quad load(int i) const
    {
        return {loadLanesOnce(re + step * i), loadLanesOnce(im + step * i)};
    }
    RVX_INLINE void store(int i, Quad a) const
    {
        storeLanes(re + step * i, a.re);
        storeLanes(im + step * i, a.im);
    }
};

using BlockedQuads = Quads<2>;
using SplitQuads = Quads<1>;

RVX_INLINE BlockedQuads blocked(double *p)
{
    return {p, p + 4};
}

// Interleaved values. The inverse transform is the forward one with real and
// imaginary parts exchanged on the way in and on the way out.
template <bool inverse>
struct Interleaved {
    double *p;

    RVX_INLINE Quad load(int i) const
    {
        const Lanes low = loadLanesOnce(p + 2 * i);
        const Lanes high = loadLanesOnce(p + 2 * i + 4);
        const Quad a = quadOf(low, high);
        return inverse ? Quad{a.im, a.re} : a;
    }
    RVX_INLINE void store(int i, Quad a) const
    {
        const Quad b = inverse ? Quad{a.im, a.re} : a;
        storeLanes(p + 2 * i, firstTwo(b));
        storeLanes(p + 2 * i + 4, lastTwo(b));
    }
    // Where what follows is a transposition, any order of lanes is as good: this
    // one is free.
    RVX_INLINE Quad loadFree(int i) const { return load(i); }
    static constexpr bool freeOrderIsNatural = false;

    // Elements 0, 2, 1, 3 from `start` of four groups, each with the groups in the
    // lanes of a quad. Shuffles share the pipes of the additions and loads do not,
    // so halves are brought to their place by loads next to them: of the first of
    // two groups behind the element, of the second one before it.
    RVX_INLINE void loadGroups(int start, int groupLen, Quad *x) const
    {
        constexpr int place[4] = {0, 2, 1, 3};
        for (int e = 0; e < 4; ++e) {
            Lanes pairs[2];
            for (int g = 0; g < 4; g += 2) {
                const double *low = p + 2 * (start + g * groupLen + e);
                pairs[g / 2] =
                    outerHalves(loadLanesOnce(low), loadLanesOnce(low + 2 * groupLen - 2));
            }
            const Quad a = quadOf(pairs[0], pairs[1]);
            x[place[e]] = inverse ? Quad{a.im, a.re} : a;
        }
    }
    // The way back.
    RVX_INLINE void storeGroups(int start, int groupLen, const Quad *x) const
    {
        for (int e = 0; e < 4; e += 2) {
            const Quad first = inverse ? Quad{x[e / 2].im, x[e / 2].re} : x[e / 2];
            const Quad second = inverse ? Quad{x[e / 2 + 2].im, x[e / 2 + 2].re} : x[e / 2 + 2];
            const Lanes first01 = firstTwo(first);
            const Lanes first23 = lastTwo(first);
            const Lanes second01 = firstTwo(second);
            const Lanes second23 = lastTwo(second);
            double *group = p + 2 * (start + e);
            storeLanes(group, firstHalves(first01, second01));
            storeLanes(group + 2 * groupLen, lastHalves(first01, second01));
            storeLanes(group + 4 * groupLen, firstHalves(first23, second23));
            storeLanes(group + 6 * groupLen, lastHalves(first23, second23));
        }
    }
};

// Arrays of real and of imaginary parts in natural order.
struct Separate {
    double *re;
    double *im;

    RVX_INLINE Quad load(int i) const
    {
        return {swapMiddle(loadLanesOnce(re + i)), swapMiddle(loadLanesOnce(im + i))};
    }
    RVX_INLINE void store(int i, Quad a) const
    {
        storeLanes(re + i, swapMiddle(a.re));
        storeLanes(im + i, swapMiddle(a.im));
    }
    RVX_INLINE Quad loadFree(int i) const { return {loadLanesOnce(re + i), loadLanesOnce(im + i)}; }
    RVX_INLINE void storeFree(int i, Quad a) const
    {
        storeLanes(re + i, a.re);
        storeLanes(im + i, a.im);
    }
    RVX_INLINE void loadGroups(int start, int groupLen, Quad *x) const
    {
        for (int g = 0; g < 4; ++g)
            x[g] = loadFree(start + g * groupLen);
        transpose(x[0], x[1], x[2], x[3]);
        std::swap(x[1], x[2]);
    }
    RVX_INLINE void storeGroups(int start, int groupLen, const Quad *x) const
    {
        Quad g[4] = {x[0], x[1], x[2], x[3]};
        // The order of a quad's lanes, applied to 0, 2, 1, 3, gives memory order.
        transpose(g[0], g[1], g[2], g[3]);
        storeFree(start, g[0]);
        storeFree(start + 2 * groupLen, g[1]);
        storeFree(start + groupLen, g[2]);
        storeFree(start + 3 * groupLen, g[3]);
    }
    static constexpr bool freeOrderIsNatural = true;
};

#endif
