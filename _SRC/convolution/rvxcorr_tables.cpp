// Tables of the correlations that leave none behind.
//
// They are made anew in each call, which for short sequences takes as long as the
// transforms. So there is only what the passes of that call read: factors, and one
// quarter of the circle where all of it would be four. All are picked from one wave.

#include <algorithm>
#include <cstdint>

#include "convolution/rvxcorr_blocks.h"
#include "frame/rvxbuffer.h"
#include "transform/rvxmisc.h"
#include "transform/rvxtwd.h"
#include "transform/rvxtwd_circle.h"
#include "transform/rvxtwd_factors.h"

namespace {

int kernelOrder(int order)
{
    return std::min<int>(order, RVX_KERNEL_ORDER);
}

std::uint64_t factorsLen(int order)
{
    return rvxKernelFactorsLen(kernelOrder(order)) + rvxSweepFactorsLen(order);
}

// Where the next part goes.
struct Room {
    ZCplx *next;

    ZCplx *take(std::uint64_t len)
    {
        ZCplx *part = next;
        next += len;
        return part;
    }
    const double *takeKernel(const QuarterWave &wave, int order)
    {
        double *factors = &take(rvxKernelFactorsLen(order))->re;
        rvxFillKernelFactors(factors, wave, order);
        return factors;
    }
    const double *takeSweeps(const QuarterWave &wave, int order)
    {
        double *factors = &take(rvxSweepFactorsLen(order))->re;
        rvxFillSweepFactors(factors, wave, order);
        return factors;
    }
};

} // namespace

bool ownObtainTables(int order, CorrNeeds needs, CorrTables *tables)
{
    const int waveOrder = needs.whole ? order : order - 1;
    const std::uint64_t quarter = (std::uint64_t{1} << order) / 4;
    const std::uint64_t sineLen = (std::uint64_t{1} << waveOrder) / 8 + 1;
    const std::uint64_t len =
        sineLen + factorsLen(order - 1) + (needs.whole ? factorsLen(order) : 0) +
        (needs.firstQuarter ? quarter : 0) + (needs.lastQuarter ? quarter : 0);
    *tables = {};
    tables->block = rvxAllocZCplx(static_cast<std::uint32_t>(len));
    if (tables->block == nullptr)
        return false;
    Room room = {tables->block};
    double *sine = &room.take(sineLen)->re;
    ZCplx *firstQuarter = needs.firstQuarter ? room.take(quarter) : nullptr;
    ZCplx *lastQuarter = needs.lastQuarter ? room.take(quarter) : nullptr;
    rvxFillCircleParts({needs.whole ? sine : nullptr, firstQuarter, lastQuarter}, order);
    if (!needs.whole)
        rvxFillSineQuarter(sine, order - 1);
    const std::int64_t n = std::int64_t{1} << waveOrder;
    const QuarterWave wave = {sine, n / 4, n / 2};
    tables->half = {room.takeKernel(wave, kernelOrder(order - 1)),
                    room.takeSweeps(wave, order - 1)};
    if (needs.whole)
        tables->whole = {order > RVX_KERNEL_ORDER ? tables->half.kernel
                                                  : room.takeKernel(wave, order),
                         room.takeSweeps(wave, order)};
    tables->firstQuarter = firstQuarter;
    if (needs.lastQuarter)
        tables->circleEnd = lastQuarter + quarter;
    return true;
}

void ownDropTables(const CorrTables &tables)
{
    rvxFreeAligned(tables.block);
    rvxFreeTwdTables();
    rvxFreeBitRevTables();
}
