// The split of a real line: bin k of 2n real values from bins k and n-k of the n
// complex values that they were read as.
//
// Two pairs of bins fill a register. In bit-reversed order the frequencies with the
// same lowest bit stand together, and within such a group k and n-k are mirror
// images: reversed loads take the place of a table of positions.
//
// Cooley, Lewis and Welch, The fast Fourier transform algorithm: programming
// considerations in the calculation of sine, cosine and Laplace transforms, 1970.

#include "convolution/rvxfir2.h"

#include <cstdint>

#include "convolution/rvxfir2_split.h"
#include "frame/rvxcheck.h"
#include "transform/rvxtwd.h"

RVX_MODULE("rvxfir2")

namespace {

// The factors of bins 1, 2 and so on: upward from the table's start, or downward
// from its end, where the conjugate ones stand.
struct Factors {
    const ZCplx *origin;
    std::ptrdiff_t step;

    RVX_INLINE ZCplx at(std::int64_t k) const { return origin[k * step]; }
};

// Which way a line is turned.
struct Forward {
    static RVX_INLINE void turn(Lanes &k, Lanes &m, Lanes w) { splitPair(k, m, w); }
};

struct Inverse {
    static RVX_INLINE void turn(Lanes &k, Lanes &m, Lanes w) { joinPair(k, m, w); }
};

template <typename Way>
RVX_INLINE void turnOne(ZCplx *atK, ZCplx *atM, ZCplx factor)
{
    Lanes k = allLanes(*atK);
    Lanes m = allLanes(*atM);
    Way::turn(k, m, allLanes(factor));
    storeFirst(atK, k);
    storeFirst(atM, m);
}

template <typename Way>
RVX_INLINE void turnNatural(ZCplx *z, std::int64_t n, Factors w)
{
    std::int64_t i = 1;
    for (; i + 1 < n / 2; i += 2) {
        ZCplx *atM = z + (n - i - 1);
        Lanes k = loadLanes(z + i);
        Lanes m = swapHalves(loadLanes(atM));
        Way::turn(k, m, pairLanes(w.at(i), w.at(i + 1)));
        storeLanes(z + i, k);
        storeLanes(atM, swapHalves(m));
    }
    turnOne<Way>(z + i, z + (n - i), w.at(i));
}

RVX_INLINE std::uint32_t reversedBits(std::uint32_t x)
{
    x = ((x >> 1) & 0x55555555u) | ((x & 0x55555555u) << 1);
    x = ((x >> 2) & 0x33333333u) | ((x & 0x33333333u) << 2);
    x = ((x >> 4) & 0x0f0f0f0fu) | ((x & 0x0f0f0f0fu) << 4);
    return __builtin_bswap32(x);
}

// Position p of the first half of a group is bin k or n-k, below n/2, as p is even
// or odd; so a pair of positions has the roles k, m and its mirror image m, k.
template <typename Way>
RVX_INLINE void turnReversed(ZCplx *z, int order, Factors w)
{
    const std::int64_t n = std::int64_t{1} << order;
    turnOne<Way>(z + 2, z + 3, w.at(n / 4));
    for (std::int64_t group = 4; group < n; group *= 2) {
        for (std::int64_t p = group; p < group + group / 2; p += 2) {
            const std::int64_t bin = reversedBits(static_cast<std::uint32_t>(p)) >> (32 - order);
            ZCplx *mirror = z + (3 * group - 2 - p);
            const Lanes front = loadLanes(z + p);
            const Lanes back = swapHalves(loadLanes(mirror));
            Lanes k = outerHalves(front, back);
            Lanes m = outerHalves(back, front);
            Way::turn(k, m, pairLanes(w.at(bin), w.at(n / 2 - bin)));
            storeLanes(z + p, outerHalves(k, m));
            storeLanes(mirror, swapHalves(outerHalves(m, k)));
        }
    }
}

RVX_KERNEL void splitLineNatural(ZCplx *z, std::int64_t n, Factors w)
{
    turnNatural<Forward>(z, n, w);
}

RVX_KERNEL void splitLineReversed(ZCplx *z, int order, Factors w)
{
    turnReversed<Forward>(z, order, w);
}

RVX_KERNEL void joinLineNatural(ZCplx *z, std::int64_t n, Factors w)
{
    turnNatural<Inverse>(z, n, w);
}

RVX_KERNEL void joinLineReversed(ZCplx *z, int order, Factors w)
{
    turnReversed<Inverse>(z, order, w);
}

Factors factorsOf(const ZCplx *table, int order, int flags)
{
    if ((flags & RVX_FFT_INVERSE) == 0)
        return {table, 1};
    return {table + (std::int64_t{2} << order), -1};
}

void turnFirst(ZCplx *z)
{
    z[0] = {z[0].re + z[0].im, z[0].re - z[0].im};
}

struct LineKernels {
    void (*natural)(ZCplx *z, std::int64_t n, Factors w);
    void (*reversed)(ZCplx *z, int order, Factors w);
};

// All bins but the one in the middle. Lines of four bins and more have pairs, and they
// alone need factors: false, and nothing done, when there is no memory for these.
bool turnLine(const char *func, LineKernels kernels, ZCplx *z, int order, int flags, bool reversed)
{
    const std::int64_t n = std::int64_t{1} << order;
    if (n > 2) {
        const ZCplx *table = rvxFindFftTwdTbl(order + 1);
        if (table == nullptr) {
            RVX_REPORT_AS(func, RVX_STATUS_NO_MEMORY, "NULL Pointer");
            return false;
        }
        const Factors w = factorsOf(table, order, flags);
        if (reversed)
            kernels.reversed(z, order, w);
        else
            kernels.natural(z, n, w);
    }
    turnFirst(z);
    return true;
}

} // namespace

void rvxSplitReversed(ZCplx *z, int order, const ZCplx *firstQuarter)
{
    splitLineReversed(z, order, {firstQuarter, 1});
    turnFirst(z);
    z[1].im = -z[1].im;
}

void rvxJoinReversed(ZCplx *z, int order, const ZCplx *circleEnd)
{
    joinLineReversed(z, order, {circleEnd, -1});
    turnFirst(z);
    z[1] = {2.0 * z[1].re, -(2.0 * z[1].im)};
}

void rvxRealSplitFwd(ZCplx *z, int order, int flags)
{
    const bool reversed = (flags & RVX_FFT_OUT_BIT_REV) != 0;
    const std::int64_t n = std::int64_t{1} << order;
    if (!turnLine(__func__, {splitLineNatural, splitLineReversed}, z, order, flags, reversed) ||
        n < 2 || (flags & RVX_FFT_INVERSE) != 0)
        return;
    ZCplx &middle = z[reversed ? 1 : n / 2];
    middle.im = -middle.im;
}

void rvxRealSplitInv(ZCplx *z, int order, int flags)
{
    const bool reversed = (flags & RVX_FFT_IN_BIT_REV) != 0;
    const std::int64_t n = std::int64_t{1} << order;
    if (!turnLine(__func__, {joinLineNatural, joinLineReversed}, z, order, flags, reversed) ||
        n < 2)
        return;
    ZCplx &middle = z[reversed ? 1 : n / 2];
    middle = {2.0 * middle.re, 2.0 * middle.im};
    if ((flags & RVX_FFT_INVERSE) != 0)
        middle.im = -middle.im;
}
