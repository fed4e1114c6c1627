// FIR filters as a careful program has them: several outputs side by side, with
// fused operations and sums in any order.

#ifndef RVX_BENCH_PEER_FIR_H
#define RVX_BENCH_PEER_FIR_H

#include "rvx.h"

namespace fast {

// out[i] = sum of taps[k] * window[i + k] for 0 <= i < n, a multiple of 32.
void fir(const double *taps, int tapsLen, const double *window, double *out, int n);
void fir(const ZCplx *taps, int tapsLen, const ZCplx *window, ZCplx *out, int n);
void fir(const ZCplx *taps, int tapsLen, const double *window, ZCplx *out, int n);
void fir(const double *taps, int tapsLen, const ZCplx *window, ZCplx *out, int n);

// One row of a polyphase filter per output of a step; rows as the library has them.
void polyphase(const rvxFirState *rates, const double *window, double *out, int steps);

// A ring of tapsLen samples, each written twice, so that the last tapsLen samples
// are always contiguous.
struct Ring {
    const double *taps;
    int tapsLen;
    double *samples; // 2 * tapsLen
    int at;
};

double fir(Ring *ring, double sample);

} // namespace fast

#endif
