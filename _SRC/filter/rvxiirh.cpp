// rvxiirh: recursive filters, the exported functions.
//
// A record owns a copy of its taps, which the low level normalises, and its delay
// line. One template serves all initialisers: they differ in the types of taps and
// delay elements and in what the length counts.

#include <cstdint>

#include "filter/rvxiirl.h"
#include "frame/rvxbuffer.h"
#include "frame/rvxcheck.h"
#include "vector/rvxarith.h"

RVX_MODULE("rvxiirh")

namespace {

// Lengths come wider than they fit: those beyond the range of int are no memory.
bool isLength(std::int64_t n)
{
    return n <= INT32_MAX;
}

void allocate(double **buffer, std::int64_t n)
{
    *buffer = isLength(n) ? rvxAllocDoubles(static_cast<std::uint32_t>(n)) : nullptr;
}

void allocate(ZCplx **buffer, std::int64_t n)
{
    *buffer = isLength(n) ? rvxAllocZCplx(static_cast<std::uint32_t>(n)) : nullptr;
}

void copy(const double *src, double *dst, std::int64_t n)
{
    rvxdbCopy(src, dst, static_cast<int>(n));
}

void copy(const ZCplx *src, ZCplx *dst, std::int64_t n)
{
    rvxzbCopy(src, dst, static_cast<int>(n));
}

// What sets the initialisers apart.
template <typename Tap, typename Element>
struct Form {
    bool quads; // the length counts second-order sections
    void (*normalise)(int iirType, Tap *taps, int len, rvxIirTapState *tapStPtr);
    void (*clear)(const rvxIirTapState *tapStPtr, Element *dlyl, rvxIirDlyState *dlyStPtr);
};

template <typename Tap, typename Element>
void initFilter(const char *func, Form<Tap, Element> form, int iirType, const Tap *tapVals, int len,
                rvxIirState *statePtr)
{
    RVX_REJECT_AS(func, statePtr == nullptr, "statePtr==0");
    RVX_REJECT_AS(func, tapVals == nullptr, "tapVals==0");
    RVX_REJECT_AS(func, !form.quads && len < 0, "order < 0");
    RVX_REJECT_AS(func, form.quads && len <= 0, "numQuads <= 0");
    RVX_REJECT_AS(func, iirType != 0 && iirType != 1, "iirType is out of range");
    RVX_REJECT_AS(func, statePtr->dlySt.initMark == RVX_IIR_INIT_MARK,
                  "IIR filter state structure is already initialized! "
                  "Use rvxIirFree to free it");

    const std::int64_t wide = len;
    const std::int64_t tapsLen = form.quads ? 6 * wide : 2 * wide + 2;
    Tap *taps;
    Element *dlyl;
    allocate(&taps, tapsLen);
    allocate(&dlyl, form.quads ? 2 * wide : wide);
    if (taps == nullptr || dlyl == nullptr) {
        RVX_REPORT_AS(func, RVX_STATUS_NO_MEMORY, "insufficiency of memory for IIR filter state");
        rvxFreeAligned(taps);
        rvxFreeAligned(dlyl);
        return;
    }
    statePtr->dlySt.initMark = RVX_IIR_INIT_MARK;
    copy(tapVals, taps, tapsLen);
    form.normalise(iirType, taps, len, &statePtr->tapSt);
    // Any status stops here, one from before this call too.
    if (rvxGetErrStatus() != RVX_STATUS_OK) {
        RVX_REPORT_AS(func, RVX_STATUS_BACKTRACE, nullptr);
        rvxFreeAligned(taps);
        rvxFreeAligned(dlyl);
        statePtr->dlySt.initMark = 0;
        return;
    }
    form.clear(&statePtr->tapSt, dlyl, &statePtr->dlySt);
}

bool isDead(const rvxIirState *statePtr)
{
    return statePtr->dlySt.initMark != RVX_IIR_INIT_MARK;
}

template <auto lowLevel, typename Sample>
auto filterSample(const char *func, rvxIirState *statePtr, Sample sample)
{
    using Result = decltype(lowLevel(&statePtr->tapSt, &statePtr->dlySt, sample));
    RVX_REJECT_AS(func, statePtr == nullptr, "statePtr==0", Result());
    RVX_REJECT_AS(func, isDead(statePtr), "IIR filter wasn't initialized", Result());
    return lowLevel(&statePtr->tapSt, &statePtr->dlySt, sample);
}

// Reports once more what the low level reported, unlike the one-sample functions.
template <auto lowLevel, typename Sample, typename Result>
void filterBlock(const char *func, rvxIirState *statePtr, const Sample *inSamps, Result *outSamps,
                 int numIters)
{
    RVX_REJECT_AS(func, statePtr == nullptr, "statePtr==0");
    RVX_REJECT_AS(func, isDead(statePtr), "IIR filter wasn't initialized");
    lowLevel(&statePtr->tapSt, &statePtr->dlySt, inSamps, outSamps, numIters);
    if (rvxGetErrStatus() != RVX_STATUS_OK)
        RVX_REPORT_AS(func, RVX_STATUS_BACKTRACE, nullptr);
}

} // namespace

void rvxdIirInit(int iirType, const double *tapVals, int order, rvxIirState *statePtr)
{
    const Form<double, double> form = {false, rvxdIirlInit, rvxdIirlInitDlyl};
    initFilter(__func__, form, iirType, tapVals, order, statePtr);
}

void rvxzIirInit(int iirType, const ZCplx *tapVals, int order, rvxIirState *statePtr)
{
    const Form<ZCplx, ZCplx> form = {false, rvxzIirlInit, rvxzIirlInitDlyl};
    initFilter(__func__, form, iirType, tapVals, order, statePtr);
}

void rvxdzIirInit(int iirType, const ZCplx *tapVals, int order, rvxIirState *statePtr)
{
    const Form<ZCplx, ZCplx> form = {false, rvxzIirlInit, rvxzIirlInitDlyl};
    initFilter(__func__, form, iirType, tapVals, order, statePtr);
}

void rvxzdIirInit(int iirType, const double *tapVals, int order, rvxIirState *statePtr)
{
    const Form<double, ZCplx> form = {false, rvxdIirlInit, rvxzIirlInitDlyl};
    initFilter(__func__, form, iirType, tapVals, order, statePtr);
}

void rvxdIirInitBq(int iirType, const double *tapVals, int numQuads, rvxIirState *statePtr)
{
    const Form<double, double> form = {true, rvxdIirlInitBq, rvxdIirlInitDlyl};
    initFilter(__func__, form, iirType, tapVals, numQuads, statePtr);
}

void rvxzIirInitBq(int iirType, const ZCplx *tapVals, int numQuads, rvxIirState *statePtr)
{
    const Form<ZCplx, ZCplx> form = {true, rvxzIirlInitBq, rvxzIirlInitDlyl};
    initFilter(__func__, form, iirType, tapVals, numQuads, statePtr);
}

void rvxdzIirInitBq(int iirType, const ZCplx *tapVals, int numQuads, rvxIirState *statePtr)
{
    const Form<ZCplx, ZCplx> form = {true, rvxzIirlInitBq, rvxzIirlInitDlyl};
    initFilter(__func__, form, iirType, tapVals, numQuads, statePtr);
}

void rvxzdIirInitBq(int iirType, const double *tapVals, int numQuads, rvxIirState *statePtr)
{
    const Form<double, ZCplx> form = {true, rvxdIirlInitBq, rvxzIirlInitDlyl};
    initFilter(__func__, form, iirType, tapVals, numQuads, statePtr);
}

double rvxdIir(rvxIirState *statePtr, double sample)
{
    return filterSample<rvxdIirl>(__func__, statePtr, sample);
}

ZCplx rvxzIir(rvxIirState *statePtr, ZCplx sample)
{
    return filterSample<rvxzIirl>(__func__, statePtr, sample);
}

ZCplx rvxdzIir(rvxIirState *statePtr, double sample)
{
    return filterSample<rvxdzIirl>(__func__, statePtr, sample);
}

ZCplx rvxzdIir(rvxIirState *statePtr, ZCplx sample)
{
    return filterSample<rvxzdIirl>(__func__, statePtr, sample);
}

void rvxdbIir(rvxIirState *statePtr, const double *inSamps, double *outSamps, int numIters)
{
    filterBlock<rvxdbIirl>(__func__, statePtr, inSamps, outSamps, numIters);
}

void rvxzbIir(rvxIirState *statePtr, const ZCplx *inSamps, ZCplx *outSamps, int numIters)
{
    filterBlock<rvxzbIirl>(__func__, statePtr, inSamps, outSamps, numIters);
}

void rvxdzbIir(rvxIirState *statePtr, const double *inSamps, ZCplx *outSamps, int numIters)
{
    filterBlock<rvxdzbIirl>(__func__, statePtr, inSamps, outSamps, numIters);
}

void rvxzdbIir(rvxIirState *statePtr, const ZCplx *inSamps, ZCplx *outSamps, int numIters)
{
    filterBlock<rvxzdbIirl>(__func__, statePtr, inSamps, outSamps, numIters);
}

void rvxIirFree(rvxIirState *statePtr)
{
    RVX_REJECT_IF(statePtr == nullptr, "statePtr==0");
    RVX_REJECT_IF(isDead(statePtr), "IIR filter wasn't initialized");
    rvxFreeAligned(statePtr->tapSt.taps);
    rvxFreeAligned(statePtr->dlySt.dlyl);
    statePtr->dlySt.initMark = 0;
}
