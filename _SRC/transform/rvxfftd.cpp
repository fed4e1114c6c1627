// rvxfftd: Fourier transforms of power-of-two length, complex and real.
//
// Here the complex fronts. A front's steps are the same for all: release, order,
// tables, warm-up, data, flags, transform.

#include "transform/rvxfftd.h"

#include "frame/rvxcheck.h"
#include "frame/rvxthread.h"
#include "transform/rvxfftd_plan.h"
#include "transform/rvxmisc.h"
#include "transform/rvxtwd.h"
#include "vector/rvxarith.h"

RVX_MODULE("rvxfftd")

namespace {

// Bit-reversed output is a form of its own, with tables of its own, unless the
// input is bit-reversed too, which is refused later.
bool isDifForm(int flags)
{
    return (flags & (RVX_FFT_IN_BIT_REV | RVX_FFT_OUT_BIT_REV)) == RVX_FFT_OUT_BIT_REV;
}

void releaseTables(int order, int flags)
{
    if (isDifForm(flags))
        rvxFreeFftTwdDif(order);
    else
        rvxFreeFftTwdDit(order);
    rvxFreeBitRevSwapTbl(order);
    rvxFreeSmallTable(3);
}

// The twiddles if all tables of the transform are there; short transforms are
// over in the time that the getters take.
const ZCplx *cachedTables(int order, bool dif)
{
    const rvxThreadContext *context = rvxGetThreadContext();
    ZCplx *const *kernelTables = dif ? context->fftTableC : context->fftTableB;
    if (context->shortBitRevTable[order] == nullptr)
        return nullptr;
    if (order <= RVX_KERNEL_ORDER)
        return kernelTables[order];
    return kernelTables[RVX_KERNEL_ORDER] != nullptr ? context->fftTableA[order] : nullptr;
}

// A failed first try drops all other tables to make room for the second. Gives
// the twiddles.
const ZCplx *buildTables(const char *func, int order, bool dif)
{
    for (int attempt = 0; attempt < 2; ++attempt) {
        const ZCplx *twiddles = dif ? rvxGetFftTwdDif(order) : rvxGetFftTwdDit(order);
        if (twiddles != nullptr && rvxGetBitRevSwapTbl(order) != nullptr)
            return twiddles;
        rvxFreeFftTables();
    }
    RVX_REPORT_AS(func, RVX_STATUS_NO_MEMORY, "No working Twd memory");
    return nullptr;
}

// The steps of every front that come before a look at the data; null when they
// have answered the call, and otherwise the twiddles.
const ZCplx *prepare(const char *func, int order, int flags)
{
    if ((flags & RVX_FFT_FREE_TABLES) != 0) {
        releaseTables(order, flags);
        return nullptr;
    }
    RVX_REJECT_AS(func, order < 0, "order<0", nullptr);
    RVX_REJECT_AS(func, order > 31, "order>31", nullptr);
    const ZCplx *twiddles = cachedTables(order, isDifForm(flags));
    if (twiddles == nullptr)
        twiddles = buildTables(func, order, isDifForm(flags));
    return (flags & RVX_FFT_INIT_TABLES) == 0 ? twiddles : nullptr;
}

// Exactly one direction, at most one order of the data: seen at one look, and
// only what fails is taken apart.
bool flagsAccepted(const char *func, int flags)
{
    const int orders = flags & (32 | 64 | 128);
    if (((flags & 1) != 0) != ((flags & 2) != 0) && (orders & (orders - 1)) == 0)
        return true;
    RVX_REJECT_AS(func, (flags & 1) && (flags & 2), "(flags & 1) && (flags & 2)", false);
    RVX_REJECT_AS(func, (flags & 1) == 0 && (flags & 2) == 0, "(flags & 1)==0 && (flags & 2)==0",
                  false);
    RVX_REJECT_AS(func, (flags & 64) && (flags & 128), "(flags & 64) && (flags & 128)", false);
    RVX_REJECT_AS(func, (flags & 64) && (flags & 32), "(flags & 64) && (flags & 32)", false);
    RVX_REJECT_AS(func, (flags & 32) && (flags & 128), "(flags & 32) && (flags & 128)", false);
    return true;
}

int directionOf(int flags)
{
    return (flags & RVX_FFT_FORWARD) != 0 ? 1 : -1;
}

double scaleOf(int order, int flags)
{
    const bool scaled = (flags & (RVX_FFT_INVERSE | RVX_FFT_NO_SCALE)) == RVX_FFT_INVERSE;
    return scaled ? 1.0 / (1 << order) : 1.0;
}

} // namespace

void rvxzFft(ZCplx *samps, int order, int flags)
{
    const ZCplx *twiddles = prepare(__func__, order, flags);
    if (twiddles == nullptr)
        return;
    RVX_REJECT_IF(samps == nullptr, "samps==0");
    if (!flagsAccepted(__func__, flags) || order == 0)
        return;
    const int n = 1 << order;
    const int direction = directionOf(flags);
    const double scale = scaleOf(order, flags);
    if (isDifForm(flags))
        rvxFftDifScaled(samps, n, direction, twiddles, scale);
    else if ((flags & RVX_FFT_IN_BIT_REV) != 0)
        rvxFftDitScaled(samps, n, direction, twiddles, scale);
    else
        rvxFftNatural(samps, samps, n, direction, twiddles, scale);
}

void rvxzFftNip(const ZCplx *inSamps, ZCplx *outSamps, int order, int flags)
{
    const ZCplx *twiddles = prepare(__func__, order, flags);
    if (twiddles == nullptr)
        return;
    RVX_REJECT_IF(inSamps == nullptr, "inSamps==0");
    RVX_REJECT_IF(outSamps == nullptr, "outSamps==0");
    if (!flagsAccepted(__func__, flags))
        return;
    if (order == 0) {
        outSamps[0] = inSamps[0];
        return;
    }
    const int n = 1 << order;
    const int direction = directionOf(flags);
    const double scale = scaleOf(order, flags);
    if (isDifForm(flags)) {
        rvxzbCopy(inSamps, outSamps, n);
        rvxFftDifScaled(outSamps, n, direction, twiddles, scale);
    } else if ((flags & RVX_FFT_IN_BIT_REV) != 0) {
        rvxzbCopy(inSamps, outSamps, n);
        rvxFftDitScaled(outSamps, n, direction, twiddles, scale);
    } else {
        rvxFftNatural(inSamps, outSamps, n, direction, twiddles, scale);
    }
}

void rvxzrFftNip(const double *reInSamps, const double *imInSamps, double *reOutSamps,
                 double *imOutSamps, int order, int flags)
{
    const ZCplx *twiddles = prepare(__func__, order, flags);
    if (twiddles == nullptr)
        return;
    RVX_REJECT_IF(reInSamps == nullptr, "reInSamps==0");
    RVX_REJECT_IF(imInSamps == nullptr, "imInSamps==0");
    RVX_REJECT_IF(reOutSamps == nullptr, "reOutSamps==0");
    RVX_REJECT_IF(imOutSamps == nullptr, "imOutSamps==0");
    if (!flagsAccepted(__func__, flags))
        return;
    if (order == 0) {
        reOutSamps[0] = reInSamps[0];
        imOutSamps[0] = imInSamps[0];
        return;
    }
    const int n = 1 << order;
    const int direction = directionOf(flags);
    const double scale = scaleOf(order, flags);
    if (isDifForm(flags)) {
        rvxdbCopy(reInSamps, reOutSamps, n);
        rvxdbCopy(imInSamps, imOutSamps, n);
        rvxrFftDifScaled(reOutSamps, imOutSamps, n, direction, twiddles, scale);
    } else if ((flags & RVX_FFT_IN_BIT_REV) != 0) {
        rvxdbCopy(reInSamps, reOutSamps, n);
        rvxdbCopy(imInSamps, imOutSamps, n);
        rvxrFftDitScaled(reOutSamps, imOutSamps, n, direction, twiddles, scale);
    } else {
        rvxrFftNatural(reInSamps, imInSamps, reOutSamps, imOutSamps, n, direction, twiddles, scale);
    }
}
