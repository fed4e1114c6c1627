#include "peer_elementary.h"

#include <cmath>

void scalarExp(const double *x, double *y, int n)
{
    for (int i = 0; i < n; ++i)
        y[i] = std::exp(x[i]);
}

void scalarLn(const double *x, double *y, int n)
{
    for (int i = 0; i < n; ++i)
        y[i] = std::log(x[i]);
}

void scalarLg(const double *x, double *y, int n)
{
    for (int i = 0; i < n; ++i)
        y[i] = std::log10(x[i]);
}

void scalarArctan(const double *x, double *y, int n)
{
    for (int i = 0; i < n; ++i)
        y[i] = std::atan(x[i]);
}
