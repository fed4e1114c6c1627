// Doubles to integers of 8, 16 and 32 bits.
//
// One addition does the rounding: x + 1.5 * 2^(52 - f) has its last bit at 2^-f, so
// that the processor's own rounding of the sum, in the mode that is asked for, is the
// rounding of the conversion. The integer then stands in the low word of the sum, and
// limits need no thresholds: what is compared with them is rounded already.

#include <cstdint>
#include <cstring>

#include "frame/rvxfloatmode.h"
#include "frame/rvxwords.h"
#include "vector/rvxcvrtd_int.h"

namespace {

struct Conversion {
    double magic;          // what is added; the low word is then the value plus a bias
    double below;          // the greatest double below 2^-f
    double scale;          // 2^f
    std::uint64_t highest; // words of a positive double that is far from any short integer
    std::uint64_t lowest;  // and of a negative one; low words are the largest
    std::int32_t top;      // high word of sums that fit 32 bits
    std::int32_t zero;     // what stands for 0 in the range of signed numbers
    std::int32_t flip;     // turns integers of biased values into those to store
};

// The same in lanes, which stay in registers: what is stored through pointers cannot
// be them.
struct Constants {
    Lanes magic, below, scale, highest, lowest;
    Words top, zero, flip;
};

RVX_INLINE Constants inLanes(const Conversion &to)
{
    return {allLanes(to.magic), allLanes(to.below), allLanes(to.scale), allBits(to.highest),
            allBits(to.lowest), allWords(to.top),   allWords(to.zero),  allWords(to.flip)};
}

// Bits that tell of elements that do not fit: any of a high word; in integers of fewer
// than 32 bits those beyond the size.
struct Misfits {
    Words bits;
};

constexpr int groupLen = 16;

// ---------------------------------------------------------------------------
// 32 bits. The high word of the sum tells whether the value fits; for a NaN or an
// infinity it lies beyond all others on the side of its sign.

// What is x rounded towards zero when it is rounded downwards, the mode in force. In
// units of 2^-f: for x in (n - 1, n] with an integer n <= 0 the sum is in [n, n + 1),
// since a double above n - 1 is so by 2^-53 at least, and the rounded sum is too.
RVX_INLINE Lanes truncatedByFloor(Lanes x, Lanes below)
{
    // -0.0 because of 0.0 compilers make a compare and a mask, two instructions for one.
    return x + choose(isSigned(x), below, allLanes(-0.0));
}

template <bool trunc>
RVX_INLINE Lanes rounded(const double *src, const Constants &to)
{
    const Lanes x = trunc ? loadLanesOnce(src) : loadLanes(src);
    return (trunc ? truncatedByFloor(x, to.below) : x) + to.magic;
}

template <bool trunc, bool clip, bool report>
RVX_INLINE void convertGroup(const double *src, std::int32_t *dst, const Constants &to,
                             Misfits &misfits)
{
    for (int i = 0; i < groupLen; i += 8) {
        const Lanes a = rounded<trunc>(src + i, to);
        const Lanes b = rounded<trunc>(src + i + 4, to);
        Words value = lowWords(a, b);
        if (clip || report) {
            const Words high = highWords(a, b);
            if (report)
                misfits.bits = misfits.bits | (high ^ to.top);
            if (clip)
                value.w = (value.w | (high.w > to.top.w)) & ~(high.w < to.top.w);
        }
        storeWords(dst + i, inOrder(value ^ to.flip));
    }
}

// ---------------------------------------------------------------------------
// 8 and 16 bits, which are made of 32. Where it matters numbers too large for these
// are first brought to about 2^30, by their high words, whose order is that of the
// numbers for each of the signs: NaNs and infinities have the largest of all.

RVX_INLINE Lanes loadLimited(const double *src, const Constants &to)
{
    return minWords(minSignedWords(loadLanes(src), to.highest), to.lowest);
}

// Sixteen values less what stands for 0, of which the low bits count.
template <bool trunc>
RVX_INLINE Shorts lowBits(const double *src, const Constants &to)
{
    const Words first = lowWords(rounded<trunc>(src, to), rounded<trunc>(src + 4, to));
    const Words second = lowWords(rounded<trunc>(src + 8, to), rounded<trunc>(src + 12, to));
    return lowShorts(first, second);
}

// Eight values less what stands for 0.
template <bool trunc>
RVX_INLINE Words limitedValues(const double *src, const Constants &to)
{
    const Lanes a = loadLimited(src, to), b = loadLimited(src + 4, to);
    if (trunc)
        return truncatedWords(a * to.scale, b * to.scale) - to.zero;
    return inOrder(lowWords(a + to.magic, b + to.magic));
}

template <int size, bool trunc, bool clip, bool report>
RVX_INLINE ShortOctet limitedShorts(const double *src, const Constants &to, Misfits &misfits)
{
    const Words value = limitedValues<trunc>(src, to);
    if (report)
        misfits.bits = misfits.bits | (value + allWords(1 << (size - 1)));
    return packWords(clip ? value : signExtended<size>(value));
}

template <bool trunc, bool clip, bool report>
RVX_INLINE void convertGroup(const double *src, std::int16_t *dst, const Constants &to,
                             Misfits &misfits)
{
    if (!clip && !report) {
        storeShorts(dst, lowBits<trunc>(src, to) ^ asShorts(to.flip));
        return;
    }
    for (int i = 0; i < groupLen; i += 8)
        storeShorts(dst + i, limitedShorts<16, trunc, clip, report>(src + i, to, misfits) ^
                                 lowHalf(to.flip));
}

template <bool trunc, bool clip, bool report>
RVX_INLINE void convertGroup(const double *src, std::int8_t *dst, const Constants &to,
                             Misfits &misfits)
{
    if (!clip && !report) {
        storeBytes(dst, lowBytes(lowBits<trunc>(src, to)) ^ firstBytes(to.flip));
        return;
    }
    const ShortOctet low = limitedShorts<8, trunc, clip, report>(src, to, misfits);
    const ShortOctet high = limitedShorts<8, trunc, clip, report>(src + 8, to, misfits);
    storeBytes(dst, packShorts(low, high) ^ firstBytes(to.flip));
}

template <bool trunc, bool clip, bool report, typename Int>
RVX_INLINE bool convertBlock(const double *src, Int *dst, int n, const Constants &to)
{
    Misfits misfits = {};
    if (n < groupLen) {
        double group[groupLen];
        Int ints[groupLen];
        for (int i = 0; i < groupLen; ++i)
            group[i] = i < n ? src[i] : 0.0;
        convertGroup<trunc, clip, report>(group, ints, to, misfits);
        for (int i = 0; i < n; ++i)
            dst[i] = ints[i];
    } else {
        // Loads that cross a cache line count twice. Some elements are converted for the
        // second time, behind the first group and in the last.
        convertGroup<trunc, clip, report>(src, dst, to, misfits);
        const int last = n - groupLen;
        for (int i = groupLen - doublesBehindLanes(src); i < last; i += groupLen)
            convertGroup<trunc, clip, report>(src + i, dst + i, to, misfits);
        if (last > 0)
            convertGroup<trunc, clip, report>(src + last, dst + last, to, misfits);
    }
    if (!report)
        return false;
    if constexpr (sizeof(Int) < 4)
        misfits.bits = misfits.bits & allWords(-(1 << (8 * sizeof(Int))));
    return anyBit(misfits.bits);
}

template <bool trunc, typename Int>
RVX_INLINE bool convertAs(const double *src, Int *dst, int n, const Conversion &conversion,
                          bool clip, bool report)
{
    const Constants to = inLanes(conversion);
    if (clip)
        return report ? convertBlock<trunc, true, true>(src, dst, n, to)
                      : convertBlock<trunc, true, false>(src, dst, n, to);
    return report ? convertBlock<trunc, false, true>(src, dst, n, to)
                  : convertBlock<trunc, false, false>(src, dst, n, to);
}

RVX_KERNEL bool doublesToBytes(const double *src, std::int8_t *dst, int n, const Conversion *to,
                               bool trunc, bool clip, bool report)
{
    return trunc ? convertAs<true>(src, dst, n, *to, clip, report)
                 : convertAs<false>(src, dst, n, *to, clip, report);
}

RVX_KERNEL bool doublesToShorts(const double *src, std::int16_t *dst, int n, const Conversion *to,
                                bool trunc, bool clip, bool report)
{
    return trunc ? convertAs<true>(src, dst, n, *to, clip, report)
                 : convertAs<false>(src, dst, n, *to, clip, report);
}

RVX_KERNEL bool doublesToWords(const double *src, std::int32_t *dst, int n, const Conversion *to,
                               bool trunc, bool clip, bool report)
{
    return trunc ? convertAs<true>(src, dst, n, *to, clip, report)
                 : convertAs<false>(src, dst, n, *to, clip, report);
}

double fromBits(std::int64_t bits)
{
    double x;
    std::memcpy(&x, &bits, sizeof x);
    return x;
}

// The bias of 32 bits has values that fit as sums with one and the same high word; in
// fewer bits values less what stands for 0 are signed words as they are.
Conversion conversionTo(const IntFormat &format)
{
    const bool isWord = format.size == 32;
    const std::int64_t half = INT64_C(1) << (format.size - 1);
    const std::int64_t zero = format.isUnsigned ? half : 0;
    const std::int64_t bias = isWord ? half - zero : -zero;
    const std::int64_t middle = (INT64_C(1023) + 52 - format.fractBits) << 52 | INT64_C(1) << 51;
    const std::uint64_t far = static_cast<std::uint64_t>(1023 + 30 - format.fractBits) << 52;
    Conversion to;
    to.magic = fromBits(middle + bias);
    to.below = fromBits(((INT64_C(1023) - format.fractBits) << 52) - 1);
    to.scale = fromBits((INT64_C(1023) + format.fractBits) << 52);
    to.highest = far | 0x7fffffff;
    to.lowest = far | 0x80000000ffffffff;
    to.top = static_cast<std::int32_t>(middle >> 32);
    to.zero = static_cast<std::int32_t>(zero);
    // The top bit of each integer in a word.
    const std::uint32_t tops = format.size == 8    ? 0x80808080U
                               : format.size == 16 ? 0x80008000U
                                                   : 0x80000000U;
    to.flip = static_cast<std::int32_t>(format.isUnsigned != isWord ? tops : 0);
    return to;
}

} // namespace

bool rvxDoublesToInts(const double *src, void *dst, int n, const IntFormat &format,
                      IntRounding rounding, bool clip, bool report)
{
    const Conversion to = conversionTo(format);
    // Truncated words are rounded downwards too, after a step of their own.
    const bool trunc = rounding == IntRounding::trunc;
    const Rounding mode = rounding == IntRounding::nearest ? Rounding::nearest
                          : rounding == IntRounding::ceil  ? Rounding::up
                                                           : Rounding::down;
    const FloatMode callers = enterMode(mode);
    bool misfit;
    if (format.size == 8)
        misfit = doublesToBytes(src, static_cast<std::int8_t *>(dst), n, &to, trunc, clip, report);
    else if (format.size == 16)
        misfit =
            doublesToShorts(src, static_cast<std::int16_t *>(dst), n, &to, trunc, clip, report);
    else
        misfit = doublesToWords(src, static_cast<std::int32_t *>(dst), n, &to, trunc, clip, report);
    leaveMode(callers);
    return misfit;
}
