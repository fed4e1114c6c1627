// Square roots by the steps that define them, one element at a time.

#ifndef RVX_TEST_REFERENCE_ROOT_H
#define RVX_TEST_REFERENCE_ROOT_H

#include <cmath>
#include <cstdint>
#include <cstring>

#include "rvx.h"

namespace reference {

inline std::uint64_t wordOf(double x)
{
    std::uint64_t word;
    std::memcpy(&word, &x, sizeof word);
    return word;
}

inline int exponentField(double x)
{
    return static_cast<int>(wordOf(x) >> 52 & 2047);
}

inline float floatOf(std::uint32_t word)
{
    float x;
    std::memcpy(&x, &word, sizeof x);
    return x;
}

// The root of an element of a triple: an estimate for the fraction and three Heron
// steps, then the halved exponent, the square root of 2 for the odd ones.
inline double tripleRootByHeron(double x, bool ofSquares)
{
    const std::uint64_t word = wordOf(x);
    const int exponent = exponentField(x);
    if (ofSquares ? exponent == 0 : word >> 32 == 0)
        return 0.0;
    const std::uint64_t fraction = (word & 0xfffffffffffff) | std::uint64_t{1022} << 52;
    double half;
    std::memcpy(&half, &fraction, sizeof half);
    const long double m = half;
    long double y = static_cast<long double>(floatOf(0x3F171DE7)) * m +
                    static_cast<long double>(floatOf(0x3ED5A858));
    for (int step = 0; step < 3; ++step)
        y = (y + m / y) / 2;
    const int power = ((exponent & ~1) - 1022) / 2;
    const std::uint64_t rootOfTwo = 0x3FF6A09E667F3BCD;
    double scale = 1.0;
    if (exponent % 2 != 0)
        std::memcpy(&scale, &rootOfTwo, sizeof scale);
    return static_cast<double>(y * static_cast<long double>(std::ldexp(scale, power)));
}

// A complex root of a triple, with each sum and product rounded to double and the
// roots given by the caller.
template <typename Root>
ZCplx cplxRootBySteps(ZCplx z, Root root)
{
    const double a = std::fabs(z.re);
    const double squares = z.re * z.re + z.im * z.im;
    const double r = root(squares);
    const double sum = r + a;
    const double t = root(sum * 0.5);
    if (exponentField(t) == 0)
        return {0.0, 0.0};
    const double w = std::fabs(z.im) / t * 0.5;
    ZCplx result = std::signbit(z.re) ? ZCplx{w, t} : ZCplx{t, w};
    if (exponentField(result.im) == 0)
        result.im = 0.0;
    else
        result.im = std::copysign(result.im, z.im);
    return result;
}

} // namespace reference

#endif
