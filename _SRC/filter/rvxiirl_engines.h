// The recursive filters on blocks: n samples from in to out through the delay line
// d, each result with the bits of one-sample steps. out may be in. n may be 0.

#ifndef RVXIIRL_ENGINES_H
#define RVXIIRL_ENGINES_H

#include "rvx.h"

void rvxIirDirect(const double *taps, int order, double *d, const double *in, double *out, int n);
void rvxIirDirect(const ZCplx *taps, int order, ZCplx *d, const ZCplx *in, ZCplx *out, int n);
void rvxIirDirect(const ZCplx *taps, int order, ZCplx *d, const double *in, ZCplx *out, int n);
void rvxIirDirect(const double *taps, int order, ZCplx *d, const ZCplx *in, ZCplx *out, int n);

void rvxIirCascade(const double *taps, int numQuads, double *d, const double *in, double *out,
                   int n);
void rvxIirCascade(const ZCplx *taps, int numQuads, ZCplx *d, const ZCplx *in, ZCplx *out, int n);
void rvxIirCascade(const ZCplx *taps, int numQuads, ZCplx *d, const double *in, ZCplx *out, int n);
void rvxIirCascade(const double *taps, int numQuads, ZCplx *d, const ZCplx *in, ZCplx *out, int n);

#endif
