// Uniform noise: words, made doubles and scaled.

#include "generation/rvxrand_uni.h"

#include "frame/rvxfloatmode.h"
#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"
#include "generation/rvxrand_words.h"

namespace {

RVX_INLINE void scaleRun(const std::uint32_t *drawn, CongLanes &cong, Lanes scale, Lanes mean,
                         double *samps)
{
    for (int i = 0; i < wordRun; i += 8) {
        const RvxSignedWords words = addCong(drawn + i, cong);
        storeLanes(samps + i, firstFour(words) * scale + mean);
        storeLanes(samps + i + 4, lastFour(words) * scale + mean);
    }
}

// n is a multiple of wordRun and not 0. The lanes stay one run behind, where what was
// stored word by word can be loaded as a whole.
RVX_KERNEL void uniformRuns(RandWords *state, double scale, double mean, double *samps,
                            std::uint64_t n)
{
    alignas(32) std::uint32_t drawn[2][wordRun];
    RandWords words = *state;
    CongLanes cong = congLanes(words.cong);
    BorrowChain chain = beginChain(words);
    drawRun(chain, drawn[0]);
    std::uint64_t i = wordRun;
    for (; i < n; i += wordRun) {
        const std::uint64_t turn = i / wordRun % 2;
        drawRun(chain, drawn[turn]);
        scaleRun(drawn[1 - turn], cong, allLanes(scale), allLanes(mean), samps + i - wordRun);
    }
    scaleRun(drawn[(i / wordRun - 1) % 2], cong, allLanes(scale), allLanes(mean),
             samps + i - wordRun);
    endChain(chain, words);
    words.cong = congBefore(cong);
    *state = words;
}

} // namespace

void rvxFillUniform(rvxRandUniState *state, double *samps, std::uint64_t n)
{
    const FloatMode before = enterPlainMode();
    RandWords words = takeWords(*state);
    const std::uint64_t inRuns = n / wordRun * wordRun;
    if (inRuns > 0)
        uniformRuns(&words, state->scale, state->mean, samps, inRuns);
    for (std::uint64_t i = inRuns; i < n; ++i)
        samps[i] = static_cast<double>(nextWord(words)) * state->scale + state->mean;
    giveWords(words, *state);
    leavePlainMode(before);
}
