// The same by others: plain loops as the compiler vectorises them, without and with
// fast mathematics, and Eigen.

#ifndef RVX_BENCH_PEER_THRESH_H
#define RVX_BENCH_PEER_THRESH_H

#include "rvx.h"

#define RVX_BENCH_THRESH_LOOPS                                                                     \
    void root(const double *src, double *dst, int n);                                              \
    void root(const ZCplx *src, ZCplx *dst, int n);                                                \
    void square(const double *src, double *dst, int n);                                            \
    void square(const ZCplx *src, ZCplx *dst, int n);                                              \
    void magnitude(const double *src, double *dst, int n);                                         \
    void raise(const double *src, double *dst, int n, double thresh);                              \
    void raise(const ZCplx *src, ZCplx *dst, int n, double thresh);                                \
    void lower(const double *src, double *dst, int n, double thresh);                              \
    void lower(const ZCplx *src, ZCplx *dst, int n, double thresh);                                \
    void invert(const double *src, double *dst, int n);                                            \
    void invert(const double *src, double *dst, int n, double thresh);                             \
    void invert(const ZCplx *src, ZCplx *dst, int n, double thresh);

namespace loop {
RVX_BENCH_THRESH_LOOPS
}
namespace fast {
RVX_BENCH_THRESH_LOOPS
}

#ifdef RVX_HAVE_EIGEN
namespace eigen {
void root(const double *src, double *dst, int n);
void root(const ZCplx *src, ZCplx *dst, int n);
void square(const double *src, double *dst, int n);
void square(const ZCplx *src, ZCplx *dst, int n);
void magnitude(const double *src, double *dst, int n);
void raise(const double *src, double *dst, int n, double thresh);
void lower(const double *src, double *dst, int n, double thresh);
void invert(const double *src, double *dst, int n);
} // namespace eigen
#endif

#endif
