// Decimation in frequency on interleaved values: natural input to bit-reversed
// output, the mirror image of decimation in time.
//
// Gentleman and Sande, Fast Fourier transforms for fun and profit, 1966.

#include "transform/rvxfftd_engines.h"
#include "transform/rvxfftd_passes.h"

namespace {

template <bool inverse>
RVX_INLINE void difKernel(double *data, int N, int R, const double *factors, double scale)
{
    splitKernel(Interleaved<inverse>{data}, blocked(data), N, R, factors);
    splitGroups(blocked(data), Interleaved<inverse>{data}, N, R, allLanes(scale));
}

RVX_KERNEL void difForward(double *data, int N, int R, const double *factors, double scale)
{
    difKernel<false>(data, N, R, factors, scale);
}

RVX_KERNEL void difInverse(double *data, int N, int R, const double *factors, double scale)
{
    difKernel<true>(data, N, R, factors, scale);
}

// The kernel of longer transforms: its input stands in blocks already.
template <bool inverse>
RVX_INLINE void difBlock(double *data, const double *factors, double scale)
{
    constexpr int N = RVX_KERNEL_LEN;
    constexpr int R = 8;
    splitKernel(blocked(data), blocked(data), N, R, factors);
    splitGroups(blocked(data), Interleaved<inverse>{data}, N, R, allLanes(scale));
}

RVX_KERNEL void difBlockForward(double *data, const double *factors, double scale)
{
    difBlock<false>(data, factors, scale);
}

RVX_KERNEL void difBlockInverse(double *data, const double *factors, double scale)
{
    difBlock<true>(data, factors, scale);
}

RVX_KERNEL void difSweep(double *data, int P, int depth, const double *factors)
{
    splitSweep(blocked(data), blocked(data), P, depth, factors);
}

RVX_KERNEL void difFirstForward(double *data, int P, int depth, const double *factors)
{
    splitSweep(Interleaved<false>{data}, blocked(data), P, depth, factors);
}

RVX_KERNEL void difFirstInverse(double *data, int P, int depth, const double *factors)
{
    splitSweep(Interleaved<true>{data}, blocked(data), P, depth, factors);
}

struct Runs {
    double *data;
    bool inverse;
    const double *kernelFactors;
    double scale;

    void firstSweep(const Sweep &s) const
    {
        (inverse ? difFirstInverse : difFirstForward)(data, s.P, s.depth, s.factors);
    }
    void sweep(int start, const Sweep &s) const
    {
        difSweep(data + 2 * start, s.P, s.depth, s.factors);
    }
    void block(int start) const
    {
        (inverse ? difBlockInverse : difBlockForward)(data + 2 * start, kernelFactors, scale);
    }
};

} // namespace

void rvxFftDifByFactors(ZCplx *data, int N, int direction, FftFactors factors, double scale)
{
    double *p = &data->re;
    const bool inverse = direction < 0;
    if (N <= RVX_KERNEL_LEN)
        (inverse ? difInverse : difForward)(p, N, rvxFirstRadix(rvxOrderOf(N)), factors.kernel,
                                            scale);
    else
        rvxSplitBlocks(Runs{p, inverse, factors.kernel, scale}, N, factors.sweeps);
}

void rvxFftDifScaled(ZCplx *data, int N, int direction, const ZCplx *twiddles, double scale)
{
    if (N == 1)
        return;
    if (N <= 8)
        rvxFftShort(data, data, N, direction < 0, false, true, scale);
    else
        rvxFftDifByFactors(data, N, direction, rvxDifFactorsOf(twiddles, rvxOrderOf(N)), scale);
}

void rvxFftDif(ZCplx *data, int N, int direction, const ZCplx *twiddles)
{
    rvxFftDifScaled(data, N, direction, twiddles, 1.0);
}
