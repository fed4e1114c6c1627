// The record of a FIR filter: its stored taps, delay line and phase table.

#ifndef RVXFIRH_STATE_H
#define RVXFIRH_STATE_H

#include "rvx.h"

// One-sample calls work ahead on so many outputs; their sums stand behind the delay
// line.
constexpr int RVX_FIR_AHEAD = 16;

// Initialises *statePtr, releasing the arrays of a live state first. All arguments
// but the values, which may be null for zeros, are known to be good. Gives 1, or 0
// where memory is missing; the state is then not initialised and owns nothing.
template <typename Tap, typename Sample>
int rvxFirStateInit(const Tap *tapVals, int tapsLen, const Sample *dlyVals, int upFactor,
                    int upPhase, int downFactor, int downPhase, rvxFirState *statePtr);

// Releases the arrays of a live state, which is then not initialised.
void rvxFirStateFree(rvxFirState *statePtr);

// Fills phaseTable of a multi-rate state; does nothing on a single-rate one.
void rvxFirBuildPhaseTable(rvxFirState *statePtr);

// The stores are for states whose window stands at its base: sums that one-sample
// calls have begun ahead keep the values that were there.

// Bring tapVals into stored order; null stores zeros.
void rvxdFirSetTaps(const double *tapVals, rvxFirState *statePtr);
void rvxzFirSetTaps(const ZCplx *tapVals, rvxFirState *statePtr);

// Copy dlyVals to the current window; null stores zeros.
void rvxdFirSetDlyl(const double *dlyVals, rvxFirState *statePtr);
void rvxzFirSetDlyl(const ZCplx *dlyVals, rvxFirState *statePtr);

#endif
