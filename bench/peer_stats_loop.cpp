#include "peer_stats.h"

double extendedDot(const double *a, const double *b, int n)
{
    long double sum = 0.0L;
    for (int i = 0; i < n; ++i)
        sum += static_cast<long double>(a[i]) * static_cast<long double>(b[i]);
    return static_cast<double>(sum);
}

double loopMaxPosition(const double *x, int n)
{
    int position = 0;
    for (int i = 1; i < n; ++i)
        if (x[i] > x[position])
            position = i;
    return x[position] + position;
}

double loopMinPosition(const double *x, int n)
{
    int position = 0;
    for (int i = 1; i < n; ++i)
        if (x[i] < x[position])
            position = i;
    return x[position] + position;
}
