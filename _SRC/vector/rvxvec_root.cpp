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
    RVX_INLINE void note(Lanes x) { signs = {(RvxVector)((RvxBits)signs.v | (RvxBits)x.v)}; }
    RVX_INLINE Lanes operator()(Lanes x)
    {
        note(x);
        return tripleRoot(x);
    }
};

RVX_INLINE void applyToFour(RealRoot &root, Lanes (&x)[4])
{
    Lanes magnitudes[4];
    LaneMask normal = {RvxBits{-1, -1, -1, -1}};
    for (int j = 0; j < 4; ++j) {
        root.note(x[j]);
        magnitudes[j] = absLanes(x[j]);
        normal = normal & isNormal(magnitudes[j]);
    }
    const bool allNormal = everyLane(normal);
    for (int j = 0; j < 4; ++j)
        x[j] = allNormal ? sqrtLanes(magnitudes[j]) : tripleRoot(x[j]);
}

// n is a multiple of 3. True if there is a sign bit.
RVX_KERNEL bool rootTriples(const double *src, double *dst, std::ptrdiff_t n)
{
    RealRoot root;
    walkReal<Spare::operations>(src, dst, n, root);
    return anyLane(isSigned(root.signs));
}

// Principal roots: re = sqrt((r + |re|) / 2) and im = |im| / (2 re) of an element
// with the magnitude r, or the other way round where re is negative.
//
// With normal squares all that follows is normal but for the smaller part. Step by step
// for all the elements at hand: a root and a division wait for the root before.
template <bool normal, int count>
RVX_INLINE void cplxRoots(const Lanes (&squares)[count], Quad (&z)[count])
{
    const Lanes half = allLanes(0.5);
    Lanes t[count];
    for (int j = 0; j < count; ++j)
        t[j] = normal ? sqrtLanes(squares[j]) : tripleRootOfSquares(squares[j]);
    for (int j = 0; j < count; ++j) {
        const Lanes mean = (t[j] + absLanes(z[j].re)) * half;
        t[j] = normal ? sqrtLanes(mean) : tripleRootOfSquares(mean);
    }
    for (int j = 0; j < count; ++j) {
        const Lanes w = z[j].im / t[j] * half;
        const Lanes smaller = absLanes(w);
        // Deliberate: a subnormal imaginary part is flushed, a real one is not.
        const Lanes flushed = onlyWhere(~isBelow(smaller, allLanes(0x1p-1022)), w);
        const LaneMask turned = isSigned(z[j].re);
        z[j] = {choose(turned, smaller, t[j]), choose(turned, withSignOf(t[j], z[j].im), flushed)};
        if (!normal) {
            const LaneMask something = ~isEqual(t[j], allLanes(0.0));
            z[j] = {onlyWhere(something, z[j].re), onlyWhere(something, z[j].im)};
        }
    }
}

struct CplxRoot {
    RVX_INLINE Quad operator()(Quad z) const
    {
        Quad all[1] = {z};
        applyTo(all);
        return all[0];
    }
    template <int count>
    RVX_INLINE void applyTo(Quad (&z)[count]) const
    {
        Lanes squares[count];
        LaneMask normal = {RvxBits{-1, -1, -1, -1}};
        for (int j = 0; j < count; ++j) {
            squares[j] = z[j].re * z[j].re + z[j].im * z[j].im;
            normal = normal & isNormal(squares[j]);
        }
        if (everyLane(normal))
            cplxRoots<true>(squares, z);
        else
            cplxRoots<false>(squares, z);
    }
};

RVX_INLINE void applyToFour(CplxRoot &root, Quad (&z)[4])
{
    root.applyTo(z);
}

// n is a multiple of 3.
RVX_KERNEL void rootCplxTriples(const ZCplx *src, ZCplx *dst, std::ptrdiff_t n)
{
    CplxRoot root;
    walkCplx<Spare::operations>(src, dst, n, root);
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
    // The remainder first: its chain of roots and divisions then runs beside the others.
    const std::ptrdiff_t inTriples = len - len % 3;
    for (std::ptrdiff_t i = inTriples; i < len; ++i)
        dst[i] = rootExtended(src[i]);
    rootCplxTriples(src, dst, inTriples);
}

} // namespace

bool rvxRootBlock(const double *src, double *dst, int len)
{
    const std::ptrdiff_t inTriples = len - len % 3;
    bool negative = false;
    for (std::ptrdiff_t i = inTriples; i < len; ++i) {
        if (std::signbit(src[i]))
            negative = true;
        else
            dst[i] = std::sqrt(src[i]);
    }
    return rootTriples(src, dst, inTriples) || negative;
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
