// Convolutions as a careful program has them, with fused operations and sums in any
// order.

#ifndef RVX_BENCH_PEER_CONV_H
#define RVX_BENCH_PEER_CONV_H

#include "rvx.h"

namespace fast {

// y[n] = sum of x[i] h[n-i]. The scratch holds xLen + 2 hLen + 64 elements.
void conv(const double *x, int xLen, const double *h, int hLen, double *y, double *scratch);
void conv(const ZCplx *x, int xLen, const ZCplx *h, int hLen, ZCplx *y, ZCplx *scratch);
void conv(const ZCplx *x, int xLen, const double *h, int hLen, ZCplx *y, ZCplx *scratch);
void conv(const double *x, int xLen, const ZCplx *h, int hLen, ZCplx *y, double *scratch);

// dst *= src, for spectra.
void multiply(const ZCplx *src, ZCplx *dst, int n);

} // namespace fast

#endif
