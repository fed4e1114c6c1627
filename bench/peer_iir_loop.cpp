#include "peer_iir.h"

namespace {

inline ZCplx times(ZCplx a, ZCplx b)
{
    return {a.re * b.re - a.im * b.im, a.im * b.re + a.re * b.im};
}

inline ZCplx plus(ZCplx a, ZCplx b)
{
    return {a.re + b.re, a.im + b.im};
}

inline ZCplx minus(ZCplx a, ZCplx b)
{
    return {a.re - b.re, a.im - b.im};
}

} // namespace

namespace loop {

void direct(const double *b, const double *a, int order, double *d, const double *x, double *y,
            int n)
{
    for (int k = 0; k < n; ++k) {
        const double in = x[k];
        const double out = b[0] * in + d[0];
        for (int i = 1; i < order; ++i)
            d[i - 1] = (b[i] * in - a[i] * out) + d[i];
        d[order - 1] = b[order] * in - a[order] * out;
        y[k] = out;
    }
}

void direct(const ZCplx *b, const ZCplx *a, int order, ZCplx *d, const ZCplx *x, ZCplx *y, int n)
{
    for (int k = 0; k < n; ++k) {
        const ZCplx in = x[k];
        const ZCplx out = plus(times(b[0], in), d[0]);
        for (int i = 1; i < order; ++i)
            d[i - 1] = plus(minus(times(b[i], in), times(a[i], out)), d[i]);
        d[order - 1] = minus(times(b[order], in), times(a[order], out));
        y[k] = out;
    }
}

// b0, b1, b2, 1, a1, a2 of each section.
void cascade(const double *sections, int count, double *d, const double *x, double *y, int n)
{
    for (int k = 0; k < n; ++k) {
        double v = x[k];
        for (int q = 0; q < count; ++q) {
            const double *s = sections + 6 * q;
            double *past = d + 2 * q;
            const double w = v - s[4] * past[0] - s[5] * past[1];
            v = s[0] * w + s[1] * past[0] + s[2] * past[1];
            past[1] = past[0];
            past[0] = w;
        }
        y[k] = v;
    }
}

void cascade(const ZCplx *sections, int count, ZCplx *d, const ZCplx *x, ZCplx *y, int n)
{
    for (int k = 0; k < n; ++k) {
        ZCplx v = x[k];
        for (int q = 0; q < count; ++q) {
            const ZCplx *s = sections + 6 * q;
            ZCplx *past = d + 2 * q;
            const ZCplx w = minus(minus(v, times(s[4], past[0])), times(s[5], past[1]));
            v = plus(plus(times(s[0], w), times(s[1], past[0])), times(s[2], past[1]));
            past[1] = past[0];
            past[0] = w;
        }
        y[k] = v;
    }
}

void order2(const double *b, const double *a, double *d, const double *x, double *y, int n)
{
    const double b0 = b[0], b1 = b[1], b2 = b[2], a1 = a[1], a2 = a[2];
    double d0 = d[0], d1 = d[1];
    for (int k = 0; k < n; ++k) {
        const double in = x[k];
        const double out = b0 * in + d0;
        d0 = b1 * in - a1 * out + d1;
        d1 = b2 * in - a2 * out;
        y[k] = out;
    }
    d[0] = d0;
    d[1] = d1;
}

} // namespace loop

namespace classic {

void direct(const double *b, const double *a, int order, double *d, const double *x, double *y,
            int n)
{
    for (int k = 0; k < n; ++k) {
        const double *tapB = b;
        const double *tapA = a;
        double *past = d;
        y[k] = *past + *tapB * x[k];
        ++tapB;
        ++tapA;
        for (int i = 0; i < order - 1; ++i) {
            *past = past[1] + x[k] * *tapB - y[k] * *tapA;
            ++tapB;
            ++tapA;
            ++past;
        }
        *past = x[k] * *tapB - y[k] * *tapA;
    }
}

void cascade(const double *sections, int count, double *d, const double *x, double *y, int n)
{
    for (int k = 0; k < n; ++k) {
        double in = x[k];
        for (int q = 0; q < count; ++q) {
            const double *s = sections + 6 * q;
            double *past = d + 2 * q;
            const double out = s[0] * in + past[0];
            past[0] = s[1] * in - s[4] * out + past[1];
            past[1] = s[2] * in - s[5] * out;
            in = out;
        }
        y[k] = in;
    }
}

} // namespace classic
