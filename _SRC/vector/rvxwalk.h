// Walks over blocks that change each element by itself, four lanes at a time. Fewer
// than four elements go through the same operation in a part of the lanes.
//
// An operation is a record, so that it can hold its constants and note what it saw; it
// may meet an element twice. dst may be src: every step has read its elements before
// it or another writes them.

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

// What a walk is to spare: stores that cross cache lines, or operations, where the
// divider makes each of them wait. Blocks of more than the nearest cache go in step
// either way.
enum class Spare { stores, operations };

template <Spare spare>
RVX_INLINE std::ptrdiff_t secondStep(const void *dst, std::ptrdiff_t bytes)
{
    constexpr std::ptrdiff_t nearest = 1 << 14;
    return spare == Spare::stores || bytes > nearest ? 4 - doublesBehindLanes(dst) : 4;
}

// dst[i] = op(src[i]), with Lanes op(Lanes). Both ends of a block are read first and
// stored last, four elements each: what lies between overlaps them, so that it is in
// step with the lanes of dst and nothing is left over.
template <Spare spare = Spare::stores, typename Op>
RVX_INLINE void walkReal(const double *src, double *dst, std::ptrdiff_t n, Op &op)
{
    if (n < 4) {
        if (n > 0)
            storeSome(dst, op(loadSome(src, n)), n);
        return;
    }
    const Lanes first = op(loadLanesOnce(src));
    const Lanes last = op(loadLanesOnce(src + n - 4));
    std::ptrdiff_t i = secondStep<spare>(dst, 8 * n);
    for (; n - i >= 16; i += 16) {
        Lanes x[4] = {loadLanesOnce(src + i), loadLanesOnce(src + i + 4),
                      loadLanesOnce(src + i + 8), loadLanesOnce(src + i + 12)};
        applyToFour(op, x);
        for (int j = 0; j < 4; ++j)
            storeLanes(dst + i + 4 * j, x[j]);
    }
    for (; n - i > 4; i += 4)
        storeLanes(dst + i, op(loadLanesOnce(src + i)));
    storeLanes(dst, first);
    storeLanes(dst + n - 4, last);
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

// dst[i] = op(src[i]), with Quad op(Quad); both ends as above.
template <Spare spare = Spare::stores, typename Op>
RVX_INLINE void walkCplx(const ZCplx *src, ZCplx *dst, std::ptrdiff_t n, Op &op)
{
    if (n < 4) {
        if (n > 0)
            storeSomeOfFour(dst, op(loadSomeOfFour(src, n)), n);
        return;
    }
    const Quad first = op(loadFour(src));
    const Quad last = op(loadFour(src + n - 4));
    std::ptrdiff_t i = spare == Spare::stores && doublesBehindLanes(dst) == 2 ? 3 : 4;
    for (; n - i >= 16; i += 16) {
        Quad z[4] = {loadFour(src + i), loadFour(src + i + 4), loadFour(src + i + 8),
                     loadFour(src + i + 12)};
        applyToFour(op, z);
        for (int j = 0; j < 4; ++j)
            storeFour(dst + i + 4 * j, z[j]);
    }
    for (; n - i > 4; i += 4)
        storeFour(dst + i, op(loadFour(src + i)));
    storeFour(dst, first);
    storeFour(dst + n - 4, last);
}

#endif
