// Recursive filters.

#include "digest.h"

namespace {

template <typename Tap>
using Init = void (*)(int, const Tap *, int, rvxIirState *);

// Taps that keep a filter stable: past values weigh little beside a[0].
void makeLeading(double *tap)
{
    *tap = 6.0 + *tap;
}

void makeLeading(ZCplx *tap)
{
    tap->re = 6.0 + tap->re;
}

template <typename Tap>
std::vector<Tap> directTaps(FixedData &data, int order)
{
    std::vector<Tap> taps = data.block<Tap>(2 * order + 2);
    makeLeading(&taps[static_cast<std::size_t>(order) + 1]);
    return taps;
}

template <typename Tap>
std::vector<Tap> quadTaps(FixedData &data, int numQuads)
{
    std::vector<Tap> taps = data.block<Tap>(6 * numQuads);
    for (std::size_t q = 0; q < taps.size(); q += 6) {
        makeLeading(&taps[q]);
        makeLeading(&taps[q + 3]);
    }
    return taps;
}

const int orders[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 16, 21};
const int quads[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 12, 15, 16, 17, 20, 33};

// Hands every filter to use(state) once.
template <typename Tap, typename Use>
void forDirect(Init<Tap> init, Use use)
{
    FixedData data(40);
    for (int order : orders) {
        rvxIirState state = {};
        init(0, directTaps<Tap>(data, order).data(), order, &state);
        use(state);
        rvxIirFree(&state);
    }
}

template <typename Tap, typename Use>
void forCascades(Init<Tap> init, Use use)
{
    FixedData data(41);
    for (int numQuads : quads) {
        rvxIirState state = {};
        init(1, quadTaps<Tap>(data, numQuads).data(), numQuads, &state);
        use(state);
        rvxIirFree(&state);
    }
}

// What the initialisers leave: the normalised taps. Both layouts have as many.
template <typename Tap>
void addTaps(Digest &digest, const rvxIirState &state)
{
    const Tap *taps = static_cast<const Tap *>(state.tapSt.taps);
    for (int i = 0; i <= 2 * state.tapSt.order; ++i)
        digest.add(taps[i]);
}

template <typename Sample, typename Out>
void addSamples(Digest &digest, rvxIirState &state, Out (*filter)(rvxIirState *, Sample))
{
    FixedData data(42);
    for (Sample x : data.block<Sample>(40))
        digest.add(filter(&state, x));
}

template <typename Sample, typename Out>
void addBlocks(Digest &digest, rvxIirState &state,
               void (*filter)(rvxIirState *, const Sample *, Out *, int))
{
    FixedData data(43);
    for (int n : {1, 2, 3, 5, 8, 37, 200}) {
        const std::vector<Sample> in = data.block<Sample>(n);
        std::vector<Out> out(static_cast<std::size_t>(n));
        filter(&state, in.data(), out.data(), n);
        digest.add(out);
    }
}

} // namespace

#define RVX_IIR_DIGESTS(family, Tap)                                                               \
    RVX_DIGEST(rvx##family##IirInit)                                                               \
    {                                                                                              \
        forDirect<Tap>(rvx##family##IirInit,                                                       \
                       [&](rvxIirState &state) { addTaps<Tap>(digest, state); });                  \
    }                                                                                              \
    RVX_DIGEST(rvx##family##IirInitBq)                                                             \
    {                                                                                              \
        forCascades<Tap>(rvx##family##IirInitBq,                                                   \
                         [&](rvxIirState &state) { addTaps<Tap>(digest, state); });                \
    }                                                                                              \
    RVX_DIGEST(rvx##family##Iir)                                                                   \
    {                                                                                              \
        const auto use = [&](rvxIirState &state) { addSamples(digest, state, rvx##family##Iir); }; \
        forDirect<Tap>(rvx##family##IirInit, use);                                                 \
        forCascades<Tap>(rvx##family##IirInitBq, use);                                             \
    }                                                                                              \
    RVX_DIGEST(rvx##family##bIir)                                                                  \
    {                                                                                              \
        const auto use = [&](rvxIirState &state) { addBlocks(digest, state, rvx##family##bIir); }; \
        forDirect<Tap>(rvx##family##IirInit, use);                                                 \
        forCascades<Tap>(rvx##family##IirInitBq, use);                                             \
    }

RVX_IIR_DIGESTS(d, double)
RVX_IIR_DIGESTS(z, ZCplx)
RVX_IIR_DIGESTS(dz, ZCplx)
RVX_IIR_DIGESTS(zd, double)

RVX_DIGEST(rvxIirFree)
{
    const double taps[] = {1.0, 2.0, 3.0, 4.0};
    rvxIirState state = {};
    rvxdIirInit(0, taps, 1, &state);
    rvxIirFree(&state);
    digest.add(state.dlySt.initMark);
    rvxIirFree(&state); // refused
    digest.add(rvxGetErrStatus());
}
