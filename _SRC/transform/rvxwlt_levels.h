// Wavelet transforms level by level. States are good ones; nothing here reports.

#ifndef RVXWLT_LEVELS_H
#define RVXWLT_LEVELS_H

#include "rvx.h"

// One level of decomposition: n samples x to (n + 1) / 2 values each of low and high.
using RvxWtSplit = void(const rvxWtState &state, const double *x, int n, double *low, double *high);

// One level of reconstruction: (n + 1) / 2 values each of low and high to n samples y.
using RvxWtJoin = void(const rvxWtState &state, const double *low, const double *high, int n,
                       double *y);

// All levels, one at least, by the given step.
void rvxWtSplitLevels(const rvxWtState &state, const double *src, double *dst, RvxWtSplit *split);
void rvxWtJoinLevels(const rvxWtState &state, const double *src, double *dst, RvxWtJoin *join);

// By the filters of the state.
RvxWtSplit rvxWtSplitByFilters;
RvxWtJoin rvxWtJoinByFilters;

// By sums and differences of neighbours; the pairs start at x[0], or, shifted, at
// x[n - 1] and x[0].
RvxWtSplit rvxWtSplitHaar, rvxWtSplitShiftedHaar;
RvxWtJoin rvxWtJoinHaar, rvxWtJoinShiftedHaar;

#endif
