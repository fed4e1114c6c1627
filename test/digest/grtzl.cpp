// Goertzel.

#include "digest.h"

namespace {

const double frequencies[] = {0.0, 1e-5, 0.01, 0.1, 0.25, 0.3, 0.5, 0.7, 0.999};

template <typename State>
void addFixed(Digest &digest, const State &state)
{
    digest.add(state.rFreq);
    digest.add(state.cosV);
    digest.add(state.sinV);
    digest.add(state.twoCos);
}

template <typename State>
void digestInit(Digest &digest, void (*init)(double, State *))
{
    for (int i = 0; i < 1000; ++i) {
        State state;
        init(i / 1000.0, &state);
        addFixed(digest, state);
        digest.add(state.prev2);
        digest.add(state.prev1);
    }
}

template <typename State, typename Sample>
void digestBlocks(Digest &digest, void (*init)(double, State *), void (*reset)(State *),
                  ZCplx (*block)(State *, const Sample *, int), bool isReset)
{
    FixedData data(30);
    for (double rFreq : frequencies) {
        State state;
        init(rFreq, &state);
        for (int n : {1, 2, 3, 4, 5, 8, 13, 100, 1001}) {
            digest.add(block(&state, data.block<Sample>(n).data(), n));
            if (isReset)
                reset(&state);
        }
        addFixed(digest, state);
        digest.add(state.prev2);
        digest.add(state.prev1);
    }
}

} // namespace

RVX_DIGEST(rvxdGoertzInit)
{
    digestInit(digest, rvxdGoertzInit);
}

RVX_DIGEST(rvxzGoertzInit)
{
    digestInit(digest, rvxzGoertzInit);
}

RVX_DIGEST(rvxdGoertzReset)
{
    digestBlocks(digest, rvxdGoertzInit, rvxdGoertzReset, rvxdbGoertz, true);
}

RVX_DIGEST(rvxzGoertzReset)
{
    digestBlocks(digest, rvxzGoertzInit, rvxzGoertzReset, rvxzbGoertz, true);
}

RVX_DIGEST(rvxdbGoertz)
{
    digestBlocks(digest, rvxdGoertzInit, rvxdGoertzReset, rvxdbGoertz, false);
}

RVX_DIGEST(rvxzbGoertz)
{
    digestBlocks(digest, rvxzGoertzInit, rvxzGoertzReset, rvxzbGoertz, false);
}
