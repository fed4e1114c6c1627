// What both correlations by block transforms are made of.

#ifndef RVXCORR_BLOCKS_H
#define RVXCORR_BLOCKS_H

#include <cstdint>

#include "frame/rvxlanes.h"
#include "rvx.h"
#include "transform/rvxfftd_plan.h"

// Blocks overlap by half: 2^order elements, of which half hold the first sequence's
// piece and as many lags at most come out right.
struct CorrBlocks {
    int order;
    std::int64_t half;
    std::int64_t whole;
    std::int64_t count;
};

CorrBlocks ownCorrBlocks(std::int64_t len, std::int64_t lags);

// The longest transforms that have tables.
constexpr int RVX_CORR_MAX_ORDER = 28;

struct CorrBuffers {
    ZCplx *block;
    ZCplx *x;
    ZCplx *y;
    ZCplx *acc;
};

// False without memory.
bool ownObtainBuffers(std::int64_t xLen, std::int64_t yLen, std::int64_t accLen,
                      CorrBuffers *buffers);
void ownReleaseBuffers(const CorrBuffers &buffers);

// What the forms whose tables do not stay read of them and no more, N being 2^order.
struct CorrTables {
    ZCplx *block;
    FftFactors whole;          // of N points
    FftFactors half;           // of N/2 points
    const ZCplx *firstQuarter; // W(N,k) at firstQuarter[k], 0 < k < N/4
    const ZCplx *circleEnd;    // and at circleEnd[k - N], 3N/4 < k < N
};

// Which of them, beside `half`.
struct CorrNeeds {
    bool whole, firstQuarter, lastQuarter;
};

// False without memory. Order 5 and above.
bool ownObtainTables(int order, CorrNeeds needs, CorrTables *tables);
// Releases them and, as these forms do, the tables that stand in the thread.
void ownDropTables(const CorrTables &tables);

// dst[i] = src[begin + i] where that index is in [first, len), zero elsewhere.
void ownCopyPiece(const double *src, std::int64_t first, std::int64_t len, std::int64_t begin,
                  double *dst, std::int64_t n);
void ownCopyPiece(const ZCplx *src, std::int64_t first, std::int64_t len, std::int64_t begin,
                  ZCplx *dst, std::int64_t n);

// conj(x) * y, two values at once.
RVX_INLINE Lanes conjugateProduct(Lanes x, Lanes y)
{
    return realParts(x) * y + conjugated(imagParts(x)) * swapParts(y);
}

#endif
