// Wavelet transforms: what reaches past the exported functions.

#ifndef RVXWLT_H
#define RVXWLT_H

#include "rvx.h"

// Initialises for a length that need not be a power of two, up to 2^30, and stores the
// number of coefficients in *len_dec. Reports under its own name. A refused call leaves
// the record as it was.
void rvxdWtInitLen(int par1, int par2, int len, int level, rvxWtState *wtState, int wtType,
                   int *len_dec);

#endif
