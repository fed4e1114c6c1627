#include "peer_trngl.h"

// As the library rounds.
#pragma GCC optimize("fp-contract=off")

namespace {

template <typename State>
inline void step(const State &s, double *value, double *stepNow, bool *rising)
{
    const double next = *value + *stepNow;
    *value = next;
    if (*rising) {
        if (next > s.mag) {
            const double t = s.reflectTop * next + s.offsetTop;
            if (t < -s.mag) {
                *value = next - s.spanUp;
            } else {
                *value = t;
                *stepNow = s.stepDown;
                *rising = false;
            }
        }
    } else if (next < -s.mag) {
        const double t = s.reflectBottom * next + s.offsetBottom;
        if (t > s.mag) {
            *value = next + s.spanDown;
        } else {
            *value = t;
            *stepNow = s.stepUp;
            *rising = true;
        }
    }
}

} // namespace

namespace loop {

void triangle(rvxdTrnglState *state, double *y, int n)
{
    const rvxdTrnglState s = *state;
    double value = s.value, now = s.step;
    bool rising = now > 0.0;
    for (int i = 0; i < n; ++i) {
        y[i] = value;
        step(s, &value, &now, &rising);
    }
    state->value = value;
    state->step = now;
}

void triangle(rvxzTrnglState *state, ZCplx *y, int n)
{
    const rvxzTrnglState s = *state;
    double re = s.valueRe, im = s.valueIm, nowRe = s.stepRe, nowIm = s.stepIm;
    bool risingRe = nowRe > 0.0, risingIm = nowIm > 0.0;
    for (int i = 0; i < n; ++i) {
        y[i] = {re, im};
        step(s, &re, &nowRe, &risingRe);
        step(s, &im, &nowIm, &risingIm);
    }
    state->valueRe = re;
    state->valueIm = im;
    state->stepRe = nowRe;
    state->stepIm = nowIm;
}

} // namespace loop
