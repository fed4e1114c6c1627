// The integers under both kinds of noise.
//
// x[n] = x[n-2] - x[n-3] - carry, in the manner of G. Marsaglia and A. Zaman, A new
// class of random number generators, 1991 (subtract with borrow), plus a congruential
// sequence. The borrow looks at a difference as a signed number. It is a chain from
// word to word, and what the time of a sample goes into; the congruential sequence is
// taken eight words at a time, from those eight before.

#ifndef RVXRAND_WORDS_H
#define RVXRAND_WORDS_H

#include <cstdint>

#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"
#include "rvx.h"

// The fields of a record that are words, while samples are drawn.
struct RandWords {
    std::uint32_t cong, carry, x1, x2, x3;
};

// A carry that a caller has set to something else than 0 or 1 counts as what it is.
template <typename State>
RVX_INLINE RandWords takeWords(const State &state)
{
    const std::uint32_t carry = state.carry & 1;
    return {state.seedCong, carry, state.x1, state.x2, state.x3 + (state.carry - carry)};
}

template <typename State>
RVX_INLINE void giveWords(const RandWords &words, State &state)
{
    state.seedCong = words.cong;
    state.carry = words.carry;
    state.x1 = words.x1;
    state.x2 = words.x2;
    state.x3 = words.x3;
}

constexpr std::uint32_t congFactor = 69069;
constexpr std::uint32_t congTerm = 1013904243;

// The sequence without the congruential one.
RVX_INLINE std::uint32_t nextBorrowed(RandWords &words)
{
    std::uint32_t t = words.x2 - (words.x3 + words.carry);
    words.carry = static_cast<std::int32_t>(t) <= 0 ? 1 : 0;
    t -= 18 & (0 - words.carry);
    words.x3 = words.x2;
    words.x2 = words.x1;
    words.x1 = t;
    return t;
}

RVX_INLINE std::int32_t nextWord(RandWords &words)
{
    const std::uint32_t borrowed = nextBorrowed(words);
    words.cong = words.cong * congFactor + congTerm;
    return static_cast<std::int32_t>(borrowed + words.cong);
}

constexpr int wordRun = 16;

// The words from run to run: x1 - 1, x2 - 1, x3 and minus the carry, as it takes least
// to go on.
struct BorrowChain {
    std::uint32_t a, b, c, borrow;
};

RVX_INLINE BorrowChain beginChain(const RandWords &words)
{
    return {words.x1 - 1, words.x2 - 1, words.x3, 0 - words.carry};
}

RVX_INLINE void endChain(const BorrowChain &chain, RandWords &words)
{
    words.x1 = chain.a + 1;
    words.x2 = chain.b + 1;
    words.x3 = chain.c;
    words.carry = 0 - chain.borrow;
}

// wordRun values of the sequence without the congruential one, each less 1.
RVX_INLINE void drawRunPlainly(BorrowChain &chain, std::uint32_t *drawn)
{
    RandWords words = {};
    endChain(chain, words);
    for (int i = 0; i < wordRun; ++i)
        drawn[i] = nextBorrowed(words) - 1;
    chain = beginChain(words);
}

#if defined(__x86_64__)

// The same. Two cycles a word instead of four, through the processor's carry: z = b - c - carry is
// the difference less 1, and the difference is at most 0 where z is above 2^31 - 2
// without a sign. After a step the registers have changed parts: b's holds the new value,
// a's the one before, the free one's the oldest.
#define RVX_RAND_STEP(x2, x3, free, at)                                                            \
    "lea 1(%q[" x2 "]), %k[" free "]\n\t"                                                          \
    "sbb %k[" x3 "], %k[" x2 "]\n\t"                                                               \
    "cmp %k[" x2 "], %k[limit]\n\t"                                                                \
    "lea -18(%q[" x2 "]), %k[" x3 "]\n\t"                                                          \
    "cmovb %k[" x3 "], %k[" x2 "]\n\t"                                                             \
    "mov %k[" x2 "], " at "(%[drawn])\n\t"
#define RVX_RAND_FOUR_STEPS(at0, at1, at2, at3)                                                    \
    RVX_RAND_STEP("b", "c", "d", at0)                                                              \
    RVX_RAND_STEP("a", "d", "c", at1)                                                              \
    RVX_RAND_STEP("b", "c", "d", at2)                                                              \
    RVX_RAND_STEP("a", "d", "c", at3)

RVX_INLINE void drawRun(BorrowChain &chain, std::uint32_t *drawn)
{
    std::uint32_t free;
    asm("add %k[borrow], %k[borrow]\n\t" // to the processor's carry
        RVX_RAND_FOUR_STEPS("0", "4", "8", "12") RVX_RAND_FOUR_STEPS("16", "20", "24", "28")
            RVX_RAND_FOUR_STEPS("32", "36", "40", "44")
                RVX_RAND_FOUR_STEPS("48", "52", "56", "60") "sbb %k[borrow], %k[borrow]\n\t"
        : [a] "+&r"(chain.a), [b] "+&r"(chain.b), [c] "+&r"(chain.c), [d] "=&r"(free),
          [borrow] "+&r"(chain.borrow), "=m"(*reinterpret_cast<std::uint32_t(*)[wordRun]>(drawn))
        : [drawn] "r"(drawn), [limit] "r"(0x7ffffffe)
        : "cc");
}

#undef RVX_RAND_STEP
#undef RVX_RAND_FOUR_STEPS

#else

RVX_INLINE void drawRun(BorrowChain &chain, std::uint32_t *drawn)
{
    drawRunPlainly(chain, drawn);
}

#endif

// Eight words of the congruential sequence in a row, each plus 1.
struct CongLanes {
    RvxWords next;
    std::uint32_t leapFactor, leapTerm;
};

// The coming eight.
RVX_INLINE CongLanes congLanes(std::uint32_t cong)
{
    CongLanes lanes;
    lanes.leapFactor = 1;
    lanes.leapTerm = 0;
    for (int i = 0; i < 8; ++i) {
        cong = cong * congFactor + congTerm;
        lanes.next[i] = cong + 1;
        lanes.leapTerm = lanes.leapTerm * congFactor + congTerm;
        lanes.leapFactor *= congFactor;
    }
    // a c + t for c + 1: a (c + 1) + t - a + 1
    lanes.leapTerm += 1 - lanes.leapFactor;
    return lanes;
}

typedef std::uint32_t RandWordsMem __attribute__((vector_size(32), aligned(4), may_alias));

// Eight of a run, from its place on, as they are to be read.
RVX_INLINE RvxSignedWords addCong(const std::uint32_t *drawn, CongLanes &lanes)
{
    const RvxWords sum = *reinterpret_cast<const RandWordsMem *>(drawn) + lanes.next;
    lanes.next = lanes.next * lanes.leapFactor + lanes.leapTerm;
    return (RvxSignedWords)sum;
}

// The first, the last four of eight.
RVX_INLINE Lanes firstFour(RvxSignedWords words)
{
    return {__builtin_convertvector(__builtin_shufflevector(words, words, 0, 1, 2, 3), RvxVector)};
}

RVX_INLINE Lanes lastFour(RvxSignedWords words)
{
    return {__builtin_convertvector(__builtin_shufflevector(words, words, 4, 5, 6, 7), RvxVector)};
}

// The word before the coming ones.
RVX_INLINE std::uint32_t congBefore(const CongLanes &lanes)
{
    // Backwards by the inverse of the factor modulo 2^32.
    return (lanes.next[0] - 1 - congTerm) * 0xa5e2a705U;
}

#endif
