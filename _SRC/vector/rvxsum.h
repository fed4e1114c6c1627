// Sums in lanes that know how far off they may be.
//
// A sum comes out as hi + lo with a bound on its error. When every number within
// the bound rounds to the same double, that double is the correctly rounded sum
// and no order of additions can give a better one; otherwise the caller adds in
// Extended, in its family's own order. So the lanes decide how long it takes and
// never what comes out beyond that.
//
// A term x goes into an accumulator that starts at a large power of two, the
// bias: t = top + x is rounded to a multiple of the bias's last place, x - (t -
// top) is exactly what the rounding cut off, and that goes into a second
// accumulator. Three additions and no comparison, and the bias alone bounds what
// is cut off. After a tile of terms, top - bias is exact.
//
// T. J. Dekker, A floating-point technique for extending the available precision,
// Numer. Math. 18 (1971); S. M. Rump, T. Ogita, S. Oishi, Accurate floating-point
// summation part I, SIAM J. Sci. Comput. 31 (2008).

#ifndef RVXSUM_H
#define RVXSUM_H

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "frame/rvxlanes.h"

// A sum is within bound of hi + lo. A bound of 0 says that all terms are zero; a
// sum that was given up has a NaN in hi.
struct BoundedSum {
    double hi, lo, bound;
};

// ---------------------------------------------------------------------------
// Error-free steps; U is half the unit in the last place of 1.

constexpr double RVX_U = 0x1p-53;

struct LanePair {
    Lanes hi, lo;
};

// hi + lo = a + b exactly, whichever is larger.
RVX_INLINE LanePair twoSum(Lanes a, Lanes b)
{
    const Lanes sum = a + b;
    const Lanes part = sum - a;
    return {sum, (a - (sum - part)) + (b - part)};
}

// x with the low 27 bits of its significand cleared: the product of two such
// values is exact, and x less this one is at most 2^-25 |x| unless x is subnormal.
RVX_INLINE Lanes highPart(Lanes x)
{
    return maskBits(x, static_cast<std::int64_t>(0xfffffffff8000000));
}

// ---------------------------------------------------------------------------
// One tile of terms.

// Vectors of terms in a tile, of one sum.
constexpr int RVX_TILE_VECTORS = 128;

// Operands stay below the limit and results above 1 / limit^2, or the sum is given
// up. So nothing overflows here, and underflow, also in the halves of subnormal
// operands, is less than the smallest bias's share of the bound.
constexpr double RVX_OPERAND_LIMIT = 0x1p300;
constexpr double RVX_SMALLEST_RESULT = 0x1p-600;
constexpr double RVX_SMALLEST_BIAS = 0x1p-680;

template <int width>
struct BiasedSum {
    Lanes top[width];
    Lanes rest[width];
};

template <int width>
RVX_INLINE void startAt(double bias, BiasedSum<width> &sum)
{
    for (int j = 0; j < width; ++j) {
        sum.top[j] = allLanes(bias);
        sum.rest[j] = allLanes(0.0);
    }
}

// Adds x to accumulator j.
template <int width>
RVX_INLINE void addTerm(BiasedSum<width> &sum, int j, Lanes x)
{
    const Lanes top = sum.top[j] + x;
    sum.rest[j] = sum.rest[j] + (x - (top - sum.top[j]));
    sum.top[j] = top;
}

// Adds x + low, where low is much smaller than x.
template <int width>
RVX_INLINE void addTerm(BiasedSum<width> &sum, int j, Lanes x, Lanes low)
{
    const Lanes top = sum.top[j] + x;
    sum.rest[j] = sum.rest[j] + ((x - (top - sum.top[j])) + low);
    sum.top[j] = top;
}

// Adds a * b, both given with their high parts. low stays below 2^-24 |a b| and its
// roundings below 2 U 2^-24 |a b|.
template <int width>
RVX_INLINE void addProduct(BiasedSum<width> &sum, int j, Lanes a, Lanes aHigh, Lanes b, Lanes bHigh)
{
    addTerm(sum, j, aHigh * bHigh, aHigh * (b - bHigh) + (a - aHigh) * b);
}

// Adds a * a, under the same bounds.
template <int width>
RVX_INLINE void addSquare(BiasedSum<width> &sum, int j, Lanes a)
{
    const Lanes high = highPart(a);
    addTerm(sum, j, high * high, (a - high) * (a + high));
}

// The largest magnitudes of the operands so far, lane by lane. NaNs are passed
// over: they show in the sum.
struct Peaks {
    Lanes a, b;
};

// ---------------------------------------------------------------------------
// All tiles.
//
// Terms says what is added:
//   sums, width      sums that run side by side, accumulators of each
//   stepLen          elements that width vectors of terms take
//   lowShare(s)      how large the low parts of sum s's terms may be, as a share
//   step(i, sum, peaks)
//                    adds the terms of the elements from i on
//   tail(i, n, room) the same Terms on n < stepLen elements from i, with zeros behind
//   bound(s, peaks)  lane by lane, the most that the terms of sum s can be

struct TailRoom {
    double a[16], b[16];
};

// n doubles of src with zeros behind them, 16 in all.
RVX_INLINE const double *zeroPadded(const double *src, std::ptrdiff_t n, double *room)
{
    std::memset(room, 0, 16 * sizeof *room);
    std::memcpy(room, src, static_cast<std::size_t>(n) * sizeof *room);
    return room;
}

// Adds up over tiles, exactly down to lowest.
struct Totals {
    Lanes high, low, lowest;
    Lanes bound;
};

RVX_INLINE double largestLane(Lanes x)
{
    const double a = x.v[0] > x.v[1] ? x.v[0] : x.v[1];
    const double b = x.v[2] > x.v[3] ? x.v[2] : x.v[3];
    return a > b ? a : b;
}

// A bias stands so far above its terms that an accumulator never moves by a
// quarter of it, and all accumulators of a lane together by no more than it.
template <int width>
RVX_INLINE bool biasFits(double bias, double peak)
{
    constexpr int terms = RVX_TILE_VECTORS / width;
    return 8 * terms * peak <= bias;
}

// A power of two that fits, and still does when the terms become 16 times larger.
template <int width>
RVX_INLINE double biasAbove(double peak)
{
    constexpr int terms = RVX_TILE_VECTORS / width;
    std::uint64_t bits;
    std::memcpy(&bits, &peak, sizeof bits);
    bits &= 0x7ff0000000000000;
    double power;
    std::memcpy(&power, &bits, sizeof power);
    const double bias = 256.0 * terms * power;
    return bias > RVX_SMALLEST_BIAS ? bias : RVX_SMALLEST_BIAS;
}

// Takes a tile's sum into the totals.
//
// What a tile is off by, lane by lane: with r = share peak + U bias, which every
// term's rest keeps below, an accumulator of k terms rounds its k additions by at
// most U r (1 + 2 + ... + k), the low parts round by 2 U r for each term, their
// addition by U r, and joining the accumulators by 2 U r. That is less than
// (k / 2 + 6) U r for each term; the 8 leaves room for the terms of second order
// and for the totals, which are exact to U^2 of the sum of magnitudes.
template <int width>
RVX_INLINE void closeTile(const BiasedSum<width> &sum, double bias, double lowShare, Lanes peak,
                          Totals &total)
{
    constexpr int terms = RVX_TILE_VECTORS / width;
    Lanes top = sum.top[0] - allLanes(bias);
    Lanes rest = sum.rest[0];
    for (int j = 1; j < width; ++j) {
        top = top + (sum.top[j] - allLanes(bias));
        rest = rest + sum.rest[j];
    }
    const LanePair high = twoSum(total.high, top);
    const LanePair low = twoSum(total.low, high.lo);
    const LanePair lower = twoSum(low.hi, rest);
    total.high = high.hi;
    total.low = lower.hi;
    total.lowest = total.lowest + (low.lo + lower.lo);
    constexpr int roundings = RVX_TILE_VECTORS * (terms / 2 + 8);
    constexpr double factor = roundings * RVX_U;
    total.bound =
        total.bound + (peak * allLanes(factor * lowShare) + allLanes(factor * RVX_U * bias));
}

// The sums of all n elements' terms; false when one was given up.
template <typename Terms>
RVX_INLINE bool sumTiles(const Terms &terms, std::ptrdiff_t n, Totals *totals, Peaks &allPeaks)
{
    constexpr int width = Terms::width;
    constexpr std::ptrdiff_t tileLen = RVX_TILE_VECTORS / width * Terms::stepLen;
    const Lanes zero = allLanes(0.0);
    BiasedSum<width> sum[Terms::sums];
    double bias[Terms::sums];
    TailRoom room;
    Peaks peaks = {zero, zero};

    // The first step is made once for its peaks alone.
    for (int s = 0; s < Terms::sums; ++s)
        startAt(0.0, sum[s]);
    if (n < Terms::stepLen)
        terms.tail(0, n, room).step(0, sum, peaks);
    else
        terms.step(0, sum, peaks);
    for (int s = 0; s < Terms::sums; ++s) {
        totals[s] = {zero, zero, zero, zero};
        bias[s] = biasAbove<width>(largestLane(Terms::bound(s, peaks)));
    }
    allPeaks = {zero, zero};

    for (std::ptrdiff_t from = 0; from < n;) {
        const std::ptrdiff_t here = n - from < tileLen ? n - from : tileLen;
        const std::ptrdiff_t whole = here / Terms::stepLen * Terms::stepLen;
        for (int s = 0; s < Terms::sums; ++s)
            startAt(bias[s], sum[s]);
        peaks = {zero, zero};
        for (std::ptrdiff_t i = 0; i < whole; i += Terms::stepLen)
            terms.step(from + i, sum, peaks);
        if (whole < here)
            terms.tail(from + whole, here - whole, room).step(0, sum, peaks);

        if (!(largestLane(maxLanes(peaks.a, peaks.b)) <= RVX_OPERAND_LIMIT))
            return false;
        bool fits = true;
        for (int s = 0; s < Terms::sums; ++s) {
            const double peak = largestLane(Terms::bound(s, peaks));
            if (!biasFits<width>(bias[s], peak)) {
                bias[s] = biasAbove<width>(peak);
                fits = false;
            }
        }
        if (!fits)
            continue;
        for (int s = 0; s < Terms::sums; ++s)
            closeTile(sum[s], bias[s], Terms::lowShare(s), Terms::bound(s, peaks), totals[s]);
        allPeaks = {maxLanes(allPeaks.a, peaks.a), maxLanes(allPeaks.b, peaks.b)};
        from += here;
    }
    return true;
}

// ---------------------------------------------------------------------------
// From lanes to numbers.

RVX_INLINE LanePair addPairs(LanePair a, LanePair b)
{
    const LanePair sum = twoSum(a.hi, b.hi);
    return twoSum(sum.hi, sum.lo + (a.lo + b.lo));
}

// The four lanes joined, in every lane (every = 1), or the even and the odd lanes
// each among themselves (every = 2).
template <int every>
RVX_INLINE void joinLanes(const Totals &total, BoundedSum *sum)
{
    LanePair pair = twoSum(total.high, total.low);
    pair = twoSum(pair.hi, pair.lo + total.lowest);
    Lanes bound = total.bound;
    pair = addPairs(pair, {swapHalves(pair.hi), swapHalves(pair.lo)});
    bound = bound + swapHalves(bound);
    if (every == 1) {
        pair = addPairs(pair, {swapParts(pair.hi), swapParts(pair.lo)});
        bound = bound + swapParts(bound);
    }
    for (int l = 0; l < every; ++l)
        sum[l] = {pair.hi.v[l], pair.lo.v[l], bound.v[l]};
}

// The sums of Terms, each joined into BoundedSums as joinLanes does.
template <int every, typename Terms>
RVX_INLINE void boundedSums(const Terms &terms, std::ptrdiff_t n, BoundedSum *sum)
{
    Totals totals[Terms::sums];
    Peaks peaks;
    if (!sumTiles(terms, n, totals, peaks)) {
        for (int s = 0; s < Terms::sums * every; ++s)
            sum[s] = {__builtin_nan(""), 0.0, 0.0};
        return;
    }
    // Which operands are zero throughout; where all terms are, the sum is exact.
    const Peaks marks = {oneWhereAbove(peaks.a, allLanes(0.0)),
                         oneWhereAbove(peaks.b, allLanes(0.0))};
    for (int s = 0; s < Terms::sums; ++s) {
        Lanes marked = Terms::bound(s, marks);
        marked = marked + swapHalves(marked);
        if (every == 1)
            marked = marked + swapParts(marked);
        joinLanes<every>(totals[s], sum + s * every);
        for (int l = 0; l < every; ++l)
            if (marked.v[l] == 0.0)
                sum[s * every + l].bound = 0.0;
    }
}

// ---------------------------------------------------------------------------
// Which double it is.

// The correctly rounded sum, if the bound tells which double that is; the sum of
// zeros is +0.
RVX_INLINE bool roundedSum(const BoundedSum &sum, double *result)
{
    if (sum.bound == 0.0) {
        *result = 0.0;
        return sum.hi == 0.0;
    }
    const double magnitude = sum.lo < 0.0 ? -sum.lo : sum.lo;
    const double bound = sum.bound + 0x1p-52 * magnitude;
    const double above = sum.hi + (sum.lo + bound);
    const double below = sum.hi + (sum.lo - bound);
    const double size = above < 0.0 ? -above : above;
    *result = above;
    return above == below && size >= RVX_SMALLEST_RESULT;
}

// ---------------------------------------------------------------------------
// What statistics are made of sums.

struct DoublePair {
    double hi, lo;
};

RVX_INLINE DoublePair twoSum(double a, double b)
{
    const double sum = a + b;
    const double part = sum - a;
    return {sum, (a - (sum - part)) + (b - part)};
}

// hi + lo = a * b to within 2^-102 |a b|.
RVX_INLINE DoublePair twoProduct(double a, double b)
{
    const Lanes high = highPart({RvxVector{a, b, 0.0, 0.0}});
    const double aLow = a - high.v[0];
    const double bLow = b - high.v[1];
    const double product = a * b;
    return {product, ((high.v[0] * high.v[1] - product) + high.v[0] * bLow + aLow * high.v[1]) +
                         aLow * bLow};
}

// sum / n, for an integer n: the quotient, and what is left over divided again.
inline BoundedSum dividedBy(const BoundedSum &sum, double n)
{
    const double quotient = sum.hi / n;
    const DoublePair back = twoProduct(quotient, n);
    const double left = ((sum.hi - back.hi) - back.lo) + sum.lo;
    const DoublePair pair = twoSum(quotient, left / n);
    const double size = pair.hi < 0.0 ? -pair.hi : pair.hi;
    const bool exact = sum.bound == 0.0;
    return {pair.hi, pair.lo, exact ? 0.0 : 1.001 * (sum.bound / n) + 0x1p-99 * size};
}

// (n sumOfSquares - sum^2) / (n (n - 1)).
inline BoundedSum boundedVariance(const BoundedSum &sum, const BoundedSum &squares, double n)
{
    const DoublePair p = twoProduct(n, squares.hi);
    const DoublePair q = twoProduct(sum.hi, sum.hi);
    const DoublePair difference = twoSum(p.hi, -q.hi);
    const double low =
        (difference.lo + (p.lo - q.lo)) + (n * squares.lo - (2.0 * sum.hi + sum.lo) * sum.lo);
    const DoublePair pair = twoSum(difference.hi, low);
    const double size = sum.hi < 0.0 ? -sum.hi : sum.hi;
    const double bound = 1.001 * (n * squares.bound + (2.0 * size + sum.bound) * sum.bound) +
                         0x1p-98 * (p.hi + q.hi);
    return dividedBy(dividedBy({pair.hi, pair.lo, bound}, n), n - 1.0);
}

#endif
