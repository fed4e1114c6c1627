// Bit-reversed input to natural output.

#include "transform/rvxfftd.h"

#include "vector/rvxarith.h"

namespace {

// W(N,k) for 0 <= k < N/2 from a table of a quarter circle at the given stride.
ZCplx root(const ZCplx *twiddles, int stride, int N, int k)
{
    if (k < N / 4)
        return twiddles[k * stride];
    const ZCplx w = N < 4 ? ZCplx{1.0, 0.0} : twiddles[(k - N / 4) * stride];
    return N < 4 ? w : ZCplx{w.im, -w.re};
}

template <typename At>
void merge(At re, At im, int N, int direction, const ZCplx *twiddles)
{
    const int stride = N > 512 ? 1 : 3;
    for (int P = 1; P < N; P *= 2)
        for (int start = 0; start < N; start += 2 * P)
            for (int i = 0; i < P; ++i) {
                const ZCplx w = root(twiddles, stride, N, i * (N / (2 * P)));
                const double wi = direction < 0 ? -w.im : w.im;
                const int a = start + i, b = a + P;
                const double re1 = re(b) * w.re - im(b) * wi;
                const double im1 = re(b) * wi + im(b) * w.re;
                re(b) = re(a) - re1;
                im(b) = im(a) - im1;
                re(a) += re1;
                im(a) += im1;
            }
}

struct At {
    double *p;
    int step;
    double &operator()(int i) const { return p[i * step]; }
};

} // namespace

void rvxFftDit(ZCplx *data, int N, int direction, const ZCplx *twiddles)
{
    merge(At{&data->re, 2}, At{&data->im, 2}, N, direction, twiddles);
}

void rvxrFftDit(double *re, double *im, int N, int direction, const ZCplx *twiddles)
{
    merge(At{re, 1}, At{im, 1}, N, direction, twiddles);
}

void rvxFftDitScaled(ZCplx *data, int N, int direction, const ZCplx *twiddles, double scale)
{
    rvxFftDit(data, N, direction, twiddles);
    if (scale != 1.0)
        rvxdbMpy1(scale, &data->re, 2 * N);
}

void rvxrFftDitScaled(double *re, double *im, int N, int direction, const ZCplx *twiddles,
                      double scale)
{
    rvxrFftDit(re, im, N, direction, twiddles);
    if (scale == 1.0)
        return;
    rvxdbMpy1(scale, re, N);
    rvxdbMpy1(scale, im, N);
}

void rvxFftNatural(const ZCplx *src, ZCplx *dst, int N, int direction, const ZCplx *twiddles,
                   const std::uint32_t *swapTbl, double scale)
{
    if (src == dst)
        rvxBitRevInPlace(dst, N, swapTbl);
    else
        rvxBitRevCopy(src, dst, N, swapTbl);
    rvxFftDitScaled(dst, N, direction, twiddles, scale);
}

void rvxrFftNatural(const double *reSrc, const double *imSrc, double *reDst, double *imDst, int N,
                    int direction, const ZCplx *twiddles, const std::uint32_t *swapTbl,
                    double scale)
{
    rvxBitRevCopyDoubles(reSrc, reDst, N, swapTbl);
    rvxBitRevCopyDoubles(imSrc, imDst, N, swapTbl);
    rvxrFftDitScaled(reDst, imDst, N, direction, twiddles, scale);
}
