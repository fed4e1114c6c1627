// Decimation in time on interleaved values: bit-reversed or natural input to
// natural output.
//
// The input is taken apart into quads in the first pass and put together in the
// last; in between the values stand in the destination, or for short transforms
// in a buffer that stays in the cache, as blocks of four real and four imaginary
// parts. The factor of the inverse transform rides on the last stores.
//
// Cooley and Tukey, An algorithm for the machine calculation of complex Fourier
// series, 1965.

#include "transform/rvxfftd_engines.h"
#include "transform/rvxfftd_passes.h"

namespace {

// In a buffer of its own, which makes no difference between src and dst.
template <bool inverse>
RVX_INLINE void naturalKernel(const double *src, double *dst, int N, int R, const double *factors,
                              double scale)
{
    alignas(64) double work[2 * RVX_KERNEL_LEN];
    if (N == 16) {
        // With a length that the compiler knows, all of this is in registers.
        mergeColumns(Interleaved<inverse>{const_cast<double *>(src)}, blocked(work), 16, 4);
        mergeKernel(blocked(work), Interleaved<inverse>{dst}, 16, 4, factors, scale);
        return;
    }
    mergeColumns(Interleaved<inverse>{const_cast<double *>(src)}, blocked(work), N, R);
    mergeKernel(blocked(work), Interleaved<inverse>{dst}, N, R, factors, scale);
}

RVX_KERNEL void naturalForward(const double *src, double *dst, int N, int R, const double *factors,
                               double scale)
{
    naturalKernel<false>(src, dst, N, R, factors, scale);
}

RVX_KERNEL void naturalInverse(const double *src, double *dst, int N, int R, const double *factors,
                               double scale)
{
    naturalKernel<true>(src, dst, N, R, factors, scale);
}

template <bool inverse>
RVX_INLINE void reversedKernel(double *data, int N, int R, const double *factors, double scale)
{
    mergeGroups(Interleaved<inverse>{data}, blocked(data), N, R);
    mergeKernel(blocked(data), Interleaved<inverse>{data}, N, R, factors, scale);
}

RVX_KERNEL void ditForward(double *data, int N, int R, const double *factors, double scale)
{
    reversedKernel<false>(data, N, R, factors, scale);
}

RVX_KERNEL void ditInverse(double *data, int N, int R, const double *factors, double scale)
{
    reversedKernel<true>(data, N, R, factors, scale);
}

// The kernel of longer transforms: its result stays in blocks.
RVX_KERNEL void ditBlockMerge(double *data, const double *factors)
{
    mergeKernel(blocked(data), blocked(data), RVX_KERNEL_LEN, rvxFirstRadix(RVX_KERNEL_ORDER),
                factors, 1.0);
}

RVX_KERNEL void ditGroupsForward(double *data, int N)
{
    mergeGroups(Interleaved<false>{data}, blocked(data), N, rvxFirstRadix(RVX_KERNEL_ORDER));
}

RVX_KERNEL void ditGroupsInverse(double *data, int N)
{
    mergeGroups(Interleaved<true>{data}, blocked(data), N, rvxFirstRadix(RVX_KERNEL_ORDER));
}

RVX_KERNEL void ditColumnsForward(const double *src, double *dst, int N)
{
    mergeColumns(Interleaved<false>{const_cast<double *>(src)}, blocked(dst), N, 8);
}

RVX_KERNEL void ditColumnsInverse(const double *src, double *dst, int N)
{
    mergeColumns(Interleaved<true>{const_cast<double *>(src)}, blocked(dst), N, 8);
}

// Eight columns from r, into a tile whose row c belongs at the reversal of r + c.
template <bool inverse>
RVX_INLINE void columnsToTile(double *data, int N, int r, BlockedQuads tile)
{
    for (int high = 0; high < 2; ++high) {
        Quad x[8];
        transformColumnsOf8(Interleaved<inverse>{data}, N, r + 4 * high, x);
        // Bit 0 and bit 1 of a column's number are worth 4 and 2 rows, bit 2 one.
        for (int c = 0; c < 4; ++c) {
            const int row = 2 * c + high;
            tile.store(8 * row, x[c]);
            tile.store(8 * row + 4, x[4 + c]);
        }
    }
}

RVX_INLINE void copyTile(const double *tile, double *data, int N, int place)
{
    for (int row = 0; row < 8; ++row)
        for (int i = 0; i < 16; i += 4)
            storeLanes(data + 2 * (place + row * (N / 8)) + i, loadLanes(tile + 16 * row + i));
}

// The first pass of a long transform in place. Eight columns from r and the
// elements where their results belong exchange their places with eight columns
// from the reversal of r: two tiles, each read as a whole before it is written.
template <bool inverse>
RVX_INLINE void mergeColumnsInPlace(double *data, int N)
{
    alignas(64) double tile[128];
    alignas(64) double other[128];
    int place = 0;
    for (int r = 0; r < N / 8; r += 8, place = nextPlace(place, N / 16)) {
        if (r > place)
            continue;
        columnsToTile<inverse>(data, N, r, blocked(tile));
        if (r < place) {
            columnsToTile<inverse>(data, N, place, blocked(other));
            copyTile(other, data, N, r);
        }
        copyTile(tile, data, N, place);
    }
}

RVX_KERNEL void ditColumnsInPlaceForward(double *data, int N)
{
    mergeColumnsInPlace<false>(data, N);
}

RVX_KERNEL void ditColumnsInPlaceInverse(double *data, int N)
{
    mergeColumnsInPlace<true>(data, N);
}

RVX_KERNEL void ditSweep(double *data, int P, int depth, const double *factors)
{
    mergeSweep(blocked(data), blocked(data), P, depth, factors, 1.0);
}

RVX_KERNEL void ditLastForward(double *data, int P, int depth, const double *factors, double scale)
{
    mergeSweep(blocked(data), Interleaved<false>{data}, P, depth, factors, scale);
}

RVX_KERNEL void ditLastInverse(double *data, int P, int depth, const double *factors, double scale)
{
    mergeSweep(blocked(data), Interleaved<true>{data}, P, depth, factors, scale);
}

struct Runs {
    double *data;
    bool inverse;
    bool grouped; // the first pass is done
    const double *kernelFactors;
    double scale;

    void block(int start) const
    {
        double *block = data + 2 * start;
        if (!grouped)
            (inverse ? ditGroupsInverse : ditGroupsForward)(block, RVX_KERNEL_LEN);
        ditBlockMerge(block, kernelFactors);
    }
    void sweep(int start, const Sweep &s) const
    {
        ditSweep(data + 2 * start, s.P, s.depth, s.factors);
    }
    void lastSweep(const Sweep &s) const
    {
        (inverse ? ditLastInverse : ditLastForward)(data, s.P, s.depth, s.factors, scale);
    }
};

} // namespace

void rvxFftDitByFactors(ZCplx *data, int N, int direction, FftFactors factors, double scale)
{
    double *p = &data->re;
    const bool inverse = direction < 0;
    if (N <= RVX_KERNEL_LEN)
        (inverse ? ditInverse : ditForward)(p, N, rvxFirstRadix(rvxOrderOf(N)), factors.kernel,
                                            scale);
    else
        rvxMergeBlocks(Runs{p, inverse, false, factors.kernel, scale}, N, factors.sweeps);
}

void rvxFftDitScaled(ZCplx *data, int N, int direction, const ZCplx *twiddles, double scale)
{
    if (N == 1)
        return;
    if (N <= 8)
        rvxFftShort(data, data, N, direction < 0, true, false, scale);
    else
        rvxFftDitByFactors(data, N, direction, rvxDitFactorsOf(twiddles, rvxOrderOf(N)), scale);
}

void rvxFftDit(ZCplx *data, int N, int direction, const ZCplx *twiddles)
{
    rvxFftDitScaled(data, N, direction, twiddles, 1.0);
}

void rvxFftNatural(const ZCplx *src, ZCplx *dst, int N, int direction, const ZCplx *twiddles,
                   double scale)
{
    const double *from = &src->re;
    double *to = &dst->re;
    const bool inverse = direction < 0;
    const int order = rvxOrderOf(N);
    if (N <= 8) {
        rvxFftShort(src, dst, N, inverse, false, false, scale);
        return;
    }
    if (N <= RVX_KERNEL_LEN) {
        (inverse ? naturalInverse : naturalForward)(from, to, N, rvxFirstRadix(order),
                                                    rvxDitFactors(twiddles, order), scale);
        return;
    }
    if (from == to)
        (inverse ? ditColumnsInPlaceInverse : ditColumnsInPlaceForward)(to, N);
    else
        (inverse ? ditColumnsInverse : ditColumnsForward)(from, to, N);
    const FftFactors factors = rvxDitFactorsOf(twiddles, order);
    rvxMergeBlocks(Runs{to, inverse, true, factors.kernel, scale}, N, factors.sweeps);
}
