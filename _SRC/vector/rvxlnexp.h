// What both kinds of logarithm are made of.
//
// x = m 2^k with m between about sqrt(1/2) and sqrt(2); with g = m - 1, s = g / (m + 1),
// ln m = 2 artanh(s) = g - (h - s (h + R(s^2))) where h = g^2 / 2. The method is that
// of K. C. Ng's logarithm (FDLIBM, 1993).

#ifndef RVXLNEXP_H
#define RVXLNEXP_H

#include <cstdint>

#include "frame/rvxlanes.h"

constexpr double lnTwoHigh = 0x1.62e42feep-1;
constexpr double lnTwoLow = 0x1.a39ef35793c76p-33;

struct Reduced {
    Lanes k; // exponent
    Lanes g; // m - 1
    Lanes d; // m + 1, what g is to be divided by
};

// From the bits alone: whatever x is, m is in its range. An infinity counts as 2^1024,
// and a subnormal number as if it had the hidden bit.
RVX_INLINE Reduced reduceLog(Lanes x)
{
    using Bits = std::uint64_t __attribute__((vector_size(32)));
    const Bits bits = (Bits)x.v;
    // Carries into the exponent if the fraction's top 20 bits are 0x6a09e or more.
    const Bits raised = bits + ((0x100000ULL - 0x6a09eULL) << 32);
    const Lanes m = {(RvxVector)(bits - (raised & 0xfff0000000000000ULL) + 0x3ff0000000000000ULL)};
    const Lanes k = {(RvxVector)((raised >> 52) | 0x4330000000000000ULL)};
    return {k - allLanes(0x1p52 + 1023.0), m - allLanes(1.0), m + allLanes(1.0)};
}

// ln(m 2^k) from s = g / d
RVX_INLINE Lanes finishLog(Lanes k, Lanes g, Lanes s)
{
    const Lanes w = s * s;
    Lanes r = allLanes(0.14795612545334175);
    r = allLanes(0.15314087275331442) + w * r;
    r = allLanes(0.18183562745289936) + w * r;
    r = allLanes(0.22222198607186278) + w * r;
    r = allLanes(0.28571428742008753) + w * r;
    r = allLanes(0.399999999994167) + w * r;
    r = allLanes(0.6666666666666734) + w * r;
    r = w * r;
    const Lanes h = allLanes(0.5) * g * g;
    return (g + ((k * allLanes(lnTwoLow) + (r + h) * s) - h)) + k * allLanes(lnTwoHigh);
}

RVX_INLINE LaneMask hasSpecialLog(Lanes x)
{
    return {(RvxBits)x.v <= 0};
}

// What has its sign bit set gives this NaN, +0.0 gives -infinity.
RVX_INLINE Lanes specialLogs(Lanes x, Lanes log)
{
    const RvxBits bits = (RvxBits)x.v;
    const Lanes nan = {(RvxVector)(RvxBits{} + INT64_C(0x7ff8000000000000) + INT64_MIN)};
    const Lanes atLeastZero = choose({bits == 0}, allLanes(-__builtin_inf()), log);
    return choose({bits < 0}, nan, atLeastZero);
}

// The logarithm for elements that are in no group: correctly rounded but for about one
// in a thousand. Either zero gives -infinity, a NaN stays.
double rvxExactLn(double x);

#endif
