// Triangles in a plain loop, by the library's steps.

#ifndef RVX_BENCH_PEER_TRNGL_H
#define RVX_BENCH_PEER_TRNGL_H

#include "rvx.h"

namespace loop {
void triangle(rvxdTrnglState *state, double *y, int n);
void triangle(rvxzTrnglState *state, ZCplx *y, int n);
} // namespace loop

#endif
