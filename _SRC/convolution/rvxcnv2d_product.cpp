// rvxcnv2d: from the transforms of two arrays to their convolution.
//
// A transform along rows and columns has the kernel cas(u) cas(v), with cas = cos +
// sin, whose convolution theorem joins the four points (r, c), (-r, c), (r, -c) and
// (-r, -c) of both transforms; on the axes of symmetry two of them meet or all. Half
// of the theorem's work is a map of the four points to themselves, which is put off
// until after the transform back, where it is the last pass.

#include <utility>

#include "convolution/rvxcnv2d.h"
#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"

namespace {

// The values at p = (r, c), q = (-r, c), s = (r, -c) and t = (-r, -c).
template <typename Value>
struct Four {
    Value p, q, s, t;
};

// Four times four: c to c + 3, and their mirror images read backwards.
RVX_INLINE Four<Lanes> loadFour(const double *row, const double *mirrorRow, std::int64_t c,
                                std::int64_t mirror)
{
    return {loadLanes(row + c), loadLanes(mirrorRow + c), reversed(loadLanes(row + mirror - 3)),
            reversed(loadLanes(mirrorRow + mirror - 3))};
}

RVX_INLINE void storeFour(double *row, double *mirrorRow, std::int64_t c, std::int64_t mirror,
                          Four<Lanes> v)
{
    storeLanes(row + c, v.p);
    storeLanes(mirrorRow + c, v.q);
    storeLanes(row + mirror - 3, reversed(v.s));
    storeLanes(mirrorRow + mirror - 3, reversed(v.t));
}

RVX_INLINE Four<double> loadOne(const double *row, const double *mirrorRow, std::int64_t c,
                                std::int64_t mirror)
{
    return {row[c], mirrorRow[c], row[mirror], mirrorRow[mirror]};
}

RVX_INLINE void storeOne(double *row, double *mirrorRow, std::int64_t c, std::int64_t mirror,
                         Four<double> v)
{
    row[c] = v.p;
    mirrorRow[c] = v.q;
    row[mirror] = v.s;
    mirrorRow[mirror] = v.t;
}

RVX_INLINE Lanes halfOf(Lanes x)
{
    return x * allLanes(0.5);
}

RVX_INLINE double halfOf(double x)
{
    return x * 0.5;
}

template <typename Value>
RVX_INLINE Four<Value> product(Four<Value> a, Four<Value> b)
{
    const Value e = halfOf(a.q + a.p + a.s + a.t);
    const Value d1 = b.p - b.t, d2 = b.s - b.q;
    const Value s1 = b.q + b.s, s2 = b.p + b.t;
    return {d1 * (e - a.p) + s1 * (e - a.t), (e - a.s) * s2 - d2 * (e - a.q),
            d2 * (e - a.s) + (e - a.q) * s2, (e - a.p) * s1 - d1 * (e - a.t)};
}

template <typename Value>
RVX_INLINE Four<Value> unfolded(Four<Value> o)
{
    const Value e = halfOf(o.p + o.q + o.s + o.t);
    return {e - o.t, e - o.s, e - o.q, e - o.p};
}

// Two points of an axis that mirror each other.
RVX_INLINE void axisProduct(const double *a, const double *b, double *o, std::int64_t p,
                            std::int64_t m)
{
    const double u = b[p] * a[p] - b[m] * a[m];
    const double w = b[m] * a[p] + a[m] * b[p];
    o[p] = u + w;
    o[m] = w - u;
}

// Row 0 or the middle one: its ends and the pairs between.
RVX_INLINE void axisRow(const double *a, const double *b, double *o, std::int64_t cols)
{
    for (std::int64_t c : {std::int64_t{0}, cols / 2})
        o[c] = a[c] * b[c] * 2.0;
    for (std::int64_t c = 1; c < cols / 2; ++c)
        axisProduct(a, b, o, c, cols - c);
}

// Row r and its mirror image.
RVX_INLINE void rowPairProduct(const double *a, const double *b, double *o, std::int64_t up,
                               std::int64_t down, std::int64_t cols)
{
    axisProduct(a, b, o, up, down);
    axisProduct(a, b, o, up + cols / 2, down + cols / 2);
    const std::int64_t end = cols / 2;
    std::int64_t c = 1;
    for (; c + 4 <= end; c += 4)
        storeFour(o + up, o + down, c, cols - c,
                  product(loadFour(a + up, a + down, c, cols - c),
                          loadFour(b + up, b + down, c, cols - c)));
    if (end >= 5) { // the last four, some of them for the second time
        c = end - 4;
        storeFour(o + up, o + down, c, cols - c,
                  product(loadFour(a + up, a + down, c, cols - c),
                          loadFour(b + up, b + down, c, cols - c)));
        return;
    }
    for (; c < end; ++c)
        storeOne(o + up, o + down, c, cols - c,
                 product(loadOne(a + up, a + down, c, cols - c),
                         loadOne(b + up, b + down, c, cols - c)));
}

RVX_KERNEL void hartleyProduct(const double *a, const double *b, double *o, std::int64_t rows,
                               std::int64_t cols)
{
    for (std::int64_t r : {std::int64_t{0}, rows / 2})
        axisRow(a + r * cols, b + r * cols, o + r * cols, cols);
    for (std::int64_t r = 1; r < rows / 2; ++r)
        rowPairProduct(a, b, o, r * cols, (rows - r) * cols, cols);
}

// The last four are read before and written behind all others, which they overlap.
RVX_INLINE void unfoldRowPair(double *up, double *down, std::int64_t cols)
{
    const std::int64_t end = cols / 2;
    std::int64_t c = 1;
    if (end >= 5) {
        const std::int64_t last = end - 4;
        const Four<Lanes> tail = unfolded(loadFour(up, down, last, cols - last));
        for (; c + 4 <= end; c += 4)
            storeFour(up, down, c, cols - c, unfolded(loadFour(up, down, c, cols - c)));
        storeFour(up, down, last, cols - last, tail);
        return;
    }
    for (; c < end; ++c)
        storeOne(up, down, c, cols - c, unfolded(loadOne(up, down, c, cols - c)));
}

RVX_KERNEL void hartleyUnfold(double *array, std::int64_t rows, std::int64_t cols)
{
    for (std::int64_t r = 1; r < rows / 2; ++r)
        unfoldRowPair(array + r * cols, array + (rows - r) * cols, cols);
}

} // namespace

void rvxHartleyProduct(const double *a, const double *b, double *product, std::int64_t rows,
                       std::int64_t cols)
{
    hartleyProduct(a, b, product, rows, cols);
}

void rvxHartleyUnfold(double *array, std::int64_t rows, std::int64_t cols)
{
    hartleyUnfold(array, rows, cols);
}
