// Triangles.

#include "digest.h"

namespace {

const double frequencies[] = {0.0, 1e-5, 0.001, 0.01, 0.1, 0.25, 0.3, 0.49};
const double phases[] = {0.0, 1.0, 3.0, 6.2};
const double asymmetries[] = {-3.1, -1.0, 0.0, 0.5, 3.14159};

void digestPlaces(Digest &digest, const rvxdTrnglState &state)
{
    digest.add(state.step);
    digest.add(state.value);
}

void digestPlaces(Digest &digest, const rvxzTrnglState &state)
{
    digest.add(state.stepRe);
    digest.add(state.stepIm);
    digest.add(state.valueRe);
    digest.add(state.valueIm);
}

template <typename State>
void digestRecord(Digest &digest, const State &state)
{
    for (double field :
         {state.mag, state.stepDown, state.stepUp, state.reflectTop, state.reflectBottom,
          state.spanUp, state.spanDown, state.offsetTop, state.offsetBottom})
        digest.add(field);
    digestPlaces(digest, state);
}

// Hands a state of each frequency, phase and asymmetry to use(state).
template <typename State, typename Use>
void forTriangles(Digest &digest, void (*init)(double, double, double, double, State *), Use use)
{
    for (double freq : frequencies) {
        for (double phase : phases) {
            for (double asym : asymmetries) {
                State state;
                init(freq, phase, 0.7, asym, &state);
                use(state);
                digestRecord(digest, state);
            }
        }
    }
}

template <typename State, typename Sample>
void digestSingle(Digest &digest, void (*init)(double, double, double, double, State *),
                  Sample (*next)(State *))
{
    forTriangles(digest, init, [&](State &state) {
        for (int i = 0; i < 300; ++i)
            digest.add(next(&state));
    });
}

template <typename State, typename Sample>
void digestBlocks(Digest &digest, void (*init)(double, double, double, double, State *),
                  void (*block)(State *, Sample *, int))
{
    forTriangles(digest, init, [&](State &state) {
        for (int n : {1, 2, 3, 4, 5, 8, 13, 100, 1001, 3000}) {
            std::vector<Sample> samples(static_cast<std::size_t>(n));
            block(&state, samples.data(), n);
            digest.add(samples);
        }
    });
}

} // namespace

RVX_DIGEST(rvxdTrnglInit)
{
    forTriangles(digest, rvxdTrnglInit, [](rvxdTrnglState &) {});
}

RVX_DIGEST(rvxzTrnglInit)
{
    forTriangles(digest, rvxzTrnglInit, [](rvxzTrnglState &) {});
}

RVX_DIGEST(rvxdTrngl)
{
    digestSingle(digest, rvxdTrnglInit, rvxdTrngl);
}

RVX_DIGEST(rvxzTrngl)
{
    digestSingle(digest, rvxzTrnglInit, rvxzTrngl);
}

RVX_DIGEST(rvxdbTrngl)
{
    digestBlocks(digest, rvxdTrnglInit, rvxdbTrngl);
}

RVX_DIGEST(rvxzbTrngl)
{
    digestBlocks(digest, rvxzTrnglInit, rvxzbTrngl);
}
