#include "peer_fir.h"

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

// Eight vectors of sums over consecutive doubles, `stride` doubles from tap to tap.
template <int Stride>
void firFlat(const double *taps, int tapsLen, const double *x, double *out, int n)
{
    for (int i = 0; i < n; i += 32) {
        Vector sums[8] = {};
        for (int k = 0; k < tapsLen; ++k)
            for (int v = 0; v < 8; ++v)
                sums[v] += taps[k] * load(x + i + Stride * k + 4 * v);
        for (int v = 0; v < 8; ++v)
            store(out + i + 4 * v, sums[v]);
    }
}

double dot(const double *a, const double *b, int n)
{
    double sum = 0.0;
    for (int k = 0; k < n; ++k)
        sum += a[k] * b[k];
    return sum;
}

} // namespace

void fir(const double *taps, int tapsLen, const double *window, double *out, int n)
{
    firFlat<1>(taps, tapsLen, window, out, n);
}

void fir(const double *taps, int tapsLen, const ZCplx *window, ZCplx *out, int n)
{
    firFlat<2>(taps, tapsLen, &window->re, &out->re, 2 * n);
}

// The products with the taps' real and imaginary parts in sums of their own, joined
// once at the end: no shuffles on the way.
void fir(const ZCplx *taps, int tapsLen, const ZCplx *window, ZCplx *out, int n)
{
    for (int i = 0; i < n; i += 8) {
        Vector byRe[4] = {}, byIm[4] = {};
        for (int k = 0; k < tapsLen; ++k)
            for (int v = 0; v < 4; ++v) {
                const Vector x = load(&window[i + k + 2 * v].re);
                byRe[v] += taps[k].re * x;
                byIm[v] += taps[k].im * x;
            }
        for (int v = 0; v < 4; ++v) {
            const Vector turned = __builtin_shufflevector(byIm[v], byIm[v], 1, 0, 3, 2);
            store(&out[i + 2 * v].re, byRe[v] + turned * Vector{-1.0, 1.0, -1.0, 1.0});
        }
    }
}

void fir(const ZCplx *taps, int tapsLen, const double *window, ZCplx *out, int n)
{
    for (int i = 0; i < n; i += 16) {
        Vector re[4] = {}, im[4] = {};
        for (int k = 0; k < tapsLen; ++k)
            for (int v = 0; v < 4; ++v) {
                const Vector x = load(window + i + k + 4 * v);
                re[v] += taps[k].re * x;
                im[v] += taps[k].im * x;
            }
        for (int v = 0; v < 4; ++v) {
            store(&out[i + 4 * v].re, __builtin_shufflevector(re[v], im[v], 0, 4, 1, 5));
            store(&out[i + 4 * v + 2].re, __builtin_shufflevector(re[v], im[v], 2, 6, 3, 7));
        }
    }
}

void polyphase(const rvxFirState *rates, const double *window, double *out, int steps)
{
    const double *taps = static_cast<const double *>(rates->taps);
    const int up = rates->upFactor, down = rates->downFactor;
    for (int m = 0; m < steps; ++m)
        for (int i = 0; i < up; ++i) {
            const rvxFirPhaseRow &row = rates->phaseTable[i];
            out[m * up + i] =
                dot(taps + row.tapOffset, window + m * down + row.dlyOffset, row.numTaps);
        }
}

double fir(Ring *ring, double sample)
{
    ring->samples[ring->at] = ring->samples[ring->at + ring->tapsLen] = sample;
    if (++ring->at == ring->tapsLen)
        ring->at = 0;
    return dot(ring->taps, ring->samples + ring->at, ring->tapsLen);
}

} // namespace fast
