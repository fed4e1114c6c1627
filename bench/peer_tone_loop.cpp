#include "peer_tone.h"

#include <cmath>

// As the library rounds.
#pragma GCC push_options
#pragma GCC optimize("fp-contract=off")

namespace loop {

void tone(rvxdToneState *state, double *y, int n)
{
    double y1 = state->y1, y2 = state->y2;
    const double twoCos = state->twoCos;
    for (int i = 0; i < n; ++i) {
        const double v = twoCos * y1 - y2;
        y2 = y1;
        y1 = v;
        y[i] = v;
    }
    state->y1 = y1;
    state->y2 = y2;
}

void tone(rvxzToneState *state, ZCplx *y, int n)
{
    ZCplx y1 = state->y1, y2 = state->y2;
    const double twoCos = state->twoCos;
    for (int i = 0; i < n; ++i) {
        const ZCplx v = {twoCos * y1.re - y2.re, twoCos * y1.im - y2.im};
        y2 = y1;
        y1 = v;
        y[i] = v;
    }
    state->y1 = y1;
    state->y2 = y2;
}

} // namespace loop

#pragma GCC pop_options

namespace loop {

void toneFused(rvxdToneState *state, double *y, int n)
{
    double y1 = state->y1, y2 = state->y2;
    const double twoCos = state->twoCos;
    for (int i = 0; i < n; ++i) {
        const double v = twoCos * y1 - y2;
        y2 = y1;
        y1 = v;
        y[i] = v;
    }
    state->y1 = y1;
    state->y2 = y2;
}

void toneFused(rvxzToneState *state, ZCplx *y, int n)
{
    ZCplx y1 = state->y1, y2 = state->y2;
    const double twoCos = state->twoCos;
    for (int i = 0; i < n; ++i) {
        const ZCplx v = {twoCos * y1.re - y2.re, twoCos * y1.im - y2.im};
        y2 = y1;
        y1 = v;
        y[i] = v;
    }
    state->y1 = y1;
    state->y2 = y2;
}

void toneBySines(double freq, double *y, int n)
{
    const double w = 6.283185307179586 * freq;
    for (int i = 0; i < n; ++i)
        y[i] = std::sin(w * i);
}

void toneBySines(double freq, ZCplx *y, int n)
{
    const double w = 6.283185307179586 * freq;
    for (int i = 0; i < n; ++i)
        y[i] = {std::cos(w * i), std::sin(w * i)};
}

} // namespace loop
