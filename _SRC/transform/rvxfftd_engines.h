// What the files of rvxfftd share beyond rvxfftd.h.

#ifndef RVXFFTD_ENGINES_H
#define RVXFFTD_ENGINES_H

#include "transform/rvxfftd.h"
#include "transform/rvxfftd_plan.h"
#include "transform/rvxfftd_short.h"
#include "transform/rvxtwd.h"

inline int rvxOrderOf(int N)
{
    return __builtin_ctz(static_cast<unsigned>(N));
}

// The factors of the blocks of longer transforms, which are cached with the large
// table.
inline const double *rvxDitBlockFactors()
{
    return rvxDitFactors(rvxGetFftTwdDit(RVX_KERNEL_ORDER), RVX_KERNEL_ORDER);
}

inline const double *rvxDifBlockFactors()
{
    return rvxDifFactors(rvxGetFftTwdDif(RVX_KERNEL_ORDER), RVX_KERNEL_ORDER);
}

// For N of 16 and more.
inline FftFactors rvxDitFactorsOf(const ZCplx *twiddles, int order)
{
    if (order <= RVX_KERNEL_ORDER)
        return {rvxDitFactors(twiddles, order), nullptr};
    return {rvxDitBlockFactors(), rvxLargeFactors(twiddles, order)};
}

inline FftFactors rvxDifFactorsOf(const ZCplx *twiddles, int order)
{
    if (order <= RVX_KERNEL_ORDER)
        return {rvxDifFactors(twiddles, order), nullptr};
    return {rvxDifBlockFactors(), rvxLargeFactors(twiddles, order)};
}

// Joins kernels of 512 points, finished one after the other, as soon as all that a
// sweep needs is there: short transforms are joined while they are in the cache.
// Runs.block(start) makes a kernel, Runs.sweep(start, sweep) joins, and
// Runs.lastSweep(sweep) makes the result.
template <typename Runs>
void rvxMergeBlocks(Runs runs, int N, const double *factors)
{
    Sweep sweeps[RVX_MAX_SWEEPS];
    const int count = rvxPlanSweeps(rvxOrderOf(N), factors, sweeps);
    for (int start = 0; start < N; start += RVX_KERNEL_LEN) {
        runs.block(start);
        const int end = start + RVX_KERNEL_LEN;
        for (int s = 0; s < count - 1 && end % sweeps[s].len() == 0; ++s)
            runs.sweep(end - sweeps[s].len(), sweeps[s]);
    }
    runs.lastSweep(sweeps[count - 1]);
}

// The mirror image.
template <typename Runs>
void rvxSplitBlocks(Runs runs, int N, const double *factors)
{
    Sweep sweeps[RVX_MAX_SWEEPS];
    const int count = rvxPlanSweeps(rvxOrderOf(N), factors, sweeps);
    runs.firstSweep(sweeps[count - 1]);
    for (int start = 0; start < N; start += RVX_KERNEL_LEN) {
        for (int s = count - 2; s >= 0; --s)
            if (start % sweeps[s].len() == 0)
                runs.sweep(start, sweeps[s]);
        runs.block(start);
    }
}

#endif
