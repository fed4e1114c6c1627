// The turn of two pairs of bins at once, in registers.

#ifndef RVXFIR2_SPLIT_H
#define RVXFIR2_SPLIT_H

#include "frame/rvxlanes.h"

// (-c.im w.im ...): i times the product of (c, d) and w, where a line is taken apart:
// (-c w.im - d w.re, c w.re - d w.im) for each (c, d).
RVX_INLINE Lanes turned(Lanes cd, Lanes w)
{
    return realParts(cd) * negateEven(swapParts(w)) - imagParts(cd) * w;
}

// Bins k and m of a transform of pairs of real values to bins k and m of the real
// values' own transform, in the order of operations that the bits depend on.
RVX_INLINE void splitPair(Lanes &k, Lanes &m, Lanes w)
{
    const Lanes half = allLanes(0.5);
    const Lanes ab = (k + conjugated(m)) * half;
    const Lanes tu = turned((k - conjugated(m)) * half, w);
    k = ab - tu;
    m = conjugated(ab) + conjugated(tu);
}

// The way back, twice as large.
RVX_INLINE void joinPair(Lanes &k, Lanes &m, Lanes w)
{
    const Lanes ab = k + conjugated(m);
    const Lanes tu = turned(k - conjugated(m), w);
    k = ab + tu;
    m = conjugated(ab) - conjugated(tu);
}

#endif
