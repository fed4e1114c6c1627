// What fills the arrays of an adaptive filter's state. Not exported.

#ifndef RVXLMSH_H
#define RVXLMSH_H

#include "rvx.h"

// As the low-level stores of the same names, on the whole record.
void rvxdLmsSetTaps(const double *values, rvxLmsState *statePtr);
void rvxzLmsSetTaps(const ZCplx *values, rvxLmsState *statePtr);
void rvxdLmsSetDlyl(const double *values, rvxLmsState *statePtr);
void rvxzLmsSetDlyl(const ZCplx *values, rvxLmsState *statePtr);

#endif
