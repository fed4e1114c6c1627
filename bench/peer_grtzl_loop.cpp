#include "peer_grtzl.h"

namespace {

ZCplx bin(double cosV, double sinV, ZCplx prev1, ZCplx prev2)
{
    return {cosV * prev1.re - sinV * prev1.im - prev2.re,
            cosV * prev1.im + sinV * prev1.re - prev2.im};
}

} // namespace

// As the library rounds.
#pragma GCC push_options
#pragma GCC optimize("fp-contract=off")

namespace loop {

ZCplx goertzel(rvxdGoertzState *state, const double *x, int n)
{
    double prev1 = state->prev1, prev2 = state->prev2;
    const double twoCos = state->twoCos;
    for (int i = 0; i < n; ++i) {
        const double s = (x[i] - prev2) + twoCos * prev1;
        prev2 = prev1;
        prev1 = s;
    }
    state->prev1 = prev1;
    state->prev2 = prev2;
    return {state->cosV * prev1 - prev2, state->sinV * prev1};
}

ZCplx goertzel(rvxzGoertzState *state, const ZCplx *x, int n)
{
    ZCplx prev1 = state->prev1, prev2 = state->prev2;
    const double twoCos = state->twoCos;
    for (int i = 0; i < n; ++i) {
        const ZCplx s = {(x[i].re - prev2.re) + twoCos * prev1.re,
                         (x[i].im - prev2.im) + twoCos * prev1.im};
        prev2 = prev1;
        prev1 = s;
    }
    state->prev1 = prev1;
    state->prev2 = prev2;
    return bin(state->cosV, state->sinV, prev1, prev2);
}

} // namespace loop

#pragma GCC pop_options

namespace loop {

ZCplx goertzelFused(rvxdGoertzState *state, const double *x, int n)
{
    double prev1 = state->prev1, prev2 = state->prev2;
    const double twoCos = state->twoCos;
    for (int i = 0; i < n; ++i) {
        const double s = (x[i] - prev2) + twoCos * prev1;
        prev2 = prev1;
        prev1 = s;
    }
    state->prev1 = prev1;
    state->prev2 = prev2;
    return {state->cosV * prev1 - prev2, state->sinV * prev1};
}

ZCplx goertzelFused(rvxzGoertzState *state, const ZCplx *x, int n)
{
    ZCplx prev1 = state->prev1, prev2 = state->prev2;
    const double twoCos = state->twoCos;
    for (int i = 0; i < n; ++i) {
        const ZCplx s = {(x[i].re - prev2.re) + twoCos * prev1.re,
                         (x[i].im - prev2.im) + twoCos * prev1.im};
        prev2 = prev1;
        prev1 = s;
    }
    state->prev1 = prev1;
    state->prev2 = prev2;
    return bin(state->cosV, state->sinV, prev1, prev2);
}

} // namespace loop
