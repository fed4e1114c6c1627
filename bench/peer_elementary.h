// The peers of the elementary functions: loops over the C library's functions, as they
// are and in its vector forms, and over those of SLEEF.

#ifndef RVX_BENCH_PEER_ELEMENTARY_H
#define RVX_BENCH_PEER_ELEMENTARY_H

// Compiled without fast-math: one call for each element.
void scalarExp(const double *x, double *y, int n);
void scalarLn(const double *x, double *y, int n);
void scalarLg(const double *x, double *y, int n);
void scalarArctan(const double *x, double *y, int n);

// Compiled with fast-math: calls of libmvec.
void vectorExp(const double *x, double *y, int n);
void vectorLn(const double *x, double *y, int n);
void vectorLg(const double *x, double *y, int n);
void vectorArctan(const double *x, double *y, int n);
void vectorDivide(const double *a, const double *b, double *y, int n);
void vectorDivideBy(double val, double *y, int n);

// Within one unit in the last place; n is a multiple of 4.
void sleefExp(const double *x, double *y, int n);
void sleefLn(const double *x, double *y, int n);
void sleefLg(const double *x, double *y, int n);
void sleefArctan(const double *x, double *y, int n);

#endif
