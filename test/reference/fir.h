// FIR filters straight from their formulas.

#ifndef RVX_TEST_REFERENCE_FIR_H
#define RVX_TEST_REFERENCE_FIR_H

#include <cstddef>
#include <vector>

#include "rvx.h"

namespace reference {

struct FirRates {
    int up = 1;
    int upPhase = 0;
    int down = 1;
    int downPhase = 0;
};

inline int pastLen(int tapsLen, const FirRates &rates)
{
    return rates.up == 1 && rates.down == 1 ? tapsLen - 1 : (tapsLen + rates.up - 1) / rates.up;
}

// sum + h * x with every product and sum rounded to double. The volatile copies
// keep the compiler from joining them.
inline double rounded(double x)
{
    volatile double stored = x;
    return stored;
}

inline double plus(double sum, double h, double x)
{
    return rounded(sum + rounded(h * x));
}

inline ZCplx plus(ZCplx sum, ZCplx h, ZCplx x)
{
    const double re = rounded(rounded(h.re * x.re) - rounded(h.im * x.im));
    const double im = rounded(rounded(h.re * x.im) + rounded(h.im * x.re));
    return {rounded(sum.re + re), rounded(sum.im + im)};
}

inline ZCplx plus(ZCplx sum, ZCplx h, double x)
{
    return {plus(sum.re, h.re, x), plus(sum.im, h.im, x)};
}

inline ZCplx plus(ZCplx sum, double h, ZCplx x)
{
    return {plus(sum.re, h, x.re), plus(sum.im, h, x.im)};
}

// The samples h[j] and x[index] that output m is the sum of, the oldest sample
// first: all j whose raised time falls on a sample.
template <typename Visit>
void visitTerms(int tapsLen, const FirRates &rates, long m, Visit visit)
{
    const long time = m * rates.down + rates.downPhase;
    for (int j = tapsLen - 1; j >= 0; --j) {
        const long since = time - j - rates.upPhase;
        if (since % rates.up == 0)
            visit(static_cast<std::size_t>(j), since / rates.up);
    }
}

// past[past.size() + i] for negative i, in[i] else
template <typename Sample>
Sample sampleAt(const std::vector<Sample> &past, const std::vector<Sample> &in, long i)
{
    return i < 0 ? past.at(static_cast<std::size_t>(static_cast<long>(past.size()) + i))
                 : in.at(static_cast<std::size_t>(i));
}

// The outputs to the bit.
template <typename Out, typename Tap, typename Sample>
std::vector<Out> firExactly(const std::vector<Tap> &h, const std::vector<Sample> &past,
                            const std::vector<Sample> &in, const FirRates &rates)
{
    std::vector<Out> out;
    const long count = static_cast<long>(in.size()) / rates.down * rates.up;
    for (long m = 0; m < count; ++m) {
        Out sum = {};
        visitTerms(static_cast<int>(h.size()), rates, m, [&](std::size_t j, long index) {
            sum = plus(sum, h[j], sampleAt(past, in, index));
        });
        out.push_back(sum);
    }
    return out;
}

// One part of an output in extended precision, and the sum of its terms' sizes,
// which rounding errors are measured by.
struct WideSum {
    long double value = 0;
    long double size = 0;
    int terms = 0;

    void add(long double h, long double x)
    {
        value += h * x;
        size += h * x < 0 ? -(h * x) : h * x;
        ++terms;
    }
};

} // namespace reference

#endif
