#include "peer_conv.h"

#include <cstring>

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

// x between zeros: 32 and the taps' length before it and behind.
template <typename Element>
const Element *padded(const Element *x, int xLen, int hLen, Element *scratch)
{
    std::memset(scratch, 0, static_cast<unsigned>(hLen) * sizeof(Element));
    std::memcpy(scratch + hLen, x, static_cast<unsigned>(xLen) * sizeof(Element));
    std::memset(scratch + hLen + xLen, 0, static_cast<unsigned>(hLen + 64) * sizeof(Element));
    return scratch + hLen;
}

// Tiles of outputs in registers over the taps that meet x. `sum(n, from, to, out)`
// makes the outputs from n on.
template <int Tile, typename Out, typename Sum>
void overTiles(int xLen, int hLen, Out *y, Sum sum)
{
    const int total = xLen + hLen - 1;
    for (int n = 0; n < total; n += Tile) {
        const int from = n > xLen - 1 ? n - (xLen - 1) : 0;
        const int to = n + Tile < hLen ? n + Tile : hLen;
        if (n + Tile <= total) {
            sum(n, from, to, y + n);
            continue;
        }
        Out tile[Tile];
        sum(n, from, to, tile);
        std::memcpy(y + n, tile, static_cast<unsigned>(total - n) * sizeof(Out));
    }
}

// Eight vectors of sums, `Stride` doubles from tap to tap.
template <int Stride>
void sumFlat(const double *h, const double *x, int from, int to, double *out)
{
    Vector sums[8] = {};
    for (int j = from; j < to; ++j)
        for (int v = 0; v < 8; ++v)
            sums[v] += h[j] * load(x - Stride * j + 4 * v);
    for (int v = 0; v < 8; ++v)
        store(out + 4 * v, sums[v]);
}

} // namespace

void conv(const double *x, int xLen, const double *h, int hLen, double *y, double *scratch)
{
    const double *px = padded(x, xLen, hLen, scratch);
    overTiles<32>(xLen, hLen, y, [=](int n, int from, int to, double *out) {
        sumFlat<1>(h, px + n, from, to, out);
    });
}

void conv(const ZCplx *x, int xLen, const double *h, int hLen, ZCplx *y, ZCplx *scratch)
{
    const ZCplx *px = padded(x, xLen, hLen, scratch);
    overTiles<16>(xLen, hLen, y, [=](int n, int from, int to, ZCplx *out) {
        sumFlat<2>(h, &px[n].re, from, to, &out->re);
    });
}

// The products with the taps' real and imaginary parts in sums of their own, joined
// once at the end.
void conv(const ZCplx *x, int xLen, const ZCplx *h, int hLen, ZCplx *y, ZCplx *scratch)
{
    const ZCplx *px = padded(x, xLen, hLen, scratch);
    overTiles<8>(xLen, hLen, y, [=](int n, int from, int to, ZCplx *out) {
        Vector byRe[4] = {}, byIm[4] = {};
        for (int j = from; j < to; ++j)
            for (int v = 0; v < 4; ++v) {
                const Vector xs = load(&px[n - j + 2 * v].re);
                byRe[v] += h[j].re * xs;
                byIm[v] += h[j].im * xs;
            }
        for (int v = 0; v < 4; ++v) {
            const Vector turned = __builtin_shufflevector(byIm[v], byIm[v], 1, 0, 3, 2);
            store(&out[2 * v].re, byRe[v] + turned * Vector{-1.0, 1.0, -1.0, 1.0});
        }
    });
}

void conv(const double *x, int xLen, const ZCplx *h, int hLen, ZCplx *y, double *scratch)
{
    const double *px = padded(x, xLen, hLen, scratch);
    overTiles<16>(xLen, hLen, y, [=](int n, int from, int to, ZCplx *out) {
        Vector re[4] = {}, im[4] = {};
        for (int j = from; j < to; ++j)
            for (int v = 0; v < 4; ++v) {
                const Vector xs = load(px + n - j + 4 * v);
                re[v] += h[j].re * xs;
                im[v] += h[j].im * xs;
            }
        for (int v = 0; v < 4; ++v) {
            store(&out[4 * v].re, __builtin_shufflevector(re[v], im[v], 0, 4, 1, 5));
            store(&out[4 * v + 2].re, __builtin_shufflevector(re[v], im[v], 2, 6, 3, 7));
        }
    });
}

void multiply(const ZCplx *src, ZCplx *dst, int n)
{
    for (int k = 0; k < n; ++k) {
        const ZCplx a = src[k], b = dst[k];
        dst[k] = {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
    }
}

} // namespace fast
