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

// Four values. The lanes hold them in the order 0, 2, 1, 3, which costs one
// shuffle less per part than their own; firstTwo and lastTwo turn it back.
RVX_INLINE Parts<Lanes> splitParts(Lanes z01, Lanes z23)
{
    return {evenLanes(z01, z23), oddLanes(z01, z23)};
}

RVX_INLINE Lanes firstTwo(Parts<Lanes> a)
{
    return evenLanes(a.re, a.im);
}

RVX_INLINE Lanes lastTwo(Parts<Lanes> a)
{
    return oddLanes(a.re, a.im);
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
    static RVX_INLINE ZCplx middle(ZCplx z, double) { return {z.re, -z.im}; }
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
    static RVX_INLINE ZCplx middle(ZCplx z, double scale) { return {z.re * scale, z.im * scale}; }
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
    static RVX_INLINE ZCplx middle(ZCplx z, double) { return {2.0 * z.re, 2.0 * z.im}; }
};

struct CcsPreInverse {
    template <typename Real>
    static RVX_INLINE Mirrored<Real> apply(Parts<Real> a, Parts<Real> b, Parts<Real> t, double)
    {
        const Real d = t.im * (a.re - b.re) - t.re * (a.im + b.im);
        const Real e = t.im * (a.im + b.im) + t.re * (a.re - b.re);
        return {{a.re + b.re + d, e + (a.im - b.im)}, {a.re + b.re - d, e - (a.im - b.im)}};
    }
    static RVX_INLINE ZCplx middle(ZCplx z, double) { return {2.0 * z.re, -2.0 * z.im}; }
};

// The step at all bins from 1 to h-1, for h of 8 and more; dst may be src.
//
// Loads and stores are pairs that begin at an even bin, from both ends: so the
// transform's stores, which may still be under way, are met whole, and what
// follows meets these. Blocks of four begin at bin 2; bins 1, h/2-2 and h/2-1 are
// a block of their own, whose fourth lane has no work.
template <typename Step>
RVX_INLINE void overMirroredBlocks(const ZCplx *src, ZCplx *dst, int h, double scale,
                                   const ZCplx *table)
{
    const int half = h / 2;
    const Lanes middle = allLanes(Step::middle(src[half], scale));
    const Mirrored<Lanes> odd =
        Step::apply(splitParts(loadLanes(src + half - 2), allLanes(src[1])),
                    splitParts(pairLanes(src[half + 2], src[half + 1]), allLanes(src[h - 1])),
                    splitParts(loadLanes(table + half - 2), allLanes(table[1])), scale);

    Lanes above = loadLanes(src + h - 2);
    Lanes pending = lastTwo(odd.high); // its second half is the result above the next ones
    for (int k = 2; k < half - 2; k += 4) {
        const ZCplx *mirror = src + h - k;
        const Lanes between = loadLanes(mirror - 2);
        const Lanes below = loadLanes(mirror - 4);
        const Mirrored<Lanes> bins =
            Step::apply(splitParts(loadLanes(src + k), loadLanes(src + k + 2)),
                        splitParts(outerHalves(above, between), outerHalves(between, below)),
                        splitParts(loadLanes(table + k), loadLanes(table + k + 2)), scale);
        above = below;
        storeLanes(dst + k, firstTwo(bins.low));
        storeLanes(dst + k + 2, lastTwo(bins.low));
        storeLanes(dst + h - k, outerHalves(firstTwo(bins.high), pending));
        pending = lastTwo(bins.high);
        storeLanes(dst + h - k - 2, outerHalves(pending, firstTwo(bins.high)));
    }
    storeFirst(dst + 1, lastTwo(odd.low));
    storeLanes(dst + half - 2, firstTwo(odd.low));
    storeLanes(dst + half, outerHalves(middle, firstTwo(odd.high)));
    storeLanes(dst + half + 2, outerHalves(firstTwo(odd.high), pending));
}

// The same for h of 2 and more.
template <typename Step>
RVX_INLINE void overMirroredBins(const ZCplx *src, ZCplx *dst, int h, double scale,
                                 const ZCplx *table)
{
    if (h >= 8)
        return overMirroredBlocks<Step>(src, dst, h, scale, table);
    dst[h / 2] = Step::middle(src[h / 2], scale);
    if (h == 4) {
        const Mirrored<double> bins =
            Step::apply(partsOf(src[1]), partsOf(src[3]), partsOf(table[1]), scale);
        dst[1] = {bins.low.re, bins.low.im};
        dst[3] = {bins.high.re, bins.high.im};
    }
}

template <typename Real>
RVX_INLINE Parts<Real> times(Parts<Real> a, Parts<Real> b)
{
    return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}

// The steps from a transform to its spectrum, by a product and back, with the values
// and the roundings that they have one after the other. w is W(2h,k).
RVX_INLINE Mirrored<Lanes> throughProduct(Parts<Lanes> a, Parts<Lanes> b, Parts<Lanes> w,
                                          Parts<Lanes> lowFactor, Parts<Lanes> highFactor)
{
    const Lanes half = allLanes(0.5);
    const Parts<Lanes> t = {half * w.re, half + half * w.im};
    const Mirrored<Lanes> bins = RealPostForward::apply(a, b, t, 1.0);
    return CcsPreInverse::apply(times(bins.low, lowFactor), times(bins.high, highFactor), w, 1.0);
}

// Bins i, i-1, i-2 and i-3.
RVX_INLINE Parts<Lanes> splitDescending(const ZCplx *z)
{
    return splitParts(swapHalves(loadLanes(z - 1)), swapHalves(loadLanes(z - 3)));
}

// All bins, in the order of overMirroredBlocks and for its reasons; h of 8 and more.
RVX_KERNEL void realProduct(const ZCplx *factors, ZCplx *z, int h, const ZCplx *table)
{
    const int half = h / 2;
    const Parts<double> square =
        times(partsOf(RealPostForward::middle(z[half], 1.0)), partsOf(factors[half]));
    const Lanes middle = allLanes(CcsPreInverse::middle({square.re, square.im}, 1.0));
    const double first = (z[0].re + z[0].im) * factors[0].re;
    const double last = (z[0].re - z[0].im) * factors[0].im;
    const Mirrored<Lanes> odd = throughProduct(
        splitParts(loadLanes(z + half - 2), allLanes(z[1])),
        splitParts(pairLanes(z[half + 2], z[half + 1]), allLanes(z[h - 1])),
        splitParts(loadLanes(table + half - 2), allLanes(table[1])),
        splitParts(loadLanes(factors + half - 2), allLanes(factors[1])),
        splitParts(pairLanes(factors[half + 2], factors[half + 1]), allLanes(factors[h - 1])));

    Lanes above = loadLanes(z + h - 2);
    Lanes pending = lastTwo(odd.high);
    for (int k = 2; k < half - 2; k += 4) {
        const Lanes between = loadLanes(z + h - k - 2);
        const Lanes below = loadLanes(z + h - k - 4);
        const Mirrored<Lanes> bins =
            throughProduct(splitParts(loadLanes(z + k), loadLanes(z + k + 2)),
                           splitParts(outerHalves(above, between), outerHalves(between, below)),
                           splitParts(loadLanes(table + k), loadLanes(table + k + 2)),
                           splitParts(loadLanes(factors + k), loadLanes(factors + k + 2)),
                           splitDescending(factors + h - k));
        above = below;
        storeLanes(z + k, firstTwo(bins.low));
        storeLanes(z + k + 2, lastTwo(bins.low));
        storeLanes(z + h - k, outerHalves(firstTwo(bins.high), pending));
        pending = lastTwo(bins.high);
        storeLanes(z + h - k - 2, outerHalves(pending, firstTwo(bins.high)));
    }
    z[0] = {first + last, first - last};
    storeFirst(z + 1, lastTwo(odd.low));
    storeLanes(z + half - 2, firstTwo(odd.low));
    storeLanes(z + half, outerHalves(middle, firstTwo(odd.high)));
    storeLanes(z + half + 2, outerHalves(firstTwo(odd.high), pending));
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
    if (direction > 0)
        realPostForward(z, h, table);
    else
        realPostInverse(z, h, scale, table);
}

void rvxCcsFftPre(const ZCplx *src, ZCplx *dst, int h, int direction, const ZCplx *table)
{
    if (h == 1)
        return;
    if (direction > 0)
        ccsPreForward(src, dst, h, table);
    else
        ccsPreInverse(src, dst, h, table);
}

void rvxRealFftProduct(const ZCplx *factors, ZCplx *z, int h, const ZCplx *table)
{
    realProduct(factors, z, h, table);
}
