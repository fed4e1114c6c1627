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
#include "frame/rvxcplx.h"
#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"

RVX_MODULE("rvxarith")

namespace {

struct First {
    template <typename T>
    RVX_INLINE T operator()(T a, T) const
    {
        return a;
    }
};

struct Sum {
    template <typename T>
    RVX_INLINE T operator()(T a, T b) const
    {
        return a + b;
    }
};

struct Difference {
    template <typename T>
    RVX_INLINE T operator()(T a, T b) const
    {
        return a - b;
    }
};

struct Product {
    template <typename T>
    RVX_INLINE T operator()(T a, T b) const
    {
        return a * b;
    }
};

// The second one's parts are taken apart: a scalar's once for the whole block.
struct CplxProduct {
    RVX_INLINE Lanes operator()(Lanes p, Lanes q) const { return cplxProduct(q, p); }
    RVX_INLINE ZCplx operator()(ZCplx p, ZCplx q) const { return q * p; }
};

// An operand of a block operation: a block has an element at each index, a
// scalar has itself at all of them.
struct RealBlock {
    const double *elements;
    RVX_INLINE double at(std::ptrdiff_t i) const { return elements[i]; }
    RVX_INLINE Lanes lanesAt(std::ptrdiff_t i) const { return loadLanes(elements + i); }
};

struct CplxBlock {
    const ZCplx *elements;
    RVX_INLINE ZCplx at(std::ptrdiff_t i) const { return elements[i]; }
    RVX_INLINE Lanes lanesAt(std::ptrdiff_t i) const { return loadLanesOnce(elements + i); }
};

template <typename Element>
struct Scalar {
    Element value;
    Lanes lanes = allLanes(value);
    RVX_INLINE Element at(std::ptrdiff_t) const { return value; }
    RVX_INLINE Lanes lanesAt(std::ptrdiff_t) const { return lanes; }
};

// dst[i] = op(a[i], b[i]), from the last element down to the first. Every step
// has read its elements before it writes, so that dst may be an operand.
template <typename A, typename B, typename Op>
RVX_INLINE void combineReal(A a, B b, double *dst, std::ptrdiff_t n, Op op)
{
    std::ptrdiff_t i = n;
    if (n >= RVX_WORTH_ALIGNING) {
        for (int past = doublesBehindLanes(dst + n); past > 0; --past) {
            --i;
            dst[i] = op(a.at(i), b.at(i));
        }
    }
    for (; i >= 16; i -= 16) {
        const Lanes r3 = op(a.lanesAt(i - 4), b.lanesAt(i - 4));
        const Lanes r2 = op(a.lanesAt(i - 8), b.lanesAt(i - 8));
        const Lanes r1 = op(a.lanesAt(i - 12), b.lanesAt(i - 12));
        const Lanes r0 = op(a.lanesAt(i - 16), b.lanesAt(i - 16));
        storeLanes(dst + i - 4, r3);
        storeLanes(dst + i - 8, r2);
        storeLanes(dst + i - 12, r1);
        storeLanes(dst + i - 16, r0);
    }
    for (; i >= 4; i -= 4)
        storeLanes(dst + i - 4, op(a.lanesAt(i - 4), b.lanesAt(i - 4)));
    if (i >= 3)
        dst[2] = op(a.at(2), b.at(2));
    if (i >= 2)
        dst[1] = op(a.at(1), b.at(1));
    if (i >= 1)
        dst[0] = op(a.at(0), b.at(0));
}

// The same for complex elements, which go from the first upward.
template <typename A, typename B, typename Op>
RVX_INLINE void combineCplx(A a, B b, ZCplx *dst, std::ptrdiff_t n, Op op)
{
    std::ptrdiff_t i = 0;
    if (n >= RVX_WORTH_ALIGNING && doublesBehindLanes(dst) == 2) {
        dst[0] = op(a.at(0), b.at(0));
        i = 1;
    }
    for (; n - i >= 8; i += 8) {
        const Lanes r0 = op(a.lanesAt(i), b.lanesAt(i));
        const Lanes r1 = op(a.lanesAt(i + 2), b.lanesAt(i + 2));
        const Lanes r2 = op(a.lanesAt(i + 4), b.lanesAt(i + 4));
        const Lanes r3 = op(a.lanesAt(i + 6), b.lanesAt(i + 6));
        storeLanes(dst + i, r0);
        storeLanes(dst + i + 2, r1);
        storeLanes(dst + i + 4, r2);
        storeLanes(dst + i + 6, r3);
    }
    for (; n - i >= 2; i += 2)
        storeLanes(dst + i, op(a.lanesAt(i), b.lanesAt(i)));
    if (n - i >= 1)
        dst[i] = op(a.at(i), b.at(i));
}

RVX_KERNEL void copyDoubles(const double *src, double *dst, std::ptrdiff_t n)
{
    combineReal(RealBlock{src}, RealBlock{src}, dst, n, First{});
}

// Above this, the C library's copy is ahead: it goes past the caches.
constexpr std::size_t RVX_PAST_CACHES = std::size_t{1} << 24;

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
    if (bytes > RVX_PAST_CACHES) {
        std::memmove(dst, src, bytes);
        return;
    }
    copyDoubles(reinterpret_cast<const double *>(src), reinterpret_cast<double *>(dst),
                static_cast<std::ptrdiff_t>(bytes / sizeof(double)));
}

RVX_KERNEL void fillReal(double val, double *dst, int n)
{
    combineReal(Scalar<double>{val}, Scalar<double>{val}, dst, n, First{});
}

// A complex scalar goes to its kernel part by part: as a record it would be put
// together in memory, which holds up the first load.
RVX_KERNEL void fillCplx(double re, double im, ZCplx *dst, int n)
{
    combineCplx(Scalar<ZCplx>{{re, im}}, Scalar<ZCplx>{{re, im}}, dst, n, First{});
}

// Of the forms that change dst in place, dst is the first operand.

RVX_KERNEL void addScalar(double val, double *dst, int n)
{
    combineReal(RealBlock{dst}, Scalar<double>{val}, dst, n, Sum{});
}

RVX_KERNEL void addBlocks(const double *a, const double *b, double *dst, int n)
{
    combineReal(RealBlock{a}, RealBlock{b}, dst, n, Sum{});
}

RVX_KERNEL void subtractScalar(double val, double *dst, int n)
{
    combineReal(RealBlock{dst}, Scalar<double>{val}, dst, n, Difference{});
}

RVX_KERNEL void subtractBlocks(const double *a, const double *b, double *dst, int n)
{
    combineReal(RealBlock{a}, RealBlock{b}, dst, n, Difference{});
}

RVX_KERNEL void multiplyScalar(double val, double *dst, int n)
{
    combineReal(RealBlock{dst}, Scalar<double>{val}, dst, n, Product{});
}

RVX_KERNEL void multiplyBlocks(const double *a, const double *b, double *dst, int n)
{
    combineReal(RealBlock{a}, RealBlock{b}, dst, n, Product{});
}

RVX_KERNEL void addCplxScalar(double re, double im, ZCplx *dst, int n)
{
    combineCplx(CplxBlock{dst}, Scalar<ZCplx>{{re, im}}, dst, n, Sum{});
}

RVX_KERNEL void multiplyCplxScalar(double re, double im, ZCplx *dst, int n)
{
    combineCplx(CplxBlock{dst}, Scalar<ZCplx>{{re, im}}, dst, n, CplxProduct{});
}

RVX_KERNEL void multiplyCplxBlocks(const ZCplx *p, const ZCplx *q, ZCplx *dst, int n)
{
    combineCplx(CplxBlock{p}, CplxBlock{q}, dst, n, CplxProduct{});
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
    fillReal(0.0, dst, n);
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
    fillCplx(val.re, val.im, dst, n);
}

void rvxzbZero(ZCplx *dst, int n)
{
    RVX_REJECT_IF(n <= 0, "n<=0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    fillCplx(0.0, 0.0, dst, n);
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
    return a + b;
}

ZCplx rvxzSub(ZCplx a, ZCplx b)
{
    return a - b;
}

ZCplx rvxzMpy(ZCplx a, ZCplx b)
{
    return a * b;
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

void rvxdbAdd1(double val, double *dst, int n)
{
    RVX_REJECT_IF(n <= 0, "n<=0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    addScalar(val, dst, n);
}

void rvxdbAdd2(const double *src, double *dst, int n)
{
    RVX_REJECT_IF(n <= 0, "n<=0");
    RVX_REJECT_IF(src == nullptr, "src==0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    addBlocks(dst, src, dst, n);
}

void rvxdbAdd3(const double *srcA, const double *srcB, double *dst, int n)
{
    RVX_REJECT_IF(n <= 0, "n<=0");
    RVX_REJECT_IF(srcA == nullptr, "srcA==0");
    RVX_REJECT_IF(srcB == nullptr, "srcB==0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    addBlocks(srcA, srcB, dst, n);
}

void rvxdbSub1(double val, double *dst, int n)
{
    RVX_REJECT_IF(n <= 0, "n<=0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    subtractScalar(val, dst, n);
}

void rvxdbSub2(const double *val, double *dst, int n)
{
    RVX_REJECT_IF(n <= 0, "n<=0");
    RVX_REJECT_IF(val == nullptr, "val==0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    subtractBlocks(dst, val, dst, n);
}

void rvxdbSub3(const double *src, const double *val, double *dst, int n)
{
    RVX_REJECT_IF(n <= 0, "n<=0");
    RVX_REJECT_IF(src == nullptr, "src==0");
    RVX_REJECT_IF(val == nullptr, "val==0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    subtractBlocks(src, val, dst, n);
}

void rvxdbMpy1(double val, double *dst, int n)
{
    RVX_REJECT_IF(n <= 0, "n<=0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    multiplyScalar(val, dst, n);
}

void rvxdbMpy2(const double *src, double *dst, int n)
{
    RVX_REJECT_IF(n <= 0, "n<=0");
    RVX_REJECT_IF(src == nullptr, "src==0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    multiplyBlocks(dst, src, dst, n);
}

void rvxdbMpy3(const double *srcA, const double *srcB, double *dst, int n)
{
    RVX_REJECT_IF(n <= 0, "n<=0");
    RVX_REJECT_IF(srcA == nullptr, "srcA==0");
    RVX_REJECT_IF(srcB == nullptr, "srcB==0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    multiplyBlocks(srcA, srcB, dst, n);
}

void rvxzbAdd1(ZCplx val, ZCplx *dst, int n)
{
    RVX_REJECT_IF(n <= 0, "n<=0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    addCplxScalar(val.re, val.im, dst, n);
}

void rvxzbMpy1(ZCplx val, ZCplx *dst, int n)
{
    RVX_REJECT_IF(n <= 0, "n<=0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    multiplyCplxScalar(val.re, val.im, dst, n);
}

void rvxzbMpy2(const ZCplx *src, ZCplx *dst, int n)
{
    RVX_REJECT_IF(n <= 0, "n<=0");
    RVX_REJECT_IF(src == nullptr, "src==0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    multiplyCplxBlocks(dst, src, dst, n);
}

void rvxzbMpy3(const ZCplx *srcA, const ZCplx *srcB, ZCplx *dst, int n)
{
    RVX_REJECT_IF(n <= 0, "n<=0");
    RVX_REJECT_IF(srcA == nullptr, "srcA==0");
    RVX_REJECT_IF(srcB == nullptr, "srcB==0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    multiplyCplxBlocks(srcB, srcA, dst, n);
}
