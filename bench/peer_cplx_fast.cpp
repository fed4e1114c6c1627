#include "peer_cplx.h"

#include <cmath>

namespace fast {
#include "peer_cplx_loops.h"
}

#if defined(RVX_HAVE_SLEEF) && defined(__AVX2__) && defined(__FMA__)

#include <immintrin.h>

#include <sleef.h>

namespace sleef {

namespace {

struct Parts {
    __m256d re, im;
};

Parts load(const ZCplx *src)
{
    const __m256d low = _mm256_loadu_pd(&src[0].re);
    const __m256d high = _mm256_loadu_pd(&src[2].re);
    const __m256d even = _mm256_permute2f128_pd(low, high, 0x20);
    const __m256d odd = _mm256_permute2f128_pd(low, high, 0x31);
    return {_mm256_unpacklo_pd(even, odd), _mm256_unpackhi_pd(even, odd)};
}

} // namespace

void phase(const ZCplx *src, double *dst, int n)
{
    for (int i = 0; i < n; i += 4) {
        const Parts z = load(src + i);
        _mm256_storeu_pd(dst + i, Sleef_atan2d4_u10avx2(z.im, z.re));
    }
}

void toPolar(const ZCplx *src, double *mag, double *phase, int n)
{
    for (int i = 0; i < n; i += 4) {
        const Parts z = load(src + i);
        const __m256d power = _mm256_fmadd_pd(z.re, z.re, _mm256_mul_pd(z.im, z.im));
        _mm256_storeu_pd(mag + i, _mm256_sqrt_pd(power));
        _mm256_storeu_pd(phase + i, Sleef_atan2d4_u10avx2(z.im, z.re));
    }
}

void toCart(const double *mag, const double *phase, ZCplx *dst, int n)
{
    for (int i = 0; i < n; i += 4) {
        const Sleef___m256d_2 circle = Sleef_sincosd4_u10avx2(_mm256_loadu_pd(phase + i));
        const __m256d m = _mm256_loadu_pd(mag + i);
        const __m256d re = _mm256_mul_pd(circle.y, m);
        const __m256d im = _mm256_mul_pd(circle.x, m);
        const __m256d even = _mm256_unpacklo_pd(re, im);
        const __m256d odd = _mm256_unpackhi_pd(re, im);
        _mm256_storeu_pd(&dst[i].re, _mm256_permute2f128_pd(even, odd, 0x20));
        _mm256_storeu_pd(&dst[i + 2].re, _mm256_permute2f128_pd(even, odd, 0x31));
    }
}

} // namespace sleef

#endif
