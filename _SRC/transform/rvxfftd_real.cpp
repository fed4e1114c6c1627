// rvxfftd, the real transforms: a real sequence of N samples by a complex
// transform of N/2 points over its samples taken in pairs, and its spectrum the
// opposite way.
//
// The six fronts share their steps and differ in what `Front` says.

#include <cstddef>
#include <cstring>

#include "frame/rvxcheck.h"
#include "frame/rvxthread.h"
#include "transform/rvxfftd.h"
#include "transform/rvxmisc.h"
#include "transform/rvxtwd.h"

RVX_MODULE("rvxfftd")

namespace {

// The table of the pass that makes the transform a real one.
struct Twist {
    ZCplx *(rvxThreadContext::*slots)[RVX_ORDERS];
    const ZCplx *(*get)(int order);
    void (*release)(int order);
};

constexpr Twist RVX_REAL_TWIST = {&rvxThreadContext::realFftTableA, rvxGetRealTwistTbl,
                                  rvxFreeRealTwistTbl};
constexpr Twist RVX_CCS_TWIST = {&rvxThreadContext::realFftTableB, rvxGetCcsTwistTbl,
                                 rvxFreeCcsTwistTbl};

// The flags that name a packed format, of which the internal fronts need one.
struct Formats {
    int pack;
    int perm;
    const char *bothMessage;
    const char *noneMessage;
};

constexpr Formats RVX_CCS_ALONE = {0, 0, nullptr, nullptr};

struct Front {
    const char *name;
    Twist twist;
    const char *nullInput; // its message
    Formats formats;
};

constexpr Front RVX_REAL_FFT = {"rvxdRealFft", RVX_REAL_TWIST, "samps==0", RVX_CCS_ALONE};
constexpr Front RVX_REAL_FFT_NIP = {"rvxdRealFftNip", RVX_REAL_TWIST, "inSamps==0", RVX_CCS_ALONE};
constexpr Front RVX_CCS_FFT = {"rvxdCcsFft", RVX_CCS_TWIST, "samps==0", RVX_CCS_ALONE};
constexpr Front RVX_CCS_FFT_NIP = {"rvxdCcsFftNip", RVX_CCS_TWIST, "inSamps==0", RVX_CCS_ALONE};
constexpr Front RVX_REAL_FFTL = {"rvxdRealFftl",
                                 RVX_REAL_TWIST,
                                 "samps==0",
                                 {RVX_FFT_OUT_RC_PACK, RVX_FFT_OUT_RC_PERM,
                                  "(flags & 256) && (flags & 512)",
                                  "(flags & 256)==0 && (flags & 512)==0"}};
constexpr Front RVX_CCS_FFTL = {"rvxdCcsFftl",
                                RVX_CCS_TWIST,
                                "samps==0",
                                {RVX_FFT_IN_RC_PACK, RVX_FFT_IN_RC_PERM,
                                 "(flags & 1024) && (flags & 4096)",
                                 "(flags & 1024)==0 && (flags & 4096)==0"}};

// What a transform of N real samples works with.
struct Plan {
    int h = 0; // N/2
    int direction = 0;
    double scale = 1.0; // 1/N, or 1 for none
    // Below order 2 there are no tables.
    const ZCplx *twiddles = nullptr;
    const ZCplx *twist = nullptr;
    const std::uint32_t *swaps = nullptr;
};

void releaseTables(const Front &front, int order)
{
    const int halfOrder = order > 0 ? order - 1 : -1;
    rvxFreeFftTwdDit(halfOrder);
    front.twist.release(order);
    rvxFreeBitRevSwapTbl(halfOrder);
    rvxFreeSmallTable(3);
}

// Short transforms feel the calls of the getters: what is cached is read directly.
bool haveTables(const Front &front, int order, Plan *plan)
{
    const rvxThreadContext *context = rvxGetThreadContext();
    plan->twiddles = context->fftTableB[order - 1];
    plan->twist = (context->*front.twist.slots)[order];
    plan->swaps = context->shortBitRevTable[order - 1];
    return plan->twiddles != nullptr && plan->twist != nullptr && plan->swaps != nullptr;
}

bool buildTables(const Front &front, int order, Plan *plan)
{
    plan->twiddles = rvxGetFftTwdDit(order - 1);
    if (plan->twiddles == nullptr)
        return false;
    plan->twist = front.twist.get(order);
    if (plan->twist == nullptr)
        return false;
    plan->swaps = rvxGetBitRevSwapTbl(order - 1);
    return plan->swaps != nullptr;
}

// The first failure drops the thread's other tables to make room.
bool acquireTables(const Front &front, int order, Plan *plan)
{
    if (haveTables(front, order, plan))
        return true;
    for (int attempt = 1; attempt <= 2; ++attempt) {
        if (buildTables(front, order, plan))
            return true;
        rvxFreeFftTables();
    }
    return false;
}

// Everything in a call before its transform. False when there is nothing to
// transform: tables were released or only warmed up, or the call was refused.
// A refused call has built its tables if its order was good.
bool prepare(const Front &front, const double *in, const double *out, int order, int flags,
             Plan *plan)
{
    if ((flags & RVX_FFT_FREE_TABLES) != 0) {
        releaseTables(front, order);
        return false;
    }
    RVX_REJECT_AS(front.name, order < 0, "order<0", false);
    RVX_REJECT_AS(front.name, order > 31, "order>31", false);
    if (order >= 2 && !acquireTables(front, order, plan)) {
        RVX_REPORT_AS(front.name, RVX_STATUS_NO_MEMORY, "No working Twd memory");
        return false;
    }
    if ((flags & RVX_FFT_INIT_TABLES) != 0)
        return false;
    RVX_REJECT_AS(front.name, in == nullptr, front.nullInput, false);
    RVX_REJECT_AS(front.name, out == nullptr, "outSamps==0", false);
    const bool forward = (flags & RVX_FFT_FORWARD) != 0;
    const bool inverse = (flags & RVX_FFT_INVERSE) != 0;
    RVX_REJECT_AS(front.name, forward && inverse, "(flags & 1) && (flags & 2)", false);
    RVX_REJECT_AS(front.name, !forward && !inverse, "(flags & 1)==0 && (flags & 2)==0", false);
    if (front.formats.pack != 0) {
        const bool pack = (flags & front.formats.pack) != 0;
        const bool perm = (flags & front.formats.perm) != 0;
        RVX_REJECT_AS(front.name, pack && perm, front.formats.bothMessage, false);
        RVX_REJECT_AS(front.name, !pack && !perm, front.formats.noneMessage, false);
    }
    const std::uint32_t n = std::uint32_t{1} << order;
    plan->h = static_cast<int>(n / 2);
    plan->direction = forward ? 1 : -1;
    plan->scale = inverse && (flags & RVX_FFT_NO_SCALE) == 0 ? 1.0 / n : 1.0;
    return true;
}

ZCplx *pairs(double *samps)
{
    return reinterpret_cast<ZCplx *>(samps);
}

const ZCplx *pairs(const double *samps)
{
    return reinterpret_cast<const ZCplx *>(samps);
}

// The two bins of a spectrum that are real.
struct RealBins {
    double first; // R[0]
    double last;  // R[N/2]
};

// The h points of the complex transform; src may be dst.
void transformPairs(const double *src, double *dst, double scale, const Plan &plan)
{
    if (plan.h > 1)
        rvxFftNatural(pairs(src), pairs(dst), plan.h, plan.direction, plan.twiddles, scale);
    else
        *pairs(dst) = {src[0] * scale, src[1] * scale};
}

// Bins 1..h-1 come to their places in `out`, which may be `in`; the real bins are
// handed back.
RealBins samplesToBins(const double *in, double *out, const Plan &plan)
{
    transformPairs(in, out, 1.0, plan);
    rvxRealFftPost(pairs(out), plan.h, plan.direction, plan.scale, plan.twist);
    return {(out[0] + out[1]) * plan.scale, (out[0] - out[1]) * plan.scale};
}

// Bins 1..h-1 stand in their places in `in`; samples go to `out`, which may be `in`.
void binsToSamples(const double *in, RealBins real, double *out, const Plan &plan)
{
    rvxCcsFftPre(pairs(in), pairs(out), plan.h, plan.direction, plan.twist);
    out[0] = real.first + real.last;
    out[1] = real.first - real.last;
    transformPairs(out, out, plan.scale, plan);
}

void storeCcsEnds(double *spectrum, RealBins real, const Plan &plan)
{
    ZCplx *z = pairs(spectrum);
    z[0] = {real.first, 0.0};
    z[plan.h] = {real.last, 0.0};
}

RealBins loadCcsEnds(const double *spectrum, const Plan &plan)
{
    const ZCplx *z = pairs(spectrum);
    return {z[0].re, z[plan.h].re};
}

// Bins 1..h-1 of RCPack stand one double below their places.
void moveBins(double *spectrum, int from, int to, const Plan &plan)
{
    const std::size_t doubles = 2 * (static_cast<std::size_t>(plan.h) - 1);
    std::memmove(spectrum + to, spectrum + from, doubles * sizeof(double));
}

void storePackedEnds(double *spectrum, RealBins real, bool pack, const Plan &plan)
{
    spectrum[0] = real.first;
    if (pack)
        moveBins(spectrum, 2, 1, plan);
    spectrum[pack ? 2 * plan.h - 1 : 1] = real.last;
}

RealBins loadPackedEnds(double *spectrum, bool pack, const Plan &plan)
{
    const RealBins real = {spectrum[0], spectrum[pack ? 2 * plan.h - 1 : 1]};
    if (pack)
        moveBins(spectrum, 1, 2, plan);
    return real;
}

} // namespace

void rvxdRealFft(double *samps, int order, int flags)
{
    Plan plan;
    if (!prepare(RVX_REAL_FFT, samps, samps, order, flags, &plan))
        return;
    if (order == 0) {
        samps[1] = 0.0;
        return;
    }
    storeCcsEnds(samps, samplesToBins(samps, samps, plan), plan);
}

void rvxdRealFftNip(const double *inSamps, double *outSamps, int order, int flags)
{
    Plan plan;
    if (!prepare(RVX_REAL_FFT_NIP, inSamps, outSamps, order, flags, &plan))
        return;
    if (order == 0) {
        outSamps[0] = inSamps[0];
        outSamps[1] = 0.0;
        return;
    }
    storeCcsEnds(outSamps, samplesToBins(inSamps, outSamps, plan), plan);
}

void rvxdCcsFft(double *samps, int order, int flags)
{
    Plan plan;
    if (!prepare(RVX_CCS_FFT, samps, samps, order, flags, &plan) || order == 0)
        return;
    binsToSamples(samps, loadCcsEnds(samps, plan), samps, plan);
}

void rvxdCcsFftNip(const double *inSamps, double *outSamps, int order, int flags)
{
    Plan plan;
    if (!prepare(RVX_CCS_FFT_NIP, inSamps, outSamps, order, flags, &plan))
        return;
    if (order == 0) {
        outSamps[0] = inSamps[0];
        return;
    }
    binsToSamples(inSamps, loadCcsEnds(inSamps, plan), outSamps, plan);
}

void rvxdRealFftl(double *samps, int order, int flags)
{
    Plan plan;
    if (!prepare(RVX_REAL_FFTL, samps, samps, order, flags, &plan) || order == 0)
        return;
    const RealBins real = samplesToBins(samps, samps, plan);
    storePackedEnds(samps, real, (flags & RVX_FFT_OUT_RC_PACK) != 0, plan);
}

void rvxdCcsFftl(double *samps, int order, int flags)
{
    Plan plan;
    if (!prepare(RVX_CCS_FFTL, samps, samps, order, flags, &plan) || order == 0)
        return;
    const RealBins real = loadPackedEnds(samps, (flags & RVX_FFT_IN_RC_PACK) != 0, plan);
    binsToSamples(samps, real, samps, plan);
}

void rvxdMpyRCPack2(const double *src, double *dst, int order)
{
    RVX_REJECT_IF(order < 0, "order<0");
    RVX_REJECT_IF(order > 31, "order>31");
    RVX_REJECT_IF(src == nullptr, "src==0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    const std::size_t n = std::size_t{1} << order;
    dst[0] *= src[0];
    if (order > 0)
        dst[n - 1] *= src[n - 1];
    if (order > 1)
        rvxzbMpy2(pairs(src + 1), pairs(dst + 1), static_cast<int>(n / 2 - 1));
}
