#include "peer_arith.h"

#include <cstring>

namespace loop {

void fill(double val, double *dst, int n)
{
    for (int i = 0; i < n; ++i)
        dst[i] = val;
}

void fill(ZCplx val, ZCplx *dst, int n)
{
    for (int i = 0; i < n; ++i)
        dst[i] = val;
}

void copy(const double *src, double *dst, int n)
{
    std::memcpy(dst, src, static_cast<std::size_t>(n) * sizeof *dst);
}

void add1(double val, double *dst, int n)
{
    for (int i = 0; i < n; ++i)
        dst[i] += val;
}

void add2(const double *__restrict src, double *__restrict dst, int n)
{
    for (int i = 0; i < n; ++i)
        dst[i] += src[i];
}

void add3(const double *__restrict a, const double *__restrict b, double *__restrict dst, int n)
{
    for (int i = 0; i < n; ++i)
        dst[i] = a[i] + b[i];
}

void mpy1(double val, double *dst, int n)
{
    for (int i = 0; i < n; ++i)
        dst[i] *= val;
}

void mpy2(const double *__restrict src, double *__restrict dst, int n)
{
    for (int i = 0; i < n; ++i)
        dst[i] *= src[i];
}

void mpy3(const double *__restrict a, const double *__restrict b, double *__restrict dst, int n)
{
    for (int i = 0; i < n; ++i)
        dst[i] = a[i] * b[i];
}

static inline ZCplx product(ZCplx p, ZCplx q)
{
    return {p.re * q.re - p.im * q.im, p.im * q.re + p.re * q.im};
}

void add1(ZCplx val, ZCplx *dst, int n)
{
    for (int i = 0; i < n; ++i)
        dst[i] = {dst[i].re + val.re, dst[i].im + val.im};
}

void mpy1(ZCplx val, ZCplx *dst, int n)
{
    for (int i = 0; i < n; ++i)
        dst[i] = product(dst[i], val);
}

void mpy2(const ZCplx *__restrict src, ZCplx *__restrict dst, int n)
{
    for (int i = 0; i < n; ++i)
        dst[i] = product(dst[i], src[i]);
}

void mpy3(const ZCplx *__restrict a, const ZCplx *__restrict b, ZCplx *__restrict dst, int n)
{
    for (int i = 0; i < n; ++i)
        dst[i] = product(b[i], a[i]);
}

} // namespace loop
