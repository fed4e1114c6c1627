// The integers under both kinds of noise.
//
// x[n] = x[n-2] - x[n-3] - carry, modulo 2^32 - 18 in the manner of G. Marsaglia and
// A. Zaman, A new class of random number generators, 1991 (subtract with borrow), plus
// a congruential sequence. The borrow looks at a difference as a signed number.

#ifndef RVXRAND_WORDS_H
#define RVXRAND_WORDS_H

#include <cstdint>

#include "rvx.h"

// The fields of a record that are words, while samples are drawn.
struct RandWords {
    std::uint32_t cong, carry, x1, x2, x3;
};

template <typename State>
inline RandWords takeWords(const State &state)
{
    return {state.seedCong, state.carry, state.x1, state.x2, state.x3};
}

template <typename State>
inline void giveWords(const RandWords &words, State &state)
{
    state.seedCong = words.cong;
    state.carry = words.carry;
    state.x1 = words.x1;
    state.x2 = words.x2;
    state.x3 = words.x3;
}

inline std::int32_t nextWord(RandWords &words)
{
    std::uint32_t t = words.x2 - (words.x3 + words.carry);
    words.carry = static_cast<std::int32_t>(t) <= 0 ? 1 : 0;
    if (words.carry != 0)
        t -= 18;
    words.x3 = words.x2;
    words.x2 = words.x1;
    words.x1 = t;
    words.cong = words.cong * 69069 + 1013904243;
    return static_cast<std::int32_t>(t + words.cong);
}

#endif
