// Natural input to bit-reversed output.

#include "transform/rvxfftd.h"

#include "vector/rvxarith.h"

namespace {

// W(N,k) for 0 <= k < N/2.
ZCplx root(const ZCplx *twiddles, int N, int k)
{
    if (k == 0)
        return {1.0, 0.0};
    if (k >= N / 4) {
        const ZCplx w = root(twiddles, N, k - N / 4);
        return {w.im, -w.re};
    }
    return N > 512 ? twiddles[k] : twiddles[2 * (k - 1)];
}

template <typename At>
void split(At re, At im, int N, int direction, const ZCplx *twiddles)
{
    for (int P = N / 2; P > 0; P /= 2)
        for (int start = 0; start < N; start += 2 * P)
            for (int i = 0; i < P; ++i) {
                const ZCplx w = root(twiddles, N, i * (N / (2 * P)));
                const double wi = direction < 0 ? -w.im : w.im;
                const int a = start + i, b = a + P;
                const double re1 = re(a) - re(b);
                const double im1 = im(a) - im(b);
                re(a) += re(b);
                im(a) += im(b);
                re(b) = re1 * w.re - im1 * wi;
                im(b) = re1 * wi + im1 * w.re;
            }
}

struct At {
    double *p;
    int step;
    double &operator()(int i) const { return p[i * step]; }
};

} // namespace

void rvxFftDif(ZCplx *data, int N, int direction, const ZCplx *twiddles)
{
    split(At{&data->re, 2}, At{&data->im, 2}, N, direction, twiddles);
}

void rvxrFftDif(double *re, double *im, int N, int direction, const ZCplx *twiddles)
{
    split(At{re, 1}, At{im, 1}, N, direction, twiddles);
}

void rvxFftDifScaled(ZCplx *data, int N, int direction, const ZCplx *twiddles, double scale)
{
    rvxFftDif(data, N, direction, twiddles);
    if (scale != 1.0)
        rvxdbMpy1(scale, &data->re, 2 * N);
}

void rvxrFftDifScaled(double *re, double *im, int N, int direction, const ZCplx *twiddles,
                      double scale)
{
    rvxrFftDif(re, im, N, direction, twiddles);
    if (scale == 1.0)
        return;
    rvxdbMpy1(scale, re, N);
    rvxdbMpy1(scale, im, N);
}
