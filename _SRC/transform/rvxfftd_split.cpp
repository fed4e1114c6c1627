// The transforms on real and imaginary parts in arrays of their own: the same
// passes as on interleaved values. The inverse transform is the forward one with
// the two arrays exchanged.

#include "transform/rvxfftd_engines.h"
#include "transform/rvxfftd_passes.h"

namespace {

RVX_KERNEL void splitNatural(const double *reSrc, const double *imSrc, double *re, double *im,
                             int N, int R, const double *factors, double scale)
{
    alignas(64) double work[2 * RVX_KERNEL_LEN];
    const SplitQuads quads{work, work + RVX_KERNEL_LEN};
    mergeColumns(Separate{const_cast<double *>(reSrc), const_cast<double *>(imSrc)}, quads, N, R);
    mergeKernel(quads, Separate{re, im}, N, R, factors, scale);
}

RVX_KERNEL void splitColumns(const double *reSrc, const double *imSrc, double *re, double *im,
                             int N)
{
    mergeColumns(Separate{const_cast<double *>(reSrc), const_cast<double *>(imSrc)},
                 SplitQuads{re, im}, N, 8);
}

RVX_KERNEL void splitDit(double *re, double *im, int N, int R, const double *factors, double scale)
{
    mergeGroups(Separate{re, im}, SplitQuads{re, im}, N, R);
    mergeKernel(SplitQuads{re, im}, Separate{re, im}, N, R, factors, scale);
}

RVX_KERNEL void splitDitGroups(double *re, double *im)
{
    mergeGroups(Separate{re, im}, SplitQuads{re, im}, RVX_KERNEL_LEN, 8);
}

RVX_KERNEL void splitDitBlock(double *re, double *im, const double *factors)
{
    mergeKernel(SplitQuads{re, im}, SplitQuads{re, im}, RVX_KERNEL_LEN, 8, factors, 1.0);
}

RVX_KERNEL void splitDitSweep(double *re, double *im, int P, int depth, const double *factors)
{
    mergeSweep(SplitQuads{re, im}, SplitQuads{re, im}, P, depth, factors, 1.0);
}

RVX_KERNEL void splitDitLast(double *re, double *im, int P, int depth, const double *factors,
                             double scale)
{
    mergeSweep(SplitQuads{re, im}, Separate{re, im}, P, depth, factors, scale);
}

RVX_KERNEL void splitDif(double *re, double *im, int N, int R, const double *factors, double scale)
{
    splitKernel(Separate{re, im}, SplitQuads{re, im}, N, R, factors);
    splitGroups(SplitQuads{re, im}, Separate{re, im}, N, R, allLanes(scale));
}

RVX_KERNEL void splitDifBlock(double *re, double *im, const double *factors, double scale)
{
    splitKernel(SplitQuads{re, im}, SplitQuads{re, im}, RVX_KERNEL_LEN, 8, factors);
    splitGroups(SplitQuads{re, im}, Separate{re, im}, RVX_KERNEL_LEN, 8, allLanes(scale));
}

RVX_KERNEL void splitDifSweep(double *re, double *im, int P, int depth, const double *factors)
{
    splitSweep(SplitQuads{re, im}, SplitQuads{re, im}, P, depth, factors);
}

RVX_KERNEL void splitDifFirst(double *re, double *im, int P, int depth, const double *factors)
{
    splitSweep(Separate{re, im}, SplitQuads{re, im}, P, depth, factors);
}

struct DitRuns {
    double *re;
    double *im;
    bool grouped; // the first pass is done
    const double *kernelFactors;
    double scale;

    void block(int start) const
    {
        if (!grouped)
            splitDitGroups(re + start, im + start);
        splitDitBlock(re + start, im + start, kernelFactors);
    }
    void sweep(int start, const Sweep &s) const
    {
        splitDitSweep(re + start, im + start, s.P, s.depth, s.factors);
    }
    void lastSweep(const Sweep &s) const { splitDitLast(re, im, s.P, s.depth, s.factors, scale); }
};

struct DifRuns {
    double *re;
    double *im;
    const double *kernelFactors;
    double scale;

    void firstSweep(const Sweep &s) const { splitDifFirst(re, im, s.P, s.depth, s.factors); }
    void sweep(int start, const Sweep &s) const
    {
        splitDifSweep(re + start, im + start, s.P, s.depth, s.factors);
    }
    void block(int start) const { splitDifBlock(re + start, im + start, kernelFactors, scale); }
};

} // namespace

void rvxrFftDitScaled(double *re, double *im, int N, int direction, const ZCplx *twiddles,
                      double scale)
{
    const int order = rvxOrderOf(N);
    if (direction < 0)
        std::swap(re, im);
    if (N == 1)
        return;
    if (N <= 8)
        rvxrFftShort(re, im, re, im, N, true, false, scale);
    else if (N <= RVX_KERNEL_LEN)
        splitDit(re, im, N, rvxFirstRadix(order), rvxDitFactors(twiddles, order), scale);
    else
        rvxMergeBlocks(DitRuns{re, im, false, rvxDitBlockFactors(), scale}, N,
                       rvxLargeFactors(twiddles, order));
}

void rvxrFftDit(double *re, double *im, int N, int direction, const ZCplx *twiddles)
{
    rvxrFftDitScaled(re, im, N, direction, twiddles, 1.0);
}

void rvxrFftNatural(const double *reSrc, const double *imSrc, double *reDst, double *imDst, int N,
                    int direction, const ZCplx *twiddles, double scale)
{
    const int order = rvxOrderOf(N);
    if (direction < 0) {
        std::swap(reSrc, imSrc);
        std::swap(reDst, imDst);
    }
    if (N <= 8) {
        rvxrFftShort(reSrc, imSrc, reDst, imDst, N, false, false, scale);
    } else if (N <= RVX_KERNEL_LEN) {
        splitNatural(reSrc, imSrc, reDst, imDst, N, rvxFirstRadix(order),
                     rvxDitFactors(twiddles, order), scale);
    } else {
        splitColumns(reSrc, imSrc, reDst, imDst, N);
        rvxMergeBlocks(DitRuns{reDst, imDst, true, rvxDitBlockFactors(), scale}, N,
                       rvxLargeFactors(twiddles, order));
    }
}

void rvxrFftDifScaled(double *re, double *im, int N, int direction, const ZCplx *twiddles,
                      double scale)
{
    const int order = rvxOrderOf(N);
    if (direction < 0)
        std::swap(re, im);
    if (N == 1)
        return;
    if (N <= 8)
        rvxrFftShort(re, im, re, im, N, false, true, scale);
    else if (N <= RVX_KERNEL_LEN)
        splitDif(re, im, N, rvxFirstRadix(order), rvxDifFactors(twiddles, order), scale);
    else
        rvxSplitBlocks(DifRuns{re, im, rvxDifBlockFactors(), scale}, N,
                       rvxLargeFactors(twiddles, order));
}

void rvxrFftDif(double *re, double *im, int N, int direction, const ZCplx *twiddles)
{
    rvxrFftDifScaled(re, im, N, direction, twiddles, 1.0);
}
