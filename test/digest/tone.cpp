// Tones.

#include "digest.h"

namespace {

const double frequencies[] = {0.0, 1e-5, 0.01, 0.1, 0.25, 0.3, 0.49};
const double phases[] = {0.0, 1.0, 3.0, 6.2};

template <typename State>
void digestRecord(Digest &digest, const State &state)
{
    digest.add(state.twoCos);
    digest.add(state.y1);
    digest.add(state.y2);
    digest.add(state.mag);
    digest.add(state.freq);
    digest.add(state.phase);
    digest.add(state.marker);
}

// Hands a state of each frequency and phase to use(state).
template <typename State, typename Use>
void forTones(Digest &digest, void (*init)(double, double, double, State *), Use use)
{
    for (double freq : frequencies) {
        for (double phase : phases) {
            State state;
            init(freq, phase, 0.7, &state);
            use(state);
            digestRecord(digest, state);
        }
    }
}

template <typename State, typename Sample>
void digestSingle(Digest &digest, void (*init)(double, double, double, State *),
                  Sample (*next)(State *))
{
    forTones(digest, init, [&](State &state) {
        for (int i = 0; i < 300; ++i)
            digest.add(next(&state));
    });
}

template <typename State, typename Sample>
void digestBlocks(Digest &digest, void (*init)(double, double, double, State *),
                  void (*block)(State *, Sample *, int))
{
    forTones(digest, init, [&](State &state) {
        for (int n : {1, 2, 3, 4, 5, 8, 13, 100, 1001}) {
            std::vector<Sample> samples(static_cast<std::size_t>(n));
            block(&state, samples.data(), n);
            digest.add(samples);
        }
    });
}

} // namespace

RVX_DIGEST(rvxdToneInit)
{
    forTones(digest, rvxdToneInit, [](rvxdToneState &) {});
}

RVX_DIGEST(rvxzToneInit)
{
    forTones(digest, rvxzToneInit, [](rvxzToneState &) {});
}

RVX_DIGEST(rvxdTone)
{
    digestSingle(digest, rvxdToneInit, rvxdTone);
}

RVX_DIGEST(rvxzTone)
{
    digestSingle(digest, rvxzToneInit, rvxzTone);
}

RVX_DIGEST(rvxdbTone)
{
    digestBlocks(digest, rvxdToneInit, rvxdbTone);
}

RVX_DIGEST(rvxzbTone)
{
    digestBlocks(digest, rvxzToneInit, rvxzbTone);
}
