// rvxdotp: dot products, real, complex and mixed. Nothing is conjugated.
//
// The sums are made in lanes of error-free pairs of doubles where these tell the
// correctly rounded result, and else one term after the other in Extended.

#include <cmath>
#include <cstddef>

#include "frame/rvxcheck.h"
#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"
#include "rvx.h"
#include "vector/rvxsum.h"

RVX_MODULE("rvxdotp")

namespace {

// a[i] * b[i], real.
template <bool isSized>
struct RealProducts {
    static constexpr bool sized = isSized;
    static constexpr int sums = 1, width = 4, stepLen = 16, tileSteps = 32;
    const double *a, *b;
    std::ptrdiff_t n;

    RVX_INLINE static constexpr double lowShare(int) { return 0x1p-24; }
    RVX_INLINE static Lanes bound(int, Peaks peaks) { return peaks.a * peaks.b; }
    template <typename Load>
    RVX_INLINE void step(std::ptrdiff_t i, BiasedSum<4> *sum, Peaks &peaks) const
    {
        for (int j = 0; j < 4; ++j) {
            const Lanes p = Load::from(a, i + 4 * j, n);
            const Lanes q = Load::from(b, i + 4 * j, n);
            peaks = {maxMagnitude(peaks.a, p), maxMagnitude(peaks.b, q)};
            addProduct<sized>(*sum, j, p, split(p), split(q));
        }
    }
};

// z[i] * x[i], complex by real: both parts of each element side by side.
template <bool isSized>
struct MixedProducts {
    static constexpr bool sized = isSized;
    static constexpr int sums = 1, width = 4, stepLen = 8, tileSteps = 32;
    const double *z, *x;
    std::ptrdiff_t n;

    RVX_INLINE static constexpr double lowShare(int) { return 0x1p-24; }
    RVX_INLINE static Lanes bound(int, Peaks peaks) { return peaks.a * peaks.b; }
    template <typename Load>
    RVX_INLINE void step(std::ptrdiff_t i, BiasedSum<4> *sum, Peaks &peaks) const
    {
        for (int j = 0; j < 4; ++j) {
            const Lanes p = Load::from(z, 2 * i + 4 * j, 2 * n);
            const Lanes q = Load::twiceFrom(x, i + 2 * j, n);
            peaks = {maxMagnitude(peaks.a, p), maxMagnitude(peaks.b, q)};
            addProduct<sized>(*sum, j, p, split(p), split(q));
        }
    }
};

// a[i] * b[i], complex, as two sums: of (re re, im im), whose difference is the real
// part, and of (re im, im re), whose sum is the imaginary part.
template <bool isSized>
struct CplxProducts {
    static constexpr bool sized = isSized;
    static constexpr int sums = 2, width = 2, stepLen = 4, tileSteps = 64;
    const double *a, *b;
    std::ptrdiff_t n;

    RVX_INLINE static constexpr double lowShare(int) { return 0x1p-24; }
    RVX_INLINE static Lanes bound(int s, Peaks peaks)
    {
        return peaks.a * (s == 0 ? peaks.b : swapParts(peaks.b));
    }
    template <typename Load>
    RVX_INLINE void step(std::ptrdiff_t i, BiasedSum<2> *sum, Peaks &peaks) const
    {
        for (int j = 0; j < 2; ++j) {
            const Lanes p = Load::from(a, 2 * i + 4 * j, 2 * n);
            const Lanes q = Load::from(b, 2 * i + 4 * j, 2 * n);
            peaks = {maxMagnitude(peaks.a, p), maxMagnitude(peaks.b, q)};
            const SplitLanes first = split(p), second = split(q);
            addProduct<sized>(sum[0], j, p, first, second);
            addProduct<sized>(sum[1], j, p, first, {swapParts(second.high), swapParts(second.low)});
        }
    }
};

RVX_KERNEL void boundRealProducts(bool sized, const double *a, const double *b, int n,
                                  BoundedSum *sum)
{
    if (sized)
        boundedSums<1>(RealProducts<true>{a, b, n}, sum);
    else
        boundedSums<1>(RealProducts<false>{a, b, n}, sum);
}

RVX_KERNEL void boundMixedProducts(bool sized, const double *z, const double *x, int n,
                                   BoundedSum *sum)
{
    if (sized)
        boundedSums<2>(MixedProducts<true>{z, x, n}, sum);
    else
        boundedSums<2>(MixedProducts<false>{z, x, n}, sum);
}

RVX_KERNEL void boundCplxProducts(bool sized, const double *a, const double *b, int n,
                                  BoundedSum *sum)
{
    BoundedSum parts[4];
    if (sized)
        boundedSums<2>(CplxProducts<true>{a, b, n}, parts);
    else
        boundedSums<2>(CplxProducts<false>{a, b, n}, parts);
    sum[0] = combined(parts[0], -1.0, parts[1]);
    sum[1] = combined(parts[2], 1.0, parts[3]);
}

const double *partsOf(const ZCplx *z)
{
    return &z->re;
}

// The sums in Extended, in order.

ExtendedSum addUp(const double *a, const double *b, int n)
{
    Extended s = 0.0;
    Extended magnitudes = 0.0;
    int i = 0;
    for (; i < n - 1; i += 2) {
        const Extended p0 = Extended(a[i]) * b[i];
        const Extended p1 = Extended(a[i + 1]) * b[i + 1];
        s = p1 + (p0 + s);
        magnitudes += std::fabs(p0) + std::fabs(p1);
    }
    if (i < n) {
        const Extended p = Extended(a[i]) * b[i];
        s += p;
        magnitudes += std::fabs(p);
    }
    return {s, magnitudes};
}

// Adds p + q to one part.
void addPair(Extended p, Extended q, ExtendedSum &part)
{
    part.sum += p + q;
    part.magnitudes += std::fabs(p) + std::fabs(q);
}

void addUp(const ZCplx *a, const ZCplx *b, int n, ExtendedSum *parts)
{
    ExtendedSum re = {0.0, 0.0};
    ExtendedSum im = {0.0, 0.0};
    for (int i = 0; i < n; ++i) {
        addPair(Extended(a[i].re) * b[i].re, -(Extended(a[i].im) * b[i].im), re);
        addPair(Extended(a[i].im) * b[i].re, Extended(b[i].im) * a[i].re, im);
    }
    parts[0] = re;
    parts[1] = im;
}

void addUp(const ZCplx *z, const double *x, int n, ExtendedSum *parts)
{
    ExtendedSum re = {0.0, 0.0};
    ExtendedSum im = {0.0, 0.0};
    for (int i = 0; i < n; ++i) {
        const Extended p = Extended(z[i].re) * x[i];
        const Extended q = Extended(z[i].im) * x[i];
        re = {re.sum + p, re.magnitudes + std::fabs(p)};
        im = {im.sum + q, im.magnitudes + std::fabs(q)};
    }
    parts[0] = re;
    parts[1] = im;
}

// Below these lengths the sums in Extended take less time than the lanes' start.
constexpr int shortReal = 128;
constexpr int shortMixed = 112;
constexpr int shortCplx = 64;

double dotProduct(const double *a, const double *b, int n)
{
    double result;
    if (n < shortReal && roundedSum(addUp(a, b, n), n + 8, &result))
        return result;
    // With the quick bound, then with the close one.
    for (int sized = 0; sized < 2; ++sized) {
        BoundedSum sum;
        boundRealProducts(sized != 0, a, b, n, &sum);
        if (roundedSum(sum, &result))
            return result;
    }
    return static_cast<double>(addUp(a, b, n).sum);
}

void boundProducts(int sized, const ZCplx *a, const ZCplx *b, int n, BoundedSum *parts)
{
    boundCplxProducts(sized != 0, partsOf(a), partsOf(b), n, parts);
}

void boundProducts(int sized, const ZCplx *z, const double *x, int n, BoundedSum *parts)
{
    boundMixedProducts(sized != 0, partsOf(z), x, n, parts);
}

// The same for both parts.
template <typename Partner>
ZCplx dotProduct(const ZCplx *a, const Partner *b, int n, int shortLen)
{
    ZCplx result;
    ExtendedSum inOrder[2];
    if (n < shortLen) {
        addUp(a, b, n, inOrder);
        if (roundedSum(inOrder[0], n + 8, &result.re) && roundedSum(inOrder[1], n + 8, &result.im))
            return result;
    }
    for (int sized = 0; sized < 2; ++sized) {
        BoundedSum sum[2];
        boundProducts(sized, a, b, n, sum);
        if (roundedSum(sum[0], &result.re) && roundedSum(sum[1], &result.im))
            return result;
    }
    addUp(a, b, n, inOrder);
    return {static_cast<double>(inOrder[0].sum), static_cast<double>(inOrder[1].sum)};
}

} // namespace

// Unlike most of the library these check the pointers first and take an empty block.

double rvxdDotProd(const double *srcA, const double *srcB, int len)
{
    RVX_REJECT_IF(srcA == nullptr, "Null buffer pointer", 0.0);
    RVX_REJECT_IF(srcB == nullptr, "Null buffer pointer", 0.0);
    RVX_REJECT_IF(len < 0, "Invalid value", 0.0);
    return dotProduct(srcA, srcB, len);
}

ZCplx rvxzDotProd(const ZCplx *srcA, const ZCplx *srcB, int len)
{
    RVX_REJECT_IF(srcA == nullptr, "Null buffer pointer", ZCplx{0.0, 0.0});
    RVX_REJECT_IF(srcB == nullptr, "Null buffer pointer", ZCplx{0.0, 0.0});
    RVX_REJECT_IF(len < 0, "Invalid value", ZCplx{0.0, 0.0});
    return dotProduct(srcA, srcB, len, shortCplx);
}

ZCplx rvxdzDotProd(const double *srcA, const ZCplx *srcB, int len)
{
    RVX_REJECT_IF(srcA == nullptr, "Null buffer pointer", ZCplx{0.0, 0.0});
    RVX_REJECT_IF(srcB == nullptr, "Null buffer pointer", ZCplx{0.0, 0.0});
    RVX_REJECT_IF(len < 0, "Invalid value", ZCplx{0.0, 0.0});
    return dotProduct(srcB, srcA, len, shortMixed);
}

ZCplx rvxzdDotProd(const ZCplx *srcA, const double *srcB, int len)
{
    RVX_REJECT_IF(srcA == nullptr, "Null buffer pointer", ZCplx{0.0, 0.0});
    RVX_REJECT_IF(srcB == nullptr, "Null buffer pointer", ZCplx{0.0, 0.0});
    RVX_REJECT_IF(len < 0, "Invalid value", ZCplx{0.0, 0.0});
    return dotProduct(srcA, srcB, len, shortMixed);
}
