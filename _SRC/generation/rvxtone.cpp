// rvxtone: samples of a cosine, or of a cosine and a sine, from a recurrence.
//
// Trigonometric functions are called for the start alone; afterwards a sample is a
// product and a difference of the two before it, cos((n+1) w) = 2 cos(w) cos(n w) -
// cos((n-1) w). Each waits for the one before it, and that chain is all the time that
// a block takes.

#include <cstring>

#include "frame/rvxcheck.h"
#include "frame/rvxcplx.h"
#include "frame/rvxkernel.h"
#include "frame/rvxsine.h"
#include "rvx.h"

RVX_MODULE("rvxtone")

namespace {

constexpr double twoPi = 6.283185307179586;
constexpr char initialized[] = "RVT";

// A NaN is no frequency and no phase. It does count as a magnitude, deliberately.
bool isFrequency(double freq)
{
    return freq >= 0.0 && freq < 0.5;
}

bool isPhase(double phase)
{
    return phase >= 0.0 && phase < twoPi;
}

// Comparing all of the field compares the strings: the mark fills it.
template <typename State>
bool isInitialized(const State *state)
{
    static_assert(sizeof state->marker == sizeof initialized, "the mark and its end");
    return std::memcmp(state->marker, initialized, sizeof initialized) == 0;
}

void setPoint(double mag, double angle, double *y)
{
    *y = mag * cosine(angle);
}

void setPoint(double mag, double angle, ZCplx *y)
{
    *y = {mag * cosine(angle), mag * sine(angle)};
}

template <typename State>
void start(double freq, double phase, double mag, State *state)
{
    const double w = twoPi * freq;
    const double cosW = cosine(w);
    state->mag = mag;
    state->freq = freq;
    state->phase = phase;
    std::memcpy(state->marker, initialized, sizeof initialized);
    state->twoCos = cosW + cosW;
    setPoint(mag, phase - w, &state->y1);
    setPoint(mag, (phase - w) - w, &state->y2);
}

template <typename State, typename Sample>
RVX_INLINE void generate(State *state, Sample *samps, int sampsLen)
{
    const double twoCos = state->twoCos;
    Sample y1 = state->y1;
    Sample y2 = state->y2;
    for (int n = 0; n < sampsLen; ++n) {
        const Sample v = twoCos * y1 - y2;
        y2 = y1;
        y1 = v;
        samps[n] = v;
    }
    state->y1 = y1;
    state->y2 = y2;
}

} // namespace

void rvxdToneInit(double freq, double phase, double mag, rvxdToneState *state)
{
    RVX_REJECT_IF(mag < 0.0, "Invalid magnitude value");
    RVX_REJECT_IF(!isFrequency(freq), "Invalid freq value");
    RVX_REJECT_IF(!isPhase(phase), "Invalid phase value");
    RVX_REJECT_IF(state == nullptr, "Null pointer to state");
    start(freq, phase, mag, state);
}

void rvxzToneInit(double freq, double phase, double mag, rvxzToneState *state)
{
    RVX_REJECT_IF(mag < 0.0, "Invalid magnitude value");
    RVX_REJECT_IF(!isFrequency(freq), "Invalid freq value");
    RVX_REJECT_IF(!isPhase(phase), "Invalid phase value");
    RVX_REJECT_IF(state == nullptr, "Null pointer to state");
    start(freq, phase, mag, state);
}

double rvxdTone(rvxdToneState *state)
{
    RVX_REJECT_IF(state == nullptr, "Null pointer to state", 0.0);
    RVX_REJECT_IF(!isInitialized(state), "Structure initialization need", 0.0);
    double sample;
    generate(state, &sample, 1);
    return sample;
}

ZCplx rvxzTone(rvxzToneState *state)
{
    const ZCplx nothing = {0.0, 0.0};
    RVX_REJECT_IF(state == nullptr, "Null pointer to state", nothing);
    RVX_REJECT_IF(!isInitialized(state), "Structure initialization need", nothing);
    ZCplx sample;
    generate(state, &sample, 1);
    return sample;
}

void rvxdbTone(rvxdToneState *state, double *samps, int sampsLen)
{
    RVX_REJECT_IF(state == nullptr, "Null pointer to state");
    RVX_REJECT_IF(samps == nullptr, "Null input buffer pointer");
    RVX_REJECT_IF(sampsLen < 1, "Bad number of items");
    RVX_REJECT_IF(!isInitialized(state), "Structure initialization need");
    generate(state, samps, sampsLen);
}

void rvxzbTone(rvxzToneState *state, ZCplx *samps, int sampsLen)
{
    RVX_REJECT_IF(state == nullptr, "Null pointer to state");
    RVX_REJECT_IF(samps == nullptr, "Null input buffer pointer");
    RVX_REJECT_IF(sampsLen < 1, "Bad number of items");
    RVX_REJECT_IF(!isInitialized(state), "Structure initialization need");
    generate(state, samps, sampsLen);
}
