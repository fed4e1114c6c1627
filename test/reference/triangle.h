// Triangle waves: the steps written a second time, one operation after the other, on an
// array of named constants.

#ifndef RVX_TEST_TRIANGLE_H
#define RVX_TEST_TRIANGLE_H

#include <vector>

#include <gtest/gtest.h>

#include "support/bits.h"

constexpr double PI = 3.141592653589793;
constexpr double TWO_PI = 6.283185307179586;
constexpr double FOUR_PI = 12.566370614359172;

struct Shape {
    double mag, stepDown, stepUp, reflectTop, reflectBottom, spanUp, spanDown, offsetTop,
        offsetBottom;
};

template <typename State>
Shape shapeOf(const State &state)
{
    return {state.mag,    state.stepDown, state.stepUp,    state.reflectTop,  state.reflectBottom,
            state.spanUp, state.spanDown, state.offsetTop, state.offsetBottom};
}

inline Shape expectedShape(double freq, double mag, double asym)
{
    Shape s = {};
    const double fall = PI + asym, rise = PI - asym, r1 = 1.0 / fall, r2 = 1.0 / rise;
    const volatile double turns = FOUR_PI * mag;
    const volatile double slope = freq * turns;
    s.mag = mag;
    s.stepDown = -slope * r1;
    s.stepUp = slope * r2;
    s.reflectTop = -rise * r1;
    s.reflectBottom = -fall * r2;
    s.spanUp = r2 * turns;
    s.spanDown = r1 * turns;
    const volatile double top = s.reflectTop * mag, bottom = s.reflectBottom * mag;
    s.offsetTop = mag - top;
    s.offsetBottom = bottom - mag;
    return s;
}

inline void expectShape(const Shape &a, const Shape &b)
{
    EXPECT_TRUE(same(a.mag, b.mag));
    EXPECT_TRUE(same(a.stepDown, b.stepDown));
    EXPECT_TRUE(same(a.stepUp, b.stepUp));
    EXPECT_TRUE(same(a.reflectTop, b.reflectTop));
    EXPECT_TRUE(same(a.reflectBottom, b.reflectBottom));
    EXPECT_TRUE(same(a.spanUp, b.spanUp));
    EXPECT_TRUE(same(a.spanDown, b.spanDown));
    EXPECT_TRUE(same(a.offsetTop, b.offsetTop));
    EXPECT_TRUE(same(a.offsetBottom, b.offsetBottom));
}

// What a chain met on its way.
struct Branches {
    long tops = 0, bottoms = 0, spansUp = 0, spansDown = 0;
};
inline Branches branches;

struct Chain {
    double value;
    double step;
};

inline double foldedAbout(double excess, double factor, double end)
{
    const volatile double product = excess * factor;
    return product + end;
}

inline void scalarStep(const Shape &s, Chain *chain)
{
    const double next = chain->value + chain->step;
    chain->value = next;
    if (next > s.mag) {
        const double t = foldedAbout(next - s.mag, s.reflectTop, s.mag);
        if (t < -s.mag) {
            chain->value = next - s.spanUp;
            ++branches.spansUp;
        } else {
            *chain = {t, s.stepDown};
            ++branches.tops;
        }
    } else if (next < -s.mag) {
        const double t = foldedAbout(next + s.mag, s.reflectBottom, -s.mag);
        if (t > s.mag) {
            chain->value = next + s.spanDown;
            ++branches.spansDown;
        } else {
            *chain = {t, s.stepUp};
            ++branches.bottoms;
        }
    }
}

// All samples of one call, and the chain behind them.
inline std::vector<double> blockSteps(const Shape &s, int n, Chain *chain)
{
    std::vector<double> samples;
    bool rising = chain->step > 0.0;
    for (int i = 0; i < n; ++i) {
        samples.push_back(chain->value);
        const double next = chain->value + chain->step;
        chain->value = next;
        if (rising && next > s.mag) {
            const double t = foldedAbout(next, s.reflectTop, s.offsetTop);
            if (t < -s.mag) {
                chain->value = next - s.spanUp;
                ++branches.spansUp;
            } else {
                *chain = {t, s.stepDown};
                rising = false;
                ++branches.tops;
            }
        } else if (!rising && next < -s.mag) {
            const double t = foldedAbout(next, s.reflectBottom, s.offsetBottom);
            if (t > s.mag) {
                chain->value = next + s.spanDown;
                ++branches.spansDown;
            } else {
                *chain = {t, s.stepUp};
                rising = true;
                ++branches.bottoms;
            }
        }
    }
    return samples;
}

inline Chain expectedStart(const Shape &s, double p, double asym)
{
    const double fall = PI + asym, rise = PI - asym;
    if (p < fall) {
        const double part = (p + p) / fall;
        return {s.mag * (1.0 - part), s.stepDown};
    }
    const double part = (p - fall) / rise;
    const volatile double twice = part * 2.0;
    return {s.mag * (twice + -1.0), s.stepUp};
}

inline double phaseOfPart(int part, double phase, double asym)
{
    if (part == 0)
        return phase;
    const double fall = PI + asym;
    const volatile double ahead = (TWO_PI + fall) * 0.5;
    const double sum = phase + ahead;
    return sum > TWO_PI ? sum - TWO_PI : sum;
}

#endif
