#include "peer_thresh_loops.h"

#ifdef RVX_HAVE_EIGEN
#include <complex>

#include <Eigen/Core>
#endif

namespace fast {
RVX_BENCH_THRESH_BODIES
}

#ifdef RVX_HAVE_EIGEN
namespace eigen {

namespace {

Eigen::Map<Eigen::ArrayXd> view(const double *p, int n)
{
    return {const_cast<double *>(p), n};
}

Eigen::Map<Eigen::ArrayXcd> view(const ZCplx *p, int n)
{
    return {reinterpret_cast<std::complex<double> *>(const_cast<ZCplx *>(p)), n};
}

} // namespace

void root(const double *src, double *dst, int n)
{
    view(dst, n) = view(src, n).sqrt();
}

void root(const ZCplx *src, ZCplx *dst, int n)
{
    view(dst, n) = view(src, n).sqrt();
}

void square(const double *src, double *dst, int n)
{
    view(dst, n) = view(src, n).square();
}

void square(const ZCplx *src, ZCplx *dst, int n)
{
    view(dst, n) = view(src, n).square();
}

void magnitude(const double *src, double *dst, int n)
{
    view(dst, n) = view(src, n).abs();
}

void raise(const double *src, double *dst, int n, double thresh)
{
    view(dst, n) = view(src, n).max(thresh);
}

void lower(const double *src, double *dst, int n, double thresh)
{
    view(dst, n) = view(src, n).min(thresh);
}

void invert(const double *src, double *dst, int n)
{
    view(dst, n) = view(src, n).inverse();
}

} // namespace eigen
#endif
