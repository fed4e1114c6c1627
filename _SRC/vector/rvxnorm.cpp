// rvxnorm: norms of a block or of the difference of two, and normalization.
//
// The sums are made in lanes of error-free pairs of doubles where these tell the
// correctly rounded result, and else one term after the other in Extended.

#include <cfloat>
#include <cmath>
#include <cstddef>

#include "frame/rvxcheck.h"
#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"
#include "rvx.h"
#include "vector/rvxsum.h"

RVX_MODULE("rvxnorm")

namespace {

// ---------------------------------------------------------------------------
// What a norm is taken of: one block, or the difference of two, rounded to double.

struct OneBlock {
    const double *a;
    template <typename Load>
    RVX_INLINE Lanes from(std::ptrdiff_t i, std::ptrdiff_t n) const
    {
        return Load::from(a, i, n);
    }
};

struct TwoBlocks {
    const double *a, *b;
    template <typename Load>
    RVX_INLINE Lanes from(std::ptrdiff_t i, std::ptrdiff_t n) const
    {
        return Load::from(a, i, n) - Load::from(b, i, n);
    }
};

double difference(const double *a, const double *b, int i)
{
    return b != nullptr ? a[i] - b[i] : a[i];
}

ZCplx difference(const ZCplx *a, const ZCplx *b, int i)
{
    return b != nullptr ? ZCplx{a[i].re - b[i].re, a[i].im - b[i].im} : a[i];
}

// ---------------------------------------------------------------------------
// The largest magnitude. NaNs are passed over.

// |d|, or with cplx d.im^2 + d.re^2 in both lanes of an element.
template <bool cplx>
RVX_INLINE Lanes magnitude(Lanes d)
{
    const Lanes squares = d * d;
    return cplx ? squares + swapParts(squares) : absLanes(d);
}

template <bool cplx, typename Source>
RVX_INLINE double largestMagnitude(const Source &source, std::ptrdiff_t n)
{
    const Lanes zero = allLanes(0.0);
    Lanes best[4] = {zero, zero, zero, zero};
    std::ptrdiff_t i = 0;
    for (; i < n - 15; i += 16)
        for (int j = 0; j < 4; ++j)
            best[j] =
                maxLanes(best[j], magnitude<cplx>(source.template from<LoadWhole>(i + 4 * j, n)));
    for (; i < n; i += 4)
        best[0] = maxLanes(best[0], magnitude<cplx>(source.template from<LoadTail>(i, n)));
    return largestLane(maxLanes(maxLanes(best[0], best[1]), maxLanes(best[2], best[3])));
}

RVX_KERNEL double largestReal(const double *a, const double *b, std::ptrdiff_t n)
{
    return b == nullptr ? largestMagnitude<false>(OneBlock{a}, n)
                        : largestMagnitude<false>(TwoBlocks{a, b}, n);
}

RVX_KERNEL double largestCplx(const double *a, const double *b, std::ptrdiff_t n)
{
    return b == nullptr ? largestMagnitude<true>(OneBlock{a}, n)
                        : largestMagnitude<true>(TwoBlocks{a, b}, n);
}

// ---------------------------------------------------------------------------
// The sums in lanes.

// |d|
template <typename Source>
struct Magnitudes {
    static constexpr bool sized = false;
    static constexpr int sums = 1, width = 4, stepLen = 16, tileSteps = 256;
    Source source;
    std::ptrdiff_t n;

    RVX_INLINE static constexpr double lowShare(int) { return 0.0; }
    RVX_INLINE static Lanes bound(int, Peaks peaks) { return peaks.a; }
    template <typename Load>
    RVX_INLINE void step(std::ptrdiff_t i, BiasedSum<4> *sum, Peaks &peaks) const
    {
        for (int j = 0; j < 4; ++j) {
            const Lanes d = absLanes(source.template from<Load>(i + 4 * j, n));
            peaks.a = maxWords(peaks.a, d);
            addTerm(*sum, j, d);
        }
    }
};

// d^2, which serves real and complex blocks alike
template <typename Source>
struct Squares {
    static constexpr bool sized = false;
    static constexpr int sums = 1, width = 4, stepLen = 16, tileSteps = 64;
    Source source;
    std::ptrdiff_t n;

    RVX_INLINE static constexpr double lowShare(int) { return 0x1p-24; }
    RVX_INLINE static Lanes bound(int, Peaks peaks) { return peaks.a * peaks.a; }
    template <typename Load>
    RVX_INLINE void step(std::ptrdiff_t i, BiasedSum<4> *sum, Peaks &peaks) const
    {
        for (int j = 0; j < 4; ++j) {
            const Lanes d = source.template from<Load>(i + 4 * j, n);
            peaks.a = maxMagnitude(peaks.a, d);
            addSquare(*sum, j, d, split(d));
        }
    }
};

RVX_KERNEL void boundMagnitudes(const double *a, const double *b, std::ptrdiff_t n, BoundedSum *sum)
{
    if (b == nullptr)
        boundedSums<1>(Magnitudes<OneBlock>{{a}, n}, sum);
    else
        boundedSums<1>(Magnitudes<TwoBlocks>{{a, b}, n}, sum);
}

RVX_KERNEL void boundSquares(const double *a, const double *b, std::ptrdiff_t n, BoundedSum *sum)
{
    if (b == nullptr)
        boundedSums<1>(Squares<OneBlock>{{a}, n}, sum);
    else
        boundedSums<1>(Squares<TwoBlocks>{{a, b}, n}, sum);
}

// ---------------------------------------------------------------------------
// The sums in Extended.

Extended squareOf(double d)
{
    const Extended x = d;
    return x * x;
}

Extended squareOf(ZCplx d)
{
    return squareOf(d.im) + squareOf(d.re);
}

Extended magnitudeOf(double d)
{
    return std::fabs(d);
}

Extended magnitudeOf(ZCplx d)
{
    return std::sqrt(squareOf(d));
}

// Their terms are their magnitudes.

template <typename Element>
ExtendedSum addMagnitudes(const Element *a, const Element *b, int n)
{
    Extended sum = 0.0;
    for (int i = 0; i < n; ++i)
        sum += magnitudeOf(difference(a, b, i));
    return {sum, sum};
}

template <typename Element>
ExtendedSum addSquares(const Element *a, const Element *b, int n)
{
    Extended sum = 0.0;
    for (int i = 0; i < n; ++i)
        sum += squareOf(difference(a, b, i));
    return {sum, sum};
}

// ---------------------------------------------------------------------------
// The norms.

// A block as its doubles.

const double *parts(const double *x)
{
    return x;
}

const double *parts(const ZCplx *z)
{
    return z != nullptr ? &z->re : nullptr;
}

template <typename Element>
constexpr std::ptrdiff_t partCount(int n)
{
    return static_cast<std::ptrdiff_t>(sizeof(Element) / sizeof(double)) * n;
}

double largest(const double *a, const double *b, int n)
{
    return largestReal(a, b, n);
}

double largest(const ZCplx *a, const ZCplx *b, int n)
{
    return std::sqrt(largestCplx(parts(a), parts(b), partCount<ZCplx>(n)));
}

// Below these numbers of doubles the sums in Extended take less time than the lanes'
// start.
constexpr int shortMagnitudes = 24;
constexpr int shortSquares = 80;

double sumOfMagnitudes(const double *a, const double *b, int n)
{
    double result;
    if (n < shortMagnitudes && roundedSum(addMagnitudes(a, b, n), n + 8, &result))
        return result;
    BoundedSum sum;
    boundMagnitudes(a, b, n, &sum);
    if (roundedSum(sum, &result))
        return result;
    return static_cast<double>(addMagnitudes(a, b, n).sum);
}

double sumOfMagnitudes(const ZCplx *a, const ZCplx *b, int n)
{
    return static_cast<double>(addMagnitudes(a, b, n).sum);
}

template <typename Element>
double sumOfSquares(const Element *a, const Element *b, int n)
{
    double result;
    if (partCount<Element>(n) < shortSquares && roundedSum(addSquares(a, b, n), n + 8, &result))
        return result;
    BoundedSum sum;
    boundSquares(parts(a), parts(b), partCount<Element>(n), &sum);
    if (roundedSum(sum, &result))
        return result;
    return static_cast<double>(addSquares(a, b, n).sum);
}

template <typename Element>
double measure(const Element *a, const Element *b, int n, int kind)
{
    switch (kind) {
    case RVX_NORM_C:
        return largest(a, b, n);
    case RVX_NORM_L1:
        return sumOfMagnitudes(a, b, n);
    default:
        return sumOfSquares(a, b, n);
    }
}

template <typename Element>
double norm(const Element *a, const Element *b, int n, int flag)
{
    const bool relative = (flag & RVX_NORM_RELATIVE) != 0;
    const int kind = flag & ~RVX_NORM_RELATIVE;
    if (relative && b == nullptr)
        return 1.0;
    double r = measure(a, b, n, kind);
    if (relative) {
        if (r < DBL_MIN)
            return 0.0;
        const double denominator = measure(a, static_cast<const Element *>(nullptr), n, kind);
        if (denominator < DBL_MIN)
            return DBL_MAX;
        r = r / denominator;
    }
    return kind == RVX_NORM_L2 ? std::sqrt(r) : r;
}

bool isNormFlag(int flag)
{
    const int kind = flag & ~RVX_NORM_RELATIVE;
    return kind == RVX_NORM_C || kind == RVX_NORM_L1 || kind == RVX_NORM_L2 ||
           kind == RVX_NORM_L2SQ;
}

// ---------------------------------------------------------------------------
// Normalization.

RVX_KERNEL void normalizeReal(const double *src, double *dst, int n, double offset, double r)
{
    for (int i = 0; i < n; ++i)
        dst[i] = (src[i] - offset) * r;
}

RVX_KERNEL void normalizeCplx(const ZCplx *src, ZCplx *dst, int n, ZCplx offset, double r)
{
    for (int i = 0; i < n; ++i)
        dst[i] = {(src[i].re - offset.re) * r, (src[i].im - offset.im) * r};
}

bool isZeroOrNan(double x)
{
    return !(x < 0.0 || x > 0.0);
}

} // namespace

double rvxdNorm(const double *srcA, const double *srcB, int n, int flag)
{
    RVX_REJECT_IF(n <= 0, "n<=0", 0.0);
    RVX_REJECT_IF(srcA == nullptr, "srcA==0", 0.0);
    RVX_REJECT_IF(!isNormFlag(flag), "flag is wrong", 0.0);
    return norm(srcA, srcB, n, flag);
}

double rvxzNorm(const ZCplx *srcA, const ZCplx *srcB, int n, int flag)
{
    RVX_REJECT_IF(n <= 0, "n<=0", 0.0);
    RVX_REJECT_IF(srcA == nullptr, "srcA==0", 0.0);
    RVX_REJECT_IF(!isNormFlag(flag), "flag is wrong", 0.0);
    return norm(srcA, srcB, n, flag);
}

void rvxdbNormalize(const double *src, double *dst, int n, double offset, double factor)
{
    RVX_REJECT_IF(n <= 0, "n<=0");
    RVX_REJECT_IF(src == nullptr, "src==0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    RVX_REJECT_IF(isZeroOrNan(factor), "factor == 0");
    normalizeReal(src, dst, n, offset, 1.0 / factor);
}

void rvxzbNormalize(const ZCplx *src, ZCplx *dst, int n, ZCplx offset, double factor)
{
    RVX_REJECT_IF(n <= 0, "n<=0");
    RVX_REJECT_IF(src == nullptr, "src==0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    RVX_REJECT_IF(isZeroOrNan(factor), "factor == 0");
    normalizeCplx(src, dst, n, offset, 1.0 / factor);
}
