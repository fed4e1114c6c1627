// rvxdiv: division of blocks.
//
// Each quotient is the processor's own, so the divider is the limit. What becomes of a
// division by zero is worked out beside it in lanes and chosen by a mask, which costs
// no time that the divider would not take anyway.

#include <cfloat>

#include "frame/rvxcheck.h"
#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"
#include "rvx.h"

RVX_MODULE("rvxdiv")

namespace {

// What the functions return; the status is that of a bad argument in every case.
constexpr int divideByZero = -9;
constexpr int badPointer = -10;
constexpr int badLength = -11;

constexpr const char *zeroMessage = "(Divide_by_Zero)";

// A NaN counts as zero here, on purpose.
RVX_INLINE LaneMask isZeroOrNan(Lanes x)
{
    return isEqual(x, allLanes(0.0)) | isNan(x);
}

RVX_INLINE bool isZeroOrNan(double x)
{
    return x == 0.0 || x != x;
}

// a over a zero: the largest number with the sign of a, and `none` for an a that is
// itself zero or a NaN
RVX_INLINE Lanes overZero(Lanes a, Lanes none)
{
    return choose(isZeroOrNan(a), none, withSignOf(allLanes(DBL_MAX), a));
}

RVX_INLINE double overZero(double a, double none)
{
    return isZeroOrNan(a) ? none : __builtin_copysign(DBL_MAX, a);
}

// dst[i] = a[i] / b[i], where 0 / 0 keeps the numerator or gives 0. Says whether there
// was a zero among the divisors.
template <bool isKept>
RVX_INLINE bool divideBlock(const double *a, const double *b, double *dst, int n)
{
    LaneMask failed = {};
    bool failedLast = false;
    int i = 0;
    for (; i < n - 3; i += 4) {
        const Lanes num = loadLanes(a + i), den = loadLanes(b + i);
        const LaneMask isZero = isZeroOrNan(den);
        failed = failed | isZero;
        const Lanes special = overZero(num, isKept ? num : allLanes(0.0));
        storeLanes(dst + i, choose(isZero, special, num / den));
    }
    for (; i < n; ++i) {
        const double num = a[i], den = b[i];
        const bool isZero = isZeroOrNan(den);
        failedLast = failedLast || isZero;
        dst[i] = isZero ? overZero(num, isKept ? num : 0.0) : num / den;
    }
    return failedLast || anyLane(failed);
}

RVX_KERNEL bool divideInPlace(const double *src, double *dst, int n)
{
    return divideBlock<true>(dst, src, dst, n);
}

RVX_KERNEL bool divideApart(const double *srcA, const double *srcB, double *dst, int n)
{
    return divideBlock<false>(srcA, srcB, dst, n);
}

RVX_KERNEL void divideAllByZero(double *dst, int n)
{
    for (int i = 0; i < n; ++i)
        dst[i] = overZero(dst[i], dst[i]);
}

} // namespace

int rvxdbDiv1(double val, double *dst, int n)
{
    RVX_REJECT_IF(dst == nullptr, "dst==0", badPointer);
    RVX_REJECT_IF(n <= 0, "n<=0", badLength);
    if (isZeroOrNan(val)) {
        divideAllByZero(dst, n);
        RVX_REPORT(RVX_STATUS_BAD_ARGUMENT, zeroMessage);
        return divideByZero;
    }
    rvxdbMpy1(1.0 / val, dst, n);
    return 0;
}

int rvxdbDiv2(const double *src, double *dst, int n)
{
    RVX_REJECT_IF(src == nullptr, "(double*)src==0", badPointer);
    RVX_REJECT_IF(dst == nullptr, "dst==0", badPointer);
    RVX_REJECT_IF(n <= 0, "n<=0", badLength);
    if (!divideInPlace(src, dst, n))
        return 0;
    RVX_REPORT(RVX_STATUS_BAD_ARGUMENT, zeroMessage);
    return divideByZero;
}

int rvxdbDiv3(const double *srcA, const double *srcB, double *dst, int n)
{
    RVX_REJECT_IF(srcA == nullptr, "(double*)srcA==0", badPointer);
    RVX_REJECT_IF(srcB == nullptr, "(double*)srcB==0", badPointer);
    RVX_REJECT_IF(dst == nullptr, "dst==0", badPointer);
    RVX_REJECT_IF(n <= 0, "n<=0", badLength);
    if (!divideApart(srcA, srcB, dst, n))
        return 0;
    RVX_REPORT(RVX_STATUS_BAD_ARGUMENT, zeroMessage);
    return divideByZero;
}
