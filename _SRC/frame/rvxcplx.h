// Complex arithmetic, in the one grouping that the library's results have:
// (a.re b.re - a.im b.im, a.re b.im + a.im b.re).
//
// A real factor meets both parts of a complex value by itself: it is never promoted,
// so that a NaN or an infinity stays in its part.

#ifndef RVXCPLX_H
#define RVXCPLX_H

#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"
#include "rvx.h"

// ---------------------------------------------------------------------------
// One value.

RVX_INLINE ZCplx operator+(ZCplx a, ZCplx b)
{
    return {a.re + b.re, a.im + b.im};
}

RVX_INLINE ZCplx operator-(ZCplx a, ZCplx b)
{
    return {a.re - b.re, a.im - b.im};
}

RVX_INLINE ZCplx operator*(ZCplx a, ZCplx b)
{
    return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}

RVX_INLINE ZCplx operator*(ZCplx a, double s)
{
    return {a.re * s, a.im * s};
}

RVX_INLINE ZCplx operator*(double s, ZCplx a)
{
    return {s * a.re, s * a.im};
}

// ---------------------------------------------------------------------------
// Two values side by side, each with its parts next to one another.

RVX_INLINE Lanes cplxProduct(Lanes a, Lanes b)
{
    return subAdd(realParts(a) * b, imagParts(a) * swapParts(b));
}

// ---------------------------------------------------------------------------
// Four values, real parts apart from imaginary ones.

struct Quad {
    Lanes re;
    Lanes im;
};

// From two pairs and back. The lanes hold the elements in the order 0, 2, 1, 3, which
// costs one shuffle less per part than their own.
RVX_INLINE Quad quadOf(Lanes z01, Lanes z23)
{
    return {evenLanes(z01, z23), oddLanes(z01, z23)};
}

RVX_INLINE Lanes firstTwo(Quad a)
{
    return evenLanes(a.re, a.im);
}

RVX_INLINE Lanes lastTwo(Quad a)
{
    return oddLanes(a.re, a.im);
}

// Four in their own order: from every second one, so that parts that belong together
// meet without a step across the halves.
RVX_INLINE Quad loadInOrder(const ZCplx *p)
{
    const Lanes even = pairLoads(p, p + 2);
    const Lanes odd = pairLoads(p + 1, p + 3);
    return quadOf(even, odd);
}

RVX_INLINE Quad operator+(Quad a, Quad b)
{
    return {a.re + b.re, a.im + b.im};
}

RVX_INLINE Quad operator-(Quad a, Quad b)
{
    return {a.re - b.re, a.im - b.im};
}

RVX_INLINE Quad operator*(Quad a, Quad b)
{
    return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}

RVX_INLINE Quad operator*(Quad a, Lanes s)
{
    return {a.re * s, a.im * s};
}

RVX_INLINE Quad operator*(Lanes s, Quad a)
{
    return {s * a.re, s * a.im};
}

// One factor for four values.
RVX_INLINE Lanes broadcast(double x)
{
    return allLanes(x);
}

RVX_INLINE Quad broadcast(ZCplx z)
{
    return {allLanes(z.re), allLanes(z.im)};
}

#endif
