// From polar to cartesian form: sines and cosines of whole blocks, four at a time.
//
// An argument is reduced by multiples of pi/2 to a head of at most pi/4 and a tail
// (W. J. Cody, W. Waite, Software Manual for the Elementary Functions, 1980): pi/2 is cut
// into parts whose products with the multiple are exact, and what subtractions round off
// goes into the tail. Arguments above 2^20 are reduced one by one with as many bits of
// 2/pi as they need (M. Payne, R. Hanek, Radian reduction for trigonometric functions,
// 1983). Errors stay below 0.9 units in the last place for all arguments: next to pi/4,
// where they are largest, the roundings of x^3/6 beside the sine and of x^2/2 beside the
// cosine and all that follows add up to 0.35, the last rounding to 0.5.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "frame/rvxbundle.h"
#include "frame/rvxfloatmode.h"
#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"
#include "vector/rvxcvrtd_polar.h"

namespace {

constexpr double RVX_TWO_OVER_PI = 0x1.45f306dc9c883p-1;

// pi/2 in parts for multiples below 2^10, two of 43 bits and what is left, rounded; and
// for multiples below 2^20, three of 33 bits and the rest.
constexpr double RVX_HALF_PI_NEAR[] = {0x1.921fb54442cp+0, 0x1.18469898cc4p-44,
                                       0x1.1701b839a252p-88};
constexpr double RVX_HALF_PI_FAR[] = {0x1.921fb544p+0, 0x1.0b4611a6p-34, 0x1.3198a2ep-69,
                                      0x1.b839a252049c1p-104};

// Arguments to which these serve.
constexpr double RVX_NEAR = 1600.0;
constexpr double RVX_FAR = 0x1p20;

// Added and taken away again, this leaves the nearest integer; while it is there, the
// integer stands in the lowest bits.
constexpr double RVX_ROUNDER = 0x1.8p52;

// sin x = x - x^3 (s0 + s1 x^2 + ...) and cos x = 1 - x^2/2 + x^4 (c0 + c1 x^2 + ...) for
// |x| up to pi/4: minimax polynomials by Remez' exchange, relative errors 2^-57.9 and
// 2^-63.9.
constexpr double RVX_SINE[] = {0x1.5555555555548p-3,  -0x1.111111110f730p-7,
                               0x1.a01a019be9217p-13, -0x1.71de35552b52bp-19,
                               0x1.ae5e4b83e447dp-26, -0x1.5d8b55947e657p-33};
constexpr double RVX_COSINE[] = {0x1.555555555554bp-5,  -0x1.6c16c16c15015p-10,
                                 0x1.a01a019c8f254p-16, -0x1.27e4f7f19148bp-22,
                                 0x1.1ee9dbcefbddfp-29, -0x1.8fa6848740176p-37};

// The bits of 2/pi behind 64 zeros.
constexpr std::uint64_t RVX_TWO_OVER_PI_BITS[] = {
    0x0000000000000000, 0xA2F9836E4E441529, 0xFC2757D1F534DDC0, 0xDB6295993C439041,
    0xFE5163ABDEBBC561, 0xB7246E3A424DD2E0, 0x06492EEA09D1921C, 0xFE1DEB1CB129A73E,
    0xE88235F52EBB4484, 0xE99C7026B45F7E41, 0x3991D639835339F4, 0x9C845F8BBDF9283B,
    0x1FF897FFDE05980F, 0xEF2F118B5A0A6D1F, 0x6D367ECF27CB09B7, 0x4F463F669E5FEA2D,
    0x7527BAC7EBE5F17B, 0x3D0739F78A5292EA, 0x6BFB5FB11F8D5D08, 0x56033046FC7B6BAB};

__extension__ using Wide = unsigned __int128;

// pi/2 * 2^127
constexpr std::uint64_t RVX_HALF_PI_HIGH = 0xC90FDAA22168C234, RVX_HALF_PI_LOW = 0xC4C6628B80DC1CD1;

// x = quarters * pi/2 + head - negTail, head and tail together at most pi/4 and a little. Only the
// two lowest bits of quarters count. The tail is kept negated: then a zero keeps its sign on its
// way through the sine.
struct Turn {
    double head, negTail;
    std::int64_t quarters;
};

struct Turns {
    Lanes head, negTail;
    RvxBits quarters;
};

double powerOfTwo(int exponent)
{
    const std::uint64_t bits = static_cast<std::uint64_t>(exponent + 1023) << 52;
    double x;
    std::memcpy(&x, &bits, sizeof x);
    return x;
}

// 64 bits of 2/pi from bit `at` on.
std::uint64_t bitsFrom(int at)
{
    const int word = at / 64, shift = at % 64;
    const std::uint64_t high = RVX_TWO_OVER_PI_BITS[word] << shift;
    return shift == 0 ? high : high | RVX_TWO_OVER_PI_BITS[word + 1] >> (64 - shift);
}

// a * b / 2^128 for factors of 128 bits, up to four units too small.
Wide highProduct(Wide a, std::uint64_t bHigh, std::uint64_t bLow)
{
    const auto aHigh = static_cast<std::uint64_t>(a >> 64), aLow = static_cast<std::uint64_t>(a);
    return Wide{aHigh} * bHigh + (Wide{aHigh} * bLow >> 64) + (Wide{aLow} * bHigh >> 64);
}

// For finite x beyond the lanes' reach. x = m 2^e; of 2/pi those 192 bits count that
// make m 2^e 2/pi modulo 4: bits before them give multiples of 4, bits behind them less
// than 2^-137. No double comes nearer to a multiple of pi/2 than 2^-62 or so.
Turn turnOfHuge(double x)
{
    std::uint64_t bits;
    std::memcpy(&bits, &x, sizeof bits);
    const int e = static_cast<int>(bits >> 52 & 0x7ff) - 1075;
    const std::uint64_t m = (bits & 0xfffffffffffff) | 0x10000000000000;
    const int at = e + 62;
    const Wide low = Wide{bitsFrom(at + 128)} * m;
    const Wide middle = Wide{bitsFrom(at + 64)} * m + (low >> 64);
    const Wide high = Wide{bitsFrom(at)} * m + (middle >> 64);
    // Quarters in the two bits on top, then the fraction of one.
    const auto top = static_cast<std::uint64_t>(high);
    const auto next = static_cast<std::uint64_t>(middle);
    const auto last = static_cast<std::uint64_t>(low);
    Wide fraction = Wide{top << 2 | next >> 62} << 64 | (next << 2 | last >> 62);
    std::uint64_t quarters = top >> 62;
    // To the nearest multiple: a fraction of a half or more counts from above.
    bool below = false;
    if (fraction >> 127 != 0) {
        fraction = -fraction;
        ++quarters;
        below = true;
    }
    int zeros = 0;
    for (; fraction >> 127 == 0; ++zeros)
        fraction <<= 1;
    const Wide angle = highProduct(fraction, RVX_HALF_PI_HIGH, RVX_HALF_PI_LOW);
    // angle * 2^(-127 - zeros), in pieces of 53 and 62 bits
    const auto headBits = static_cast<std::int64_t>(angle >> 75);
    const auto tailBits =
        static_cast<std::int64_t>(static_cast<std::uint64_t>(angle >> 13) & 0x3fffffffffffffff);
    const double sign = below != (x < 0.0) ? -1.0 : 1.0;
    const double head = static_cast<double>(headBits) * powerOfTwo(-52 - zeros);
    const double tail = static_cast<double>(tailBits) * powerOfTwo(-114 - zeros);
    const auto whole = static_cast<std::int64_t>(quarters);
    return {sign * head, -(sign * tail), x < 0.0 ? -whole : whole};
}

RVX_INLINE Lanes xorBits(Lanes a, RvxBits b)
{
    return {(RvxVector)((RvxBits)a.v ^ b)};
}

// Four turns in memory, where single ones are mended.
struct TurnBlock {
    double head[4], negTail[4];
    std::int64_t quarters[4];
};

// Infinities and NaNs give NaN.
__attribute__((noinline)) void mendHuge(const double *x, TurnBlock *turns)
{
    for (int i = 0; i < 4; ++i) {
        if (std::fabs(x[i]) <= RVX_FAR)
            continue;
        Turn turn = {x[i] - x[i], 0.0, 0};
        if (std::isfinite(x[i]))
            turn = turnOfHuge(x[i]);
        turns->head[i] = turn.head;
        turns->negTail[i] = turn.negTail;
        turns->quarters[i] = turn.quarters;
    }
}

// Of differences that are rounded the tail has what they round off: the subtrahend's
// last place is never above one of which the minuend is a multiple.
RVX_INLINE Turns nearTurns(Lanes x)
{
    const Lanes rounder = allLanes(RVX_ROUNDER);
    const Lanes raised = x * allLanes(RVX_TWO_OVER_PI) + rounder;
    const Lanes quarters = raised - rounder;
    const Lanes close = x - quarters * allLanes(RVX_HALF_PI_NEAR[0]); // exact
    const Lanes second = quarters * allLanes(RVX_HALF_PI_NEAR[1]);
    const Lanes head = close - second;
    const Lanes rest = (close - head) - second;
    return {head, quarters * allLanes(RVX_HALF_PI_NEAR[2]) - rest, (RvxBits)raised.v};
}

RVX_INLINE Turns farTurns(Lanes x)
{
    const Lanes rounder = allLanes(RVX_ROUNDER);
    const Lanes raised = x * allLanes(RVX_TWO_OVER_PI) + rounder;
    const Lanes quarters = raised - rounder;
    const Lanes close = x - quarters * allLanes(RVX_HALF_PI_FAR[0]); // exact
    const Lanes second = quarters * allLanes(RVX_HALF_PI_FAR[1]);
    const Lanes closer = close - second;
    const Lanes rest2 = (close - closer) - second;
    const Lanes third = quarters * allLanes(RVX_HALF_PI_FAR[2]);
    const Lanes head = closer - third;
    const Lanes rest3 = (closer - head) - third;
    const Lanes negTail = (quarters * allLanes(RVX_HALF_PI_FAR[3]) - rest3) - rest2;
    return {head, negTail, (RvxBits)raised.v};
}

RVX_INLINE Turns anyTurns(Lanes x)
{
    const Lanes magnitude = absLanes(x);
    const LaneMask isNear = isAtMost(magnitude, allLanes(RVX_NEAR));
    const Turns near = nearTurns(x);
    const Turns far = farTurns(x);
    Turns turns = {choose(isNear, near.head, far.head), choose(isNear, near.negTail, far.negTail),
                   far.quarters};
    if (!everyLane(isAtMost(magnitude, allLanes(RVX_FAR)))) {
        double arguments[4];
        TurnBlock block;
        storeLanes(arguments, x);
        storeLanes(block.head, turns.head);
        storeLanes(block.negTail, turns.negTail);
        for (int i = 0; i < 4; ++i)
            block.quarters[i] = turns.quarters[i];
        mendHuge(arguments, &block);
        turns.head = loadLanes(block.head);
        turns.negTail = loadLanes(block.negTail);
        turns.quarters =
            RvxBits{block.quarters[0], block.quarters[1], block.quarters[2], block.quarters[3]};
    }
    return turns;
}

constexpr std::ptrdiff_t chunkLen = 128;

// What the stages leave for each other. They stand apart, so that none is a long chain
// and the processor has several vectors of the same stage in hand.
struct TurnParts {
    alignas(32) double head[chunkLen], negTail[chunkLen], quarters[chunkLen];
    alignas(32) double cosine[chunkLen], sine[chunkLen];
};

// a[0] + a[1] z + ... + a[5] z^5, in three pairs that do not wait for one another.
template <int count>
RVX_INLINE Bundle<count> quintic(const double (&a)[6], const Bundle<count> &z,
                                 const Bundle<count> &z2)
{
    const Bundle<count> high = z * a[5] + a[4];
    const Bundle<count> middle = z * a[3] + a[2];
    const Bundle<count> low = z * a[1] + a[0];
    return low + z2 * (middle + z2 * high);
}

template <int count>
RVX_INLINE void findCircles(TurnParts &parts, std::ptrdiff_t at)
{
    const Bundle<count> head = loadBundle<count>(parts.head + at);
    const Bundle<count> z = head * head, z2 = z * z;
    const Bundle<count> sineSeries = head * z * quintic(RVX_SINE, z, z2);
    const Bundle<count> cosineSeries = z2 * quintic(RVX_COSINE, z, z2);
    const Bundle<count> halfSquare = z * 0.5, rough = 1.0 - halfSquare;
    const Bundle<count> rounded = (1.0 - rough) - halfSquare;
    const Bundle<count> negTail = loadBundle<count>(parts.negTail + at);
    storeBundle(parts.cosine + at, rough + ((rounded + head * negTail) + cosineSeries));
    storeBundle(parts.sine + at, head - (sineSeries + negTail * rough));
}

RVX_INLINE void joinFour(Lanes mag, Lanes cosine, Lanes sine, RvxBits quarters, ZCplx *dst)
{
    // Odd quarters swap sine and cosine; the sine is negative in the third and fourth
    // quadrant, the cosine in the second and third.
    const LaneMask odd = {(quarters << 63) < 0};
    const RvxBits sineSign = (quarters << 62) & INT64_MIN;
    const RvxBits cosineSign = sineSign ^ (quarters << 63);
    const Lanes re = choose(odd, sine, cosine) * xorBits(mag, cosineSign);
    const Lanes im = choose(odd, cosine, sine) * xorBits(mag, sineSign);
    const Lanes even = evenLanes(re, im);
    const Lanes uneven = oddLanes(re, im);
    storeLanes(dst, firstHalves(even, uneven));
    storeLanes(dst + 2, lastHalves(even, uneven));
}

template <Turns (*reduce)(Lanes)>
RVX_INLINE void reduceAll(const double *phase, TurnParts &parts, std::ptrdiff_t n)
{
    for (std::ptrdiff_t i = 0; i < n; i += 4) {
        const Turns t = reduce(loadLanes(phase + i));
        storeLanes(parts.head + i, t.head);
        storeLanes(parts.negTail + i, t.negTail);
        storeLanes(parts.quarters + i, {(RvxVector)t.quarters});
    }
}

// Each element is reduced in the way of its own size, whatever stands beside it; where
// all go one way, that alone is gone.
RVX_INLINE void reduceChunk(const double *phase, TurnParts &parts, std::ptrdiff_t n)
{
    Lanes largest = allLanes(0.0), least = allLanes(RVX_FAR);
    for (std::ptrdiff_t i = 0; i < n; i += 4) {
        const Lanes magnitude = absLanes(loadLanes(phase + i));
        largest = maxWords(largest, magnitude);
        least = minWords(least, magnitude);
    }
    if (everyLane(isAtMost(largest, allLanes(RVX_NEAR))))
        reduceAll<nearTurns>(phase, parts, n);
    else if (everyLane(isAtMost(largest, allLanes(RVX_FAR)) & isBelow(allLanes(RVX_NEAR), least)))
        reduceAll<farTurns>(phase, parts, n);
    else
        reduceAll<anyTurns>(phase, parts, n);
}

// n is a multiple of 4 and at most chunkLen.
RVX_INLINE void joinChunk(const double *mag, const double *phase, ZCplx *dst, std::ptrdiff_t n)
{
    TurnParts parts;
    reduceChunk(phase, parts, n);
    std::ptrdiff_t at = 0;
    for (; n - at >= 8; at += 8)
        findCircles<2>(parts, at);
    if (at < n)
        findCircles<1>(parts, at);
    for (std::ptrdiff_t i = 0; i < n; i += 4)
        joinFour(loadLanes(mag + i), loadLanes(parts.cosine + i), loadLanes(parts.sine + i),
                 (RvxBits)loadLanes(parts.quarters + i).v, dst + i);
}

RVX_KERNEL void joinPolarForms(const double *mag, const double *phase, ZCplx *dst, std::ptrdiff_t n)
{
    std::ptrdiff_t i = 0;
    while (n - i >= 4) {
        const std::ptrdiff_t len = std::min(chunkLen, (n - i) / 4 * 4);
        joinChunk(mag + i, phase + i, dst + i, len);
        i += len;
    }
    if (i < n) {
        double mags[4] = {}, phases[4] = {};
        ZCplx joined[4];
        for (std::ptrdiff_t k = 0; k < n - i; ++k) {
            mags[k] = mag[i + k];
            phases[k] = phase[i + k];
        }
        joinChunk(mags, phases, joined, 4);
        for (std::ptrdiff_t k = 0; k < n - i; ++k)
            dst[i + k] = joined[k];
    }
}

} // namespace

void rvxJoinPolar(const double *mag, const double *phase, ZCplx *dst, std::ptrdiff_t n)
{
    const FloatMode before = enterPlainMode();
    joinPolarForms(mag, phase, dst, n);
    leavePlainMode(before);
}
