// The two-dimensional filter, on either side of the choice between sums and blocks.

#include "digest.h"

RVX_DIGEST(rvxdFilter2D)
{
    struct Sizes {
        int xCols, xRows, hCols, hRows;
    };
    const Sizes all[] = {{1, 1, 1, 1},     {5, 4, 3, 3},    {23, 19, 4, 5},  {37, 26, 7, 7},
                         {3, 9, 11, 2},    {50, 20, 2, 9},  {95, 64, 9, 9},  {60, 50, 17, 17},
                         {70, 50, 9, 20},  {3, 150, 2, 33}, {150, 3, 33, 2}, {90, 130, 1, 64},
                         {130, 90, 64, 1}, {33, 40, 33, 31}};
    FixedData data(88);
    for (const Sizes &s : all) {
        const std::vector<double> x = data.samples(s.xCols * s.xRows);
        const std::vector<double> h = data.samples(s.hCols * s.hRows);
        std::vector<double> y(x.size());
        rvxdFilter2D(x.data(), s.xCols, s.xRows, h.data(), s.hCols, s.hRows, y.data());
        digest.add(y);
    }
}
