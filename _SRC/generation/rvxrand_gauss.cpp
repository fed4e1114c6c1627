// Gaussian noise by the polar method (G. Marsaglia and T. A. Bray, A convenient method
// for generating normal variables, 1964).

#include "generation/rvxrand_gauss.h"

#include <cmath>

#include "frame/rvxfloatmode.h"
#include "frame/rvxkernel.h"
#include "generation/rvxrand_words.h"

namespace {

// The second value of a pair waits in the record.
double firstOfPair(RandWords &words, rvxRandGausState *state)
{
    const double scale = 4.656612873077e-10;
    double u, v, w;
    do {
        u = static_cast<double>(nextWord(words)) * scale;
        v = static_cast<double>(nextWord(words)) * scale;
        w = u * u + v * v;
    } while (w >= 1.0 || w == 0.0);
    const double log = inPlainMode([](Extended wide) { return std::log(wide); }, w);
    const double f = std::sqrt(-(2.0 * log) / w);
    state->spare = (state->stDev * f) * u + state->mean;
    return (state->stDev * f) * v + state->mean;
}

} // namespace

void fillGaussian(rvxRandGausState *state, double *samps, std::uint64_t n)
{
    const FloatMode before = enterPlainMode();
    RandWords words = takeWords(*state);
    for (std::uint64_t i = 0; i < n; ++i) {
        const bool isSpare = state->haveSpare != 0;
        state->haveSpare = isSpare ? 0 : 1;
        samps[i] = isSpare ? state->spare : firstOfPair(words, state);
    }
    giveWords(words, *state);
    leavePlainMode(before);
}
