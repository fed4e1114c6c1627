// The cosine transform's engines, for its front and its tests.

#ifndef RVXDCT_H
#define RVXDCT_H

#include <cstdint>

// What the direct engines run on: t[i] = cos(i pi / (2L)) for 0 <= i < 4L, behind them the
// same values as the engines read them, and 1/sqrt(L).
struct RvxDctCosines {
    const double *t;
    double scale;
};

// What the fast engines run on: table i has m = 8 * 2^i entries
// 0.5 / cos((2n+1) pi / (4m)); and 1/sqrt(L).
struct RvxDctStages {
    const double *const *secants;
    double scale;
};

enum { RVX_DCT_KERNEL_LEN = 8 };

// The transforms of a power of two, L >= 2, by halving. dst may be src; copy has L
// elements, whatever they are, and is aligned to 32. The stages are looked at from
// L = 16 on.
void rvxDctFastForward(const double *src, double *copy, double *dst, std::int64_t L,
                       const RvxDctStages &stages);
void rvxDctFastInverse(const double *src, double *copy, double *dst, std::int64_t L,
                       const RvxDctStages &stages);

// How many doubles the cosines take with what stands behind them, which the second makes.
std::int64_t rvxDctCosinesLen(std::int64_t L);
void rvxDctSpreadCosines(double *t, std::int64_t L);

// The transforms of any length L >= 1 as sums. copy holds the input and is destroyed.
void rvxDctDirectForward(double *copy, double *dst, std::int64_t L, const RvxDctCosines &cosines);
void rvxDctDirectInverse(double *copy, double *dst, std::int64_t L, const RvxDctCosines &cosines);

#endif
