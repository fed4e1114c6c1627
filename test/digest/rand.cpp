// Noise.

#include "digest.h"

namespace {

const double seeds[] = {0.0, 1.0, -1.5, 12345.678, 0x1p40, -3e18};
const unsigned lengths[] = {1, 2, 3, 64, 7, 1000, 5, 333};

template <typename Sample, typename State>
void digestNoise(Digest &digest, void (*init)(double, double, double, State *),
                 void (*fill)(State *, Sample *, unsigned))
{
    for (double seed : seeds) {
        State state;
        init(seed, -0.4, 1.7, &state);
        for (unsigned n : lengths) {
            std::vector<Sample> block(n);
            fill(&state, block.data(), n);
            digest.add(block);
        }
        digest.addWord(state.x1);
        digest.addWord(state.seedCong);
    }
}

template <typename State>
void digestWords(Digest &digest, const State &state)
{
    for (unsigned word :
         {state.seedCong, state.carry, state.x1, state.x2, state.x3, state.seedInit})
        digest.addWord(word);
}

void digestInit(Digest &digest, void (*init)(double, double, double, rvxRandUniState *))
{
    for (double seed : seeds) {
        rvxRandUniState state;
        init(seed, -0.4, 1.7, &state);
        digest.add(state.mean);
        digest.add(state.scale);
        digestWords(digest, state);
    }
}

void digestInit(Digest &digest, void (*init)(double, double, double, rvxRandGausState *))
{
    for (double seed : seeds) {
        rvxRandGausState state;
        init(seed, -0.4, 1.7, &state);
        digest.add(state.mean);
        digest.add(state.stDev);
        digest.addWord(state.haveSpare);
        digestWords(digest, state);
    }
}

} // namespace

RVX_DIGEST(rvxdRandUniInit)
{
    digestInit(digest, rvxdRandUniInit);
}

RVX_DIGEST(rvxzRandUniInit)
{
    digestInit(digest, rvxzRandUniInit);
}

RVX_DIGEST(rvxdRandGausInit)
{
    digestInit(digest, rvxdRandGausInit);
}

RVX_DIGEST(rvxzRandGausInit)
{
    digestInit(digest, rvxzRandGausInit);
}

RVX_DIGEST(rvxdbRandUni)
{
    digestNoise(digest, rvxdRandUniInit, rvxdbRandUni);
}

RVX_DIGEST(rvxzbRandUni)
{
    digestNoise(digest, rvxzRandUniInit, rvxzbRandUni);
}

RVX_DIGEST(rvxdbRandGaus)
{
    digestNoise(digest, rvxdRandGausInit, rvxdbRandGaus);
}

RVX_DIGEST(rvxzbRandGaus)
{
    digestNoise(digest, rvxzRandGausInit, rvxzbRandGaus);
}
