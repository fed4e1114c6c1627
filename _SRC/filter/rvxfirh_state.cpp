// rvxfirh, state: the record behind every FIR filter.
//
// Taps are stored reversed, so that a sum walks taps and samples the same way
// through contiguous memory; a multi-rate filter's are split by phase before
// (Crochiere and Rabiner, Multirate Digital Signal Processing, 1983, section 3.3).
// The delay line slides through a buffer and pays one copy for many samples.

#include "filter/rvxfirh_state.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "filter/rvxfirh_engine.h"
#include "frame/rvxbuffer.h"
#include "frame/rvxcheck.h"

RVX_MODULE("rvxfirh")

namespace {

constexpr int RVX_MIN_SLIDE = 63;

// Null also where count elements are more than an allocation can hold.
template <typename Element>
void *allocElements(std::int64_t count)
{
    if (count > static_cast<std::int64_t>(UINT32_MAX / sizeof(Element)))
        return nullptr;
    return rvxAllocBytes(static_cast<std::uint32_t>(count) * sizeof(Element));
}

// Positions over which the window slides. Those of a multi-rate filter are a
// whole number of decimation steps.
std::int64_t slideLen(const rvxFirState &state)
{
    const std::int64_t longest = std::max(state.dlylLen, RVX_MIN_SLIDE);
    if (state.isMultiRate == 0)
        return longest + 1;
    return (state.downFactor + longest - 1) / state.downFactor * state.downFactor;
}

// Taps of subfilter p, and those of the subfilters before it.
int subfilterLen(const rvxFirState &state, int p)
{
    return state.tapsLen / state.upFactor + (p < state.tapsLen % state.upFactor ? 1 : 0);
}

int subfilterStart(const rvxFirState &state, int p)
{
    return state.tapsLen / state.upFactor * p + std::min(p, state.tapsLen % state.upFactor);
}

template <typename Tap>
void storeTaps(const Tap *tapVals, const rvxFirState &state)
{
    Tap *taps = static_cast<Tap *>(state.taps);
    if (tapVals == nullptr) {
        std::fill_n(taps, state.tapsLen, Tap{});
        return;
    }
    // Beyond tapsLen subfilters are empty.
    for (int p = 0; p < std::min(state.upFactor, state.tapsLen); ++p) {
        Tap *newest = taps + subfilterStart(state, p) + subfilterLen(state, p) - 1;
        for (int k = 0; k < subfilterLen(state, p); ++k)
            newest[-k] = tapVals[p + k * state.upFactor];
    }
}

template <typename Sample>
void storeDelayLine(const Sample *dlyVals, const rvxFirState &state)
{
    Sample *window = static_cast<Sample *>(state.dlylCur);
    if (dlyVals == nullptr)
        std::fill_n(window, state.dlylLen, Sample{});
    else
        std::copy_n(dlyVals, state.dlylLen, window);
}

} // namespace

void rvxFirStateFree(rvxFirState *statePtr)
{
    rvxFreeAligned(statePtr->taps);
    rvxFreeAligned(statePtr->dlylBase);
    rvxFreeAligned(statePtr->phaseTable);
    statePtr->phaseTable = nullptr;
    statePtr->self = nullptr;
}

template <typename Tap, typename Sample>
int rvxFirStateInit(const Tap *tapVals, int tapsLen, const Sample *dlyVals, int upFactor,
                    int upPhase, int downFactor, int downPhase, rvxFirState *statePtr)
{
    if (statePtr->self == statePtr)
        rvxFirStateFree(statePtr);

    rvxFirState &state = *statePtr;
    state.upFactor = upFactor;
    state.upPhase = upPhase;
    state.downFactor = downFactor;
    state.downPhase = downPhase;
    state.isMultiRate = upFactor > 1 || downFactor > 1 ? 1 : 0;
    state.self = statePtr;
    state.phaseTable = nullptr;
    state.tapsLen = tapsLen;
    const bool allReal = std::is_same<Tap, double>::value && std::is_same<Sample, double>::value;
    state.tapsBlockLen = tapsLen / (allReal ? 4 : 2) * (allReal ? 4 : 2);

    const std::int64_t raised = std::int64_t{tapsLen} + upFactor - 1;
    state.dlylLen = state.isMultiRate == 0 ? tapsLen - 1 : static_cast<int>(raised / upFactor);
    const std::int64_t slide = slideLen(state);
    const bool fits = state.dlylLen + slide <= INT_MAX;
    state.bufLen = fits ? static_cast<int>(slide) : 0;

    state.taps = allocElements<Tap>(tapsLen);
    constexpr int ahead = RVX_FIR_AHEAD * sizeof(RvxFirOut<Tap, Sample>) / sizeof(Sample);
    state.dlylBase = fits ? allocElements<Sample>(state.dlylLen + slide + ahead) : nullptr;
    if (state.isMultiRate != 0)
        state.phaseTable = static_cast<rvxFirPhaseRow *>(allocElements<rvxFirPhaseRow>(upFactor));
    if (state.taps == nullptr || state.dlylBase == nullptr ||
        (state.isMultiRate != 0 && state.phaseTable == nullptr)) {
        rvxFirStateFree(statePtr);
        return 0;
    }
    state.dlylEnd = static_cast<Sample *>(state.dlylBase) + state.bufLen;
    state.dlylCur = state.dlylBase;

    rvxFirBuildPhaseTable(statePtr);
    storeTaps(tapVals, state);
    storeDelayLine(dlyVals, state);
    return 1;
}

template int rvxFirStateInit(const double *, int, const double *, int, int, int, int,
                             rvxFirState *);
template int rvxFirStateInit(const ZCplx *, int, const ZCplx *, int, int, int, int, rvxFirState *);
template int rvxFirStateInit(const ZCplx *, int, const double *, int, int, int, int, rvxFirState *);
template int rvxFirStateInit(const double *, int, const ZCplx *, int, int, int, int, rvxFirState *);

// Output i of a step stands at raised time t = i * downFactor + downPhase, and the
// samples of that step at upPhase, upPhase + upFactor and so on.
void rvxFirBuildPhaseTable(rvxFirState *statePtr)
{
    const rvxFirState &state = *statePtr;
    if (state.isMultiRate == 0)
        return;
    const std::int64_t up = state.upFactor;
    const std::int64_t rest = state.tapsLen % up;
    for (std::int64_t i = 0; i < up; ++i) {
        const std::int64_t sinceFirst = i * state.downFactor + state.downPhase - state.upPhase;
        const int p = static_cast<int>((sinceFirst % up + up) % up);
        const int arrived = sinceFirst < 0 ? 0 : static_cast<int>(sinceFirst / up + 1);
        // The window begins one sample later for a subfilter that is one tap shorter.
        const int skipped = rest != 0 && p >= rest ? 1 : 0;
        state.phaseTable[i] = {p, subfilterLen(state, p), arrived + skipped,
                               subfilterStart(state, p)};
    }
}

void rvxdFirSetTaps(const double *tapVals, rvxFirState *statePtr)
{
    RVX_REJECT_IF(statePtr == nullptr, "Null state pointer");
    RVX_REJECT_IF(statePtr->self != statePtr, "Must have been initialized");
    storeTaps(tapVals, *statePtr);
}

void rvxzFirSetTaps(const ZCplx *tapVals, rvxFirState *statePtr)
{
    RVX_REJECT_IF(statePtr == nullptr, "Null state pointer");
    RVX_REJECT_IF(statePtr->self != statePtr, "Must have been initialized");
    storeTaps(tapVals, *statePtr);
}

void rvxdFirSetDlyl(const double *dlyVals, rvxFirState *statePtr)
{
    RVX_REJECT_IF(statePtr == nullptr, "Null state pointer");
    RVX_REJECT_IF(statePtr->self != statePtr, "Must have been initialized");
    storeDelayLine(dlyVals, *statePtr);
}

void rvxzFirSetDlyl(const ZCplx *dlyVals, rvxFirState *statePtr)
{
    RVX_REJECT_IF(statePtr == nullptr, "Null state pointer");
    RVX_REJECT_IF(statePtr->self != statePtr, "Must have been initialized");
    storeDelayLine(dlyVals, *statePtr);
}
