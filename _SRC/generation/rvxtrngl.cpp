// rvxtrngl: triangle waves.
//
// No function is evaluated: a value moves by a constant step and is folded back where
// it would leave the range, by a product and a sum with factors that stand in the
// record. Each value waits for the one before it, for the length of one addition, but
// on slow slopes: there many values are known at once.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "frame/rvxcheck.h"
#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"
#include "rvx.h"

RVX_MODULE("rvxtrngl")

namespace {

constexpr double pi = 3.141592653589793;
constexpr double twoPi = 6.283185307179586;
constexpr double fourPi = 12.566370614359172;

// A NaN is none of these. It does count as a magnitude, deliberately.
bool isFrequency(double freq)
{
    return freq >= 0.0 && freq < 0.5;
}

bool isPhase(double phase)
{
    return phase >= 0.0 && phase < twoPi;
}

bool isAsymmetry(double asym)
{
    return asym > -pi && asym < pi;
}

template <typename State>
void setShape(double freq, double mag, double fall, double rise, State *state)
{
    const double r1 = 1.0 / fall;
    const double r2 = 1.0 / rise;
    const double turns = fourPi * mag;
    state->mag = mag;
    state->stepDown = -(freq * turns) * r1;
    state->stepUp = (freq * turns) * r2;
    state->reflectTop = -rise * r1;
    state->reflectBottom = -fall * r2;
    state->spanUp = r2 * turns;
    state->spanDown = r1 * turns;
    state->offsetTop = mag - state->reflectTop * mag;
    state->offsetBottom = state->reflectBottom * mag - mag;
}

// Where one triangle stands.
struct Point {
    double value;
    double step;
};

template <typename State>
Point pointAt(double p, double fall, double rise, const State &shape)
{
    if (p < fall)
        return {shape.mag * (1.0 - (p + p) / fall), shape.stepDown};
    return {shape.mag * (((p - fall) / rise) * 2.0 + (-1.0)), shape.stepUp};
}

void start(double freq, double phase, double mag, double asym, rvxdTrnglState *state)
{
    const double fall = pi + asym;
    const double rise = pi - asym;
    setShape(freq, mag, fall, rise, state);
    const Point point = pointAt(phase, fall, rise, *state);
    state->step = point.step;
    state->value = point.value;
}

void start(double freq, double phase, double mag, double asym, rvxzTrnglState *state)
{
    const double fall = pi + asym;
    const double rise = pi - asym;
    setShape(freq, mag, fall, rise, state);
    double phaseIm = phase + (twoPi + fall) * 0.5;
    if (phaseIm > twoPi) // a whole turn exactly stays, deliberately
        phaseIm = phaseIm - twoPi;
    const Point re = pointAt(phase, fall, rise, *state);
    const Point im = pointAt(phaseIm, fall, rise, *state);
    state->stepRe = re.step;
    state->stepIm = im.step;
    state->valueRe = re.value;
    state->valueIm = im.value;
}

// ---------------------------------------------------------------------------
// One sample. Both turning points are open at each step, whatever its direction, and
// the fold is about the turning point: deliberately unlike the blocks below.

template <typename State>
Point stepped(Point at, const State &shape)
{
    const double mag = shape.mag;
    const double next = at.value + at.step;
    if (next > mag) {
        const double folded = (next - mag) * shape.reflectTop + mag;
        if (!(folded < -mag))
            return {folded, shape.stepDown};
        return {next - shape.spanUp, at.step};
    }
    if (next < -mag) {
        const double folded = (next + mag) * shape.reflectBottom + (-mag);
        if (!(folded > mag))
            return {folded, shape.stepUp};
        return {next + shape.spanDown, at.step};
    }
    return {next, at.step};
}

double nextSample(rvxdTrnglState *state)
{
    const double sample = state->value;
    const Point next = stepped({sample, state->step}, *state);
    state->value = next.value;
    state->step = next.step;
    return sample;
}

ZCplx nextSample(rvxzTrnglState *state)
{
    const ZCplx sample = {state->valueRe, state->valueIm};
    const Point re = stepped({sample.re, state->stepRe}, *state);
    const Point im = stepped({sample.im, state->stepIm}, *state);
    state->valueRe = re.value;
    state->stepRe = re.step;
    state->valueIm = im.value;
    state->stepIm = im.step;
    return sample;
}

// ---------------------------------------------------------------------------
// Blocks. Only the turning point ahead is looked for.

struct Walk {
    double value;
    double step;
    bool rising;
};

Walk walkFrom(double value, double step)
{
    return {value, step, step > 0.0};
}

template <typename State>
RVX_INLINE void advance(const State &shape, Walk *walk)
{
    const double next = walk->value + walk->step;
    walk->value = next;
    if (walk->rising) {
        if (next > shape.mag) {
            const double folded = shape.reflectTop * next + shape.offsetTop;
            if (folded < -shape.mag)
                walk->value = next - shape.spanUp;
            else
                *walk = {folded, shape.stepDown, false};
        }
    } else if (next < -shape.mag) {
        const double folded = shape.reflectBottom * next + shape.offsetBottom;
        if (folded > shape.mag)
            walk->value = next + shape.spanDown;
        else
            *walk = {folded, shape.stepUp, true};
    }
}

// One value after the other. Shape and place are copied: samps might be either's memory.
RVX_INLINE void walkOn(double *samps, int sampsLen, const rvxdTrnglState &from, Walk *to)
{
    const rvxdTrnglState shape = from;
    Walk walk = *to;
    for (int n = 0; n < sampsLen; ++n) {
        samps[n] = walk.value;
        advance(shape, &walk);
    }
    *to = walk;
}

std::uint64_t bitsOf(double x)
{
    std::uint64_t bits;
    std::memcpy(&bits, &x, sizeof bits);
    return bits;
}

double fromBits(std::uint64_t bits)
{
    double x;
    std::memcpy(&x, &bits, sizeof x);
    return x;
}

// As many of the next values as stand between the same two powers of two and before the
// turning point; gives how many it stored, 0 where they are few.
//
// Between two powers of two doubles stand equally far apart. There each addition rounds
// the same way, so that values climb by one and the same exact rise and all of them are
// known at once. (A step half-way between two doubles rounds to even: the first rise may
// differ then, as the value that it starts from may be odd.)
RVX_INLINE int stride(double *samps, int room, const rvxdTrnglState &shape, Walk *walk)
{
    const double first = walk->value + walk->step;
    const double second = first + walk->step;
    constexpr std::uint64_t signAndPower = 0xfff0000000000000;
    const std::uint64_t bits = bitsOf(second);
    const std::uint64_t differing = (bitsOf(walk->value) ^ bits) | (bitsOf(first) ^ bits);
    if ((differing & signAndPower) != 0)
        return 0;

    const double rise = second - first;
    const double nearZero = fromBits(bits & signAndPower);
    const double edge = (second > 0.0) == walk->rising ? nearZero + nearZero : nearZero;
    const double end = walk->rising ? std::min(edge, shape.mag) : std::max(edge, -shape.mag);
    // A rise of zero has no sign of its own: the way ahead has the walk's.
    const double ahead = walk->rising ? end - first : first - end;
    // One less than fit does fit, whichever way the quotient was rounded.
    const double fitting = ahead / std::fabs(rise) - 1.0;
    if (!(fitting >= 16.0))
        return 0;
    const int groups = (fitting < room ? static_cast<int>(fitting) : room - 1) / 8;

    Lanes four = lanesOf(first, second, first + 2.0 * rise, first + 3.0 * rise);
    Lanes nextFour = four + allLanes(4.0 * rise);
    samps[0] = walk->value;
    for (int n = 1; n < 1 + 8 * groups; n += 8) {
        storeLanes(samps + n, four);
        storeLanes(samps + n + 4, nextFour);
        four = four + allLanes(8.0 * rise);
        nextFour = nextFour + allLanes(8.0 * rise);
    }
    walk->value = firstLane(four);
    return 1 + 8 * groups;
}

RVX_KERNEL void strideTriangle(double *samps, int sampsLen, const rvxdTrnglState &shape, Walk *walk)
{
    for (int n = 0; n < sampsLen;) {
        n += stride(samps + n, sampsLen - n, shape, walk);
        const int single = std::min(12, sampsLen - n);
        walkOn(samps + n, single, shape, walk);
        n += single;
    }
}

// True if each slope takes so many steps that several at once are worth looking for.
bool isSlow(const rvxdTrnglState &shape)
{
    const double small = 0x1p-7 * shape.mag;
    return shape.stepUp > 0.0 && shape.stepUp < small && shape.stepDown < 0.0 &&
           shape.stepDown > -small;
}

void generate(rvxdTrnglState *state, double *samps, int sampsLen)
{
    const rvxdTrnglState shape = *state;
    Walk walk = walkFrom(shape.value, shape.step);
    if (isSlow(shape))
        strideTriangle(samps, sampsLen, shape, &walk);
    else
        walkOn(samps, sampsLen, shape, &walk);
    state->value = walk.value;
    state->step = walk.step;
}

// Two chains side by side take no more time than one. (In lanes they would take more:
// each turns by itself, and putting them together and apart is part of the chain.)
void generate(rvxzTrnglState *state, ZCplx *samps, int sampsLen)
{
    const rvxzTrnglState shape = *state;
    Walk re = walkFrom(shape.valueRe, shape.stepRe);
    Walk im = walkFrom(shape.valueIm, shape.stepIm);
    for (int n = 0; n < sampsLen; ++n) {
        samps[n] = {re.value, im.value};
        advance(shape, &re);
        advance(shape, &im);
    }
    state->valueRe = re.value;
    state->stepRe = re.step;
    state->valueIm = im.value;
    state->stepIm = im.step;
}

} // namespace

void rvxdTrnglInit(double freq, double phase, double mag, double asym, rvxdTrnglState *state)
{
    RVX_REJECT_IF(mag < 0.0, "Invalid magnitude value");
    RVX_REJECT_IF(!isFrequency(freq), "Invalid frequence value"); // spelled so deliberately
    RVX_REJECT_IF(!isPhase(phase), "Invalid phase value");
    RVX_REJECT_IF(!isAsymmetry(asym), "Invalid asymmetry value");
    RVX_REJECT_IF(state == nullptr, "Null pointer to state");
    start(freq, phase, mag, asym, state);
}

void rvxzTrnglInit(double freq, double phase, double mag, double asym, rvxzTrnglState *state)
{
    RVX_REJECT_IF(mag < 0.0, "Invalid magnitude value");
    RVX_REJECT_IF(!isFrequency(freq), "Invalid frequence value"); // spelled so deliberately
    RVX_REJECT_IF(!isPhase(phase), "Invalid phase value");
    RVX_REJECT_IF(!isAsymmetry(asym), "Invalid asymmetry value");
    RVX_REJECT_IF(state == nullptr, "Null pointer to state");
    start(freq, phase, mag, asym, state);
}

double rvxdTrngl(rvxdTrnglState *state)
{
    RVX_REJECT_IF(state == nullptr, "Null pointer to state", 0.0);
    return nextSample(state);
}

ZCplx rvxzTrngl(rvxzTrnglState *state)
{
    const ZCplx nothing = {0.0, 0.0};
    RVX_REJECT_IF(state == nullptr, "Null pointer to state", nothing);
    return nextSample(state);
}

void rvxdbTrngl(rvxdTrnglState *state, double *samps, int sampsLen)
{
    RVX_REJECT_IF(state == nullptr, "Null pointer to state");
    RVX_REJECT_IF(samps == nullptr, "Null pointer to buffer");
    RVX_REJECT_IF(sampsLen < 1, "Invalid number of items");
    generate(state, samps, sampsLen);
}

void rvxzbTrngl(rvxzTrnglState *state, ZCplx *samps, int sampsLen)
{
    RVX_REJECT_IF(state == nullptr, "Null pointer to state");
    RVX_REJECT_IF(samps == nullptr, "Null pointer to buffer");
    RVX_REJECT_IF(sampsLen < 1, "Invalid number of items");
    generate(state, samps, sampsLen);
}
