// Filtering by overlap-save: blocks of the image, each convolved circularly with the
// kernel, of which the part that no wrapping touched is kept.
//
// T. G. Stockham, High-speed convolution and correlation, 1966.

#include <algorithm>
#include <cstring>

#include "convolution/rvxfir2_block.h"
#include "convolution/rvxfir2_paths.h"
#include "frame/rvxbuffer.h"
#include "frame/rvxlanes.h"
#include "transform/rvxmisc.h"
#include "transform/rvxtwd.h"

namespace {

struct Buffers {
    ZCplx *filter;
    ZCplx *tile;
    ZCplx *factors;
};

int orderOf(std::int64_t n)
{
    return __builtin_ctzll(static_cast<unsigned long long>(n));
}

// Null when there is no memory for them or a count of them does not fit 32 bits.
ZCplx *allocValues(std::uint64_t n)
{
    return n <= UINT32_MAX ? rvxAllocZCplx(static_cast<std::uint32_t>(n)) : nullptr;
}

// False when a table is refused. None is reported: there is another way.
bool findTables(Filter2dBlock &block, ZCplx *factors)
{
    const ZCplx *lineTbl = rvxFindFftTwdTbl(block.lineOrder + 1);
    block.columnTbl = rvxFindFftTwdTbl(block.rowsOrder);
    block.lineTblDif = rvxGetFftTwdDif(block.lineOrder);
    block.lineTblDit = rvxGetFftTwdDit(block.lineOrder);
    if (lineTbl == nullptr || block.columnTbl == nullptr || block.lineTblDif == nullptr ||
        block.lineTblDit == nullptr)
        return false;
    ownFilter2dFactors(block, lineTbl, factors);
    block.factors = factors;
    return true;
}

// The part of a range of `len` from `start` that lies within 0 and `end`.
struct Range {
    std::int64_t first;
    std::int64_t len;
    std::int64_t skipped; // before it
};

Range inside(std::int64_t start, std::int64_t len, std::int64_t end)
{
    const std::int64_t first = std::max<std::int64_t>(0, start);
    const std::int64_t last = std::min(end, start + len);
    return {first, std::max<std::int64_t>(0, last - first), first - start};
}

// The block of the image that starts at this place, zeros outside.
void loadTile(const Filter2d &task, const Filter2dBlock &block, std::int64_t row, std::int64_t col,
              double *tile)
{
    const std::int64_t blockCols = 2 * block.n;
    const Range rows = inside(row, block.rows, task.xRows);
    const Range cols = inside(col, blockCols, task.xCols);
    if (rows.len < block.rows || cols.len < blockCols)
        std::fill_n(tile, block.rows * blockCols, 0.0);
    for (std::int64_t r = 0; r < rows.len; ++r)
        std::memcpy(tile + (rows.skipped + r) * blockCols + cols.skipped,
                    task.x + (rows.first + r) * task.xCols + cols.first,
                    static_cast<std::size_t>(cols.len) * sizeof(double));
}

RVX_KERNEL void scaleRow(const double *src, double *dst, std::int64_t n, double scale)
{
    for (std::int64_t i = 0; i < n; ++i)
        dst[i] = src[i] * scale;
}

void filterBlocks(const Filter2d &task, const Filter2dBlock &block, const Buffers &buffers)
{
    const std::int64_t blockCols = 2 * block.n;
    const std::int64_t stepRows = block.rows - task.hRows + 1;
    const std::int64_t stepCols = blockCols - task.hCols + 1;
    const double scale = 1.0 / static_cast<double>(block.rows * blockCols);
    double *tile = &buffers.tile->re;
    const Filter2d kernel = {task.h, task.hCols, task.hRows, nullptr, 0, 0, nullptr};
    loadTile(kernel, block, 0, 0, &buffers.filter->re);
    ownFilter2dSpectrum(block, buffers.filter, task.hRows);
    for (std::int64_t row = 0; row < task.xRows; row += stepRows)
        for (std::int64_t col = 0; col < task.xCols; col += stepCols) {
            loadTile(task, block, row - (task.hRows - 1) + task.hRows / 2,
                     col - (task.hCols - 1) + task.hCols / 2, tile);
            ownFilter2dConvolve(block, buffers.tile, buffers.filter, task.hRows - 1);
            const std::int64_t rows = std::min(stepRows, task.xRows - row);
            const std::int64_t cols = std::min(stepCols, task.xCols - col);
            for (std::int64_t r = 0; r < rows; ++r)
                scaleRow(tile + (task.hRows - 1 + r) * blockCols + task.hCols - 1,
                         task.y + (row + r) * task.xCols + col, cols, scale);
        }
}

} // namespace

bool ownFilter2dBlocks(const Filter2d &task)
{
    Filter2dBlock block = {};
    block.rows = ownFilter2dBlockLen(task.hRows);
    block.n = ownFilter2dBlockLen(task.hCols) / 2;
    block.rowsOrder = orderOf(block.rows);
    block.lineOrder = orderOf(block.n);
    const Buffers buffers = {allocValues(block.len()), allocValues(block.len()),
                             allocValues(static_cast<std::uint64_t>(block.n))};
    const bool possible = buffers.filter != nullptr && buffers.tile != nullptr &&
                          buffers.factors != nullptr && findTables(block, buffers.factors);
    if (possible)
        filterBlocks(task, block, buffers);
    rvxFreeAligned(buffers.filter);
    rvxFreeAligned(buffers.tile);
    rvxFreeAligned(buffers.factors);
    return possible;
}
