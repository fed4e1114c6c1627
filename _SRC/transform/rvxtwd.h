// The tables of the Fourier transforms, cached in the calling thread's record.
//
// N is 2^order and W(N,k) = (cos(2 pi k / N), -sin(2 pi k / N)).

#ifndef RVXTWD_H
#define RVXTWD_H

#include "rvx.h"

// The table of an order, built on first use. Null without a report when order is
// outside 0..31 or there is no memory. Valid on the calling thread until released.
const ZCplx *rvxGetFftTwdLarge(int order);  // W(N,k) of a quarter circle
const ZCplx *rvxGetFftTwdDit(int order);    // for rvxFftDit and rvxrFftDit
const ZCplx *rvxGetFftTwdDif(int order);    // for rvxFftDif and rvxrFftDif
const ZCplx *rvxGetRealTwistTbl(int order); // for rvxRealFftPost
const ZCplx *rvxGetCcsTwistTbl(int order);  // for rvxCcsFftPre

// Each releases one table; an order outside 0..31 is ignored. Releasing a Dit or
// Dif table above order 9 releases the large table and that form's order 9 too.
void rvxFreeFftTwdLarge(int order);
void rvxFreeFftTwdDit(int order);
void rvxFreeFftTwdDif(int order);
void rvxFreeRealTwistTbl(int order);
void rvxFreeCcsTwistTbl(int order);

// Entry i of the small tables, 0 to 4; another i is ignored.
void rvxFreeSmallTable(int i);

// All tables that the transforms use.
void rvxFreeFftTables();

// These, the full-circle tables, the list by length and small tables 0 to 3.
void rvxFreeTwdTables();

// W(N,k) for the full circle, N values, cached; the stored status decides too: a
// negative one gives null. Reports a bad order and missing memory.
const ZCplx *rvxzGetFftTwdTbl(int order);
// The same for callers that go another way without it: null without a report, and
// the stored status does not matter.
const ZCplx *rvxFindFftTwdTbl(int order);
void rvxzCalcFftTwdTbl(ZCplx *tbl, int order);

#endif
