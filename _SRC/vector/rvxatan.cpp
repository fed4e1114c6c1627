// rvxatan: arctangent of blocks.
//
// atan(t) = t - t P(t^2) / Q(t^2) for |t| < 1, by rational approximation, and
// atan(x) = pi/2 - atan(1/x) beyond. Four neighbours share the division by their Qs;
// four such groups at a time share one instruction, so that the polynomials are
// the limit.

#include <cmath>
#include <cstdint>
#include <cstring>

#include "frame/rvxbundle.h"
#include "frame/rvxcheck.h"
#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"
#include "rvx.h"
#include "vector/rvxgather.h"

RVX_MODULE("rvxatan")

namespace {

constexpr int groupLen = 4;
constexpr int runLen = 4 * groupLen;
constexpr int chunkLen = 128;

constexpr double halfPi = 0x1.921fb54442d18p+0;
constexpr double infinity = __builtin_inf();

// From the highest power down.
constexpr double p7 = 3.2828074051574014e-05, p6 = 0.001443255490489221, p5 = 0.016666208496175557,
                 p4 = 0.07740968919218316, p3 = 0.1665219024781521, p2 = 0.16562803159089803,
                 p1 = 0.06152589308173906, p0 = 2.949220131364055e-20;
constexpr double q7 = 3.5869490790335996e-05, q6 = 0.0019179513216930214, q5 = 0.027756313845352945,
                 q4 = 0.16837663361034763, q3 = 0.5043654480105728, q2 = 0.7850394091498596,
                 q1 = 0.6076307023198234, q0 = 0.18457767924521717;

template <typename T>
RVX_INLINE T numerator(const T &z)
{
    return ((((((z * p7 + p6) * z + p5) * z + p4) * z + p3) * z + p2) * z + p1) * z + p0;
}

template <typename T>
RVX_INLINE T denominator(const T &z)
{
    return ((((((z * q7 + q6) * z + q5) * z + q4) * z + q3) * z + q2) * z + q1) * z + q0;
}

// Both at a time, coefficient by coefficient: twice as many chains.
template <int count>
RVX_INLINE void polynomials(const Bundle<count> &z, double *toP, double *toQ)
{
    Bundle<count> p = z * p7 + p6, q = z * q7 + q6;
    p = p * z + p5;
    q = q * z + q5;
    p = p * z + p4;
    q = q * z + q4;
    p = p * z + p3;
    q = q * z + q3;
    p = p * z + p2;
    q = q * z + q2;
    p = p * z + p1;
    q = q * z + q1;
    storeBundle(toP, p * z + p0);
    storeBundle(toQ, q * z + q0);
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
    const double near = t - t * (numerator(z) / denominator(z));
    return std::copysign(size < 1.0 ? near : halfPi - near, x);
}

// Rounded once from extended precision; no case of its own for special values.
double exactArctan(double x)
{
    return static_cast<double>(std::atan2(static_cast<Extended>(x), Extended{1.0}));
}

struct ArctanParts {
    alignas(32) double t[chunkLen + runLen]; // the argument, below 1 or 1
    alignas(32) double p[chunkLen];          // P(t^2)
    alignas(32) double q[chunkLen];          // Q(t^2), then its reciprocal
};

// min(|x|, 1 / max(|x|, 1)), since 1 / |x| may overflow
template <int count>
RVX_INLINE Bundle<count> arctanArgument(const Bundle<count> &x)
{
    Bundle<count> t;
    RVX_UNROLLED for (int i = 0; i < count; ++i)
    {
        const Lanes size = absLanes(x.v[i]);
        t.v[i] = minLanes(size, allLanes(1.0) / maxLanes(allLanes(1.0), size));
    }
    return t;
}

// One group is one vector: its products come out alike in all four lanes. In place of
// q comes 1 / q.
template <int count>
RVX_INLINE void shareDivision(double *atQ)
{
    const Bundle<count> mate = swapParts(loadBundle<count>(atQ));
    const Bundle<count> pair = loadBundle<count>(atQ) * mate;
    const Bundle<count> otherPair = swapHalves(pair);
    const Bundle<count> share = overFours(1.0, pair * otherPair);
    storeBundle(atQ, mate * (otherPair * share));
}

template <int count>
RVX_INLINE void finishArctan(const double *src, double *dst, const ArctanParts &parts, int at)
{
    const Bundle<count> quotient =
        loadBundle<count>(parts.p + at) * loadBundle<count>(parts.q + at);
    const Bundle<count> t = loadBundle<count>(parts.t + at);
    const Bundle<count> near = t - t * quotient;
    const Bundle<count> far = halfPi - near;
    RVX_UNROLLED for (int i = 0; i < count; ++i)
    {
        const Lanes x = loadLanes(src + at + 4 * i);
        const LaneMask isNear = isBelow(absLanes(x), allLanes(1.0));
        // The difference makes +0.0 of -0.0, which is to stay.
        storeLanes(dst + at + 4 * i, withSignOf(choose(isNear, near.v[i], far.v[i]), x));
    }
}

// len is a multiple of runLen and at most chunkLen. The steps stand apart, so that none
// is a long chain and the processor works on several turns of it at once.
RVX_INLINE void arctanChunk(const double *src, double *dst, int len)
{
    constexpr int count = runLen / 4;
    ArctanParts parts;
    storeBundle(parts.t, arctanArgument(loadBundle<count>(src)));
    for (int i = 0; i < len; i += runLen) {
        // The divisions of the next turn run beside the polynomials of this one.
        const int next = i + runLen < len ? i + runLen : i;
        storeBundle(parts.t + i + runLen, arctanArgument(loadBundle<count>(src + next)));
        const Bundle<count> t = loadBundle<count>(parts.t + i);
        polynomials(t * t, parts.p + i, parts.q + i);
    }
    for (int i = 0; i < len; i += runLen)
        shareDivision<count>(parts.q + i);
    for (int i = 0; i < len; i += runLen)
        finishArctan<count>(src, dst, parts, i);
}

// len is a multiple of 4
RVX_INLINE bool areFinite(const double *x, int len)
{
    Lanes greatest = {};
    for (int i = len - 4; i >= 0; i -= 4)
        greatest = maxMagnitude(greatest, loadLanes(x + i));
    return everyLane(isBelow(greatest, allLanes(infinity)));
}

// As long as the last ones of n elements are all finite, finishes them; gives the
// number of those that remain.
RVX_KERNEL int arctanRuns(const double *src, double *dst, int n)
{
    while (n >= runLen) {
        const int len = n < chunkLen ? n / runLen * runLen : chunkLen;
        if (!areFinite(src + n - len, len))
            break;
        n -= len;
        fetchBelow<chunkLen>(dst, n);
        arctanChunk(src + n, dst + n, len);
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
