// One sample at a time, of which blocks are made.

#ifndef RVXRAND_H
#define RVXRAND_H

#include "rvx.h"

// The next sample; a complex one takes two, the real part first. Check: state null,
// which gives 0.
double rvxdRandUni(rvxRandUniState *state);
ZCplx rvxzRandUni(rvxRandUniState *state);
double rvxdRandGaus(rvxRandGausState *state);
ZCplx rvxzRandGaus(rvxRandGausState *state);

#endif
