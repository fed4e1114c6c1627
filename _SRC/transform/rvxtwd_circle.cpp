// Sines and cosines of equal steps around the circle.
//
// By definition each is computed in extended precision and rounded once. A call of
// the C library takes some fifty nanoseconds; so the values are products of the turns
// by each hexadecimal digit of the index, which are constants, carried in two
// doubles. Where those leave in doubt to what the definition rounds, which is about
// one value in fifty, the definition is computed. (Rounding in doubt: A. Ziv, Fast
// evaluation of elementary mathematical functions with correctly rounded last bit,
// 1991. Exact sums: D. E. Knuth, The Art of Computer Programming 2, 4.2.2.)

#include "transform/rvxtwd_circle.h"

#include <cmath>
#include <cstdint>
#include <cstring>

#include "frame/rvxlanes.h"
#include "transform/rvxtwd_circle_turns.h"

namespace {

constexpr double RVX_TWO_PI = 6.283185307179586;
// How far q quarters of RVX_TWO_PI stay below q right angles.
constexpr double RVX_LATE[] = {0.0, 6.123233995736766e-17, 1.2246467991473532e-16,
                               1.8369701987210297e-16, 2.4492935982947064e-16};

// Cosine and sine of an angle: their upper 26 bits, so that products of heads are
// exact, and the rest.
struct Turn {
    double cosineHead, cosineTail, sineHead, sineTail;
};

// The cosines and sines of successive angles: rounded, and what that left.
struct Arc {
    double cosine[DIGIT_VALUES], cosineRest[DIGIT_VALUES];
    double sine[DIGIT_VALUES], sineRest[DIGIT_VALUES];
};

// The digits of an index, the highest first. The lowest may have only 2, 4 or 8 values.
struct Digits {
    int count;
    int lastValues;
    Digit last;
};

double upperBits(double x)
{
    std::uint64_t bits;
    std::memcpy(&bits, &x, sizeof bits);
    bits &= ~std::uint64_t{0x7FFFFFF};
    std::memcpy(&x, &bits, sizeof bits);
    return x;
}

// The digits of i for 0 <= i < N/8.
void makeDigits(int order, Digits *digits)
{
    const int bits = order - 3;
    digits->count = (bits + DIGIT_BITS - 1) / DIGIT_BITS;
    if (digits->count <= 0)
        return;
    const int lastBits = bits - DIGIT_BITS * (digits->count - 1);
    const Digit &all = RVX_DIGIT_TURNS[digits->count - 1];
    digits->lastValues = 1 << lastBits;
    digits->last = all;
    for (int d = 0; d < digits->lastValues; ++d) {
        const int from = d << (DIGIT_BITS - lastBits);
        digits->last.cosineHead[d] = all.cosineHead[from];
        digits->last.cosineTail[d] = all.cosineTail[from];
        digits->last.sineHead[d] = all.sineHead[from];
        digits->last.sineTail[d] = all.sineTail[from];
    }
}

// value + rest = a + b exactly but for what was rounded in rest, to which `small`
// is added first.
RVX_INLINE void addSmall(Lanes a, Lanes b, Lanes small, Lanes *value, Lanes *rest)
{
    const Lanes sum = a + b;
    const Lanes bPart = sum - a;
    const Lanes low = ((a - (sum - bPart)) + (b - bPart)) + small;
    *value = sum + low;
    *rest = low - (*value - sum);
}

// The turn, followed by each value of the digit.
RVX_KERNEL void turnByDigit(const Turn &turn, const Digit &digit, int values, Arc *arc)
{
    const Lanes c = allLanes(turn.cosineHead), cTail = allLanes(turn.cosineTail);
    const Lanes s = allLanes(turn.sineHead), sTail = allLanes(turn.sineTail);
    const Lanes minusS = allLanes(-turn.sineHead), minusSTail = allLanes(-turn.sineTail);
    for (int d = 0; d < values; d += 4) {
        const Lanes dc = loadLanes(&digit.cosineHead[d]), dcTail = loadLanes(&digit.cosineTail[d]);
        const Lanes ds = loadLanes(&digit.sineHead[d]), dsTail = loadLanes(&digit.sineTail[d]);
        Lanes value, rest;
        addSmall(c * dc, minusS * ds,
                 (c * dcTail + minusS * dsTail) +
                     (cTail * (dc + dcTail) + minusSTail * (ds + dsTail)),
                 &value, &rest);
        storeLanes(&arc->cosine[d], value);
        storeLanes(&arc->cosineRest[d], rest);
        addSmall(s * dc, c * ds,
                 (s * dcTail + c * dsTail) + (sTail * (dc + dcTail) + cTail * (ds + dsTail)),
                 &value, &rest);
        storeLanes(&arc->sine[d], value);
        storeLanes(&arc->sineRest[d], rest);
    }
}

Turn turnOf(const Arc &arc, int d)
{
    const double c = upperBits(arc.cosine[d]), s = upperBits(arc.sine[d]);
    return {c, (arc.cosine[d] - c) + arc.cosineRest[d], s, (arc.sine[d] - s) + arc.sineRest[d]};
}

// Calls take(i, arc, values) for all i in 0 ... N/8 - 1, an arc at a time.
template <typename Take>
void walkArcs(const Digits &digits, int q, const Turn &turn, std::int64_t i, const Take &take)
{
    const bool last = q == digits.count - 1;
    const int values = last ? digits.lastValues : DIGIT_VALUES;
    Arc arc;
    turnByDigit(turn, last ? digits.last : RVX_DIGIT_TURNS[q], values, &arc);
    if (last) {
        take(i * values, arc, values);
        return;
    }
    for (int d = 0; d < DIGIT_VALUES; ++d)
        walkArcs(digits, q + 1, turnOf(arc, d), i * DIGIT_VALUES + d, take);
}

template <typename Take>
void forArcs(int order, const Take &take)
{
    Digits digits;
    makeDigits(order, &digits);
    if (digits.count > 0)
        walkArcs(digits, 0, Turn{1, 0, 0, 0}, 0, take);
}

// What the definition rounds differs from value + rest by less than 2^-59 of itself:
// where this sum is still `value`, so is the rounded definition.
template <typename Real>
RVX_INLINE Real edgeOf(Real value, Real rest, Real margin)
{
    return value + rest * margin;
}

constexpr double RVX_MARGIN = 1 + 0x1p-5;

bool isCertain(double value, double rest)
{
    return edgeOf(value, rest, RVX_MARGIN) == value;
}

RVX_INLINE bool allCertain(Lanes value, Lanes rest)
{
    return !anyLane({~isEqual(edgeOf(value, rest, allLanes(RVX_MARGIN)), value).b});
}

// up[j] = the sines of an arc, down[-j] = the cosines. Gives the groups of four that
// are in doubt, a bit for each, cosines from bit 4 on. Arcs of two fill half a group.
RVX_KERNEL unsigned putArc(const Arc &arc, int values, double *up, double *down)
{
    unsigned doubts = 0;
    for (int j = 0; j < values; j += 4) {
        const Lanes sine = loadLanes(&arc.sine[j]), cosine = loadLanes(&arc.cosine[j]);
        if (values < 4) {
            for (int i = 0; i < values; ++i) {
                up[i] = arc.sine[i];
                down[-i] = arc.cosine[i];
            }
        } else {
            storeLanes(up + j, sine);
            storeLanes(down - j - 3, reversed(cosine));
        }
        if (!allCertain(sine, loadLanes(&arc.sineRest[j])))
            doubts |= 1u << (j / 4);
        if (!allCertain(cosine, loadLanes(&arc.cosineRest[j])))
            doubts |= 16u << (j / 4);
    }
    return doubts;
}

RVX_INLINE Lanes negated(Lanes a)
{
    return {-a.v};
}

// W for the angles of (x, y), turned on by q quarters.
struct Roots {
    Lanes re, im;
};

RVX_INLINE Roots quarterTurns(Lanes x, Lanes y, int q)
{
    switch (q % 4) {
    case 0:
        return {x, negated(y)};
    case 1:
        return {negated(y), negated(x)};
    case 2:
        return {negated(x), y};
    default:
        return {y, x};
    }
}

// W for four angles of the arc behind the multiple q of the quarter.
RVX_INLINE Roots rootsAfterCorner(const Arc &arc, int q, int j)
{
    const Lanes c = loadLanes(&arc.cosine[j]), s = loadLanes(&arc.sine[j]);
    const Lanes late = allLanes(RVX_LATE[q]);
    return quarterTurns(c + (loadLanes(&arc.cosineRest[j]) + late * s),
                        s + (loadLanes(&arc.sineRest[j]) - late * c), q);
}

// And as far before it, the farthest first.
RVX_INLINE Roots rootsBeforeCorner(const Arc &arc, int q, int j)
{
    const Lanes c = loadLanes(&arc.cosine[j]), s = loadLanes(&arc.sine[j]);
    const Lanes late = allLanes(RVX_LATE[q]);
    const Roots roots = quarterTurns(c + (loadLanes(&arc.cosineRest[j]) - late * s),
                                     negated(s + (loadLanes(&arc.sineRest[j]) + late * c)), q);
    return {reversed(roots.re), reversed(roots.im)};
}

RVX_INLINE void storeRoots(ZCplx *p, const Roots &roots)
{
    storeLanes(p, interleaveLow(roots.re, roots.im));
    storeLanes(p + 2, interleaveHigh(roots.re, roots.im));
}

// Four values of the arc that begins at index `begin`, in quarter q from both ends. What
// belongs to the corners, or stands behind the arc, is not written.
RVX_INLINE void putInQuarter(const Arc &arc, int j, std::int64_t begin, int values, int q, ZCplx *p,
                             std::int64_t quarter)
{
    const Roots after = rootsAfterCorner(arc, q, j);
    const Roots before = rootsBeforeCorner(arc, q + 1, j);
    ZCplx *up = p + (begin + j);
    ZCplx *down = p + (quarter - begin - j - 3);
    const int from = begin + j == 0 ? 1 : 0, to = values - j;
    if (from == 0 && to >= 4) {
        storeRoots(up, after);
        storeRoots(down, before);
        return;
    }
    if (from == 0 && to == 2) {
        storeLanes(up, interleaveLow(after.re, after.im));
        storeLanes(down + 2, interleaveHigh(before.re, before.im));
        return;
    }
    ZCplx ups[4], downs[4];
    storeRoots(ups, after);
    storeRoots(downs, before);
    for (int i = from; i < to && i < 4; ++i) {
        up[i] = ups[i];
        down[3 - i] = downs[3 - i];
    }
}

RVX_KERNEL void putRoots(const Arc &arc, std::int64_t begin, int values, ZCplx *tbl,
                         std::int64_t quarter)
{
    for (int j = 0; j < values; j += 4)
        for (int q = 0; q < 4; ++q)
            putInQuarter(arc, j, begin, values, q, tbl + q * quarter, quarter);
}

RVX_KERNEL void putQuarterRoots(const Arc &arc, std::int64_t begin, int values, int q, ZCplx *p,
                                std::int64_t quarter)
{
    for (int j = 0; j < values; j += 4)
        putInQuarter(arc, j, begin, values, q, p, quarter);
}

// An arc of the quarter wave, which begins at index `begin`.
void putSines(const Arc &arc, std::int64_t begin, int values, double *sine, std::int64_t n)
{
    const unsigned doubts = putArc(arc, values, sine + begin, sine + n / 4 - begin);
    if (doubts == 0)
        return;
    const Extended step = RVX_TWO_PI / static_cast<double>(n);
    for (int j = 0; j < values; ++j) {
        const std::int64_t i = begin + j;
        const Extended angle = static_cast<Extended>(i) * step;
        if ((doubts >> (j / 4) & 1) != 0 && !isCertain(arc.sine[j], arc.sineRest[j]))
            sine[i] = static_cast<double>(std::sin(angle));
        if ((doubts >> (j / 4) & 16) != 0 && !isCertain(arc.cosine[j], arc.cosineRest[j]))
            sine[n / 4 - i] = static_cast<double>(std::cos(angle));
    }
}

} // namespace

void rvxFillCircle(ZCplx *tbl, int order)
{
    const std::int64_t n = std::int64_t{1} << order;
    // The quarters and their middles; of a short circle, all.
    for (std::int64_t k = 0; k < 8; k += n < 8 ? 8 / n : 1)
        tbl[k * n / 8] = RVX_EIGHTH_TURNS[k];
    if (order > 3)
        forArcs(order, [=](std::int64_t begin, const Arc &arc, int values) {
            putRoots(arc, begin, values, tbl, n / 4);
        });
}

void rvxFillCircleParts(const CircleParts &parts, int order)
{
    const std::int64_t n = std::int64_t{1} << order;
    if (parts.sine != nullptr) {
        parts.sine[0] = 0.0;
        if (order >= 2)
            parts.sine[n / 4] = 1.0;
        if (order >= 3)
            parts.sine[n / 8] = -RVX_EIGHTH_TURNS[1].im;
    }
    if (parts.firstQuarter != nullptr)
        parts.firstQuarter[n / 8] = RVX_EIGHTH_TURNS[1];
    if (parts.lastQuarter != nullptr)
        parts.lastQuarter[n / 8] = RVX_EIGHTH_TURNS[7];
    forArcs(order, [=](std::int64_t begin, const Arc &arc, int values) {
        if (parts.sine != nullptr)
            putSines(arc, begin, values, parts.sine, n);
        if (parts.firstQuarter != nullptr)
            putQuarterRoots(arc, begin, values, 0, parts.firstQuarter, n / 4);
        if (parts.lastQuarter != nullptr)
            putQuarterRoots(arc, begin, values, 3, parts.lastQuarter, n / 4);
    });
}

void rvxFillSineQuarter(double *sine, int order)
{
    rvxFillCircleParts({sine, nullptr, nullptr}, order);
}
