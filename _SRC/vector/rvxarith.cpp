// rvxarith: block fill and copy, complex scalars, block arithmetic element by
// element.
//
// Every block operation is one pass over memory; nothing here can be faster
// than the loads and stores that it makes.

#include "vector/rvxarith.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "frame/rvxcheck.h"
#include "frame/rvxkernel.h"

RVX_MODULE("rvxarith")

namespace {

// dst[i] = val
RVX_KERNEL void fillReal(double val, double *dst, int n)
{
    for (int i = 0; i < n; ++i)
        dst[i] = val;
}

RVX_KERNEL void fillCplx(ZCplx val, ZCplx *dst, int n)
{
    for (int i = 0; i < n; ++i)
        dst[i] = val;
}

// dst[i] = src[i], as if from the last element down to the first. Only a dst
// that begins inside the elements below src shows that order.
template <typename Element>
void copyDownward(const Element *src, Element *dst, int n)
{
    const auto from = reinterpret_cast<std::uintptr_t>(src);
    const auto to = reinterpret_cast<std::uintptr_t>(dst);
    const std::size_t bytes = static_cast<std::size_t>(n) * sizeof(Element);
    if (to < from && from - to < bytes) {
        for (int i = n - 1; i >= 0; --i)
            dst[i] = src[i];
        return;
    }
    std::memmove(dst, src, bytes);
}

// A NaN counts as zero.
bool isZeroPart(double x)
{
    return !(x < 0.0 || x > 0.0);
}

} // namespace

void rvxdbZero(double *dst, int n)
{
    RVX_REJECT_IF(n <= 0, "n<=0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    std::memset(dst, 0, static_cast<std::size_t>(n) * sizeof *dst);
}

void rvxdbSet(double val, double *dst, int n)
{
    RVX_REJECT_IF(n <= 0, "n<=0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    fillReal(val, dst, n);
}

void rvxdbCopy(const double *src, double *dst, int n)
{
    RVX_REJECT_IF(n <= 0, "n<=0");
    RVX_REJECT_IF(src == nullptr, "src==0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    copyDownward(src, dst, n);
}

void rvxzbSet(ZCplx val, ZCplx *dst, int n)
{
    RVX_REJECT_IF(n <= 0, "n<=0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    fillCplx(val, dst, n);
}

void rvxzbZero(ZCplx *dst, int n)
{
    RVX_REJECT_IF(n <= 0, "n<=0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    std::memset(dst, 0, static_cast<std::size_t>(n) * sizeof *dst);
}

void rvxzbCopy(const ZCplx *src, ZCplx *dst, int n)
{
    RVX_REJECT_IF(n <= 0, "n<=0");
    RVX_REJECT_IF(src == nullptr, "src==0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    copyDownward(src, dst, n);
}

ZCplx rvxzAdd(ZCplx a, ZCplx b)
{
    return {a.re + b.re, a.im + b.im};
}

ZCplx rvxzSub(ZCplx a, ZCplx b)
{
    return {a.re - b.re, a.im - b.im};
}

ZCplx rvxzMpy(ZCplx a, ZCplx b)
{
    return {b.re * a.re - b.im * a.im, b.im * a.re + b.re * a.im};
}

ZCplx rvxzDiv(ZCplx a, ZCplx b)
{
    RVX_REJECT_IF(isZeroPart(b.re) && isZeroPart(b.im), "(b.re==0.0)&&(b.im==0.0)",
                  ZCplx{0.0, 0.0});
    const double t = 1.0 / (b.im * b.im + b.re * b.re);
    return {(b.im * a.im + b.re * a.re) * t, (b.re * a.im - b.im * a.re) * t};
}

ZCplx rvxzConj(ZCplx a)
{
    return {a.re, -a.im};
}

ZCplx rvxzSet(double re, double im)
{
    return {re, im};
}
