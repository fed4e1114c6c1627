// Filtering an image, straight from the definitions.

#ifndef RVX_TEST_FILTER2D_H
#define RVX_TEST_FILTER2D_H

#include <cstddef>
#include <vector>

namespace reference {

struct Array2d {
    int rows;
    int cols;
    std::vector<double> values;

    bool has(int r, int c) const { return r >= 0 && r < rows && c >= 0 && c < cols; }
    double at(int r, int c) const
    {
        return values[static_cast<std::size_t>(r) * static_cast<std::size_t>(cols) +
                      static_cast<std::size_t>(c)];
    }
};

// sum over i, j of h[i][j] x[r + hRows/2 - i][c + hCols/2 - j] in long double.
inline long double filteredValue(const Array2d &x, const Array2d &h, int r, int c)
{
    long double sum = 0.0L;
    for (int i = 0; i < h.rows; ++i)
        for (int j = 0; j < h.cols; ++j) {
            const int row = r + h.rows / 2 - i;
            const int col = c + h.cols / 2 - j;
            if (x.has(row, col))
                sum += static_cast<long double>(h.at(i, j)) * x.at(row, col);
        }
    return sum;
}

// The sums in double: the image from top to bottom and from left to right under the
// turned kernel.
inline std::vector<double> filteredInOrder(const Array2d &x, const Array2d &h)
{
    const Array2d turned = {h.rows, h.cols,
                            std::vector<double>(h.values.rbegin(), h.values.rend())};
    std::vector<double> y;
    for (int r = 0; r < x.rows; ++r)
        for (int c = 0; c < x.cols; ++c) {
            double sum = 0.0;
            for (int i = 0; i < h.rows; ++i)
                for (int j = 0; j < h.cols; ++j) {
                    const int row = r - (h.rows - 1) / 2 + i;
                    const int col = c - (h.cols - 1) / 2 + j;
                    if (x.has(row, col)) {
                        const double product = turned.at(i, j) * x.at(row, col);
                        sum += product;
                    }
                }
            y.push_back(sum);
        }
    return y;
}

} // namespace reference

#endif
