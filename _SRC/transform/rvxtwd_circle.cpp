// Sines and cosines of equal steps around the circle.
//
// By definition each is computed in extended precision and rounded once. A call of
// the C library takes some fifty nanoseconds, so it is made for sixteen angles of
// each hexadecimal digit of the index alone; the other values are products of
// these turns, carried in two doubles. Where those leave in doubt to what the
// definition rounds, which is about one value in fifty, the definition is
// computed. (Rounding in doubt: A. Ziv, Fast evaluation of elementary mathematical
// functions with correctly rounded last bit, 1991. Exact sums: D. E. Knuth, The Art
// of Computer Programming 2, 4.2.2.)

#include "transform/rvxtwd_circle.h"

#include <cmath>
#include <cstdint>
#include <cstring>

#include "frame/rvxlanes.h"

namespace {

constexpr double RVX_TWO_PI = 6.283185307179586;
// How far q quarters of RVX_TWO_PI stay below q right angles.
constexpr double RVX_LATE[] = {0.0, 6.123233995736766e-17, 1.2246467991473532e-16,
                               1.8369701987210297e-16, 2.4492935982947064e-16};

enum { DIGIT_BITS = 4, DIGIT_VALUES = 1 << DIGIT_BITS, MAX_DIGITS = 7 };

// Cosine and sine of an angle: their upper 26 bits, so that products of heads are
// exact, and the rest.
struct Turn {
    double cosineHead, cosineTail, sineHead, sineTail;
};

// The turns by each value of a digit of the index. The lowest digit may have only
// 2, 4 or 8 values, which then stand in front.
struct Digit {
    double cosineHead[DIGIT_VALUES], cosineTail[DIGIT_VALUES];
    double sineHead[DIGIT_VALUES], sineTail[DIGIT_VALUES];
};

// The cosines and sines of successive angles: rounded, and what that left.
struct Arc {
    double cosine[DIGIT_VALUES], cosineRest[DIGIT_VALUES];
    double sine[DIGIT_VALUES], sineRest[DIGIT_VALUES];
};

struct Digits {
    Digit digit[MAX_DIGITS]; // the highest first
    int count;
    int lastValues;
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
    for (int q = 0; q < digits->count; ++q) {
        Digit &digit = digits->digit[q];
        const int lowBits = bits - DIGIT_BITS * q; // of i from here on
        const int digitBits = lowBits < DIGIT_BITS ? lowBits : DIGIT_BITS;
        digits->lastValues = 1 << digitBits;
        const Extended step =
            std::ldexp(static_cast<Extended>(RVX_TWO_PI), lowBits - digitBits - order);
        for (int d = 0; d < DIGIT_VALUES; ++d) {
            const Extended angle = d < digits->lastValues ? d * step : 0;
            const Extended cosine = std::cos(angle), sine = std::sin(angle);
            digit.cosineHead[d] = upperBits(static_cast<double>(cosine));
            digit.cosineTail[d] = static_cast<double>(cosine - digit.cosineHead[d]);
            digit.sineHead[d] = upperBits(static_cast<double>(sine));
            digit.sineTail[d] = static_cast<double>(sine - digit.sineHead[d]);
        }
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
    turnByDigit(turn, digits.digit[q], values, &arc);
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

// Whether what the definition rounds, which differs from value + rest by less than
// 2^-59 of itself, must round to `value`.
bool certain(double value, double rest)
{
    return value + rest * (1 + 0x1p-5) == value;
}

// W for the angle of (x, y), turned on by q quarters.
RVX_INLINE ZCplx quarterTurns(double x, double y, int q)
{
    switch (q % 4) {
    case 0:
        return {x, -y};
    case 1:
        return {-y, -x};
    case 2:
        return {-x, y};
    default:
        return {y, x};
    }
}

// p[j] = W for the angles of the arc behind the multiple q of the quarter, from
// j = `first` on.
RVX_INLINE void fillAfterCorner(const Arc &arc, int q, int first, int values, ZCplx *p)
{
    const double late = RVX_LATE[q];
    for (int j = first; j < values; ++j) {
        const double x = arc.cosine[j] + (arc.cosineRest[j] + late * arc.sine[j]);
        const double y = arc.sine[j] + (arc.sineRest[j] - late * arc.cosine[j]);
        p[j] = quarterTurns(x, y, q);
    }
}

// p[-j] = W for the angles as far before it.
RVX_INLINE void fillBeforeCorner(const Arc &arc, int q, int first, int values, ZCplx *p)
{
    const double late = RVX_LATE[q];
    for (int j = first; j < values; ++j) {
        const double x = arc.cosine[j] + (arc.cosineRest[j] - late * arc.sine[j]);
        const double y = arc.sine[j] + (arc.sineRest[j] + late * arc.cosine[j]);
        p[-j] = quarterTurns(x, -y, q);
    }
}

} // namespace

void rvxFillSineQuarter(double *sine, int order)
{
    const std::int64_t n = std::int64_t{1} << order;
    const std::int64_t quarter = n / 4;
    const Extended step = RVX_TWO_PI / static_cast<double>(n);
    sine[0] = 0.0;
    if (order < 2)
        return;
    sine[quarter] = 1.0;
    if (order < 3)
        return;
    sine[n / 8] = static_cast<double>(std::sin(static_cast<Extended>(n / 8) * step));
    forArcs(order, [=](std::int64_t begin, const Arc &arc, int values) {
        for (int j = 0; j < values; ++j) {
            const std::int64_t i = begin + j;
            const Extended angle = static_cast<Extended>(i) * step;
            sine[i] = certain(arc.sine[j], arc.sineRest[j]) ? arc.sine[j]
                                                            : static_cast<double>(std::sin(angle));
            sine[quarter - i] = certain(arc.cosine[j], arc.cosineRest[j])
                                    ? arc.cosine[j]
                                    : static_cast<double>(std::cos(angle));
        }
    });
}

void rvxFillCircle(ZCplx *tbl, int order)
{
    const std::int64_t n = std::int64_t{1} << order;
    const Extended step = RVX_TWO_PI / static_cast<double>(n);
    // The quarters and their middles; of a short circle, all.
    const std::int64_t stride = n > 8 ? n / 8 : 1;
    for (std::int64_t k = 0; k < n; k += stride) {
        const Extended angle = static_cast<Extended>(k) * step;
        tbl[k] = {static_cast<double>(std::cos(angle)), -static_cast<double>(std::sin(angle))};
    }
    if (order > 3)
        forArcs(order, [=](std::int64_t begin, const Arc &arc, int values) {
            for (int q = 0; q < 4; ++q) {
                const std::int64_t corner = q * (n / 4);
                fillAfterCorner(arc, q, begin == 0, values, tbl + corner + begin);
                fillBeforeCorner(arc, q + 1, begin == 0, values, tbl + corner + n / 4 - begin);
            }
        });
}
