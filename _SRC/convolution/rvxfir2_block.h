// One transform block, a real array of rows by cols with cols = 2n, read as n complex
// values a row.

#ifndef RVXFIR2_BLOCK_H
#define RVXFIR2_BLOCK_H

#include <cstdint>

#include "rvx.h"

// The size of a block and the tables that its transforms use.
struct Filter2dBlock {
    std::int64_t rows;
    std::int64_t n;
    int rowsOrder;           // of rows
    int lineOrder;           // of n
    const ZCplx *columnTbl;  // W(rows, k), full circle
    const ZCplx *lineTblDif; // for rvxFftDif of n
    const ZCplx *lineTblDit; // for rvxFftDit of n
    const ZCplx *factors;    // by ownFilter2dFactors

    // Of the longest kernels 2^63: more than a signed count holds.
    std::uint64_t len() const
    {
        return static_cast<std::uint64_t>(rows) * static_cast<std::uint64_t>(n);
    }
};

// n values from the full circle's table W(2n, k): in bit-reversed order of k, and as the
// passes over pairs of rows read them.
void ownFilter2dFactors(const Filter2dBlock &block, const ZCplx *table, ZCplx *factors);

// To the filter's spectrum, bit-reversed in rows and slots; rows from `used` on hold zeros.
void ownFilter2dSpectrum(const Filter2dBlock &block, ZCplx *data, std::int64_t used);

// The tile's values to the circular convolution with the filter whose spectrum is
// given, times the block's len() * 2; rows before `wanted` are not finished.
void ownFilter2dConvolve(const Filter2dBlock &block, ZCplx *tile, const ZCplx *filter,
                         std::int64_t wanted);

#endif
