// Wavelet transforms from their definition, one output and one product at a time, with
// periodic indices. In double, sums have the promised order and bits can be compared; in
// long double, results are good to far more digits.

#ifndef RVX_TEST_REFERENCE_WAVELET_H
#define RVX_TEST_REFERENCE_WAVELET_H

#include <cstddef>
#include <vector>

#include "rvx.h"

namespace reference {

// The element at any index of a sequence without end that repeats these.
template <typename Real>
Real periodic(const std::vector<Real> &x, long index)
{
    const long n = static_cast<long>(x.size());
    return x[static_cast<std::size_t>((index % n + n) % n)];
}

// One of the two bands below x.
template <typename Real>
std::vector<Real> band(const rvxWtState &state, int filter, std::vector<Real> x)
{
    if (x.size() % 2 == 1)
        x.push_back(x.back());
    std::vector<Real> y(x.size() / 2);
    for (std::size_t k = 0; k < y.size(); ++k)
        for (int j = 0; j < state.len_filt[filter]; ++j) {
            const Real tap = state.tap_filt[filter][j];
            const long at = 2 * static_cast<long>(k) + state.ofs_filt[filter] - j;
            y[k] = y[k] + tap * periodic(x, at);
        }
    return y;
}

// What a band gives to sample t: filter indices go down as k goes up.
template <typename Real>
Real part(const rvxWtState &state, int filter, const std::vector<Real> &values, long t)
{
    Real sum = 0;
    const int len = state.len_filt[filter];
    for (int index = len - 1; index >= 0; --index) {
        const long twice = t + state.ofs_filt[filter] - index;
        if (twice % 2 == 0)
            sum = sum +
                  static_cast<Real>(state.tap_filt[filter][index]) * periodic(values, twice / 2);
    }
    return sum;
}

template <typename Real>
std::vector<Real> decompose(const rvxWtState &state, const std::vector<Real> &signal)
{
    std::vector<Real> low = signal, coefficients;
    for (int level = 0; level < state.level; ++level) {
        const std::vector<Real> high = band(state, 1, low);
        low = band(state, 0, low);
        coefficients.insert(coefficients.begin(), high.begin(), high.end());
    }
    coefficients.insert(coefficients.begin(), low.begin(), low.end());
    return coefficients;
}

template <typename Real>
std::vector<Real> reconstruct(const rvxWtState &state, const std::vector<Real> &coefficients)
{
    auto next = coefficients.begin();
    const auto take = [&next](int n) {
        next += n;
        return std::vector<Real>(next - n, next);
    };
    std::vector<Real> low = take(state.lenLevel[state.level]);
    for (int level = state.level; level > 0; --level) {
        const std::vector<Real> high = take(state.lenLevel[level]);
        std::vector<Real> y(static_cast<std::size_t>(state.lenLevel[level - 1]));
        for (std::size_t t = 0; t < y.size(); ++t)
            y[t] = part(state, 2, low, static_cast<long>(t)) +
                   part(state, 3, high, static_cast<long>(t));
        low = y;
    }
    return low;
}

} // namespace reference

#endif
