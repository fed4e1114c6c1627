// The passes of the transforms, for any memory that quads stand in.
//
// Decimation in time goes from bit-reversed to natural order and merges; its
// mirror image, decimation in frequency, splits. Each pass says which elements
// meet; the templates of rvxfftd_quads.h say where they stand.

#ifndef RVXFFTD_PASSES_H
#define RVXFFTD_PASSES_H

#include "transform/rvxfftd_quads.h"

RVX_INLINE Quad loadFactors(const double *p)
{
    return {loadLanesOnce(p), loadLanesOnce(p + 4)};
}

// ---------------------------------------------------------------------------
// Radix-4 passes of the kernels. A factor triple is 24 doubles.

enum { RVX_TRIPLE = 24 };

// The factors of elements i to i+3: W(4P,i), W(4P,2i), W(4P,3i).
struct Triple {
    Quad first;
    Quad second;
    Quad third;
};

RVX_INLINE Triple loadTriple(const double *factors)
{
    return {loadFactors(factors), loadFactors(factors + 8), loadFactors(factors + 16)};
}

// Elements i to i+3 of four transforms of P points, which stand in bit-reversed
// order, to one of 4P points.
template <typename In, typename Out>
RVX_INLINE void mergeFour(In in, Out out, int i, int P, Triple w, Lanes scale)
{
    Quad a = in.load(i);
    Quad b = in.load(i + P) * w.second;
    Quad c = in.load(i + 2 * P) * w.first;
    Quad d = in.load(i + 3 * P) * w.third;
    sumDiff(a, b);
    sumDiff(c, d);
    sumDiff(a, c);
    sumDiffTurned(b, d);
    out.store(i, a * scale);
    out.store(i + P, b * scale);
    out.store(i + 2 * P, c * scale);
    out.store(i + 3 * P, d * scale);
}

// The mirror image.
template <typename In, typename Out>
RVX_INLINE void splitFour(In in, Out out, int i, int P, Triple w)
{
    Quad a = in.load(i);
    Quad b = in.load(i + P);
    Quad c = in.load(i + 2 * P);
    Quad d = in.load(i + 3 * P);
    sumDiff(a, c);
    sumDiff(b, d);
    sumDiff(a, b);
    sumDiffTurned(c, d);
    out.store(i, a);
    out.store(i + P, b * w.second);
    out.store(i + 2 * P, c * w.first);
    out.store(i + 3 * P, d * w.third);
}

// All transforms of 4P points in N. The same factors serve each of them, so they
// stay in registers while the transforms are gone through: loads are scarce here.
template <typename Memory>
RVX_INLINE void mergePass(Memory memory, int N, int P, const double *factors)
{
    for (int i = 0; i < P; i += 4, factors += RVX_TRIPLE) {
        const Triple w = loadTriple(factors);
        for (int k = i; k < N; k += 4 * P)
            mergeFour(memory, memory, k, P, w, allLanes(1.0));
    }
}

template <typename Memory>
RVX_INLINE void splitPass(Memory memory, int N, int P, const double *factors)
{
    for (int i = 0; i < P; i += 4, factors += RVX_TRIPLE) {
        const Triple w = loadTriple(factors);
        for (int k = i; k < N; k += 4 * P)
            splitFour(memory, memory, k, P, w);
    }
}

// The factors of a kernel's pass from P points, when its first radix is R: 3P
// elements for each pass, R + 4R + ... + P/4 = (P - R) / 3 before.
RVX_INLINE const double *passFactors(const double *factors, int P, int R)
{
    return factors + 2 * (P - R);
}

// ---------------------------------------------------------------------------
// The passes without factors, on 4 or 8 elements.

// The quads of four groups become registers with one element each, and back.
RVX_INLINE void toGroups(Quad *x)
{
    transpose(x[0], x[1], x[2], x[3]);
    std::swap(x[1], x[2]);
}

RVX_INLINE void transform4(Quad *x)
{
    transform4(x[0], x[1], x[2], x[3]);
}

// Four groups of four consecutive elements in bit-reversed order, from `start`.
template <typename In, typename Out>
RVX_INLINE void mergeGroupsOf4(In in, Out out, int start)
{
    Quad x[4];
    in.loadGroups(start, 4, x);
    transform4(x);
    toGroups(x);
    for (int g = 0; g < 4; ++g)
        out.store(start + 4 * g, x[g]);
}

// Four groups of eight.
template <typename In, typename Out>
RVX_INLINE void mergeGroupsOf8(In in, Out out, int start)
{
    Quad x[8];
    for (int half = 0; half < 2; ++half) {
        in.loadGroups(start + 4 * half, 8, x + 4 * half);
        transform4(x + 4 * half);
    }
    merge8(x);
    for (int half = 0; half < 2; ++half) {
        Quad *y = x + 4 * half;
        toGroups(y);
        for (int g = 0; g < 4; ++g)
            out.store(start + 8 * g + 4 * half, y[g]);
    }
}

template <typename In, typename Out>
RVX_INLINE void mergeGroups(In in, Out out, int N, int R)
{
    if (R == 4) {
        for (int start = 0; start < N; start += 16)
            mergeGroupsOf4(in, out, start);
    } else {
        for (int start = 0; start < N; start += 32)
            mergeGroupsOf8(in, out, start);
    }
}

// Four results of four groups, scaled, to bit-reversed order.
template <typename Out>
RVX_INLINE void storeScaled(Out out, int start, int groupLen, const Quad *x, Lanes scale)
{
    const Quad scaled[4] = {x[0] * scale, x[1] * scale, x[2] * scale, x[3] * scale};
    out.storeGroups(start, groupLen, scaled);
}

// Four groups of four consecutive elements in natural order, to bit-reversed.
template <typename In, typename Out>
RVX_INLINE void splitGroupsOf4(In in, Out out, int start, Lanes scale)
{
    Quad x[4];
    for (int g = 0; g < 4; ++g)
        x[g] = in.load(start + 4 * g);
    toGroups(x);
    transform4(x);
    storeScaled(out, start, 4, x, scale);
}

template <typename In, typename Out>
RVX_INLINE void splitGroupsOf8(In in, Out out, int start, Lanes scale)
{
    Quad x[8];
    for (int half = 0; half < 2; ++half) {
        Quad *y = x + 4 * half;
        for (int g = 0; g < 4; ++g)
            y[g] = in.load(start + 8 * g + 4 * half);
        toGroups(y);
    }
    split8(x);
    for (int half = 0; half < 2; ++half) {
        transform4(x + 4 * half);
        storeScaled(out, start + 4 * half, 8, x + 4 * half, scale);
    }
}

template <typename In, typename Out>
RVX_INLINE void splitGroups(In in, Out out, int N, int R, Lanes scale)
{
    if (R == 4) {
        for (int start = 0; start < N; start += 16)
            splitGroupsOf4(in, out, start, scale);
    } else {
        for (int start = 0; start < N; start += 32)
            splitGroupsOf8(in, out, start, scale);
    }
}

// ---------------------------------------------------------------------------
// First passes that read natural order. Column r is the elements r + q N/R,
// 0 <= q < R; its transform belongs at R times the reversal of r.

// Columns r to r+3, r a multiple of 4, whose reversal in full words is `place`:
// the others' places lie N/2, N/4 and 3N/4 behind it.
template <typename In, typename Out>
RVX_INLINE void mergeColumnsOf4(In in, Out out, int N, int r, int place)
{
    Quad x[4];
    for (int q = 0; q < 4; ++q)
        x[q] = in.loadFree(r + q * (N / 4));
    transform4(x);
    transpose(x[0], x[1], x[2], x[3]);
    if (In::freeOrderIsNatural)
        std::swap(x[1], x[2]);
    for (int c = 0; c < 4; ++c)
        out.store(place + c * (N / 4), x[c]);
}

template <typename In>
RVX_INLINE void transformColumnsOf8(In in, int N, int r, Quad *x)
{
    for (int half = 0; half < 2; ++half) {
        for (int q = 0; q < 4; ++q)
            x[4 * half + q] = in.loadFree(r + (2 * q + half) * (N / 8));
        transform4(x + 4 * half);
    }
    merge8(x);
    for (int half = 0; half < 2; ++half) {
        Quad *y = x + 4 * half;
        transpose(y[0], y[1], y[2], y[3]);
        if (In::freeOrderIsNatural)
            std::swap(y[1], y[2]);
    }
}

template <typename In, typename Out>
RVX_INLINE void mergeColumnsOf8(In in, Out out, int N, int r, int place)
{
    Quad x[8];
    transformColumnsOf8(in, N, r, x);
    for (int c = 0; c < 4; ++c) {
        out.store(place + c * (N / 4), x[c]);
        out.store(place + c * (N / 4) + 4, x[4 + c]);
    }
}

// The successor of `reversed` in an order in which the carry runs downward from
// the bit `top`.
RVX_INLINE int nextPlace(int reversed, int top)
{
    while ((reversed & top) != 0) {
        reversed ^= top;
        top >>= 1;
    }
    return reversed | top;
}

template <typename In, typename Out>
RVX_INLINE void mergeColumns(In in, Out out, int N, int R)
{
    // The lowest bit of r that moves is bit 2, and its reversal is worth N/8.
    int place = 0;
    if (R == 4) {
        for (int r = 0; r < N / 4; r += 4, place = nextPlace(place, N / 8))
            mergeColumnsOf4(in, out, N, r, place);
    } else {
        for (int r = 0; r < N / 8; r += 4, place = nextPlace(place, N / 8))
            mergeColumnsOf8(in, out, N, r, place);
    }
}

// ---------------------------------------------------------------------------
// Whole kernels behind or before the passes without factors.

// Transforms of R points, in bit-reversed order, to one of N.
template <typename Memory, typename Out>
RVX_INLINE void mergeKernel(Memory memory, Out out, int N, int R, const double *factors,
                            double scale)
{
    int P = R;
    for (; 4 * P < N; P *= 4)
        mergePass(memory, N, P, passFactors(factors, P, R));
    factors = passFactors(factors, P, R);
    for (int i = 0; i < P; i += 4, factors += RVX_TRIPLE)
        mergeFour(memory, out, i, P, loadTriple(factors), allLanes(scale));
}

// The mirror image.
template <typename In, typename Memory>
RVX_INLINE void splitKernel(In in, Memory memory, int N, int R, const double *factors)
{
    int P = N / 4;
    const double *first = passFactors(factors, P, R);
    for (int i = 0; i < P; i += 4, first += RVX_TRIPLE)
        splitFour(in, memory, i, P, loadTriple(first));
    for (P /= 4; P >= R; P /= 4)
        splitPass(memory, N, P, passFactors(factors, P, R));
}

// ---------------------------------------------------------------------------
// Sweeps: one to three radix-2 passes above the kernels at once.

template <typename In, typename Out>
RVX_INLINE void mergeTwo(In in, Out out, int P, const double *factors, Lanes scale)
{
    for (int i = 0; i < P; i += 4, factors += 8) {
        Quad a = in.load(i);
        Quad b = in.load(i + P) * loadFactors(factors);
        sumDiff(a, b);
        out.store(i, a * scale);
        out.store(i + P, b * scale);
    }
}

template <typename In, typename Out>
RVX_INLINE void mergeTwice(In in, Out out, int P, const double *factors, Lanes scale)
{
    for (int i = 0; i < P; i += 4, factors += 16) {
        const Quad w1 = loadFactors(factors);
        Quad a = in.load(i);
        Quad b = in.load(i + P) * w1;
        Quad c = in.load(i + 2 * P);
        Quad d = in.load(i + 3 * P) * w1;
        sumDiff(a, b);
        sumDiff(c, d);
        const Quad w2 = loadFactors(factors + 8);
        c = c * w2;
        d = d * w2;
        sumDiff(a, c);
        sumDiffTurned(b, d);
        out.store(i, a * scale);
        out.store(i + P, b * scale);
        out.store(i + 2 * P, c * scale);
        out.store(i + 3 * P, d * scale);
    }
}

template <typename In, typename Out>
RVX_INLINE void mergeThrice(In in, Out out, int P, const double *factors, Lanes scale)
{
    for (int i = 0; i < P; i += 4, factors += 32) {
        Quad x[8];
        const Quad w1 = loadFactors(factors);
        const Quad w2 = loadFactors(factors + 8);
        for (int half = 0; half < 8; half += 4) {
            Quad *y = x + half;
            y[0] = in.load(i + half * P);
            y[1] = in.load(i + (half + 1) * P) * w1;
            y[2] = in.load(i + (half + 2) * P);
            y[3] = in.load(i + (half + 3) * P) * w1;
            sumDiff(y[0], y[1]);
            sumDiff(y[2], y[3]);
            y[2] = y[2] * w2;
            y[3] = y[3] * w2;
            sumDiff(y[0], y[2]);
            sumDiffTurned(y[1], y[3]);
        }
        const Quad w3 = loadFactors(factors + 16);
        const Quad w4 = loadFactors(factors + 24);
        x[4] = x[4] * w3;
        x[5] = x[5] * w4;
        x[6] = x[6] * w3;
        x[7] = x[7] * w4;
        sumDiff(x[0], x[4]);
        sumDiff(x[1], x[5]);
        sumDiffTurned(x[2], x[6]);
        sumDiffTurned(x[3], x[7]);
        for (int k = 0; k < 8; ++k)
            out.store(i + k * P, x[k] * scale);
    }
}

template <typename In, typename Out>
RVX_INLINE void mergeSweep(In in, Out out, int P, int depth, const double *factors, double scale)
{
    if (depth == 1)
        mergeTwo(in, out, P, factors, allLanes(scale));
    else if (depth == 2)
        mergeTwice(in, out, P, factors, allLanes(scale));
    else
        mergeThrice(in, out, P, factors, allLanes(scale));
}

template <typename In, typename Out>
RVX_INLINE void splitTwo(In in, Out out, int P, const double *factors)
{
    for (int i = 0; i < P; i += 4, factors += 8) {
        Quad a = in.load(i);
        Quad b = in.load(i + P);
        sumDiff(a, b);
        out.store(i, a);
        out.store(i + P, b * loadFactors(factors));
    }
}

// From 4P points to P.
template <typename Out>
RVX_INLINE void splitLowerPasses(Out out, int i, int P, Quad *y, Quad w1, Quad w2)
{
    sumDiff(y[0], y[2]);
    sumTurnedDiff(y[1], y[3]);
    y[2] = y[2] * w2;
    y[3] = y[3] * w2;
    sumDiff(y[0], y[1]);
    sumDiff(y[2], y[3]);
    out.store(i, y[0]);
    out.store(i + P, y[1] * w1);
    out.store(i + 2 * P, y[2]);
    out.store(i + 3 * P, y[3] * w1);
}

template <typename In, typename Out>
RVX_INLINE void splitTwice(In in, Out out, int P, const double *factors)
{
    for (int i = 0; i < P; i += 4, factors += 16) {
        Quad y[4];
        for (int k = 0; k < 4; ++k)
            y[k] = in.load(i + k * P);
        splitLowerPasses(out, i, P, y, loadFactors(factors), loadFactors(factors + 8));
    }
}

template <typename In, typename Out>
RVX_INLINE void splitThrice(In in, Out out, int P, const double *factors)
{
    for (int i = 0; i < P; i += 4, factors += 32) {
        Quad x[8];
        for (int k = 0; k < 8; ++k)
            x[k] = in.load(i + k * P);
        const Quad w3 = loadFactors(factors + 16);
        const Quad w4 = loadFactors(factors + 24);
        sumDiff(x[0], x[4]);
        sumDiff(x[1], x[5]);
        sumTurnedDiff(x[2], x[6]);
        sumTurnedDiff(x[3], x[7]);
        x[4] = x[4] * w3;
        x[5] = x[5] * w4;
        x[6] = x[6] * w3;
        x[7] = x[7] * w4;
        const Quad w1 = loadFactors(factors);
        const Quad w2 = loadFactors(factors + 8);
        splitLowerPasses(out, i, P, x, w1, w2);
        splitLowerPasses(out, i + 4 * P, P, x + 4, w1, w2);
    }
}

template <typename In, typename Out>
RVX_INLINE void splitSweep(In in, Out out, int P, int depth, const double *factors)
{
    if (depth == 1)
        splitTwo(in, out, P, factors);
    else if (depth == 2)
        splitTwice(in, out, P, factors);
    else
        splitThrice(in, out, P, factors);
}

#endif
