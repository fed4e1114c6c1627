// rvxdiv: division of blocks.
//
// Each quotient is the processor's own, so the divider is the limit. Sixteen divisors
// that divide are told by one test; what becomes of the others is chosen by a mask.

#include <cfloat>
#include <cstddef>

#include "frame/rvxcheck.h"
#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"
#include "rvx.h"
#include "vector/rvxwalk.h"

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

// Neither zero nor a NaN.
RVX_INLINE LaneMask isDivisor(Lanes x)
{
    return isBelow(allLanes(0.0), absLanes(x));
}

// a / b, where 0 / 0 keeps the numerator or gives 0
template <bool isKept>
struct Quotient {
    LaneMask failed = {};
    RVX_INLINE Lanes operator()(Lanes a, Lanes b)
    {
        const LaneMask divides = isDivisor(b);
        failed = failed | ~divides;
        return choose(divides, a / b, overZero(a, isKept ? a : allLanes(0.0)));
    }
};

// dst[i] = a[i] / b[i]. Says whether there was a zero among the divisors. Both ends are
// read first and stored last, so that nothing is left over: what lies between overlaps
// them.
template <bool isKept>
RVX_INLINE bool divideBlock(const double *a, const double *b, double *dst, int n)
{
    Quotient<isKept> quotient;
    if (n < 4) {
        storeSome(dst, quotient(loadSome(a, n), loadSome(b, n)), n);
        return anyLane(quotient.failed);
    }
    const Lanes first = quotient(loadLanes(a), loadLanes(b));
    const Lanes last = quotient(loadLanes(a + n - 4), loadLanes(b + n - 4));
    std::ptrdiff_t i = secondStep<Spare::operations>(dst, std::ptrdiff_t{8} * n);
    for (; i < n - 15; i += 16) {
        Lanes dens[4], quotients[4];
        LaneMask divide = isEqual(allLanes(0.0), allLanes(0.0));
        for (int j = 0; j < 4; ++j) {
            dens[j] = loadLanesOnce(b + i + 4 * j);
            divide = divide & isDivisor(dens[j]);
        }
        const bool allDivide = everyLane(divide);
        for (int j = 0; j < 4; ++j) {
            const Lanes num = loadLanes(a + i + 4 * j);
            quotients[j] = allDivide ? num / dens[j] : quotient(num, dens[j]);
        }
        for (int j = 0; j < 4; ++j)
            storeLanes(dst + i + 4 * j, quotients[j]);
    }
    for (; i < n - 4; i += 4)
        storeLanes(dst + i, quotient(loadLanes(a + i), loadLanes(b + i)));
    storeLanes(dst, first);
    storeLanes(dst + n - 4, last);
    return anyLane(quotient.failed);
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
