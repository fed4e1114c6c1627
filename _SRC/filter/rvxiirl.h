// What the fronts of the recursive filters call: taps normalised in place, delay
// lines cleared, samples filtered. Each reports under its own name. All but the
// initialisers of taps do nothing while the thread's status is negative; one
// sample then gives zero.

#ifndef RVXIIRL_H
#define RVXIIRL_H

#include "rvx.h"

void rvxdIirlInit(int iirType, double *taps, int order, rvxIirTapState *tapStPtr);
void rvxzIirlInit(int iirType, ZCplx *taps, int order, rvxIirTapState *tapStPtr);
void rvxdIirlInitBq(int iirType, double *taps, int numQuads, rvxIirTapState *tapStPtr);
void rvxzIirlInitBq(int iirType, ZCplx *taps, int numQuads, rvxIirTapState *tapStPtr);

void rvxdIirlInitDlyl(const rvxIirTapState *tapStPtr, double *dlyl, rvxIirDlyState *dlyStPtr);
void rvxzIirlInitDlyl(const rvxIirTapState *tapStPtr, ZCplx *dlyl, rvxIirDlyState *dlyStPtr);

double rvxdIirl(const rvxIirTapState *tapStPtr, rvxIirDlyState *dlyStPtr, double sample);
ZCplx rvxzIirl(const rvxIirTapState *tapStPtr, rvxIirDlyState *dlyStPtr, ZCplx sample);
ZCplx rvxdzIirl(const rvxIirTapState *tapStPtr, rvxIirDlyState *dlyStPtr, double sample);
ZCplx rvxzdIirl(const rvxIirTapState *tapStPtr, rvxIirDlyState *dlyStPtr, ZCplx sample);

// With numIters 0 a filter of two or more delay elements processes one sample.
void rvxdbIirl(const rvxIirTapState *tapStPtr, rvxIirDlyState *dlyStPtr, const double *inSamps,
               double *outSamps, int numIters);
void rvxzbIirl(const rvxIirTapState *tapStPtr, rvxIirDlyState *dlyStPtr, const ZCplx *inSamps,
               ZCplx *outSamps, int numIters);
void rvxdzbIirl(const rvxIirTapState *tapStPtr, rvxIirDlyState *dlyStPtr, const double *inSamps,
                ZCplx *outSamps, int numIters);
void rvxzdbIirl(const rvxIirTapState *tapStPtr, rvxIirDlyState *dlyStPtr, const ZCplx *inSamps,
                ZCplx *outSamps, int numIters);

#endif
