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
    static constexpr bool sized = false;
    static constexpr int sums = moments, width = 4 / moments, stepLen = 4 * width,
                         tileSteps = moments == 1 ? 256 : 128;
    const double *x;
    std::ptrdiff_t n;

    RVX_INLINE static constexpr double lowShare(int s) { return s == 0 ? 0.0 : 0x1p-24; }
    RVX_INLINE static Lanes bound(int s, Peaks peaks)
    {
        return s == 0 ? peaks.a : peaks.a * peaks.a;
    }
    template <typename Load>
    RVX_INLINE void step(std::ptrdiff_t i, BiasedSum<width> *sum, Peaks &peaks) const
    {
        for (int j = 0; j < width; ++j) {
            const Lanes p = Load::from(x, i + 4 * j, n);
            peaks.a = maxMagnitude(peaks.a, p);
            addTerm(sum[0], j, p);
            if (moments == 2)
                addSquare(sum[moments - 1], j, p, split(p));
        }
    }
};

RVX_KERNEL void boundMean(const double *x, int n, BoundedSum *sum)
{
    boundedSums<1>(Moments<1>{x, n}, sum);
}

RVX_KERNEL void boundMoments(const double *x, int n, BoundedSum *sums)
{
    boundedSums<1>(Moments<2>{x, n}, sums);
}

// Below these lengths the sums in Extended take less time than the lanes' start.
constexpr int shortMean = 16;
constexpr int shortMoments = 160;

// sum / len. Eight sums take the elements in turn, and the turn moves on by one
// with every eight elements.
ExtendedSum meanInOrder(const double *vec, int len)
{
    Extended s[8] = {};
    Extended magnitudes = 0.0;
    int i = 0;
    for (unsigned turn = 0; i < len - 7; i += 8, --turn)
        for (unsigned k = 0; k < 8; ++k) {
            const double x = vec[i + static_cast<int>(k)];
            s[(turn + k) % 8] += x;
            magnitudes += std::fabs(x);
        }
    // Sum k has moved to the place of s[(k - groups) mod 8].
    const unsigned groups = static_cast<unsigned>(len) / 8;
    Extended turned[8];
    for (unsigned k = 0; k < 8; ++k)
        turned[k] = s[(k - groups) % 8];
    for (; i < len; ++i) {
        turned[0] += vec[i];
        magnitudes += std::fabs(vec[i]);
    }
    const Extended total = ((turned[7] + turned[3]) + (turned[5] + turned[1])) +
                           ((turned[6] + turned[2]) + (turned[4] + turned[0]));
    return {total / len, magnitudes / len};
}

// The computational formula, with the odd elements apart from the even ones.
ExtendedSum varianceInOrder(const double *vec, int len)
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
    return {(t * n - s * s) / (n * (n - 1.0)), t / (n - 1.0)};
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
    double mean;
    if (len < shortMean && roundedSum(meanInOrder(vec, len), len + 8, &mean))
        return mean;
    BoundedSum sum;
    boundMean(vec, len, &sum);
    if (roundedSum(dividedBy(sum, len), &mean))
        return mean;
    return static_cast<double>(meanInOrder(vec, len).sum);
}

double varianceOf(const double *vec, int len)
{
    // Each of n t and s s brings as many roundings of n t as its sum has, and the
    // second twice: s s is at most n t.
    double variance;
    if (len < shortMoments && roundedSum(varianceInOrder(vec, len), 3 * len + 16, &variance))
        return variance;
    BoundedSum sums[2];
    boundMoments(vec, len, sums);
    if (roundedSum(boundedVariance(sums[0], sums[1], len), &variance))
        return variance;
    // Rounding would leave more or less than nothing here.
    if (isConstant(vec, len))
        return 0.0;
    return static_cast<double>(varianceInOrder(vec, len).sum);
}

double deviationOf(const double *vec, int len)
{
    const double variance = varianceOf(vec, len);
    return std::signbit(variance) ? 0.0 : std::sqrt(variance);
}

// ---------------------------------------------------------------------------
// Largest and smallest element.

// What else is to be noticed: nothing; elements that are not finite; those of them
// that have the search's own sign, which have the largest words of all, with the
// sign counted as it is (1) or as the top bit (-1).
enum class Notice { nothing, notFinite, ownSign };

template <int sign, Notice notice>
RVX_INLINE void takeFurther(Lanes &best, Lanes &words, Lanes x)
{
    best = sign > 0 ? maxLanes(best, x) : minLanes(best, x);
    if (notice == Notice::notFinite)
        words = maxMagnitude(words, x);
    else if (notice == Notice::ownSign)
        words = sign > 0 ? maxSignedWords(words, x) : maxWords(words, x);
}

template <int sign, Notice notice>
RVX_INLINE void findExtreme(const double *vec, int n, Extreme *found)
{
    const Lanes none = allLanes(sign * -__builtin_inf());
    Lanes best[4] = {none, none, none, none};
    Lanes words[2] = {allLanes(0.0), allLanes(0.0)};
    // A load that crosses cache lines counts twice, and loads are the limit. The steps
    // are counted beforehand: from an address that is no multiple of 8 none leads there.
    int i = 0;
    if (n >= 256) {
        const auto behind = reinterpret_cast<std::uintptr_t>(vec) / sizeof(double) % 4;
        for (const int steps = static_cast<int>((4 - behind) % 4); i < steps; ++i)
            takeFurther<sign, notice>(best[0], words[0], allLanes(vec[i]));
    }
    for (; i < n - 15; i += 16)
        for (int j = 0; j < 4; ++j)
            takeFurther<sign, notice>(best[j], words[j % 2], loadLanesOnce(vec + i + 4 * j));
    for (; i < n - 3; i += 4)
        takeFurther<sign, notice>(best[0], words[0], loadLanes(vec + i));
    for (; i < n; ++i)
        takeFurther<sign, notice>(best[0], words[0], allLanes(vec[i]));
    for (int j = 1; j < 4; ++j)
        best[0] = sign > 0 ? maxLanes(best[0], best[j]) : minLanes(best[0], best[j]);
    found->value = sign * largestLane(best[0] * allLanes(sign));
    constexpr std::uint64_t limit =
        notice == Notice::ownSign && sign < 0 ? 0xfff0000000000000 : 0x7ff0000000000000;
    const Lanes top = notice == Notice::ownSign && sign > 0 ? maxSignedWords(words[0], words[1])
                                                            : maxWords(words[0], words[1]);
    found->special = false;
    for (int l = 0; l < 4; ++l)
        found->special |= static_cast<std::uint64_t>(((RvxBits)top.v)[l]) >= limit;
}

RVX_KERNEL void findLargest(const double *vec, int n, Extreme *found)
{
    findExtreme<1, Notice::nothing>(vec, n, found);
}

RVX_KERNEL void findSmallest(const double *vec, int n, Extreme *found)
{
    findExtreme<-1, Notice::notFinite>(vec, n, found);
}

RVX_KERNEL void findLargestOrSpecial(const double *vec, int n, Extreme *found)
{
    findExtreme<1, Notice::ownSign>(vec, n, found);
}

RVX_KERNEL void findSmallestOrSpecial(const double *vec, int n, Extreme *found)
{
    findExtreme<-1, Notice::ownSign>(vec, n, found);
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

// The value decides unless zeros differ by sign, a NaN may stand above it, or there
// may be nothing but NaNs.
bool isDecided(Extreme found)
{
    return !found.special && found.value != 0.0 && std::isfinite(found.value);
}

double largestOf(const double *vec, int n)
{
    Extreme found;
    findLargestOrSpecial(vec, n, &found);
    return isDecided(found) ? found.value : largestByBits(vec, n);
}

double smallestOf(const double *vec, int n)
{
    Extreme found;
    findSmallestOrSpecial(vec, n, &found);
    return isDecided(found) ? found.value : smallestByBits(vec, n);
}

} // namespace

double rvxLargestValue(const double *vec, int n)
{
    Extreme found;
    findLargest(vec, n, &found);
    return found.value;
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
