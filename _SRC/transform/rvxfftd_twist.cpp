// rvxfftd, the passes of the real transforms.
//
// A complex transform of h points over pairs of real samples and the spectrum of
// those 2h samples differ by one step that ties bin k to bin h-k: the split into
// even and odd samples (E. O. Brigham, The Fast Fourier Transform, 1974, ch. 10).
// One sweep from both ends towards the middle, four bins of either end in lanes,
// does it in place.

#include "frame/rvxlanes.h"
#include "transform/rvxfftd.h"

namespace {

// The parts of a complex value, or of four of them: Real is double or Lanes.
template <typename Real>
struct Parts {
    Real re;
    Real im;
};

template <typename Real>
struct Mirrored {
    Parts<Real> low;  // bin k
    Parts<Real> high; // bin h-k
};

RVX_INLINE Parts<double> partsOf(ZCplx z)
{
    return {z.re, z.im};
}

// Four neighbours. The lanes hold them in the order 0, 2, 1, 3, which costs one
// shuffle less per part than their own; joinParts turns it back.
RVX_INLINE Parts<Lanes> splitParts(Lanes z01, Lanes z23)
{
    return {evenLanes(z01, z23), oddLanes(z01, z23)};
}

RVX_INLINE Parts<Lanes> loadUpward(const ZCplx *z)
{
    return splitParts(loadLanes(z), loadLanes(z + 2));
}

// z[0], z[-1], z[-2], z[-3]
RVX_INLINE Parts<Lanes> loadDownward(const ZCplx *z)
{
    return splitParts(swapHalves(loadLanes(z - 1)), swapHalves(loadLanes(z - 3)));
}

RVX_INLINE void storeUpward(ZCplx *z, Parts<Lanes> a)
{
    storeLanes(z, evenLanes(a.re, a.im));
    storeLanes(z + 2, oddLanes(a.re, a.im));
}

RVX_INLINE void storeDownward(ZCplx *z, Parts<Lanes> a)
{
    storeLanes(z - 1, swapHalves(evenLanes(a.re, a.im)));
    storeLanes(z - 3, swapHalves(oddLanes(a.re, a.im)));
}

RVX_INLINE double spread(double x, double)
{
    return x;
}

RVX_INLINE Lanes spread(double x, Lanes)
{
    return allLanes(x);
}

// From the transform of the sample pairs, a at k and b at h-k, to the spectrum.
// t is (cos / 2, 1/2 - sin / 2) of 2 pi k / (2h): it carries the half of the split,
// so that each result is a raw input and one sum of two products.
struct RealPostForward {
    template <typename Real>
    static RVX_INLINE Mirrored<Real> apply(Parts<Real> a, Parts<Real> b, Parts<Real> t, double)
    {
        const Real difference = a.re - b.re;
        const Real sum = a.im + b.im;
        const Real p = t.im * difference + t.re * sum;
        const Real q = t.im * sum - t.re * difference;
        return {{b.re + p, q - b.im}, {a.re - p, q - a.im}};
    }
};

struct RealPostInverse {
    template <typename Real>
    static RVX_INLINE Mirrored<Real> apply(Parts<Real> a, Parts<Real> b, Parts<Real> t,
                                           double scale)
    {
        const Real difference = a.re - b.re;
        const Real sum = a.im + b.im;
        const Real p = t.re * sum - t.im * difference;
        const Real q = t.re * difference + t.im * sum;
        const Real s = spread(scale, p);
        return {{(a.re + p) * s, (a.im - q) * s}, {(b.re - p) * s, (b.im - q) * s}};
    }
};

// From the spectrum, a at k and b at h-k, to what the complex transform turns
// into twice the sample pairs. t is W(2h,k).
struct CcsPreForward {
    template <typename Real>
    static RVX_INLINE Mirrored<Real> apply(Parts<Real> a, Parts<Real> b, Parts<Real> t, double)
    {
        const Real f = t.im * (a.re - b.re) + t.re * (a.im + b.im);
        const Real g = t.re * (a.re - b.re) - t.im * (a.im + b.im);
        return {{a.re + b.re - f, g + (a.im - b.im)}, {a.re + b.re + f, g - (a.im - b.im)}};
    }
};

struct CcsPreInverse {
    template <typename Real>
    static RVX_INLINE Mirrored<Real> apply(Parts<Real> a, Parts<Real> b, Parts<Real> t, double)
    {
        const Real d = t.im * (a.re - b.re) - t.re * (a.im + b.im);
        const Real e = t.im * (a.im + b.im) + t.re * (a.re - b.re);
        return {{a.re + b.re + d, e + (a.im - b.im)}, {a.re + b.re - d, e - (a.im - b.im)}};
    }
};

// The step for k from 1 to h/2 - 1; dst may be src.
template <typename Step>
RVX_INLINE void overMirroredBins(const ZCplx *src, ZCplx *dst, int h, double scale,
                                 const ZCplx *table)
{
    int k = 1;
    for (; k + 4 <= h / 2; k += 4) {
        const Mirrored<Lanes> bins = Step::apply(loadUpward(src + k), loadDownward(src + h - k),
                                                 loadUpward(table + k), scale);
        storeUpward(dst + k, bins.low);
        storeDownward(dst + h - k, bins.high);
    }
    for (; k < h / 2; ++k) {
        const Mirrored<double> bins =
            Step::apply(partsOf(src[k]), partsOf(src[h - k]), partsOf(table[k]), scale);
        dst[k] = {bins.low.re, bins.low.im};
        dst[h - k] = {bins.high.re, bins.high.im};
    }
}

RVX_KERNEL void realPostForward(ZCplx *z, int h, const ZCplx *table)
{
    overMirroredBins<RealPostForward>(z, z, h, 1.0, table);
}

RVX_KERNEL void realPostInverse(ZCplx *z, int h, double scale, const ZCplx *table)
{
    overMirroredBins<RealPostInverse>(z, z, h, scale, table);
}

RVX_KERNEL void ccsPreForward(const ZCplx *src, ZCplx *dst, int h, const ZCplx *table)
{
    overMirroredBins<CcsPreForward>(src, dst, h, 1.0, table);
}

RVX_KERNEL void ccsPreInverse(const ZCplx *src, ZCplx *dst, int h, const ZCplx *table)
{
    overMirroredBins<CcsPreInverse>(src, dst, h, 1.0, table);
}

} // namespace

void rvxRealFftPost(ZCplx *z, int h, int direction, double scale, const ZCplx *table)
{
    if (h == 1)
        return;
    ZCplx &middle = z[h / 2];
    if (direction > 0) {
        realPostForward(z, h, table);
        middle.im = -middle.im;
    } else {
        realPostInverse(z, h, scale, table);
        middle = {middle.re * scale, middle.im * scale};
    }
}

void rvxCcsFftPre(const ZCplx *src, ZCplx *dst, int h, int direction, const ZCplx *table)
{
    if (h == 1)
        return;
    const ZCplx middle = src[h / 2];
    if (direction > 0) {
        ccsPreForward(src, dst, h, table);
        dst[h / 2] = {2.0 * middle.re, 2.0 * middle.im};
    } else {
        ccsPreInverse(src, dst, h, table);
        dst[h / 2] = {2.0 * middle.re, -2.0 * middle.im};
    }
}
