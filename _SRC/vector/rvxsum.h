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
    Lanes size; // the sum of magnitudes, where it is asked for
};

template <int width>
RVX_INLINE void startAt(double bias, BiasedSum<width> &sum)
{
    for (int j = 0; j < width; ++j) {
        sum.top[j].v = allLanes(bias).v;
        sum.rest[j].v = allLanes(0.0).v;
    }
    sum.size.v = allLanes(0.0).v;
}

// Adds x to accumulator j.
template <int width>
RVX_INLINE void addTerm(BiasedSum<width> &sum, int j, Lanes x)
{
    const Lanes top = sum.top[j] + x;
    sum.rest[j].v += (x - (top - sum.top[j])).v;
    sum.top[j].v = top.v;
}

// Adds x + low, where low is much smaller than x.
template <int width>
RVX_INLINE void addTerm(BiasedSum<width> &sum, int j, Lanes x, Lanes low)
{
    const Lanes top = sum.top[j] + x;
    sum.rest[j].v += ((x - (top - sum.top[j])) + low).v;
    sum.top[j].v = top.v;
}

// A factor in two parts that add up to it exactly.
struct SplitLanes {
    Lanes high, low;
};

RVX_INLINE SplitLanes split(Lanes x)
{
    const Lanes high = highPart(x);
    return {high, x - high};
}

// Adds (a.high + a.low) * (b.high + b.low), where whole is a. The low part of the
// product stays below 2^-24 of it and the roundings of that below 2 U 2^-24.
template <bool sized, int width>
RVX_INLINE void addProduct(BiasedSum<width> &sum, int j, Lanes whole, SplitLanes a, SplitLanes b)
{
    const Lanes product = a.high * b.high;
    addTerm(sum, j, product, a.low * b.high + whole * b.low);
    if (sized)
        sum.size.v += absLanes(product).v;
}

// Adds a * a, under the same bounds.
template <int width>
RVX_INLINE void addSquare(BiasedSum<width> &sum, int j, Lanes whole, SplitLanes a)
{
    addTerm(sum, j, a.high * a.high, a.low * (whole + a.high));
}

// Bounds on the magnitudes of the operands so far, lane by lane, by maxMagnitude.
struct Peaks {
    Lanes a, b;
};

// ---------------------------------------------------------------------------
// All tiles.
//
// Terms says what is added:
//   n                elements, 1 or more
//   sums, width      sums that run side by side, accumulators of each
//   stepLen          elements that width vectors of terms take
//   tileSteps        steps in a tile: more make the bound wider, less take longer
//   sized            whether the sums of magnitudes are made too: one more addition
//                    for each term, and a bound that does not take all for the peak
//   lowShare(s)      how large the low parts of sum s's terms may be, as a share
//   step<Load>(i, sum, peaks)
//                    adds the terms of the stepLen elements from i on
//   bound(s, peaks)  lane by lane, the most that the terms of sum s can be

// Four doubles of a block of n, from i on, or two, each twice.
struct LoadWhole {
    RVX_INLINE static Lanes from(const double *p, std::ptrdiff_t i, std::ptrdiff_t)
    {
        return loadLanes(p + i);
    }
    RVX_INLINE static Lanes twiceFrom(const double *p, std::ptrdiff_t i, std::ptrdiff_t)
    {
        return {RvxVector{p[i], p[i], p[i + 1], p[i + 1]}};
    }
};

// The same at the end of the block, with zeros behind it.
struct LoadTail {
    RVX_INLINE static double one(const double *p, std::ptrdiff_t i, std::ptrdiff_t n)
    {
        return i < n ? p[i] : 0.0;
    }
    RVX_INLINE static Lanes from(const double *p, std::ptrdiff_t i, std::ptrdiff_t n)
    {
        return {RvxVector{one(p, i, n), one(p, i + 1, n), one(p, i + 2, n), one(p, i + 3, n)}};
    }
    RVX_INLINE static Lanes twiceFrom(const double *p, std::ptrdiff_t i, std::ptrdiff_t n)
    {
        const double first = one(p, i, n), second = one(p, i + 1, n);
        return {RvxVector{first, first, second, second}};
    }
};

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
template <typename Terms>
RVX_INLINE bool biasIsLow(double bias, double peak)
{
    return 8 * Terms::tileSteps * peak > bias;
}

// A power of two that is not too low, even when the terms become 16 times larger.
template <typename Terms>
RVX_INLINE double biasAbove(double peak)
{
    std::uint64_t bits;
    std::memcpy(&bits, &peak, sizeof bits);
    bits &= 0x7ff0000000000000;
    double power;
    std::memcpy(&power, &bits, sizeof power);
    const double bias = 256.0 * Terms::tileSteps * power;
    return bias > RVX_SMALLEST_BIAS ? bias : RVX_SMALLEST_BIAS;
}

// Takes a tile's sum into the totals.
template <int width>
RVX_INLINE void closeTile(const BiasedSum<width> &sum, double bias, Lanes bound, Totals &total)
{
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
    total.bound = total.bound + bound;
}

// What a tile is off by, lane by lane. With r = share peak + U bias, which every
// term's rest keeps below, an accumulator of k terms rounds its k additions by at
// most U r (1 + 2 + ... + k), the low parts round by 2 U r for each term, their
// addition by U r, joining the accumulators by 2 U r and joining the lanes by 4 U r.
// That is less than (k / 2 + 10) U r for each term; the 12 leaves room for what is
// of second order: the totals are exact to U^2 of the sum of magnitudes.
//
// Where the sum of magnitudes is known, the part of r that is not the bias's adds up
// to share size over all terms, and each is in at most k of the sums.
template <typename Terms>
RVX_INLINE Lanes tileBound(int s, const BiasedSum<Terms::width> &sum, double bias, Lanes peak)
{
    constexpr int k = Terms::tileSteps;
    constexpr int roundings = Terms::width * k * (k / 2 + 12);
    constexpr double all = roundings * RVX_U;
    const double share = Terms::lowShare(s);
    const Lanes low =
        Terms::sized ? sum.size * allLanes((k + 12) * RVX_U * share) : peak * allLanes(all * share);
    return low + allLanes(all * RVX_U * bias);
}

// The sums of all terms; false when they were given up.
template <typename Terms>
RVX_INLINE bool sumTiles(const Terms &terms, Totals *totals, Peaks &allPeaks)
{
    constexpr int width = Terms::width;
    constexpr std::ptrdiff_t tileLen = Terms::tileSteps * Terms::stepLen;
    const Lanes zero = allLanes(0.0);
    BiasedSum<width> sum[Terms::sums] = {};
    double bias[Terms::sums];

    // The first step tells what to expect.
    Peaks peaks = {zero, zero};
    if (terms.n < Terms::stepLen)
        terms.template step<LoadTail>(0, sum, peaks);
    else
        terms.template step<LoadWhole>(0, sum, peaks);
    for (int s = 0; s < Terms::sums; ++s) {
        totals[s] = {zero, zero, zero, zero};
        bias[s] = biasAbove<Terms>(largestLane(Terms::bound(s, peaks)));
    }
    allPeaks = {zero, zero};

    for (std::ptrdiff_t from = 0; from < terms.n;) {
        const std::ptrdiff_t left = terms.n - from;
        const std::ptrdiff_t end = from + (left < tileLen ? left : tileLen);
        peaks = {zero, zero};
        for (int s = 0; s < Terms::sums; ++s)
            startAt(bias[s], sum[s]);
        std::ptrdiff_t i = from;
        for (; i + Terms::stepLen <= end; i += Terms::stepLen)
            terms.template step<LoadWhole>(i, sum, peaks);
        if (i < end)
            terms.template step<LoadTail>(i, sum, peaks);

        // A tile whose terms outgrew the bias is made again.
        bool again = false;
        for (int s = 0; s < Terms::sums; ++s) {
            const double peak = largestLane(Terms::bound(s, peaks));
            if (biasIsLow<Terms>(bias[s], peak)) {
                bias[s] = biasAbove<Terms>(peak);
                again = true;
            }
        }
        if (again)
            continue;
        for (int s = 0; s < Terms::sums; ++s)
            closeTile(sum[s], bias[s], tileBound<Terms>(s, sum[s], bias[s], Terms::bound(s, peaks)),
                      totals[s]);
        allPeaks = {maxMagnitude(allPeaks.a, peaks.a), maxMagnitude(allPeaks.b, peaks.b)};
        from = end;
    }
    return largestLane(maxMagnitude(allPeaks.a, allPeaks.b)) <= RVX_OPERAND_LIMIT;
}

// ---------------------------------------------------------------------------
// From lanes to numbers.

// The four lanes joined (every = 1), or the even and the odd lanes each among
// themselves (every = 2).
template <int every>
RVX_INLINE void joinLanes(const Totals &total, BoundedSum *sum)
{
    Lanes low = total.low + total.lowest;
    LanePair pair = twoSum(total.high, swapHalves(total.high));
    low = (low + swapHalves(low)) + pair.lo;
    Lanes bound = total.bound + swapHalves(total.bound);
    if (every == 1) {
        pair = twoSum(pair.hi, swapParts(pair.hi));
        low = (low + swapParts(low)) + pair.lo;
        bound = bound + swapParts(bound);
    }
    pair = twoSum(pair.hi, low);
    for (int l = 0; l < every; ++l)
        sum[l] = {pair.hi.v[l], pair.lo.v[l], bound.v[l]};
}

// The sums of Terms, each joined into BoundedSums as joinLanes does.
template <int every, typename Terms>
RVX_INLINE void boundedSums(const Terms &terms, BoundedSum *sum)
{
    Totals totals[Terms::sums];
    Peaks peaks;
    const bool good = sumTiles(terms, totals, peaks);
    // Which operands are zero throughout; where all terms are, the sum is exact.
    const Peaks marks = {oneWhereAbove(peaks.a, allLanes(0.0)),
                         oneWhereAbove(peaks.b, allLanes(0.0))};
    for (int s = 0; s < Terms::sums; ++s) {
        Lanes marked = Terms::bound(s, marks);
        marked = marked + swapHalves(marked);
        if (every == 1)
            marked = marked + swapParts(marked);
        joinLanes<every>(totals[s], sum + s * every);
        for (int l = 0; l < every; ++l) {
            if (marked.v[l] == 0.0)
                sum[s * every + l].bound = 0.0;
            if (!good)
                sum[s * every + l].hi = __builtin_nan("");
        }
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

// A sum in Extended, in its family's order, and the sum of its terms' magnitudes.
struct ExtendedSum {
    Extended sum, magnitudes;
};

// The same for it, where no way from a term to the sum has more than roundings - 6
// roundings in it: each is off by at most 2^-64 of the magnitudes. Short blocks are
// done sooner this way, and nearly always told; the results are those of the lanes.
inline bool roundedSum(const ExtendedSum &sum, int roundings, double *result)
{
    const Extended bound = static_cast<Extended>(roundings) * 0x1p-64L * sum.magnitudes;
    // The sum itself, not an end of the range: where both ends round to zero, they may
    // differ in its sign.
    *result = static_cast<double>(sum.sum);
    return *result == static_cast<double>(sum.sum + bound) &&
           *result == static_cast<double>(sum.sum - bound);
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

// a + sign * b.
RVX_INLINE BoundedSum combined(const BoundedSum &a, double sign, const BoundedSum &b)
{
    const DoublePair sum = twoSum(a.hi, sign * b.hi);
    const DoublePair pair = twoSum(sum.hi, sum.lo + (a.lo + sign * b.lo));
    const double size = (a.hi < 0.0 ? -a.hi : a.hi) + (b.hi < 0.0 ? -b.hi : b.hi);
    const bool zero = a.bound == 0.0 && b.bound == 0.0;
    return {pair.hi, pair.lo, zero ? 0.0 : a.bound + b.bound + 0x1p-103 * size};
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
