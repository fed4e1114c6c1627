// Bit-reversed order: element i stands at the reversal of the low bits of i.

#ifndef RVXMISC_H
#define RVXMISC_H

#include <cstdint>

#include "rvx.h"

// tbl[i] = the reversal of the low order bits of i, for all 2^order words.
void rvxCalcBitRevTbl(std::uint32_t *tbl, int order);

// That table, cached; a negative stored status gives null. Reports a bad order
// and missing memory.
const std::uint32_t *rvxGetBitRevTbl(int order);

// The swap list that drives the reversal of an array, cached. Null without a
// report when order is outside 0..31 or there is no memory.
const std::uint32_t *rvxGetBitRevSwapTbl(int order);
void rvxFreeBitRevSwapTbl(int order);

// All entries of both kinds.
void rvxFreeBitRevTables();

// Reverses 2^order values in place, without memory for the swap list too.
void rvxzbBitRev1(ZCplx *vec, int order);

#endif
