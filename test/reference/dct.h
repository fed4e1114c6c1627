// The cosine transform: by its definition in long double, and by the halvings and sums
// that the library's results are bound to, written on plain vectors one value at a time.

#ifndef RVX_TEST_REFERENCE_DCT_H
#define RVX_TEST_REFERENCE_DCT_H

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace reference {

using Reals = std::vector<double>;
using Size = std::size_t;

constexpr double PI_AS_DOUBLE = 3.141592653589793;
constexpr double ROOT_OF_TWO = 1.4142135623730951;

// The definition, for any one result. The cosines are those of the exact angles.
class CosineSums {
public:
    explicit CosineSums(Size length) : L(length), cosines(4 * length)
    {
        const long double pi = 3.14159265358979323846264338327950288L;
        for (Size i = 0; i < 4 * L; ++i)
            cosines[i] =
                std::cos(pi * static_cast<long double>(i) / (2.0L * static_cast<long double>(L)));
    }

    long double forward(const Reals &x, Size k) const
    {
        long double sum = 0.0L;
        for (Size n = 0; n < L; ++n)
            sum += static_cast<long double>(x[n]) * at((2 * n + 1) * k);
        return weight(k) * sum;
    }

    long double inverse(const Reals &y, Size n) const
    {
        long double sum = 0.0L;
        for (Size k = 0; k < L; ++k)
            sum += weight(k) * static_cast<long double>(y[k]) * at((2 * n + 1) * k);
        return sum;
    }

private:
    long double at(Size i) const { return cosines[i % std::max<Size>(4 * L, 1)]; }

    long double weight(Size k) const
    {
        return std::sqrt((k == 0 ? 1.0L : 2.0L) / static_cast<long double>(L));
    }

    Size L;
    std::vector<long double> cosines;
};

// ---- powers of two: halvings ---------------------------------------------------

inline double secant(Size n, Size m)
{
    const double step = PI_AS_DOUBLE / static_cast<double>(4 * m);
    return static_cast<double>(
        0.5L / std::cos(static_cast<long double>(2 * n + 1) * static_cast<long double>(step)));
}

// The first result times `first` and the others times `scale`, as parts of the last factors.
inline Reals sums8(const Reals &x, double first = 1.0, double scale = 1.0)
{
    const double r = 0.7071067811865476, c = 0.9238795325112867, s = 0.3826834323650898;
    Reals a(4), b(4), y(8);
    for (Size n = 0; n < 4; ++n) {
        a[n] = x[n] + x[7 - n];
        b[n] = x[n] - x[7 - n];
    }
    y[0] = ((a[0] + a[3]) + (a[1] + a[2])) * first;
    y[4] = ((a[0] + a[3]) - (a[1] + a[2])) * (r * scale);
    y[2] = (a[0] - a[3]) * (c * scale) + (a[1] - a[2]) * (s * scale);
    y[6] = (a[0] - a[3]) * (s * scale) - (a[1] - a[2]) * (c * scale);
    const double second = (b[1] + b[2]) * r;
    const double slow = (b[0] + b[1]) * c + (b[2] + b[3]) * s;
    const double fast = (b[0] + b[1]) * s - (b[2] + b[3]) * c;
    y[1] = ((b[0] + second) + slow) * (0.5097955791041592 * scale);
    y[3] = ((b[0] - second) + fast) * (0.6013448869350453 * scale);
    y[5] = ((b[0] - second) - fast) * (0.8999762231364157 * scale);
    y[7] = ((b[0] + second) - slow) * (2.5629154477415064 * scale);
    return y;
}

inline Reals series8(const Reals &y, double first = 1.0, double scale = 1.0)
{
    const double r = 0.7071067811865476, c = 0.9238795325112867, s = 0.3826834323650898;
    const double cs = c * scale, ss = s * scale;
    const double p = y[2] * cs + y[6] * ss, q = y[2] * ss - y[6] * cs;
    const double level = y[0] * first, middle = y[4] * (r * scale);
    const double sum = level + middle, difference = level - middle;
    const Reals a = {sum + p, difference + q, difference - q, sum - p};
    const double g1 = y[1] * (0.5097955791041592 * scale), g3 = y[3] * (0.6013448869350453 * scale);
    const double g5 = y[5] * (0.8999762231364157 * scale), g7 = y[7] * (2.5629154477415064 * scale);
    const double u0 = (g1 + g7) + (g3 + g5), u1 = (g1 - g7) * c + (g3 - g5) * s;
    const double u2 = ((g1 + g7) - (g3 + g5)) * r, u3 = (g1 - g7) * s - (g3 - g5) * c;
    const Reals b = {u0 + u1, u1 + u2, u2 + u3, u3};
    Reals x(8);
    for (Size n = 0; n < 4; ++n) {
        x[n] = a[n] + b[n];
        x[7 - n] = a[n] - b[n];
    }
    return x;
}

inline Reals typeTwo(const Reals &x);

inline Reals typeFour(Reals v)
{
    const Size m = v.size();
    for (Size n = 0; n < m; ++n)
        v[n] *= secant(n, m);
    Reals y = typeTwo(v);
    for (Size k = 0; k + 1 < m; ++k)
        y[k] += y[k + 1];
    return y;
}

inline Reals typeTwo(const Reals &x)
{
    const Size m = x.size(), h = m / 2;
    if (m == 8)
        return sums8(x);
    Reals a(h), b(h), y(m);
    for (Size n = 0; n < h; ++n) {
        a[n] = x[n] + x[m - 1 - n];
        b[n] = x[n] - x[m - 1 - n];
    }
    a = typeTwo(a);
    b = typeFour(b);
    for (Size i = 0; i < h; ++i) {
        y[2 * i] = a[i];
        y[2 * i + 1] = b[i];
    }
    return y;
}

inline Reals typeThree(const Reals &y)
{
    const Size m = y.size(), h = m / 2;
    if (m == 8)
        return series8(y);
    Reals even(h), odd(h), x(m);
    for (Size i = 0; i < h; ++i) {
        even[i] = y[2 * i];
        odd[i] = y[2 * i + 1];
    }
    even = typeThree(even);
    odd = typeFour(odd);
    for (Size n = 0; n < h; ++n) {
        x[n] = even[n] + odd[n];
        x[m - 1 - n] = even[n] - odd[n];
    }
    return x;
}

inline void scale(Reals &x)
{
    const double first = 1.0 / std::sqrt(static_cast<double>(x.size()));
    for (Size k = 1; k < x.size(); ++k)
        x[k] *= first * ROOT_OF_TWO;
    x[0] *= first;
}

// Lengths from 16 on.
inline Reals halvedForward(const Reals &x)
{
    Reals y = typeTwo(x);
    scale(y);
    return y;
}

inline Reals halvedInverse(Reals y)
{
    scale(y);
    return typeThree(y);
}

// Lengths of 8, 4 and 2: straight lines with the scale in their factors.
inline Reals shortForward(const Reals &x)
{
    if (x.size() == 8)
        return sums8(x, 0.35355339059327376, 0.5);
    if (x.size() == 2)
        return {(x[0] + x[1]) * 0.7071067811865476, (x[0] - x[1]) * 0.7071067811865476};
    const double c = 0.6532814824381883, s = 0.27059805007309845;
    const double outer = x[0] + x[3], inner = x[1] + x[2], p = x[0] - x[3], q = x[1] - x[2];
    return {(outer + inner) * 0.5, p * c + q * s, (outer - inner) * 0.5, p * s - q * c};
}

inline Reals shortInverse(const Reals &y)
{
    if (y.size() == 8)
        return series8(y, 0.35355339059327376, 0.5);
    if (y.size() == 2)
        return shortForward(y);
    const double c = 0.6532814824381883, s = 0.27059805007309845;
    const double sum = (y[0] + y[2]) * 0.5, difference = (y[0] - y[2]) * 0.5;
    const double p = y[1] * c + y[3] * s, q = y[1] * s - y[3] * c;
    return {sum + p, difference + q, difference - q, sum - p};
}

// ---- any length: sums ----------------------------------------------------------

inline Reals cosineTable(Size L)
{
    const double step = PI_AS_DOUBLE / static_cast<double>(2 * L);
    Reals t(4 * L);
    for (Size i = 0; i < 4 * L; ++i)
        t[i] = static_cast<double>(
            std::cos(static_cast<long double>(i) * static_cast<long double>(step)));
    return t;
}

inline Reals summedForward(const Reals &x)
{
    if (x.empty())
        return {};
    const Size L = x.size(), h = L / 2;
    const Reals t = cosineTable(L);
    Reals y(L);
    y[0] = x[0];
    for (Size n = 1; n < L; ++n)
        y[0] += x[n];
    for (Size k = 1; k < L; ++k) {
        const double middle = L % 2 == 0 ? 0.0 : x[h];
        if (k % 2 == 0)
            y[k] = k % 4 == 0 ? middle : -middle;
        for (Size n = 0; n < h; ++n) {
            const double folded = k % 2 == 0 ? x[n] + x[L - 1 - n] : x[n] - x[L - 1 - n];
            y[k] += folded * t[(2 * n + 1) * k % (4 * L)];
        }
    }
    scale(y);
    return y;
}

inline Reals summedInverse(Reals y)
{
    if (y.empty())
        return {};
    const Size L = y.size(), h = L / 2;
    const Reals t = cosineTable(L);
    Reals x(L);
    scale(y);
    if (L % 2 != 0) {
        double plus = y[0], minus = L > 2 ? y[2] : 0.0;
        for (Size k = 4; k < L; k += 2)
            (k % 4 == 0 ? plus : minus) += y[k];
        x[h] = plus - minus;
    }
    for (Size n = 0; n < h; ++n) {
        double c = y[0], d = y[0];
        for (Size k = 1; k < L; k += 2) {
            const double a = y[k] * t[(2 * n + 1) * k % (4 * L)];
            if (k + 1 < L) {
                const double b = y[k + 1] * t[(2 * n + 1) * (k + 1) % (4 * L)];
                c += a + b;
                d += b - a;
            } else {
                c += a;
                d -= a;
            }
        }
        x[n] = c;
        x[L - 1 - n] = d;
    }
    return x;
}

} // namespace reference

#endif
