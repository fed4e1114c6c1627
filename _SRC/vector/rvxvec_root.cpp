// rvxvec: square roots, real and complex.
//
// Every root and quotient is the divider's own, four elements at a time, which
// takes less time than sharing divisions among three elements would. A block is
// still looked at as triples and a remainder: zeros, subnormals, infinities and
// NaNs differ between them. All of that is done by masks, beside the divider.

#include "vector/rvxvec_root.h"

#include <cmath>
#include <cstddef>

#include "frame/rvxcheck.h"
#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"
#include "vector/rvxvec.h"
#include "vector/rvxwalk.h"

RVX_MODULE("rvxvec")

namespace {

struct RealRoot {
    Lanes signs = allLanes(0.0); // the sign bits of all elements so far, or-ed
    RVX_INLINE Lanes operator()(Lanes x)
    {
        signs = {(RvxVector)((RvxBits)signs.v | (RvxBits)x.v)};
        return tripleRoot(x);
    }
};

// n is a multiple of 3. True if there is a sign bit.
RVX_KERNEL bool rootTriples(const double *src, double *dst, std::ptrdiff_t n)
{
    RealRoot root;
    walkReal(src, dst, n, root);
    return anyLane(isSigned(root.signs));
}

// Principal roots: re = sqrt((r + |re|) / 2) and im = |im| / (2 re) of an element
// with the magnitude r, or the other way round where re is negative.
struct CplxRoot {
    RVX_INLINE CplxLanes operator()(CplxLanes z) const
    {
        const Lanes half = allLanes(0.5);
        const Lanes r = tripleRootOfSquares(z.re * z.re + z.im * z.im);
        const Lanes t = tripleRootOfSquares((r + absLanes(z.re)) * half);
        const Lanes w = absLanes(z.im) / t * half;
        const LaneMask turned = isSigned(z.re);
        const LaneMask nothing = isEqual(t, allLanes(0.0));
        const Lanes re = choose(turned, w, t);
        const Lanes im = choose(turned, t, w);
        // Deliberate: a subnormal imaginary part is flushed, a real one is not.
        const LaneMask flushed = nothing | isBelow(im, allLanes(0x1p-1022));
        return {onlyWhere(~nothing, re), onlyWhere(~flushed, withSignOf(im, z.im))};
    }
};

// n is a multiple of 3.
RVX_KERNEL void rootCplxTriples(const ZCplx *src, ZCplx *dst, std::ptrdiff_t n)
{
    CplxRoot root;
    walkCplx(src, dst, n, root);
}

// The same for one element, rounded once.
ZCplx rootExtended(ZCplx z)
{
    const Extended re = z.re, im = z.im;
    const Extended r = std::sqrt(re * re + im * im);
    const Extended t = std::sqrt((r + std::fabs(re)) * Extended{0.5});
    if (t == 0)
        return {0.0, 0.0};
    const double larger = static_cast<double>(t);
    const double other = static_cast<double>(std::fabs(im) / t * Extended{0.5});
    if (std::signbit(z.re))
        return {other, std::copysign(larger, z.im)};
    return {larger, other < 0x1p-1022 ? 0.0 : std::copysign(other, z.im)};
}

void rootCplx(const ZCplx *src, ZCplx *dst, int len)
{
    const std::ptrdiff_t inTriples = len - len % 3;
    rootCplxTriples(src, dst, inTriples);
    for (std::ptrdiff_t i = inTriples; i < len; ++i)
        dst[i] = rootExtended(src[i]);
}

} // namespace

bool rvxRootBlock(const double *src, double *dst, int len)
{
    const std::ptrdiff_t inTriples = len - len % 3;
    bool negative = rootTriples(src, dst, inTriples);
    for (std::ptrdiff_t i = inTriples; i < len; ++i) {
        if (std::signbit(src[i]))
            negative = true;
        else
            dst[i] = std::sqrt(src[i]);
    }
    return negative;
}

void rvxdbSqrt1(double *vec, int len)
{
    RVX_REJECT_IF(len <= 0, "len<=0");
    RVX_REJECT_IF(vec == nullptr, "vec==0");
    RVX_REJECT_IF(rvxRootBlock(vec, vec, len), "Element of input vector is negative");
}

void rvxdbSqrt2(const double *src, double *dst, int len)
{
    RVX_REJECT_IF(len <= 0, "len<=0");
    RVX_REJECT_IF(src == nullptr, "src==0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    RVX_REJECT_IF(rvxRootBlock(src, dst, len), "Element of input vector is negative");
}

void rvxzbSqrt1(ZCplx *vec, int len)
{
    RVX_REJECT_IF(len <= 0, "len<=0");
    RVX_REJECT_IF(vec == nullptr, "vec==0");
    rootCplx(vec, vec, len);
}

void rvxzbSqrt2(const ZCplx *src, ZCplx *dst, int len)
{
    RVX_REJECT_IF(len <= 0, "len<=0");
    RVX_REJECT_IF(src == nullptr, "src==0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    rootCplx(src, dst, len);
}
