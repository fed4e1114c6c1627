// rvxtwd: the tables of roots of unity that the Fourier transforms run on.
//
// Every entry is picked from one quarter wave of the sine, so that equal angles
// have equal values in all tables. (The full-circle table alone has entries that
// are computed each by itself.)

#include "transform/rvxtwd.h"

#include <cstdint>

#include "frame/rvxbuffer.h"
#include "frame/rvxcheck.h"
#include "frame/rvxkernel.h"
#include "frame/rvxthread.h"
#include "transform/rvxfftd_plan.h"
#include "transform/rvxmisc.h"
#include "transform/rvxtwd_circle.h"

RVX_MODULE("rvxtwd")

namespace {

bool orderInRange(int order)
{
    return order >= 0 && order < RVX_ORDERS;
}

// S[i] = sin(2 pi i / N) for 0 <= i <= N/4. Null when there is no memory.
double *rvxCalcSineQuarter(int order)
{
    const std::int64_t quarter = (std::int64_t{1} << order) / 4;
    double *sine = rvxAllocDoubles(static_cast<std::uint32_t>(quarter + 1));
    if (sine != nullptr)
        rvxFillSineQuarter(sine, order);
    return sine;
}

// The quarter wave and the lengths that belong to it: W(N,k) for 0 <= k <= 3N/4.
struct Circle {
    const double *sine;
    std::int64_t quarter;
    std::int64_t half;

    ZCplx root(std::int64_t k) const
    {
        if (k <= quarter)
            return {sine[quarter - k], -sine[k]};
        if (k <= half)
            return {-sine[k - quarter], -sine[half - k]};
        return {-sine[3 * quarter - k], sine[k - half]};
    }
};

// sign * sine[i], and on by `step`, in the order of lanes that the passes use.
void putSines(double *p, const double *sine, std::int64_t i, std::int64_t step, double sign)
{
    p[0] = sign * sine[i];
    p[1] = sign * sine[i + 2 * step];
    p[2] = sign * sine[i + step];
    p[3] = sign * sine[i + 3 * step];
}

// W(N, k), W(N, k + step) and so on, four at a time in that order, real parts before
// imaginary ones.
double *putFactors(double *p, const Circle &circle, std::int64_t k, std::int64_t step)
{
    const std::int64_t quarter = circle.quarter, half = circle.half, last = k + 3 * step;
    if (last <= quarter) {
        putSines(p, circle.sine, quarter - k, -step, 1.0);
        putSines(p + 4, circle.sine, k, step, -1.0);
    } else if (k > quarter && last <= half) {
        putSines(p, circle.sine, k - quarter, step, -1.0);
        putSines(p + 4, circle.sine, half - k, -step, -1.0);
    } else {
        const std::int64_t laneElement[] = {0, 2, 1, 3};
        for (int lane = 0; lane < 4; ++lane) {
            const ZCplx w = circle.root(k + laneElement[lane] * step);
            p[lane] = w.re;
            p[lane + 4] = w.im;
        }
    }
    return p + 8;
}

// The factors of a kernel's radix-4 passes.
void fillKernelFactors(double *p, const Circle &circle, int order)
{
    const std::int64_t n = std::int64_t{1} << order;
    if (order < 4)
        return;
    for (std::int64_t P = rvxFirstRadix(order); P < n; P *= 4) {
        const std::int64_t step = n / (4 * P);
        for (std::int64_t i = 0; i < P; i += 4)
            for (std::int64_t power = 1; power <= 3; ++power)
                p = putFactors(p, circle, power * i * step, power * step);
    }
}

void fillSweepFactors(double *p, const Circle &circle, int order)
{
    const std::int64_t n = std::int64_t{1} << order;
    int depth;
    for (int level = RVX_KERNEL_ORDER; level < order; level += depth) {
        depth = rvxSweepDepth(order, level);
        const std::int64_t P = std::int64_t{1} << level;
        for (std::int64_t i = 0; i < P; i += 4) {
            for (int pass = 1; pass <= depth; ++pass)
                p = putFactors(p, circle, i * (n >> (level + pass)), n >> (level + pass));
            if (depth == 3)
                p = putFactors(p, circle, (i + P) * (n >> (level + 3)), n >> (level + 3));
        }
    }
}

void fillDit(ZCplx *tbl, const Circle &circle, int order)
{
    ZCplx *entry = tbl;
    for (std::int64_t k = 0; k <= circle.quarter; ++k) {
        *entry++ = circle.root(k);
        *entry++ = circle.root(2 * k);
        *entry++ = circle.root(3 * k);
    }
    fillKernelFactors(&tbl[rvxDitTableLen(order)].re, circle, order);
}

void fillDif(ZCplx *tbl, const Circle &circle, int order)
{
    ZCplx *entry = tbl;
    for (std::int64_t k = 1; k < circle.quarter; ++k) {
        *entry++ = circle.root(k);
        *entry++ = circle.root(3 * k);
    }
    fillKernelFactors(&tbl[rvxDifTableLen(order)].re, circle, order);
}

void fillLarge(ZCplx *tbl, const Circle &circle, int order)
{
    for (std::int64_t k = 0; k < circle.quarter; ++k)
        tbl[k] = circle.root(k);
    if (order > RVX_STRETCH_ORDER) {
        const int stride = 1 << (order - RVX_STRETCH_ORDER);
        for (std::int64_t k = 0; k < RVX_COARSE_LEN; ++k)
            tbl[circle.quarter + k] = circle.root(stride * k);
    }
    fillSweepFactors(&tbl[rvxLargeTableLen(order)].re, circle, order);
}

void fillRealTwist(ZCplx *tbl, const Circle &circle, int)
{
    for (std::int64_t k = 0; k < circle.quarter; ++k)
        tbl[k] = {0.5 * circle.sine[circle.quarter - k], 0.5 - 0.5 * circle.sine[k]};
}

void fillCcsTwist(ZCplx *tbl, const Circle &circle, int)
{
    for (std::int64_t k = 0; k < circle.quarter; ++k)
        tbl[k] = circle.root(k);
}

std::uint64_t ditLen(int order)
{
    return rvxDitTableLen(order) + rvxKernelFactorsLen(order);
}

std::uint64_t difLen(int order)
{
    return rvxDifTableLen(order) + rvxKernelFactorsLen(order);
}

std::uint64_t largeLen(int order)
{
    return rvxLargeTableLen(order) + rvxSweepFactorsLen(order);
}

std::uint64_t twistLen(int order)
{
    return order < 4 ? 2 : (std::uint64_t{1} << order) / 4;
}

// What distinguishes the five tables that are filled from the quarter wave.
struct TableKind {
    ZCplx *(rvxThreadContext::*slots)[RVX_ORDERS];
    std::uint64_t (*len)(int order);
    void (*fill)(ZCplx *tbl, const Circle &circle, int order);
};

constexpr TableKind largeTable{&rvxThreadContext::fftTableA, largeLen, fillLarge};
constexpr TableKind ditTable{&rvxThreadContext::fftTableB, ditLen, fillDit};
constexpr TableKind difTable{&rvxThreadContext::fftTableC, difLen, fillDif};
constexpr TableKind realTwistTable{&rvxThreadContext::realFftTableA, twistLen, fillRealTwist};
constexpr TableKind ccsTwistTable{&rvxThreadContext::realFftTableB, twistLen, fillCcsTwist};

constexpr const TableKind *fftTables[] = {&largeTable, &ditTable, &difTable, &realTwistTable,
                                          &ccsTwistTable};

// Null when there is no memory. A table whose bytes a 32-bit count cannot hold
// counts as such: it is refused before any of it is computed.
ZCplx *buildTable(const TableKind &kind, int order)
{
    const std::uint64_t bytes = kind.len(order) * sizeof(ZCplx);
    if (bytes > UINT32_MAX)
        return nullptr;
    void *tbl = rvxAllocBytes(static_cast<std::uint32_t>(bytes));
    if (tbl == nullptr)
        return nullptr;
    double *sine = rvxCalcSineQuarter(order);
    if (sine == nullptr) {
        rvxFreeAligned(tbl);
        return nullptr;
    }
    const std::int64_t n = std::int64_t{1} << order;
    kind.fill(static_cast<ZCplx *>(tbl), Circle{sine, n / 4, n / 2}, order);
    rvxFreeAligned(sine);
    return static_cast<ZCplx *>(tbl);
}

const ZCplx *getTable(const TableKind &kind, int order)
{
    if (!orderInRange(order))
        return nullptr;
    ZCplx *&slot = (rvxGetThreadContext()->*kind.slots)[order];
    if (slot == nullptr)
        slot = buildTable(kind, order);
    return slot;
}

// Above the kernels' order a transform runs on the large table and, for its
// blocks, on the table of the kernels' order.
const ZCplx *getKernelTable(const TableKind &kind, int order)
{
    if (!orderInRange(order))
        return nullptr;
    if (order <= RVX_KERNEL_ORDER)
        return getTable(kind, order);
    return getTable(kind, RVX_KERNEL_ORDER) != nullptr ? rvxGetFftTwdLarge(order) : nullptr;
}

void freeTable(const TableKind &kind, int order)
{
    if (orderInRange(order))
        rvxDropBuffer((rvxGetThreadContext()->*kind.slots)[order]);
}

void freeKernelTable(const TableKind &kind, int order)
{
    freeTable(kind, order);
    if (orderInRange(order) && order > RVX_KERNEL_ORDER) {
        rvxFreeFftTwdLarge(order);
        freeTable(kind, RVX_KERNEL_ORDER);
    }
}

} // namespace

const ZCplx *rvxGetFftTwdLarge(int order)
{
    return getTable(largeTable, order);
}

const ZCplx *rvxGetFftTwdDit(int order)
{
    return getKernelTable(ditTable, order);
}

const ZCplx *rvxGetFftTwdDif(int order)
{
    return getKernelTable(difTable, order);
}

const ZCplx *rvxGetRealTwistTbl(int order)
{
    return getTable(realTwistTable, order);
}

const ZCplx *rvxGetCcsTwistTbl(int order)
{
    return getTable(ccsTwistTable, order);
}

void rvxFreeFftTwdLarge(int order)
{
    freeTable(largeTable, order);
}

void rvxFreeFftTwdDit(int order)
{
    freeKernelTable(ditTable, order);
}

void rvxFreeFftTwdDif(int order)
{
    freeKernelTable(difTable, order);
}

void rvxFreeRealTwistTbl(int order)
{
    freeTable(realTwistTable, order);
}

void rvxFreeCcsTwistTbl(int order)
{
    freeTable(ccsTwistTable, order);
}

void rvxFreeSmallTable(int i)
{
    if (i < 0 || i >= RVX_SMALL_TABLES)
        return;
    rvxThreadContext *context = rvxGetThreadContext();
    rvxDropBuffer(context->smallTable[i]);
    context->smallTableKey[i] = 0;
}

void rvxFreeFftTables()
{
    for (const TableKind *kind : fftTables)
        for (int order = 0; order < RVX_ORDERS; ++order)
            freeTable(*kind, order);
    for (int order = 0; order < RVX_ORDERS; ++order)
        rvxFreeBitRevSwapTbl(order);
}

void rvxFreeTwdTables()
{
    rvxThreadContext *context = rvxGetThreadContext();
    for (int i = 0; i < context->sizedTableCount; ++i) {
        rvxDropBuffer(context->sizedTable[i]);
        context->sizedTableKey[i] = 0;
    }
    context->sizedTableCount = 0;
    for (int order = 0; order < RVX_ORDERS; ++order)
        rvxDropBuffer(context->twdTable[order]);
    rvxFreeFftTables();
    // The last small table is deliberately not visited.
    for (int i = 0; i < RVX_SMALL_TABLES - 1; ++i)
        rvxFreeSmallTable(i);
}

const ZCplx *rvxzGetFftTwdTbl(int order)
{
    // A bad order is reported and seen again in the status, as any older failure is.
    if (order < 0)
        RVX_REPORT(RVX_STATUS_BAD_ARGUMENT, "order<0");
    if (order > 31)
        RVX_REPORT(RVX_STATUS_BAD_ARGUMENT, "order>31");
    if (rvxGetThreadContext()->errStatus < 0 || !orderInRange(order))
        return nullptr;
    const ZCplx *tbl = rvxFindFftTwdTbl(order);
    if (tbl == nullptr)
        RVX_REPORT(RVX_STATUS_NO_MEMORY, "NULL Pointer");
    return tbl;
}

const ZCplx *rvxFindFftTwdTbl(int order)
{
    if (!orderInRange(order))
        return nullptr;
    ZCplx *&slot = rvxGetThreadContext()->twdTable[order];
    if (slot == nullptr) {
        slot = rvxAllocZCplx(std::uint32_t{1} << order);
        if (slot != nullptr)
            rvxzCalcFftTwdTbl(slot, order);
    }
    return slot;
}

void rvxzCalcFftTwdTbl(ZCplx *tbl, int order)
{
    RVX_REJECT_IF(order < 0, "order<0");
    RVX_REJECT_IF(order > 31, "order>31");
    RVX_REJECT_IF(tbl == nullptr, "tbl==0");
    rvxFillCircle(tbl, order);
}
