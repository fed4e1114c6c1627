// The recurrence of one bin in a plain loop: rounded step by step as the library's, and
// with the fused operations that a compiler makes of it where it may.

#ifndef RVX_BENCH_PEER_GRTZL_H
#define RVX_BENCH_PEER_GRTZL_H

#include "rvx.h"

namespace loop {
ZCplx goertzel(rvxdGoertzState *state, const double *x, int n);
ZCplx goertzel(rvxzGoertzState *state, const ZCplx *x, int n);
ZCplx goertzelFused(rvxdGoertzState *state, const double *x, int n);
ZCplx goertzelFused(rvxzGoertzState *state, const ZCplx *x, int n);
} // namespace loop

#endif
