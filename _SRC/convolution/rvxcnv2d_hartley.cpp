// rvxcnv2d: the Hartley transform of real arrays, H[k] = sum of
// v[m] (cos(2 pi k m / n) + sin(2 pi k m / n)), by decimation in time (Bracewell
// 1984), along the rows and then along the columns.
//
// Eight lines are transformed side by side in lanes, so all factors are plain
// numbers for every lane and columns need not be moved together: a vector is part
// of one row. Lines stand in bit-reversed order in a buffer, value by value, which
// rows are transposed into; two stages are made in one sweep over it.

#include <algorithm>
#include <cmath>

#include "convolution/rvxcnv2d.h"
#include "frame/rvxbuffer.h"
#include "frame/rvxcheck.h"
#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"

RVX_MODULE("rvxcnv2d")

namespace {

// ---------------------------------------------------------------------------
// Tables

void fillReversal(std::uint32_t *reversal, std::int64_t n)
{
    reversal[0] = 0;
    for (std::int64_t i = 1; i < n; ++i)
        reversal[i] = reversal[i / 2] / 2 + (i % 2 != 0 ? static_cast<std::uint32_t>(n / 2) : 0);
}

// One rotation, taken from both ends of the quarter wave; its error grows with n,
// and every result rests on these very values.
void fillSine(double *t, std::int64_t n)
{
    const Extended pi = 3.14159265358979323846264338327950288L;
    const std::int64_t half = n / 2;
    const Extended angle = pi / static_cast<Extended>(half);
    const auto s = static_cast<double>(std::sin(angle));
    const auto c = static_cast<double>(std::cos(angle));
    const std::int64_t quarter = n / 4;
    t[0] = 0.0;
    t[quarter] = n < 4 ? 0.0 : 1.0;
    for (std::int64_t i = 0; i + 1 <= quarter / 2; ++i) {
        const double sine = t[i];
        const double cosine = t[quarter - i];
        t[i + 1] = sine * c + cosine * s;
        t[quarter - i - 1] = cosine * c - sine * s;
    }
}

// ---------------------------------------------------------------------------
// Stages. Value k of the four lines of a half stands at line + k * RVX_HARTLEY_LINES.

struct Lines {
    double *line;

    RVX_INLINE Lanes load(std::int64_t k) const { return loadLanes(line + k * RVX_HARTLEY_LINES); }
    RVX_INLINE void store(std::int64_t k, Lanes v) const
    {
        storeLanes(line + k * RVX_HARTLEY_LINES, v);
    }
};

RVX_INLINE void sumDiff(Lanes &a, Lanes &b)
{
    const Lanes difference = a - b;
    a = a + b;
    b = difference;
}

// Elements j, L - j, L + j and 2L - j of a group of 2L.
RVX_INLINE void butterfly(Lanes &a, Lanes &b, Lanes &c, Lanes &d, Lanes sine, Lanes cosine)
{
    const Lanes fromD = d * cosine - sine * c;
    const Lanes fromC = c * cosine + sine * d;
    d = b + fromD;
    c = a - fromC;
    a = a + fromC;
    b = b - fromD;
}

RVX_INLINE void transform2(Lines v)
{
    Lanes a = v.load(0), b = v.load(1);
    sumDiff(a, b);
    v.store(0, a);
    v.store(1, b);
}

RVX_INLINE void transform4(Lines v)
{
    Lanes a = v.load(0), b = v.load(1), c = v.load(2), d = v.load(3);
    sumDiff(a, b);
    sumDiff(c, d);
    sumDiff(a, c);
    sumDiff(b, d);
    v.store(0, a);
    v.store(1, b);
    v.store(2, c);
    v.store(3, d);
}

// Three stages on eight neighbours.
RVX_INLINE void transform8(Lines v)
{
    const Lanes root2 = allLanes(1.4142135623730951);
    Lanes s0 = v.load(0), d0 = v.load(1), s1 = v.load(2), d1 = v.load(3);
    Lanes s2 = v.load(4), d2 = v.load(5), s3 = v.load(6), d3 = v.load(7);
    sumDiff(s0, d0);
    sumDiff(s1, d1);
    sumDiff(s2, d2);
    sumDiff(s3, d3);
    sumDiff(s0, s1);
    sumDiff(s2, s3);
    sumDiff(d0, d1);
    Lanes p = root2 * d2, q = root2 * d3;
    sumDiff(s0, s2);
    sumDiff(s1, s3);
    sumDiff(d0, p);
    sumDiff(d1, q);
    v.store(0, s0);
    v.store(1, d0);
    v.store(2, s1);
    v.store(3, d1);
    v.store(4, s2);
    v.store(5, p);
    v.store(6, s3);
    v.store(7, q);
}

// The sines and cosines of one stage: of j / 2L circles.
struct Angles {
    const double *sine;
    std::int64_t quarter;
    std::int64_t step;

    RVX_INLINE Lanes sineAt(std::int64_t j) const { return allLanes(sine[j * step]); }
    RVX_INLINE Lanes cosineAt(std::int64_t j) const { return allLanes(sine[quarter - j * step]); }
};

// Elements a and b of a group, which meet without a factor.
RVX_INLINE void plainPair(Lines v, std::int64_t a, std::int64_t b)
{
    Lanes x = v.load(a), y = v.load(b);
    sumDiff(x, y);
    v.store(a, x);
    v.store(b, y);
}

// One stage from groups of L to groups of 2L values.
RVX_INLINE void mergeStage(Lines v, std::int64_t L, Angles angles)
{
    plainPair(v, 0, L);
    plainPair(v, L / 2, L + L / 2);
    for (std::int64_t j = 1; j < L / 2; ++j) {
        Lanes a = v.load(j), b = v.load(L - j), c = v.load(L + j), d = v.load(2 * L - j);
        butterfly(a, b, c, d, angles.sineAt(j), angles.cosineAt(j));
        v.store(j, a);
        v.store(L - j, b);
        v.store(L + j, c);
        v.store(2 * L - j, d);
    }
}

// The elements 0, L, 2L and 3L of two stages.
RVX_INLINE void mergeFirst(Lines v, std::int64_t L)
{
    Lanes a = v.load(0), b = v.load(L), c = v.load(2 * L), d = v.load(3 * L);
    sumDiff(a, b);
    sumDiff(c, d);
    sumDiff(a, c);
    sumDiff(b, d);
    v.store(0, a);
    v.store(L, b);
    v.store(2 * L, c);
    v.store(3 * L, d);
}

// L/2 behind each of these.
RVX_INLINE void mergeMiddle(Lines v, std::int64_t L, Angles outer)
{
    const std::int64_t j = L / 2;
    Lanes a = v.load(j), b = v.load(L + j), c = v.load(2 * L + j), d = v.load(3 * L + j);
    sumDiff(a, b);
    sumDiff(c, d);
    butterfly(a, b, c, d, outer.sineAt(j), outer.cosineAt(j));
    v.store(j, a);
    v.store(L + j, b);
    v.store(2 * L + j, c);
    v.store(3 * L + j, d);
}

// Two stages from groups of L to groups of 4L values in one sweep: the first makes
// a to d and e to h, the second joins them.
RVX_INLINE void mergeTwoStages(Lines v, std::int64_t L, Angles inner, Angles outer)
{
    mergeFirst(v, L);
    mergeMiddle(v, L, outer);
    for (std::int64_t j = 1; j < L / 2; ++j) {
        Lanes a = v.load(j), b = v.load(L - j), c = v.load(L + j), d = v.load(2 * L - j);
        Lanes e = v.load(2 * L + j), f = v.load(3 * L - j);
        Lanes g = v.load(3 * L + j), h = v.load(4 * L - j);
        const Lanes sine = inner.sineAt(j), cosine = inner.cosineAt(j);
        butterfly(a, b, c, d, sine, cosine);
        butterfly(e, f, g, h, sine, cosine);
        butterfly(a, d, e, h, outer.sineAt(j), outer.cosineAt(j));
        butterfly(b, c, f, g, outer.sineAt(L - j), outer.cosineAt(L - j));
        v.store(j, a);
        v.store(L - j, b);
        v.store(L + j, c);
        v.store(2 * L - j, d);
        v.store(2 * L + j, e);
        v.store(3 * L - j, f);
        v.store(3 * L + j, g);
        v.store(4 * L - j, h);
    }
}

RVX_INLINE void startingStages(Lines v, int order)
{
    const std::int64_t n = std::int64_t{1} << order;
    if (order == 1)
        transform2(v);
    else if (order == 2)
        transform4(v);
    else
        for (std::int64_t g = 0; g < n; g += 8)
            transform8({v.line + g * RVX_HARTLEY_LINES});
}

// Four lines in bit-reversed order.
RVX_INLINE void transformLines(Lines v, const HartleyTables &tables)
{
    const std::int64_t n = std::int64_t{1} << tables.order;
    startingStages(v, tables.order);
    std::int64_t L = 8;
    for (; 4 * L <= n; L *= 4) {
        const Angles inner = {tables.sine, n / 4, n / (2 * L)};
        const Angles outer = {tables.sine, n / 4, n / (4 * L)};
        for (std::int64_t g = 0; g < n; g += 4 * L)
            mergeTwoStages({v.line + g * RVX_HARTLEY_LINES}, L, inner, outer);
    }
    if (2 * L <= n)
        mergeStage(v, L, {tables.sine, n / 4, 1});
}

// The eight lines of the tables' buffer.
RVX_INLINE void transformBuffer(const HartleyTables &tables)
{
    transformLines({tables.lines}, tables);
    transformLines({tables.lines + 4}, tables);
}

// ---------------------------------------------------------------------------
// Rows

// Up to eight rows; where there are fewer, the last stands for the missing ones.
struct EightRows {
    const double *row[RVX_HARTLEY_LINES];
};

RVX_INLINE EightRows eightRows(const double *first, std::int64_t stride, std::int64_t count)
{
    EightRows rows = {};
    for (std::int64_t i = 0; i < RVX_HARTLEY_LINES; ++i)
        rows.row[i] = first + std::min(i, count - 1) * stride;
    return rows;
}

// Elements k to k+3 of four rows, times the factor, to four places of the buffer.
RVX_INLINE void loadFour(const double *const *row, std::int64_t k, Lanes factor, double *lines,
                         const std::uint32_t *reversal)
{
    Lanes a = loadLanes(row[0] + k), b = loadLanes(row[1] + k);
    Lanes c = loadLanes(row[2] + k), d = loadLanes(row[3] + k);
    transposeLanes(a, b, c, d);
    storeLanes(lines + std::int64_t{reversal[k]} * RVX_HARTLEY_LINES, a * factor);
    storeLanes(lines + std::int64_t{reversal[k + 1]} * RVX_HARTLEY_LINES, b * factor);
    storeLanes(lines + std::int64_t{reversal[k + 2]} * RVX_HARTLEY_LINES, c * factor);
    storeLanes(lines + std::int64_t{reversal[k + 3]} * RVX_HARTLEY_LINES, d * factor);
}

RVX_INLINE void loadRows(const HartleyTables &tables, const EightRows &rows, std::int64_t cols,
                         double factor)
{
    const std::int64_t n = std::int64_t{1} << tables.order;
    const Lanes factors = allLanes(factor);
    std::int64_t k = 0;
    for (; k + 4 <= cols; k += 4) {
        loadFour(rows.row, k, factors, tables.lines, tables.reversal);
        loadFour(rows.row + 4, k, factors, tables.lines + 4, tables.reversal);
    }
    for (; k < n; ++k) {
        double *to = tables.lines + std::int64_t{tables.reversal[k]} * RVX_HARTLEY_LINES;
        for (std::int64_t i = 0; i < RVX_HARTLEY_LINES; ++i)
            to[i] = k < cols ? rows.row[i][k] * factor : 0.0;
    }
}

// Four lines of the buffer to four rows.
RVX_INLINE void storeFour(const double *lines, std::int64_t n, double *to, std::int64_t stride)
{
    for (std::int64_t k = 0; k < n; k += 4) {
        const double *at = lines + k * RVX_HARTLEY_LINES;
        Lanes a = loadLanes(at), b = loadLanes(at + RVX_HARTLEY_LINES);
        Lanes c = loadLanes(at + 2 * RVX_HARTLEY_LINES), d = loadLanes(at + 3 * RVX_HARTLEY_LINES);
        transposeLanes(a, b, c, d);
        storeLanes(to + k, a);
        storeLanes(to + stride + k, b);
        storeLanes(to + 2 * stride + k, c);
        storeLanes(to + 3 * stride + k, d);
    }
}

RVX_INLINE void storeRows(const double *lines, std::int64_t n, double *to, std::int64_t stride,
                          std::int64_t count)
{
    if (count == RVX_HARTLEY_LINES && n >= 4) {
        storeFour(lines, n, to, stride);
        storeFour(lines + 4, n, to + 4 * stride, stride);
        return;
    }
    for (std::int64_t i = 0; i < count; ++i)
        for (std::int64_t k = 0; k < n; ++k)
            to[i * stride + k] = lines[k * RVX_HARTLEY_LINES + i];
}

// The rows of the input, as lines of the tables' length, to the array's first rows.
RVX_KERNEL void hartleyRows(const HartleyTables &tables, const HartleyInput &in, double *array)
{
    const std::int64_t n = std::int64_t{1} << tables.order;
    for (std::int64_t r = 0; r < in.rows; r += RVX_HARTLEY_LINES) {
        const std::int64_t count = std::min<std::int64_t>(RVX_HARTLEY_LINES, in.rows - r);
        loadRows(tables, eightRows(in.data + r * in.stride, in.stride, count), in.cols, in.factor);
        transformBuffer(tables);
        storeRows(tables.lines, n, array + r * n, n, count);
    }
}

// ---------------------------------------------------------------------------
// Columns

// `count` neighbouring values to their place in the buffer.
RVX_INLINE void copyAcross(double *to, const double *from, std::int64_t count)
{
    if (count == RVX_HARTLEY_LINES) {
        storeLanes(to, loadLanes(from));
        storeLanes(to + 4, loadLanes(from + 4));
    } else {
        for (std::int64_t i = 0; i < count; ++i)
            to[i] = from[i];
    }
}

RVX_INLINE void loadColumns(const HartleyTables &tables, const double *top, std::int64_t stride,
                            std::int64_t count, std::int64_t usedRows)
{
    const std::int64_t n = std::int64_t{1} << tables.order;
    const Lanes zero = allLanes(0.0);
    for (std::int64_t r = 0; r < n; ++r) {
        double *to = tables.lines + std::int64_t{tables.reversal[r]} * RVX_HARTLEY_LINES;
        if (r >= usedRows || count < RVX_HARTLEY_LINES) {
            storeLanes(to, zero);
            storeLanes(to + 4, zero);
        }
        if (r < usedRows)
            copyAcross(to, top + r * stride, count);
    }
}

// All columns of an array whose rows from usedRows on count as zeros.
RVX_KERNEL void hartleyColumns(const HartleyTables &tables, double *array, std::int64_t cols,
                               std::int64_t usedRows)
{
    const std::int64_t n = std::int64_t{1} << tables.order;
    for (std::int64_t c = 0; c < cols; c += RVX_HARTLEY_LINES) {
        const std::int64_t count = std::min<std::int64_t>(RVX_HARTLEY_LINES, cols - c);
        loadColumns(tables, array + c, cols, count, usedRows);
        transformBuffer(tables);
        for (std::int64_t r = 0; r < n; ++r)
            copyAcross(array + r * cols + c, tables.lines + r * RVX_HARTLEY_LINES, count);
    }
}

// Room for a row, or a report in the name of who needs it.
double *rowFor(const char *func, std::int64_t cols)
{
    double *row = rvxAllocDoubles(static_cast<std::uint32_t>(cols));
    if (row == nullptr)
        RVX_REPORT_AS(func, RVX_STATUS_NO_MEMORY, "\nMemory allocation problem\n");
    return row;
}

// With its columns in one piece each, an array of more rows than columns is an array
// of runs, transformed as rows are. The lanes need no such runs, and moving columns
// together and back changes no value: it is done only where one of the two must be
// left out for want of memory, for what that makes of the array is part of the
// contract.
void hartleyTallColumns(const HartleyPlan &plan, double *array, std::int64_t usedRows)
{
    const std::int64_t rows = plan.rows();
    const std::int64_t cols = plan.cols();
    double *there = rowFor("dRotate_V", cols);
    double *back = rowFor("dRotate_V_Back", cols);
    if (there != nullptr && back != nullptr) {
        hartleyColumns(plan.alongCol, array, cols, usedRows);
    } else {
        std::fill(array + usedRows * cols, array + rows * cols, 0.0);
        if (there != nullptr)
            dRotate_V(array, rows, cols, plan.alongCol.reversal, there);
        hartleyRows(plan.alongCol, {array, rows, cols, rows, 1.0}, array);
        if (back != nullptr)
            dRotate_V_Back(array, rows, cols, plan.alongCol.reversal, back);
    }
    rvxFreeAligned(there);
    rvxFreeAligned(back);
}

} // namespace

bool rvxMakeHartleyTables(HartleyTables &tables, int order)
{
    tables = {order, nullptr, nullptr, nullptr};
    const std::int64_t n = std::int64_t{1} << order;
    const std::int64_t doubles = n / 4 + 1 + 3 + n * RVX_HARTLEY_LINES;
    if (doubles > UINT32_MAX)
        return false;
    tables.reversal = rvxAllocWords(static_cast<std::uint32_t>(n));
    if (tables.reversal != nullptr)
        tables.sine = rvxAllocDoubles(static_cast<std::uint32_t>(doubles));
    if (tables.sine == nullptr) {
        rvxFreeHartleyTables(tables);
        return false;
    }
    fillReversal(tables.reversal, n);
    fillSine(tables.sine, n);
    tables.lines = tables.sine + (n / 4 + 1 + 3) / 4 * 4;
    return true;
}

void rvxFreeHartleyTables(HartleyTables &tables)
{
    rvxDropBuffer(tables.sine);
    rvxDropBuffer(tables.reversal);
}

bool rvxMakeHartleyPlan(HartleyPlan &plan, int rowOrder, int colOrder)
{
    if (!rvxMakeHartleyTables(plan.alongRow, colOrder))
        return false;
    plan.alongCol = plan.alongRow;
    if (rowOrder == colOrder || rvxMakeHartleyTables(plan.alongCol, rowOrder))
        return true;
    rvxFreeHartleyTables(plan.alongRow);
    return false;
}

void rvxFreeHartleyPlan(HartleyPlan &plan)
{
    if (plan.alongCol.order != plan.alongRow.order)
        rvxFreeHartleyTables(plan.alongCol);
    rvxFreeHartleyTables(plan.alongRow);
}

// Rows of zeros have transforms of zeros, +0.0 all of them, and are left out.
void rvxHartley2d(const HartleyPlan &plan, HartleyInput in, double *array)
{
    hartleyRows(plan.alongRow, in, array);
    if (plan.rows() > plan.cols())
        hartleyTallColumns(plan, array, in.rows);
    else
        hartleyColumns(plan.alongCol, array, plan.cols(), in.rows);
}
