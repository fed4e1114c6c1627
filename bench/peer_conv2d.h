// A direct two-dimensional convolution that a compiler may rearrange.

#ifndef RVX_BENCH_PEER_CONV2D_H
#define RVX_BENCH_PEER_CONV2D_H

namespace fast {

// The full convolution of n by n values with a kernel of 3 by 3 or 7 by 7, twice the
// kernel's size at least.
void convolve(const double *x, int n, const double *kernel, int kernelSize, double *y);

} // namespace fast

#endif
