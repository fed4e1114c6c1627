// What both kinds of logarithm are made of.
//
// x = m 2^k with m between about sqrt(1/2) and sqrt(2); with g = m - 1, s = g / (m + 1),
// ln m = 2 artanh(s) = g - (h - s (h + R(s^2))) where h = g^2 / 2. The method is that
// of K. C. Ng's logarithm (FDLIBM, 1993).

#ifndef RVXLNEXP_H
#define RVXLNEXP_H

#include <cstdint>

#include "frame/rvxbundle.h"
#include "frame/rvxlanes.h"

constexpr double lnTwoHigh = 0x1.62e42feep-1;
constexpr double lnTwoLow = 0x1.a39ef35793c76p-33;

constexpr int logChunkLen = 64;

// What the steps leave for each other. They stand apart, so that none is a long chain
// and the processor works on several turns of it at once.
struct LogParts {
    alignas(32) double k[logChunkLen];
    alignas(32) double g[logChunkLen]; // m - 1
    alignas(32) double s[logChunkLen]; // g / (m + 1)
    alignas(32) double r[logChunkLen]; // R(s^2)
};

// Stores k and g and gives m + 1. From the bits alone: whatever x is, m is in its range.
// An infinity counts as 2^1024, and a subnormal number as if it had the hidden bit.
// `least` takes the least words that were met.
template <int count>
RVX_INLINE Bundle<count> reduceLog(const double *src, LogParts &parts, int at, Lanes &least)
{
    const Bundle<count> x = loadBundle<count>(src + at);
    using Bits = std::uint64_t __attribute__((vector_size(32)));
    Bundle<count> k, m;
    RVX_UNROLLED for (int i = 0; i < count; ++i)
    {
        least = minSignedWords(least, x.v[i]);
        // Carries into the exponent if the fraction's top 20 bits are 0x6a09e or more.
        const Bits raised = (Bits)x.v[i].v + ((0x100000ULL - 0x6a09eULL) << 32);
        m.v[i].v = (RvxVector)((raised & 0x000fffffffffffffULL) + 0x3fe6a09e00000000ULL);
        k.v[i].v = (RvxVector)((raised >> 52) | 0x4330000000000000ULL);
    }
    storeBundle(parts.k + at, k - (0x1p52 + 1023.0));
    storeBundle(parts.g + at, m - 1.0);
    return m + 1.0;
}

template <int count>
RVX_INLINE void logSeries(LogParts &parts, int at)
{
    const Bundle<count> s = loadBundle<count>(parts.s + at), w = s * s;
    Bundle<count> r = w * 0.14795612545334175 + 0.15314087275331442;
    r = r * w + 0.18183562745289936;
    r = r * w + 0.22222198607186278;
    r = r * w + 0.28571428742008753;
    r = r * w + 0.399999999994167;
    r = r * w + 0.6666666666666734;
    storeBundle(parts.r + at, r * w);
}

// Where the search for the least words begins.
RVX_INLINE Lanes noSpecialLogs()
{
    return {(RvxVector)(RvxSignedWords{} + 1)};
}

// False if no element has a logarithm of its own, true also for some tiny numbers. The
// upper halves of numbers are the odd words.
RVX_INLINE bool mayBeSpecialLogs(Lanes least)
{
    return anyLane({(RvxBits)((RvxSignedWords)least.v <= 0) >> 63});
}

// What has its sign bit set gives this NaN, +0.0 gives -infinity.
RVX_INLINE Lanes specialLogs(Lanes x, Lanes log)
{
    const RvxBits bits = (RvxBits)x.v;
    const Lanes nan = {(RvxVector)(RvxBits{} + INT64_C(0x7ff8000000000000) + INT64_MIN)};
    const Lanes atLeastZero = choose({bits == 0}, allLanes(-__builtin_inf()), log);
    return choose({bits < 0}, nan, atLeastZero);
}

template <int count>
RVX_INLINE Bundle<count> logsOf(const double *src, const LogParts &parts, int at, bool isSpecial)
{
    const Bundle<count> k = loadBundle<count>(parts.k + at), g = loadBundle<count>(parts.g + at),
                        s = loadBundle<count>(parts.s + at), h = g * 0.5 * g;
    const Bundle<count> low = k * lnTwoLow + (loadBundle<count>(parts.r + at) + h) * s;
    Bundle<count> log = (g + (low - h)) + k * lnTwoHigh;
    if (isSpecial) {
        RVX_UNROLLED for (int i = 0; i < count; ++i) log.v[i] =
            specialLogs(loadLanes(src + at + 4 * i), log.v[i]);
    }
    return log;
}

// The logarithm for elements that are in no group: correctly rounded but for about one
// in a thousand. Either zero gives -infinity, a NaN stays.
double rvxExactLn(double x);

#endif
