// rvxvec: squares and absolute values.
//
// One pass over memory; loads and stores are the limit.

#include "frame/rvxcheck.h"
#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"
#include "vector/rvxwalk.h"

RVX_MODULE("rvxvec")

namespace {

struct Square {
    RVX_INLINE Lanes operator()(Lanes x) const { return x * x; }
    // Deliberate: sum times difference, and a sum of equal products.
    RVX_INLINE Quad operator()(Quad z) const
    {
        const Lanes product = z.re * z.im;
        return {(z.re + z.im) * (z.re - z.im), product + product};
    }
};

struct Magnitude {
    RVX_INLINE Lanes operator()(Lanes x) const { return absLanes(x); }
};

RVX_KERNEL void squareReal(const double *src, double *dst, int n)
{
    Square square;
    walkReal(src, dst, n, square);
}

RVX_KERNEL void squareCplx(const ZCplx *src, ZCplx *dst, int n)
{
    Square square;
    walkCplx(src, dst, n, square);
}

RVX_KERNEL void clearSigns(const double *src, double *dst, int n)
{
    Magnitude magnitude;
    walkReal(src, dst, n, magnitude);
}

} // namespace

void rvxdbSqr1(double *vec, int len)
{
    RVX_REJECT_IF(len <= 0, "len<=0");
    RVX_REJECT_IF(vec == nullptr, "vec==0");
    squareReal(vec, vec, len);
}

void rvxdbSqr2(const double *src, double *dst, int len)
{
    RVX_REJECT_IF(len <= 0, "len<=0");
    RVX_REJECT_IF(src == nullptr, "src==0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    squareReal(src, dst, len);
}

void rvxzbSqr1(ZCplx *vec, int len)
{
    RVX_REJECT_IF(len <= 0, "len<=0");
    RVX_REJECT_IF(vec == nullptr, "vec==0");
    squareCplx(vec, vec, len);
}

void rvxzbSqr2(const ZCplx *src, ZCplx *dst, int len)
{
    RVX_REJECT_IF(len <= 0, "len<=0");
    RVX_REJECT_IF(src == nullptr, "src==0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    squareCplx(src, dst, len);
}

void rvxdbAbs1(double *vec, int len)
{
    RVX_REJECT_IF(len <= 0, "len<=0");
    RVX_REJECT_IF(vec == nullptr, "vec==0");
    clearSigns(vec, vec, len);
}

void rvxdbAbs2(const double *src, double *dst, int len)
{
    RVX_REJECT_IF(len <= 0, "len<=0");
    RVX_REJECT_IF(src == nullptr, "src==0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    clearSigns(src, dst, len);
}
