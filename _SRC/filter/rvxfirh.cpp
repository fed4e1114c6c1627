// rvxfirh: FIR filters, single-rate and multi-rate, real, complex and mixed.
//
// A block call filters the first samples from the delay buffer, where they follow
// the past ones, and the others in place. Both rates are one computation: a
// single-rate filter is a multi-rate one with one row and steps of one sample.
//
// The newest sample comes last in a sum. So a one-sample call can begin the sums of
// the calls behind it, side by side, with the samples that are known by then: the
// chain of additions that each call waits for is short, and its order the same.

#include "rvx.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "filter/rvxfirh_engine.h"
#include "filter/rvxfirh_state.h"
#include "frame/rvxcheck.h"

RVX_MODULE("rvxfirh")

namespace {

template <typename Tap, typename Sample>
void initState(const char *func, const Tap *tapVals, int tapsLen, const Sample *dlyVals,
               int upFactor, int upPhase, int downFactor, int downPhase, rvxFirState *statePtr)
{
    if (rvxFirStateInit(tapVals, tapsLen, dlyVals, upFactor, upPhase, downFactor, downPhase,
                        statePtr) == 0)
        RVX_REPORT_AS(func, RVX_STATUS_NO_MEMORY, "Allocation failure");
}

template <typename Tap, typename Sample>
void initSingle(const char *func, const Tap *tapVals, int tapsLen, const Sample *dlyVals,
                rvxFirState *statePtr)
{
    RVX_REJECT_AS(func, statePtr == nullptr, "Null state pointer");
    RVX_REJECT_AS(func, tapsLen < 1, "Invalid value");
    initState(func, tapVals, tapsLen, dlyVals, 1, 0, 1, 0, statePtr);
}

template <typename Tap, typename Sample>
void initMulti(const char *func, const Tap *tapVals, int tapsLen, const Sample *dlyVals,
               int upFactor, int upPhase, int downFactor, int downPhase, rvxFirState *statePtr)
{
    RVX_REJECT_AS(func, statePtr == nullptr, "Null state pointer");
    RVX_REJECT_AS(func, upFactor < 1, "Invalid value");
    RVX_REJECT_AS(func, downFactor < 1, "Invalid value");
    RVX_REJECT_AS(func, upPhase < 0 || upPhase >= upFactor, "Invalid value");
    RVX_REJECT_AS(func, downPhase < 0 || downPhase >= downFactor, "Invalid value");
    RVX_REJECT_AS(func, tapsLen < 1, "Invalid value");
    initState(func, tapVals, tapsLen, dlyVals, upFactor, upPhase, downFactor, downPhase, statePtr);
}

// Lets the window move on by one sample.
template <typename Sample>
void slideWindow(rvxFirState &state)
{
    Sample *next = static_cast<Sample *>(state.dlylCur) + 1;
    if (next == state.dlylEnd) {
        next = static_cast<Sample *>(state.dlylBase);
        std::copy_n(static_cast<Sample *>(state.dlylEnd), state.dlylLen, next);
    }
    state.dlylCur = next;
}

// The sum of a long single-rate filter whose window begins at `window`, the newest
// sample being there. Every RVX_FIR_AHEAD-th call from the base of the delay buffer
// on begins the sums up to the next. Blocks take the window back to the base.
template <typename Tap, typename Sample>
RvxFirOut<Tap, Sample> continueSum(const rvxFirState &state, const Sample *window)
{
    constexpr int rest = RVX_FIR_AHEAD - 1;
    const int known = state.tapsLen - rest;
    const Tap *taps = static_cast<const Tap *>(state.taps);
    void *behind = static_cast<Sample *>(state.dlylEnd) + state.dlylLen;
    auto *sums = static_cast<RvxFirOut<Tap, Sample> *>(behind);
    const auto turn = (window - static_cast<Sample *>(state.dlylBase)) % RVX_FIR_AHEAD;
    if (turn == 0) {
        const rvxFirPhaseRow row = {0, known, 0, 0};
        rvxFirRun(RvxFirShape{&row, 1, 1, known, known - 1}, taps, window, sums, RVX_FIR_AHEAD);
    }
    return rvxFirSum(sums[turn], taps + known, window + known, rest);
}

// One sample through a single-rate filter. A multi-rate state gives a meaningless
// sum, which ends at the newest sample all the same.
template <typename Tap, typename Sample>
RvxFirOut<Tap, Sample> filterSample(const char *func, rvxFirState *statePtr, Sample sample)
{
    using Out = RvxFirOut<Tap, Sample>;
    RVX_REJECT_AS(func, statePtr == nullptr, "Null state pointer", Out{});
    RVX_REJECT_AS(func, statePtr->self != statePtr, "Must have been initialized", Out{});
    Sample *window = static_cast<Sample *>(statePtr->dlylCur);
    window[statePtr->dlylLen] = sample;
    const bool worksAhead = statePtr->isMultiRate == 0 && statePtr->tapsLen >= 2 * RVX_FIR_AHEAD;
    const Out sum = worksAhead ? continueSum<Tap>(*statePtr, window)
                               : rvxFirSum(Out{}, static_cast<const Tap *>(statePtr->taps), window,
                                           std::min(statePtr->tapsLen, statePtr->dlylLen + 1));
    slideWindow<Sample>(*statePtr);
    return sum;
}

// Filters numIters steps and brings the delay line up to date.
template <typename Tap, typename Sample>
void filterSteps(rvxFirState &state, const Sample *inSamps, RvxFirOut<Tap, Sample> *outSamps,
                 int numIters)
{
    const Tap *taps = static_cast<const Tap *>(state.taps);
    const std::ptrdiff_t down = state.downFactor, dlylLen = state.dlylLen;
    const rvxFirPhaseRow oneRow = {0, state.tapsLen, 0, 0};
    const RvxFirShape shape = {state.isMultiRate != 0 ? state.phaseTable : &oneRow, state.upFactor,
                               state.downFactor, state.tapsLen, state.dlylLen};
    Sample *base = static_cast<Sample *>(state.dlylBase);
    if (state.isMultiRate == 0 && state.dlylCur != base)
        std::copy_n(static_cast<Sample *>(state.dlylCur), dlylLen, base);
    state.dlylCur = base;

    // Steps whose windows need past samples, and the steps behind them.
    const std::ptrdiff_t early = std::min<std::ptrdiff_t>(numIters, (dlylLen + down - 1) / down);
    const std::ptrdiff_t n = early * down;
    std::copy_n(inSamps, n, base + dlylLen);
    rvxFirRun(shape, taps, static_cast<const Sample *>(base), outSamps, early);
    if (n >= dlylLen) {
        rvxFirRun(shape, taps, inSamps + n - dlylLen, outSamps + early * state.upFactor,
                  numIters - early);
        std::copy_n(inSamps + numIters * down - dlylLen, dlylLen, base);
    } else {
        std::copy_n(base + n, dlylLen, base);
    }
}

template <typename Tap, typename Sample>
void filterBlock(const char *func, rvxFirState *statePtr, const Sample *inSamps,
                 RvxFirOut<Tap, Sample> *outSamps, int numIters)
{
    RVX_REJECT_AS(func, statePtr == nullptr, "Null state pointer");
    RVX_REJECT_AS(func, statePtr->self != statePtr, "Must have been initialized");
    RVX_REJECT_AS(func, inSamps == nullptr, "Null buffer pointer");
    RVX_REJECT_AS(func, outSamps == nullptr, "Null buffer pointer");
    RVX_REJECT_AS(func, numIters < 1, "Invalid value");
    filterSteps<Tap>(*statePtr, inSamps, outSamps, numIters);
}

} // namespace

void rvxdFirInit(const double *tapVals, int tapsLen, const double *dlyVals, rvxFirState *statePtr)
{
    initSingle(__func__, tapVals, tapsLen, dlyVals, statePtr);
}

void rvxzFirInit(const ZCplx *tapVals, int tapsLen, const ZCplx *dlyVals, rvxFirState *statePtr)
{
    initSingle(__func__, tapVals, tapsLen, dlyVals, statePtr);
}

void rvxdzFirInit(const ZCplx *tapVals, int tapsLen, const double *dlyVals, rvxFirState *statePtr)
{
    initSingle(__func__, tapVals, tapsLen, dlyVals, statePtr);
}

void rvxzdFirInit(const double *tapVals, int tapsLen, const ZCplx *dlyVals, rvxFirState *statePtr)
{
    initSingle(__func__, tapVals, tapsLen, dlyVals, statePtr);
}

void rvxdFirInitMr(const double *tapVals, int tapsLen, const double *dlyVals, int upFactor,
                   int upPhase, int downFactor, int downPhase, rvxFirState *statePtr)
{
    initMulti(__func__, tapVals, tapsLen, dlyVals, upFactor, upPhase, downFactor, downPhase,
              statePtr);
}

void rvxzFirInitMr(const ZCplx *tapVals, int tapsLen, const ZCplx *dlyVals, int upFactor,
                   int upPhase, int downFactor, int downPhase, rvxFirState *statePtr)
{
    initMulti(__func__, tapVals, tapsLen, dlyVals, upFactor, upPhase, downFactor, downPhase,
              statePtr);
}

void rvxdzFirInitMr(const ZCplx *tapVals, int tapsLen, const double *dlyVals, int upFactor,
                    int upPhase, int downFactor, int downPhase, rvxFirState *statePtr)
{
    initMulti(__func__, tapVals, tapsLen, dlyVals, upFactor, upPhase, downFactor, downPhase,
              statePtr);
}

void rvxzdFirInitMr(const double *tapVals, int tapsLen, const ZCplx *dlyVals, int upFactor,
                    int upPhase, int downFactor, int downPhase, rvxFirState *statePtr)
{
    initMulti(__func__, tapVals, tapsLen, dlyVals, upFactor, upPhase, downFactor, downPhase,
              statePtr);
}

double rvxdFir(rvxFirState *statePtr, double sample)
{
    return filterSample<double>(__func__, statePtr, sample);
}

ZCplx rvxzFir(rvxFirState *statePtr, ZCplx sample)
{
    return filterSample<ZCplx>(__func__, statePtr, sample);
}

ZCplx rvxdzFir(rvxFirState *statePtr, double sample)
{
    return filterSample<ZCplx>(__func__, statePtr, sample);
}

ZCplx rvxzdFir(rvxFirState *statePtr, ZCplx sample)
{
    return filterSample<double>(__func__, statePtr, sample);
}

void rvxdbFir(rvxFirState *statePtr, const double *inSamps, double *outSamps, int numIters)
{
    filterBlock<double>(__func__, statePtr, inSamps, outSamps, numIters);
}

void rvxzbFir(rvxFirState *statePtr, const ZCplx *inSamps, ZCplx *outSamps, int numIters)
{
    filterBlock<ZCplx>(__func__, statePtr, inSamps, outSamps, numIters);
}

void rvxdzbFir(rvxFirState *statePtr, const double *inSamps, ZCplx *outSamps, int numIters)
{
    filterBlock<ZCplx>(__func__, statePtr, inSamps, outSamps, numIters);
}

void rvxzdbFir(rvxFirState *statePtr, const ZCplx *inSamps, ZCplx *outSamps, int numIters)
{
    filterBlock<double>(__func__, statePtr, inSamps, outSamps, numIters);
}

// The function's name in its reports is spelled so on purpose.
void rvxFirFree(rvxFirState *statePtr)
{
    RVX_REJECT_AS("rvxFirrvxFree", statePtr == nullptr, "Null state pointer");
    RVX_REJECT_AS("rvxFirrvxFree", statePtr->self != statePtr, "Must have been initialized");
    rvxFirStateFree(statePtr);
}
