// rvxvec: thresholds.
//
// Values and squared magnitudes are compared as bit patterns, sign and magnitude:
// seen as signed integers those without a sign bit stand in that order already, and
// below all others; those with one stand the other way round. So one comparison of
// integers does, turned by the threshold's sign. A complex element needs a division
// and a root only if it moves: four that stay cost neither.

#include <cstdint>
#include <cstring>

#include "frame/rvxcheck.h"
#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"
#include "vector/rvxwalk.h"

RVX_MODULE("rvxvec")

namespace {

// Elements below the limit become it, or above: in terms of integers `beyond` says
// whether those greater than the limit do. A limit with a sign bit counts, as do the
// elements then, with the sign turned, which brings the others above it.
template <bool withSign, bool beyond>
struct RealLimit {
    Lanes limit;
    static constexpr std::int64_t turn = withSign ? INT64_MIN : 0;
    RVX_INLINE Lanes operator()(Lanes x) const
    {
        const RvxBits key = (RvxBits)x.v ^ turn, limitKey = (RvxBits)limit.v ^ turn;
        const LaneMask replaced = {beyond ? key > limitKey : key < limitKey};
        return choose(replaced, limit, x);
    }
};

RVX_KERNEL void raiseToPositive(const double *src, double *dst, int n, double thresh)
{
    RealLimit<false, false> limit{allLanes(thresh)};
    walkReal(src, dst, n, limit);
}

RVX_KERNEL void lowerToPositive(const double *src, double *dst, int n, double thresh)
{
    RealLimit<false, true> limit{allLanes(thresh)};
    walkReal(src, dst, n, limit);
}

RVX_KERNEL void raiseToNegative(const double *src, double *dst, int n, double thresh)
{
    RealLimit<true, true> limit{allLanes(thresh)};
    walkReal(src, dst, n, limit);
}

RVX_KERNEL void lowerToNegative(const double *src, double *dst, int n, double thresh)
{
    RealLimit<true, false> limit{allLanes(thresh)};
    walkReal(src, dst, n, limit);
}

void limitReal(const double *src, double *dst, int len, double thresh, int relOp)
{
    std::int64_t bits;
    std::memcpy(&bits, &thresh, sizeof bits);
    const bool raise = relOp == RVX_THRESH_RAISE;
    if (bits < 0)
        (raise ? raiseToNegative : lowerToNegative)(src, dst, len, thresh);
    else
        (raise ? raiseToPositive : lowerToPositive)(src, dst, len, thresh);
}

// The order of bit patterns where one of the two has no sign bit.
RVX_INLINE LaneMask isBelowInBits(Lanes a, Lanes b)
{
    return {(RvxBits)a.v < (RvxBits)b.v};
}

// z * s where it moves, and elsewhere z bit for bit. Not by choose(): of that compilers
// may make z * (moved ? s : 1), which turns a signalling NaN into a quiet one.
RVX_INLINE Lanes scaleWhere(LaneMask moved, Lanes z, Lanes s)
{
    const RvxBits kept = (RvxBits)z.v, scaled = (RvxBits)(z * s).v;
    return {(RvxVector)(kept ^ ((kept ^ scaled) & moved.b))};
}

// By sqrt(squared / p), where p is the squared magnitude and squared that of the
// threshold. A NaN may move as well: p then has the sign bit of a part that is one.
struct CplxRaise {
    Lanes thresh, squared;
    RVX_INLINE Quad operator()(Quad z) const
    {
        const Lanes p = z.re * z.re + z.im * z.im;
        const LaneMask moved = isBelowInBits(p, squared);
        if (!anyLane(moved))
            return z;
        const LaneMask nearOrigin = moved & isBelow(p, allLanes(0x1p-1022));
        const LaneMask scaled = moved & ~nearOrigin;
        const Lanes s = sqrtLanes(squared / p);
        const Lanes re = scaleWhere(scaled, z.re, s);
        return {choose(nearOrigin, thresh, re), scaleWhere(scaled, z.im, s)};
    }
};

struct CplxLower {
    Lanes squared;
    RVX_INLINE Quad operator()(Quad z) const
    {
        const Lanes p = z.re * z.re + z.im * z.im;
        const LaneMask moved = isBelowInBits(squared, p);
        if (!anyLane(moved))
            return z;
        const Lanes s = sqrtLanes(squared / p);
        return {scaleWhere(moved, z.re, s), scaleWhere(moved, z.im, s)};
    }
};

RVX_KERNEL void raiseCplx(const ZCplx *src, ZCplx *dst, int n, double thresh)
{
    CplxRaise raise{allLanes(thresh), allLanes(thresh * thresh)};
    walkCplx(src, dst, n, raise);
}

RVX_KERNEL void lowerCplx(const ZCplx *src, ZCplx *dst, int n, double thresh)
{
    CplxLower lower{allLanes(thresh * thresh)};
    walkCplx(src, dst, n, lower);
}

void limitCplx(const ZCplx *src, ZCplx *dst, int len, double thresh, int relOp)
{
    (relOp == RVX_THRESH_RAISE ? raiseCplx : lowerCplx)(src, dst, len, thresh);
}

// A NaN counts as below.
bool isBelowZero(double thresh)
{
    return !(thresh >= 0.0);
}

} // namespace

void rvxdbThresh1(double *vec, int len, double thresh, int relOp)
{
    RVX_REJECT_IF(len <= 0, "len<=0");
    RVX_REJECT_IF(vec == nullptr, "vec==0");
    limitReal(vec, vec, len, thresh, relOp);
}

void rvxdbThresh2(const double *src, double *dst, int len, double thresh, int relOp)
{
    RVX_REJECT_IF(len <= 0, "len<=0");
    RVX_REJECT_IF(src == nullptr, "src==0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    limitReal(src, dst, len, thresh, relOp);
}

void rvxzbThresh1(ZCplx *vec, int len, double thresh, int relOp)
{
    RVX_REJECT_IF(len <= 0, "len<=0");
    RVX_REJECT_IF(vec == nullptr, "vec==0");
    RVX_REJECT_IF(isBelowZero(thresh), "thresh<0.0");
    limitCplx(vec, vec, len, thresh, relOp);
}

void rvxzbThresh2(const ZCplx *src, ZCplx *dst, int len, double thresh, int relOp)
{
    RVX_REJECT_IF(len <= 0, "len<=0");
    RVX_REJECT_IF(src == nullptr, "src==0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    RVX_REJECT_IF(isBelowZero(thresh), "thresh<0.0");
    limitCplx(src, dst, len, thresh, relOp);
}
