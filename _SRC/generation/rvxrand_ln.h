// The natural logarithm of numbers between 0 and 1, in lanes.
//
// w = 2^k m with m in [1/2, 1), and m = (1 + r) / c with c out of a table, so that
// ln w = k ln 2 - ln c + ln(1 + r), where |r| < 2^-7.8 (P. T. P. Tang, Table-driven
// implementation of the logarithm function, 1990). No term has a sign of its own, so that
// nothing cancels. What is large is summed exactly. What rounds is at most 2^-8 of the
// result, so that the error is below 0.507 units in the last place.

#ifndef RVXRAND_LN_H
#define RVXRAND_LN_H

#include <cstdint>

#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"

struct alignas(32) RvxLnRow {
    double c, high, low, unused;
};

extern const RvxLnRow rvxLnRows[128];

// 2^-1022 <= w < 1
RVX_INLINE Lanes lnBelowOne(Lanes w)
{
    using Bits = std::uint64_t __attribute__((vector_size(32)));
    const Bits bits = (Bits)w.v;
    const Lanes k = {(RvxVector)((bits >> 52) | 0x4330000000000000ULL)};
    const Lanes power = k - allLanes(0x1p52 + 1022.0);
    const Bits m = (bits & 0x000fffffffffffffULL) | 0x3fe0000000000000ULL;
    const Bits row = (bits >> 45) & 127U;

    Lanes c = loadLanes(&rvxLnRows[row[0]].c), high = loadLanes(&rvxLnRows[row[1]].c);
    Lanes low = loadLanes(&rvxLnRows[row[2]].c), unused = loadLanes(&rvxLnRows[row[3]].c);
    transposeLanes(c, high, low, unused);

    // Both products are exact: the first 32 bits of m, and the 21 others, times 10.
    const Lanes front = {(RvxVector)(m & 0xffffffffffe00000ULL)};
    const Lanes back = Lanes{(RvxVector)m} - front;
    const Lanes near = front * c - allLanes(1.0), rest = back * c;
    const Lanes r = near + rest, rLow = (near - r) + rest;

    // ln 2 in 41 bits and what is behind them; the first sum is exact.
    const Lanes large = power * allLanes(0x1.62e42fefa4p-1) + high;
    const Lanes sum = large + r, sumLow = (large - sum) + r;
    const Lanes small = power * allLanes(-0x1.8432a1b0e2634p-43) + low;

    // ln(1 + r) - r
    const Lanes rr = r * r;
    const Lanes q3 = r * allLanes(-0x1.ffffffffafffbp-3) + allLanes(0x1.5555555555555p-2);
    const Lanes q5 = r * allLanes(-0x1.5556955655562p-3) + allLanes(0x1.99999999527cep-3);
    const Lanes q = (rr * allLanes(0x1.2493659742208p-3) + q5) * rr + q3;
    const Lanes series = (r * q - allLanes(0.5)) * rr;

    return sum + (sumLow + ((rLow + small) + series));
}

#endif
