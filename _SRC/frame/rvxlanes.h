// Four doubles, or two complex values, side by side.
//
// The compiler turns each operation into one instruction where the kernel's
// instruction set has 256-bit registers and into two where it has not; the
// results are the same. Loads and stores need the alignment of double alone.
//
// The record around the vector keeps it out of the calling conventions, which
// differ between instruction sets; all of this is inlined.

#ifndef RVXLANES_H
#define RVXLANES_H

#include <cstdint>

#include "frame/rvxkernel.h"
#include "rvx.h"

using RvxVector = double __attribute__((vector_size(32)));
// A typedef, since Clang passes over the alignment in an alias declaration.
typedef double RvxVectorMem __attribute__((vector_size(32), aligned(8), may_alias));
using RvxPair = double __attribute__((vector_size(16)));
typedef double RvxPairMem __attribute__((vector_size(16), aligned(8), may_alias));
using RvxBits = std::int64_t __attribute__((vector_size(32)));
using RvxWords = std::uint32_t __attribute__((vector_size(32)));
using RvxSignedWords = std::int32_t __attribute__((vector_size(32)));

struct Lanes {
    RvxVector v;
};

// How many doubles p stands behind a multiple of 32 bytes. A store of four lanes
// there crosses no cache line, which is worth up to twice the speed.
RVX_INLINE int doublesBehindLanes(const void *p)
{
    return static_cast<int>(reinterpret_cast<std::uintptr_t>(p) / sizeof(double) % 4);
}

// Blocks shorter than this gain nothing from stores in step with the lanes.
constexpr int RVX_WORTH_ALIGNING = 32;

RVX_INLINE Lanes loadLanes(const double *p)
{
    return {*reinterpret_cast<const RvxVectorMem *>(p)};
}

// Loads exactly once. From a plain load compilers make one for each use, and loads are
// what many kernels wait for.
RVX_INLINE Lanes loadLanesOnce(const double *p)
{
    return {*reinterpret_cast<const volatile RvxVectorMem *>(p)};
}

RVX_INLINE Lanes loadLanes(const ZCplx *p)
{
    return {*reinterpret_cast<const RvxVectorMem *>(p)};
}

RVX_INLINE Lanes loadLanesOnce(const ZCplx *p)
{
    return {*reinterpret_cast<const volatile RvxVectorMem *>(p)};
}

RVX_INLINE void storeLanes(double *p, Lanes a)
{
    *reinterpret_cast<RvxVectorMem *>(p) = a.v;
}

RVX_INLINE void storeLanes(ZCplx *p, Lanes a)
{
    *reinterpret_cast<RvxVectorMem *>(p) = a.v;
}

// The first complex value alone.
RVX_INLINE void storeFirst(ZCplx *p, Lanes a)
{
    *p = {a.v[0], a.v[1]};
}

RVX_INLINE void storeFirst(double *p, Lanes a)
{
    *p = a.v[0];
}

RVX_INLINE Lanes allLanes(double x)
{
    return {RvxVector{x, x, x, x}};
}

RVX_INLINE Lanes allBits(std::uint64_t bits)
{
    const auto b = static_cast<std::int64_t>(bits);
    return {(RvxVector)RvxBits{b, b, b, b}};
}

// (re, im, re, im)
RVX_INLINE Lanes allLanes(ZCplx z)
{
    return {RvxVector{z.re, z.im, z.re, z.im}};
}

// Pair by pair: four at once may go through memory, and the load then has to wait
// for the stores.
RVX_INLINE Lanes lanesOf(double a, double b, double c, double d)
{
    const RvxPair low{a, b};
    const RvxPair high{c, d};
    return {__builtin_shufflevector(low, high, 0, 1, 2, 3)};
}

RVX_INLINE Lanes pairLanes(ZCplx first, ZCplx second)
{
    return {RvxVector{first.re, first.im, second.re, second.im}};
}

// The same from memory, a load for each value.
RVX_INLINE Lanes pairLoads(const ZCplx *first, const ZCplx *second)
{
    const RvxPair low = *reinterpret_cast<const RvxPairMem *>(first);
    const RvxPair high = *reinterpret_cast<const RvxPairMem *>(second);
    return {__builtin_shufflevector(low, high, 0, 1, 2, 3)};
}

RVX_INLINE Lanes operator+(Lanes a, Lanes b)
{
    return {a.v + b.v};
}

RVX_INLINE Lanes operator-(Lanes a, Lanes b)
{
    return {a.v - b.v};
}

RVX_INLINE Lanes operator-(Lanes a)
{
    return {-a.v};
}

RVX_INLINE Lanes operator*(Lanes a, Lanes b)
{
    return {a.v * b.v};
}

RVX_INLINE Lanes operator/(Lanes a, Lanes b)
{
    return {a.v / b.v};
}

// Written lane by lane since only one compiler has a name for it; both make one
// instruction of it.
RVX_INLINE Lanes sqrtLanes(Lanes a)
{
    return {RvxVector{__builtin_sqrt(a.v[0]), __builtin_sqrt(a.v[1]), __builtin_sqrt(a.v[2]),
                      __builtin_sqrt(a.v[3])}};
}

// a - b in the even lanes, a + b in the odd ones: the last step of a complex
// product. Compilers make one instruction of it.
RVX_INLINE Lanes subAdd(Lanes a, Lanes b)
{
    const RvxVector difference = a.v - b.v;
    const RvxVector sum = a.v + b.v;
    return {__builtin_shufflevector(difference, sum, 0, 5, 2, 7)};
}

// (im, re, im, re)
RVX_INLINE Lanes swapParts(Lanes a)
{
    return {__builtin_shufflevector(a.v, a.v, 1, 0, 3, 2)};
}

// (re, re, re, re) and (im, im, im, im), each value twice
RVX_INLINE Lanes realParts(Lanes a)
{
    return {__builtin_shufflevector(a.v, a.v, 0, 0, 2, 2)};
}

RVX_INLINE Lanes imagParts(Lanes a)
{
    return {__builtin_shufflevector(a.v, a.v, 1, 1, 3, 3)};
}

// (a0, b0, a2, b2) and (a1, b1, a3, b3): parts out of pairs of complex values,
// and back
RVX_INLINE Lanes evenLanes(Lanes a, Lanes b)
{
    return {__builtin_shufflevector(a.v, b.v, 0, 4, 2, 6)};
}

RVX_INLINE Lanes oddLanes(Lanes a, Lanes b)
{
    return {__builtin_shufflevector(a.v, b.v, 1, 5, 3, 7)};
}

// (a0, a2, b0, b2) and (a1, a3, b1, b3): real and imaginary parts of four complex
// values in a row
RVX_INLINE Lanes evenElements(Lanes a, Lanes b)
{
    return {__builtin_shufflevector(a.v, b.v, 0, 2, 4, 6)};
}

RVX_INLINE Lanes oddElements(Lanes a, Lanes b)
{
    return {__builtin_shufflevector(a.v, b.v, 1, 3, 5, 7)};
}

// (a0, b0, a1, b1) and (a2, b2, a3, b3): the way back
RVX_INLINE Lanes interleaveLow(Lanes a, Lanes b)
{
    return {__builtin_shufflevector(a.v, b.v, 0, 4, 1, 5)};
}

RVX_INLINE Lanes interleaveHigh(Lanes a, Lanes b)
{
    return {__builtin_shufflevector(a.v, b.v, 2, 6, 3, 7)};
}

// (a0, a1, b2, b3): the first complex value of a and the second of b
RVX_INLINE Lanes outerHalves(Lanes a, Lanes b)
{
    return {__builtin_shufflevector(a.v, b.v, 0, 1, 6, 7)};
}

// (a0, a1, b0, b1) and (a2, a3, b2, b3): the first and the second complex values
RVX_INLINE Lanes firstHalves(Lanes a, Lanes b)
{
    return {__builtin_shufflevector(a.v, b.v, 0, 1, 4, 5)};
}

RVX_INLINE Lanes lastHalves(Lanes a, Lanes b)
{
    return {__builtin_shufflevector(a.v, b.v, 2, 3, 6, 7)};
}

// Rows become columns.
RVX_INLINE void transposeLanes(Lanes &a, Lanes &b, Lanes &c, Lanes &d)
{
    const Lanes evenAB = evenLanes(a, b);
    const Lanes oddAB = oddLanes(a, b);
    const Lanes evenCD = evenLanes(c, d);
    const Lanes oddCD = oddLanes(c, d);
    a = firstHalves(evenAB, evenCD);
    b = firstHalves(oddAB, oddCD);
    c = lastHalves(evenAB, evenCD);
    d = lastHalves(oddAB, oddCD);
}

// (a2, a3, a0, a1): the two complex values in the other order
RVX_INLINE Lanes swapHalves(Lanes a)
{
    return {__builtin_shufflevector(a.v, a.v, 2, 3, 0, 1)};
}

// (a0, a1, a0, a1) and (a2, a3, a2, a3): one of the complex values twice
RVX_INLINE Lanes firstHalfTwice(Lanes a)
{
    return {__builtin_shufflevector(a.v, a.v, 0, 1, 0, 1)};
}

RVX_INLINE Lanes lastHalfTwice(Lanes a)
{
    return {__builtin_shufflevector(a.v, a.v, 2, 3, 2, 3)};
}

// (even0, odd1, even2, odd3). As integers: for doubles compilers may take a shuffle,
// which has fewer pipes than a blend.
RVX_INLINE Lanes blendOdd(Lanes even, Lanes odd)
{
    const auto bits = __builtin_shufflevector(reinterpret_cast<RvxBits>(even.v),
                                              reinterpret_cast<RvxBits>(odd.v), 0, 5, 2, 7);
    return {reinterpret_cast<RvxVector>(bits)};
}

RVX_INLINE double firstLane(Lanes a)
{
    return a.v[0];
}

// (3, 2, 1, 0)
RVX_INLINE Lanes reversed(Lanes a)
{
    return {__builtin_shufflevector(a.v, a.v, 3, 2, 1, 0)};
}

// (a0, a2, a1, a3)
RVX_INLINE Lanes swapMiddle(Lanes a)
{
    return {__builtin_shufflevector(a.v, a.v, 0, 2, 1, 3)};
}

// (0, 0, 1, 1) and (2, 2, 3, 3): a real factor for both parts of complex values
RVX_INLINE Lanes lowTwice(Lanes a)
{
    return {__builtin_shufflevector(a.v, a.v, 0, 0, 1, 1)};
}

RVX_INLINE Lanes highTwice(Lanes a)
{
    return {__builtin_shufflevector(a.v, a.v, 2, 2, 3, 3)};
}

RVX_INLINE Lanes maskBits(Lanes a, std::int64_t mask)
{
    return {(RvxVector)((RvxBits)a.v & mask)};
}

// (-a0, a1, -a2, a3)
RVX_INLINE Lanes negateEven(Lanes a)
{
    return {(RvxVector)((RvxBits)a.v ^ RvxBits{INT64_MIN, 0, INT64_MIN, 0})};
}

// (a0, -a1, a2, -a3): both values conjugated
RVX_INLINE Lanes conjugated(Lanes a)
{
    return {(RvxVector)((RvxBits)a.v ^ RvxBits{0, INT64_MIN, 0, INT64_MIN})};
}

RVX_INLINE Lanes absLanes(Lanes a)
{
    return maskBits(a, INT64_MAX);
}

// |a| with b's sign bit
RVX_INLINE Lanes withSignOf(Lanes a, Lanes b)
{
    return {(RvxVector)(((RvxBits)a.v & INT64_MAX) | ((RvxBits)b.v & INT64_MIN))};
}

// (a0, b1, c2, d3)
RVX_INLINE Lanes diagonalLanes(Lanes a, Lanes b, Lanes c, Lanes d)
{
    return outerHalves(blendOdd(a, b), blendOdd(c, d));
}

// (ai, ai, ai, ai)
template <int i>
RVX_INLINE Lanes laneEverywhere(Lanes a)
{
    return {__builtin_shufflevector(a.v, a.v, i, i, i, i)};
}

// x where it is strictly above m and m elsewhere, so that a NaN in x is passed
// over; minLanes likewise. One instruction.
RVX_INLINE Lanes maxLanes(Lanes m, Lanes x)
{
    return {x.v > m.v ? x.v : m.v};
}

RVX_INLINE Lanes minLanes(Lanes m, Lanes x)
{
    return {x.v < m.v ? x.v : m.v};
}

// The larger of the 32-bit words at each place, without or with their signs. These
// run beside additions, which take the same units as maxLanes.
RVX_INLINE Lanes maxWords(Lanes m, Lanes x)
{
    const auto a = (RvxWords)m.v, b = (RvxWords)x.v;
    return {(RvxVector)(b > a ? b : a)};
}

RVX_INLINE Lanes maxSignedWords(Lanes m, Lanes x)
{
    const auto a = (RvxSignedWords)m.v, b = (RvxSignedWords)x.v;
    return {(RvxVector)(b > a ? b : a)};
}

// The smaller of the words at each place, without or with their signs.
RVX_INLINE Lanes minWords(Lanes m, Lanes x)
{
    const auto a = (RvxWords)m.v, b = (RvxWords)x.v;
    return {(RvxVector)(b < a ? b : a)};
}

RVX_INLINE Lanes minSignedWords(Lanes m, Lanes x)
{
    const auto a = (RvxSignedWords)m.v, b = (RvxSignedWords)x.v;
    return {(RvxVector)(b < a ? b : a)};
}

// At least m and |x|, and at most 2^-20 above the larger of them; infinite or NaN
// when x is.
RVX_INLINE Lanes maxMagnitude(Lanes m, Lanes x)
{
    return maxWords(m, absLanes(x));
}

// 1.0 where x is strictly above m, 0.0 elsewhere.
RVX_INLINE Lanes oneWhereAbove(Lanes x, Lanes m)
{
    const RvxVector one = {1.0, 1.0, 1.0, 1.0};
    return {(RvxVector)((x.v > m.v) & (RvxBits)one)};
}

// (a3, b0, b1, b2) and (a2, a3, b0, b1): one real or complex value handed on from a
// to b
RVX_INLINE Lanes lastLaneThen(Lanes a, Lanes b)
{
    return {__builtin_shufflevector(a.v, b.v, 3, 4, 5, 6)};
}

RVX_INLINE Lanes lastHalfThen(Lanes a, Lanes b)
{
    return {__builtin_shufflevector(a.v, b.v, 2, 3, 4, 5)};
}

// One truth per lane.
struct LaneMask {
    RvxBits b;
};

RVX_INLINE LaneMask operator|(LaneMask a, LaneMask b)
{
    return {a.b | b.b};
}

RVX_INLINE LaneMask operator&(LaneMask a, LaneMask b)
{
    return {a.b & b.b};
}

RVX_INLINE LaneMask operator~(LaneMask a)
{
    return {~a.b};
}

// Where the sign bit is set, of zeros and NaNs too.
RVX_INLINE LaneMask isSigned(Lanes a)
{
    return {(RvxBits)a.v < 0};
}

RVX_INLINE LaneMask isEqual(Lanes a, Lanes b)
{
    return {a.v == b.v};
}

RVX_INLINE LaneMask isBelow(Lanes a, Lanes b)
{
    return {a.v < b.v};
}

RVX_INLINE LaneMask isAtMost(Lanes a, Lanes b)
{
    return {a.v <= b.v};
}

RVX_INLINE LaneMask isNan(Lanes a)
{
    return {a.v != a.v};
}

// a where the mask holds and b elsewhere
RVX_INLINE Lanes choose(LaneMask mask, Lanes a, Lanes b)
{
    return {mask.b ? a.v : b.v};
}

// a where the mask holds and +0.0 elsewhere
RVX_INLINE Lanes onlyWhere(LaneMask mask, Lanes a)
{
    return {(RvxVector)((RvxBits)a.v & mask.b)};
}

RVX_INLINE bool anyLane(LaneMask a)
{
    const auto both =
        __builtin_shufflevector(a.b, a.b, 0, 1) | __builtin_shufflevector(a.b, a.b, 2, 3);
    return (both[0] | both[1]) != 0;
}

RVX_INLINE bool everyLane(LaneMask a)
{
    return !anyLane(~a);
}

#endif
