// Gaussian noise by the polar method (G. Marsaglia and T. A. Bray, A convenient method
// for generating normal variables, 1964).
//
// As many pairs are drawn as are missing in any case, those inside the circle are moved
// together, and the rest of the work is done on these, four at a time. No more are drawn
// than one sample after the other would take.

#include "generation/rvxrand_gauss.h"

#include <cstring>

#include "frame/rvxfloatmode.h"
#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"
#include "generation/rvxrand_ln.h"
#include "generation/rvxrand_words.h"

namespace {

constexpr int mostDrawn = 64; // pairs at a time
constexpr int fewPairs = 4;   // up to which they are drawn one by one
constexpr double wordScale = 4.656612873077e-10;

struct WordPair {
    std::int32_t u, v;
};

// Pairs 0, 2, 1 and 3 of four.
struct PairLanes {
    Lanes u, v, w;
};

typedef std::int32_t RandPairsMem __attribute__((vector_size(32), aligned(4), may_alias));

RVX_INLINE PairLanes fourPairs(const WordPair *pairs)
{
    const RvxSignedWords words = *reinterpret_cast<const RandPairsMem *>(pairs);
    const Lanes a = firstFour(words) * allLanes(wordScale);
    const Lanes b = lastFour(words) * allLanes(wordScale);
    const Lanes u = evenLanes(a, b), v = oddLanes(a, b);
    return {u, v, u * u + v * v};
}

// Of n pairs, to the next multiple of 4, moves those together that are inside the
// circle and not its centre; gives their number. Behind the n are zeros.
RVX_INLINE int keepInside(const WordPair *pairs, int n, WordPair *kept)
{
    int count = 0;
    for (int i = 0; i < n; i += 4) {
        const Lanes w = fourPairs(pairs + i).w;
        const LaneMask inside = isBelow(w, allLanes(1.0)) & ~isEqual(w, allLanes(0.0));
        constexpr int place[4] = {0, 2, 1, 3};
        for (int j = 0; j < 4; ++j) {
            kept[count] = pairs[i + j];
            count -= static_cast<int>(inside.b[place[j]]);
        }
    }
    return count;
}

// Eight samples of four pairs.
RVX_INLINE void finishFour(const WordPair *pairs, Lanes mean, Lanes stDev, double *samps)
{
    const PairLanes p = fourPairs(pairs);
    const Lanes f = sqrtLanes(-(allLanes(2.0) * lnBelowOne(p.w)) / p.w);
    const Lanes wide = stDev * f;
    const Lanes first = wide * p.v + mean, second = wide * p.u + mean;
    storeLanes(samps, evenLanes(first, second));
    storeLanes(samps + 4, oddLanes(first, second));
}

// n pairs, and zeros up to a multiple of 4.
RVX_INLINE void drawPairs(RandWords &words, WordPair *pairs, int n)
{
    alignas(32) std::uint32_t drawn[2 * mostDrawn];
    const int inRuns = 2 * n / wordRun * wordRun;
    BorrowChain chain = beginChain(words);
    for (int i = 0; i < inRuns; i += wordRun)
        drawRun(chain, drawn + i);
    endChain(chain, words);
    if (inRuns > 0) {
        CongLanes cong = congLanes(words.cong);
        for (int i = 0; i < inRuns; i += 8)
            *reinterpret_cast<RandPairsMem *>(pairs + i / 2) = addCong(drawn + i, cong);
        words.cong = congBefore(cong);
    }
    int i = inRuns / 2;
    for (; i < n; ++i) {
        pairs[i].u = nextWord(words);
        pairs[i].v = nextWord(words);
    }
    for (; i % 4 != 0; ++i)
        pairs[i] = {0, 0};
}

// One pair that is inside.
RVX_INLINE WordPair nextInside(RandWords &words)
{
    for (;;) {
        const std::int32_t first = nextWord(words), second = nextWord(words);
        const double u = first * wordScale, v = second * wordScale, w = u * u + v * v;
        if (w < 1.0 && w != 0.0)
            return {first, second};
    }
}

// The samples of n pairs that are inside. Never draws further than the last of them.
RVX_KERNEL void gaussianPairs(RandWords *state, double mean, double stDev, double *samps,
                              std::uint64_t n)
{
    alignas(32) WordPair pairs[mostDrawn];
    WordPair kept[mostDrawn + 8];
    RandWords words = *state;
    int count = 0;
    while (n > 0) {
        const std::uint64_t missing = n - static_cast<std::uint64_t>(count);
        if (missing > fewPairs) {
            const int drawn = missing < mostDrawn ? static_cast<int>(missing) : mostDrawn;
            drawPairs(words, pairs, drawn);
            count += keepInside(pairs, drawn, kept + count);
        } else {
            for (std::uint64_t i = 0; i < missing; ++i)
                kept[count++] = nextInside(words);
        }
        int done = 0;
        for (; done < count - 3; done += 4, samps += 8)
            finishFour(kept + done, allLanes(mean), allLanes(stDev), samps);
        n -= static_cast<std::uint64_t>(done);
        count -= done;
        std::memmove(kept, kept + done, sizeof(WordPair) * 4);
        if (count > 0 && n == static_cast<std::uint64_t>(count)) {
            double rest[8];
            for (int i = count; i < 4; ++i)
                kept[i] = {1, 1};
            finishFour(kept, allLanes(mean), allLanes(stDev), rest);
            std::memcpy(samps, rest, sizeof(double) * 2 * static_cast<std::size_t>(count));
            n = 0;
        }
    }
    *state = words;
}

} // namespace

void rvxFillGaussian(rvxRandGausState *state, double *samps, std::uint64_t n)
{
    if (n > 0 && state->haveSpare != 0) {
        state->haveSpare = 0;
        *samps++ = state->spare;
        --n;
    }
    if (n == 0)
        return;
    const FloatMode before = enterPlainMode();
    RandWords words = takeWords(*state);
    const std::uint64_t whole = n / 2;
    if (whole > 0) {
        gaussianPairs(&words, state->mean, state->stDev, samps, whole);
        state->spare = samps[2 * whole - 1];
    }
    if (n % 2 != 0) {
        double last[2];
        gaussianPairs(&words, state->mean, state->stDev, last, 1);
        samps[n - 1] = last[0];
        state->spare = last[1];
        state->haveSpare = 1;
    }
    giveWords(words, *state);
    leavePlainMode(before);
}
