// Correlations as a careful program has them, with fused operations and sums in any
// order.

#ifndef RVX_BENCH_PEER_CORR_H
#define RVX_BENCH_PEER_CORR_H

#include "rvx.h"

namespace fast {

// dst[j] = sum of conj(a[i]) * b[i + j] for 0 <= i < n and 0 <= j < 16; b has n + 15
// elements.
void corr16(const double *a, const double *b, int n, double *dst);
void corr16(const ZCplx *a, const ZCplx *b, int n, ZCplx *dst);
void corr16(const double *a, const ZCplx *b, int n, ZCplx *dst);
void corr16(const ZCplx *a, const double *b, int n, ZCplx *dst);

// acc += conj(x) * y, for spectra.
void addProducts(const ZCplx *x, const ZCplx *y, ZCplx *acc, int n);

} // namespace fast

#endif
