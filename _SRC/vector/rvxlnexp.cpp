// rvxlnexp: natural logarithm and exponential of blocks.
//
// Two neighbours share one division, and two vectors of such pairs one instruction.
// What remains is the chain of each polynomial, several of which run side by side.
// The exponential is that of W. J. Cody and W. Waite, Software Manual for the
// Elementary Functions, 1980.

#include "vector/rvxlnexp.h"

#include <cmath>
#include <cstdint>
#include <cstring>

#include "frame/rvxcheck.h"
#include "frame/rvxfloatmode.h"
#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"
#include "rvx.h"
#include "vector/rvxgather.h"

RVX_MODULE("rvxlnexp")

namespace {

constexpr int pairLen = 2;
constexpr int runLen = 8;

constexpr double infinity = __builtin_inf();

// 1 / (q of the element itself times that of its neighbour), for two vectors of pairs;
// q is replaced by the neighbour's.
RVX_INLINE void sharePairs(double one, Lanes &qA, Lanes &qB, Lanes &shareA, Lanes &shareB)
{
    const Lanes mateA = swapParts(qA), mateB = swapParts(qB);
    const Lanes r = allLanes(one) / blendOdd(qA * mateA, qB * mateB);
    shareA = realParts(r);
    shareB = imagParts(r);
    qA = mateA;
    qB = mateB;
}

// n is a multiple of runLen.
RVX_KERNEL void lnPairs(const double *src, double *dst, int n)
{
    for (int i = 0; i < n; i += runLen) {
        const Lanes xA = loadLanes(src + i), xB = loadLanes(src + i + 4);
        Reduced a = reduceLog(xA), b = reduceLog(xB);
        Lanes shareA, shareB;
        sharePairs(1.0, a.d, b.d, shareA, shareB);
        Lanes logA = finishLog(a.k, a.g, a.g * a.d * shareA);
        Lanes logB = finishLog(b.k, b.g, b.g * b.d * shareB);
        if (anyLane(hasSpecialLog(xA) | hasSpecialLog(xB))) {
            logA = specialLogs(xA, logA);
            logB = specialLogs(xB, logB);
        }
        storeLanes(dst + i, logA);
        storeLanes(dst + i + 4, logB);
    }
}

void lnBlock(const double *src, double *dst, int len)
{
    const int paired = len / pairLen * pairLen;
    const int whole = paired / runLen * runLen;
    lnPairs(src, dst, whole);
    if (whole < paired) {
        double rest[runLen] = {};
        for (int i = whole; i < paired; ++i)
            rest[i - whole] = src[i];
        lnPairs(rest, rest, runLen);
        for (int i = whole; i < paired; ++i)
            dst[i] = rest[i - whole];
    }
    // The last element of an odd block goes the other way, on purpose.
    if (paired < len)
        dst[paired] = rvxExactLn(src[paired]);
}

// Upper halves of what an exponential is not calculated for: below `tiny` in magnitude
// it is 1, from -low down 0, from high up infinite.
constexpr std::uint32_t tinyTop = 0x3c000000;
constexpr std::uint32_t lowTop = 0x40862326;
constexpr std::uint32_t highTop = 0x40862e42;
constexpr double tinyEnd = 0x1.00000ffffffffp-63;
constexpr double lowBegin = -0x1.62326p+9;
constexpr double highBegin = 0x1.62e42p+9;

std::uint32_t topOf(double x)
{
    std::uint64_t bits;
    std::memcpy(&bits, &x, sizeof bits);
    return static_cast<std::uint32_t>(bits >> 32);
}

bool specialExp(double x, double &result)
{
    const std::uint32_t top = topOf(x), size = top & 0x7fffffff;
    if (size <= tinyTop)
        result = 1.0;
    else if (top != size && size >= lowTop)
        result = 0.0;
    else if (top == size && size >= highTop)
        result = infinity;
    else
        return false;
    return true;
}

// For the one element that is in no pair. Positive numbers from the magnitude of
// lowBegin up give zero here, on purpose.
double lonelyExp(double x)
{
    const std::uint32_t top = topOf(x), size = top & 0x7fffffff;
    if (top == size && size >= highTop)
        return infinity;
    if (size >= lowTop)
        return 0.0;
    return inPlainMode([](Extended wide) { return std::exp(wide); }, x);
}

RVX_INLINE LaneMask isOrdinaryExp(Lanes x)
{
    return isBelow(allLanes(tinyEnd), absLanes(x)) & isBelow(allLanes(lowBegin), x) &
           isBelow(x, allLanes(highBegin));
}

// exp(x) = 2^n (1 + 2 a / d)
struct ExpParts {
    Lanes a, d;
    Lanes scale; // 2^n, or infinity for n = 1024
};

RVX_INLINE ExpParts reduceExp(Lanes x)
{
    // The sum has n in its lowest bits.
    const Lanes magic = allLanes(0x1.8p52);
    const Lanes shifted = x * allLanes(0x1.71547652b82fep+0) + magic;
    const Lanes n = shifted - magic;
    const Lanes r = (x - n * allLanes(lnTwoHigh)) - n * allLanes(lnTwoLow);
    const Lanes z = r * r;
    const Lanes a =
        r * ((allLanes(1.6520330026827912e-05) * z + allLanes(0.006943600015117929)) * z +
             allLanes(0.25));
    const Lanes b =
        (allLanes(0.0004958628849054413) * z + allLanes(0.05555386669690012)) * z + allLanes(0.5);
    const Lanes scale = {(RvxVector)(((RvxBits)shifted.v << 52) + INT64_C(0x3ff0000000000000))};
    return {a, b - a, scale};
}

RVX_INLINE Lanes finishExp(ExpParts parts, Lanes share)
{
    return (allLanes(1.0) + parts.a * parts.d * share) * parts.scale;
}

// As long as the last runLen of n elements are all ordinary, finishes them; gives the
// number of those that remain.
RVX_KERNEL int expRuns(const double *src, double *dst, int n)
{
    for (; n >= runLen; n -= runLen) {
        const Lanes xA = loadLanes(src + n - 8), xB = loadLanes(src + n - 4);
        if (!everyLane(isOrdinaryExp(xA) & isOrdinaryExp(xB)))
            break;
        ExpParts a = reduceExp(xA), b = reduceExp(xB);
        Lanes shareA, shareB;
        sharePairs(2.0, a.d, b.d, shareA, shareB);
        storeLanes(dst + n - 8, finishExp(a, shareA));
        storeLanes(dst + n - 4, finishExp(b, shareB));
    }
    return n;
}

// The same through a list, for what is not all ordinary or shorter than a run.
int gatheredExps(const double *src, double *dst, int n)
{
    Gathered list;
    n = gatherDown<pairLen, 1>(src, dst, n, false, list, specialExp);
    const int whole = list.count / pairLen * pairLen;
    if (whole < list.count)
        dst[list.at[whole]] = lonelyExp(list.value[whole]);
    const int padded = (whole + runLen - 1) / runLen * runLen;
    for (int i = whole; i < padded; ++i)
        list.value[i] = 1.0;
    expRuns(list.value, list.value, padded);
    for (int i = 0; i < whole; ++i)
        dst[list.at[i]] = list.value[i];
    return n;
}

void expBlock(const double *src, double *dst, int len)
{
    int n = len;
    while (n > 0)
        n = gatheredExps(src, dst, expRuns(src, dst, n));
}

} // namespace

double rvxExactLn(double x)
{
    if (x == 0.0)
        return -infinity;
    if (x != x)
        return x;
    if (x < 0.0)
        return -__builtin_nan("");
    return inPlainMode([](Extended wide) { return std::log(wide); }, x);
}

void rvxdbLn1(double *vec, int len)
{
    RVX_REJECT_IF(len <= 0, "len<=0");
    RVX_REJECT_IF(vec == nullptr, "vec==0");
    const FloatMode before = enterPlainMode();
    lnBlock(vec, vec, len);
    leavePlainMode(before);
}

void rvxdbLn2(const double *src, double *dst, int len)
{
    RVX_REJECT_IF(len <= 0, "len<=0");
    RVX_REJECT_IF(src == nullptr, "src==0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    const FloatMode before = enterPlainMode();
    lnBlock(src, dst, len);
    leavePlainMode(before);
}

void rvxdbExp1(double *vec, int len)
{
    RVX_REJECT_IF(len <= 0, "len<=0");
    RVX_REJECT_IF(vec == nullptr, "vec==0");
    const FloatMode before = enterPlainMode();
    expBlock(vec, vec, len);
    leavePlainMode(before);
}

void rvxdbExp2(const double *src, double *dst, int len)
{
    RVX_REJECT_IF(len <= 0, "len<=0");
    RVX_REJECT_IF(src == nullptr, "src==0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    const FloatMode before = enterPlainMode();
    expBlock(src, dst, len);
    leavePlainMode(before);
}
