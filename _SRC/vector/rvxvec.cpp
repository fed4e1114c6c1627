// rvxvec: mean, standard deviation, largest and smallest element.
//
// The sums are made in lanes of error-free pairs of doubles where these tell the
// correctly rounded result, and else in Extended in a fixed shape. The largest
// element by bit pattern is the largest value, unless that is a zero or there is a
// NaN: only then are bit patterns compared.

#include "vector/rvxvec.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "frame/rvxcheck.h"
#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"
#include "vector/rvxsum.h"

RVX_MODULE("rvxvec")

namespace {

// ---------------------------------------------------------------------------
// Mean and standard deviation.

// x[i], and with moments 2 also x[i]^2 as a second sum.
template <int moments>
struct Moments {
    static constexpr int sums = moments, width = 4 / moments, stepLen = 4 * width;
    const double *x;

    RVX_INLINE static constexpr double lowShare(int s) { return s == 0 ? 0.0 : 0x1p-24; }
    RVX_INLINE static Lanes bound(int s, Peaks peaks)
    {
        return s == 0 ? peaks.a : peaks.a * peaks.a;
    }
    RVX_INLINE void step(std::ptrdiff_t i, BiasedSum<width> *sum, Peaks &peaks) const
    {
        for (int j = 0; j < width; ++j) {
            const Lanes p = loadLanes(x + i + 4 * j);
            peaks.a = maxLanes(peaks.a, absLanes(p));
            addTerm(sum[0], j, p);
            if (moments == 2)
                addSquare(sum[moments - 1], j, p);
        }
    }
    RVX_INLINE Moments tail(std::ptrdiff_t i, std::ptrdiff_t n, TailRoom &room) const
    {
        return {zeroPadded(x + i, n, room.a)};
    }
};

RVX_KERNEL void boundMean(const double *x, int n, BoundedSum *sum)
{
    boundedSums<1>(Moments<1>{x}, n, sum);
}

RVX_KERNEL void boundMoments(const double *x, int n, BoundedSum *sums)
{
    boundedSums<1>(Moments<2>{x}, n, sums);
}

// sum / len. Eight sums take the elements in turn, and the turn moves on by one
// with every eight elements.
double meanInOrder(const double *vec, int len)
{
    Extended s[8] = {};
    int i = 0;
    for (unsigned turn = 0; i < len - 7; i += 8, --turn)
        for (unsigned k = 0; k < 8; ++k)
            s[(turn + k) % 8] += vec[i + static_cast<int>(k)];
    // Sum k has moved to the place of s[(k - groups) mod 8].
    const unsigned groups = static_cast<unsigned>(len) / 8;
    Extended turned[8];
    for (unsigned k = 0; k < 8; ++k)
        turned[k] = s[(k - groups) % 8];
    for (; i < len; ++i)
        turned[0] += vec[i];
    const Extended total = ((turned[7] + turned[3]) + (turned[5] + turned[1])) +
                           ((turned[6] + turned[2]) + (turned[4] + turned[0]));
    return static_cast<double>(total / len);
}

// The computational formula, with the odd elements apart from the even ones.
double varianceInOrder(const double *vec, int len)
{
    Extended a = 0.0, b = 0.0, p = 0.0, q = 0.0;
    int i = 0;
    for (; i < len - 3; i += 4) {
        const Extended x0 = vec[i], x1 = vec[i + 1], x2 = vec[i + 2], x3 = vec[i + 3];
        a = (a + x0) + x2;
        b = (b + x1) + x3;
        p = (p + x0 * x0) + x2 * x2;
        q = (q + x1 * x1) + x3 * x3;
    }
    Extended s = a + b;
    Extended t = p + q;
    for (; i < len; ++i) {
        const Extended x = vec[i];
        s += x;
        t += x * x;
    }
    const Extended n = len;
    return static_cast<double>((t * n - s * s) / (n * (n - 1.0)));
}

bool isConstant(const double *vec, int len)
{
    int i = 1;
    while (i < len && vec[i] == vec[0])
        ++i;
    return i == len;
}

double meanOf(const double *vec, int len)
{
    BoundedSum sum;
    double mean;
    boundMean(vec, len, &sum);
    if (roundedSum(dividedBy(sum, len), &mean))
        return mean;
    return meanInOrder(vec, len);
}

double deviationOf(const double *vec, int len)
{
    BoundedSum sums[2];
    double variance;
    boundMoments(vec, len, sums);
    if (!roundedSum(boundedVariance(sums[0], sums[1], len), &variance)) {
        // Rounding would leave more or less than nothing here.
        if (isConstant(vec, len))
            return 0.0;
        variance = varianceInOrder(vec, len);
    }
    return std::signbit(variance) ? 0.0 : std::sqrt(variance);
}

// ---------------------------------------------------------------------------
// Largest and smallest element.

// m or x, whichever is further up (sign 1) or down (sign -1).
template <int sign>
RVX_INLINE Lanes further(Lanes m, Lanes x)
{
    return sign > 0 ? maxLanes(m, x) : minLanes(m, x);
}

// NaNs are passed over, and noticed two vectors at a time.
template <int sign>
RVX_INLINE void findExtreme(const double *vec, int n, Extreme *found)
{
    const Lanes none = allLanes(sign * -__builtin_inf());
    Lanes best[4] = {none, none, none, none};
    LaneMask nan[2] = {};
    int i = 0;
    for (; i < n - 15; i += 16) {
        for (int j = 0; j < 4; j += 2) {
            const Lanes x = loadLanes(vec + i + 4 * j);
            const Lanes y = loadLanes(vec + i + 4 * j + 4);
            best[j] = further<sign>(best[j], x);
            best[j + 1] = further<sign>(best[j + 1], y);
            nan[j / 2] = nan[j / 2] | isUnordered(x, y);
        }
    }
    for (; i < n; ++i) {
        const Lanes x = allLanes(vec[i]);
        best[0] = further<sign>(best[0], x);
        nan[0] = nan[0] | isUnordered(x, x);
    }
    Lanes last = further<sign>(further<sign>(best[0], best[1]), further<sign>(best[2], best[3]));
    last = further<sign>(last, swapHalves(last));
    last = further<sign>(last, swapParts(last));
    *found = {last.v[0], anyLane(nan[0] | nan[1])};
}

RVX_KERNEL void findLargest(const double *vec, int n, Extreme *found)
{
    findExtreme<1>(vec, n, found);
}

RVX_KERNEL void findSmallest(const double *vec, int n, Extreme *found)
{
    findExtreme<-1>(vec, n, found);
}

// An integer that orders as sign and magnitude of all 64 bits do; its own inverse.
RVX_INLINE std::int64_t orderKey(std::int64_t bits)
{
    return bits ^ ((bits >> 63) & INT64_MAX);
}

template <int sign>
RVX_INLINE double extremeByBits(const double *vec, int n)
{
    std::int64_t best = sign > 0 ? INT64_MIN : INT64_MAX;
    for (int i = 0; i < n; ++i) {
        std::int64_t bits;
        std::memcpy(&bits, vec + i, sizeof bits);
        const std::int64_t key = orderKey(bits);
        best = (sign > 0 ? key > best : key < best) ? key : best;
    }
    best = orderKey(best);
    double value;
    std::memcpy(&value, &best, sizeof value);
    return value;
}

RVX_KERNEL double largestByBits(const double *vec, int n)
{
    return extremeByBits<1>(vec, n);
}

RVX_KERNEL double smallestByBits(const double *vec, int n)
{
    return extremeByBits<-1>(vec, n);
}

double largestOf(const double *vec, int n)
{
    const Extreme found = rvxLargestValue(vec, n);
    return found.anyNan || found.value == 0.0 ? largestByBits(vec, n) : found.value;
}

double smallestOf(const double *vec, int n)
{
    const Extreme found = rvxSmallestValue(vec, n);
    return found.anyNan || found.value == 0.0 ? smallestByBits(vec, n) : found.value;
}

} // namespace

Extreme rvxLargestValue(const double *vec, int n)
{
    Extreme found;
    findLargest(vec, n, &found);
    return found;
}

Extreme rvxSmallestValue(const double *vec, int n)
{
    Extreme found;
    findSmallest(vec, n, &found);
    return found;
}

double rvxdMean(const double *vec, int len)
{
    RVX_REJECT_IF(len <= 0, "len<=0", 0.0);
    RVX_REJECT_IF(vec == nullptr, "vec==0", 0.0);
    return meanOf(vec, len);
}

double rvxdStdDev(const double *vec, int len)
{
    RVX_REJECT_IF(len <= 0, "len<=0", 0.0);
    RVX_REJECT_IF(vec == nullptr, "vec==0", 0.0);
    RVX_REJECT_IF(len < 2, "len<2", -1.0);
    return deviationOf(vec, len);
}

double rvxdMax(const double *vec, int len)
{
    RVX_REJECT_IF(len <= 0, "len<=0", 0.0);
    RVX_REJECT_IF(vec == nullptr, "vec==0", 0.0);
    return largestOf(vec, len);
}

double rvxdMin(const double *vec, int len)
{
    RVX_REJECT_IF(len <= 0, "len<=0", 0.0);
    RVX_REJECT_IF(vec == nullptr, "vec==0", 0.0);
    return smallestOf(vec, len);
}
