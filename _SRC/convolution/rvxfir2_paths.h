// The two ways of filtering an image, and the model that chooses between them.

#ifndef RVXFIR2_PATHS_H
#define RVXFIR2_PATHS_H

#include <cstdint>

// Images are dense, row after row; y has the size of x. Lengths are at least 1.
struct Filter2d {
    const double *x;
    std::int64_t xCols;
    std::int64_t xRows;
    const double *h;
    std::int64_t hCols;
    std::int64_t hRows;
    double *y;
};

// The sides of a transform block for a kernel of n rows or columns: twice the
// smallest power of two not below n.
std::int64_t ownFilter2dBlockLen(std::int64_t n);

// Operations of either way. The products and sums of all sizes that have memory are
// exact.
struct Filter2dCosts {
    double direct;
    double blocks;
};

Filter2dCosts ownFilter2dCosts(std::int64_t xCols, std::int64_t xRows, std::int64_t hCols,
                               std::int64_t hRows);

// Sums of products, the kernel's rows from the last to the first and likewise the
// values within a row; what would lie outside the image has no part in a sum.
void ownFilter2dDirect(const Filter2d &task);

// By transforms of overlapping blocks. False, and nothing written, when there is no
// memory for its buffers and tables.
bool ownFilter2dBlocks(const Filter2d &task);

#endif
