// rvxdct, powers of two: halvings down to sums of eight points.
//
// D2(x, m), the cosine sums of m points, are the D2 of half the length of the sums
// x[n] + x[m-1-n] and of the differences times secants; D3, their transposition, is D3
// of the even elements joined with D4 of the odd ones, and D4 is D2 between a product
// with secants and sums of neighbours (B. G. Lee, 1984).
//
// Two halvings bring four sequences of one length that go through the same operations
// from there on: they are laid side by side in lanes, and but for the first and the last
// step nothing moves between lanes. Steps take two halvings at once and work from one
// array into the other; what they leave is finished part by part, which keeps it near.

#include <utility>

#include "frame/rvxbundle.h"
#include "frame/rvxlanes.h"
#include "transform/rvxdct.h"
#include "transform/rvxdct_kernel8.h"

namespace {

using Index = std::int64_t;
using Secants = const double *const *;

constexpr double RVX_ROOT_OF_TWO = 1.4142135623730951;

// x + this is x, zeros of both signs included.
constexpr double RVX_NOTHING = -0.0;

// The place of the secants for sequences of m points, m = 8 * 2^place.
int placeOf(Index m)
{
    return __builtin_ctzll(static_cast<unsigned long long>(m)) - 3;
}

RVX_INLINE Lanes quadAt(const double *p, Index i)
{
    return loadLanes(p + 4 * i);
}

RVX_INLINE void putQuad(double *p, Index i, Lanes a)
{
    storeLanes(p + 4 * i, a);
}

RVX_INLINE Lanes reversedAt(const double *p)
{
    return reversed(loadLanes(p));
}

// ---- into lanes and out of them -----------------------------------------------

// Two halvings of the L points at x: the four sequences of L/4 points, side by side. The
// first lane has the sums of sums, then the sums of differences, the differences of sums
// and the differences of differences.
RVX_INLINE void splitIntoLanes(const double *x, double *lanes, Index L, const double *halfSecants,
                               const double *quarterSecants)
{
    const Index half = L / 2, quarter = L / 4;
    for (Index n = 0; n < quarter; n += 4) {
        const Lanes x0 = loadLanes(x + n), x1 = reversedAt(x + half - 4 - n);
        const Lanes x2 = loadLanes(x + half + n), x3 = reversedAt(x + L - 4 - n);
        const Lanes a0 = x0 + x3, a1 = x1 + x2;
        const Lanes b0 = (x0 - x3) * loadLanes(halfSecants + n);
        const Lanes b1 = (x1 - x2) * reversedAt(halfSecants + half - 4 - n);
        const Lanes secants = loadLanes(quarterSecants + n);
        Lanes v0 = a0 + a1, v1 = b0 + b1, v2 = (a0 - a1) * secants, v3 = (b0 - b1) * secants;
        transposeLanes(v0, v1, v2, v3);
        putQuad(lanes, n, v0);
        putQuad(lanes, n + 1, v1);
        putQuad(lanes, n + 2, v2);
        putQuad(lanes, n + 3, v3);
    }
}

// Four results in a row from the i-th and the next results of the four sequences.
RVX_INLINE Lanes joined(Lanes v, Lanes next)
{
    const Lanes sums = v + next;
    // (v0, v1, sum 2, next 1) + (nothing, sum 3, nothing, sum 3)
    const Lanes front = {__builtin_shufflevector(v.v, sums.v, 0, 1, 6, 1)};
    const Lanes base = {__builtin_shufflevector(front.v, next.v, 0, 1, 2, 5)};
    const Lanes more = blendOdd(allLanes(RVX_NOTHING), laneEverywhere<3>(sums));
    return base + more;
}

// The results of L points, in place of those of the four sequences; multiplied by
// `scale`, the first by `firstScale`, or with `typeFour` each plus the next.
template <bool typeFour>
RVX_INLINE void joinLanes(double *p, Index L, double firstScale, double scale)
{
    const Index last = L / 4 - 1;
    const Lanes factor = allLanes(scale);
    const Lanes nothing = allLanes(RVX_NOTHING);
    Lanes v = quadAt(p, 0);
    const double first = v.v[0];
    for (Index i = 0; i <= last; ++i) {
        const Lanes next = i < last ? quadAt(p, i + 1) : nothing;
        const Lanes results = joined(v, next);
        if (typeFour) {
            const Lanes shifted = {__builtin_shufflevector(results.v, next.v, 1, 2, 3, 4)};
            putQuad(p, i, results + shifted);
        } else {
            putQuad(p, i, results * factor);
        }
        v = next;
    }
    if (!typeFour)
        p[0] = first * firstScale;
}

// ---- in lanes ------------------------------------------------------------------

// Two halvings of m points: four sequences one behind the other.
RVX_INLINE void splitQuads(const double *in, double *out, Index m, const double *halfSecants,
                           const double *quarterSecants)
{
    const Index half = m / 2, quarter = m / 4;
    for (Index n = 0; n < quarter; ++n) {
        const Lanes x0 = quadAt(in, n), x1 = quadAt(in, half - 1 - n);
        const Lanes x2 = quadAt(in, half + n), x3 = quadAt(in, m - 1 - n);
        const Lanes a0 = x0 + x3, a1 = x1 + x2;
        const Lanes b0 = (x0 - x3) * allLanes(halfSecants[n]);
        const Lanes b1 = (x1 - x2) * allLanes(halfSecants[half - 1 - n]);
        const Lanes secant = allLanes(quarterSecants[n]);
        putQuad(out, n, a0 + a1);
        putQuad(out, quarter + n, (a0 - a1) * secant);
        putQuad(out, half + n, b0 + b1);
        putQuad(out, half + quarter + n, (b0 - b1) * secant);
    }
}

// The results of m points from those of the four sequences.
RVX_INLINE void joinQuads(const double *in, double *out, Index m)
{
    const Index half = m / 2, quarter = m / 4;
    const double *in0 = in, *in1 = in + m, *in2 = in0 + 4 * half, *in3 = in1 + 4 * half;
    const Lanes nothing = allLanes(RVX_NOTHING);
    Lanes a1 = quadAt(in1, 0), b0 = quadAt(in2, 0), b1 = quadAt(in3, 0);
    for (Index i = 0; i < quarter; ++i) {
        const bool more = i + 1 < quarter;
        const Lanes a1Next = more ? quadAt(in1, i + 1) : nothing;
        const Lanes b0Next = more ? quadAt(in2, i + 1) : nothing;
        const Lanes b1Next = more ? quadAt(in3, i + 1) : nothing;
        const Lanes sum = b1 + b1Next;
        putQuad(out, 4 * i, quadAt(in0, i));
        putQuad(out, 4 * i + 1, b0 + sum);
        putQuad(out, 4 * i + 2, a1 + a1Next);
        putQuad(out, 4 * i + 3, sum + b0Next);
        a1 = a1Next;
        b0 = b0Next;
        b1 = b1Next;
    }
}

RVX_INLINE void sumsOf8(const double *in, double *out)
{
    Lanes x[8];
    RVX_UNROLLED for (int n = 0; n < 8; ++n) x[n] = quadAt(in, n);
    cosineSums8<false>(x);
    RVX_UNROLLED for (int k = 0; k < 8; ++k) putQuad(out, k, x[k]);
}

RVX_INLINE void sumsOf16(const double *in, double *out, const double *secants)
{
    Lanes x[8];
    RVX_UNROLLED for (int n = 0; n < 8; ++n) x[n] = quadAt(in, n) + quadAt(in, 15 - n);
    cosineSums8<false>(x);
    RVX_UNROLLED for (int k = 0; k < 8; ++k) putQuad(out, 2 * k, x[k]);
    RVX_UNROLLED for (int n = 0; n < 8; ++n) x[n] =
        (quadAt(in, n) - quadAt(in, 15 - n)) * allLanes(secants[n]);
    cosineSums8<false>(x);
    RVX_UNROLLED for (int k = 0; k < 7; ++k) putQuad(out, 2 * k + 1, x[k] + x[k + 1]);
    putQuad(out, 15, x[7]);
}

// out becomes D2 of the m quads at `in`, which are destroyed; place is that of m.
RVX_KERNEL void cosineSumsOfQuads(double *in, double *out, Index m, int place, Secants secants)
{
    if (m == 8)
        return sumsOf8(in, out);
    if (m == 16)
        return sumsOf16(in, out, secants[0]);
    const Index quarter = m / 4;
    splitQuads(in, out, m, secants[place - 1], secants[place - 2]);
    for (Index part = 0; part < 4; ++part) {
        double *from = out + part * m, *to = in + part * m;
        if (quarter == 8)
            sumsOf8(from, to);
        else if (quarter == 16)
            sumsOf16(from, to, secants[0]);
        else
            cosineSumsOfQuads(from, to, quarter, place - 2, secants);
    }
    joinQuads(in, out, m);
}

// ---- of 16 points ---------------------------------------------------------------

// D2 of 16 points: the sums in the even lanes, the differences in the odd ones.
RVX_INLINE void pairSums16(const double *x, const double *secants, Lanes *v)
{
    RVX_UNROLLED for (int n = 0; n < 8; n += 4)
    {
        const Lanes front = loadLanes(x + n), back = reversedAt(x + 12 - n);
        const Lanes sums = front + back, differences = (front - back) * loadLanes(secants + n);
        v[n] = interleaveLow(sums, differences);
        v[n + 1] = swapHalves(v[n]);
        v[n + 2] = interleaveHigh(sums, differences);
        v[n + 3] = swapHalves(v[n + 2]);
    }
    cosineSums8<false>(v);
    // Results 2k and 2k + 1 in the first two lanes of v[k].
    RVX_UNROLLED for (int k = 0; k < 8; ++k)
    {
        const Lanes next = k < 7 ? v[k + 1] : allLanes(RVX_NOTHING);
        v[k] = v[k] + blendOdd(allLanes(RVX_NOTHING), next);
    }
}

RVX_KERNEL void forward16(const double *src, double *dst, const double *secants, double firstScale,
                          double scale)
{
    Lanes v[8];
    pairSums16(src, secants, v);
    const double first = v[0].v[0] * firstScale;
    RVX_UNROLLED for (int k = 0; k < 8; k += 2)
        storeLanes(dst + 2 * k, firstHalves(v[k], v[k + 1]) * allLanes(scale));
    dst[0] = first;
}

// p, already times secants, becomes D4 of 16 points.
RVX_INLINE void typeFour16(double *p, const double *secants)
{
    Lanes v[8];
    pairSums16(p, secants, v);
    RVX_UNROLLED for (int k = 0; k < 8; k += 2)
    {
        const Lanes results = firstHalves(v[k], v[k + 1]);
        const Lanes next = k < 6 ? v[k + 2] : allLanes(RVX_NOTHING);
        storeLanes(p + 2 * k,
                   results + Lanes{__builtin_shufflevector(results.v, next.v, 1, 2, 3, 4)});
    }
}

// p, already times secants, becomes D4 of 8 points.
RVX_INLINE void typeFour8(double *p)
{
    double x[8];
    RVX_UNROLLED for (int n = 0; n < 8; ++n) x[n] = p[n];
    cosineSums8<false>(x);
    RVX_UNROLLED for (int k = 0; k < 7; ++k) p[k] = x[k] + x[k + 1];
    p[7] = x[7];
}

RVX_INLINE void series8(const double *in, double *out)
{
    double x[8];
    RVX_UNROLLED for (int n = 0; n < 8; ++n) x[n] = in[n];
    cosineSeries8<false>(x);
    RVX_UNROLLED for (int n = 0; n < 8; ++n) out[n] = x[n];
}

// ---- the inverse's even and odd elements ------------------------------------------

// The even elements of m and the odd ones times secants; all times `scale` first, the
// very first element times `firstScale`.
template <bool scaled>
RVX_INLINE void splitByParity(const double *x, double *even, double *odd, Index m,
                              const double *secants, double firstScale, double scale)
{
    for (Index i = 0; i < m / 2; i += 4) {
        Lanes low = loadLanes(x + 2 * i), high = loadLanes(x + 2 * i + 4);
        if (scaled) {
            low = low * allLanes(scale);
            high = high * allLanes(scale);
        }
        storeLanes(even + i, evenElements(low, high));
        storeLanes(odd + i, oddElements(low, high) * loadLanes(secants + i));
    }
    if (scaled)
        even[0] = x[0] * firstScale;
}

RVX_KERNEL void splitScaledByParity(const double *x, double *even, double *odd, Index m,
                                    const double *secants, double firstScale, double scale)
{
    splitByParity<true>(x, even, odd, m, secants, firstScale, scale);
}

RVX_KERNEL void splitPlainByParity(const double *x, double *even, double *odd, Index m,
                                   const double *secants)
{
    splitByParity<false>(x, even, odd, m, secants, 1.0, 1.0);
}

// out[n] = even[n] + odd[n], out[m-1-n] = even[n] - odd[n]. `even` is out, and odd may be
// out + m/2: each step writes where it has read, or where nothing is.
RVX_KERNEL void combineMirrored(double *out, const double *odd, Index m)
{
    const Index half = m / 2;
    for (Index n = 0; n < half / 2; n += 4) {
        const Lanes e0 = loadLanes(out + n), e1 = loadLanes(out + half - 4 - n);
        const Lanes o0 = loadLanes(odd + n), o1 = loadLanes(odd + half - 4 - n);
        storeLanes(out + n, e0 + o0);
        storeLanes(out + half - 4 - n, e1 + o1);
        storeLanes(out + half + n, reversed(e1 - o1));
        storeLanes(out + m - 4 - n, reversed(e0 - o0));
    }
}

// ---- of L points from 32 on --------------------------------------------------------

RVX_KERNEL void splitPointsIntoLanes(const double *x, double *lanes, Index L, int place,
                                     Secants secants)
{
    splitIntoLanes(x, lanes, L, secants[place - 1], secants[place - 2]);
}

RVX_KERNEL void joinScaledLanes(double *p, Index L, double firstScale, double scale)
{
    joinLanes<false>(p, L, firstScale, scale);
}

RVX_KERNEL void joinTypeFourLanes(double *p, Index L)
{
    joinLanes<true>(p, L, 1.0, 1.0);
}

RVX_KERNEL void smallTypeFour(double *p, Index m, const double *secants)
{
    if (m == 8)
        typeFour8(p);
    else
        typeFour16(p, secants);
}

RVX_KERNEL void plainSeries8(const double *in, double *out)
{
    series8(in, out);
}

// p, already times secants, becomes D4 of m points; as much room at `other`.
void typeFour(double *p, double *other, Index m, int place, Secants secants)
{
    if (m <= 16)
        return smallTypeFour(p, m, secants[0]);
    splitPointsIntoLanes(p, other, m, place, secants);
    cosineSumsOfQuads(other, p, m / 4, place - 2, secants);
    joinTypeFourLanes(p, m);
}

// ---- of 8 points and fewer ---------------------------------------------------------

// src becomes dst by a straight line on L values, which may be the same ones.
template <int L, void (*line)(double *)>
RVX_INLINE void shortTransform(const double *src, double *dst)
{
    double x[L];
    RVX_UNROLLED for (int n = 0; n < L; ++n) x[n] = src[n];
    line(x);
    RVX_UNROLLED for (int k = 0; k < L; ++k) dst[k] = x[k];
}

void shortForward(const double *src, double *dst, Index L)
{
    if (L == 8)
        shortTransform<8, cosineSums8<true, double>>(src, dst);
    else if (L == 4)
        shortTransform<4, scaledForward4>(src, dst);
    else
        shortTransform<2, scaledBoth2>(src, dst);
}

void shortInverse(const double *src, double *dst, Index L)
{
    if (L == 8)
        shortTransform<8, cosineSeries8<true, double>>(src, dst);
    else if (L == 4)
        shortTransform<4, scaledInverse4>(src, dst);
    else
        shortTransform<2, scaledBoth2>(src, dst);
}

} // namespace

void rvxDctFastForward(const double *src, double *copy, double *dst, std::int64_t L,
                       const RvxDctStages &stages)
{
    if (L <= 8)
        return shortForward(src, dst, L);
    const double scale = stages.scale * RVX_ROOT_OF_TWO;
    if (L == 16)
        return forward16(src, dst, stages.secants[0], stages.scale, scale);
    const int place = placeOf(L);
    splitPointsIntoLanes(src, copy, L, place, stages.secants);
    cosineSumsOfQuads(copy, dst, L / 4, place - 2, stages.secants);
    joinScaledLanes(dst, L, stages.scale, scale);
}

void rvxDctFastInverse(const double *src, double *copy, double *dst, std::int64_t L,
                       const RvxDctStages &stages)
{
    if (L <= 8)
        return shortInverse(src, dst, L);
    // The elements of even index go from one array to the other as they become fewer. The
    // odd ones of a step stay behind them, become a D4 there, and wait in `waiting`.
    double *here = copy, *there = dst;
    const double *waiting[32];
    const double *x = src;
    int place = placeOf(L);
    for (Index m = L; m > 8; m /= 2, --place) {
        double *odd = here + m / 2;
        const double *secants = stages.secants[place - 1];
        if (m == L)
            splitScaledByParity(x, here, odd, m, secants, stages.scale,
                                stages.scale * RVX_ROOT_OF_TWO);
        else
            splitPlainByParity(x, here, odd, m, secants);
        typeFour(odd, there + m / 2, m / 2, place - 1, stages.secants);
        waiting[place] = odd;
        x = here;
        std::swap(here, there);
    }
    plainSeries8(x, dst);
    for (Index m = 16; m <= L; m *= 2)
        combineMirrored(dst, waiting[++place], m);
}
