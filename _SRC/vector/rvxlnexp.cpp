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

template <int count>
RVX_INLINE void beginPairs(const double *src, LogParts &parts, int at, Lanes &least)
{
    const Bundle<count> d = reduceLog<count>(src, parts, at, least);
    const Bundle<count> mate = swapParts(d);
    const Bundle<count> share = overPairs(1.0, d * mate);
    storeBundle(parts.s + at, loadBundle<count>(parts.g + at) * mate * share);
}

// n is a multiple of runLen.
RVX_KERNEL void lnPairs(const double *src, double *dst, int n)
{
    LogParts parts;
    for (int from = 0; from < n; from += logChunkLen) {
        const int len = n - from < logChunkLen ? n - from : logChunkLen;
        const double *x = src + from;
        double *log = dst + from;
        Lanes least = noSpecialLogs();
        int i = 0;
        for (; i < len - 15; i += 16)
            beginPairs<4>(x, parts, i, least);
        for (; i < len; i += 8)
            beginPairs<2>(x, parts, i, least);
        for (i = 0; i < len - 31; i += 32)
            logSeries<8>(parts, i);
        for (; i < len; i += 8)
            logSeries<2>(parts, i);
        const bool isSpecial = mayBeSpecialLogs(least);
        for (i = 0; i < len - 15; i += 16)
            storeBundle(log + i, logsOf<4>(x, parts, i, isSpecial));
        for (; i < len; i += 8)
            storeBundle(log + i, logsOf<2>(x, parts, i, isSpecial));
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

// Upper halves of what an exponential is not calculated for: up to tiny in magnitude it
// is 1, from -low down 0, from high up infinite.
constexpr std::uint32_t tinyTop = 0x3c000000;
constexpr std::uint32_t lowTop = 0x40862326;
constexpr std::uint32_t highTop = 0x40862e42;

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

// For the one element that is in no pair. A positive number gives zero here where its
// negative does, on purpose.
double lonelyExp(double x)
{
    if ((topOf(x) & 0x7fffffff) >= lowTop)
        return 0.0;
    return inPlainMode([](Extended wide) { return std::exp(wide); }, x);
}

constexpr int expChunkLen = 64;

struct ExpParts {
    alignas(32) double r[expChunkLen];
    alignas(32) double power[expChunkLen];
    alignas(32) double a[expChunkLen];
    alignas(32) double d[expChunkLen];
};

// x = n ln 2 + r; power is 2^n, or infinity for n = 1024
template <int count>
RVX_INLINE void reduceExp(const double *src, ExpParts &parts, int at)
{
    const Bundle<count> x = loadBundle<count>(src + at);
    // The sum has n in its lowest bits.
    const double magic = 0x1.8p52;
    const Bundle<count> shifted = x * 0x1.71547652b82fep+0 + magic;
    const Bundle<count> n = shifted - magic;
    storeBundle(parts.r + at, (x - n * lnTwoHigh) - n * lnTwoLow);
    RVX_UNROLLED for (int i = 0; i < count; ++i)
    {
        const RvxBits power = ((RvxBits)shifted.v[i].v << 52) + INT64_C(0x3ff0000000000000);
        storeLanes(parts.power + at + 4 * i, {(RvxVector)power});
    }
}

// exp(r) = 1 + 2 a / d
template <int count>
RVX_INLINE void expFraction(ExpParts &parts, int at)
{
    const Bundle<count> r = loadBundle<count>(parts.r + at), z = r * r;
    const Bundle<count> a = ((z * 1.6520330026827912e-05 + 0.006943600015117929) * z + 0.25) * r;
    const Bundle<count> b = (z * 0.0004958628849054413 + 0.05555386669690012) * z + 0.5;
    storeBundle(parts.a + at, a);
    storeBundle(parts.d + at, b - a);
}

template <int count>
RVX_INLINE Bundle<count> expsOf(const ExpParts &parts, int at)
{
    const Bundle<count> d = loadBundle<count>(parts.d + at), mate = swapParts(d);
    const Bundle<count> a = loadBundle<count>(parts.a + at) * mate;
    const Bundle<count> e = a * overPairs(2.0, d * mate) + 1.0;
    return e * loadBundle<count>(parts.power + at);
}

// len is a multiple of runLen and at most expChunkLen. The steps stand apart, as those of
// the logarithm.
RVX_INLINE void expChunk(const double *src, double *dst, int len)
{
    ExpParts parts;
    for (int i = 0; i < len; i += 8)
        reduceExp<2>(src, parts, i);
    for (int i = 0; i < len; i += 8)
        expFraction<2>(parts, i);
    for (int i = 0; i < len; i += 8)
        storeBundle(dst + i, expsOf<2>(parts, i));
}

// True if all are sure to be ordinary; some positive ones that are not may be, too.
RVX_INLINE bool areOrdinary(const double *x, int len)
{
    const RvxWords sizeBits = RvxWords{} + 0x7fffffffU;
    RvxWords least = sizeBits, greatest = {};
    for (int i = len - 4; i >= 0; i -= 4) {
        const RvxWords top = (RvxWords)loadLanes(x + i).v & sizeBits;
        least = top < least ? top : least;
        greatest = top > greatest ? top : greatest;
    }
    // Each upper half is an odd word.
    const auto fits = (RvxBits)((least > tinyTop) & (greatest < lowTop));
    return everyLane({fits >> 63});
}

// n is a multiple of runLen and at most expChunkLen.
RVX_KERNEL void expPairs(double *block, int n)
{
    expChunk(block, block, n);
}

// As long as the last ones of n elements are all ordinary, finishes them; gives the
// number of those that remain.
RVX_KERNEL int expRuns(const double *src, double *dst, int n)
{
    while (n >= runLen) {
        const int len = n < expChunkLen ? n / runLen * runLen : expChunkLen;
        if (!areOrdinary(src + n - len, len))
            break;
        n -= len;
        fetchBelow<expChunkLen>(dst, n);
        expChunk(src + n, dst + n, len);
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
    expPairs(list.value, padded);
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
