// Adaptive filters.

#include "digest.h"

namespace {

constexpr int RVX_DELAY = 2;

// Outputs and what the steps leave in the record's arrays.
template <typename Tap, typename Sample, typename Step>
void digestSteps(Digest &digest, FixedData &data, rvxLmsState &state, Step step)
{
    for (int k = 0; k < 40; ++k) {
        const std::vector<Sample> x = data.block<Sample>(state.tapState.downFactor);
        digest.add(step(&state, x.data(), data.block<Tap>(1)[0]));
    }
    const auto *taps = static_cast<const Tap *>(state.tapState.taps);
    digest.add(std::vector<Tap>(taps, taps + state.tapState.tapsLen));
    const auto *line = static_cast<const Sample *>(state.dlyState.dlyl);
    digest.add(std::vector<Sample>(line, line + state.dlyState.dlylLen));
    digest.add(state.dlyState.dlylLen);
    rvxLmsFree(&state);
}

template <typename Tap, typename Sample, typename Init, typename Step>
void digestSingle(Digest &digest, Init init, Step step)
{
    FixedData data(70);
    for (int tapsLen = 1; tapsLen <= 21; ++tapsLen) {
        const std::vector<Tap> taps = data.block<Tap>(tapsLen);
        const std::vector<Sample> before = data.block<Sample>(tapsLen + RVX_DELAY - 1);
        rvxLmsState state;
        init(0, taps.data(), tapsLen, before.data(), 0.125f, 0.01f, RVX_DELAY, &state);
        digestSteps<Tap, Sample>(digest, data, state, step);
    }
}

template <typename Tap, typename Sample, typename Init, typename Step>
void digestMultiRate(Digest &digest, Init init, Step step)
{
    FixedData data(71);
    for (int tapsLen = 1; tapsLen <= 21; ++tapsLen)
        for (int factor = 1; factor <= 3; ++factor) {
            const std::vector<Tap> taps = data.block<Tap>(tapsLen);
            const int earlier = tapsLen + RVX_DELAY + factor - 1;
            const std::vector<Sample> before = data.block<Sample>(earlier);
            rvxLmsState state;
            init(0, taps.data(), tapsLen, before.data(), 0.125f, 0.01f, RVX_DELAY, factor,
                 factor - 1, &state);
            digestSteps<Tap, Sample>(digest, data, state, step);
        }
}

double oneReal(rvxLmsState *state, const double *x, double err)
{
    return rvxdLms(state, x[0], err);
}

ZCplx oneCplx(rvxLmsState *state, const ZCplx *x, ZCplx err)
{
    return rvxzLms(state, x[0], err);
}

ZCplx oneMixed(rvxLmsState *state, const double *x, ZCplx err)
{
    return rvxdzLms(state, x[0], err);
}

} // namespace

RVX_DIGEST(rvxdLmsInit)
{
    digestSingle<double, double>(digest, rvxdLmsInit, rvxdbLms);
}

RVX_DIGEST(rvxzLmsInit)
{
    digestSingle<ZCplx, ZCplx>(digest, rvxzLmsInit, rvxzbLms);
}

RVX_DIGEST(rvxdzLmsInit)
{
    digestSingle<ZCplx, double>(digest, rvxdzLmsInit, rvxdzbLms);
}

RVX_DIGEST(rvxdLmsInitMr)
{
    digestMultiRate<double, double>(digest, rvxdLmsInitMr, oneReal);
}

RVX_DIGEST(rvxzLmsInitMr)
{
    digestMultiRate<ZCplx, ZCplx>(digest, rvxzLmsInitMr, oneCplx);
}

RVX_DIGEST(rvxdzLmsInitMr)
{
    digestMultiRate<ZCplx, double>(digest, rvxdzLmsInitMr, oneMixed);
}

RVX_DIGEST(rvxdLms)
{
    digestSingle<double, double>(digest, rvxdLmsInit, oneReal);
}

RVX_DIGEST(rvxzLms)
{
    digestSingle<ZCplx, ZCplx>(digest, rvxzLmsInit, oneCplx);
}

RVX_DIGEST(rvxdzLms)
{
    digestSingle<ZCplx, double>(digest, rvxdzLmsInit, oneMixed);
}

RVX_DIGEST(rvxdbLms)
{
    digestMultiRate<double, double>(digest, rvxdLmsInitMr, rvxdbLms);
}

RVX_DIGEST(rvxzbLms)
{
    digestMultiRate<ZCplx, ZCplx>(digest, rvxzLmsInitMr, rvxzbLms);
}

RVX_DIGEST(rvxdzbLms)
{
    digestMultiRate<ZCplx, double>(digest, rvxdzLmsInitMr, rvxdzbLms);
}

RVX_DIGEST(rvxLmsFree)
{
    rvxLmsState state;
    rvxdLmsInit(0, nullptr, 3, nullptr, 0.5f, 0.0f, 1, &state);
    rvxLmsFree(&state);
    digest.add(state.tapState.taps == nullptr ? 1 : 0);
    digest.add(state.dlyState.dlyl == nullptr ? 1 : 0);
    digest.add(state.tapState.tapsReady);
    digest.add(state.dlyState.dlyReady);
}
