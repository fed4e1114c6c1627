// What both correlations by block transforms are made of.

#ifndef RVXCORR_BLOCKS_H
#define RVXCORR_BLOCKS_H

#include <cstdint>

#include "frame/rvxlanes.h"
#include "rvx.h"

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

constexpr int RVX_SPLIT_FLAGS = RVX_FFT_FORWARD | RVX_FFT_OUT_BIT_REV;
constexpr int RVX_JOIN_FLAGS = RVX_FFT_INVERSE | RVX_FFT_NO_SCALE | RVX_FFT_IN_BIT_REV;

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
