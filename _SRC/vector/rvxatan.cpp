// rvxatan: arctangent of blocks.
//
// atan(t) = t - t P(t^2) / Q(t^2) for |t| < 1, by rational approximation, and
// atan(x) = pi/2 - atan(1/x) beyond. Four neighbours share the division by their Qs;
// four such groups at a time share one instruction, so that the polynomials are
// the limit.

#include <cmath>
#include <cstdint>
#include <cstring>

#include "frame/rvxcheck.h"
#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"
#include "rvx.h"
#include "vector/rvxgather.h"

RVX_MODULE("rvxatan")

namespace {

constexpr int groupLen = 4;
constexpr int runLen = 4 * groupLen;

constexpr double halfPi = 0x1.921fb54442d18p+0;
constexpr double infinity = __builtin_inf();

// From the highest power down.
constexpr double numerator[] = {3.2828074051574014e-05, 0.001443255490489221, 0.016666208496175557,
                                0.07740968919218316,    0.1665219024781521,   0.16562803159089803,
                                0.06152589308173906,    2.949220131364055e-20};
constexpr double denominator[] = {
    3.5869490790335996e-05, 0.0019179513216930214, 0.027756313845352945, 0.16837663361034763,
    0.5043654480105728,     0.7850394091498596,    0.6076307023198234,   0.18457767924521717};

RVX_INLINE Lanes horner(const double *coefficients, Lanes z)
{
    Lanes sum = allLanes(coefficients[0]);
    for (int i = 1; i < 8; ++i)
        sum = sum * z + allLanes(coefficients[i]);
    return sum;
}

RVX_INLINE double horner(const double *coefficients, double z)
{
    double sum = coefficients[0];
    for (int i = 1; i < 8; ++i)
        sum = sum * z + coefficients[i];
    return sum;
}

bool isSpecial(double x)
{
    return !(std::fabs(x) < infinity);
}

// A quiet NaN keeps its upper half; infinities and signalling NaNs become +-pi/2.
double specialArctan(double x, bool areNegativeNansSeen)
{
    std::uint64_t bits;
    std::memcpy(&bits, &x, sizeof bits);
    const bool isQuiet = (bits & 0x7ff8000000000000) == 0x7ff8000000000000;
    const bool isNegative = bits >> 63 != 0;
    if (!isQuiet || (isNegative && !areNegativeNansSeen))
        return isNegative ? -halfPi : halfPi;
    bits &= 0xffffffff00000000;
    std::memcpy(&x, &bits, sizeof x);
    return x;
}

double oneArctan(double x)
{
    if (isSpecial(x))
        return specialArctan(x, true);
    const double size = std::fabs(x);
    const double t = size < 1.0 ? size : 1.0 / size;
    const double z = t * t;
    const double near = t - t * (horner(numerator, z) / horner(denominator, z));
    return std::copysign(size < 1.0 ? near : halfPi - near, x);
}

// Rounded once from extended precision; no case of its own for special values.
double exactArctan(double x)
{
    return static_cast<double>(std::atan2(static_cast<Extended>(x), Extended{1.0}));
}

// As long as the last runLen of n elements are all finite, finishes them; gives the
// number of those that remain.
RVX_KERNEL int arctanRuns(const double *src, double *dst, int n)
{
    for (; n >= runLen; n -= runLen) {
        const double *from = src + n - runLen;
        double *to = dst + n - runLen;
        LaneMask isFinite = isBelow(absLanes(loadLanes(from)), allLanes(infinity));
        for (int j = 1; j < 4; ++j)
            isFinite = isFinite & isBelow(absLanes(loadLanes(from + 4 * j)), allLanes(infinity));
        if (!everyLane(isFinite))
            break;

        // One group is one vector. Its products come out alike in all four lanes.
        Lanes t[4], p[4], qMate[4], pairs[4], product[4];
        for (int j = 0; j < 4; ++j) {
            // min(size, 1 / max(size, 1)), since 1 / size may overflow
            const Lanes size = absLanes(loadLanes(from + 4 * j));
            t[j] = minLanes(size, allLanes(1.0) / maxLanes(size, allLanes(1.0)));
            const Lanes z = t[j] * t[j];
            p[j] = horner(numerator, z);
            const Lanes q = horner(denominator, z);
            qMate[j] = swapParts(q);
            const Lanes pair = q * qMate[j];
            pairs[j] = swapHalves(pair);
            product[j] = pair * pairs[j];
        }
        const Lanes r =
            allLanes(1.0) / diagonalLanes(product[0], product[1], product[2], product[3]);
        const Lanes share[4] = {laneEverywhere<0>(r), laneEverywhere<1>(r), laneEverywhere<2>(r),
                                laneEverywhere<3>(r)};
        for (int j = 0; j < 4; ++j) {
            const Lanes x = loadLanes(from + 4 * j);
            const Lanes quotient = p[j] * (qMate[j] * (pairs[j] * share[j]));
            const Lanes near = t[j] - t[j] * quotient;
            const Lanes isNear =
                choose(isBelow(absLanes(x), allLanes(1.0)), near, allLanes(halfPi) - near);
            // The difference makes +0.0 of -0.0, which is to stay.
            storeLanes(to + 4 * j, withSignOf(isNear, x));
        }
    }
    return n;
}

// The same through a list, for what is not all finite or shorter than a run.
int gatheredArctans(const double *src, double *dst, int n, bool isBegun)
{
    Gathered list;
    n = gatherDown<groupLen, groupLen>(src, dst, n, isBegun, list, [](double x, double &result) {
        if (!isSpecial(x))
            return false;
        result = specialArctan(x, true);
        return true;
    });
    const int whole = list.count / groupLen * groupLen;
    for (int i = whole; i < list.count; ++i)
        dst[list.at[i]] = exactArctan(list.value[i]);
    const int padded = (whole + runLen - 1) / runLen * runLen;
    for (int i = whole; i < padded; ++i)
        list.value[i] = 0.0;
    arctanRuns(list.value, list.value, padded);
    for (int i = 0; i < whole; ++i)
        dst[list.at[i]] = list.value[i];
    return n;
}

void arctanBlock(const double *src, double *dst, int len)
{
    int n = len;
    if (len < groupLen) {
        for (int i = 0; i < len; ++i)
            dst[i] = oneArctan(src[i]);
        return;
    }
    // In the search for the very first element negative quiet NaNs are not seen as
    // such, on purpose.
    for (; n > 0 && isSpecial(src[n - 1]); --n)
        dst[n - 1] = specialArctan(src[n - 1], false);
    bool isBegun = n < len;
    while (n >= groupLen || (isBegun && n > 0)) {
        const int rest = arctanRuns(src, dst, n);
        isBegun = isBegun && rest == n;
        n = gatheredArctans(src, dst, rest, isBegun);
        isBegun = false;
    }
    for (; n > 0; --n)
        dst[n - 1] = exactArctan(src[n - 1]);
}

} // namespace

void rvxdbArctan1(double *vec, int len)
{
    RVX_REJECT_IF(vec == nullptr, "Bad pointer on vector");
    RVX_REJECT_IF(len < 1, "Vector does not contain units");
    arctanBlock(vec, vec, len);
}

void rvxdbArctan2(const double *src, double *dst, int len)
{
    RVX_REJECT_IF(src == nullptr, "Bad pointer on src vector");
    RVX_REJECT_IF(dst == nullptr, "Bad pointer on dst vector");
    RVX_REJECT_IF(len < 1, "Vectors does not contain units");
    arctanBlock(src, dst, len);
}
