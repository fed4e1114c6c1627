// rvxvece: largest and smallest element with its position, by comparison of values.
//
// Each stretch of the block is searched for its extreme value alone, in lanes; the
// position is looked for in the one stretch that holds the extreme of all.

#include "frame/rvxcheck.h"
#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"
#include "rvx.h"
#include "vector/rvxvec.h"

RVX_MODULE("rvxvece")

namespace {

constexpr int stretchLen = 512;

// The first i from 0 with vec[i] == value; there is one below n.
RVX_KERNEL int findFirst(double value, const double *vec, int n)
{
    const Lanes wanted = allLanes(value);
    int i = 0;
    while (i < n - 15) {
        LaneMask equal = {};
        for (int j = 0; j < 4; ++j)
            equal = equal | isEqual(loadLanes(vec + i + 4 * j), wanted);
        if (anyLane(equal))
            break;
        i += 16;
    }
    while (i < n - 1 && vec[i] != value)
        ++i;
    return i;
}

// A NaN in front stays; any other is never taken.
int largestPosition(const double *vec, int n)
{
    if (vec[0] != vec[0])
        return 0;
    double best = -__builtin_inf();
    int bestFrom = 0;
    for (int from = 0; from < n;) {
        const int here = n - from < stretchLen ? n - from : stretchLen;
        const double value = rvxLargestValue(vec + from, here);
        if (value > best) {
            best = value;
            bestFrom = from;
        }
        from += here;
    }
    return bestFrom + findFirst(best, vec + bestFrom, n - bestFrom);
}

// -1 where there is none
int lastNan(const double *vec, int n)
{
    int i = n - 1;
    while (i >= 0 && vec[i] == vec[i])
        --i;
    return i;
}

// A NaN is taken and gives way to the element behind it, on purpose: so the search
// starts anew behind each.
int smallestPosition(const double *vec, int n)
{
    double best = __builtin_inf();
    int bestFrom = 0;
    for (int from = 0; from < n;) {
        const int here = n - from < stretchLen ? n - from : stretchLen;
        const Extreme found = rvxSmallestValue(vec + from, here);
        const int nan = found.special ? lastNan(vec + from, here) : -1;
        if (nan >= 0) {
            from += nan + 1;
            if (from == n)
                return n - 1;
            best = __builtin_inf();
            bestFrom = from;
            continue;
        }
        if (found.value < best) {
            best = found.value;
            bestFrom = from;
        }
        from += here;
    }
    return bestFrom + findFirst(best, vec + bestFrom, n - bestFrom);
}

} // namespace

// Without an index these are rvxdMax and rvxdMin, which order otherwise, on purpose.

double rvxdMaxExt(const double *vec, int len, int *index)
{
    RVX_REJECT_IF(len <= 0, "len<=0", 0.0);
    RVX_REJECT_IF(vec == nullptr, "vec==0", 0.0);
    if (index == nullptr)
        return rvxdMax(vec, len);
    *index = largestPosition(vec, len);
    return vec[*index];
}

double rvxdMinExt(const double *vec, int len, int *index)
{
    RVX_REJECT_IF(len <= 0, "len<=0", 0.0);
    RVX_REJECT_IF(vec == nullptr, "vec==0", 0.0);
    if (index == nullptr)
        return rvxdMin(vec, len);
    *index = smallestPosition(vec, len);
    return vec[*index];
}
