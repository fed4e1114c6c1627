// rvxlaw: samples to and from the 8-bit codes of G.711, A-law and mu-law.
//
// Both laws are small floating-point formats, 3 bits of exponent and 4 of significand,
// once a constant is added (mu-law) or the lowest exponent is seen to (A-law). So the
// codes stand in the first 16 bits of a double, and nothing is looked up. ITU-T
// Recommendation G.711, Pulse code modulation (PCM) of voice frequencies, 1988. That
// codes of negative samples mirror those of positive ones is deliberate.

#include <cstdint>
#include <cstring>

#include "frame/rvxcheck.h"
#include "frame/rvxfloatmode.h"
#include "frame/rvxwords.h"
#include "rvx.h"

RVX_MODULE("rvxlaw")

namespace {

constexpr int groupLen = 16;

// The first 16 bits of 2^e: four bits of significand below the exponent.
constexpr int frontOf(int e)
{
    return (1023 + e) << 4;
}

RVX_INLINE Shorts allFronts(int x)
{
    const auto s = static_cast<std::int16_t>(x);
    return {RvxShorts{s, s, s, s, s, s, s, s, s, s, s, s, s, s, s, s}};
}

// The first 16 bits of 16 doubles, of elements 0, 8, 1, 9, 4, 12, 5, 13, 2, 10, 3,
// 11, 6, 14, 7, 15.
RVX_INLINE Shorts frontsOf(const Lanes *x)
{
    const auto low = (RvxWords)highWords(x[0], x[1]).w;
    const auto high = (RvxWords)highWords(x[2], x[3]).w;
    return {(RvxShorts)((low >> 16) | (high & 0xffff0000U))};
}

// Stores the low bytes in the order of the elements.
RVX_INLINE void storeCodes(unsigned char *dst, Shorts codes)
{
    const RvxShorts c = codes.s;
    const RvxByteBlock b =
        packShortsUnsigned({__builtin_shufflevector(c, c, 0, 1, 2, 3, 4, 5, 6, 7)},
                           {__builtin_shufflevector(c, c, 8, 9, 10, 11, 12, 13, 14, 15)})
            .b;
    storeBytes(
        dst, {__builtin_shufflevector(b, b, 0, 2, 8, 10, 4, 6, 12, 14, 1, 3, 9, 11, 5, 7, 13, 15)});
}

RVX_INLINE Shorts smaller(Shorts a, Shorts b)
{
    return {a.s < b.s ? a.s : b.s};
}

RVX_INLINE Shorts larger(Shorts a, Shorts b)
{
    return {a.s > b.s ? a.s : b.s};
}

// The code with its sign bit, 1 for positive, and then the given bits inverted.
// Samples that are not a whole step of 2^-15 from zero count as positive.
RVX_INLINE Shorts withSign(Shorts code, Shorts front, int inverted)
{
    const RvxShorts mirrored = front.s ^ allFronts(0x8000).s;
    const RvxShorts negative = mirrored >= allFronts(frontOf(-15)).s;
    return {code.s ^ (negative & allFronts(0x80).s) ^ allFronts(0x80 ^ inverted).s};
}

RVX_INLINE void absGroup(const double *src, Lanes *x, Lanes *magnitude)
{
    for (int k = 0; k < 4; ++k) {
        x[k] = loadLanes(src + 4 * k);
        magnitude[k] = absLanes(x[k]);
    }
}

// With 131 steps of 2^-15 added each segment begins at a power of two. The sum is
// rounded towards zero, as the code is. From 0.96875 on a sample has the largest code,
// and below it has at most that: limiting the code is enough.
RVX_INLINE void encodeMuLaw(const double *src, unsigned char *dst)
{
    Lanes x[4], y[4];
    absGroup(src, x, y);
    for (Lanes &lanes : y)
        lanes = lanes + allLanes(131 * 0x1p-15);
    Shorts code = {frontsOf(y).s - allFronts(frontOf(-8)).s};
    code = smaller(code, allFronts(127));
    storeCodes(dst, withSign(code, frontsOf(x), 0x7f));
}

// From 2^-7 on the code stands in the sample itself. Below it steps are even, as those
// from 2^-7 to 2^-6 are, and the code is that of the sample moved there. Of both the
// larger is the right one on either side.
RVX_INLINE void encodeALaw(const double *src, unsigned char *dst)
{
    Lanes x[4], y[4];
    absGroup(src, x, y);
    for (Lanes &lanes : y)
        lanes = lanes + allLanes(0x1p-7);
    const Shorts front = frontsOf(x);
    const Shorts even = {frontsOf(y).s - allFronts(frontOf(-7)).s};
    const Shorts own = {(front.s & allFronts(0x7fff).s) - allFronts(frontOf(-8)).s};
    const Shorts code = smaller(larger(even, own), allFronts(127));
    storeCodes(dst, withSign(code, front, 0x55));
}

template <void (*encode)(const double *, unsigned char *)>
RVX_INLINE void encodeBlock(const double *src, unsigned char *dst, int n)
{
    if (n < groupLen) {
        double group[groupLen];
        unsigned char codes[groupLen];
        for (int i = 0; i < groupLen; ++i)
            group[i] = i < n ? src[i] : 0.0;
        encode(group, codes);
        for (int i = 0; i < n; ++i)
            dst[i] = codes[i];
        return;
    }
    // Loads that cross a cache line count twice. Some samples are coded for the second
    // time, behind the first group and in the last.
    encode(src, dst);
    const int last = n - groupLen;
    for (int i = groupLen - doublesBehindLanes(src); i < last; i += groupLen)
        encode(src + i, dst + i);
    if (last > 0)
        encode(src + last, dst + last);
}

RVX_KERNEL void samplesToALaw(const double *src, unsigned char *dst, int n)
{
    encodeBlock<encodeALaw>(src, dst, n);
}

RVX_KERNEL void samplesToMuLaw(const double *src, unsigned char *dst, int n)
{
    encodeBlock<encodeMuLaw>(src, dst, n);
}

// ---------------------------------------------------------------------------
// Decoders. The middle of a step as a float: code bits, then one more bit.

constexpr std::uint32_t middleOfStep = 1 << 18;
constexpr std::uint32_t floatOne = 127 << 23;

RVX_INLINE float floatOf(std::uint32_t bits)
{
    float x;
    std::memcpy(&x, &bits, sizeof x);
    return x;
}

// The seven bits of a code in their places in a float, and its bit 7 as the sign.
RVX_INLINE std::uint32_t spread(std::uint32_t code)
{
    const auto sign = static_cast<std::int32_t>(code << 24);
    return static_cast<std::uint32_t>(sign >> 5) & (0x80000000 | 0x7f << 19);
}

// The lowest segment has the steps of the next, and is decoded as that less its start.
RVX_KERNEL void aLawToSamples(const unsigned char *__restrict src, double *__restrict dst, int n)
{
    constexpr std::uint32_t base = floatOne - (8 << 23) + middleOfStep;
    constexpr std::uint32_t startOfNext = floatOne - (7 << 23);
    for (int i = 0; i < n; ++i) {
        const std::uint32_t code = spread(src[i] ^ 0xd5U);
        const bool isLowest = (code & (0x70 << 19)) == 0;
        const std::uint32_t start = isLowest ? startOfNext | (code & 0x80000000) : 0;
        dst[i] = floatOf(code + (isLowest ? base + (16 << 19) : base)) - floatOf(start);
    }
}

// Both operands of the difference have the sign, so that the negative zero is +0.0.
RVX_KERNEL void muLawToSamples(const unsigned char *__restrict src, double *__restrict dst, int n)
{
    constexpr std::uint32_t bias = floatOne - (8 << 23) + middleOfStep; // 132 steps
    for (int i = 0; i < n; ++i) {
        const std::uint32_t code = spread(src[i] ^ 0xffU);
        dst[i] = floatOf(code + bias) - floatOf((code & 0x80000000) | bias);
    }
}

} // namespace

void rvxdbLinToALaw(const double *src, unsigned char *dst, int len)
{
    RVX_REJECT_IF(len <= 0, "len<=0");
    RVX_REJECT_IF(src == nullptr, "src==0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    const FloatMode callers = enterMode(Rounding::towardZero);
    samplesToALaw(src, dst, len);
    leaveMode(callers);
}

void rvxdbALawToLin(const unsigned char *src, double *dst, int len)
{
    RVX_REJECT_IF(len <= 0, "len<=0");
    RVX_REJECT_IF(src == nullptr, "src==0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    aLawToSamples(src, dst, len);
}

void rvxdbLinToMuLaw(const double *src, unsigned char *dst, int len)
{
    RVX_REJECT_IF(len <= 0, "len<=0");
    RVX_REJECT_IF(src == nullptr, "src==0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    const FloatMode callers = enterMode(Rounding::towardZero);
    samplesToMuLaw(src, dst, len);
    leaveMode(callers);
}

// The rounding mode decides on the sign of a difference that is zero.
void rvxdbMuLawToLin(const unsigned char *src, double *dst, int len)
{
    RVX_REJECT_IF(len <= 0, "len<=0");
    RVX_REJECT_IF(src == nullptr, "src==0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    const FloatMode callers = enterMode(Rounding::nearest);
    muLawToSamples(src, dst, len);
    leaveMode(callers);
}
