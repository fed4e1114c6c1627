// The same block operations by others: a plain loop as the compiler makes it, and
// Eigen with all that its user can switch on.

#ifndef RVX_BENCH_PEER_ARITH_H
#define RVX_BENCH_PEER_ARITH_H

#include "rvx.h"

#define RVX_BENCH_ARITH_PEER                                                                       \
    void fill(double val, double *dst, int n);                                                     \
    void fill(ZCplx val, ZCplx *dst, int n);                                                       \
    void copy(const double *src, double *dst, int n);                                              \
    void add1(double val, double *dst, int n);                                                     \
    void add2(const double *src, double *dst, int n);                                              \
    void add3(const double *a, const double *b, double *dst, int n);                               \
    void mpy1(double val, double *dst, int n);                                                     \
    void mpy2(const double *src, double *dst, int n);                                              \
    void mpy3(const double *a, const double *b, double *dst, int n);                               \
    void add1(ZCplx val, ZCplx *dst, int n);                                                       \
    void mpy1(ZCplx val, ZCplx *dst, int n);                                                       \
    void mpy2(const ZCplx *src, ZCplx *dst, int n);                                                \
    void mpy3(const ZCplx *a, const ZCplx *b, ZCplx *dst, int n);

namespace loop {
RVX_BENCH_ARITH_PEER
}
namespace fast {
RVX_BENCH_ARITH_PEER
}

#endif
