// rvxdotp: dot products, real, complex and mixed. Nothing is conjugated.
//
// The sums are made in lanes of error-free pairs of doubles where these tell the
// correctly rounded result, and else one term after the other in Extended.

#include <cstddef>

#include "frame/rvxcheck.h"
#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"
#include "rvx.h"
#include "vector/rvxsum.h"

RVX_MODULE("rvxdotp")

namespace {

// a[i] * b[i], real.
struct RealProducts {
    static constexpr int sums = 1, width = 4, stepLen = 16;
    const double *a, *b;

    RVX_INLINE static constexpr double lowShare(int) { return 0x1p-24; }
    RVX_INLINE static Lanes bound(int, Peaks peaks) { return peaks.a * peaks.b; }
    RVX_INLINE void step(std::ptrdiff_t i, BiasedSum<4> *sum, Peaks &peaks) const
    {
        for (int j = 0; j < 4; ++j) {
            const Lanes p = loadLanes(a + i + 4 * j);
            const Lanes q = loadLanes(b + i + 4 * j);
            peaks = {maxLanes(peaks.a, absLanes(p)), maxLanes(peaks.b, absLanes(q))};
            addProduct(*sum, j, p, highPart(p), q, highPart(q));
        }
    }
    RVX_INLINE RealProducts tail(std::ptrdiff_t i, std::ptrdiff_t n, TailRoom &room) const
    {
        return {zeroPadded(a + i, n, room.a), zeroPadded(b + i, n, room.b)};
    }
};

// z[i] * x[i], complex by real: both parts of each element side by side.
struct MixedProducts {
    static constexpr int sums = 1, width = 4, stepLen = 8;
    const double *z, *x;

    RVX_INLINE static constexpr double lowShare(int) { return 0x1p-24; }
    RVX_INLINE static Lanes bound(int, Peaks peaks)
    {
        const Lanes real = maxLanes(peaks.b, swapHalves(peaks.b));
        return peaks.a * maxLanes(real, swapParts(real));
    }
    RVX_INLINE void step(std::ptrdiff_t i, BiasedSum<4> *sum, Peaks &peaks) const
    {
        for (int j = 0; j < 4; j += 2) {
            const Lanes real = loadLanes(x + i + 2 * j);
            const Lanes realHigh = highPart(real);
            peaks.b = maxLanes(peaks.b, absLanes(real));
            const Lanes p = loadLanes(z + 2 * i + 4 * j);
            const Lanes q = loadLanes(z + 2 * i + 4 * j + 4);
            peaks.a = maxLanes(maxLanes(peaks.a, absLanes(p)), absLanes(q));
            addProduct(*sum, j, p, highPart(p), lowTwice(real), lowTwice(realHigh));
            addProduct(*sum, j + 1, q, highPart(q), highTwice(real), highTwice(realHigh));
        }
    }
    RVX_INLINE MixedProducts tail(std::ptrdiff_t i, std::ptrdiff_t n, TailRoom &room) const
    {
        return {zeroPadded(z + 2 * i, 2 * n, room.a), zeroPadded(x + i, n, room.b)};
    }
};

// a[i] * b[i], complex: the even lanes take both products of the real part, the
// odd ones those of the imaginary part.
struct CplxProducts {
    static constexpr int sums = 1, width = 4, stepLen = 4;
    const double *a, *b;

    RVX_INLINE static constexpr double lowShare(int) { return 0x1p-24; }
    RVX_INLINE static Lanes bound(int, Peaks peaks)
    {
        return realParts(peaks.a) * peaks.b + imagParts(peaks.a) * swapParts(peaks.b);
    }
    RVX_INLINE void step(std::ptrdiff_t i, BiasedSum<4> *sum, Peaks &peaks) const
    {
        for (int j = 0; j < 2; ++j) {
            const Lanes p = loadLanes(a + 2 * i + 4 * j);
            const Lanes q = loadLanes(b + 2 * i + 4 * j);
            peaks = {maxLanes(peaks.a, absLanes(p)), maxLanes(peaks.b, absLanes(q))};
            const Lanes pHigh = highPart(p);
            const Lanes qHigh = highPart(q);
            addProduct(*sum, 2 * j, realParts(p), realParts(pHigh), q, qHigh);
            addProduct(*sum, 2 * j + 1, imagParts(p), imagParts(pHigh), negateEven(swapParts(q)),
                       negateEven(swapParts(qHigh)));
        }
    }
    RVX_INLINE CplxProducts tail(std::ptrdiff_t i, std::ptrdiff_t n, TailRoom &room) const
    {
        return {zeroPadded(a + 2 * i, 2 * n, room.a), zeroPadded(b + 2 * i, 2 * n, room.b)};
    }
};

RVX_KERNEL void boundRealProducts(const double *a, const double *b, int n, BoundedSum *sum)
{
    boundedSums<1>(RealProducts{a, b}, n, sum);
}

RVX_KERNEL void boundMixedProducts(const double *z, const double *x, int n, BoundedSum *sum)
{
    boundedSums<2>(MixedProducts{z, x}, n, sum);
}

RVX_KERNEL void boundCplxProducts(const double *a, const double *b, int n, BoundedSum *sum)
{
    boundedSums<2>(CplxProducts{a, b}, n, sum);
}

const double *partsOf(const ZCplx *z)
{
    return &z->re;
}

// The sums in Extended, in order.

double addUp(const double *a, const double *b, int n)
{
    Extended s = 0.0;
    int i = 0;
    for (; i < n - 1; i += 2)
        s = Extended(a[i + 1]) * b[i + 1] + (Extended(a[i]) * b[i] + s);
    if (i < n)
        s += Extended(a[i]) * b[i];
    return static_cast<double>(s);
}

ZCplx addUp(const ZCplx *a, const ZCplx *b, int n)
{
    Extended re = 0.0;
    Extended im = 0.0;
    for (int i = 0; i < n; ++i) {
        re += Extended(a[i].re) * b[i].re - Extended(a[i].im) * b[i].im;
        im += Extended(a[i].im) * b[i].re + Extended(b[i].im) * a[i].re;
    }
    return {static_cast<double>(re), static_cast<double>(im)};
}

ZCplx addUp(const ZCplx *z, const double *x, int n)
{
    Extended re = 0.0;
    Extended im = 0.0;
    for (int i = 0; i < n; ++i) {
        re += Extended(z[i].re) * x[i];
        im += Extended(z[i].im) * x[i];
    }
    return {static_cast<double>(re), static_cast<double>(im)};
}

// Below this length the sum in Extended takes less time than the lanes' start.
constexpr int shortLen = 24;

double dotProduct(const double *a, const double *b, int n)
{
    if (n >= shortLen) {
        BoundedSum sum;
        double result;
        boundRealProducts(a, b, n, &sum);
        if (roundedSum(sum, &result))
            return result;
    }
    return addUp(a, b, n);
}

ZCplx dotProduct(const ZCplx *a, const ZCplx *b, int n)
{
    if (n >= shortLen) {
        BoundedSum sum[2];
        ZCplx result;
        boundCplxProducts(partsOf(a), partsOf(b), n, sum);
        if (roundedSum(sum[0], &result.re) && roundedSum(sum[1], &result.im))
            return result;
    }
    return addUp(a, b, n);
}

ZCplx dotProduct(const ZCplx *z, const double *x, int n)
{
    if (n >= shortLen) {
        BoundedSum sum[2];
        ZCplx result;
        boundMixedProducts(partsOf(z), x, n, sum);
        if (roundedSum(sum[0], &result.re) && roundedSum(sum[1], &result.im))
            return result;
    }
    return addUp(z, x, n);
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
    return dotProduct(srcA, srcB, len);
}

ZCplx rvxdzDotProd(const double *srcA, const ZCplx *srcB, int len)
{
    RVX_REJECT_IF(srcA == nullptr, "Null buffer pointer", ZCplx{0.0, 0.0});
    RVX_REJECT_IF(srcB == nullptr, "Null buffer pointer", ZCplx{0.0, 0.0});
    RVX_REJECT_IF(len < 0, "Invalid value", ZCplx{0.0, 0.0});
    return dotProduct(srcB, srcA, len);
}

ZCplx rvxzdDotProd(const ZCplx *srcA, const double *srcB, int len)
{
    RVX_REJECT_IF(srcA == nullptr, "Null buffer pointer", ZCplx{0.0, 0.0});
    RVX_REJECT_IF(srcB == nullptr, "Null buffer pointer", ZCplx{0.0, 0.0});
    RVX_REJECT_IF(len < 0, "Invalid value", ZCplx{0.0, 0.0});
    return dotProduct(srcA, srcB, len);
}
