// Walks over blocks that change each element by itself, four lanes at a time. What
// is left over goes through the same operation in a part of the lanes.
//
// An operation is a record, so that it can hold its constants and note what it saw.
// dst may be src: every step has read its elements before it writes.

#ifndef RVXWALK_H
#define RVXWALK_H

#include <cstddef>
#include <cstdint>

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

// How many doubles p stands behind a multiple of 32 bytes, where a store of four
// lanes crosses no cache line.
RVX_INLINE std::ptrdiff_t doublesPastLine(const void *p)
{
    return static_cast<std::ptrdiff_t>(reinterpret_cast<std::uintptr_t>(p) / sizeof(double) % 4);
}

// Blocks shorter than this gain nothing from stores in step with the lanes.
constexpr std::ptrdiff_t RVX_WORTH_A_HEAD = 32;

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
    const std::ptrdiff_t past = doublesPastLine(dst);
    if (n >= RVX_WORTH_A_HEAD && past > 0) {
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

// The parts of four complex values. The lanes hold elements 0, 2, 1, 3, which
// spares the way across the register's halves.
struct CplxLanes {
    Lanes re, im;
};

RVX_INLINE CplxLanes loadFour(const ZCplx *p)
{
    const Lanes low = loadLanesOnce(p);
    const Lanes high = loadLanesOnce(p + 2);
    return {evenLanes(low, high), oddLanes(low, high)};
}

RVX_INLINE void storeFour(ZCplx *p, CplxLanes z)
{
    storeLanes(p, evenLanes(z.re, z.im));
    storeLanes(p + 2, oddLanes(z.re, z.im));
}

// The first count of four elements, 1 to 3; the other lanes repeat the first.
RVX_INLINE CplxLanes loadSomeOfFour(const ZCplx *p, std::ptrdiff_t count)
{
    const ZCplx second = count > 1 ? p[1] : p[0];
    const ZCplx third = count > 2 ? p[2] : p[0];
    return {lanesOf(p[0].re, third.re, second.re, p[0].re),
            lanesOf(p[0].im, third.im, second.im, p[0].im)};
}

RVX_INLINE void storeSomeOfFour(ZCplx *p, CplxLanes z, std::ptrdiff_t count)
{
    p[0] = {z.re.v[0], z.im.v[0]};
    if (count > 1)
        p[1] = {z.re.v[2], z.im.v[2]};
    if (count > 2)
        p[2] = {z.re.v[1], z.im.v[1]};
}

template <typename Op>
RVX_INLINE void applyToFour(Op &op, CplxLanes (&z)[4])
{
    for (int j = 0; j < 4; ++j)
        z[j] = op(z[j]);
}

// dst[i] = op(src[i]), with CplxLanes op(CplxLanes)
template <typename Op>
RVX_INLINE void walkCplx(const ZCplx *src, ZCplx *dst, std::ptrdiff_t n, Op &op)
{
    std::ptrdiff_t i = 0;
    if (n >= RVX_WORTH_A_HEAD && doublesPastLine(dst) == 2) {
        storeSomeOfFour(dst, op(loadSomeOfFour(src, 1)), 1);
        i = 1;
    }
    for (; n - i >= 16; i += 16) {
        CplxLanes z[4] = {loadFour(src + i), loadFour(src + i + 4), loadFour(src + i + 8),
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
