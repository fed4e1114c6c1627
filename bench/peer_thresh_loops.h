// The loops, which are compiled with two sets of flags.

#ifndef RVX_BENCH_PEER_THRESH_LOOPS_H
#define RVX_BENCH_PEER_THRESH_LOOPS_H

#include <cmath>

#include "peer_thresh.h"

// dst[i] = of(src[i])
template <typename T, typename Of>
inline void each(const T *__restrict src, T *__restrict dst, int n, Of of)
{
    for (int i = 0; i < n; ++i)
        dst[i] = of(src[i]);
}

inline ZCplx rootOf(ZCplx z)
{
    const double r = std::sqrt(z.re * z.re + z.im * z.im);
    const double t = std::sqrt((r + std::fabs(z.re)) * 0.5);
    const double w = t > 0.0 ? std::fabs(z.im) * 0.5 / t : 0.0;
    return {z.re < 0.0 ? w : t, std::copysign(z.re < 0.0 ? t : w, z.im)};
}

inline ZCplx squareOf(ZCplx z)
{
    return {(z.re + z.im) * (z.re - z.im), 2.0 * z.re * z.im};
}

inline ZCplx raised(ZCplx z, double squared)
{
    const double p = z.re * z.re + z.im * z.im;
    const double s = p < squared ? std::sqrt(squared / p) : 1.0;
    return {z.re * s, z.im * s};
}

inline ZCplx lowered(ZCplx z, double squared)
{
    const double p = z.re * z.re + z.im * z.im;
    const double s = p > squared ? std::sqrt(squared / p) : 1.0;
    return {z.re * s, z.im * s};
}

inline double inverseOf(double x, double thresh, double limit)
{
    return std::fabs(x) <= thresh ? std::copysign(limit, x) : 1.0 / x;
}

inline ZCplx inverseOf(ZCplx z, double greatest)
{
    double d = 1.0 / (z.re * z.re + z.im * z.im);
    d = greatest < d ? std::sqrt(d * greatest) : d;
    return {z.re * d, -d * z.im};
}

#define RVX_BENCH_THRESH_BODIES                                                                    \
    void root(const double *src, double *dst, int n)                                               \
    {                                                                                              \
        each(src, dst, n, [](double x) { return std::sqrt(x); });                                  \
    }                                                                                              \
    void root(const ZCplx *src, ZCplx *dst, int n)                                                 \
    {                                                                                              \
        each(src, dst, n, [](ZCplx z) { return rootOf(z); });                                      \
    }                                                                                              \
    void square(const double *src, double *dst, int n)                                             \
    {                                                                                              \
        each(src, dst, n, [](double x) { return x * x; });                                         \
    }                                                                                              \
    void square(const ZCplx *src, ZCplx *dst, int n)                                               \
    {                                                                                              \
        each(src, dst, n, [](ZCplx z) { return squareOf(z); });                                    \
    }                                                                                              \
    void magnitude(const double *src, double *dst, int n)                                          \
    {                                                                                              \
        each(src, dst, n, [](double x) { return std::fabs(x); });                                  \
    }                                                                                              \
    void raise(const double *src, double *dst, int n, double thresh)                               \
    {                                                                                              \
        each(src, dst, n, [=](double x) { return x < thresh ? thresh : x; });                      \
    }                                                                                              \
    void raise(const ZCplx *src, ZCplx *dst, int n, double thresh)                                 \
    {                                                                                              \
        each(src, dst, n, [=](ZCplx z) { return raised(z, thresh * thresh); });                    \
    }                                                                                              \
    void lower(const double *src, double *dst, int n, double thresh)                               \
    {                                                                                              \
        each(src, dst, n, [=](double x) { return x > thresh ? thresh : x; });                      \
    }                                                                                              \
    void lower(const ZCplx *src, ZCplx *dst, int n, double thresh)                                 \
    {                                                                                              \
        each(src, dst, n, [=](ZCplx z) { return lowered(z, thresh * thresh); });                   \
    }                                                                                              \
    void invert(const double *src, double *dst, int n)                                             \
    {                                                                                              \
        each(src, dst, n, [](double x) { return 1.0 / x; });                                       \
    }                                                                                              \
    void invert(const double *src, double *dst, int n, double thresh)                              \
    {                                                                                              \
        each(src, dst, n, [=](double x) { return inverseOf(x, thresh, 1.0 / thresh); });           \
    }                                                                                              \
    void invert(const ZCplx *src, ZCplx *dst, int n, double thresh)                                \
    {                                                                                              \
        const double greatest = 1.0 / (thresh * thresh);                                           \
        each(src, dst, n, [=](ZCplx z) { return inverseOf(z, greatest); });                        \
    }

#endif
