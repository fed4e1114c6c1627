// Several Lanes that go through the same formula side by side.
//
// A formula on one vector is a chain in which each operation waits for the one before.
// Here every operation is done for all vectors of a bundle before the next begins, so
// that the processor always has some that are ready; what does not fit in registers
// waits on the stack.

#ifndef RVXBUNDLE_H
#define RVXBUNDLE_H

#include "frame/rvxlanes.h"

template <int count>
struct Bundle {
    Lanes v[count];
};

// In front of loops over a bundle.
#define RVX_UNROLLED _Pragma("GCC unroll 8")

template <int count>
RVX_INLINE Bundle<count> loadBundle(const double *p)
{
    Bundle<count> a;
    RVX_UNROLLED for (int i = 0; i < count; ++i) a.v[i] = loadLanes(p + 4 * i);
    return a;
}

template <int count>
RVX_INLINE void storeBundle(double *p, const Bundle<count> &a)
{
    RVX_UNROLLED for (int i = 0; i < count; ++i) storeLanes(p + 4 * i, a.v[i]);
}

template <int count>
RVX_INLINE Bundle<count> operator+(const Bundle<count> &a, const Bundle<count> &b)
{
    Bundle<count> sum;
    RVX_UNROLLED for (int i = 0; i < count; ++i) sum.v[i] = a.v[i] + b.v[i];
    return sum;
}

template <int count>
RVX_INLINE Bundle<count> operator-(const Bundle<count> &a, const Bundle<count> &b)
{
    Bundle<count> difference;
    RVX_UNROLLED for (int i = 0; i < count; ++i) difference.v[i] = a.v[i] - b.v[i];
    return difference;
}

template <int count>
RVX_INLINE Bundle<count> operator*(const Bundle<count> &a, const Bundle<count> &b)
{
    Bundle<count> product;
    RVX_UNROLLED for (int i = 0; i < count; ++i) product.v[i] = a.v[i] * b.v[i];
    return product;
}

template <int count>
RVX_INLINE Bundle<count> operator/(const Bundle<count> &a, const Bundle<count> &b)
{
    Bundle<count> quotient;
    RVX_UNROLLED for (int i = 0; i < count; ++i) quotient.v[i] = a.v[i] / b.v[i];
    return quotient;
}

// A constant stands for as many of it.
template <int count>
RVX_INLINE Bundle<count> operator+(const Bundle<count> &a, double c)
{
    Bundle<count> sum;
    RVX_UNROLLED for (int i = 0; i < count; ++i) sum.v[i] = a.v[i] + allLanes(c);
    return sum;
}

template <int count>
RVX_INLINE Bundle<count> operator-(const Bundle<count> &a, double c)
{
    Bundle<count> difference;
    RVX_UNROLLED for (int i = 0; i < count; ++i) difference.v[i] = a.v[i] - allLanes(c);
    return difference;
}

template <int count>
RVX_INLINE Bundle<count> operator-(double c, const Bundle<count> &a)
{
    Bundle<count> difference;
    RVX_UNROLLED for (int i = 0; i < count; ++i) difference.v[i] = allLanes(c) - a.v[i];
    return difference;
}

template <int count>
RVX_INLINE Bundle<count> operator*(const Bundle<count> &a, double c)
{
    Bundle<count> product;
    RVX_UNROLLED for (int i = 0; i < count; ++i) product.v[i] = a.v[i] * allLanes(c);
    return product;
}

// The neighbours in pairs, and in pairs of pairs.
template <int count>
RVX_INLINE Bundle<count> swapParts(const Bundle<count> &a)
{
    Bundle<count> swapped;
    RVX_UNROLLED for (int i = 0; i < count; ++i) swapped.v[i] = swapParts(a.v[i]);
    return swapped;
}

template <int count>
RVX_INLINE Bundle<count> swapHalves(const Bundle<count> &a)
{
    Bundle<count> swapped;
    RVX_UNROLLED for (int i = 0; i < count; ++i) swapped.v[i] = swapHalves(a.v[i]);
    return swapped;
}

// One reciprocal for each pair of lanes, in which a is the same: c / a. Two vectors
// share an instruction.
template <int count>
RVX_INLINE Bundle<count> overPairs(double c, const Bundle<count> &a)
{
    static_assert(count % 2 == 0, "two at a time");
    Bundle<count> quotient;
    RVX_UNROLLED for (int i = 0; i < count; i += 2)
    {
        const Lanes both = allLanes(c) / blendOdd(a.v[i], a.v[i + 1]);
        quotient.v[i] = realParts(both);
        quotient.v[i + 1] = imagParts(both);
    }
    return quotient;
}

// The same where all lanes of a vector are alike; four share an instruction.
template <int count>
RVX_INLINE Bundle<count> overFours(double c, const Bundle<count> &a)
{
    static_assert(count % 4 == 0, "four at a time");
    Bundle<count> quotient;
    RVX_UNROLLED for (int i = 0; i < count; i += 4)
    {
        const Lanes all = allLanes(c) / diagonalLanes(a.v[i], a.v[i + 1], a.v[i + 2], a.v[i + 3]);
        quotient.v[i] = laneEverywhere<0>(all);
        quotient.v[i + 1] = laneEverywhere<1>(all);
        quotient.v[i + 2] = laneEverywhere<2>(all);
        quotient.v[i + 3] = laneEverywhere<3>(all);
    }
    return quotient;
}

#endif
