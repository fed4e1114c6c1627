// Adaptive filters from their definition: a filter remembers every sample that it
// was ever given. Each product and sum is rounded once, in the promised order, so
// that bits can be compared.

#ifndef RVX_TEST_REFERENCE_LMS_H
#define RVX_TEST_REFERENCE_LMS_H

#include <cstddef>
#include <vector>

#include "rvx.h"

namespace reference {

inline double rounded(double x)
{
    const volatile double kept = x;
    return kept;
}

// a * b + c * d
inline double twoProducts(double a, double b, double c, double d)
{
    return rounded(a * b) + rounded(c * d);
}

inline double adaptedTap(double tap, double kept, double sample, double gain)
{
    return twoProducts(tap, kept, sample, gain);
}

inline ZCplx adaptedTap(ZCplx tap, double kept, double sample, ZCplx gain)
{
    return {twoProducts(tap.re, kept, sample, gain.re), twoProducts(tap.im, kept, sample, gain.im)};
}

inline ZCplx adaptedTap(ZCplx tap, double kept, ZCplx sample, ZCplx gain)
{
    ZCplx next;
    next.re = rounded(tap.re * kept) + twoProducts(sample.im, gain.im, sample.re, gain.re);
    next.im = rounded(rounded(tap.im * kept) - rounded(sample.im * gain.re)) +
              rounded(sample.re * gain.im);
    return next;
}

inline void addProduct(double &sum, double tap, double sample)
{
    sum = rounded(sum + rounded(tap * sample));
}

inline void addProduct(ZCplx &sum, ZCplx tap, double sample)
{
    addProduct(sum.re, tap.re, sample);
    addProduct(sum.im, tap.im, sample);
}

inline void addProduct(ZCplx &sum, ZCplx tap, ZCplx sample)
{
    sum.re += rounded(rounded(tap.re * sample.re) - rounded(tap.im * sample.im));
    sum.im += twoProducts(tap.re, sample.im, tap.im, sample.re);
}

inline double gainOf(double err, float step)
{
    return rounded(err * static_cast<double>(step));
}

inline ZCplx gainOf(ZCplx err, float step)
{
    return {gainOf(err.re, step), gainOf(err.im, step)};
}

template <typename Tap, typename Sample>
struct Lms {
    std::vector<Tap> taps;
    std::vector<Sample> samples;
    float step;
    float leak;
    int errDly;

    Sample ago(int k) const
    {
        const auto size = static_cast<int>(samples.size());
        return k < size ? samples[static_cast<std::size_t>(size - 1 - k)] : Sample{};
    }

    // Takes a block in; its last `skipped` samples come after the newest one of the
    // output.
    Tap take(const std::vector<Sample> &block, int skipped, Tap err)
    {
        const auto n = static_cast<int>(taps.size());
        if (step > 0.0f)
            for (int i = 0; i < n; ++i) {
                Tap &tap = taps[static_cast<std::size_t>(i)];
                tap = adaptedTap(tap, 1.0 - static_cast<double>(leak), ago(skipped + errDly + i),
                                 gainOf(err, step));
            }
        samples.insert(samples.end(), block.begin(), block.end());
        Tap sum = {};
        for (int i = 0; i < n; ++i)
            addProduct(sum, taps[static_cast<std::size_t>(i)], ago(skipped + i));
        return sum;
    }
};

} // namespace reference

#endif
