// Integers of 8, 16 and 32 bits to doubles. All of them are exact, so the rounding
// mode in force does not matter; only a zero that comes out of a difference has its
// sign from there.

#include <cmath>
#include <cstdint>
#include <cstring>

#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"
#include "vector/rvxcvrtd_int.h"

namespace {

// Stores are the limit, and those that cross a cache line count twice.
RVX_INLINE int stepsToAlignment(const double *dst, int n)
{
    return n < 64 ? 0 : (4 - doublesBehindLanes(dst)) % 4;
}

template <typename Int>
RVX_INLINE void scaleInts(const Int *__restrict src, double *__restrict dst, int n, double scale)
{
    int i = 0;
    for (const int steps = stepsToAlignment(dst, n); i < steps; ++i)
        dst[i] = static_cast<double>(src[i]) * scale;
    for (; i < n; ++i)
        dst[i] = static_cast<double>(src[i]) * scale;
}

RVX_KERNEL void signedBytesToDoubles(const std::int8_t *src, double *dst, int n, double scale)
{
    scaleInts(src, dst, n, scale);
}

RVX_KERNEL void bytesToDoubles(const std::uint8_t *src, double *dst, int n, double scale)
{
    scaleInts(src, dst, n, scale);
}

RVX_KERNEL void signedShortsToDoubles(const std::int16_t *src, double *dst, int n, double scale)
{
    scaleInts(src, dst, n, scale);
}

RVX_KERNEL void shortsToDoubles(const std::uint16_t *src, double *dst, int n, double scale)
{
    scaleInts(src, dst, n, scale);
}

RVX_KERNEL void signedWordsToDoubles(const std::int32_t *src, double *dst, int n, double scale)
{
    scaleInts(src, dst, n, scale);
}

RVX_INLINE double wordBehind(std::int64_t front, double base, std::uint32_t word)
{
    const std::int64_t bits = front | static_cast<std::int64_t>(word);
    double x;
    std::memcpy(&x, &bits, sizeof x);
    return std::fabs(x - base);
}

// The integer is put behind the bits of base = 2^52 * scale, which is then taken
// off: there is no instruction for unsigned words, and what compilers make of them
// gives -0.0 for 0 in one rounding mode.
RVX_KERNEL void wordsToDoubles(const std::uint32_t *__restrict src, double *__restrict dst, int n,
                               double base)
{
    std::int64_t front;
    std::memcpy(&front, &base, sizeof front);
    int i = 0;
    for (const int steps = stepsToAlignment(dst, n); i < steps; ++i)
        dst[i] = wordBehind(front, base, src[i]);
    for (; i < n; ++i)
        dst[i] = wordBehind(front, base, src[i]);
}

double powerOfTwo(int exponent)
{
    const std::int64_t bits = (INT64_C(1023) + exponent) << 52;
    double power;
    std::memcpy(&power, &bits, sizeof power);
    return power;
}

} // namespace

void rvxIntsToDoubles(const void *src, double *dst, int n, IntFormat format)
{
    const double scale = powerOfTwo(-format.fractBits);
    if (format.size == 8 && format.isUnsigned)
        bytesToDoubles(static_cast<const std::uint8_t *>(src), dst, n, scale);
    else if (format.size == 8)
        signedBytesToDoubles(static_cast<const std::int8_t *>(src), dst, n, scale);
    else if (format.size == 16 && format.isUnsigned)
        shortsToDoubles(static_cast<const std::uint16_t *>(src), dst, n, scale);
    else if (format.size == 16)
        signedShortsToDoubles(static_cast<const std::int16_t *>(src), dst, n, scale);
    else if (format.isUnsigned)
        wordsToDoubles(static_cast<const std::uint32_t *>(src), dst, n, 0x1p52 * scale);
    else
        signedWordsToDoubles(static_cast<const std::int32_t *>(src), dst, n, scale);
}
