// The factors of the transforms' passes, four at a time in the order of the passes'
// lanes.

#include "transform/rvxtwd_factors.h"

#include "frame/rvxlanes.h"
#include "transform/rvxfftd_plan.h"

namespace {

// The values at sine, sine + 2 step, sine + step and sine + 3 step. Where the step is
// short, loads of four hold them all.
RVX_INLINE Lanes sinesAt(const double *sine, std::int64_t step)
{
    if (step == 1)
        return swapMiddle(loadLanes(sine));
    if (step == -1)
        return swapMiddle(reversed(loadLanes(sine - 3)));
    if (step == 2)
        return blendOdd(loadLanes(sine), loadLanes(sine + 3));
    if (step == -2)
        return reversed(blendOdd(loadLanes(sine - 6), loadLanes(sine - 3)));
    return lanesOf(sine[0], sine[2 * step], sine[step], sine[3 * step]);
}

// W(N,k), W(N,k + step) and so on, real parts before imaginary ones.
RVX_INLINE double *putFactors(double *p, const QuarterWave &wave, std::int64_t k, std::int64_t step)
{
    const std::int64_t quarter = wave.quarter, half = wave.half, last = k + 3 * step;
    if (last <= quarter) {
        storeLanes(p, sinesAt(wave.sine + (quarter - k), -step));
        storeLanes(p + 4, -sinesAt(wave.sine + k, step));
    } else if (k > quarter && last <= half) {
        storeLanes(p, -sinesAt(wave.sine + (k - quarter), step));
        storeLanes(p + 4, -sinesAt(wave.sine + (half - k), -step));
    } else {
        const std::int64_t laneElement[] = {0, 2, 1, 3};
        for (int lane = 0; lane < 4; ++lane) {
            const ZCplx w = wave.root(k + laneElement[lane] * step);
            p[lane] = w.re;
            p[lane + 4] = w.im;
        }
    }
    return p + 8;
}

RVX_KERNEL void fillKernelFactors(double *p, const QuarterWave &wave, int order)
{
    const std::int64_t whole = 2 * wave.half;
    for (std::int64_t P = rvxFirstRadix(order); P < std::int64_t{1} << order; P *= 4) {
        const std::int64_t step = whole / (4 * P);
        for (std::int64_t i = 0; i < P; i += 4)
            for (std::int64_t power = 1; power <= 3; ++power)
                p = putFactors(p, wave, power * i * step, power * step);
    }
}

RVX_KERNEL void fillSweepFactors(double *p, const QuarterWave &wave, int order)
{
    const std::int64_t whole = 2 * wave.half;
    int depth;
    for (int level = RVX_KERNEL_ORDER; level < order; level += depth) {
        depth = rvxSweepDepth(order, level);
        const std::int64_t P = std::int64_t{1} << level;
        for (std::int64_t i = 0; i < P; i += 4) {
            for (int pass = 1; pass <= depth; ++pass)
                p = putFactors(p, wave, i * (whole >> (level + pass)), whole >> (level + pass));
            if (depth == 3)
                p = putFactors(p, wave, (i + P) * (whole >> (level + 3)), whole >> (level + 3));
        }
    }
}

} // namespace

void rvxFillKernelFactors(double *p, const QuarterWave &wave, int order)
{
    if (order >= 4)
        fillKernelFactors(p, wave, order);
}

void rvxFillSweepFactors(double *p, const QuarterWave &wave, int order)
{
    if (order > RVX_KERNEL_ORDER)
        fillSweepFactors(p, wave, order);
}
