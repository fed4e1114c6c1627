// Recursive filters for tests to compare with, from the difference equation and
// not from a delay line: each output gathers past inputs and outputs.

#ifndef RVX_TEST_REFERENCE_IIR_H
#define RVX_TEST_REFERENCE_IIR_H

#include <complex>
#include <cstddef>
#include <vector>

#include "rvx.h"

// A value of either type in parts. An imaginary part that is not there takes no
// part in products.
struct Parts {
    double re = 0.0, im = 0.0;
    bool complex = false;
    Parts() = default;
    Parts(double x) : re(x) {}
    Parts(ZCplx z) : re(z.re), im(z.im), complex(true) {}
    Parts(double x, double y) : re(x), im(y), complex(true) {}
};

inline Parts operator*(Parts a, Parts b)
{
    if (a.complex && b.complex)
        return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
    if (a.complex)
        return {a.re * b.re, a.im * b.re};
    if (b.complex)
        return {a.re * b.re, a.re * b.im};
    return a.re * b.re;
}

inline Parts operator+(Parts a, Parts b)
{
    if (a.complex || b.complex)
        return {a.re + b.re, a.im + b.im};
    return a.re + b.re;
}

inline Parts operator-(Parts a, Parts b)
{
    if (a.complex || b.complex)
        return {a.re - b.re, a.im - b.im};
    return a.re - b.re;
}

// 1 / a by the library's formula.
inline Parts inverse(Parts a)
{
    if (!a.complex)
        return 1.0 / a.re;
    const double t = 1.0 / (a.im * a.im + a.re * a.re);
    return {(a.im * 0.0 + a.re * 1.0) * t, (a.re * 0.0 - a.im * 1.0) * t};
}

// Direct form, bit for bit. The sum for an output starts with the oldest sample
// that reaches it and ends with the newest. Samples from before the first count
// as a delay line of zeros.
inline std::vector<Parts> referenceDirect(const std::vector<Parts> &taps,
                                          const std::vector<Parts> &x)
{
    const std::size_t order = taps.size() / 2 - 1;
    const Parts f = inverse(taps[order + 1]);
    const Parts zero = x.empty() || !(x[0].complex || f.complex) ? Parts(0.0) : Parts(0.0, 0.0);
    std::vector<Parts> y;
    for (std::size_t n = 0; n < x.size(); ++n) {
        Parts sum = zero;
        const std::size_t reach = n < order ? n : order;
        for (std::size_t i = reach; i >= 1; --i) {
            const Parts term = taps[i] * f * x[n - i] - taps[order + 1 + i] * f * y[n - i];
            // What is order samples old finds no sum; others find at least a zero.
            sum = i == order ? term : term + sum;
        }
        const Parts now = taps[0] * f * x[n];
        y.push_back(order == 0 ? now : now + sum);
    }
    return y;
}

// A cascade, bit for bit: section after section over the whole signal.
inline std::vector<Parts> referenceCascade(const std::vector<Parts> &taps,
                                           const std::vector<Parts> &x)
{
    std::vector<Parts> v = x;
    Parts gain = taps[0].complex ? Parts(1.0, 0.0) : Parts(1.0);
    for (std::size_t q = 0; q < taps.size(); q += 6) {
        const Parts fa = inverse(taps[q + 3]);
        gain = gain.complex ? gain * taps[q] * fa : gain * (taps[q] * fa);
    }
    for (Parts &sample : v)
        sample = gain * sample;
    for (std::size_t q = 0; q < taps.size(); q += 6) {
        const Parts fa = inverse(taps[q + 3]), fb = inverse(taps[q]);
        const Parts zero = !v.empty() && v[0].complex ? Parts(0.0, 0.0) : Parts(0.0);
        Parts before = zero, beforeThat = zero;
        for (Parts &sample : v) {
            const Parts fedBack = sample - taps[q + 4] * fa * before;
            const Parts w = fedBack - taps[q + 5] * fa * beforeThat;
            sample = w + (taps[q + 2] * fb * beforeThat + taps[q + 1] * fb * before);
            beforeThat = before;
            before = w;
        }
    }
    return v;
}

using Wide = std::complex<long double>;

inline Wide widened(Parts a)
{
    return {static_cast<long double>(a.re), static_cast<long double>(a.im)};
}

// The difference equation in long double, taps as given.
inline std::vector<Wide> wideFilter(const std::vector<Parts> &b, const std::vector<Parts> &a,
                                    const std::vector<Wide> &x)
{
    std::vector<Wide> y;
    for (std::size_t n = 0; n < x.size(); ++n) {
        Wide sum = 0.0L;
        for (std::size_t i = 0; i < b.size() && i <= n; ++i)
            sum += widened(b[i]) * x[n - i];
        for (std::size_t i = 1; i < a.size() && i <= n; ++i)
            sum -= widened(a[i]) * y[n - i];
        y.push_back(sum / widened(a[0]));
    }
    return y;
}

#endif
