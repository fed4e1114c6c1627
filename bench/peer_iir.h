// Recursive filters as most programs have them.

#ifndef RVX_BENCH_PEER_IIR_H
#define RVX_BENCH_PEER_IIR_H

#include "rvx.h"

// The recurrences of the library, written down: any order, any number of sections.
namespace loop {
void direct(const double *b, const double *a, int order, double *d, const double *x, double *y,
            int n);
void direct(const ZCplx *b, const ZCplx *a, int order, ZCplx *d, const ZCplx *x, ZCplx *y, int n);
void cascade(const double *sections, int count, double *d, const double *x, double *y, int n);
void cascade(const ZCplx *sections, int count, ZCplx *d, const ZCplx *x, ZCplx *y, int n);
// Order 2 alone, its two past values in registers.
void order2(const double *b, const double *a, double *d, const double *x, double *y, int n);
} // namespace loop

// The way of the common tool: direct form II transposed with the past in memory,
// in the direct form by one pointer per array, in cascades as rows of six taps,
// each sample through all sections.
namespace classic {
void direct(const double *b, const double *a, int order, double *d, const double *x, double *y,
            int n);
void cascade(const double *sections, int count, double *d, const double *x, double *y, int n);
} // namespace classic

#endif
