// The discrete Fourier transform in long double: by its definition, and in halves
// for lengths at which the definition takes too long.

#ifndef RVX_TEST_DFT_H
#define RVX_TEST_DFT_H

#include <cmath>
#include <cstddef>
#include <vector>

#include "rvx.h"

struct ZExtended {
    long double re;
    long double im;
};

inline std::vector<ZExtended> extended(const std::vector<ZCplx> &x)
{
    std::vector<ZExtended> wide;
    for (const ZCplx &value : x)
        wide.push_back({value.re, value.im});
    return wide;
}

// exp(-2 pi i k / n) for 0 <= k < n, or its conjugate for direction -1.
inline std::vector<ZExtended> unitRoots(std::size_t n, int direction)
{
    const long double step = -2.0L * std::acos(-1.0L) / static_cast<long double>(n) * direction;
    std::vector<ZExtended> roots(n);
    for (std::size_t k = 0; k < n; ++k) {
        const long double angle = step * static_cast<long double>(k);
        roots[k] = {std::cos(angle), std::sin(angle)};
    }
    return roots;
}

// X[k] = sum over n of x[n] exp(-2 pi i k n / N), the conjugate kernel for
// direction -1; nothing is scaled.
inline std::vector<ZExtended> dftByDefinition(const std::vector<ZExtended> &x, int direction)
{
    const std::vector<ZExtended> roots = unitRoots(x.size(), direction);
    std::vector<ZExtended> result(x.size());
    for (std::size_t k = 0; k < x.size(); ++k) {
        ZExtended sum = {0.0L, 0.0L};
        for (std::size_t n = 0; n < x.size(); ++n) {
            const ZExtended w = roots[k * n % x.size()];
            sum.re += x[n].re * w.re - x[n].im * w.im;
            sum.im += x[n].re * w.im + x[n].im * w.re;
        }
        result[k] = sum;
    }
    return result;
}

// n values of x, stride apart, into n of result.
inline void dftOfStretch(const ZExtended *x, ZExtended *result, std::size_t n, std::size_t stride,
                         const std::vector<ZExtended> &roots)
{
    if (n == 1) {
        result[0] = x[0];
        return;
    }
    const std::size_t half = n / 2;
    dftOfStretch(x, result, half, 2 * stride, roots);
    dftOfStretch(x + stride, result + half, half, 2 * stride, roots);
    for (std::size_t k = 0; k < half; ++k) {
        const ZExtended w = roots[k * stride];
        const ZExtended even = result[k];
        const ZExtended odd = result[k + half];
        const ZExtended turned = {w.re * odd.re - w.im * odd.im, w.re * odd.im + w.im * odd.re};
        result[k] = {even.re + turned.re, even.im + turned.im};
        result[k + half] = {even.re - turned.re, even.im - turned.im};
    }
}

// The same as dftByDefinition, for powers of two.
inline std::vector<ZExtended> dftInHalves(const std::vector<ZExtended> &x, int direction)
{
    std::vector<ZExtended> result(x.size());
    dftOfStretch(x.data(), result.data(), x.size(), 1, unitRoots(x.size(), direction));
    return result;
}

#endif
