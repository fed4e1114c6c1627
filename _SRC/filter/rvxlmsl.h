// The low level of the adaptive filters: their stores and their steps, on the two
// halves of a state record.

#ifndef RVXLMSL_H
#define RVXLMSL_H

#include "rvx.h"

// The taps as they come, or zeros where values is null; then the taps are ready.
void rvxdLmslSetTaps(const double *values, rvxLmsTapState *taps);
void rvxzLmslSetTaps(const ZCplx *values, rvxLmsTapState *taps);

// dlylLen - 1 samples, oldest first, or zeros where values is null; then the delay
// line is ready.
void rvxdLmslSetDlyl(const double *values, rvxLmsDlyState *dly);
void rvxzLmslSetDlyl(const ZCplx *values, rvxLmsDlyState *dly);

// One step: the taps adapted with err, then sample in and one output.
double rvxdLmsl(rvxLmsTapState *taps, rvxLmsDlyState *dly, double sample, double err);
ZCplx rvxzLmsl(rvxLmsTapState *taps, rvxLmsDlyState *dly, ZCplx sample, ZCplx err);
ZCplx rvxdzLmsl(rvxLmsTapState *taps, rvxLmsDlyState *dly, double sample, ZCplx err);

// One decimation step: downFactor samples in and one output.
double rvxdbLmsl(rvxLmsTapState *taps, rvxLmsDlyState *dly, const double *inSamps, double err);
ZCplx rvxzbLmsl(rvxLmsTapState *taps, rvxLmsDlyState *dly, const ZCplx *inSamps, ZCplx err);
ZCplx rvxdzbLmsl(rvxLmsTapState *taps, rvxLmsDlyState *dly, const double *inSamps, ZCplx err);

// How many samples of the delay line a step may fetch ahead.
constexpr int RVX_LMS_REACH = 16;

// The length that the delay line needs in memory, at least dlylLen: one step of
// either form stays inside it, whatever form the state was made for.
inline long long rvxLmslRoom(const rvxLmsTapState *taps)
{
    const long long errDly = taps->errDly > 0 ? taps->errDly : 0;
    return taps->tapsLen + errDly + taps->downFactor + RVX_LMS_REACH;
}

#endif
