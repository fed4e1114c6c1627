// rvxdct, any length: sums over the periodic table of cosines, which the fold of x[n]
// with x[L-1-n] halves.
//
// Each sum keeps its order and lanes hold several. The cosines of neighbouring sums do
// not stand side by side in the table. For short lengths they are laid out so behind it,
// product by product; for the others they are collected one by one, from copies of the
// odd and of the even entries which go on for half a period more, so that two are
// reached from one place.

#include <algorithm>

#include "frame/rvxbundle.h"
#include "frame/rvxlanes.h"
#include "transform/rvxdct.h"

namespace {

using Index = std::int64_t;

constexpr double RVX_ROOT_OF_TWO = 1.4142135623730951;

// Up to here the products' cosines are laid out: 128 KB for the longest.
constexpr Index RVX_LAID_OUT_LEN = 128;

// How many lanes hold L/2 sums.
constexpr Index rowLen(Index L)
{
    return (L / 2 + 3) / 4 * 4;
}

// Cosines for the sums of index 2i+1 (odd) and 2i+2 (even) and the products n. Forward
// rows have the sums side by side for each n, inverse rows the n for each i.
struct Rows {
    const double *forwardOdd, *forwardEven, *inverseOdd, *inverseEven;
};

Rows rowsBehind(const double *t, Index L)
{
    const Index size = L / 2 * rowLen(L);
    const double *first = t + 4 * L;
    return {first, first + size, first + 2 * size, first + 3 * size};
}

// Every second cosine: entry j is t[2j+1] or t[2j], for three periods.
struct Halves {
    const double *odd, *even;
};

Halves halvesBehind(const double *t, Index L)
{
    return {t + 4 * L, t + 10 * L};
}

// ---- sums with laid-out cosines ----------------------------------------------------

// 4V odd sums and as many even ones, from the i-th of each on, to `odd` and `even`.
template <int V>
RVX_INLINE void rowSums(const double *copy, Index L, const Rows &rows, Index i, double *odd,
                        double *even)
{
    const Index width = rowLen(L);
    // Even sums of odd lengths start from the middle element, with its sign by turns.
    const double middle = L % 2 != 0 ? copy[L / 2] : 0.0;
    const Lanes start = lanesOf(-middle, middle, -middle, middle);
    Lanes odds[V] = {}, evens[V] = {};
    RVX_UNROLLED for (int v = 0; v < V; ++v)
    {
        odds[v] = allLanes(0.0);
        evens[v] = L % 2 != 0 ? start : allLanes(0.0);
    }
    for (Index n = 0; n < L / 2; ++n) {
        const Lanes sum = allLanes(copy[n]), difference = allLanes(copy[L - 1 - n]);
        const double *oddRow = rows.forwardOdd + n * width + i;
        const double *evenRow = rows.forwardEven + n * width + i;
        RVX_UNROLLED for (int v = 0; v < V; ++v)
        {
            odds[v] = odds[v] + difference * loadLanes(oddRow + 4 * v);
            evens[v] = evens[v] + sum * loadLanes(evenRow + 4 * v);
        }
    }
    RVX_UNROLLED for (int v = 0; v < V; ++v)
    {
        storeLanes(odd + 4 * v, odds[v]);
        storeLanes(even + 4 * v, evens[v]);
    }
}

// Results k = 2i+1 and 2i+2 from `odd` and `even`, as many as there are.
RVX_INLINE void putSums(const double *odd, const double *even, Index i, Index count, Index L,
                        double scale, double *dst)
{
    for (Index j = 0; j < count && 2 * (i + j) + 1 < L; ++j) {
        const Index k = 2 * (i + j) + 1;
        dst[k] = odd[j] * scale;
        if (k + 1 < L)
            dst[k + 1] = even[j] * scale;
    }
}

RVX_KERNEL void forwardByRows(const double *copy, double *dst, Index L, const Rows &rows,
                              double scale)
{
    double odd[16], even[16];
    const Index width = rowLen(L);
    Index i = 0;
    for (; i + 16 <= width; i += 16) {
        rowSums<4>(copy, L, rows, i, odd, even);
        putSums(odd, even, i, 16, L, scale, dst);
    }
    for (; i + 8 <= width; i += 8) {
        rowSums<2>(copy, L, rows, i, odd, even);
        putSums(odd, even, i, 8, L, scale, dst);
    }
    for (; i < width; i += 4) {
        rowSums<1>(copy, L, rows, i, odd, even);
        putSums(odd, even, i, 4, L, scale, dst);
    }
}

// 4V results from the n-th on and their mirror images.
template <int V>
RVX_INLINE void rowSeries(const double *copy, Index L, const Rows &rows, Index n, double *front,
                          double *back)
{
    const Index width = rowLen(L);
    Lanes c[V] = {}, d[V] = {};
    RVX_UNROLLED for (int v = 0; v < V; ++v) c[v] = d[v] = allLanes(copy[0]);
    Index i = 0;
    for (; 2 * i + 2 < L; ++i) {
        const Lanes oddFactor = allLanes(copy[2 * i + 1]), evenFactor = allLanes(copy[2 * i + 2]);
        RVX_UNROLLED for (int v = 0; v < V; ++v)
        {
            const Lanes a = loadLanes(rows.inverseOdd + i * width + n + 4 * v) * oddFactor;
            const Lanes b = loadLanes(rows.inverseEven + i * width + n + 4 * v) * evenFactor;
            c[v] = c[v] + (a + b);
            d[v] = d[v] + (b - a);
        }
    }
    if (2 * i + 1 < L) {
        RVX_UNROLLED for (int v = 0; v < V; ++v)
        {
            const Lanes a =
                loadLanes(rows.inverseOdd + i * width + n + 4 * v) * allLanes(copy[2 * i + 1]);
            c[v] = c[v] + a;
            d[v] = d[v] - a;
        }
    }
    RVX_UNROLLED for (int v = 0; v < V; ++v)
    {
        storeLanes(front + 4 * v, c[v]);
        storeLanes(back + 4 * v, d[v]);
    }
}

RVX_INLINE void putSeries(const double *front, const double *back, Index n, Index count, Index L,
                          double *dst)
{
    for (Index j = 0; j < count && n + j < L / 2; ++j) {
        dst[n + j] = front[j];
        dst[L - 1 - n - j] = back[j];
    }
}

RVX_KERNEL void inverseByRows(const double *copy, double *dst, Index L, const Rows &rows)
{
    double front[16], back[16];
    const Index width = rowLen(L);
    Index n = 0;
    for (; n + 16 <= width; n += 16) {
        rowSeries<4>(copy, L, rows, n, front, back);
        putSeries(front, back, n, 16, L, dst);
    }
    for (; n + 8 <= width; n += 8) {
        rowSeries<2>(copy, L, rows, n, front, back);
        putSeries(front, back, n, 8, L, dst);
    }
    for (; n < width; n += 4) {
        rowSeries<1>(copy, L, rows, n, front, back);
        putSeries(front, back, n, 4, L, dst);
    }
}

// ---- sums with cosines collected one by one --------------------------------------------

using Place = std::uint64_t;

#define RVX_UNROLLED_12 _Pragma("GCC unroll 12")

// at + step within the period, for a step below it: what has not passed the end becomes
// huge on the way back.
RVX_INLINE Place stepped(Place at, Place step, Place period)
{
    return std::min(at + step, at + (step - period));
}

// Twelve sums of one parity, from k on. The folded x[n] stands at x[n * direction].
RVX_INLINE void collectedSums(const double *x, Index direction, Index L, Index k,
                              const double *half, double start, double *sums)
{
    const Place period = static_cast<Place>(2 * L), step = static_cast<Place>(k);
    double sum[12];
    Place at[3];
    RVX_UNROLLED_12 for (int i = 0; i < 12; ++i) sum[i] = i % 2 == 0 ? start : -start;
    RVX_UNROLLED for (int i = 0; i < 3; ++i) at[i] = step / 2 + 4 * static_cast<Place>(i);
    const double *second = half + 1, *third = half + 2, *fourth = half + 3;
    for (Index n = 0; n < L / 2; ++n) {
        const double factor = x[n * direction];
        RVX_UNROLLED for (int i = 0; i < 3; ++i)
        {
            sum[4 * i] += factor * half[at[i]];
            sum[4 * i + 1] += factor * second[at[i]];
            sum[4 * i + 2] += factor * third[at[i]];
            sum[4 * i + 3] += factor * fourth[at[i]];
            at[i] = stepped(at[i], step + 8 * static_cast<Place>(i), period);
        }
        second += 2;
        third += 4;
        fourth += 6;
    }
    RVX_UNROLLED_12 for (int i = 0; i < 12; ++i) sums[i] = sum[i];
}

RVX_KERNEL void forwardByCollecting(const double *copy, double *dst, Index L, const Halves &t,
                                    double scale)
{
    double odd[12], even[12];
    const bool isOdd = L % 2 != 0;
    for (Index i = 0; i < L / 2; i += 12) {
        const Index k = 2 * i + 1;
        collectedSums(copy + L - 1, -1, L, k, t.odd, 0.0, odd);
        collectedSums(copy, 1, L, k + 1, t.even, isOdd ? -copy[L / 2] : 0.0, even);
        putSums(odd, even, i, 12, L, scale, dst);
    }
}

RVX_INLINE RvxPair bothLanes(double x)
{
    return RvxPair{x, x};
}

// Twelve results from the n-th on and their mirror images. A pair of lanes has a result
// and its image, to which an odd coefficient adds with either sign: no cosine moves
// between lanes.
RVX_INLINE void collectedSeries(const double *copy, Index L, Index n, const Halves &t,
                                double *front, double *back)
{
    const Place period = static_cast<Place>(2 * L), u = static_cast<Place>(2 * n + 1);
    RvxPair sum[12];
    Place at[3];
    RVX_UNROLLED_12 for (int i = 0; i < 12; ++i) sum[i] = bothLanes(copy[0]);
    RVX_UNROLLED for (int i = 0; i < 3; ++i) at[i] = u / 2 + 4 * static_cast<Place>(i);
    Index k = 1;
    for (; k + 1 < L; k += 2) {
        const RvxPair oddFactor{copy[k], -copy[k]}, evenFactor = bothLanes(copy[k + 1]);
        const double *odd = t.odd, *even = t.even + n + 1;
        RVX_UNROLLED for (int i = 0; i < 3; ++i)
        {
            RVX_UNROLLED for (int j = 0; j < 4; ++j)
            {
                const RvxPair a = bothLanes(odd[at[i] + static_cast<Place>(j * k)]) * oddFactor;
                const RvxPair b =
                    bothLanes(even[at[i] + static_cast<Place>(4 * i + j * (k + 1))]) * evenFactor;
                sum[4 * i + j] += a + b;
            }
            at[i] = stepped(at[i], u + 8 * static_cast<Place>(i), period);
        }
    }
    if (k < L) {
        const RvxPair oddFactor{copy[k], -copy[k]};
        RVX_UNROLLED for (int i = 0; i < 3; ++i) RVX_UNROLLED for (int j = 0; j < 4; ++j)
            sum[4 * i + j] += bothLanes(t.odd[at[i] + static_cast<Place>(j * k)]) * oddFactor;
    }
    RVX_UNROLLED_12 for (int i = 0; i < 12; ++i)
    {
        front[i] = sum[i][0];
        back[i] = sum[i][1];
    }
}

RVX_KERNEL void inverseByCollecting(const double *copy, double *dst, Index L, const Halves &t)
{
    double front[12], back[12];
    for (Index n = 0; n < L / 2; n += 12) {
        collectedSeries(copy, L, n, t, front, back);
        putSeries(front, back, n, 12, L, dst);
    }
}

// ---- before and after -----------------------------------------------------------------

// x[n] + x[L-1-n] in front, x[n] - x[L-1-n] in their mirror places.
RVX_KERNEL void foldMirrored(double *copy, Index L)
{
    for (Index n = 0; n < L / 2; ++n) {
        const double front = copy[n], back = copy[L - 1 - n];
        copy[n] = front + back;
        copy[L - 1 - n] = front - back;
    }
}

RVX_KERNEL void scaleFromSecond(double *copy, Index L, double scale)
{
    for (Index k = 1; k < L; ++k)
        copy[k] *= scale;
}

// Every step-th element from `first` on. A single one stays what it is, a zero of either
// sign included.
double sumOfEvery(Index step, const double *copy, Index first, Index L)
{
    double sum = first < L ? copy[first] : 0.0;
    for (Index i = first + step; i < L; i += step)
        sum += copy[i];
    return sum;
}

} // namespace

std::int64_t rvxDctCosinesLen(std::int64_t L)
{
    return L <= RVX_LAID_OUT_LEN ? 4 * L + 4 * (L / 2 * rowLen(L)) : 16 * L;
}

void rvxDctSpreadCosines(double *t, std::int64_t L)
{
    const Index period = 4 * L;
    double *to = t + period;
    if (L > RVX_LAID_OUT_LEN) {
        for (Index first = 1; first >= 0; --first)
            for (Index j = 0; j < 6 * L; ++j)
                *to++ = t[(2 * j + first) % period];
        return;
    }
    const Index half = L / 2, width = rowLen(L);
    for (Index first = 1; first <= 2; ++first)
        for (Index n = 0; n < half; ++n)
            for (Index i = 0; i < width; ++i)
                *to++ = t[(2 * n + 1) * (2 * i + first) % period];
    for (Index first = 1; first <= 2; ++first)
        for (Index i = 0; i < half; ++i)
            for (Index n = 0; n < width; ++n)
                *to++ = t[(2 * n + 1) * (2 * i + first) % period];
}

void rvxDctDirectForward(double *copy, double *dst, std::int64_t L, const RvxDctCosines &cosines)
{
    const double all = sumOfEvery(1, copy, 0, L);
    foldMirrored(copy, L);
    const double scale = cosines.scale * RVX_ROOT_OF_TWO;
    if (L <= RVX_LAID_OUT_LEN)
        forwardByRows(copy, dst, L, rowsBehind(cosines.t, L), scale);
    else
        forwardByCollecting(copy, dst, L, halvesBehind(cosines.t, L), scale);
    dst[0] = all * cosines.scale;
}

void rvxDctDirectInverse(double *copy, double *dst, std::int64_t L, const RvxDctCosines &cosines)
{
    copy[0] *= cosines.scale;
    scaleFromSecond(copy, L, cosines.scale * RVX_ROOT_OF_TWO);
    if (L <= RVX_LAID_OUT_LEN)
        inverseByRows(copy, dst, L, rowsBehind(cosines.t, L));
    else
        inverseByCollecting(copy, dst, L, halvesBehind(cosines.t, L));
    if (L % 2 != 0)
        dst[L / 2] = sumOfEvery(4, copy, 0, L) - sumOfEvery(4, copy, 2, L);
}
