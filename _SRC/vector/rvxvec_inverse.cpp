// rvxvec: reciprocals with a threshold.
//
// Every quotient is the divider's own, four at a time. Products of the elements of
// a group, which were to share a division, then decide nothing but what becomes of
// a group with a NaN or a zero in it; masks find these without the products.

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "frame/rvxcheck.h"
#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"
#include "vector/rvxwalk.h"

RVX_MODULE("rvxvec")

namespace {

// 1 / x, and +infinity, the reciprocal of +0.0, where x is zero or NaN.
struct Reciprocal {
    LaneMask noted = {};
    RVX_INLINE Lanes operator()(Lanes x)
    {
        const LaneMask something = isBelow(allLanes(0.0), absLanes(x));
        noted = noted | ~something;
        return allLanes(1.0) / onlyWhere(something, x);
    }
};

// 1 / x of an x that was moved away from zero to the magnitude thresh, if need be. A
// NaN goes there too, and counts as negative; -0.0 does not.
struct BoundedReciprocal {
    Lanes thresh;
    RVX_INLINE Lanes operator()(Lanes x) const
    {
        const Lanes magnitude = maxLanes(thresh, absLanes(x));
        const LaneMask negative = ~isAtMost(allLanes(0.0), x);
        return allLanes(1.0) / withSignOf(magnitude, {(RvxVector)negative.b});
    }
};

// True if there is a zero or a NaN.
RVX_KERNEL bool invertReal(const double *src, double *dst, int n)
{
    Reciprocal reciprocal;
    walkReal<Spare::operations>(src, dst, n, reciprocal);
    return anyLane(reciprocal.noted);
}

RVX_KERNEL void invertRealBounded(const double *src, double *dst, int n, double thresh)
{
    BoundedReciprocal reciprocal{allLanes(thresh)};
    walkReal<Spare::operations>(src, dst, n, reciprocal);
}

bool invertRealBlock(const double *src, double *dst, int len, double thresh)
{
    // A NaN counts as zero.
    if (!(thresh > 0.0))
        return invertReal(src, dst, len);
    invertRealBounded(src, dst, len, thresh);
    return false;
}

// conj(z) * d with d = 1 / |z|^2, or d = sqrt(d * greatest) where that is less; what
// a zero becomes is given. Without bound d is as it is.
template <bool bound>
struct CplxReciprocal {
    Lanes greatest, ofZero;
    LaneMask noted = {};

    // grouped: of four elements that no zero is among, one that is NaN, or 0 with a
    // sign, makes all of them NaN: the product of their squared magnitudes, which
    // they share, has no reciprocal to be divided up.
    RVX_INLINE Quad invert(Quad z, bool grouped)
    {
        const Lanes q = z.im * z.im + z.re * z.re;
        Lanes d = allLanes(1.0) / q;
        if (bound) {
            const LaneMask lifted = isBelow(greatest, d);
            if (anyLane(lifted))
                d = choose(lifted, sqrtLanes(d * greatest), d);
        }
        const Quad inverse = {z.re * d, -d * z.im};
        const Lanes zero = allLanes(0.0);
        if (everyLane(isBelow(zero, q)))
            return inverse;
        const RvxBits highWords = ((RvxBits)z.re.v | (RvxBits)z.im.v) & ~std::int64_t{0xffffffff};
        const LaneMask isZero = {highWords == 0};
        noted = noted | isZero;
        const LaneMask spoils = isNan(q) | (isEqual(z.re, zero) & isEqual(z.im, zero));
        if (grouped && !anyLane(isZero) && anyLane(spoils))
            return {allLanes(__builtin_nan("")), allLanes(__builtin_nan(""))};
        return {choose(isZero, ofZero, inverse.re), choose(isZero, zero, inverse.im)};
    }
};

// The groups count from the first element on.
template <bool bound>
RVX_INLINE void invertGroups(const ZCplx *src, ZCplx *dst, std::ptrdiff_t n,
                             CplxReciprocal<bound> &reciprocal)
{
    std::ptrdiff_t i = 0;
    for (; n - i >= 4; i += 4)
        storeFour(dst + i, reciprocal.invert(loadFour(src + i), true));
    if (i < n)
        storeSomeOfFour(dst + i, reciprocal.invert(loadSomeOfFour(src + i, n - i), false), n - i);
}

// True if there is a zero.
RVX_KERNEL bool invertCplx(const ZCplx *src, ZCplx *dst, int n)
{
    CplxReciprocal<false> reciprocal{allLanes(0.0), allLanes(__builtin_inf())};
    invertGroups(src, dst, n, reciprocal);
    return anyLane(reciprocal.noted);
}

RVX_KERNEL void invertCplxBounded(const ZCplx *src, ZCplx *dst, int n, double thresh)
{
    const double greatest = 1.0 / (thresh * thresh);
    CplxReciprocal<true> reciprocal{allLanes(greatest), allLanes(thresh * greatest)};
    invertGroups(src, dst, n, reciprocal);
}

bool invertCplxBlock(const ZCplx *src, ZCplx *dst, int len, double thresh)
{
    std::uint64_t bits;
    std::memcpy(&bits, &thresh, sizeof bits);
    // Deliberate: so a small subnormal is no threshold, and -0.0 is one.
    if (bits >> 32 == 0)
        return invertCplx(src, dst, len);
    invertCplxBounded(src, dst, len, thresh);
    return false;
}

} // namespace

void rvxdbInvThresh1(double *vec, int len, double thresh)
{
    RVX_REJECT_IF(len <= 0, "len<=0");
    RVX_REJECT_IF(vec == nullptr, "vec==0");
    RVX_REJECT_IF(thresh < 0.0, "thresh<0.0");
    RVX_REJECT_IF(invertRealBlock(vec, vec, len, thresh), "zero element and zero thresh");
}

void rvxdbInvThresh2(const double *src, double *dst, int len, double thresh)
{
    RVX_REJECT_IF(len <= 0, "len<=0");
    RVX_REJECT_IF(src == nullptr, "src==0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    RVX_REJECT_IF(thresh < 0.0, "thresh<0.0");
    RVX_REJECT_IF(invertRealBlock(src, dst, len, thresh), "zero element and zero thresh");
}

// Deliberate: the real forms take a NaN for a threshold of zero, the complex ones
// reject it.

void rvxzbInvThresh1(ZCplx *vec, int len, double thresh)
{
    RVX_REJECT_IF(len <= 0, "len<=0");
    RVX_REJECT_IF(vec == nullptr, "vec==0");
    RVX_REJECT_IF(!(thresh >= 0.0), "thresh<0.0");
    RVX_REJECT_IF(invertCplxBlock(vec, vec, len, thresh), "zero element and zero thresh");
}

void rvxzbInvThresh2(const ZCplx *src, ZCplx *dst, int len, double thresh)
{
    RVX_REJECT_IF(len <= 0, "len<=0");
    RVX_REJECT_IF(src == nullptr, "src==0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    RVX_REJECT_IF(!(thresh >= 0.0), "thresh<0.0f"); // deliberate: with an f in this form alone
    RVX_REJECT_IF(invertCplxBlock(src, dst, len, thresh), "zero element and zero thresh");
}
