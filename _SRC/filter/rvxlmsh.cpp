// rvxlmsh: adaptive filters by the method of least mean squares: their state
// records, and the checks before each step. The steps are rvxlmsl's.

#include "filter/rvxlmsh.h"

#include <climits>
#include <cstdint>
#include <cstdlib>
#include <type_traits>

#include "filter/rvxlmsl.h"
#include "frame/rvxcheck.h"
#include "frame/rvxkernel.h"

RVX_MODULE("rvxlmsh")

namespace {

template <typename Element>
Element *obtain(std::int64_t n)
{
    return static_cast<Element *>(std::malloc(static_cast<std::size_t>(n) * sizeof(Element)));
}

// The taps and the delay line, both tried for; false unless both were obtained.
// Nothing of what the record held before is looked at.
template <typename Tap, typename Sample>
bool obtainArrays(std::int64_t dlylLen, rvxLmsState *state)
{
    rvxLmsTapState &taps = state->tapState;
    rvxLmsDlyState &dly = state->dlyState;
    taps.taps = obtain<Tap>(taps.tapsLen);
    // A length that its field cannot hold is taken for missing memory.
    const bool fits = dlylLen <= INT_MAX;
    const std::int64_t room = rvxLmslRoom(&taps);
    Sample *line = fits ? obtain<Sample>(room) : nullptr;
    dly.dlyl = line;
    dly.dlylLen = fits ? static_cast<int>(dlylLen) : 0;
    taps.tapsReady = taps.taps != nullptr ? 1 : 0;
    dly.dlyReady = line != nullptr ? 1 : 0;
    if (line != nullptr)
        for (std::int64_t i = dlylLen > 0 ? dlylLen : 0; i < room; ++i)
            line[i] = Sample{};
    return taps.taps != nullptr && line != nullptr;
}

// The record of the given values, before its array is there.
rvxLmsTapState tapsOf(int lmsType, int tapsLen, float step, float leak, int errDly, int downFactor,
                      int downPhase)
{
    rvxLmsTapState taps = {};
    taps.tapsLen = tapsLen;
    taps.upFactor = 1;
    taps.downFactor = downFactor;
    taps.downPhase = downPhase;
    taps.isMultiRate = downFactor >= 2 ? 1 : 0;
    taps.leak = leak;
    taps.step = step;
    taps.errDly = errDly;
    taps.lmsType = lmsType;
    return taps;
}

void storeTaps(const double *values, rvxLmsState *state)
{
    rvxdLmsSetTaps(values, state);
}

void storeTaps(const ZCplx *values, rvxLmsState *state)
{
    rvxzLmsSetTaps(values, state);
}

void storeLine(const double *values, rvxLmsState *state)
{
    rvxdLmsSetDlyl(values, state);
}

void storeLine(const ZCplx *values, rvxLmsState *state)
{
    rvxzLmsSetDlyl(values, state);
}

// All initialisers. moreLine is what the delay line holds beyond tapsLen + errDly;
// a single-rate filter's phase and factor, 0 and 1, pass their checks.
template <typename Tap, typename Sample>
void initFilter(const char *func, const rvxLmsTapState &given, int moreLine, const Tap *tapVals,
                const Sample *dlyVals, rvxLmsState *statePtr)
{
    RVX_REJECT_AS(func, statePtr == nullptr, "Null buffer pointer");
    RVX_REJECT_AS(func, given.tapsLen < 1, "Invalid buffer length");
    RVX_REJECT_AS(func, given.downPhase < 0, "Invalid phase value");
    RVX_REJECT_AS(func, given.downFactor <= given.downPhase, "Invalid factor value");
    statePtr->tapState = given;
    statePtr->errVal = {0.0, 0.0};
    const std::int64_t dlylLen = std::int64_t{given.tapsLen} + given.errDly + moreLine;
    if (!obtainArrays<Tap, Sample>(dlylLen, statePtr)) {
        rvxLmsFree(statePtr);
        RVX_REPORT_AS(func, RVX_STATUS_NO_MEMORY, "Problem to allocate memory");
        return;
    }
    storeTaps(tapVals, statePtr);
    storeLine(dlyVals, statePtr);
}

// A step by the low level: input is one sample or the array of a block's. As a call of its
// own it would cost a step of few complex taps a tenth of its time.
template <auto lowLevel, typename Input, typename Tap>
RVX_INLINE Tap takeStep(const char *func, rvxLmsState *statePtr, Input input, Tap err)
{
    RVX_REJECT_AS(func, statePtr == nullptr, "Null buffer pointer", Tap{});
    if constexpr (std::is_pointer<Input>::value)
        RVX_REJECT_AS(func, input == nullptr, "Null buffer pointer", Tap{});
    RVX_REJECT_AS(func, statePtr->tapState.tapsReady == 0,
                  "Taps state structure is not initialized", Tap{});
    RVX_REJECT_AS(func, statePtr->dlyState.dlyReady == 0,
                  "Delay line state structure is not initialized", Tap{});
    return lowLevel(&statePtr->tapState, &statePtr->dlyState, input, err);
}

} // namespace

void rvxdLmsSetTaps(const double *values, rvxLmsState *statePtr)
{
    RVX_REJECT_IF(statePtr == nullptr, "Null buffer pointer");
    rvxdLmslSetTaps(values, &statePtr->tapState);
}

void rvxzLmsSetTaps(const ZCplx *values, rvxLmsState *statePtr)
{
    RVX_REJECT_IF(statePtr == nullptr, "Null buffer pointer");
    rvxzLmslSetTaps(values, &statePtr->tapState);
}

void rvxdLmsSetDlyl(const double *values, rvxLmsState *statePtr)
{
    RVX_REJECT_IF(statePtr == nullptr, "Null buffer pointer");
    rvxdLmslSetDlyl(values, &statePtr->dlyState);
}

void rvxzLmsSetDlyl(const ZCplx *values, rvxLmsState *statePtr)
{
    RVX_REJECT_IF(statePtr == nullptr, "Null buffer pointer");
    rvxzLmslSetDlyl(values, &statePtr->dlyState);
}

void rvxdLmsInit(int lmsType, const double *tapVals, int tapsLen, const double *dlyVals, float step,
                 float leak, int errDly, rvxLmsState *statePtr)
{
    initFilter(__func__, tapsOf(lmsType, tapsLen, step, leak, errDly, 1, 0), 0, tapVals, dlyVals,
               statePtr);
}

void rvxdLmsInitMr(int lmsType, const double *tapVals, int tapsLen, const double *dlyVals,
                   float step, float leak, int errDly, int downFactor, int downPhase,
                   rvxLmsState *statePtr)
{
    initFilter(__func__, tapsOf(lmsType, tapsLen, step, leak, errDly, downFactor, downPhase),
               downFactor, tapVals, dlyVals, statePtr);
}

void rvxzLmsInit(int lmsType, const ZCplx *tapVals, int tapsLen, const ZCplx *dlyVals, float step,
                 float leak, int errDly, rvxLmsState *statePtr)
{
    initFilter(__func__, tapsOf(lmsType, tapsLen, step, leak, errDly, 1, 0), 0, tapVals, dlyVals,
               statePtr);
}

void rvxzLmsInitMr(int lmsType, const ZCplx *tapVals, int tapsLen, const ZCplx *dlyVals, float step,
                   float leak, int errDly, int downFactor, int downPhase, rvxLmsState *statePtr)
{
    initFilter(__func__, tapsOf(lmsType, tapsLen, step, leak, errDly, downFactor, downPhase),
               downFactor, tapVals, dlyVals, statePtr);
}

void rvxdzLmsInit(int lmsType, const ZCplx *tapVals, int tapsLen, const double *dlyVals, float step,
                  float leak, int errDly, rvxLmsState *statePtr)
{
    initFilter(__func__, tapsOf(lmsType, tapsLen, step, leak, errDly, 1, 0), 0, tapVals, dlyVals,
               statePtr);
}

void rvxdzLmsInitMr(int lmsType, const ZCplx *tapVals, int tapsLen, const double *dlyVals,
                    float step, float leak, int errDly, int downFactor, int downPhase,
                    rvxLmsState *statePtr)
{
    initFilter(__func__, tapsOf(lmsType, tapsLen, step, leak, errDly, downFactor, downPhase),
               downFactor, tapVals, dlyVals, statePtr);
}

double rvxdLms(rvxLmsState *statePtr, double sample, double err)
{
    return takeStep<rvxdLmsl>(__func__, statePtr, sample, err);
}

ZCplx rvxzLms(rvxLmsState *statePtr, ZCplx sample, ZCplx err)
{
    return takeStep<rvxzLmsl>(__func__, statePtr, sample, err);
}

ZCplx rvxdzLms(rvxLmsState *statePtr, double sample, ZCplx err)
{
    return takeStep<rvxdzLmsl>(__func__, statePtr, sample, err);
}

double rvxdbLms(rvxLmsState *statePtr, const double *inSamps, double err)
{
    return takeStep<rvxdbLmsl>(__func__, statePtr, inSamps, err);
}

ZCplx rvxzbLms(rvxLmsState *statePtr, const ZCplx *inSamps, ZCplx err)
{
    return takeStep<rvxzbLmsl>(__func__, statePtr, inSamps, err);
}

ZCplx rvxdzbLms(rvxLmsState *statePtr, const double *inSamps, ZCplx err)
{
    return takeStep<rvxdzbLmsl>(__func__, statePtr, inSamps, err);
}

// Deliberately without a report, and the ready flags stay as they are.
void rvxLmsFree(rvxLmsState *statePtr)
{
    if (statePtr == nullptr)
        return;
    std::free(statePtr->tapState.taps);
    std::free(statePtr->dlyState.dlyl);
    statePtr->tapState.taps = nullptr;
    statePtr->dlyState.dlyl = nullptr;
}
