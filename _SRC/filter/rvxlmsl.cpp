// rvxlmsl: steps of the adaptive filters (Widrow and Hoff, Adaptive switching
// circuits, 1960; with leakage, and with a delay in the error path).
//
// The taps adapt independently of each other, in lanes; the output is a sum with a
// stated order, whose chain of additions is what a step takes. So each tap is
// fetched once, adapted, stored and multiplied while the chain runs behind.

#include "filter/rvxlmsl.h"

#include <cstring>

#include "frame/rvxcheck.h"
#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"

RVX_MODULE("rvxlmsl")

namespace {

// A family: how many taps stand in lanes, and what is done with them.

struct RealLms {
    using Tap = double;
    using Sample = double;
    static constexpr int width = 4;

    static RVX_INLINE Lanes samples(const double *p) { return loadLanes(p); }
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
};

struct MixedLms {
    using Tap = ZCplx;
    using Sample = double;
    static constexpr int width = 2;

    static RVX_INLINE Lanes samples(const double *p) { return lanesOf(p[0], p[0], p[1], p[1]); }
    static RVX_INLINE Lanes adapted(Lanes taps, Lanes kept, Lanes samples, Lanes gain)
    {
        return taps * kept + samples * gain;
    }
    static RVX_INLINE Lanes product(Lanes taps, Lanes samples) { return taps * samples; }
    // The sum stands in the first two lanes.
    static RVX_INLINE Lanes plusAll(Lanes sum, Lanes p) { return (sum + p) + swapHalves(p); }
};

struct CplxLms {
    using Tap = ZCplx;
    using Sample = ZCplx;
    static constexpr int width = 2;

    static RVX_INLINE Lanes samples(const ZCplx *p) { return loadLanes(p); }
    // taps * kept + gain * conj(samples); the two parts are deliberately grouped in
    // different ways.
    static RVX_INLINE Lanes adapted(Lanes taps, Lanes kept, Lanes samples, Lanes gain)
    {
        const Lanes leaked = taps * kept;
        const Lanes byIm = imagParts(samples) * swapParts(gain);
        const Lanes byRe = realParts(samples) * gain;
        return blendOdd(leaked + (byIm + byRe), (leaked - byIm) + byRe);
    }
    static RVX_INLINE Lanes product(Lanes taps, Lanes samples)
    {
        return subAdd(realParts(taps) * samples, imagParts(taps) * swapParts(samples));
    }
    static RVX_INLINE Lanes plusAll(Lanes sum, Lanes p) { return (sum + p) + swapHalves(p); }
};

// What a step works on. The delay line is as it was before the step.
template <typename Family>
struct LmsStep {
    typename Family::Tap *taps;
    int tapsLen;
    bool adapts;
    double kept;                           // what leakage leaves of a tap
    typename Family::Tap gain;             // error times step size
    const typename Family::Sample *past;   // past[i] met taps[i] when the error arose
    const typename Family::Sample *newest; // newest[-i] meets taps[i] for i < fresh
    int fresh;
    const typename Family::Sample *line; // and line[i - fresh] the others
};

// Tap i, adapted, times the sample that it meets now.
template <typename Family, bool adapts>
RVX_INLINE Lanes oneProduct(const LmsStep<Family> &step, int i, typename Family::Sample sample)
{
    Lanes tap = allLanes(step.taps[i]);
    if (adapts) {
        tap =
            Family::adapted(tap, allLanes(step.kept), allLanes(step.past[i]), allLanes(step.gain));
        storeFirst(step.taps + i, tap);
    }
    return Family::product(tap, allLanes(sample));
}

// The same for as many taps as stand in lanes.
template <typename Family, bool adapts>
RVX_INLINE Lanes products(const LmsStep<Family> &step, int i,
                          const typename Family::Sample *samples)
{
    Lanes taps = loadLanes(step.taps + i);
    if (adapts) {
        taps = Family::adapted(taps, allLanes(step.kept), Family::samples(step.past + i),
                               allLanes(step.gain));
        storeLanes(step.taps + i, taps);
    }
    return Family::product(taps, Family::samples(samples));
}

template <typename Family, bool adapts>
RVX_INLINE Lanes outputSum(const LmsStep<Family> &step)
{
    const int n = step.tapsLen;
    Lanes sum = allLanes(0.0);
    int i = 0;
    for (; i < n && i < step.fresh; ++i)
        sum = sum + oneProduct<Family, adapts>(step, i, step.newest[-i]);
    for (; i <= n - Family::width; i += Family::width)
        sum = Family::plusAll(sum, products<Family, adapts>(step, i, step.line + (i - step.fresh)));
    for (; i < n; ++i)
        sum = sum + oneProduct<Family, adapts>(step, i, step.line[i - step.fresh]);
    return sum;
}

template <typename Family>
RVX_INLINE void stepOutput(const LmsStep<Family> &step, typename Family::Tap *output)
{
    storeFirst(output,
               step.adapts ? outputSum<Family, true>(step) : outputSum<Family, false>(step));
}

RVX_KERNEL void lmsOutputReal(const LmsStep<RealLms> &step, double *output)
{
    stepOutput(step, output);
}

RVX_KERNEL void lmsOutputCplx(const LmsStep<CplxLms> &step, ZCplx *output)
{
    stepOutput(step, output);
}

RVX_KERNEL void lmsOutputMixed(const LmsStep<MixedLms> &step, ZCplx *output)
{
    stepOutput(step, output);
}

void lmsOutput(const LmsStep<RealLms> &step, double *output)
{
    lmsOutputReal(step, output);
}

void lmsOutput(const LmsStep<CplxLms> &step, ZCplx *output)
{
    lmsOutputCplx(step, output);
}

void lmsOutput(const LmsStep<MixedLms> &step, ZCplx *output)
{
    lmsOutputMixed(step, output);
}

double scaled(double err, double step)
{
    return err * step;
}

ZCplx scaled(ZCplx err, double step)
{
    return {err.re * step, err.im * step};
}

// One output, with `fresh` samples up to *newest in front of the delay line, of
// which the first places from `offset` on belong to the output.
template <typename Family>
typename Family::Tap outputOf(const rvxLmsTapState &taps, const rvxLmsDlyState &dly, int offset,
                              const typename Family::Sample *newest, int fresh,
                              typename Family::Tap err)
{
    // A negative delay is not refused, and may not reach outside the line.
    const int errDly = taps.errDly > 0 ? taps.errDly : 0;
    LmsStep<Family> step;
    step.taps = static_cast<typename Family::Tap *>(taps.taps);
    step.tapsLen = taps.tapsLen;
    step.adapts = taps.step > 0.0f;
    step.kept = 1.0 - static_cast<double>(taps.leak);
    step.gain = scaled(err, taps.step);
    step.line = static_cast<const typename Family::Sample *>(dly.dlyl);
    step.past = step.line + offset + errDly;
    step.newest = newest;
    step.fresh = fresh;
    typename Family::Tap output;
    lmsOutput(step, &output);
    return output;
}

// Moves count elements up by `by` places.
template <typename Sample>
void shiftLine(Sample *line, int count, int by)
{
    if (count > 0)
        std::memmove(line + by, line, static_cast<std::size_t>(count) * sizeof(Sample));
}

template <typename Family>
typename Family::Tap oneStep(const rvxLmsTapState &taps, const rvxLmsDlyState &dly,
                             typename Family::Sample sample, typename Family::Tap err)
{
    const typename Family::Tap output = outputOf<Family>(taps, dly, 0, &sample, 1, err);
    auto *line = static_cast<typename Family::Sample *>(dly.dlyl);
    shiftLine(line, dly.dlylLen - 1, 1);
    line[0] = sample;
    return output;
}

template <typename Family>
typename Family::Tap blockStep(const rvxLmsTapState &taps, const rvxLmsDlyState &dly,
                               const typename Family::Sample *inSamps, typename Family::Tap err)
{
    const int factor = taps.downFactor;
    const int phase = taps.downPhase;
    const typename Family::Tap output =
        outputOf<Family>(taps, dly, factor - 1 - phase, inSamps + phase, phase + 1, err);
    auto *line = static_cast<typename Family::Sample *>(dly.dlyl);
    shiftLine(line, taps.tapsLen + taps.errDly, factor);
    for (int i = 0; i < factor; ++i)
        line[i] = inSamps[factor - 1 - i];
    return output;
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
    RVX_REJECT_IF(taps == nullptr || dly == nullptr, "Null buffer pointer", 0.0);
    RVX_REJECT_IF(taps->tapsReady == 0, "Taps state structure is not initialized", 0.0);
    RVX_REJECT_IF(dly->dlyReady == 0, "Delay line state structure is not initialized", 0.0);
    return oneStep<RealLms>(*taps, *dly, sample, err);
}

ZCplx rvxzLmsl(rvxLmsTapState *taps, rvxLmsDlyState *dly, ZCplx sample, ZCplx err)
{
    RVX_REJECT_IF(taps == nullptr || dly == nullptr, "Null buffer pointer", ZCplx{});
    RVX_REJECT_IF(taps->tapsReady == 0, "Taps state structure is not initialized", ZCplx{});
    RVX_REJECT_IF(dly->dlyReady == 0, "Delay line state structure is not initialized", ZCplx{});
    return oneStep<CplxLms>(*taps, *dly, sample, err);
}

ZCplx rvxdzLmsl(rvxLmsTapState *taps, rvxLmsDlyState *dly, double sample, ZCplx err)
{
    RVX_REJECT_IF(taps == nullptr || dly == nullptr, "Null buffer pointer", ZCplx{});
    RVX_REJECT_IF(taps->tapsReady == 0, "Taps state structure is not initialized", ZCplx{});
    RVX_REJECT_IF(dly->dlyReady == 0, "Delay line state structure is not initialized", ZCplx{});
    return oneStep<MixedLms>(*taps, *dly, sample, err);
}

double rvxdbLmsl(rvxLmsTapState *taps, rvxLmsDlyState *dly, const double *inSamps, double err)
{
    RVX_REJECT_IF(taps == nullptr || dly == nullptr, "Null buffer pointer", 0.0);
    RVX_REJECT_IF(inSamps == nullptr, "Null buffer pointer", 0.0);
    RVX_REJECT_IF(taps->tapsReady == 0, "Taps state structure is not initialized", 0.0);
    RVX_REJECT_IF(dly->dlyReady == 0, "Delay line state structure is not initialized", 0.0);
    return blockStep<RealLms>(*taps, *dly, inSamps, err);
}

ZCplx rvxzbLmsl(rvxLmsTapState *taps, rvxLmsDlyState *dly, const ZCplx *inSamps, ZCplx err)
{
    RVX_REJECT_IF(taps == nullptr || dly == nullptr, "Null buffer pointer", ZCplx{});
    RVX_REJECT_IF(inSamps == nullptr, "Null buffer pointer", ZCplx{});
    RVX_REJECT_IF(taps->tapsReady == 0, "Taps state structure is not initialized", ZCplx{});
    RVX_REJECT_IF(dly->dlyReady == 0, "Delay line state structure is not initialized", ZCplx{});
    return blockStep<CplxLms>(*taps, *dly, inSamps, err);
}

ZCplx rvxdzbLmsl(rvxLmsTapState *taps, rvxLmsDlyState *dly, const double *inSamps, ZCplx err)
{
    RVX_REJECT_IF(taps == nullptr || dly == nullptr, "Null buffer pointer", ZCplx{});
    RVX_REJECT_IF(inSamps == nullptr, "Null buffer pointer", ZCplx{});
    RVX_REJECT_IF(taps->tapsReady == 0, "Taps state structure is not initialized", ZCplx{});
    RVX_REJECT_IF(dly->dlyReady == 0, "Delay line state structure is not initialized", ZCplx{});
    return blockStep<MixedLms>(*taps, *dly, inSamps, err);
}
