// rvxgrtzl: one bin of the discrete Fourier transform, block by block.
//
// A second-order recurrence with one multiplication per real number; the complex
// factor is applied once per block (Goertzel, An algorithm for the evaluation of
// finite trigonometric series, 1958). Each step waits for a product and a sum of the
// step before it: x - prev2 is ready by then.

#include "frame/rvxcheck.h"
#include "frame/rvxcplx.h"
#include "frame/rvxkernel.h"
#include "frame/rvxsine.h"
#include "rvx.h"

RVX_MODULE("rvxgrtzl")

namespace {

bool isFrequency(double rFreq)
{
    return rFreq >= 0.0 && rFreq < 1.0;
}

template <typename State>
void clearDelays(State *state)
{
    state->prev2 = {};
    state->prev1 = {};
}

template <typename State>
void setFrequency(double rFreq, State *state)
{
    const double omega = rFreq * 6.283185307179586;
    state->rFreq = rFreq;
    state->cosV = cosine(omega);
    state->sinV = sine(omega);
    state->twoCos = state->cosV + state->cosV;
    clearDelays(state);
}

// s[n] = (x[n] - s[n-2]) + twoCos * s[n-1]
template <typename State, typename Sample>
void advance(State *state, const Sample *src, int len)
{
    const double twoCos = state->twoCos;
    Sample prev2 = state->prev2;
    Sample prev1 = state->prev1;
    for (int n = 0; n < len; ++n) {
        const Sample s = (src[n] - prev2) + twoCos * prev1;
        prev2 = prev1;
        prev1 = s;
    }
    state->prev2 = prev2;
    state->prev1 = prev1;
}

// e^(j omega) * s[n] - s[n-1]
ZCplx bin(const rvxdGoertzState &state)
{
    return {state.cosV * state.prev1 - state.prev2, state.sinV * state.prev1};
}

ZCplx bin(const rvxzGoertzState &state)
{
    const ZCplx s = state.prev1;
    return {state.cosV * s.re - state.sinV * s.im - state.prev2.re,
            state.cosV * s.im + state.sinV * s.re - state.prev2.im};
}

} // namespace

void rvxdGoertzInit(double rFreq, rvxdGoertzState *state)
{
    RVX_REJECT_IF(state == nullptr, "Null state pointer");
    RVX_REJECT_IF(!isFrequency(rFreq), "Invalid frequency value");
    setFrequency(rFreq, state);
}

void rvxzGoertzInit(double rFreq, rvxzGoertzState *state)
{
    RVX_REJECT_IF(state == nullptr, "Null state pointer");
    RVX_REJECT_IF(!isFrequency(rFreq), "Invalid frequency value");
    setFrequency(rFreq, state);
}

void rvxdGoertzReset(rvxdGoertzState *state)
{
    RVX_REJECT_IF(state == nullptr, "Null state pointer");
    clearDelays(state);
}

void rvxzGoertzReset(rvxzGoertzState *state)
{
    RVX_REJECT_IF(state == nullptr, "Null state pointer");
    clearDelays(state);
}

ZCplx rvxdbGoertz(rvxdGoertzState *state, const double *src, int len)
{
    const ZCplx nothing = {0.0, 0.0};
    RVX_REJECT_IF(state == nullptr, "Null state pointer", nothing);
    RVX_REJECT_IF(src == nullptr, "Null buffer pointer", nothing);
    RVX_REJECT_IF(len < 1, "Invalid array length", nothing);
    advance(state, src, len);
    return bin(*state);
}

ZCplx rvxzbGoertz(rvxzGoertzState *state, const ZCplx *src, int len)
{
    const ZCplx nothing = {0.0, 0.0};
    RVX_REJECT_IF(state == nullptr, "Null state pointer", nothing);
    RVX_REJECT_IF(src == nullptr, "Null buffer pointer", nothing);
    RVX_REJECT_IF(len < 1, "Invalid array length", nothing);
    advance(state, src, len);
    return bin(*state);
}
