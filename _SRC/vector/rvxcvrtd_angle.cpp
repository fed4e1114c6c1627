// From cartesian to polar form: arctangents of quotients of whole blocks, four at a
// time.
//
// With a and b the larger and the smaller magnitude of the two parts, b/a lies between 0
// and 1, and counted from the nearest multiple of pi/4 the angle is atan(b/a) or
// atan((b - a)/(b + a)), with a quotient t of at most tan(pi/8). Of t the upper 26 bits
// are kept and the remainder, exact by T. J. Dekker's products (A floating-point technique
// for extending the available precision, 1971), gives the rest; what is left of atan t is
// a rational function, whose division runs beside the sums. Errors stay below 0.85 units in
// the last place for all arguments.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "frame/rvxbundle.h"
#include "frame/rvxcplx.h"
#include "frame/rvxfloatmode.h"
#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"
#include "vector/rvxcvrtd_polar.h"

namespace {

// Multiples of pi: that of pi/4 has 50 bits behind the point, so that three times as much
// is exact, and so are sums. What all of them leave, over themselves.
constexpr double RVX_PI = 0x1.921fb54442d18p+1;
constexpr double RVX_HALF_PI = 0x1.921fb54442d18p+0;
constexpr double RVX_QUARTER_PI = 0x1.921fb54442d18p-1;
constexpr double RVX_PI_RELATIVE_REST = 0x1.1a62633145c07p-55 / RVX_QUARTER_PI;

// tan(pi/8), the quotient from which on angles are counted from the diagonal.
constexpr double RVX_FROM_DIAGONAL = 0x1.a827999fcef32p-2;

// atan t = t + t^3 N(t^2) / D(t^2) for |t| up to tan(pi/8), D from z^4 down with a factor
// of 1: minimax by Remez' exchange, relative error 2^-56.6 with these digits.
constexpr double RVX_NUMERATOR[] = {-0x1.da9508291fd57p+3, -0x1.5d8fcbf7827d9p+4,
                                    -0x1.1ad5d97e639a5p+3, -0x1.ae950a8770b4bp-1};
constexpr double RVX_DENOMINATOR[] = {0x1.63efc61ed7e25p+5, 0x1.70f3c79c7b53cp+6,
                                      0x1.f65330f26a203p+5, 0x1.efeac2f743ab3p+3};

// Between these magnitudes nothing on the way overflows or loses bits to underflow.
constexpr double RVX_SMALLEST_IN_LANES = 0x1p-500;
constexpr double RVX_LARGEST_IN_LANES = 0x1p500;

RVX_INLINE Lanes upperBits(Lanes x)
{
    return maskBits(x, ~std::int64_t{0x7ffffff});
}

RVX_INLINE Lanes xorSign(Lanes a, RvxBits sign)
{
    return {(RvxVector)((RvxBits)a.v ^ sign)};
}

// Angles are found in three stages. Each is a long chain, most of all by its divisions;
// blocks go through one stage after the other, so that the processor has several vectors
// of the same stage in hand.

// The quotient that is left, and the multiple of pi/4 that it is counted from. The two
// parts of the divisor make its exact value, those of the dividend likewise.
struct Fraction {
    Lanes dividend, dividendTail, divisorHead, divisorTail, reciprocal, base;
};

// Both magnitudes are between RVX_SMALLEST_IN_LANES and RVX_LARGEST_IN_LANES, or the
// smaller is zero; or re is NaN, and the result is. (Of the two magnitudes `a` is NaN then.)
RVX_INLINE Fraction fractionOf(Lanes re, Lanes im)
{
    const Lanes across = absLanes(re);
    const Lanes up = absLanes(im);
    const LaneMask steep = isBelow(across, up);
    const Lanes a = maxLanes(across, up);
    const Lanes b = minLanes(up, across);
    const LaneMask diagonal = isBelow(a * allLanes(RVX_FROM_DIAGONAL), b);
    const Lanes fromA = onlyWhere(diagonal, a);
    const Lanes fromB = onlyWhere(diagonal, b);

    const Lanes divisor = a + fromB;
    const Lanes divisorHead = upperBits(divisor);
    const Lanes divisorTail = (a - divisorHead) + fromB; // exact, also where the sum is not
    // Beyond the diagonal and beyond the imaginary axis angles run backwards.
    const RvxBits backwards = (RvxBits)re.v & INT64_MIN;
    const RvxBits side = (RvxBits)im.v & INT64_MIN;
    const RvxBits sign = backwards ^ (steep.b & INT64_MIN) ^ side;
    const Lanes difference = b - fromA;
    const Lanes differenceTail = b - (difference + fromA);

    // pi/2 off the axes, less pi/4 or nothing or, on the far side, plus as much.
    const Lanes fromUpright =
        choose(diagonal, allLanes(RVX_QUARTER_PI), onlyWhere(~steep, allLanes(RVX_HALF_PI)));
    return {xorSign(difference, sign),
            xorSign(differenceTail, sign),
            divisorHead,
            divisorTail,
            allLanes(1.0) / divisor,
            xorSign(allLanes(RVX_HALF_PI) - xorSign(fromUpright, backwards), side)};
}

// Of the angle all but what atan t differs from t: sum + rest.
struct Turned {
    Lanes t, sum, rest;
};

RVX_INLINE Turned turnedBy(Fraction f)
{
    const Lanes t = f.dividend * f.reciprocal;
    const Lanes head = upperBits(t);
    const Lanes remainder = (f.dividend - head * f.divisorHead) - head * f.divisorTail;
    const Lanes tail = (remainder + f.dividendTail) * f.reciprocal;
    const Lanes sum = f.base + head;
    const Lanes sumRest = (f.base - sum) + head;
    const Lanes baseRest = f.base * allLanes(RVX_PI_RELATIVE_REST);
    return {head + tail, sum, sumRest + (baseRest + tail)};
}

// atan t - t
template <int count>
RVX_INLINE Bundle<count> bendOf(const Bundle<count> &t)
{
    const Bundle<count> z = t * t;
    const double(&n)[4] = RVX_NUMERATOR, (&d)[4] = RVX_DENOMINATOR;
    Bundle<count> numerator = z * n[3] + n[2], denominator = z + d[3];
    numerator = numerator * z + n[1];
    denominator = denominator * z + d[2];
    numerator = numerator * z + n[0];
    denominator = denominator * z + d[1];
    return t * z * numerator / (denominator * z + d[0]);
}

// Four points in memory, where single ones are mended.
struct PointBlock {
    double re[4], im[4];
};

double timesPowerOfTwo(double x, int exponent)
{
    const std::uint64_t bits = static_cast<std::uint64_t>(exponent + 1023) << 52;
    double power;
    std::memcpy(&power, &bits, sizeof power);
    return x * power;
}

// The exponent of a finite magnitude that is not zero.
int exponentOf(double magnitude)
{
    const bool isSubnormal = magnitude < 0x1p-1022;
    const double normal = isSubnormal ? magnitude * 0x1p54 : magnitude;
    std::uint64_t bits;
    std::memcpy(&bits, &normal, sizeof bits);
    return static_cast<int>(bits >> 52) - (isSubnormal ? 1077 : 1023);
}

// Of a point off the real axis that is out of range for lanes, one in range on the same
// ray. True where there is none to the last bit: next to the positive real axis, where
// the angle is the quotient.
bool mendPoint(double *re, double *im)
{
    double across = std::fabs(*re), up = std::fabs(*im);
    const double infinity = HUGE_VAL;
    if (across == infinity || up == infinity) {
        across = across == infinity ? 1.0 : 0.0;
        up = up == infinity ? 1.0 : 0.0;
    } else {
        // In two steps: the powers themselves must not leave the range.
        const int exponent = -exponentOf(std::max(across, up));
        const int first = exponent / 2;
        across = timesPowerOfTwo(timesPowerOfTwo(across, first), exponent - first);
        up = timesPowerOfTwo(timesPowerOfTwo(up, first), exponent - first);
    }
    if (across < RVX_SMALLEST_IN_LANES)
        across = 0.0;
    if (up < RVX_SMALLEST_IN_LANES) {
        if (*re > 0.0)
            return true;
        up = 0.0;
    }
    *re = std::copysign(across, *re);
    *im = std::copysign(up, *im);
    return false;
}

bool isInRange(double magnitude)
{
    return RVX_SMALLEST_IN_LANES <= magnitude && magnitude < RVX_LARGEST_IN_LANES;
}

// Puts points in range in place of all that are not, and quotients that stand for
// angles into `quotients`, NaN where there is none. No im is zero or NaN.
__attribute__((noinline)) void mendPoints(PointBlock *points, double *quotients)
{
    for (int i = 0; i < 4; ++i) {
        const double re = points->re[i], im = points->im[i];
        quotients[i] = NAN;
        // What the lanes can do is theirs: an element's way must not depend on others.
        if (std::isnan(re) || (isInRange(std::fabs(re)) && isInRange(std::fabs(im))))
            continue;
        if (mendPoint(&points->re[i], &points->im[i])) {
            quotients[i] = im / re;
            points->re[i] = points->im[i] = 1.0;
        }
    }
}

RVX_INLINE LaneMask isOffAxis(Lanes im)
{
    return isBelow(allLanes(0.0), absLanes(im));
}

// The angle of a point on the real axis: pi where re is negative, else 0.
enum class OnAxis { nanIsPositive, nanIsNegative };

RVX_INLINE Lanes axisAngle(Lanes re, OnAxis rule)
{
    const Lanes zero = allLanes(0.0);
    const LaneMask backwards =
        rule == OnAxis::nanIsNegative ? ~isAtMost(zero, re) : isBelow(re, zero);
    return onlyWhere(backwards, allLanes(RVX_PI));
}

RVX_INLINE LaneMask areInRange(Lanes magnitudes)
{
    return isAtMost(allLanes(RVX_SMALLEST_IN_LANES), magnitudes) &
           isBelow(magnitudes, allLanes(RVX_LARGEST_IN_LANES));
}

RVX_INLINE Lanes anglesOfAny(Lanes re, Lanes im, OnAxis rule)
{
    const LaneMask offAxis = isOffAxis(im);
    Lanes x = choose(offAxis, re, allLanes(1.0));
    Lanes y = choose(offAxis, im, allLanes(1.0));
    Lanes quotient = allLanes(NAN);
    const LaneMask fine = areInRange(absLanes(x)) | isEqual(x, allLanes(0.0));
    if (!everyLane(fine & areInRange(absLanes(y)))) {
        PointBlock points;
        double quotients[4];
        storeLanes(points.re, x);
        storeLanes(points.im, y);
        mendPoints(&points, quotients);
        x = loadLanes(points.re);
        y = loadLanes(points.im);
        quotient = loadLanes(quotients);
    }
    const Turned turned = turnedBy(fractionOf(x, y));
    const Lanes angle = withSignOf(turned.sum + (bendOf<1>({{turned.t}}).v[0] + turned.rest), y);
    return choose(offAxis, choose(isEqual(quotient, quotient), quotient, angle),
                  axisAngle(re, rule));
}

RVX_INLINE Lanes magnitudesOf(Lanes re, Lanes im)
{
    return sqrtLanes(im * im + re * re);
}

// On the real axis |re|, with 0.0 for a NaN.
RVX_INLINE Lanes magnitudesOfAny(Lanes re, Lanes im)
{
    const Lanes onAxis = onlyWhere(isEqual(re, re), absLanes(re));
    return choose(isOffAxis(im), magnitudesOf(re, im), onAxis);
}

constexpr std::ptrdiff_t chunkLen = 64;

// What the stages leave for each other, in the order of a Quad's lanes.
struct AngleParts {
    alignas(32) double dividend[chunkLen], dividendTail[chunkLen];
    alignas(32) double divisorHead[chunkLen], divisorTail[chunkLen], reciprocal[chunkLen];
    alignas(32) double base[chunkLen], magnitude[chunkLen];
    alignas(32) double t[chunkLen], sum[chunkLen], rest[chunkLen];
};

// Of magnitudes the largest and, of the smaller part of each point, the least. By their
// high words, which are compared beside all else; a NaN counts as large.
struct Reach {
    Lanes greatest, least;
};

RVX_INLINE bool isOrdinary(Reach reach)
{
    constexpr std::uint32_t smallest = 0x20b00000, largest = 0x5f300000;
    const auto fine =
        (RvxBits)(((RvxWords)reach.greatest.v < largest) & ((RvxWords)reach.least.v >= smallest));
    return everyLane({fine >> 63});
}

enum class WithMagnitudes { no, yes };

// n is a multiple of 4 and at most chunkLen. False, with `parts` of no use, if not all
// points are in range.
template <WithMagnitudes magnitudes>
RVX_INLINE bool beginAngles(const ZCplx *src, AngleParts &parts, std::ptrdiff_t n)
{
    Reach reach = {allLanes(0.0), allLanes(1.0)};
    for (std::ptrdiff_t i = 0; i < n; i += 4) {
        const Quad z = quadOf(loadLanes(src + i), loadLanes(src + i + 2));
        const Lanes across = absLanes(z.re), up = absLanes(z.im);
        reach.greatest = maxWords(reach.greatest, maxWords(across, up));
        reach.least = minWords(reach.least, minLanes(up, across));
        const Fraction f = fractionOf(z.re, z.im);
        storeLanes(parts.dividend + i, f.dividend);
        storeLanes(parts.dividendTail + i, f.dividendTail);
        storeLanes(parts.divisorHead + i, f.divisorHead);
        storeLanes(parts.divisorTail + i, f.divisorTail);
        storeLanes(parts.reciprocal + i, f.reciprocal);
        storeLanes(parts.base + i, f.base);
        if (magnitudes == WithMagnitudes::yes)
            storeLanes(parts.magnitude + i, magnitudesOf(z.re, z.im));
    }
    return isOrdinary(reach);
}

RVX_INLINE void turnAngles(AngleParts &parts, std::ptrdiff_t n)
{
    for (std::ptrdiff_t i = 0; i < n; i += 4) {
        const Turned t =
            turnedBy({loadLanes(parts.dividend + i), loadLanes(parts.dividendTail + i),
                      loadLanes(parts.divisorHead + i), loadLanes(parts.divisorTail + i),
                      loadLanes(parts.reciprocal + i), loadLanes(parts.base + i)});
        storeLanes(parts.t + i, t.t);
        storeLanes(parts.sum + i, t.sum);
        storeLanes(parts.rest + i, t.rest);
    }
}

template <int count>
RVX_INLINE void finishSome(const AngleParts &parts, double *phase, std::ptrdiff_t at)
{
    const Bundle<count> bend = bendOf(loadBundle<count>(parts.t + at));
    const Bundle<count> angle =
        loadBundle<count>(parts.sum + at) + (bend + loadBundle<count>(parts.rest + at));
    RVX_UNROLLED for (int k = 0; k < count; ++k)
        storeLanes(phase + at + 4 * k, swapMiddle(angle.v[k]));
}

RVX_INLINE void finishAngles(const AngleParts &parts, double *phase, std::ptrdiff_t n)
{
    std::ptrdiff_t i = 0;
    for (; n - i >= 16; i += 16)
        finishSome<4>(parts, phase, i);
    for (; i < n; i += 4)
        finishSome<1>(parts, phase, i);
}

RVX_INLINE void findAnyFour(const ZCplx *src, double *phase)
{
    const Quad z = loadInOrder(src);
    storeLanes(phase, anglesOfAny(z.re, z.im, OnAxis::nanIsNegative));
}

RVX_INLINE void splitAnyFour(const ZCplx *src, double *mag, double *phase)
{
    const Quad z = loadInOrder(src);
    storeLanes(mag, magnitudesOfAny(z.re, z.im));
    storeLanes(phase, anglesOfAny(z.re, z.im, OnAxis::nanIsPositive));
}

// The last elements, 1 to 3 of four; the others are ordinary.
RVX_INLINE void copySome(const ZCplx *src, ZCplx *four, std::ptrdiff_t count)
{
    for (std::ptrdiff_t k = 0; k < 4; ++k)
        four[k] = k < count ? src[k] : ZCplx{1.0, 1.0};
}

RVX_INLINE void copySome(const double *four, double *dst, std::ptrdiff_t count)
{
    for (std::ptrdiff_t k = 0; k < count; ++k)
        dst[k] = four[k];
}

RVX_KERNEL void findPhaseBlock(const ZCplx *src, double *phase, std::ptrdiff_t n)
{
    std::ptrdiff_t i = 0;
    while (n - i >= 4) {
        AngleParts parts;
        const std::ptrdiff_t len = std::min(chunkLen, (n - i) / 4 * 4);
        if (__builtin_expect(beginAngles<WithMagnitudes::no>(src + i, parts, len), 1)) {
            turnAngles(parts, len);
            finishAngles(parts, phase + i, len);
        } else {
            for (std::ptrdiff_t k = i; k < i + len; k += 4)
                findAnyFour(src + k, phase + k);
        }
        i += len;
    }
    if (i < n) {
        ZCplx points[4];
        double phases[4];
        copySome(src + i, points, n - i);
        findAnyFour(points, phases);
        copySome(phases, phase + i, n - i);
    }
}

RVX_KERNEL void splitPolarBlock(const ZCplx *src, double *mag, double *phase, std::ptrdiff_t n)
{
    std::ptrdiff_t i = 0;
    while (n - i >= 4) {
        AngleParts parts;
        const std::ptrdiff_t len = std::min(chunkLen, (n - i) / 4 * 4);
        if (__builtin_expect(beginAngles<WithMagnitudes::yes>(src + i, parts, len), 1)) {
            turnAngles(parts, len);
            for (std::ptrdiff_t k = 0; k < len; k += 4)
                storeLanes(mag + i + k, swapMiddle(loadLanes(parts.magnitude + k)));
            finishAngles(parts, phase + i, len);
        } else {
            for (std::ptrdiff_t k = i; k < i + len; k += 4)
                splitAnyFour(src + k, mag + k, phase + k);
        }
        i += len;
    }
    if (i < n) {
        ZCplx points[4];
        double mags[4], phases[4];
        copySome(src + i, points, n - i);
        splitAnyFour(points, mags, phases);
        copySome(mags, mag + i, n - i);
        copySome(phases, phase + i, n - i);
    }
}

} // namespace

void rvxFindPhases(const ZCplx *src, double *phase, std::ptrdiff_t n)
{
    const FloatMode before = enterPlainMode();
    findPhaseBlock(src, phase, n);
    leavePlainMode(before);
}

void rvxSplitPolar(const ZCplx *src, double *mag, double *phase, std::ptrdiff_t n)
{
    const FloatMode before = enterPlainMode();
    splitPolarBlock(src, mag, phase, n);
    leavePlainMode(before);
}
