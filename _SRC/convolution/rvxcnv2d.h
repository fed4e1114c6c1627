// The parts of two-dimensional convolution. Matrices are row-major.

#ifndef RVXCNV2D_H
#define RVXCNV2D_H

#include <cstdint>

// Sizes are 32-bit counts; what is computed from them is wider.
struct Matrix {
    const double *data;
    std::int64_t cols;
    std::int64_t rows;
};

enum class Conv2dRoute { direct, oneDimensional, overlap, whole };

// Depends on nothing but the sizes.
Conv2dRoute rvxChooseConv2dRoute(Matrix x, Matrix h);

// The transform's size when the other operand is cut into tiles of half of it.
struct Conv2dBlock {
    std::int64_t rows;
    std::int64_t cols;
};

Conv2dBlock rvxChooseConv2dBlock(Matrix small);

// The sum over the coefficients of the narrower operand in their order; those that
// are zero or NaN are passed over.
void rvxdConv2DDirect(Matrix x, Matrix h, double *y);

// ---------------------------------------------------------------------------
// Hartley transforms

// What a transform of lines of 2^order values needs.
struct HartleyTables {
    int order;
    std::uint32_t *reversal; // of the low bits of each index
    double *sine;            // sin(2 pi i / n) for i up to n/4
    double *lines;           // room for RVX_HARTLEY_LINES lines, value by value
};

enum { RVX_HARTLEY_LINES = 8 };

// False, and nothing is held, when there is no memory.
bool rvxMakeHartleyTables(HartleyTables &tables, int order);
void rvxFreeHartleyTables(HartleyTables &tables);

// The tables of an array of R rows by W columns: alongRow for its rows, of length
// W, and alongCol for its columns, which share them when R is W.
struct HartleyPlan {
    HartleyTables alongRow;
    HartleyTables alongCol;
    std::int64_t rows() const { return std::int64_t{1} << alongCol.order; }
    std::int64_t cols() const { return std::int64_t{1} << alongRow.order; }
};

bool rvxMakeHartleyPlan(HartleyPlan &plan, int rowOrder, int colOrder);
void rvxFreeHartleyPlan(HartleyPlan &plan);

// The top left of an array that is zero elsewhere; every element counts times the
// factor.
struct HartleyInput {
    const double *data;
    std::int64_t stride;
    std::int64_t rows;
    std::int64_t cols;
    double factor;
};

// The transform of the input along its rows, then along its columns. All of the
// array is written; the input may be its top left.
void rvxHartley2d(const HartleyPlan &plan, HartleyInput in, double *array);

// ---------------------------------------------------------------------------
// Rearrangement

// Arrays with more rows than columns. After dRotate_V every run of `rows` values is
// a column, and the runs stand in some order; dRotate_V_Back undoes it. `row` is
// room for one row.
void dRotate_V(double *data, std::int64_t rows, std::int64_t cols,
               const std::uint32_t *bitReversalOfRows, double *row);
void dRotate_V_Back(double *data, std::int64_t rows, std::int64_t cols,
                    const std::uint32_t *bitReversalOfRows, double *row);

// ---------------------------------------------------------------------------
// Product of transforms

// product = what the transform of the convolution is made from, for transforms a
// and b of R by W values. All three are different arrays.
void rvxHartleyProduct(const double *a, const double *b, double *product, std::int64_t rows,
                       std::int64_t cols);

// The last pass: from the transform of such a product to the convolution.
void rvxHartleyUnfold(double *array, std::int64_t rows, std::int64_t cols);

// c = the circular convolution of a and b, arrays of 2^rowOrder rows and 2^colOrder
// columns, when b has been multiplied by 0.5 / (rows cols). Both are overwritten.
// Without memory for the tables it reports so, and c is cleared.
void owndHftConv2d(double *a, double *b, int rowOrder, int colOrder, double *c);

// The convolution by tiles of the larger operand, which covers the smaller one in
// both dimensions. Without memory it reports so and writes nothing.
void owndOverlapConv2d(const double *x, int xCols, int xRows, const double *h, int hCols, int hRows,
                       double *y);

#endif
