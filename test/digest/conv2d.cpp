// Two-dimensional convolution.

#include "digest.h"

namespace {

struct Shape {
    int xCols, xRows, hCols, hRows;
};

// A sum, one row each, tiles, and one transform: square, wide and high.
const Shape shapes[] = {{1, 1, 1, 1},       {16, 16, 16, 16},  {200, 120, 3, 3},  {130, 90, 7, 7},
                        {5, 300, 6, 4},     {400, 1, 60, 1},   {1, 400, 1, 60},   {20, 20, 20, 20},
                        {100, 60, 90, 40},  {60, 100, 40, 90}, {200, 3, 150, 9},  {3, 200, 9, 150},
                        {200, 150, 31, 31}, {31, 31, 90, 80},  {150, 100, 9, 40}, {150, 100, 40, 9},
                        {100, 100, 1, 50},  {100, 100, 50, 1}, {1, 40, 30, 1}};

} // namespace

RVX_DIGEST(rvxdConv2D)
{
    FixedData data(520);
    for (const Shape &s : shapes) {
        const std::vector<double> x = data.samples(s.xCols * s.xRows);
        std::vector<double> h = data.samples(s.hCols * s.hRows);
        h[h.size() / 2] = 0.0;
        std::vector<double> y(static_cast<std::size_t>(s.xCols + s.hCols - 1) *
                              static_cast<std::size_t>(s.xRows + s.hRows - 1));
        rvxdConv2D(x.data(), s.xCols, s.xRows, h.data(), s.hCols, s.hRows, y.data());
        digest.add(y);
    }
}
