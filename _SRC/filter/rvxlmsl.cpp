// rvxlmsl: steps of the adaptive filters (Widrow and Hoff, Adaptive switching
// circuits, 1960; with leakage, and with a delay in the error path).
//
// The taps adapt independently of each other, in lanes; the output is a sum with a
// stated order, whose chain of additions is what a step takes. So one pass fetches
// each tap and sample once, adapts, multiplies, stores the tap and moves the sample
// on while the chain runs behind.

#include "filter/rvxlmsl.h"

#include <cstring>

#include "frame/rvxcheck.h"
#include "frame/rvxcplx.h"
#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"

RVX_MODULE("rvxlmsl")

namespace {

// A family: how many taps stand in lanes, and what is done with them.

struct RealLms {
    using Tap = double;
    using Sample = double;
    using Samples = Lanes; // as many as taps
    static constexpr int width = 4;

    static RVX_INLINE Lanes load(const double *p) { return loadLanes(p); }
    static RVX_INLINE void store(double *p, Lanes samples) { storeLanes(p, samples); }
    static RVX_INLINE Lanes spread(Lanes samples) { return samples; }
    static RVX_INLINE Lanes adapted(Lanes taps, Lanes kept, Lanes samples, Lanes gain)
    {
        return taps * kept + samples * gain;
    }
    static RVX_INLINE Lanes product(Lanes taps, Lanes samples) { return taps * samples; }
    // The sum stands in the first lane.
    static RVX_INLINE Lanes plusAll(Lanes sum, Lanes p)
    {
        const Lanes odd = swapParts(p);
        return (((sum + p) + odd) + swapHalves(p)) + swapHalves(odd);
    }
    static RVX_INLINE double first(Lanes sum) { return firstLane(sum); }
};

struct MixedLms {
    using Tap = ZCplx;
    using Sample = double;
    struct Samples {
        double first, second;
    };
    static constexpr int width = 2;

    static RVX_INLINE Samples load(const double *p) { return {p[0], p[1]}; }
    static RVX_INLINE void store(double *p, Samples samples)
    {
        p[0] = samples.first;
        p[1] = samples.second;
    }
    static RVX_INLINE Lanes spread(Samples s)
    {
        return lanesOf(s.first, s.first, s.second, s.second);
    }
    static RVX_INLINE Lanes adapted(Lanes taps, Lanes kept, Lanes samples, Lanes gain)
    {
        return taps * kept + samples * gain;
    }
    static RVX_INLINE Lanes product(Lanes taps, Lanes samples) { return taps * samples; }
    // The sum stands in the first two lanes.
    static RVX_INLINE Lanes plusAll(Lanes sum, Lanes p) { return (sum + p) + swapHalves(p); }
    static RVX_INLINE ZCplx first(Lanes sum) { return {sum.v[0], sum.v[1]}; }
};

struct CplxLms {
    using Tap = ZCplx;
    using Sample = ZCplx;
    using Samples = Lanes;
    static constexpr int width = 2;

    static RVX_INLINE Lanes load(const ZCplx *p) { return loadLanes(p); }
    static RVX_INLINE void store(ZCplx *p, Lanes samples) { storeLanes(p, samples); }
    static RVX_INLINE Lanes spread(Lanes samples) { return samples; }
    // taps * kept + gain * conj(samples); the two parts are deliberately grouped in
    // different ways: leaked + (byIm + byRe) and (leaked - byIm) + byRe.
    static RVX_INLINE Lanes adapted(Lanes taps, Lanes kept, Lanes samples, Lanes gain)
    {
        const Lanes leaked = taps * kept;
        const Lanes byIm = imagParts(samples) * swapParts(negateEven(gain));
        const Lanes byRe = realParts(samples) * gain;
        return (byIm + blendOdd(byRe, leaked)) + blendOdd(leaked, byRe);
    }
    static RVX_INLINE Lanes product(Lanes taps, Lanes samples)
    {
        return cplxProduct(taps, samples);
    }
    static RVX_INLINE Lanes plusAll(Lanes sum, Lanes p) { return (sum + p) + swapHalves(p); }
    static RVX_INLINE ZCplx first(Lanes sum) { return {sum.v[0], sum.v[1]}; }
};

// How many samples are fetched ahead of those that are due.
template <typename Family>
constexpr int reachOf = 4 * Family::width;

static_assert(reachOf<RealLms> <= RVX_LMS_REACH && reachOf<CplxLms> <= RVX_LMS_REACH);

// What a step works on. The delay line is as it was before the step.
template <typename Family>
struct LmsStep {
    typename Family::Tap *taps;
    int tapsLen;
    bool adapts;
    double kept;                            // what leakage leaves of a tap
    const typename Family::Sample *past;    // past[i] met taps[i] when the error arose
    const typename Family::Sample *inSamps; // the step's samples, oldest first
    int factor;                             // how many
    int fresh;                              // how many of them the output has, from the first on
    typename Family::Sample *line;          // line[i - fresh] meets taps[i] for i >= fresh
    long long lineLen;                      // how much of it moves up by factor places
};

// One tap, adapted, times the sample that it meets now.
template <typename Family, bool adapts>
RVX_INLINE Lanes oneProduct(typename Family::Tap *at, Lanes kept,
                            const typename Family::Sample *past, Lanes gain,
                            typename Family::Sample sample)
{
    Lanes tap = allLanes(*at);
    if (adapts) {
        tap = Family::adapted(tap, kept, allLanes(*past), gain);
        storeFirst(at, tap);
    }
    return Family::product(tap, allLanes(sample));
}

// The same for as many taps as stand in lanes.
template <typename Family, bool adapts>
RVX_INLINE Lanes products(typename Family::Tap *at, Lanes kept, const typename Family::Sample *past,
                          Lanes gain, typename Family::Samples samples)
{
    Lanes taps = loadLanes(at);
    if (adapts) {
        taps = Family::adapted(taps, kept, Family::spread(Family::load(past)), gain);
        storeLanes(at, taps);
    }
    return Family::product(taps, Family::spread(samples));
}

// Moves what lies behind the first `done` samples of the line, of which those that
// may have been written over are in `ahead`, and puts the step's samples in front.
template <int reach, typename Sample>
RVX_INLINE void finishLine(Sample *line, long long lineLen, long long done, const Sample *ahead,
                           const Sample *inSamps, int factor)
{
    const long long left = lineLen - done;
    if (left > reach)
        std::memmove(line + done + reach + factor, line + done + reach,
                     static_cast<std::size_t>(left - reach) * sizeof(Sample));
    for (int i = 0; i < reach && i < left; ++i)
        line[done + factor + i] = ahead[i];
    for (int i = 0; i < factor; ++i)
        line[i] = inSamps[factor - 1 - i];
}

// One output; the taps adapt and the line moves on the way.
//
// Samples are fetched `reach` places before they are due, since what moves up
// writes over them. All is stored before the last additions: the next step's loads
// then find it in the cache, not behind the end of the chain.
template <typename Family, bool adapts>
RVX_INLINE typename Family::Tap outputSum(const LmsStep<Family> &step, typename Family::Tap gain)
{
    constexpr int width = Family::width;
    constexpr int reach = reachOf<Family>;
    const int n = step.tapsLen;
    const int factor = step.factor;
    const bool moves = factor <= reach;
    typename Family::Tap *const taps = step.taps;
    const typename Family::Sample *const past = step.past;
    const Lanes kept = allLanes(step.kept);
    const Lanes gains = allLanes(gain);
    Lanes sum = allLanes(0.0);
    int i = 0;
    for (; i < n && i < step.fresh; ++i)
        sum = sum + oneProduct<Family, adapts>(taps + i, kept, past + i, gains,
                                               step.inSamps[step.fresh - 1 - i]);
    typename Family::Sample *at = step.line;
    typename Family::Samples due = Family::load(at), second = Family::load(at + width),
                             third = Family::load(at + 2 * width),
                             fourth = Family::load(at + 3 * width);
    for (; i <= n - width; i += width, at += width) {
        const typename Family::Samples fifth = Family::load(at + reach);
        sum = Family::plusAll(sum, products<Family, adapts>(taps + i, kept, past + i, gains, due));
        if (moves)
            Family::store(at + factor, due);
        due = second, second = third, third = fourth, fourth = fifth;
    }
    typename Family::Sample ahead[reach];
    Family::store(ahead, due);
    Family::store(ahead + width, second);
    Family::store(ahead + 2 * width, third);
    Family::store(ahead + 3 * width, fourth);
    Lanes last[width];
    int lastLen = 0;
    for (; i < n; ++i, ++lastLen)
        last[lastLen] = oneProduct<Family, adapts>(taps + i, kept, past + i, gains, ahead[lastLen]);
    if (moves)
        finishLine<reach>(step.line, step.lineLen, at - step.line, ahead, step.inSamps,
                          step.factor);
    else
        finishLine<reach>(step.line, step.lineLen, 0, step.line, step.inSamps, step.factor);
    for (int k = 0; k < lastLen; ++k)
        sum = sum + last[k];
    return Family::first(sum);
}

// Gain and output go in registers: through memory they would lie on the way from
// one error to the next.
template <typename Family>
RVX_INLINE typename Family::Tap stepOutput(const LmsStep<Family> &step, typename Family::Tap gain)
{
    return step.adapts ? outputSum<Family, true>(step, gain) : outputSum<Family, false>(step, gain);
}

RVX_KERNEL double lmsOutputReal(const LmsStep<RealLms> &step, double gain)
{
    return stepOutput(step, gain);
}

RVX_KERNEL ZCplx lmsOutputCplx(const LmsStep<CplxLms> &step, ZCplx gain)
{
    return stepOutput(step, gain);
}

RVX_KERNEL ZCplx lmsOutputMixed(const LmsStep<MixedLms> &step, ZCplx gain)
{
    return stepOutput(step, gain);
}

double lmsOutput(const LmsStep<RealLms> &step, double gain)
{
    return lmsOutputReal(step, gain);
}

ZCplx lmsOutput(const LmsStep<CplxLms> &step, ZCplx gain)
{
    return lmsOutputCplx(step, gain);
}

ZCplx lmsOutput(const LmsStep<MixedLms> &step, ZCplx gain)
{
    return lmsOutputMixed(step, gain);
}

// A step of `factor` samples, of which sample `phase` is the newest in the output;
// lineLen samples of the line move up.
template <typename Family>
typename Family::Tap takeStep(const rvxLmsTapState &taps, const rvxLmsDlyState &dly,
                              const typename Family::Sample *inSamps, int factor, int phase,
                              long long lineLen, typename Family::Tap err)
{
    // A negative delay is not refused, and may not reach outside the line.
    const int errDly = taps.errDly > 0 ? taps.errDly : 0;
    LmsStep<Family> step;
    step.taps = static_cast<typename Family::Tap *>(taps.taps);
    step.tapsLen = taps.tapsLen;
    step.adapts = taps.step > 0.0f;
    step.kept = 1.0 - static_cast<double>(taps.leak);
    step.inSamps = inSamps;
    step.factor = factor;
    step.fresh = phase + 1;
    step.line = static_cast<typename Family::Sample *>(dly.dlyl);
    step.past = step.line + (factor - 1 - phase) + errDly;
    step.lineLen = lineLen;
    return lmsOutput(step, err * static_cast<double>(taps.step));
}

template <typename Family>
typename Family::Tap oneStep(const char *func, const rvxLmsTapState *taps,
                             const rvxLmsDlyState *dly, typename Family::Sample sample,
                             typename Family::Tap err)
{
    using Tap = typename Family::Tap;
    RVX_REJECT_AS(func, taps == nullptr || dly == nullptr, "Null buffer pointer", Tap{});
    RVX_REJECT_AS(func, taps->tapsReady == 0, "Taps state structure is not initialized", Tap{});
    RVX_REJECT_AS(func, dly->dlyReady == 0, "Delay line state structure is not initialized", Tap{});
    return takeStep<Family>(*taps, *dly, &sample, 1, 0, dly->dlylLen - 1LL, err);
}

template <typename Family>
typename Family::Tap blockStep(const char *func, const rvxLmsTapState *taps,
                               const rvxLmsDlyState *dly, const typename Family::Sample *inSamps,
                               typename Family::Tap err)
{
    using Tap = typename Family::Tap;
    RVX_REJECT_AS(func, taps == nullptr || dly == nullptr, "Null buffer pointer", Tap{});
    RVX_REJECT_AS(func, inSamps == nullptr, "Null buffer pointer", Tap{});
    RVX_REJECT_AS(func, taps->tapsReady == 0, "Taps state structure is not initialized", Tap{});
    RVX_REJECT_AS(func, dly->dlyReady == 0, "Delay line state structure is not initialized", Tap{});
    return takeStep<Family>(*taps, *dly, inSamps, taps->downFactor, taps->downPhase,
                            static_cast<long long>(taps->tapsLen) + taps->errDly, err);
}

template <typename Tap>
void setTaps(const Tap *values, rvxLmsTapState *taps)
{
    auto *stored = static_cast<Tap *>(taps->taps);
    for (int i = 0; i < taps->tapsLen; ++i)
        stored[i] = values == nullptr ? Tap{} : values[i];
    taps->tapsReady = 1;
}

// The values lack one sample: the oldest place is cleared.
template <typename Sample>
void setDlyl(const Sample *values, rvxLmsDlyState *dly)
{
    auto *line = static_cast<Sample *>(dly->dlyl);
    const int last = dly->dlylLen - 1;
    for (int i = 0; i < last; ++i)
        line[i] = values == nullptr ? Sample{} : values[last - 1 - i];
    if (last >= 0)
        line[last] = Sample{};
    dly->dlyReady = 1;
}

} // namespace

void rvxdLmslSetTaps(const double *values, rvxLmsTapState *taps)
{
    RVX_REJECT_IF(taps == nullptr, "Null buffer pointer");
    setTaps(values, taps);
}

void rvxzLmslSetTaps(const ZCplx *values, rvxLmsTapState *taps)
{
    RVX_REJECT_IF(taps == nullptr, "Null buffer pointer");
    setTaps(values, taps);
}

void rvxdLmslSetDlyl(const double *values, rvxLmsDlyState *dly)
{
    RVX_REJECT_IF(dly == nullptr, "Null buffer pointer");
    setDlyl(values, dly);
}

void rvxzLmslSetDlyl(const ZCplx *values, rvxLmsDlyState *dly)
{
    RVX_REJECT_IF(dly == nullptr, "Null buffer pointer");
    setDlyl(values, dly);
}

double rvxdLmsl(rvxLmsTapState *taps, rvxLmsDlyState *dly, double sample, double err)
{
    return oneStep<RealLms>(__func__, taps, dly, sample, err);
}

ZCplx rvxzLmsl(rvxLmsTapState *taps, rvxLmsDlyState *dly, ZCplx sample, ZCplx err)
{
    return oneStep<CplxLms>(__func__, taps, dly, sample, err);
}

ZCplx rvxdzLmsl(rvxLmsTapState *taps, rvxLmsDlyState *dly, double sample, ZCplx err)
{
    return oneStep<MixedLms>(__func__, taps, dly, sample, err);
}

double rvxdbLmsl(rvxLmsTapState *taps, rvxLmsDlyState *dly, const double *inSamps, double err)
{
    return blockStep<RealLms>(__func__, taps, dly, inSamps, err);
}

ZCplx rvxzbLmsl(rvxLmsTapState *taps, rvxLmsDlyState *dly, const ZCplx *inSamps, ZCplx err)
{
    return blockStep<CplxLms>(__func__, taps, dly, inSamps, err);
}

ZCplx rvxdzbLmsl(rvxLmsTapState *taps, rvxLmsDlyState *dly, const double *inSamps, ZCplx err)
{
    return blockStep<MixedLms>(__func__, taps, dly, inSamps, err);
}
