// The factors of the transforms' passes, in the order in which these use them (see
// rvxfftd_plan.h), from a quarter wave of the sine.

#ifndef RVXTWD_FACTORS_H
#define RVXTWD_FACTORS_H

#include <cstdint>

#include "rvx.h"

// sine[i] = sin(2 pi i / N) for 0 <= i <= quarter = N/4, and half = N/2.
struct QuarterWave {
    const double *sine;
    std::int64_t quarter;
    std::int64_t half;

    // W(N,k) for 0 <= k <= 3N/4
    ZCplx root(std::int64_t k) const
    {
        if (k <= quarter)
            return {sine[quarter - k], -sine[k]};
        if (k <= half)
            return {-sine[k - quarter], -sine[half - k]};
        return {-sine[3 * quarter - k], sine[k - half]};
    }
};

// The factors of the radix-4 passes of a kernel, and of the sweeps above. The wave is
// that of the order or of any above: equal angles have equal values in all.
void rvxFillKernelFactors(double *p, const QuarterWave &wave, int order);
void rvxFillSweepFactors(double *p, const QuarterWave &wave, int order);

#endif
