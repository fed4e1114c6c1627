// A running median by fixed networks over the samples about each place, at full
// optimisation: the compiler does four places at a time. The ends are left alone.

#ifndef RVX_BENCH_PEER_MED_H
#define RVX_BENCH_PEER_MED_H

namespace loop {
void median3(const double *in, double *out, int n);
void median5(const double *in, double *out, int n);
void median9(const double *in, double *out, int n);
} // namespace loop

#endif
