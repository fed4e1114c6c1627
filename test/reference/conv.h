// Convolutions from their definitions: in the order of additions that direct sums
// state, and in extended precision.

#ifndef RVX_TEST_REFERENCE_CONV_H
#define RVX_TEST_REFERENCE_CONV_H

#include <cmath>
#include <complex>
#include <cstddef>
#include <type_traits>
#include <vector>

#include "rvx.h"

namespace reference {

inline double times(double x, double h)
{
    return x * h;
}

inline ZCplx times(ZCplx x, double h)
{
    return {x.re * h, x.im * h};
}

inline ZCplx times(double x, ZCplx h)
{
    return {x * h.re, x * h.im};
}

inline ZCplx times(ZCplx x, ZCplx h)
{
    const double re = x.re * h.re - x.im * h.im;
    const double im = x.re * h.im + x.im * h.re;
    return {re, im};
}

inline double sum(double a, double b)
{
    return a + b;
}

inline ZCplx sum(ZCplx a, ZCplx b)
{
    return {a.re + b.re, a.im + b.im};
}

// The walk in three steps over cleared outputs.
template <typename X, typename H>
auto convInStatedOrder(const std::vector<X> &x, const std::vector<H> &h)
{
    using Y = decltype(times(X{}, H{}));
    const std::size_t xLen = x.size(), hLen = h.size();
    const std::size_t xEven = xLen / 2 * 2, hEven = hLen / 2 * 2;
    std::vector<Y> y(xLen + hLen - 1, Y{});
    for (std::size_t j = 0; j < hEven; j += 2) {
        Y carry = Y{};
        for (std::size_t i = 0; i < xEven; i += 2) {
            y[i + j] = sum(times(x[i], h[j]), sum(carry, y[i + j]));
            y[i + j + 1] = sum(times(x[i], h[j + 1]), sum(times(x[i + 1], h[j]), y[i + j + 1]));
            carry = times(x[i + 1], h[j + 1]);
        }
        if (xEven > 0)
            y[xEven + j] = sum(y[xEven + j], carry);
    }
    if (hLen % 2 != 0)
        for (std::size_t i = 0; i < xLen; ++i)
            y[hLen - 1 + i] = sum(y[hLen - 1 + i], times(x[i], h[hLen - 1]));
    if (xLen % 2 != 0)
        for (std::size_t j = 0; j < hEven; ++j)
            y[xLen - 1 + j] = sum(y[xLen - 1 + j], times(x[xLen - 1], h[j]));
    return y;
}

using Wide = std::complex<long double>;

inline Wide widen(double x)
{
    return {x, 0.0L};
}

inline Wide widen(ZCplx z)
{
    return {z.re, z.im};
}

// One output, in extended precision.
template <typename X, typename H>
Wide convAt(const std::vector<X> &x, const std::vector<H> &h, std::size_t n)
{
    Wide total = 0.0L;
    for (std::size_t j = n < x.size() ? 0 : n - x.size() + 1; j < h.size() && j <= n; ++j)
        total += widen(x[n - j]) * widen(h[j]);
    return total;
}

} // namespace reference

#endif
