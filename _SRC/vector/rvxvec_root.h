// The root that the triples of a block take, for kernels that make it on the way.

#ifndef RVXVEC_ROOT_H
#define RVXVEC_ROOT_H

#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"

constexpr std::int64_t RVX_EXPONENT_TWO = std::int64_t{2} << 52;

// sqrt(|x|) of a normal x. An x with the exponent field 2047 counts as the number
// that this field would be, 1.fraction * 2^1024. Others give anything.
RVX_INLINE Lanes rootOfNormal(Lanes magnitude, LaneMask huge)
{
    const RvxBits lowered = (RvxBits)magnitude.v & ~(huge.b & RVX_EXPONENT_TWO);
    return sqrtLanes({(RvxVector)lowered}) * choose(huge, allLanes(2.0), allLanes(1.0));
}

RVX_INLINE LaneMask isHuge(Lanes magnitude)
{
    return ~isBelow(magnitude, allLanes(__builtin_inf()));
}

// Where the exponent field is neither 0 nor 2047.
RVX_INLINE LaneMask isNormal(Lanes magnitude)
{
    return isAtMost(allLanes(0x1p-1022), magnitude) & isBelow(magnitude, allLanes(__builtin_inf()));
}

// The elements of a triple: as above, and an x with the exponent field 0 counts as
// 1.fraction * 2^-1023, unless its high word is all zero, when the root is 0.0.
// Deliberate: so do zeros and subnormals, infinities and NaNs come out of the
// exponent's halving.
RVX_INLINE Lanes tripleRoot(Lanes x)
{
    const Lanes magnitude = absLanes(x);
    const LaneMask small = isBelow(magnitude, allLanes(0x1p-1022));
    const Lanes raised = {(RvxVector)((RvxBits)magnitude.v | (small.b & RVX_EXPONENT_TWO))};
    const Lanes root = rootOfNormal(raised, isHuge(magnitude));
    const LaneMask nothing = {((RvxBits)x.v & ~std::int64_t{0xffffffff}) == 0};
    return onlyWhere(~nothing, choose(small, root * allLanes(0.5), root));
}

// The same with 0.0 for every x whose exponent field is zero.
RVX_INLINE Lanes tripleRootOfSquares(Lanes x)
{
    const Lanes magnitude = absLanes(x);
    const LaneMask small = isBelow(magnitude, allLanes(0x1p-1022));
    return onlyWhere(~small, rootOfNormal(magnitude, isHuge(magnitude)));
}

#endif
