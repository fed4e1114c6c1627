#include "peer_elementary.h"

#include <cmath>

void vectorExp(const double *x, double *y, int n)
{
    for (int i = 0; i < n; ++i)
        y[i] = std::exp(x[i]);
}

void vectorLn(const double *x, double *y, int n)
{
    for (int i = 0; i < n; ++i)
        y[i] = std::log(x[i]);
}

void vectorLg(const double *x, double *y, int n)
{
    for (int i = 0; i < n; ++i)
        y[i] = std::log10(x[i]);
}

void vectorArctan(const double *x, double *y, int n)
{
    for (int i = 0; i < n; ++i)
        y[i] = std::atan(x[i]);
}

void vectorDivide(const double *a, const double *b, double *y, int n)
{
    for (int i = 0; i < n; ++i)
        y[i] = a[i] / b[i];
}

void vectorDivideBy(double val, double *y, int n)
{
    for (int i = 0; i < n; ++i)
        y[i] = y[i] / val;
}

#if defined(RVX_HAVE_SLEEF) && defined(__AVX2__) && defined(__FMA__)

#include <immintrin.h>
#include <sleef.h>

template <auto function>
static void fours(const double *x, double *y, int n)
{
    for (int i = 0; i < n; i += 4)
        _mm256_storeu_pd(y + i, function(_mm256_loadu_pd(x + i)));
}

void sleefExp(const double *x, double *y, int n)
{
    fours<Sleef_expd4_u10avx2>(x, y, n);
}

void sleefLn(const double *x, double *y, int n)
{
    fours<Sleef_logd4_u10avx2>(x, y, n);
}

void sleefLg(const double *x, double *y, int n)
{
    fours<Sleef_log10d4_u10avx2>(x, y, n);
}

void sleefArctan(const double *x, double *y, int n)
{
    fours<Sleef_atand4_u10avx2>(x, y, n);
}

#endif
