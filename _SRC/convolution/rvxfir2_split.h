// Two pairs of bins at once, in registers: the turns between transforms of pairs of
// real values and the spectra of the values themselves.
//
// The order of operations is part of the results and the same in every lane.

#ifndef RVXFIR2_SPLIT_H
#define RVXFIR2_SPLIT_H

#include "frame/rvxlanes.h"

// i times the product of cd and w, as (-c w.im - d w.re, c w.re - d w.im).
RVX_INLINE Lanes turned(Lanes cd, Lanes w)
{
    return realParts(cd) * negateEven(swapParts(w)) - imagParts(cd) * w;
}

// Bins k and m = n-k of one line to those of its real values.
RVX_INLINE void splitPair(Lanes &k, Lanes &m, Lanes w)
{
    const Lanes half = allLanes(0.5);
    const Lanes ab = (k + conjugated(m)) * half;
    const Lanes tu = turned((k - conjugated(m)) * half, w);
    k = ab - tu;
    m = conjugated(ab) + conjugated(tu);
}

// The way back, twice as large; w is conjugate to that of the way forth.
RVX_INLINE void joinPair(Lanes &k, Lanes &m, Lanes w)
{
    const Lanes ab = k + conjugated(m);
    const Lanes tu = turned(k - conjugated(m), w);
    k = ab + tu;
    m = conjugated(ab) - conjugated(tu);
}

// The same for bin k of a row of a block and bin n-k of its mirror row, which becomes
// bin n+k of the first.
RVX_INLINE void splitRows(Lanes &k, Lanes &m, Lanes w)
{
    const Lanes half = allLanes(0.5);
    const Lanes ab = (k + conjugated(m)) * half;
    const Lanes tu = turned((k - conjugated(m)) * half, w);
    k = ab - tu;
    m = ab + tu;
}

// The way back, twice as large; w is that of the way forth.
RVX_INLINE void joinRows(Lanes &k, Lanes &m, Lanes w)
{
    const Lanes ab = k + m;
    const Lanes tu = turned(k - m, conjugated(w));
    k = ab + tu;
    m = conjugated(ab) - conjugated(tu);
}

#endif
