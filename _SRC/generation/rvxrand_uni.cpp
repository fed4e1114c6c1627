// Uniform noise: words, made doubles and scaled.

#include "generation/rvxrand_uni.h"

#include "frame/rvxfloatmode.h"
#include "generation/rvxrand_words.h"

void fillUniform(rvxRandUniState *state, double *samps, std::uint64_t n)
{
    const FloatMode before = enterPlainMode();
    RandWords words = takeWords(*state);
    for (std::uint64_t i = 0; i < n; ++i)
        samps[i] = static_cast<double>(nextWord(words)) * state->scale + state->mean;
    giveWords(words, *state);
    leavePlainMode(before);
}
