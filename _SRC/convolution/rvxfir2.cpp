// rvxfir2: a kernel over an image, the result as large as the image.
//
// Small kernels are summed directly, large ones by transforms of overlapping blocks;
// a count of operations decides, and missing memory does.

#include "convolution/rvxfir2.h"

#include "convolution/rvxfir2_paths.h"
#include "frame/rvxcheck.h"

RVX_MODULE("rvxfir2")

namespace {

bool blocksAreCheaper(const Filter2d &task)
{
    const Filter2dCosts costs = ownFilter2dCosts(task.xCols, task.xRows, task.hCols, task.hRows);
    return costs.blocks < costs.direct;
}

} // namespace

void rvxdFilter2D(const double *x, int xCols, int xRows, const double *h, int hCols, int hRows,
                  double *y)
{
    // The kernel is called a source as well, and rows are spelled so on purpose.
    RVX_REJECT_IF(x == nullptr, "Null SRC buffer pointer");
    RVX_REJECT_IF(h == nullptr, "Null SRC buffer pointer");
    RVX_REJECT_IF(y == nullptr, "Null DST buffer pointer");
    RVX_REJECT_IF(xCols < 1, "Invalid number of cols");
    RVX_REJECT_IF(xRows < 1, "Inlalid number of rows");
    RVX_REJECT_IF(hCols < 1, "Invalid number of cols");
    RVX_REJECT_IF(hRows < 1, "Inlalid number of rows");
    const Filter2d task = {x, xCols, xRows, h, hCols, hRows, y};
    if (!blocksAreCheaper(task) || !ownFilter2dBlocks(task))
        ownFilter2dDirect(task);
}
