// A Hann window as most programs have it: a cosine per element, and a window that
// was stored before.

#ifndef RVX_BENCH_PEER_WIN_H
#define RVX_BENCH_PEER_WIN_H

#include "rvx.h"

namespace loop {
void hannByCosines(double *vec, int n);
void hannByCosines(ZCplx *vec, int n);
void hannStored(const double *weights, double *vec, int n);
void hannStored(const double *weights, ZCplx *vec, int n);
} // namespace loop

#endif
