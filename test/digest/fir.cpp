// FIR filters.

#include "digest.h"

namespace {

struct Rates {
    int up, upPhase, down, downPhase, tapsLen;
};

const Rates rates[] = {{1, 0, 1, 0, 1},  {1, 0, 1, 0, 7},     {1, 0, 1, 0, 64}, {1, 0, 1, 0, 600},
                       {1, 0, 2, 1, 33}, {1, 0, 5, 0, 100},   {2, 1, 1, 0, 30}, {3, 2, 2, 1, 128},
                       {7, 0, 3, 2, 5},  {147, 3, 160, 9, 50}};

template <typename Element>
void addWindow(Digest &digest, const rvxFirState &state)
{
    const Element *window = static_cast<const Element *>(state.dlylCur);
    digest.add(std::vector<Element>(window, window + state.dlylLen));
}

template <typename Tap, typename Sample>
void digestState(Digest &digest, const rvxFirState &state)
{
    for (int x :
         {state.upFactor, state.upPhase, state.downFactor, state.downPhase, state.isMultiRate,
          state.tapsLen, state.tapsBlockLen, state.dlylLen, state.bufLen})
        digest.add(x);
    const Tap *taps = static_cast<const Tap *>(state.taps);
    digest.add(std::vector<Tap>(taps, taps + state.tapsLen));
    addWindow<Sample>(digest, state);
    for (int i = 0; state.isMultiRate != 0 && i < state.upFactor; ++i) {
        const rvxFirPhaseRow &row = state.phaseTable[i];
        for (int x : {row.phase, row.numTaps, row.dlyOffset, row.tapOffset})
            digest.add(x);
    }
}

template <typename Tap, typename Sample>
void digestInit(Digest &digest, void (*init)(const Tap *, int, const Sample *, rvxFirState *))
{
    FixedData data(60);
    for (int tapsLen : {1, 2, 7, 64, 65, 200}) {
        const auto taps = data.block<Tap>(tapsLen);
        const auto past = data.block<Sample>(tapsLen);
        rvxFirState state = {};
        init(taps.data(), tapsLen, past.data(), &state);
        digestState<Tap, Sample>(digest, state);
        rvxFirFree(&state);
    }
}

template <typename Tap, typename Sample>
using InitMr = void (*)(const Tap *, int, const Sample *, int, int, int, int, rvxFirState *);

template <typename Tap, typename Sample>
void start(FixedData &data, const Rates &r, InitMr<Tap, Sample> init, rvxFirState &state)
{
    const auto taps = data.block<Tap>(r.tapsLen);
    const auto past = data.block<Sample>(r.tapsLen);
    init(taps.data(), r.tapsLen, past.data(), r.up, r.upPhase, r.down, r.downPhase, &state);
}

template <typename Tap, typename Sample>
void digestInitMr(Digest &digest, InitMr<Tap, Sample> init)
{
    FixedData data(61);
    for (const Rates &r : rates) {
        rvxFirState state = {};
        start(data, r, init, state);
        digestState<Tap, Sample>(digest, state);
        rvxFirFree(&state);
    }
}

template <typename Tap, typename Sample, typename Out>
void digestOne(Digest &digest, InitMr<Tap, Sample> init, Out (*one)(rvxFirState *, Sample))
{
    FixedData data(62);
    for (int tapsLen : {1, 2, 7, 64, 200}) {
        rvxFirState state = {};
        start(data, {1, 0, 1, 0, tapsLen}, init, state);
        for (const Sample &x : data.block<Sample>(300))
            digest.add(one(&state, x));
        addWindow<Sample>(digest, state);
        rvxFirFree(&state);
    }
}

template <typename Tap, typename Sample, typename Out>
void digestBlock(Digest &digest, InitMr<Tap, Sample> init,
                 void (*filter)(rvxFirState *, const Sample *, Out *, int))
{
    FixedData data(63);
    for (const Rates &r : rates) {
        rvxFirState state = {};
        start(data, r, init, state);
        for (int steps : {1, 3, 6, 41, 530}) {
            const auto in = data.block<Sample>(steps * r.down);
            std::vector<Out> out(static_cast<std::size_t>(steps * r.up));
            filter(&state, in.data(), out.data(), steps);
            digest.add(out);
        }
        addWindow<Sample>(digest, state);
        rvxFirFree(&state);
    }
}

} // namespace

RVX_DIGEST(rvxdFirInit)
{
    digestInit(digest, rvxdFirInit);
}

RVX_DIGEST(rvxdFirInitMr)
{
    digestInitMr(digest, rvxdFirInitMr);
}

RVX_DIGEST(rvxdFir)
{
    digestOne(digest, rvxdFirInitMr, rvxdFir);
}

RVX_DIGEST(rvxdbFir)
{
    digestBlock(digest, rvxdFirInitMr, rvxdbFir);
}

RVX_DIGEST(rvxzFirInit)
{
    digestInit(digest, rvxzFirInit);
}

RVX_DIGEST(rvxzFirInitMr)
{
    digestInitMr(digest, rvxzFirInitMr);
}

RVX_DIGEST(rvxzFir)
{
    digestOne(digest, rvxzFirInitMr, rvxzFir);
}

RVX_DIGEST(rvxzbFir)
{
    digestBlock(digest, rvxzFirInitMr, rvxzbFir);
}

RVX_DIGEST(rvxdzFirInit)
{
    digestInit(digest, rvxdzFirInit);
}

RVX_DIGEST(rvxdzFirInitMr)
{
    digestInitMr(digest, rvxdzFirInitMr);
}

RVX_DIGEST(rvxdzFir)
{
    digestOne(digest, rvxdzFirInitMr, rvxdzFir);
}

RVX_DIGEST(rvxdzbFir)
{
    digestBlock(digest, rvxdzFirInitMr, rvxdzbFir);
}

RVX_DIGEST(rvxzdFirInit)
{
    digestInit(digest, rvxzdFirInit);
}

RVX_DIGEST(rvxzdFirInitMr)
{
    digestInitMr(digest, rvxzdFirInitMr);
}

RVX_DIGEST(rvxzdFir)
{
    digestOne(digest, rvxzdFirInitMr, rvxzdFir);
}

RVX_DIGEST(rvxzdbFir)
{
    digestBlock(digest, rvxzdFirInitMr, rvxzdbFir);
}

RVX_DIGEST(rvxFirFree)
{
    rvxFirState state = {};
    rvxzFirInitMr(nullptr, 9, nullptr, 2, 0, 3, 0, &state);
    digest.add(state.self == &state ? 1 : 0);
    rvxFirFree(&state);
    digest.add(state.self == nullptr ? 1 : 0);
    digest.add(state.phaseTable == nullptr ? 1 : 0);
}
