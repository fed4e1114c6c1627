// Correlations from their definition: in the order of additions that direct sums state,
// in extended precision, and by transforms of blocks in plain steps.

#ifndef RVX_TEST_REFERENCE_CORR_H
#define RVX_TEST_REFERENCE_CORR_H

#include <complex>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "convolution/rvxfir2.h"
#include "reference/conv.h"
#include "rvx.h"

namespace reference {

// conj(a) * b, each part rounded as it stands here.
inline double meet(double a, double b)
{
    return a * b;
}

inline ZCplx meet(double a, ZCplx b)
{
    return {a * b.re, a * b.im};
}

inline ZCplx meet(ZCplx a, double b)
{
    return {a.re * b, -(a.im * b)};
}

inline ZCplx meet(ZCplx a, ZCplx b)
{
    return {a.re * b.re + a.im * b.im, a.re * b.im - a.im * b.re};
}

// Calls with both elements of each product of a lag, in ascending order.
template <typename A, typename B, typename Visit>
void forEachPair(const std::vector<A> &src1, const std::vector<B> &src2, std::int64_t lag,
                 Visit visit)
{
    const auto len2 = static_cast<std::int64_t>(src2.size());
    for (std::size_t i = 0; i < src1.size(); ++i) {
        const std::int64_t partner = static_cast<std::int64_t>(i) + lag;
        if (0 <= partner && partner < len2)
            visit(src1[i], src2[static_cast<std::size_t>(partner)]);
    }
}

// One lag, as it is summed.
template <typename A, typename B>
auto corrInStatedOrder(const std::vector<A> &src1, const std::vector<B> &src2, std::int64_t lag)
{
    decltype(meet(A{}, B{})) total = {};
    forEachPair(src1, src2, lag, [&](A a, B b) { total = sum(total, meet(a, b)); });
    return total;
}

// The same in extended precision.
template <typename A, typename B>
Wide corrAt(const std::vector<A> &src1, const std::vector<B> &src2, std::int64_t lag)
{
    Wide total = 0.0L;
    forEachPair(src1, src2, lag, [&](A a, B b) { total += std::conj(widen(a)) * widen(b); });
    return total;
}

// ---- by transforms of blocks --------------------------------------------------
//
// Spectra stand in natural order here; the transforms themselves are the library's.

using Line = std::vector<ZCplx>;
using Reals = std::vector<double>;

inline std::size_t bitReversed(std::size_t k, int order)
{
    std::size_t reversed = 0;
    for (int bit = 0; bit < order; ++bit)
        if ((k >> bit & 1) != 0)
            reversed |= std::size_t{1} << (order - 1 - bit);
    return reversed;
}

inline Line permuted(const Line &z, int order)
{
    Line out(z.size());
    for (std::size_t k = 0; k < z.size(); ++k)
        out[k] = z[bitReversed(k, order)];
    return out;
}

inline Line spectrum(Line z, int order)
{
    rvxzFft(z.data(), order, RVX_FFT_FORWARD | RVX_FFT_OUT_BIT_REV);
    return permuted(z, order);
}

inline Line unscaledInverse(const Line &spectrum, int order)
{
    Line z = permuted(spectrum, order);
    rvxzFft(z.data(), order, RVX_FFT_INVERSE | RVX_FFT_NO_SCALE | RVX_FFT_IN_BIT_REV);
    return z;
}

// Of 2^(order + 1) real values: bins 0 and 2^order in z[0], the others behind it.
inline Line packedSpectrum(const Reals &values, int order)
{
    Line z(values.size() / 2);
    for (std::size_t i = 0; i < z.size(); ++i)
        z[i] = {values[2 * i], values[2 * i + 1]};
    rvxzFft(z.data(), order, RVX_FFT_FORWARD | RVX_FFT_OUT_BIT_REV);
    rvxRealSplitFwd(z.data(), order, RVX_FFT_FORWARD | RVX_FFT_OUT_BIT_REV);
    return permuted(z, order);
}

inline Reals realsOfPacked(const Line &packed, int order)
{
    Line z = permuted(packed, order);
    const int flags = RVX_FFT_INVERSE | RVX_FFT_NO_SCALE | RVX_FFT_IN_BIT_REV;
    rvxRealSplitInv(z.data(), order, flags);
    rvxzFft(z.data(), order, flags);
    Reals values;
    for (const ZCplx &pair : z)
        values.insert(values.end(), {pair.re, pair.im});
    return values;
}

// n values from index `begin` on, zeros at indices outside [first, end).
template <typename Element>
std::vector<Element> piece(const std::vector<Element> &src, std::int64_t begin, std::size_t n,
                           std::int64_t first, std::int64_t end)
{
    std::vector<Element> out(n, Element{});
    for (std::size_t i = 0; i < n; ++i) {
        const std::int64_t index = begin + static_cast<std::int64_t>(i);
        if (first <= index && index < end && index < static_cast<std::int64_t>(src.size()))
            out[i] = src[static_cast<std::size_t>(index)];
    }
    return out;
}

inline ZCplx conjugate(ZCplx z)
{
    return {z.re, -z.im};
}

inline void gain(ZCplx &acc, ZCplx product)
{
    acc = sum(acc, product);
}

// Half the transforms' length for a number of lags, and its order.
struct Half {
    explicit Half(std::int64_t lags)
    {
        while (len < static_cast<std::size_t>(lags)) {
            len *= 2;
            ++order;
        }
    }
    std::size_t len = 1;
    int order = 0;
};

// Calls with the pieces of src1 and src2 of each block, of twice half.len values.
template <typename A, typename B, typename Add>
void forEachBlock(const std::vector<A> &src1, const std::vector<B> &src2, std::int64_t loLag,
                  const Half &half, std::int64_t first2, Add add)
{
    const auto step = static_cast<std::int64_t>(half.len);
    for (std::int64_t begin = 0; begin < static_cast<std::int64_t>(src1.size()); begin += step)
        add(piece(src1, begin, 2 * half.len, 0, begin + step),
            piece(src2, begin + loLag, 2 * half.len, first2, INT64_MAX));
}

inline Reals corrByBlocks(const Reals &src1, const Reals &src2, std::int64_t loLag,
                          std::int64_t lags)
{
    const Half half(lags);
    const std::size_t n = 2 * half.len;
    Line acc(half.len, ZCplx{});
    forEachBlock(src1, src2, loLag, half, 0, [&](const Reals &p, const Reals &q) {
        Line z(n);
        for (std::size_t i = 0; i < n; ++i)
            z[i] = {p[i], q[i]};
        z = spectrum(z, half.order + 1);
        gain(acc[0], {z[0].re * z[0].im, z[half.len].re * z[half.len].im});
        for (std::size_t k = 1; k < half.len; ++k) {
            const ZCplx z1 = z[k], z2 = z[n - k];
            const double a = (z1.re + z2.re) * 0.5, b = (z1.im - z2.im) * 0.5;
            const double c = (z1.im + z2.im) * 0.5, d = (z1.re - z2.re) * 0.5;
            gain(acc[k], {-d * b + c * a, -d * a - b * c});
        }
    });
    Reals values = realsOfPacked(acc, half.order);
    values.resize(static_cast<std::size_t>(lags));
    for (double &value : values)
        value *= 1.0 / static_cast<double>(n);
    return values;
}

inline Line scaledLags(Line acc, const Half &half, std::int64_t lags)
{
    acc = unscaledInverse(acc, half.order + 1);
    acc.resize(static_cast<std::size_t>(lags));
    const double scale = 1.0 / static_cast<double>(2 * half.len);
    for (ZCplx &value : acc)
        value = {value.re * scale, value.im * scale};
    return acc;
}

inline Line corrByBlocks(const Line &src1, const Line &src2, std::int64_t loLag, std::int64_t lags)
{
    const Half half(lags);
    Line acc(2 * half.len, ZCplx{});
    forEachBlock(src1, src2, loLag, half, 1, [&](const Line &p, const Line &q) {
        const Line x = spectrum(p, half.order + 1), y = spectrum(q, half.order + 1);
        for (std::size_t k = 0; k < acc.size(); ++k)
            gain(acc[k], meet(x[k], y[k]));
    });
    return scaledLags(acc, half, lags);
}

inline Line corrByBlocks(const Reals &src1, const Line &src2, std::int64_t loLag, std::int64_t lags)
{
    const Half half(lags);
    const std::size_t n = 2 * half.len;
    Line acc(n, ZCplx{});
    forEachBlock(src1, src2, loLag, half, 1, [&](const Reals &p, const Line &q) {
        const Line r = packedSpectrum(p, half.order), v = spectrum(q, half.order + 1);
        gain(acc[0], {v[0].re * r[0].re, v[0].im * r[0].re});
        gain(acc[half.len], {v[half.len].re * r[0].im, v[half.len].im * r[0].im});
        for (std::size_t k = 1; k < half.len; ++k) {
            gain(acc[k], meet(r[k], v[k]));
            gain(acc[n - k], meet(conjugate(r[k]), v[n - k]));
        }
    });
    return scaledLags(acc, half, lags);
}

inline Line corrByBlocks(const Line &src1, const Reals &src2, std::int64_t loLag, std::int64_t lags)
{
    const Half half(lags);
    const std::size_t n = 2 * half.len;
    Line acc(n, ZCplx{});
    forEachBlock(src1, src2, loLag, half, 1, [&](const Line &p, const Reals &q) {
        const Line v = spectrum(p, half.order + 1), r = packedSpectrum(q, half.order);
        gain(acc[0], meet(v[0], r[0].re));
        gain(acc[half.len], meet(v[half.len], r[0].im));
        for (std::size_t k = 1; k < half.len; ++k) {
            gain(acc[k], meet(v[k], r[k]));
            gain(acc[n - k], meet(v[n - k], conjugate(r[k])));
        }
    });
    return scaledLags(acc, half, lags);
}

// The factors of an autocorrelation's normalisation, `scale` being that of the inverse.
inline double corrWeight(double scale, std::size_t len, std::size_t k, int corrType)
{
    const double divisor[] = {1.0, static_cast<double>(len), static_cast<double>(len - k)};
    return scale / divisor[corrType];
}

inline Reals autoCorrByBlocks(const Reals &src, std::int64_t lags, int corrType)
{
    const Half half(lags);
    const std::size_t n = 2 * half.len;
    Line acc(half.len, ZCplx{}), right(half.len, ZCplx{});
    for (std::size_t block = (src.size() + half.len - 1) / half.len; block-- > 0;) {
        const auto begin = static_cast<std::int64_t>(block * half.len);
        const Line x = packedSpectrum(
            piece(src, begin, n, 0, begin + static_cast<std::int64_t>(half.len)), half.order);
        // The last block has none to its right, and adds nothing but its own power.
        acc[0].re += (right[0].re + x[0].re) * x[0].re;
        acc[0].im += (right[0].im + x[0].im) * x[0].im;
        for (std::size_t k = 1; k < half.len; ++k) {
            const double sign = k % 2 == 0 ? 1.0 : -1.0;
            const ZCplx s = {x[k].re + sign * right[k].re, x[k].im + sign * right[k].im};
            gain(acc[k], {x[k].im * s.im + x[k].re * s.re, s.im * x[k].re - s.re * x[k].im});
        }
        right = x;
    }
    Reals values = realsOfPacked(acc, half.order);
    values.resize(static_cast<std::size_t>(lags));
    for (std::size_t k = 0; k < values.size(); ++k)
        values[k] *= corrWeight(1.0 / static_cast<double>(n), src.size(), k, corrType);
    return values;
}

inline Line autoCorrByBlocks(const Line &src, std::int64_t lags, int corrType)
{
    const Half half(lags);
    const std::size_t n = 2 * half.len;
    Line acc(n, ZCplx{}), right(n, ZCplx{});
    for (std::size_t block = (src.size() + half.len - 1) / half.len; block-- > 0;) {
        const auto begin = static_cast<std::int64_t>(block * half.len);
        const Line x = spectrum(
            piece(src, begin, n, 0, begin + static_cast<std::int64_t>(half.len)), half.order + 1);
        for (std::size_t k = 0; k < n; ++k) {
            const double sign = k % 2 == 0 ? 1.0 : -1.0;
            gain(acc[k],
                 meet(x[k], ZCplx{x[k].re + sign * right[k].re, x[k].im + sign * right[k].im}));
        }
        right = x;
    }
    acc = unscaledInverse(acc, half.order + 1);
    acc.resize(static_cast<std::size_t>(lags));
    for (std::size_t k = 0; k < acc.size(); ++k) {
        const double weight = corrWeight(1.0 / static_cast<double>(n), src.size(), k, corrType);
        acc[k] = {acc[k].re * weight, acc[k].im * weight};
    }
    return acc;
}

inline Reals autoCorrInStatedOrder(const Reals &src, std::int64_t lags, int corrType)
{
    Reals values;
    for (std::int64_t k = 0; k < lags; ++k) {
        double r = corrInStatedOrder(src, src, k);
        if (corrType == RVX_AUTOCORR_BIASED)
            r *= 1.0 / static_cast<double>(src.size());
        if (corrType == RVX_AUTOCORR_UNBIASED)
            r /= static_cast<double>(static_cast<std::int64_t>(src.size()) - k);
        values.push_back(r);
    }
    return values;
}

inline Line autoCorrInStatedOrder(const Line &src, std::int64_t lags, int corrType)
{
    Line values;
    for (std::int64_t k = 0; k < lags; ++k) {
        const ZCplx r = corrInStatedOrder(src, src, k);
        const double weight = corrWeight(1.0, src.size(), static_cast<std::size_t>(k), corrType);
        values.push_back({r.re * weight, r.im * weight});
    }
    return values;
}

} // namespace reference

#endif
