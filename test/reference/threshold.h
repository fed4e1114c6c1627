// Thresholds and reciprocals by the steps that define them, one element or one group
// at a time.

#ifndef RVX_TEST_REFERENCE_THRESHOLD_H
#define RVX_TEST_REFERENCE_THRESHOLD_H

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

#include "rvx.h"

namespace reference {

// Below in the order of bit patterns: high words as integers, low words where these
// are equal, the other way round where both values have the sign bit.
inline bool isBelowInBits(double a, double b)
{
    std::uint64_t p, q;
    std::memcpy(&p, &a, sizeof p);
    std::memcpy(&q, &b, sizeof q);
    const auto highA = static_cast<std::int32_t>(p >> 32),
               highB = static_cast<std::int32_t>(q >> 32);
    const auto lowA = static_cast<std::uint32_t>(p), lowB = static_cast<std::uint32_t>(q);
    if (highA < 0 && highB < 0)
        return highA != highB ? highA > highB : lowA > lowB;
    return highA != highB ? highA < highB : lowA < lowB;
}

inline double limited(double x, double thresh, int relOp)
{
    const bool replaced = relOp == 0 ? isBelowInBits(x, thresh) : isBelowInBits(thresh, x);
    return replaced ? thresh : x;
}

inline ZCplx limited(ZCplx z, double thresh, int relOp)
{
    const double squared = thresh * thresh;
    const double p = z.re * z.re + z.im * z.im;
    if (relOp == 0 ? !isBelowInBits(p, squared) : !isBelowInBits(squared, p))
        return z;
    const bool hasExponent = !(p < std::numeric_limits<double>::min());
    if (relOp == 0 && !hasExponent)
        return {thresh, z.im};
    const double s = std::sqrt(squared / p);
    return {z.re * s, z.im * s};
}

// With an unordered comparison as equal.
inline bool isZero(long double x)
{
    return !(x < 0) && !(x > 0);
}

inline bool isInRange(long double product)
{
    return !(std::fabs(product) > static_cast<long double>(std::numeric_limits<double>::max()));
}

inline bool invertOne(double x, double *result)
{
    *result =
        isZero(static_cast<long double>(x)) ? std::numeric_limits<double>::infinity() : 1.0 / x;
    return isZero(static_cast<long double>(x));
}

// Reciprocals without a threshold: groups of four, pairs, single elements. True if a
// failure is noted.
inline bool inverted(const double *src, double *dst, int n)
{
    bool failed = false;
    int i = 0;
    for (; n - i >= 4; i += 4) {
        const double x[4] = {src[i], src[i + 1], src[i + 2], src[i + 3]};
        const long double p = static_cast<long double>(x[0]) * static_cast<long double>(x[1]);
        const long double s = static_cast<long double>(x[2]) * static_cast<long double>(x[3]);
        if (!isZero(p * s)) {
            for (int j = 0; j < 4; ++j)
                dst[i + j] = 1.0 / x[j];
            continue;
        }
        failed = true;
        for (int pair = 0; pair < 4; pair += 2) {
            const long double product = pair == 0 ? p : s;
            for (int j = pair; j < pair + 2; ++j)
                if (!isZero(product) && isInRange(product))
                    dst[i + j] = 1.0 / x[j];
                else
                    invertOne(x[j], dst + i + j);
        }
    }
    for (; i < n; ++i)
        failed = invertOne(src[i], dst + i) || failed;
    return failed;
}

inline double invertedBounded(double x, double thresh)
{
    const double r = 1.0 / thresh;
    if (std::fabs(x) > thresh)
        return 1.0 / x;
    return std::isnan(x) || x < 0.0 ? -r : r;
}

inline bool hasZeroHighWord(double x)
{
    std::uint64_t word;
    std::memcpy(&word, &x, sizeof word);
    return word >> 32 == 0;
}

inline bool isZero(ZCplx z)
{
    return hasZeroHighWord(z.re) && hasZeroHighWord(z.im);
}

inline double squaredMagnitude(ZCplx z)
{
    return z.im * z.im + z.re * z.re;
}

inline ZCplx invertedBy(ZCplx z, double d, bool bounded, double g)
{
    if (bounded && g < d)
        d = std::sqrt(d * g);
    return {z.re * d, -d * z.im};
}

// Complex reciprocals. Groups share the reciprocal of the product of their squared
// magnitudes, carried in a range that none of these leaves: each share is then the
// element's own quotient, or infinite or NaN as a zero or a NaN among them makes it.
inline bool inverted(const ZCplx *src, ZCplx *dst, int n, double thresh)
{
    const bool bounded = !hasZeroHighWord(thresh);
    const double g = 1.0 / (thresh * thresh);
    bool failed = false;
    const auto invertOne = [&](ZCplx z) -> ZCplx {
        if (!isZero(z))
            return invertedBy(z, 1.0 / squaredMagnitude(z), bounded, g);
        if (bounded)
            return {thresh * g, 0.0};
        failed = true;
        return {std::numeric_limits<double>::infinity(), 0.0};
    };
    int i = 0;
    for (; n - i >= 4; i += 4) {
        ZCplx z[4];
        bool shares = true;
        long double q[4], product = 1;
        for (int j = 0; j < 4; ++j) {
            z[j] = src[i + j];
            const long double re = z[j].re, im = z[j].im;
            q[j] = static_cast<long double>(squaredMagnitude(z[j]));
            if (q[j] == 0)
                q[j] = im * im + re * re;
            product *= q[j];
            shares = shares && !isZero(z[j]);
        }
        // An infinite product has the reciprocal 0.0, of which there are no shares.
        shares = shares && !std::isinf(product);
        for (int j = 0; j < 4; ++j) {
            long double share = 1 / product;
            for (int k = 0; k < 4; ++k)
                if (k != j)
                    share *= q[k];
            if (shares && (std::isnan(share) || std::isinf(share)))
                dst[i + j] = invertedBy(z[j], static_cast<double>(share), bounded, g);
            else
                dst[i + j] = invertOne(z[j]);
        }
    }
    for (; i < n; ++i)
        dst[i] = invertOne(src[i]);
    return !bounded && failed;
}

} // namespace reference

#endif
