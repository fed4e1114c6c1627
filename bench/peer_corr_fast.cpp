#include "peer_corr.h"

namespace fast {

namespace {

using Vector = double __attribute__((vector_size(32)));
typedef double VectorMem __attribute__((vector_size(32), aligned(8), may_alias));

Vector load(const double *p)
{
    return *reinterpret_cast<const VectorMem *>(p);
}

void store(double *p, Vector v)
{
    *reinterpret_cast<VectorMem *>(p) = v;
}

void storeInterleaved(ZCplx *p, Vector re, Vector im)
{
    store(&p[0].re, __builtin_shufflevector(re, im, 0, 4, 1, 5));
    store(&p[2].re, __builtin_shufflevector(re, im, 2, 6, 3, 7));
}

} // namespace

// Even and odd i have sums of their own, so that eight chains run at once.
void corr16(const double *a, const double *b, int n, double *dst)
{
    Vector even[4] = {}, odd[4] = {};
    int i = 0;
    for (; i + 2 <= n; i += 2)
        for (int v = 0; v < 4; ++v) {
            even[v] += a[i] * load(b + i + 4 * v);
            odd[v] += a[i + 1] * load(b + i + 1 + 4 * v);
        }
    for (; i < n; ++i)
        for (int v = 0; v < 4; ++v)
            even[v] += a[i] * load(b + i + 4 * v);
    for (int v = 0; v < 4; ++v)
        store(dst + 4 * v, even[v] + odd[v]);
}

// The products with the parts of a in sums of their own, joined once at the end.
void corr16(const ZCplx *a, const ZCplx *b, int n, ZCplx *dst)
{
    for (int tile = 0; tile < 16; tile += 8) {
        Vector byRe[4] = {}, byIm[4] = {};
        for (int i = 0; i < n; ++i)
            for (int v = 0; v < 4; ++v) {
                const Vector values = load(&b[i + tile + 2 * v].re);
                byRe[v] += a[i].re * values;
                byIm[v] += a[i].im * values;
            }
        for (int v = 0; v < 4; ++v) {
            const Vector turned = __builtin_shufflevector(byIm[v], byIm[v], 1, 0, 3, 2);
            store(&dst[tile + 2 * v].re, byRe[v] + turned * Vector{1.0, -1.0, 1.0, -1.0});
        }
    }
}

void corr16(const double *a, const ZCplx *b, int n, ZCplx *dst)
{
    Vector sums[8] = {};
    for (int i = 0; i < n; ++i)
        for (int v = 0; v < 8; ++v)
            sums[v] += a[i] * load(&b[i + 2 * v].re);
    for (int v = 0; v < 8; ++v)
        store(&dst[2 * v].re, sums[v]);
}

void corr16(const ZCplx *a, const double *b, int n, ZCplx *dst)
{
    Vector re[4] = {}, im[4] = {};
    for (int i = 0; i < n; ++i)
        for (int v = 0; v < 4; ++v) {
            const Vector values = load(b + i + 4 * v);
            re[v] += a[i].re * values;
            im[v] -= a[i].im * values;
        }
    for (int v = 0; v < 4; ++v)
        storeInterleaved(dst + 4 * v, re[v], im[v]);
}

void addProducts(const ZCplx *x, const ZCplx *y, ZCplx *acc, int n)
{
    for (int k = 0; k < n; ++k) {
        acc[k].re += x[k].re * y[k].re + x[k].im * y[k].im;
        acc[k].im += x[k].re * y[k].im - x[k].im * y[k].re;
    }
}

} // namespace fast
