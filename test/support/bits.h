// Doubles by their bits, and what equal results are.

#ifndef RVX_TEST_BITS_H
#define RVX_TEST_BITS_H

#include <cstdint>
#include <cstring>
#include <limits>

#include "rvx.h"
#include "support/guarded.h"

constexpr double INF = std::numeric_limits<double>::infinity();
constexpr double QUIET = std::numeric_limits<double>::quiet_NaN();

inline double fromBits(std::uint64_t bits)
{
    double x;
    std::memcpy(&x, &bits, sizeof x);
    return x;
}

// The same bits, or two NaNs: whose payload an arithmetic result carries is not fixed.
inline bool same(double a, double b)
{
    return bitsOf(a) == bitsOf(b) || (a != a && b != b);
}

inline bool same(ZCplx a, ZCplx b)
{
    return same(a.re, b.re) && same(a.im, b.im);
}

inline bool sameBits(double a, double b)
{
    return bitsOf(a) == bitsOf(b);
}

inline bool sameBits(ZCplx a, ZCplx b)
{
    return sameBits(a.re, b.re) && sameBits(a.im, b.im);
}

#endif
