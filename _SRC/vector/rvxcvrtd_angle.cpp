// From cartesian to polar form: arctangents of quotients of whole blocks, four at a
// time.
//
// With a and b the larger and the smaller magnitude of the two parts, b/a lies between 0
// and 1, and atan(b/a) = atan(c) + atan((b - c a)/(a + c b)) with c of 0, 1/2 or 1 leaves
// a quotient t of at most 1/4. One division serves: of t its upper 26 bits are kept and
// the remainder, exact by T. J. Dekker's products (A floating-point technique for
// extending the available precision, 1971), gives the rest. Errors stay below 0.7 units
// in the last place for all arguments.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "frame/rvxcplx.h"
#include "frame/rvxfloatmode.h"
#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"
#include "vector/rvxcvrtd_polar.h"

namespace {

// atan(c) and multiples of pi, rounded to 50 bits behind the point, so that their sums
// are exact, and what that leaves.
constexpr double RVX_PI = 0x1.921fb54442d18p+1;
constexpr double RVX_HALF_PI = 0x1.921fb54442d18p+0;
constexpr double RVX_QUARTER_PI = 0x1.921fb54442d18p-1;
constexpr double RVX_QUARTER_PI_REST = 0x1.1a62633145c07p-55;
constexpr double RVX_ATAN_HALF = 0x1.dac670561bb50p-2;
constexpr double RVX_ATAN_HALF_REST = -0x1.2ea406ee84d0fp-55;
// What multiples of pi leave, over themselves.
constexpr double RVX_PI_RELATIVE_REST = RVX_QUARTER_PI_REST / RVX_QUARTER_PI;

// Quotients from which on c is 1/2, and 1. The first must not be below 1/4, or b - a/2
// would round; the second lies half-way between the angles.
constexpr double RVX_FROM_HALF = 0.25;
constexpr double RVX_FROM_ONE = 0.7207592200561265;

// atan t = t + t^3 (a0 + a1 t^2 + ...) for |t| up to 1/4: minimax polynomial by Remez'
// exchange, relative error 2^-57.5.
constexpr double RVX_ARCTANGENT[] = {
    -0x1.55555555554c6p-2, 0x1.9999999975259p-3, -0x1.2492490b318f9p-3, 0x1.c71c60a9364bap-4,
    -0x1.7459e37ee9aeep-4, 0x1.3ab9e1eed73dfp-4, -0x1.0b4d7e0fad1dfp-4, 0x1.7984bf9ee45e2p-5};

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

// a[0] + a[1] z + ... + a[7] z^7, in pairs that do not wait for one another.
RVX_INLINE Lanes septic(const double (&a)[8], Lanes z)
{
    const Lanes z2 = z * z;
    const Lanes p0 = allLanes(a[0]) + z * allLanes(a[1]);
    const Lanes p1 = allLanes(a[2]) + z * allLanes(a[3]);
    const Lanes p2 = allLanes(a[4]) + z * allLanes(a[5]);
    const Lanes p3 = allLanes(a[6]) + z * allLanes(a[7]);
    return (p0 + z2 * p1) + (z2 * z2) * (p2 + z2 * p3);
}

// Angles are found in two stages, so that those of two groups can alternate: one's
// division then runs beside the other's sums.

// The quotient that is left, and the angle that it is counted from.
struct Fraction {
    Lanes dividend, divisorHead, divisorTail, reciprocal;
    Lanes base, baseRest;
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

    const LaneMask fromHalf = isAtMost(a * allLanes(RVX_FROM_HALF), b);
    const LaneMask fromOne = isBelow(a * allLanes(RVX_FROM_ONE), b);
    const Lanes c = choose(fromOne, allLanes(1.0), onlyWhere(fromHalf, allLanes(0.5)));
    const Lanes cb = c * b;
    const Lanes divisor = a + cb;
    const Lanes divisorHead = upperBits(divisor);
    const Lanes divisorTail = (a - divisorHead) + cb; // exact, also where the sum is not
    // Beyond the diagonal and beyond the imaginary axis angles run backwards.
    const RvxBits sign = ((RvxBits)re.v ^ steep.b) & INT64_MIN;
    const Lanes dividend = xorSign(b - c * a, sign);

    const Lanes axis =
        choose(steep, allLanes(RVX_HALF_PI), onlyWhere(isSigned(re), allLanes(RVX_PI)));
    const Lanes step =
        choose(fromOne, allLanes(RVX_QUARTER_PI), onlyWhere(fromHalf, allLanes(RVX_ATAN_HALF)));
    const Lanes stepRest = choose(fromOne, allLanes(RVX_QUARTER_PI_REST),
                                  onlyWhere(fromHalf, allLanes(RVX_ATAN_HALF_REST)));
    return {dividend,
            divisorHead,
            divisorTail,
            allLanes(1.0) / divisor,
            axis + xorSign(step, sign),
            axis * allLanes(RVX_PI_RELATIVE_REST) + xorSign(stepRest, sign)};
}

RVX_INLINE Lanes angleOf(Fraction f, Lanes im)
{
    const Lanes t = f.dividend * f.reciprocal;
    const Lanes head = upperBits(t);
    const Lanes remainder = (f.dividend - head * f.divisorHead) - head * f.divisorTail;
    const Lanes tail = remainder * f.reciprocal;
    const Lanes z = t * t;
    const Lanes bend = (t * z) * septic(RVX_ARCTANGENT, z);
    const Lanes sum = f.base + head;
    const Lanes sumRest = (f.base - sum) + head;
    const Lanes angle = sum + (bend + (sumRest + (f.baseRest + tail)));
    return {(RvxVector)((RvxBits)angle.v | ((RvxBits)im.v & INT64_MIN))};
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
    const Lanes angle = choose(isEqual(quotient, quotient), quotient, angleOf(fractionOf(x, y), y));
    return choose(offAxis, angle, axisAngle(re, rule));
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

// True where both parts of all of sixteen points are in range, by their high words: so
// many at once that the answer costs little on its way out of the lanes.
RVX_INLINE bool areOrdinary(const ZCplx *src)
{
    constexpr std::uint32_t smallest = 0x20b00000, largest = 0x5f300000;
    RvxWords highest = {};
    for (int k = 0; k < 16; k += 2) {
        const RvxWords beyond = (RvxWords)absLanes(loadLanes(src + k)).v - smallest;
        highest = beyond > highest ? beyond : highest;
    }
    const RvxWords fine = (RvxWords)(highest < largest - smallest);
    return everyLane({(RvxBits)fine & ~std::int64_t{0xffffffff}});
}

RVX_INLINE void findFour(const ZCplx *src, double *phase)
{
    const Quad z = loadInOrder(src);
    storeLanes(phase, angleOf(fractionOf(z.re, z.im), z.im));
}

RVX_INLINE void findAnyFour(const ZCplx *src, double *phase)
{
    const Quad z = loadInOrder(src);
    storeLanes(phase, anglesOfAny(z.re, z.im, OnAxis::nanIsNegative));
}

RVX_INLINE void splitFour(const ZCplx *src, double *mag, double *phase)
{
    const Quad z = loadInOrder(src);
    storeLanes(mag, magnitudesOf(z.re, z.im));
    storeLanes(phase, angleOf(fractionOf(z.re, z.im), z.im));
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
    for (; n - i >= 16; i += 16) {
        if (__builtin_expect(areOrdinary(src + i), 1)) {
            for (std::ptrdiff_t k = i; k < i + 16; k += 4)
                findFour(src + k, phase + k);
        } else {
            for (std::ptrdiff_t k = i; k < i + 16; k += 4)
                findAnyFour(src + k, phase + k);
        }
    }
    for (; n - i >= 4; i += 4)
        findAnyFour(src + i, phase + i);
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
    for (; n - i >= 16; i += 16) {
        if (__builtin_expect(areOrdinary(src + i), 1)) {
            for (std::ptrdiff_t k = i; k < i + 16; k += 4)
                splitFour(src + k, mag + k, phase + k);
        } else {
            for (std::ptrdiff_t k = i; k < i + 16; k += 4)
                splitAnyFour(src + k, mag + k, phase + k);
        }
    }
    for (; n - i >= 4; i += 4)
        splitAnyFour(src + i, mag + i, phase + i);
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
