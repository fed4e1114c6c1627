#include "peer_conv2d.h"

#include <cstddef>

namespace fast {

namespace {

using Vector = double __attribute__((vector_size(32)));
typedef double VectorMem __attribute__((vector_size(32), aligned(8), may_alias));

Vector load(const double *p)
{
    return *reinterpret_cast<const VectorMem *>(p);
}

void store(double *p, Vector v)
{
    *reinterpret_cast<VectorMem *>(p) = v;
}

// Rows of outputs by vectors of outputs, all in registers; an input vector is loaded
// once for all the rows that it counts in.
template <int K, int Rows, int Vectors>
void tile(const double *x, std::ptrdiff_t n, const double *taps, double *y, std::ptrdiff_t outCols)
{
    Vector sums[Rows][Vectors] = {};
#pragma GCC unroll 16
    for (int i = 0; i < Rows + K - 1; ++i)
#pragma GCC unroll 8
        for (int c = 0; c < K; ++c)
#pragma GCC unroll 4
            for (int v = 0; v < Vectors; ++v) {
                const Vector in = load(x + (i - K + 1) * n - c + 4 * v);
#pragma GCC unroll 8
                for (int r = 0; r < Rows; ++r) {
                    const int row = r + K - 1 - i;
                    if (row >= 0 && row < K)
                        sums[r][v] += in * taps[row * K + c];
                }
            }
    for (int r = 0; r < Rows; ++r)
        for (int v = 0; v < Vectors; ++v)
            store(y + r * outCols + 4 * v, sums[r][v]);
}

// An output near an edge.
template <int K>
double clipped(const double *x, int n, const double *taps, int row, int col)
{
    double sum = 0.0;
    for (int r = 0; r < K; ++r)
        for (int c = 0; c < K; ++c)
            if (row - r >= 0 && row - r < n && col - c >= 0 && col - c < n)
                sum += x[(row - r) * n + col - c] * taps[r * K + c];
    return sum;
}

template <int K, int Rows, int Vectors>
void convolveBy(const double *x, int n, const double *taps, double *y)
{
    const int outCols = n + K - 1;
    int row = K - 1;
    for (; row + Rows <= n; row += Rows) {
        int col = K - 1;
        for (; col + 4 * Vectors <= n; col += 4 * Vectors)
            tile<K, Rows, Vectors>(x + row * n + col, n, taps, y + row * outCols + col, outCols);
        if (col < n) // once more, up to the last column
            tile<K, Rows, Vectors>(x + row * n + n - 4 * Vectors, n, taps,
                                   y + row * outCols + n - 4 * Vectors, outCols);
        for (int r = row; r < row + Rows; ++r)
            for (int c = 0; c < K - 1; ++c) {
                y[r * outCols + c] = clipped<K>(x, n, taps, r, c);
                y[r * outCols + n + c] = clipped<K>(x, n, taps, r, n + c);
            }
    }
    for (int r = 0; r < outCols; r = r + 1 == K - 1 ? row : r + 1)
        for (int c = 0; c < outCols; ++c)
            y[r * outCols + c] = clipped<K>(x, n, taps, r, c);
}

} // namespace

void convolve(const double *x, int n, const double *kernel, int kernelSize, double *y)
{
    if (kernelSize == 3)
        convolveBy<3, 4, 2>(x, n, kernel, y);
    else
        convolveBy<7, 4, 2>(x, n, kernel, y);
}

} // namespace fast
