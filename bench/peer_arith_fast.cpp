#ifdef RVX_HAVE_EIGEN

#include "peer_arith.h"

#include <complex>

#include <Eigen/Core>

namespace fast {

namespace {

using Cplx = std::complex<double>;
using Real = Eigen::Map<Eigen::ArrayXd>;
using Pairs = Eigen::Map<Eigen::ArrayXcd>;

// Eigen's own way of looking at an array that is not its own.
Real view(const double *p, int n)
{
    return {const_cast<double *>(p), n};
}

Pairs view(const ZCplx *p, int n)
{
    return {reinterpret_cast<Cplx *>(const_cast<ZCplx *>(p)), n};
}

} // namespace

void fill(double val, double *dst, int n)
{
    view(dst, n).setConstant(val);
}

void fill(ZCplx val, ZCplx *dst, int n)
{
    view(dst, n).setConstant({val.re, val.im});
}

void copy(const double *src, double *dst, int n)
{
    view(dst, n) = view(src, n);
}

void add1(double val, double *dst, int n)
{
    view(dst, n) += val;
}

void add2(const double *src, double *dst, int n)
{
    view(dst, n) += view(src, n);
}

void add3(const double *a, const double *b, double *dst, int n)
{
    view(dst, n) = view(a, n) + view(b, n);
}

void mpy1(double val, double *dst, int n)
{
    view(dst, n) *= val;
}

void mpy2(const double *src, double *dst, int n)
{
    view(dst, n) *= view(src, n);
}

void mpy3(const double *a, const double *b, double *dst, int n)
{
    view(dst, n) = view(a, n) * view(b, n);
}

void add1(ZCplx val, ZCplx *dst, int n)
{
    view(dst, n) += Cplx(val.re, val.im);
}

void mpy1(ZCplx val, ZCplx *dst, int n)
{
    view(dst, n) *= Cplx(val.re, val.im);
}

void mpy2(const ZCplx *src, ZCplx *dst, int n)
{
    view(dst, n) *= view(src, n);
}

void mpy3(const ZCplx *a, const ZCplx *b, ZCplx *dst, int n)
{
    view(dst, n) = view(a, n) * view(b, n);
}

} // namespace fast

#endif
