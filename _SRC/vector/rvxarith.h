// Block operations that other modules call and that are not exported.

#ifndef RVXARITH_H
#define RVXARITH_H

#include "rvx.h"

// Both parts of each element cleared.
void rvxzbZero(ZCplx *dst, int n);

// dst[i] = src[i], from the last element down to the first.
void rvxzbCopy(const ZCplx *src, ZCplx *dst, int n);

#endif
