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

template <typename Int, typename Value>
RVX_INLINE void convertEach(const Int *__restrict src, double *__restrict dst, int n, Value value)
{
    for (int i = 0; i < n; ++i)
        dst[i] = value(src[i]);
}

// In groups of as many integers as compilers take at once. The first and the last
// overlap what lies between, which so needs no remainder, and whose stores, the limit,
// cross no cache lines.
template <typename Int, typename Value>
RVX_INLINE void convertBlock(const Int *src, double *dst, int n, Value value)
{
    constexpr int groupLen = 32 / sizeof(Int);
    if (n < groupLen) {
        convertEach(src, dst, n, value);
        return;
    }
    convertEach(src, dst, groupLen, value);
    const int from = groupLen - doublesBehindLanes(dst);
    const int last = n - groupLen;
    if (from < last)
        convertEach(src + from, dst + from, (last - from + groupLen - 1) & -groupLen, value);
    convertEach(src + last, dst + last, groupLen, value);
}

struct Scaled {
    double scale;
    template <typename Int>
    RVX_INLINE double operator()(Int x) const
    {
        return static_cast<double>(x) * scale;
    }
};

RVX_KERNEL void signedBytesToDoubles(const std::int8_t *src, double *dst, int n, double scale)
{
    convertBlock(src, dst, n, Scaled{scale});
}

RVX_KERNEL void bytesToDoubles(const std::uint8_t *src, double *dst, int n, double scale)
{
    convertBlock(src, dst, n, Scaled{scale});
}

RVX_KERNEL void signedShortsToDoubles(const std::int16_t *src, double *dst, int n, double scale)
{
    convertBlock(src, dst, n, Scaled{scale});
}

RVX_KERNEL void shortsToDoubles(const std::uint16_t *src, double *dst, int n, double scale)
{
    convertBlock(src, dst, n, Scaled{scale});
}

RVX_KERNEL void signedWordsToDoubles(const std::int32_t *src, double *dst, int n, double scale)
{
    convertBlock(src, dst, n, Scaled{scale});
}

// The integer is put behind the bits of base = 2^52 * scale, which is then taken
// off: there is no instruction for unsigned words, and what compilers make of them
// gives -0.0 for 0 in one rounding mode.
struct Behind {
    std::int64_t front; // the bits of base
    double base;
    RVX_INLINE double operator()(std::uint32_t word) const
    {
        const std::int64_t bits = front | static_cast<std::int64_t>(word);
        double x;
        std::memcpy(&x, &bits, sizeof x);
        return std::fabs(x - base);
    }
};

RVX_KERNEL void wordsToDoubles(const std::uint32_t *src, double *dst, int n, double base)
{
    std::int64_t front;
    std::memcpy(&front, &base, sizeof front);
    convertBlock(src, dst, n, Behind{front, base});
}

double powerOfTwo(int exponent)
{
    const std::int64_t bits = (INT64_C(1023) + exponent) << 52;
    double power;
    std::memcpy(&power, &bits, sizeof power);
    return power;
}

} // namespace

void rvxIntsToDoubles(const void *src, double *dst, int n, const IntFormat &format)
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
