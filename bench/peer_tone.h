// Tones in plain loops: by the library's recurrence, rounded as there; by the same with
// the fused operations that a compiler makes of it where it may; and by a cosine, or a
// cosine and a sine, per sample.

#ifndef RVX_BENCH_PEER_TONE_H
#define RVX_BENCH_PEER_TONE_H

#include "rvx.h"

namespace loop {
void tone(rvxdToneState *state, double *y, int n);
void tone(rvxzToneState *state, ZCplx *y, int n);
void toneFused(rvxdToneState *state, double *y, int n);
void toneFused(rvxzToneState *state, ZCplx *y, int n);
void toneBySines(double freq, double *y, int n);
void toneBySines(double freq, ZCplx *y, int n);
} // namespace loop

#endif
