// The same by others: the compiler's loops, the C library's vector functions that it
// calls in them with fast mathematics (libmvec), and SLEEF.

#ifndef RVX_BENCH_PEER_CPLX_H
#define RVX_BENCH_PEER_CPLX_H

#include "rvx.h"

#define RVX_BENCH_CPLX_PEER                                                                        \
    void conjugate(ZCplx *vec, int n);                                                             \
    void conjugate(const ZCplx *src, ZCplx *dst, int n);                                           \
    void flip(const ZCplx *src, ZCplx *dst, int n);                                                \
    void extend(const ZCplx *src, ZCplx *dst, int n);                                              \
    void real(const ZCplx *src, double *dst, int n);                                               \
    void imag(const ZCplx *src, double *dst, int n);                                               \
    void takeApart(const ZCplx *src, double *re, double *im, int n);                               \
    void join(const double *re, const double *im, ZCplx *dst, int n);                              \
    void power(const ZCplx *src, double *dst, int n);                                              \
    void magnitude(const ZCplx *src, double *dst, int n);                                          \
    void phase(const ZCplx *src, double *dst, int n);                                              \
    void toPolar(const ZCplx *src, double *mag, double *phase, int n);                             \
    void toCart(const double *mag, const double *phase, ZCplx *dst, int n);

namespace loop {
RVX_BENCH_CPLX_PEER
}
namespace fast {
RVX_BENCH_CPLX_PEER
}

// SLEEF's functions of 1.0 unit for AVX2; lengths are multiples of 4.
namespace sleef {
void phase(const ZCplx *src, double *dst, int n);
void toPolar(const ZCplx *src, double *mag, double *phase, int n);
void toCart(const double *mag, const double *phase, ZCplx *dst, int n);
} // namespace sleef

#endif
