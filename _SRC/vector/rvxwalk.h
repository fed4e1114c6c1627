// Walks over blocks that change each element by itself, four lanes at a time. What
// is left over goes through the same operation in a part of the lanes.
//
// An operation is a record, so that it can hold its constants and note what it saw.
// dst may be src: every step has read its elements before it writes.

#ifndef RVXWALK_H
#define RVXWALK_H

#include <cstddef>

#include "frame/rvxcplx.h"
#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"
#include "rvx.h"

// The first count of four elements, 1 to 3; the other lanes repeat the first.
RVX_INLINE Lanes loadSome(const double *p, std::ptrdiff_t count)
{
    return lanesOf(p[0], count > 1 ? p[1] : p[0], count > 2 ? p[2] : p[0], p[0]);
}

RVX_INLINE void storeSome(double *p, Lanes a, std::ptrdiff_t count)
{
    p[0] = a.v[0];
    if (count > 1)
        p[1] = a.v[1];
    if (count > 2)
        p[2] = a.v[2];
}

// What an operation does to sixteen elements in a row; one that can save work by
// looking at all of them has an overload.
template <typename Op>
RVX_INLINE void applyToFour(Op &op, Lanes (&x)[4])
{
    for (int j = 0; j < 4; ++j)
        x[j] = op(x[j]);
}

// dst[i] = op(src[i]), with Lanes op(Lanes)
template <typename Op>
RVX_INLINE void walkReal(const double *src, double *dst, std::ptrdiff_t n, Op &op)
{
    std::ptrdiff_t i = 0;
    const int past = doublesBehindLanes(dst);
    if (n >= RVX_WORTH_ALIGNING && past > 0) {
        i = 4 - past;
        storeSome(dst, op(loadSome(src, i)), i);
    }
    for (; n - i >= 16; i += 16) {
        Lanes x[4] = {loadLanes(src + i), loadLanes(src + i + 4), loadLanes(src + i + 8),
                      loadLanes(src + i + 12)};
        applyToFour(op, x);
        for (int j = 0; j < 4; ++j)
            storeLanes(dst + i + 4 * j, x[j]);
    }
    for (; n - i >= 4; i += 4)
        storeLanes(dst + i, op(loadLanes(src + i)));
    if (i < n)
        storeSome(dst + i, op(loadSome(src + i, n - i)), n - i);
}

RVX_INLINE Quad loadFour(const ZCplx *p)
{
    const Lanes low = loadLanesOnce(p);
    const Lanes high = loadLanesOnce(p + 2);
    return quadOf(low, high);
}

RVX_INLINE void storeFour(ZCplx *p, Quad z)
{
    storeLanes(p, firstTwo(z));
    storeLanes(p + 2, lastTwo(z));
}

// The first count of four elements, 1 to 3; the other lanes repeat the first.
RVX_INLINE Quad loadSomeOfFour(const ZCplx *p, std::ptrdiff_t count)
{
    const ZCplx second = count > 1 ? p[1] : p[0];
    const ZCplx third = count > 2 ? p[2] : p[0];
    return {lanesOf(p[0].re, third.re, second.re, p[0].re),
            lanesOf(p[0].im, third.im, second.im, p[0].im)};
}

RVX_INLINE void storeSomeOfFour(ZCplx *p, Quad z, std::ptrdiff_t count)
{
    p[0] = {z.re.v[0], z.im.v[0]};
    if (count > 1)
        p[1] = {z.re.v[2], z.im.v[2]};
    if (count > 2)
        p[2] = {z.re.v[1], z.im.v[1]};
}

template <typename Op>
RVX_INLINE void applyToFour(Op &op, Quad (&z)[4])
{
    for (int j = 0; j < 4; ++j)
        z[j] = op(z[j]);
}

// dst[i] = op(src[i]), with Quad op(Quad)
template <typename Op>
RVX_INLINE void walkCplx(const ZCplx *src, ZCplx *dst, std::ptrdiff_t n, Op &op)
{
    std::ptrdiff_t i = 0;
    if (n >= RVX_WORTH_ALIGNING && doublesBehindLanes(dst) == 2) {
        storeSomeOfFour(dst, op(loadSomeOfFour(src, 1)), 1);
        i = 1;
    }
    for (; n - i >= 16; i += 16) {
        Quad z[4] = {loadFour(src + i), loadFour(src + i + 4), loadFour(src + i + 8),
                     loadFour(src + i + 12)};
        applyToFour(op, z);
        for (int j = 0; j < 4; ++j)
            storeFour(dst + i + 4 * j, z[j]);
    }
    for (; n - i >= 4; i += 4)
        storeFour(dst + i, op(loadFour(src + i)));
    if (i < n)
        storeSomeOfFour(dst + i, op(loadSomeOfFour(src + i, n - i)), n - i);
}

#endif
