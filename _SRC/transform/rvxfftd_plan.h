// The plan of a transform: which passes it makes, and where the factors of each
// pass stand.
//
// Up to 512 points a kernel makes a first pass of radix 4 or 8 without factors
// and then passes of radix 4. Above, kernels of 512 points are joined by sweeps
// that make one to three radix-2 passes at once, first within stretches of 8192
// points, then above. The passes of a transform that runs the other way are the
// same, from the last to the first.
//
// The factors of the passes, in the order in which they are used and with four
// real and four imaginary parts by turns, stand behind the tables of rvxtwd in
// the same buffers.

#ifndef RVXFFTD_PLAN_H
#define RVXFFTD_PLAN_H

#include <cstdint>

#include "rvx.h"

enum {
    RVX_KERNEL_ORDER = 9,
    RVX_KERNEL_LEN = 512,
    RVX_STRETCH_ORDER = 13,
    RVX_COARSE_LEN = 2048,
    RVX_MAX_SWEEPS = 12
};

// Elements of the tables themselves, without the factors behind them.
inline std::uint64_t rvxDitTableLen(int order)
{
    return order < 2 ? 4 : (std::uint64_t{1} << order) + 4;
}

inline std::uint64_t rvxDifTableLen(int order)
{
    return ((std::uint64_t{1} << order) + 1) / 2;
}

inline std::uint64_t rvxLargeTableLen(int order)
{
    const std::uint64_t quarter = (std::uint64_t{1} << order) / 4;
    return order > RVX_STRETCH_ORDER ? quarter + RVX_COARSE_LEN : quarter;
}

// A kernel's first pass takes the power of two that radix 4 leaves over.
inline int rvxFirstRadix(int order)
{
    return order % 2 == 0 ? 4 : 8;
}

// Elements of the factors of a kernel: W(4P,i), W(4P,2i), W(4P,3i) for each pass
// from P to 4P points, i from 0 to P-1.
inline std::uint64_t rvxKernelFactorsLen(int order)
{
    return order < 4 ? 0
                     : (std::uint64_t{1} << order) - static_cast<unsigned>(rvxFirstRadix(order));
}

inline const double *rvxDitFactors(const ZCplx *table, int order)
{
    return &table[rvxDitTableLen(order)].re;
}

inline const double *rvxDifFactors(const ZCplx *table, int order)
{
    return &table[rvxDifTableLen(order)].re;
}

inline const double *rvxLargeFactors(const ZCplx *table, int order)
{
    return &table[rvxLargeTableLen(order)].re;
}

// What the passes of one order read, in tables or without such around them. The
// factors of decimation in time and in frequency are the same.
struct FftFactors {
    const double *kernel; // of the order; above 9, of order 9
    const double *sweeps; // above 9
};

// The number of radix-2 passes, 1 to 3, in the sweep that starts from transforms
// of 2^level points. Four that are left make two sweeps of two.
inline int rvxSweepDepth(int order, int level)
{
    const int top =
        level < RVX_STRETCH_ORDER && order > RVX_STRETCH_ORDER ? RVX_STRETCH_ORDER : order;
    const int left = top - level;
    if (left == 4)
        return 2;
    return left < 3 ? left : 3;
}

// Joins 2^depth transforms of P points. The factors are, for each four i,
// W(2P,i); from depth 2 also W(4P,i); at depth 3 also W(8P,i) and W(8P,i+P).
// All others of these passes are those, turned by a quarter.
struct Sweep {
    int P;
    int depth;
    const double *factors;

    int len() const { return P << depth; }
    std::uint64_t factorsLen() const { return static_cast<std::uint64_t>(P) << (depth - 1); }
};

// All sweeps of an order above 9, from the shortest; gives their number.
inline int rvxPlanSweeps(int order, const double *factors, Sweep *sweeps)
{
    int count = 0;
    for (int level = RVX_KERNEL_ORDER; level < order; level += sweeps[count++].depth) {
        sweeps[count] = {1 << level, rvxSweepDepth(order, level), factors};
        factors += 2 * sweeps[count].factorsLen();
    }
    return count;
}

inline std::uint64_t rvxSweepFactorsLen(int order)
{
    std::uint64_t len = 0;
    int depth;
    for (int level = RVX_KERNEL_ORDER; level < order; level += depth) {
        depth = rvxSweepDepth(order, level);
        len += std::uint64_t{1} << (level + depth - 1);
    }
    return len;
}

#endif
