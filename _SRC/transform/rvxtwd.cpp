// rvxtwd: the tables of roots of unity that the Fourier transforms run on.
//
// Every entry is picked from one quarter wave of the sine, so that equal angles
// have equal values in all tables. (The full-circle table alone has entries that
// are computed each by itself.)

#include "transform/rvxtwd.h"

#include <cstdint>

#include "frame/rvxbuffer.h"
#include "frame/rvxcheck.h"
#include "frame/rvxthread.h"
#include "transform/rvxfftd_plan.h"
#include "transform/rvxtwd_circle.h"
#include "transform/rvxtwd_factors.h"

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

void fillDit(ZCplx *tbl, const QuarterWave &wave, int order)
{
    ZCplx *entry = tbl;
    for (std::int64_t k = 0; k <= wave.quarter; ++k) {
        *entry++ = wave.root(k);
        *entry++ = wave.root(2 * k);
        *entry++ = wave.root(3 * k);
    }
    rvxFillKernelFactors(&tbl[rvxDitTableLen(order)].re, wave, order);
}

void fillDif(ZCplx *tbl, const QuarterWave &wave, int order)
{
    ZCplx *entry = tbl;
    for (std::int64_t k = 1; k < wave.quarter; ++k) {
        *entry++ = wave.root(k);
        *entry++ = wave.root(3 * k);
    }
    rvxFillKernelFactors(&tbl[rvxDifTableLen(order)].re, wave, order);
}

void fillLarge(ZCplx *tbl, const QuarterWave &wave, int order)
{
    for (std::int64_t k = 0; k < wave.quarter; ++k)
        tbl[k] = wave.root(k);
    if (order > RVX_STRETCH_ORDER) {
        const int stride = 1 << (order - RVX_STRETCH_ORDER);
        for (std::int64_t k = 0; k < RVX_COARSE_LEN; ++k)
            tbl[wave.quarter + k] = wave.root(stride * k);
    }
    rvxFillSweepFactors(&tbl[rvxLargeTableLen(order)].re, wave, order);
}

void fillRealTwist(ZCplx *tbl, const QuarterWave &wave, int)
{
    for (std::int64_t k = 0; k < wave.quarter; ++k)
        tbl[k] = {0.5 * wave.sine[wave.quarter - k], 0.5 - 0.5 * wave.sine[k]};
}

void fillCcsTwist(ZCplx *tbl, const QuarterWave &wave, int)
{
    for (std::int64_t k = 0; k < wave.quarter; ++k)
        tbl[k] = wave.root(k);
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
    void (*fill)(ZCplx *tbl, const QuarterWave &wave, int order);
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
    kind.fill(static_cast<ZCplx *>(tbl), QuarterWave{sine, n / 4, n / 2}, order);
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
    rvxThreadContext *context = rvxGetThreadContext();
    for (const TableKind *kind : fftTables)
        rvxDropBuffers(context->*kind->slots);
    rvxDropBuffers(context->shortBitRevTable);
}

void rvxFreeTwdTables()
{
    rvxThreadContext *context = rvxGetThreadContext();
    for (int i = 0; i < context->sizedTableCount; ++i) {
        rvxDropBuffer(context->sizedTable[i]);
        context->sizedTableKey[i] = 0;
    }
    context->sizedTableCount = 0;
    rvxDropBuffers(context->twdTable);
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
