// Sines and cosines of equal steps around the circle.

#ifndef RVXTWD_CIRCLE_H
#define RVXTWD_CIRCLE_H

#include "rvx.h"

// sine[i] = sin(2 pi i / N) for 0 <= i <= N/4, N being 2^order. Past the eighth it
// is the cosine of the complement, so sine[N/4] is 1.
void rvxFillSineQuarter(double *sine, int order);

// tbl[k] = W(N,k) for 0 <= k < N. Nothing is taken from symmetry: where the circle
// crosses an axis, the values show that the double 2 pi is not the true one.
void rvxFillCircle(ZCplx *tbl, int order);

// Of these the ones between the quarters q and q + 1 alone: p[j] = W(N, q N/4 + j) for
// 0 < j < N/4. order >= 3.
void rvxFillCircleQuarter(ZCplx *p, int order, int q);

#endif
