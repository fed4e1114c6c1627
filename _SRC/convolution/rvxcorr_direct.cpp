// Correlations as sums: one lag per lane.
//
// An element of the one sequence meets a run of the other, and each product goes
// to the sum of its lag; so the sums run side by side, each in its own order, and
// up to eight registers of them hide the latency of an addition.

#include "convolution/rvxcorr_paths.h"
#include "frame/rvxlanes.h"

namespace {

// The four ways in which elements meet: the factor stays while the values beside it
// move on with the lag. Each says how many lags share a register, how many of these
// a tile has, and what an element adds to the sums, in lanes and alone.

struct RealByReal {
    using Factor = double;
    using Value = double;
    using Sum = double;
    enum { LAGS = 4, REGISTERS = 8 };
    struct Sums {
        Lanes all;
    };
    struct Spread {
        Lanes f;
    };

    static RVX_INLINE Spread spread(double f) { return {allLanes(f)}; }
    static RVX_INLINE void add(Sums &s, Spread f, const double *v)
    {
        s.all = s.all + f.f * loadLanes(v);
    }
    static RVX_INLINE void store(double *p, const Sums &s) { storeLanes(p, s.all); }
    static RVX_INLINE void addOne(double &s, double f, double v) { s += f * v; }
};

// The value conjugated or not.
template <bool CONJUGATED>
struct RealByComplex {
    using Factor = double;
    using Value = ZCplx;
    using Sum = ZCplx;
    enum { LAGS = 2, REGISTERS = 8 };
    struct Sums {
        Lanes all;
    };
    struct Spread {
        Lanes f;
    };

    static RVX_INLINE double second(double f) { return CONJUGATED ? -f : f; }
    static RVX_INLINE Spread spread(double f)
    {
        return {CONJUGATED ? conjugated(allLanes(f)) : allLanes(f)};
    }
    static RVX_INLINE void add(Sums &s, Spread f, const ZCplx *v)
    {
        s.all = s.all + f.f * loadLanes(v);
    }
    static RVX_INLINE void store(ZCplx *p, const Sums &s) { storeLanes(p, s.all); }
    static RVX_INLINE void addOne(ZCplx &s, double f, ZCplx v)
    {
        s.re += f * v.re;
        s.im += second(f) * v.im;
    }
};

// The factor conjugated or not.
template <bool CONJUGATED>
struct ComplexByReal {
    using Factor = ZCplx;
    using Value = double;
    using Sum = ZCplx;
    enum { LAGS = 4, REGISTERS = 4 };
    struct Sums {
        Lanes re, im;
    };
    struct Spread {
        Lanes re, im;
    };

    static RVX_INLINE double imaginary(ZCplx f) { return CONJUGATED ? -f.im : f.im; }
    static RVX_INLINE Spread spread(ZCplx f) { return {allLanes(f.re), allLanes(imaginary(f))}; }
    static RVX_INLINE void add(Sums &s, Spread f, const double *v)
    {
        const Lanes value = loadLanesOnce(v);
        s.re = s.re + f.re * value;
        s.im = s.im + f.im * value;
    }
    static RVX_INLINE void store(ZCplx *p, const Sums &s)
    {
        storeLanes(p, interleaveLow(s.re, s.im));
        storeLanes(p + 2, interleaveHigh(s.re, s.im));
    }
    static RVX_INLINE void addOne(ZCplx &s, ZCplx f, double v)
    {
        s.re += f.re * v;
        s.im += imaginary(f) * v;
    }
};

// conj(f) * v, or f * conj(v).
template <bool VALUE_CONJUGATED>
struct ComplexByComplex {
    using Factor = ZCplx;
    using Value = ZCplx;
    using Sum = ZCplx;
    enum { LAGS = 2, REGISTERS = 8 };
    struct Sums {
        Lanes all;
    };
    struct Spread {
        Lanes straight, crossed;
    };

    static RVX_INLINE Spread spread(ZCplx f)
    {
        return VALUE_CONJUGATED ? Spread{conjugated(allLanes(f.re)), allLanes(f.im)}
                                : Spread{allLanes(f.re), conjugated(allLanes(f.im))};
    }
    static RVX_INLINE void add(Sums &s, Spread f, const ZCplx *v)
    {
        const Lanes value = loadLanesOnce(v);
        s.all = s.all + (f.straight * value + f.crossed * swapParts(value));
    }
    static RVX_INLINE void store(ZCplx *p, const Sums &s) { storeLanes(p, s.all); }
    static RVX_INLINE void addOne(ZCplx &s, ZCplx f, ZCplx v)
    {
        const double cross = f.re * v.im - f.im * v.re;
        s.re += f.re * v.re + f.im * v.im;
        s.im += VALUE_CONJUGATED ? -cross : cross;
    }
};

// One operand stays, the other moves on with the lag.
template <typename Way>
struct Walk {
    const typename Way::Factor *factors;
    std::int64_t factorsLen;
    const typename Way::Value *values;
    std::int64_t valuesLen;

    // How many products the lag has.
    RVX_INLINE std::int64_t terms(std::int64_t lag) const
    {
        const std::int64_t left = valuesLen - lag;
        return left < 0 ? 0 : left < factorsLen ? left : factorsLen;
    }
};

// sums[j] for the lags lag + j of R registers, which have the first `common` products
// of each: what the lags of one register share comes next, then each lag's own rest.
template <typename Way, int R>
RVX_INLINE void sumRest(const Walk<Way> &walk, std::int64_t lag, std::int64_t common,
                        typename Way::Sums *s, typename Way::Sum *sums)
{
    for (int r = 0; r < R; ++r) {
        const std::int64_t first = lag + r * Way::LAGS;
        const std::int64_t shared = walk.terms(first + Way::LAGS - 1);
        for (std::int64_t i = common; i < shared; ++i)
            Way::add(s[r], Way::spread(walk.factors[i]), walk.values + (i + first));
        Way::store(sums + r * Way::LAGS, s[r]);
        for (int j = 0; j < Way::LAGS; ++j)
            for (std::int64_t i = shared; i < walk.terms(first + j); ++i)
                Way::addOne(sums[r * Way::LAGS + j], walk.factors[i], walk.values[i + first + j]);
    }
}

// The same from nothing: what all the lags have is summed first.
template <typename Way, int R>
RVX_INLINE void sumTile(const Walk<Way> &walk, std::int64_t lag, typename Way::Sum *sums)
{
    typename Way::Sums s[R] = {};
    const std::int64_t common = walk.terms(lag + R * Way::LAGS - 1);
    for (std::int64_t i = 0; i < common; ++i) {
        const typename Way::Spread f = Way::spread(walk.factors[i]);
        for (int r = 0; r < R; ++r)
            Way::add(s[r], f, walk.values + (i + lag + r * Way::LAGS));
    }
    sumRest<Way, R>(walk, lag, common, s, sums);
}

// A stretch of complex values, its real and its imaginary parts apart.
enum { STRETCH = 128, PARTS_LAGS = 16 };

struct Parts {
    double re[STRETCH + PARTS_LAGS];
    double im[STRETCH + PARTS_LAGS];
};

RVX_INLINE void takeApart(const ZCplx *z, std::int64_t n, Parts &parts)
{
    std::int64_t i = 0;
    for (; i + 4 <= n; i += 4) {
        const Lanes a = loadLanesOnce(z + i), b = loadLanesOnce(z + i + 2);
        storeLanes(parts.re + i, evenElements(a, b));
        storeLanes(parts.im + i, oddElements(a, b));
    }
    for (; i < n; ++i) {
        parts.re[i] = z[i].re;
        parts.im[i] = z[i].im;
    }
}

// sums[j] for 16 lags of a complex product, four to a register of real parts and one
// of imaginary parts: nothing has to change lanes in the loop.
template <bool CONJUGATED>
RVX_INLINE void sumByParts(const Walk<ComplexByComplex<CONJUGATED>> &walk, std::int64_t lag,
                           ZCplx *sums)
{
    Lanes re[4] = {}, im[4] = {};
    const std::int64_t common = walk.terms(lag + PARTS_LAGS - 1);
    for (std::int64_t begin = 0; begin < common; begin += STRETCH) {
        const std::int64_t n = common - begin < STRETCH ? common - begin : std::int64_t{STRETCH};
        Parts parts;
        takeApart(walk.values + (begin + lag), n + PARTS_LAGS - 1, parts);
        for (std::int64_t i = 0; i < n; ++i) {
            const ZCplx f = walk.factors[begin + i];
            const Lanes fRe = allLanes(f.re), fIm = allLanes(f.im);
            for (int r = 0; r < 4; ++r) {
                const Lanes vRe = loadLanesOnce(parts.re + i + 4 * r);
                const Lanes vIm = loadLanesOnce(parts.im + i + 4 * r);
                re[r] = re[r] + (fRe * vRe + fIm * vIm);
                im[r] = im[r] + (CONJUGATED ? fIm * vRe - fRe * vIm : fRe * vIm - fIm * vRe);
            }
        }
    }
    typename ComplexByComplex<CONJUGATED>::Sums s[8];
    for (int r = 0; r < 4; ++r) {
        s[2 * r].all = interleaveLow(re[r], im[r]);
        s[2 * r + 1].all = interleaveHigh(re[r], im[r]);
    }
    sumRest<ComplexByComplex<CONJUGATED>, 8>(walk, lag, common, s, sums);
}

template <typename Way>
RVX_INLINE void sumWhole(const Walk<Way> &walk, std::int64_t lag, typename Way::Sum *sums)
{
    sumTile<Way, Way::REGISTERS>(walk, lag, sums);
}

template <bool CONJUGATED>
RVX_INLINE void sumWhole(const Walk<ComplexByComplex<CONJUGATED>> &walk, std::int64_t lag,
                         ZCplx *sums)
{
    sumByParts(walk, lag, sums);
}

// At least the first `lags` of the tile's sums, with the registers that these need.
template <typename Way>
RVX_INLINE void sumWay(const Walk<Way> &walk, std::int64_t lag, std::int64_t lags,
                       typename Way::Sum *sums)
{
    if (lags <= Way::LAGS)
        sumTile<Way, 1>(walk, lag, sums);
    else if (lags <= 2 * Way::LAGS)
        sumTile<Way, 2>(walk, lag, sums);
    else if (lags <= 4 * Way::LAGS && Way::REGISTERS > 4)
        sumTile<Way, 4>(walk, lag, sums);
    else
        sumWhole(walk, lag, sums);
}

RVX_KERNEL void sumLags(const Walk<RealByReal> &walk, std::int64_t lag, std::int64_t lags,
                        double *sums)
{
    sumWay(walk, lag, lags, sums);
}

RVX_KERNEL void sumLagsOfComplexValues(const Walk<RealByComplex<false>> &walk, std::int64_t lag,
                                       std::int64_t lags, ZCplx *sums)
{
    sumWay(walk, lag, lags, sums);
}

RVX_KERNEL void sumLagsOfConjugateValues(const Walk<RealByComplex<true>> &walk, std::int64_t lag,
                                         std::int64_t lags, ZCplx *sums)
{
    sumWay(walk, lag, lags, sums);
}

RVX_KERNEL void sumLagsOfComplexFactors(const Walk<ComplexByReal<false>> &walk, std::int64_t lag,
                                        std::int64_t lags, ZCplx *sums)
{
    sumWay(walk, lag, lags, sums);
}

RVX_KERNEL void sumLagsOfConjugateFactors(const Walk<ComplexByReal<true>> &walk, std::int64_t lag,
                                          std::int64_t lags, ZCplx *sums)
{
    sumWay(walk, lag, lags, sums);
}

RVX_KERNEL void sumComplexLags(const Walk<ComplexByComplex<false>> &walk, std::int64_t lag,
                               std::int64_t lags, ZCplx *sums)
{
    sumWay(walk, lag, lags, sums);
}

RVX_KERNEL void sumComplexLagsBack(const Walk<ComplexByComplex<true>> &walk, std::int64_t lag,
                                   std::int64_t lags, ZCplx *sums)
{
    sumWay(walk, lag, lags, sums);
}

template <typename Way>
using TileKernel = void (*)(const Walk<Way> &, std::int64_t, std::int64_t, typename Way::Sum *);

// dst[direction * j] for the lags from `lag` on; the values move on with the lag.
template <typename Way>
void walkLags(TileKernel<Way> kernel, const Walk<Way> &walk, std::int64_t lag, std::int64_t lags,
              typename Way::Sum *dst, int direction)
{
    constexpr std::int64_t width = Way::LAGS * Way::REGISTERS;
    typename Way::Sum sums[width];
    for (std::int64_t done = 0; done < lags; done += width) {
        const std::int64_t wanted = lags - done < width ? lags - done : width;
        kernel(walk, lag + done, wanted, sums);
        for (std::int64_t j = 0; j < wanted; ++j)
            dst[direction * (done + j)] = sums[j];
    }
}

// How the elements of the forms meet for lags from 0 on, where src1 stays, and below
// 0, where src2 stays.
template <typename A, typename B>
struct Ways;

template <>
struct Ways<double, double> {
    using Onward = RealByReal;
    using Back = RealByReal;
    static constexpr TileKernel<Onward> onward = sumLags;
    static constexpr TileKernel<Back> back = sumLags;
};

template <>
struct Ways<ZCplx, ZCplx> {
    using Onward = ComplexByComplex<false>;
    using Back = ComplexByComplex<true>;
    static constexpr TileKernel<Onward> onward = sumComplexLags;
    static constexpr TileKernel<Back> back = sumComplexLagsBack;
};

template <>
struct Ways<double, ZCplx> {
    using Onward = RealByComplex<false>;
    using Back = ComplexByReal<false>;
    static constexpr TileKernel<Onward> onward = sumLagsOfComplexValues;
    static constexpr TileKernel<Back> back = sumLagsOfComplexFactors;
};

template <>
struct Ways<ZCplx, double> {
    using Onward = ComplexByReal<true>;
    using Back = RealByComplex<true>;
    static constexpr TileKernel<Onward> onward = sumLagsOfConjugateFactors;
    static constexpr TileKernel<Back> back = sumLagsOfConjugateValues;
};

} // namespace

template <typename A, typename B>
void ownCrossDirect(const CrossTask<A, B> &task)
{
    using Way = Ways<A, B>;
    const std::int64_t below = -task.loLag;
    const std::int64_t negative = below < 0 ? 0 : below < task.lags ? below : task.lags;
    // The last of the negative lags is the nearest to zero.
    if (negative > 0)
        walkLags<typename Way::Back>(Way::back, {task.src2, task.len2, task.src1, task.len1},
                                     below - negative + 1, negative, task.dst + (negative - 1), -1);
    if (task.lags > negative)
        walkLags<typename Way::Onward>(Way::onward, {task.src1, task.len1, task.src2, task.len2},
                                       task.loLag + negative, task.lags - negative,
                                       task.dst + negative, 1);
}

template void ownCrossDirect(const CrossTask<double, double> &);
template void ownCrossDirect(const CrossTask<ZCplx, ZCplx> &);
template void ownCrossDirect(const CrossTask<double, ZCplx> &);
template void ownCrossDirect(const CrossTask<ZCplx, double> &);
