// Two-dimensional convolution by Hartley transforms, one value at a time, with the
// array rearranged so that columns are transformed as runs. Allocations are asked
// for in their order and may be refused; a refused one gives a report.

#ifndef RVX_REFERENCE_HARTLEY_H
#define RVX_REFERENCE_HARTLEY_H

#include <cmath>
#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace reference {

using Block = std::vector<double>;
using Size = std::size_t;

// Refuses the k-th request (from 1), or all from there on.
struct Memory {
    long refusedFrom = 0;
    bool onlyOne = true;
    long asked = 0;
    std::vector<std::string> reporters;

    bool refuses()
    {
        ++asked;
        return refusedFrom > 0 && (onlyOne ? asked == refusedFrom : asked >= refusedFrom);
    }
    // True, and reported by func, when the request is refused.
    bool refuses(const char *func)
    {
        const bool refused = refuses();
        if (refused)
            reporters.emplace_back(func);
        return refused;
    }
};

inline Size log2Of(Size n)
{
    Size order = 0;
    while ((Size{1} << order) < n)
        ++order;
    return order;
}

// sin(2 pi i / n) for 0 <= i <= n/4, by one rotation from both ends.
inline Block hartleySines(Size n)
{
    const Size quarter = n / 4;
    Block t(quarter + 1, 0.0);
    const long double angle = std::acos(-1.0L) / static_cast<long double>(n / 2);
    const double s = static_cast<double>(sinl(angle));
    const double c = static_cast<double>(cosl(angle));
    if (quarter > 0)
        t[quarter] = 1.0;
    for (Size i = 0; i + 1 <= quarter / 2; ++i) {
        const double a = t[i], b = t[quarter - i];
        t[i + 1] = a * c + b * s;
        t[quarter - i - 1] = b * c - a * s;
    }
    return t;
}

// Entries 1 to n-2, by a counter whose carry runs to the right.
inline std::vector<Size> reversedIndices(Size n)
{
    std::vector<Size> table(n, 0);
    Size j = 0;
    for (Size i = 1; i + 1 < n; ++i) {
        Size m = n / 2;
        while (m <= j) {
            j -= m;
            m /= 2;
        }
        j += m;
        table[i] = j;
    }
    return table;
}

// One line of length n, in place.
inline void hartleyLine(double *v, Size n)
{
    if (n == 2) {
        const double a = v[0], b = v[1];
        v[0] = a + b;
        v[1] = a - b;
        return;
    }
    static std::map<Size, std::pair<std::vector<Size>, Block>> tables;
    auto &entry = tables[n];
    if (entry.first.empty())
        entry = {reversedIndices(n), hartleySines(n)};
    const std::vector<Size> &reversed = entry.first;
    const Block &t = entry.second;
    for (Size i = 1; i + 1 < n; ++i)
        if (i < reversed[i])
            std::swap(v[i], v[reversed[i]]);
    if (n == 4) {
        const double s0 = v[0] + v[1], d0 = v[0] - v[1], s1 = v[2] + v[3], d1 = v[2] - v[3];
        v[0] = s0 + s1;
        v[1] = d0 + d1;
        v[2] = s0 - s1;
        v[3] = d0 - d1;
        return;
    }
    for (Size g = 0; g < n; g += 8) {
        double s[4], d[4];
        for (Size i = 0; i < 4; ++i) {
            s[i] = v[g + 2 * i] + v[g + 2 * i + 1];
            d[i] = v[g + 2 * i] - v[g + 2 * i + 1];
        }
        const double e0 = s[0] + s[1], e1 = s[2] + s[3], f0 = s[0] - s[1], f1 = s[2] - s[3];
        const double g0 = d[0] + d[1], g1 = d[0] - d[1];
        const double p = 1.4142135623730951 * d[2], q = 1.4142135623730951 * d[3];
        const double out[] = {e0 + e1, g0 + p, f0 + f1, g1 + q, e0 - e1, g0 - p, f0 - f1, g1 - q};
        for (Size i = 0; i < 8; ++i)
            v[g + i] = out[i];
    }
    for (Size L = 8; 2 * L <= n; L *= 2) {
        const Size step = n / (2 * L);
        for (Size g = 0; g < n; g += 2 * L) {
            const double first = v[g], second = v[g + L];
            v[g] = first + second;
            v[g + L] = first - second;
            for (Size j = 1; j <= L / 2; ++j) {
                const double s = t[j * step], c = t[n / 4 - j * step];
                double &a = v[g + j], &b = v[g + L - j], &x = v[g + L + j], &y = v[g + 2 * L - j];
                if (j == L / 2) {
                    const double w = x;
                    x = a - w;
                    a = a + w;
                    continue;
                }
                const double t1 = y * c - s * x, t2 = x * c + s * y;
                y = b + t1;
                x = a - t2;
                a = a + t2;
                b = b - t1;
            }
        }
    }
}

// ---------------------------------------------------------------------------
// An array of R rows and W columns.

class HartleyArray {
public:
    HartleyArray(Size R, Size W) : values(R * W, 0.0), rows(R), cols(W) {}

    double &at(Size r, Size c) { return values[r * cols + c]; }
    double at(Size r, Size c) const { return values[r * cols + c]; }

    void transform(Memory &memory)
    {
        for (Size r = 0; r < rows; ++r)
            hartleyLine(&at(r, 0), cols);
        if (rows <= cols)
            mirrorBlocksAcross();
        else
            rotate(memory);
        for (Size run = 0; run < cols; ++run)
            hartleyLine(&values[run * rows], rows);
        if (rows <= cols)
            mirrorBlocksAcross();
        else
            rotateBack(memory);
    }

    Block values;
    const Size rows, cols;

private:
    void mirrorBlocksAcross()
    {
        for (Size block = 0; block < cols; block += rows)
            for (Size r = 0; r < rows; ++r)
                for (Size c = 0; c < r; ++c)
                    std::swap(at(r, block + c), at(c, block + r));
    }

    void mirrorBlocksDown()
    {
        for (Size block = 0; block < rows; block += cols)
            for (Size r = 0; r < cols; ++r)
                for (Size c = 0; c < r; ++c)
                    std::swap(at(block + r, c), at(block + c, r));
    }

    void exchangeRows(Size i, Size k)
    {
        for (Size c = 0; c < cols; ++c)
            std::swap(at(i, c), at(k, c));
    }

    void exchangeBlocks()
    {
        for (Size t = 0; t < cols; ++t)
            for (Size u = 0; u < t; ++u)
                exchangeRows(t * cols + u, u * cols + t);
    }

    void reverseRows(Size first, Size n)
    {
        const std::vector<Size> reversed = reversedIndices(n);
        for (Size i = 1; i + 1 < n; ++i)
            if (i < reversed[i])
                exchangeRows(first + i, first + reversed[i]);
    }

    void reverseGroups()
    {
        for (Size first = 0; first < rows; first += rows / cols)
            reverseRows(first, rows / cols);
    }

    void rotate(Memory &memory)
    {
        if (memory.refuses("dRotate_V"))
            return;
        mirrorBlocksDown();
        if (rows / cols == cols) {
            exchangeBlocks();
        } else {
            reverseRows(0, rows);
            reverseGroups();
        }
    }

    void rotateBack(Memory &memory)
    {
        if (memory.refuses("dRotate_V_Back"))
            return;
        if (rows / cols == cols) {
            exchangeBlocks();
        } else {
            reverseGroups();
            reverseRows(0, rows);
        }
        mirrorBlocksDown();
    }
};

// O, before its transform, from the transforms A and B.
inline HartleyArray hartleyProduct(const HartleyArray &A, const HartleyArray &B)
{
    const Size R = A.rows, W = A.cols;
    HartleyArray O(R, W);
    for (Size r : {Size{0}, R / 2})
        for (Size c : {Size{0}, W / 2})
            O.at(r, c) = A.at(r, c) * B.at(r, c) * 2.0;
    const auto pair = [&](Size pr, Size pc, Size mr, Size mc) {
        const double u = B.at(pr, pc) * A.at(pr, pc) - B.at(mr, mc) * A.at(mr, mc);
        const double w = B.at(mr, mc) * A.at(pr, pc) + A.at(mr, mc) * B.at(pr, pc);
        O.at(pr, pc) = u + w;
        O.at(mr, mc) = w - u;
    };
    for (Size r : {Size{0}, R / 2})
        for (Size c = 1; c < W / 2; ++c)
            pair(r, c, r, W - c);
    for (Size c : {Size{0}, W / 2})
        for (Size r = 1; r < R / 2; ++r)
            pair(r, c, R - r, c);
    for (Size r = 1; r < R / 2; ++r)
        for (Size c = 1; c < W / 2; ++c) {
            const double Ap = A.at(r, c), Aq = A.at(R - r, c);
            const double As = A.at(r, W - c), At = A.at(R - r, W - c);
            const double Bp = B.at(r, c), Bq = B.at(R - r, c);
            const double Bs = B.at(r, W - c), Bt = B.at(R - r, W - c);
            const double e = (Aq + Ap + As + At) * 0.5;
            const double d1 = Bp - Bt, d2 = Bs - Bq, s1 = Bq + Bs, s2 = Bp + Bt;
            O.at(r, c) = d1 * (e - Ap) + s1 * (e - At);
            O.at(R - r, c) = (e - As) * s2 - d2 * (e - Aq);
            O.at(r, W - c) = d2 * (e - As) + (e - Aq) * s2;
            O.at(R - r, W - c) = (e - Ap) * s1 - d1 * (e - At);
        }
    return O;
}

inline void hartleyUnfold(HartleyArray &O)
{
    const Size R = O.rows, W = O.cols;
    for (Size r = 1; r < R / 2; ++r)
        for (Size c = 1; c < W / 2; ++c) {
            const double p = O.at(r, c), q = O.at(R - r, c);
            const double s = O.at(r, W - c), t = O.at(R - r, W - c);
            const double e = (p + q + s + t) * 0.5;
            O.at(r, c) = e - t;
            O.at(R - r, c) = e - s;
            O.at(r, W - c) = e - q;
            O.at(R - r, W - c) = e - p;
        }
}

// ---------------------------------------------------------------------------
// The routes. `at` says where in y a value goes; y is untouched elsewhere.

struct Grid {
    Block values;
    Size cols, rows;

    double at(Size r, Size c) const { return values[r * cols + c]; }
};

inline bool refusesTables(Size R, Size W, Memory &memory)
{
    for (int table = 0; table < (R == W ? 2 : 4); ++table)
        if (memory.refuses())
            return true;
    return false;
}

inline void embed(const Grid &from, Size r0, Size c0, Size rows, Size cols, double factor,
                  HartleyArray &to)
{
    for (Size r = 0; r < rows; ++r)
        for (Size c = 0; c < cols; ++c)
            to.at(r, c) = from.at(r0 + r, c0 + c) * factor;
}

inline Size powerFrom2(Size n)
{
    Size power = 2;
    while (power < n)
        power *= 2;
    return power;
}

inline void wholeConvolution(const Grid &x, const Grid &h, Memory &memory, double *y)
{
    const Size R = powerFrom2(2 * (x.rows > h.rows ? x.rows : h.rows));
    const Size W = powerFrom2(2 * (x.cols > h.cols ? x.cols : h.cols));
    for (int buffer = 0; buffer < 3; ++buffer)
        if (memory.refuses("rvxdConv2D"))
            return;
    HartleyArray a(R, W), b(R, W), c(R, W);
    embed(x, 0, 0, x.rows, x.cols, 1.0, a);
    embed(h, 0, 0, h.rows, h.cols, 0.5 / static_cast<double>(R * W), b);
    if (refusesTables(R, W, memory)) {
        memory.reporters.emplace_back("owndHftConv2d");
    } else {
        a.transform(memory);
        b.transform(memory);
        c.values = hartleyProduct(a, b).values;
        c.transform(memory);
        hartleyUnfold(c);
    }
    const Size outRows = x.rows + h.rows - 1, outCols = x.cols + h.cols - 1;
    for (Size r = 0; r < outRows; ++r)
        for (Size k = 0; k < outCols; ++k)
            y[r * outCols + k] = c.at(r, k);
}

inline Size paddedLen(Size n)
{
    Size power = 1;
    while (power < n)
        power *= 2;
    return n < 2 ? 2 : 2 * power;
}

// The transform's rows and columns for tiles of big.
inline std::pair<Size, Size> overlapBlock(const Grid &big, const Grid &small)
{
    const Size br = paddedLen(big.rows), bc = paddedLen(big.cols);
    const Size sr = paddedLen(small.rows), sc = paddedLen(small.cols);
    const Size ratioRows = br / sr, ratioCols = bc / sc;
    if (ratioRows >= 2 && ratioCols >= 2)
        return {sr, sc};
    if (ratioRows > ratioCols || (ratioRows == ratioCols && sr > sc))
        return {sr, bc > sc ? bc : sc};
    return {br > sr ? br : sr, sc};
}

inline void addTile(const HartleyArray &result, Size i, Size j, Size oh, Size ow, const Grid &small,
                    Size r0, Size c0, double *y, Size outCols)
{
    for (Size r = 0; r < oh; ++r)
        for (Size c = 0; c < ow; ++c) {
            double &to = y[(r0 + r) * outCols + c0 + c];
            const bool written = (i > 0 && r < small.rows - 1) || (j > 0 && c < small.cols - 1);
            to = written ? to + result.at(r, c) : result.at(r, c);
        }
}

inline void overlapConvolution(Grid big, Grid small, Memory &memory, double *y)
{
    if (big.rows * big.cols < small.rows * small.cols)
        std::swap(big, small);
    const std::pair<Size, Size> block = overlapBlock(big, small);
    const Size R = block.first, W = block.second;
    bool refused = refusesTables(R, W, memory);
    for (int buffer = 0; buffer < 3 && !refused; ++buffer)
        refused = memory.refuses();
    if (refused) {
        memory.reporters.emplace_back("owndOverlapConv2d");
        return;
    }
    HartleyArray filter(R, W);
    embed(small, 0, 0, small.rows, small.cols, 0.5 / static_cast<double>(R * W), filter);
    filter.transform(memory);
    const Size TR = R / 2, TC = W / 2;
    for (Size i = 0; i * TR < big.rows; ++i)
        for (Size j = 0; j * TC < big.cols; ++j) {
            const Size high = big.rows - i * TR < TR ? big.rows - i * TR : TR;
            const Size wide = big.cols - j * TC < TC ? big.cols - j * TC : TC;
            HartleyArray tile(R, W);
            embed(big, i * TR, j * TC, high, wide, 1.0, tile);
            tile.transform(memory);
            HartleyArray result = hartleyProduct(tile, filter);
            result.transform(memory);
            hartleyUnfold(result);
            addTile(result, i, j, high + small.rows - 1, wide + small.cols - 1, small, i * TR,
                    j * TC, y, big.cols + small.cols - 1);
        }
}

// ---------------------------------------------------------------------------
// The direct sum in its order.

inline void directConvolution(const Grid &x, const Grid &h, double *y)
{
    const Grid &a = x.cols < h.cols ? h : x;
    const Grid &b = x.cols < h.cols ? x : h;
    const Size outCols = a.cols + b.cols - 1;
    for (Size k = 0; k < outCols * (a.rows + b.rows - 1); ++k)
        y[k] = 0.0;
    for (Size c = 0; c < b.cols; ++c)
        for (Size r = 0; r < b.rows; ++r) {
            const double coefficient = b.at(r, c);
            if (coefficient == 0.0 || std::isnan(coefficient))
                continue;
            for (Size i = 0; i < a.rows; ++i)
                for (Size j = 0; j < a.cols; ++j)
                    y[(r + i) * outCols + c + j] += a.at(i, j) * coefficient;
        }
}

enum class Route2d { direct, oneDimensional, overlap, whole };

// Written as cases of which operand covers the other.
inline Route2d routeOf(const Grid &x, const Grid &h)
{
    const auto tiny = [](const Grid &m) { return m.rows <= 7 && m.cols <= 7; };
    const auto below17 = [](const Grid &m) { return m.rows <= 16 && m.cols <= 16; };
    if ((below17(x) && below17(h)) || tiny(x) || tiny(h))
        return Route2d::direct;
    if (x.rows * h.rows == 1 || x.cols * h.cols == 1)
        return Route2d::oneDimensional;
    // x covers h and is at least twice as high or wide.
    if (x.rows >= h.rows && x.cols >= h.cols && (x.rows >= 2 * h.rows || x.cols >= 2 * h.cols))
        return Route2d::overlap;
    if (h.rows >= x.rows && h.cols >= x.cols && (h.rows >= 2 * x.rows || h.cols >= 2 * x.cols))
        return Route2d::overlap;
    return Route2d::whole;
}

} // namespace reference

#endif
