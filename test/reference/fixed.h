// Fixed-point conversion by its definition, one number at a time.

#ifndef RVX_TEST_REFERENCE_FIXED_H
#define RVX_TEST_REFERENCE_FIXED_H

#include <cmath>
#include <cstdint>
#include <limits>

#include <mpfr.h>

#include "rvx.h"

namespace fixed {

struct Result {
    bool fits;
    bool known;          // whether `stored` is fixed by the definition
    std::int64_t stored; // in the range of the integer
};

// x * 2^fractBits as an integer, exactly: long double has the exponents for it.
inline long double roundedBy(long double v, int rounding)
{
    switch (rounding) {
    case RVX_CVT_TRUNC:
        return std::trunc(v);
    case RVX_CVT_FLOOR:
        return std::floor(v);
    case RVX_CVT_CEIL:
        return std::ceil(v);
    default:
        break;
    }
    const long double below = std::floor(v);
    const long double rest = v - below; // exact where it is not 0 or 1
    const bool odd = std::fmod(below, 2.0L) != 0.0L;
    return rest > 0.5L || (rest == 0.5L && odd) ? below + 1.0L : below;
}

// The same by another library.
inline long double roundedByMpfr(double x, int fractBits, int rounding)
{
    mpfr_t v;
    mpfr_init2(v, 64);
    mpfr_set_d(v, x, MPFR_RNDN);
    mpfr_mul_2si(v, v, fractBits, MPFR_RNDN);
    mpfr_rint(v, v,
              rounding == RVX_CVT_TRUNC   ? MPFR_RNDZ
              : rounding == RVX_CVT_FLOOR ? MPFR_RNDD
              : rounding == RVX_CVT_CEIL  ? MPFR_RNDU
                                          : MPFR_RNDN);
    const long double result = mpfr_get_ld(v, MPFR_RNDN);
    mpfr_clear(v);
    return result;
}

inline Result convert(double x, int size, int fractBits, int rounding, bool isUnsigned, bool clip)
{
    const std::int64_t lo = isUnsigned ? 0 : -(INT64_C(1) << (size - 1));
    const std::int64_t hi = lo + (INT64_C(1) << size) - 1;
    const std::int64_t limit = std::signbit(x) ? lo : hi;
    if (std::isnan(x) || std::isinf(x))
        return {false, clip, limit};
    const long double v = roundedBy(std::ldexp(static_cast<long double>(x), fractBits), rounding);
    if (v >= static_cast<long double>(lo) && v <= static_cast<long double>(hi))
        return {true, true, static_cast<std::int64_t>(v)};
    if (clip)
        return {false, true, limit};
    if (std::fabs(v) >= (size == 32 ? 0x1p50L : 0x1p30L))
        return {false, false, 0};
    const std::int64_t span = INT64_C(1) << size;
    std::int64_t low = static_cast<std::int64_t>(v) % span;
    if (low < lo)
        low += span;
    if (low > hi)
        low -= span;
    return {false, true, low};
}

} // namespace fixed

#endif
