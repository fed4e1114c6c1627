// rvxfftd, the passes of the real transforms.
//
// A complex transform of h points over pairs of real samples and the spectrum of
// those 2h samples differ by one step that ties bin k to bin h-k: the split into
// even and odd samples (E. O. Brigham, The Fast Fourier Transform, 1974, ch. 10).
// One sweep from both ends towards the middle, four bins of either end in lanes,
// does it in place.

#include "frame/rvxcplx.h"
#include "frame/rvxlanes.h"
#include "transform/rvxfftd.h"

namespace {

// A pair of bins, or four pairs: Cplx is ZCplx or Quad.
template <typename Cplx>
struct Mirrored {
    Cplx low;  // bin k
    Cplx high; // bin h-k
};

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
    template <typename Cplx>
    static RVX_INLINE Mirrored<Cplx> apply(Cplx a, Cplx b, Cplx t, double)
    {
        const auto difference = a.re - b.re;
        const auto sum = a.im + b.im;
        const auto p = t.im * difference + t.re * sum;
        const auto q = t.im * sum - t.re * difference;
        return {{b.re + p, q - b.im}, {a.re - p, q - a.im}};
    }
    static RVX_INLINE ZCplx middle(ZCplx z, double) { return {z.re, -z.im}; }
};

struct RealPostInverse {
    template <typename Cplx>
    static RVX_INLINE Mirrored<Cplx> apply(Cplx a, Cplx b, Cplx t, double scale)
    {
        const auto difference = a.re - b.re;
        const auto sum = a.im + b.im;
        const auto p = t.re * sum - t.im * difference;
        const auto q = t.re * difference + t.im * sum;
        const auto s = spread(scale, p);
        return {{(a.re + p) * s, (a.im - q) * s}, {(b.re - p) * s, (b.im - q) * s}};
    }
    static RVX_INLINE ZCplx middle(ZCplx z, double scale) { return {z.re * scale, z.im * scale}; }
};

// From the spectrum, a at k and b at h-k, to what the complex transform turns
// into twice the sample pairs. t is W(2h,k).
struct CcsPreForward {
    template <typename Cplx>
    static RVX_INLINE Mirrored<Cplx> apply(Cplx a, Cplx b, Cplx t, double)
    {
        const auto f = t.im * (a.re - b.re) + t.re * (a.im + b.im);
        const auto g = t.re * (a.re - b.re) - t.im * (a.im + b.im);
        return {{a.re + b.re - f, g + (a.im - b.im)}, {a.re + b.re + f, g - (a.im - b.im)}};
    }
    static RVX_INLINE ZCplx middle(ZCplx z, double) { return {2.0 * z.re, 2.0 * z.im}; }
};

struct CcsPreInverse {
    template <typename Cplx>
    static RVX_INLINE Mirrored<Cplx> apply(Cplx a, Cplx b, Cplx t, double)
    {
        const auto d = t.im * (a.re - b.re) - t.re * (a.im + b.im);
        const auto e = t.im * (a.im + b.im) + t.re * (a.re - b.re);
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
    const Mirrored<Quad> odd =
        Step::apply(quadOf(loadLanes(src + half - 2), allLanes(src[1])),
                    quadOf(pairLanes(src[half + 2], src[half + 1]), allLanes(src[h - 1])),
                    quadOf(loadLanes(table + half - 2), allLanes(table[1])), scale);

    Lanes above = loadLanes(src + h - 2);
    Lanes pending = lastTwo(odd.high); // its second half is the result above the next ones
    for (int k = 2; k < half - 2; k += 4) {
        const ZCplx *mirror = src + h - k;
        const Lanes between = loadLanes(mirror - 2);
        const Lanes below = loadLanes(mirror - 4);
        const Mirrored<Quad> bins =
            Step::apply(quadOf(loadLanes(src + k), loadLanes(src + k + 2)),
                        quadOf(outerHalves(above, between), outerHalves(between, below)),
                        quadOf(loadLanes(table + k), loadLanes(table + k + 2)), scale);
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
        const Mirrored<ZCplx> bins = Step::apply(src[1], src[3], table[1], scale);
        dst[1] = bins.low;
        dst[3] = bins.high;
    }
}

// The steps from a transform to its spectrum, by a product and back, with the values
// and the roundings that they have one after the other. w is W(2h,k).
RVX_INLINE Mirrored<Quad> throughProduct(Quad a, Quad b, Quad w, Quad lowFactor, Quad highFactor)
{
    const Lanes half = allLanes(0.5);
    const Quad t = {half * w.re, half + half * w.im};
    const Mirrored<Quad> bins = RealPostForward::apply(a, b, t, 1.0);
    return CcsPreInverse::apply(bins.low * lowFactor, bins.high * highFactor, w, 1.0);
}

// Bins i, i-1, i-2 and i-3.
RVX_INLINE Quad loadDescending(const ZCplx *z)
{
    return quadOf(swapHalves(loadLanes(z - 1)), swapHalves(loadLanes(z - 3)));
}

// All bins, in the order of overMirroredBlocks and for its reasons; h of 8 and more.
RVX_KERNEL void realProduct(const ZCplx *factors, ZCplx *z, int h, const ZCplx *table)
{
    const int half = h / 2;
    const ZCplx square = RealPostForward::middle(z[half], 1.0) * factors[half];
    const Lanes middle = allLanes(CcsPreInverse::middle(square, 1.0));
    const double first = (z[0].re + z[0].im) * factors[0].re;
    const double last = (z[0].re - z[0].im) * factors[0].im;
    const Mirrored<Quad> odd = throughProduct(
        quadOf(loadLanes(z + half - 2), allLanes(z[1])),
        quadOf(pairLanes(z[half + 2], z[half + 1]), allLanes(z[h - 1])),
        quadOf(loadLanes(table + half - 2), allLanes(table[1])),
        quadOf(loadLanes(factors + half - 2), allLanes(factors[1])),
        quadOf(pairLanes(factors[half + 2], factors[half + 1]), allLanes(factors[h - 1])));

    Lanes above = loadLanes(z + h - 2);
    Lanes pending = lastTwo(odd.high);
    for (int k = 2; k < half - 2; k += 4) {
        const Lanes between = loadLanes(z + h - k - 2);
        const Lanes below = loadLanes(z + h - k - 4);
        const Mirrored<Quad> bins =
            throughProduct(quadOf(loadLanes(z + k), loadLanes(z + k + 2)),
                           quadOf(outerHalves(above, between), outerHalves(between, below)),
                           quadOf(loadLanes(table + k), loadLanes(table + k + 2)),
                           quadOf(loadLanes(factors + k), loadLanes(factors + k + 2)),
                           loadDescending(factors + h - k));
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
