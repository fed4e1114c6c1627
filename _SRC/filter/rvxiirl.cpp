// rvxiirl: recursive filters, direct form of any order and cascades of
// second-order sections.
//
// Both are fed-back chains whose order of operations is fixed; blocks gain from
// what may run beside the chain. Direct form II transposed, and direct form II in
// each section: Oppenheim and Schafer, Discrete-Time Signal Processing, 1989.

#include "filter/rvxiirl.h"

#include "filter/rvxiirl_engines.h"
#include "filter/rvxiirl_steps.h"
#include "frame/rvxcheck.h"
#include "frame/rvxthread.h"
#include "vector/rvxarith.h"

RVX_MODULE("rvxiirl")

namespace {

constexpr int RVX_IIR_DIRECT = 0;
constexpr int RVX_IIR_CASCADE = 2;
constexpr int RVX_IIR_MODES = 4; // those not named above run as direct form

// ---------------------------------------------------------------------------
// Checks. These functions report every failure of a group and look at the status
// behind it, which may also be negative from some earlier call.

void noteIf(bool failed, const char *func, const char *message)
{
    if (failed)
        RVX_REPORT_AS(func, RVX_STATUS_BAD_ARGUMENT, message);
}

void notePointers(const char *func, const rvxIirTapState *tapStPtr, const rvxIirDlyState *dlyStPtr)
{
    noteIf(tapStPtr == nullptr, func, "tapStPtr==0");
    noteIf(dlyStPtr == nullptr, func, "dlyStPtr==0");
}

void noteTaps(const char *func, const rvxIirTapState &tapSt)
{
    const char *message = "structure *tapStPtr wasn't initialized";
    noteIf(tapSt.taps == nullptr, func, message);
    noteIf(tapSt.mode < 0 || tapSt.mode >= RVX_IIR_MODES, func, message);
}

void noteDelayLine(const char *func, const rvxIirTapState &tapSt, const rvxIirDlyState &dlySt)
{
    noteIf(tapSt.order > 0 && dlySt.dlyl == nullptr, func,
           "structure *dlyStPtr wasn't initialized");
}

// ---------------------------------------------------------------------------
// Normalisation.

// A NaN counts as zero.
bool isZero(double x)
{
    return x == 0.0 || x != x;
}

bool isZero(ZCplx z)
{
    return isZero(z.re) && isZero(z.im);
}

double reciprocal(double x)
{
    return 1.0 / x;
}

ZCplx reciprocal(ZCplx z)
{
    return rvxzDiv({1.0, 0.0}, z);
}

double gainTimes(double g, double b0, double fa)
{
    return g * (b0 * fa);
}

// Grouped otherwise than the real gain, deliberately.
ZCplx gainTimes(ZCplx g, ZCplx b0, ZCplx fa)
{
    return rvxzMpy(rvxzMpy(g, b0), fa);
}

void setOne(double *g)
{
    *g = 1.0;
}

void setOne(ZCplx *g)
{
    *g = {1.0, 0.0};
}

template <typename Tap>
void initDirect(const char *func, int iirType, Tap *taps, int order, rvxIirTapState *tapStPtr)
{
    RVX_REJECT_AS(func, tapStPtr == nullptr, "tapStPtr==0");
    RVX_REJECT_AS(func, taps == nullptr, "taps==0");
    RVX_REJECT_AS(func, order < 0, "order < 0");
    RVX_REJECT_AS(func, iirType < 0 || iirType > 1, "iirType is out of range");
    *tapStPtr = {order, taps, iirType, RVX_IIR_DIRECT};
    Tap *b = taps;
    Tap *a = taps + order + 1;
    RVX_REJECT_AS(func, isZero(a[0]), "taps[order+1] equals zero");
    const Tap f = reciprocal(a[0]);
    b[0] = b[0] * f;
    for (int i = 1; i <= order; ++i) {
        b[i] = b[i] * f;
        a[i - 1] = a[i] * f;
    }
}

// b0, b1, b2, a0, a1, a2 of each section become its a1, a2, b1, b2, with the gains
// together in front. No place is written before it is read: section q is read from
// 6 q on and written up to 4 q + 4.
template <typename Tap>
void initCascade(const char *func, int iirType, Tap *taps, int numQuads, rvxIirTapState *tapStPtr)
{
    RVX_REJECT_AS(func, tapStPtr == nullptr, "tapStPtr==0");
    RVX_REJECT_AS(func, taps == nullptr, "taps==0");
    RVX_REJECT_AS(func, numQuads <= 0, "numQuads <= 0");
    RVX_REJECT_AS(func, iirType < 0 || iirType > 1, "iirType is out of range");
    *tapStPtr = {2 * numQuads, taps, iirType, RVX_IIR_CASCADE};
    Tap g;
    setOne(&g);
    for (int q = 0; q < numQuads; ++q) {
        const Tap *given = taps + 6 * q;
        const Tap b0 = given[0], b1 = given[1], b2 = given[2];
        const Tap a0 = given[3], a1 = given[4], a2 = given[5];
        RVX_REJECT_AS(func, isZero(b0) || isZero(a0), "taps[?] equals zero");
        const Tap fa = reciprocal(a0);
        const Tap fb = reciprocal(b0);
        Tap *section = taps + 1 + 4 * q;
        section[0] = a1 * fa;
        section[1] = a2 * fa;
        section[2] = b1 * fb;
        section[3] = b2 * fb;
        g = gainTimes(g, b0, fa);
    }
    taps[0] = g;
}

// ---------------------------------------------------------------------------
// Delay line and samples.

void clear(double *dlyl, int n)
{
    rvxdbZero(dlyl, n);
}

void clear(ZCplx *dlyl, int n)
{
    rvxzbZero(dlyl, n);
}

template <typename Element>
void initDelayLine(const char *func, const rvxIirTapState *tapStPtr, Element *dlyl,
                   rvxIirDlyState *dlyStPtr)
{
    const rvxThreadContext *thread = rvxGetThreadContext();
    notePointers(func, tapStPtr, dlyStPtr);
    if (thread->errStatus < 0)
        return;
    noteTaps(func, *tapStPtr);
    noteIf(tapStPtr->order > 0 && dlyl == nullptr, func, "dlyl==0");
    if (thread->errStatus < 0)
        return;
    dlyStPtr->dlyl = dlyl;
    // The fill refuses a length of 0.
    if (tapStPtr->order > 0)
        clear(dlyl, tapStPtr->order);
}

template <typename Tap, typename Sample>
IirElement<Tap, Sample> filterSample(const char *func, const rvxIirTapState *tapStPtr,
                                     rvxIirDlyState *dlyStPtr, Sample x)
{
    using Element = IirElement<Tap, Sample>;
    const rvxThreadContext *thread = rvxGetThreadContext();
    notePointers(func, tapStPtr, dlyStPtr);
    if (thread->errStatus < 0)
        return Element();
    noteTaps(func, *tapStPtr);
    noteDelayLine(func, *tapStPtr, *dlyStPtr);
    if (thread->errStatus < 0)
        return Element();
    const Tap *taps = static_cast<const Tap *>(tapStPtr->taps);
    Element *dlyl = static_cast<Element *>(dlyStPtr->dlyl);
    if (tapStPtr->mode == RVX_IIR_CASCADE)
        return cascadeStep(taps, tapStPtr->order / 2, dlyl, x);
    return directStep(taps, tapStPtr->order, dlyl, x);
}

template <typename Tap, typename Sample>
void filterBlock(const char *func, const rvxIirTapState *tapStPtr, rvxIirDlyState *dlyStPtr,
                 const Sample *inSamps, IirElement<Tap, Sample> *outSamps, int numIters)
{
    using Element = IirElement<Tap, Sample>;
    const rvxThreadContext *thread = rvxGetThreadContext();
    notePointers(func, tapStPtr, dlyStPtr);
    noteIf(inSamps == nullptr, func, "inSamps==0");
    noteIf(outSamps == nullptr, func, "outSamps==0");
    if (thread->errStatus < 0)
        return;
    noteTaps(func, *tapStPtr);
    noteDelayLine(func, *tapStPtr, *dlyStPtr);
    noteIf(numIters < 0, func, "numIters < 0");
    if (thread->errStatus < 0)
        return;
    const Tap *taps = static_cast<const Tap *>(tapStPtr->taps);
    Element *dlyl = static_cast<Element *>(dlyStPtr->dlyl);
    // Deliberate: no samples count as one where there is more than one delay element.
    const int atLeastOne = numIters > 0 ? numIters : 1;
    if (tapStPtr->mode == RVX_IIR_CASCADE)
        rvxIirCascade(taps, tapStPtr->order / 2, dlyl, inSamps, outSamps, atLeastOne);
    else
        rvxIirDirect(taps, tapStPtr->order, dlyl, inSamps, outSamps,
                     tapStPtr->order < 2 ? numIters : atLeastOne);
}

} // namespace

void rvxdIirlInit(int iirType, double *taps, int order, rvxIirTapState *tapStPtr)
{
    initDirect(__func__, iirType, taps, order, tapStPtr);
}

void rvxzIirlInit(int iirType, ZCplx *taps, int order, rvxIirTapState *tapStPtr)
{
    initDirect(__func__, iirType, taps, order, tapStPtr);
}

void rvxdIirlInitBq(int iirType, double *taps, int numQuads, rvxIirTapState *tapStPtr)
{
    initCascade(__func__, iirType, taps, numQuads, tapStPtr);
}

void rvxzIirlInitBq(int iirType, ZCplx *taps, int numQuads, rvxIirTapState *tapStPtr)
{
    initCascade(__func__, iirType, taps, numQuads, tapStPtr);
}

void rvxdIirlInitDlyl(const rvxIirTapState *tapStPtr, double *dlyl, rvxIirDlyState *dlyStPtr)
{
    initDelayLine(__func__, tapStPtr, dlyl, dlyStPtr);
}

void rvxzIirlInitDlyl(const rvxIirTapState *tapStPtr, ZCplx *dlyl, rvxIirDlyState *dlyStPtr)
{
    initDelayLine(__func__, tapStPtr, dlyl, dlyStPtr);
}

double rvxdIirl(const rvxIirTapState *tapStPtr, rvxIirDlyState *dlyStPtr, double sample)
{
    return filterSample<double>(__func__, tapStPtr, dlyStPtr, sample);
}

ZCplx rvxzIirl(const rvxIirTapState *tapStPtr, rvxIirDlyState *dlyStPtr, ZCplx sample)
{
    return filterSample<ZCplx>(__func__, tapStPtr, dlyStPtr, sample);
}

ZCplx rvxdzIirl(const rvxIirTapState *tapStPtr, rvxIirDlyState *dlyStPtr, double sample)
{
    return filterSample<ZCplx>(__func__, tapStPtr, dlyStPtr, sample);
}

ZCplx rvxzdIirl(const rvxIirTapState *tapStPtr, rvxIirDlyState *dlyStPtr, ZCplx sample)
{
    return filterSample<double>(__func__, tapStPtr, dlyStPtr, sample);
}

void rvxdbIirl(const rvxIirTapState *tapStPtr, rvxIirDlyState *dlyStPtr, const double *inSamps,
               double *outSamps, int numIters)
{
    filterBlock<double>(__func__, tapStPtr, dlyStPtr, inSamps, outSamps, numIters);
}

void rvxzbIirl(const rvxIirTapState *tapStPtr, rvxIirDlyState *dlyStPtr, const ZCplx *inSamps,
               ZCplx *outSamps, int numIters)
{
    filterBlock<ZCplx>(__func__, tapStPtr, dlyStPtr, inSamps, outSamps, numIters);
}

void rvxdzbIirl(const rvxIirTapState *tapStPtr, rvxIirDlyState *dlyStPtr, const double *inSamps,
                ZCplx *outSamps, int numIters)
{
    filterBlock<ZCplx>(__func__, tapStPtr, dlyStPtr, inSamps, outSamps, numIters);
}

void rvxzdbIirl(const rvxIirTapState *tapStPtr, rvxIirDlyState *dlyStPtr, const ZCplx *inSamps,
                ZCplx *outSamps, int numIters)
{
    filterBlock<double>(__func__, tapStPtr, dlyStPtr, inSamps, outSamps, numIters);
}
