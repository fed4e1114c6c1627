// Eight integers of 32 bits side by side, out of the halves of eight doubles, and
// what is packed from them.

#ifndef RVXWORDS_H
#define RVXWORDS_H

#include <cstdint>

#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"

using RvxFloats = float __attribute__((vector_size(32)));
using RvxShorts = std::int16_t __attribute__((vector_size(32)));
using RvxWordQuad = std::int32_t __attribute__((vector_size(16)));
using RvxShortOctet = std::int16_t __attribute__((vector_size(16)));
using RvxByteBlock = std::int8_t __attribute__((vector_size(16)));
typedef std::int32_t RvxWordsMem __attribute__((vector_size(32), aligned(4), may_alias));
typedef std::int16_t RvxShortsMem __attribute__((vector_size(32), aligned(2), may_alias));
typedef std::int16_t RvxShortOctetMem __attribute__((vector_size(16), aligned(2), may_alias));
typedef std::int8_t RvxByteBlockMem __attribute__((vector_size(16), aligned(1), may_alias));

struct Words {
    RvxSignedWords w;
};

struct Shorts {
    RvxShorts s;
};

struct ShortOctet {
    RvxShortOctet s;
};

struct ByteBlock {
    RvxByteBlock b;
};

RVX_INLINE Words allWords(std::int32_t x)
{
    return {RvxSignedWords{} + x};
}

RVX_INLINE Words operator|(Words a, Words b)
{
    return {a.w | b.w};
}

RVX_INLINE Words operator&(Words a, Words b)
{
    return {a.w & b.w};
}

RVX_INLINE Words operator^(Words a, Words b)
{
    return {a.w ^ b.w};
}

// Modulo 2^32.
RVX_INLINE Words operator+(Words a, Words b)
{
    return {(RvxSignedWords)((RvxWords)a.w + (RvxWords)b.w)};
}

RVX_INLINE Words operator-(Words a, Words b)
{
    return {(RvxSignedWords)((RvxWords)a.w - (RvxWords)b.w)};
}

RVX_INLINE Shorts operator^(Shorts a, Shorts b)
{
    return {a.s ^ b.s};
}

RVX_INLINE ByteBlock operator^(ByteBlock a, ByteBlock b)
{
    return {a.b ^ b.b};
}

RVX_INLINE ShortOctet operator^(ShortOctet a, ShortOctet b)
{
    return {a.s ^ b.s};
}

// The low, the high halves of eight doubles, as one instruction gives them: of
// elements 0, 1, 4, 5, 2, 3, 6, 7. As floats: for integers compilers take three.
RVX_INLINE Words lowWords(Lanes a, Lanes b)
{
    return {(RvxSignedWords)__builtin_shufflevector((RvxFloats)a.v, (RvxFloats)b.v, 0, 2, 8, 10, 4,
                                                    6, 12, 14)};
}

RVX_INLINE Words highWords(Lanes a, Lanes b)
{
    return {(RvxSignedWords)__builtin_shufflevector((RvxFloats)a.v, (RvxFloats)b.v, 1, 3, 9, 11, 5,
                                                    7, 13, 15)};
}

// The same in the order of the elements.
RVX_INLINE Words inOrder(Words a)
{
    return {(RvxSignedWords)__builtin_shufflevector((RvxBits)a.w, (RvxBits)a.w, 0, 2, 1, 3)};
}

// Eight doubles, of magnitudes below 2^31, truncated; in order.
RVX_INLINE Words truncatedWords(Lanes a, Lanes b)
{
    const auto low = __builtin_convertvector(a.v, RvxWordQuad);
    const auto high = __builtin_convertvector(b.v, RvxWordQuad);
    return {__builtin_shufflevector(low, high, 0, 1, 2, 3, 4, 5, 6, 7)};
}

// The low `size` bits of each word as a signed integer.
template <int size>
RVX_INLINE Words signExtended(Words a)
{
    return {(RvxSignedWords)((RvxWords)a.w << (32 - size)) >> (32 - size)};
}

RVX_INLINE void storeWords(std::int32_t *p, Words a)
{
    *reinterpret_cast<RvxWordsMem *>(p) = a.w;
}

// The first four words, as eight halves.
RVX_INLINE ShortOctet lowHalf(Words a)
{
    return {(RvxShortOctet)__builtin_shufflevector(a.w, a.w, 0, 1, 2, 3)};
}

RVX_INLINE ByteBlock firstBytes(Words a)
{
    return {(RvxByteBlock)lowHalf(a).s};
}

RVX_INLINE Shorts asShorts(Words a)
{
    return {(RvxShorts)a.w};
}

// Of the words of lowWords the low 16 bits, in the order of the elements.
RVX_INLINE Shorts lowShorts(Words a, Words b)
{
    const auto low = (RvxWords)a.w & 0xffffU, high = (RvxWords)b.w << 16;
    const auto mixed = (RvxShorts)(low | high);
    const auto apart =
        __builtin_shufflevector(mixed, mixed, 0, 2, 4, 6, 1, 3, 5, 7, 8, 10, 12, 14, 9, 11, 13, 15);
    const auto pairs = (RvxWords)apart;
    return {(RvxShorts)__builtin_shufflevector(pairs, pairs, 0, 4, 1, 5, 2, 6, 3, 7)};
}

// Words as signed integers of 16 bits; what does not fit becomes the nearest that does.
RVX_INLINE ShortOctet packWords(Words a)
{
    const RvxWordQuad low = __builtin_shufflevector(a.w, a.w, 0, 1, 2, 3);
    const RvxWordQuad high = __builtin_shufflevector(a.w, a.w, 4, 5, 6, 7);
#if defined(__SSE2__)
    return {(RvxShortOctet)__builtin_ia32_packssdw128(low, high)};
#else
    ShortOctet packed;
    for (int i = 0; i < 8; ++i) {
        const std::int32_t w = i < 4 ? low[i] : high[i - 4];
        packed.s[i] = static_cast<std::int16_t>(w < -32768 ? -32768 : w > 32767 ? 32767 : w);
    }
    return packed;
#endif
}

// Likewise to 8 bits.
RVX_INLINE ByteBlock packShorts(ShortOctet a, ShortOctet b)
{
#if defined(__SSE2__)
    return {(RvxByteBlock)__builtin_ia32_packsswb128(a.s, b.s)};
#else
    ByteBlock packed;
    for (int i = 0; i < 16; ++i) {
        const std::int16_t s = i < 8 ? a.s[i] : b.s[i - 8];
        packed.b[i] = static_cast<std::int8_t>(s < -128 ? -128 : s > 127 ? 127 : s);
    }
    return packed;
#endif
}

// To 8 bits without a sign.
RVX_INLINE ByteBlock packShortsUnsigned(ShortOctet a, ShortOctet b)
{
#if defined(__SSE2__)
    return {(RvxByteBlock)__builtin_ia32_packuswb128(a.s, b.s)};
#else
    ByteBlock packed;
    for (int i = 0; i < 16; ++i) {
        const std::int16_t s = i < 8 ? a.s[i] : b.s[i - 8];
        packed.b[i] = static_cast<std::int8_t>(s < 0 ? 0 : s > 255 ? 255 : s);
    }
    return packed;
#endif
}

// The low 8 bits of each.
RVX_INLINE ByteBlock lowBytes(Shorts a)
{
    const auto low = (RvxShorts)((RvxWords)a.s & 0xff00ffU);
    return packShortsUnsigned({__builtin_shufflevector(low, low, 0, 1, 2, 3, 4, 5, 6, 7)},
                              {__builtin_shufflevector(low, low, 8, 9, 10, 11, 12, 13, 14, 15)});
}

RVX_INLINE void storeShorts(std::int16_t *p, Shorts a)
{
    *reinterpret_cast<RvxShortsMem *>(p) = a.s;
}

RVX_INLINE void storeShorts(std::int16_t *p, ShortOctet a)
{
    *reinterpret_cast<RvxShortOctetMem *>(p) = a.s;
}

template <typename Byte>
RVX_INLINE void storeBytes(Byte *p, ByteBlock a)
{
    static_assert(sizeof(Byte) == 1, "");
    *reinterpret_cast<RvxByteBlockMem *>(p) = a.b;
}

RVX_INLINE bool anyBit(Words a)
{
    const auto b = (RvxBits)a.w;
    return ((b[0] | b[1]) | (b[2] | b[3])) != 0;
}

#endif
