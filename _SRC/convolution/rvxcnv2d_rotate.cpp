// rvxcnv2d: columns of a tall array brought into one piece each, in place.
//
// Square blocks are mirrored about their diagonals. What is left to do is to sort
// the rows of the whole: row (block, column), read as one binary number, has to come
// to (column, block), where the columns' order is free. Reversing all bits gives
// (reversed column, reversed block), and reversing the low part mends the blocks.

#include <algorithm>
#include <utility>

#include "convolution/rvxcnv2d.h"

namespace {

void mirrorBlock(double *block, std::int64_t n)
{
    for (std::int64_t r = 1; r < n; ++r)
        for (std::int64_t c = 0; c < r; ++c)
            std::swap(block[r * n + c], block[c * n + r]);
}

void mirrorBlocks(double *data, std::int64_t rows, std::int64_t cols)
{
    for (std::int64_t r = 0; r < rows; r += cols)
        mirrorBlock(data + r * cols, cols);
}

struct Rows {
    double *data;
    std::int64_t cols;
    double *row;

    void exchange(std::int64_t i, std::int64_t k) const
    {
        double *a = data + i * cols;
        double *b = data + k * cols;
        std::copy(a, a + cols, row);
        std::copy(b, b + cols, a);
        std::copy(row, row + cols, b);
    }
};

// For as many blocks as columns: row (t, u) against row (u, t).
void exchangeBlocksAndColumns(Rows all, std::int64_t n)
{
    for (std::int64_t t = 1; t < n; ++t)
        for (std::int64_t u = 0; u < t; ++u)
            all.exchange(t * n + u, u * n + t);
}

// The n rows from the first one on, where the table is that of n * shorter rows.
void reverseRows(Rows all, std::int64_t first, std::int64_t n, const std::uint32_t *reversal,
                 std::int64_t shorter)
{
    for (std::int64_t i = 1; i < n - 1; ++i) {
        const std::int64_t k = reversal[i] / shorter;
        if (i < k)
            all.exchange(first + i, first + k);
    }
}

void reverseGroups(Rows all, std::int64_t rows, const std::uint32_t *reversal)
{
    const std::int64_t blocks = rows / all.cols;
    for (std::int64_t first = 0; first < rows; first += blocks)
        reverseRows(all, first, blocks, reversal, all.cols);
}

} // namespace

void dRotate_V(double *data, std::int64_t rows, std::int64_t cols,
               const std::uint32_t *bitReversalOfRows, double *row)
{
    const Rows all = {data, cols, row};
    mirrorBlocks(data, rows, cols);
    if (rows / cols == cols) {
        exchangeBlocksAndColumns(all, cols);
    } else {
        reverseRows(all, 0, rows, bitReversalOfRows, 1);
        reverseGroups(all, rows, bitReversalOfRows);
    }
}

void dRotate_V_Back(double *data, std::int64_t rows, std::int64_t cols,
                    const std::uint32_t *bitReversalOfRows, double *row)
{
    const Rows all = {data, cols, row};
    if (rows / cols == cols) {
        exchangeBlocksAndColumns(all, cols);
    } else {
        reverseGroups(all, rows, bitReversalOfRows);
        reverseRows(all, 0, rows, bitReversalOfRows, 1);
    }
    mirrorBlocks(data, rows, cols);
}
