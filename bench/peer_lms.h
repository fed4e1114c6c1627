// Adaptive filters as a user would write them, compiled for speed alone: the delay
// line as a ring that is written twice, so that a window is always in one piece.

#ifndef RVX_BENCH_PEER_LMS_H
#define RVX_BENCH_PEER_LMS_H

#include <vector>

#include "rvx.h"

namespace fast {

template <typename Tap, typename Sample>
struct Ring {
    std::vector<Tap> taps;
    std::vector<Sample> line; // 2 * taps, the newer samples at lower places
    int newest;
    double kept, step;
};

double lms(Ring<double, double> &ring, double sample, double err);
ZCplx lms(Ring<ZCplx, ZCplx> &ring, ZCplx sample, ZCplx err);
ZCplx lms(Ring<ZCplx, double> &ring, double sample, ZCplx err);
double lms(Ring<double, double> &ring, const double *samples, int n, double err);
ZCplx lms(Ring<ZCplx, ZCplx> &ring, const ZCplx *samples, int n, ZCplx err);
ZCplx lms(Ring<ZCplx, double> &ring, const double *samples, int n, ZCplx err);

} // namespace fast

#endif
