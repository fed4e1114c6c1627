// Number conversions as a user would write the loops, for flags to vectorise freely.

#ifndef RVX_BENCH_PEER_CONVERT_H
#define RVX_BENCH_PEER_CONVERT_H

// Rounded to nearest or truncated, and limited to the range; with `misfits` what was
// outside of it is counted too.
enum class LoopRounding { nearest, trunc };

template <typename Int>
void loopToInts(const double *src, Int *dst, int n, double scale, LoopRounding rounding);
template <typename Int>
int loopToIntsCounted(const double *src, Int *dst, int n, double scale, LoopRounding rounding);
// Without limits: what does not fit is not of interest.
template <typename Int>
void loopToIntsFree(const double *src, Int *dst, int n, double scale, LoopRounding rounding);
template <typename Int>
void loopFromInts(const Int *src, double *dst, int n, double scale);

#endif
