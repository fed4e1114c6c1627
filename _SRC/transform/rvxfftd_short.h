// Transforms of 2, 4 and 8 points, straight through, one complex value in each
// pair of doubles. No instruction set makes these faster than another does, so
// they are not kernels and cost no look-up.

#ifndef RVXFFTD_SHORT_H
#define RVXFFTD_SHORT_H

#include "frame/rvxkernel.h"
#include "rvx.h"

// Transforms N of 2, 4 or 8 interleaved values, between natural and bit-reversed
// order as told; src may be dst.
void rvxFftShort(const ZCplx *src, ZCplx *dst, int N, bool inverse, bool reversedInput,
                 bool reversedOutput, double scale);

// The forward transform of values in two arrays; exchanged arrays give the inverse.
void rvxrFftShort(const double *reSrc, const double *imSrc, double *reDst, double *imDst, int N,
                  bool reversedInput, bool reversedOutput, double scale);

#endif
