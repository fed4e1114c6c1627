#include "peer_convert.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

template <LoopRounding rounding>
double rounded(double x)
{
    return rounding == LoopRounding::nearest ? std::nearbyint(x) : std::trunc(x);
}

template <LoopRounding rounding, typename Int>
void limited(const double *__restrict src, Int *__restrict dst, int n, double scale)
{
    constexpr double lo = std::numeric_limits<Int>::min(), hi = std::numeric_limits<Int>::max();
    for (int i = 0; i < n; ++i)
        dst[i] = static_cast<Int>(std::min(std::max(rounded<rounding>(src[i] * scale), lo), hi));
}

template <LoopRounding rounding, typename Int>
int counted(const double *__restrict src, Int *__restrict dst, int n, double scale)
{
    constexpr double lo = std::numeric_limits<Int>::min(), hi = std::numeric_limits<Int>::max();
    int misfits = 0;
    for (int i = 0; i < n; ++i) {
        const double v = rounded<rounding>(src[i] * scale);
        const double inside = std::min(std::max(v, lo), hi);
        misfits += v != inside;
        dst[i] = static_cast<Int>(inside);
    }
    return misfits;
}

template <LoopRounding rounding, typename Int>
void unlimited(const double *__restrict src, Int *__restrict dst, int n, double scale)
{
    for (int i = 0; i < n; ++i)
        dst[i] = static_cast<Int>(rounded<rounding>(src[i] * scale));
}

} // namespace

template <typename Int>
void loopToInts(const double *src, Int *dst, int n, double scale, LoopRounding rounding)
{
    if (rounding == LoopRounding::nearest)
        limited<LoopRounding::nearest>(src, dst, n, scale);
    else
        limited<LoopRounding::trunc>(src, dst, n, scale);
}

template <typename Int>
int loopToIntsCounted(const double *src, Int *dst, int n, double scale, LoopRounding rounding)
{
    return rounding == LoopRounding::nearest ? counted<LoopRounding::nearest>(src, dst, n, scale)
                                             : counted<LoopRounding::trunc>(src, dst, n, scale);
}

template <typename Int>
void loopToIntsFree(const double *src, Int *dst, int n, double scale, LoopRounding rounding)
{
    if (rounding == LoopRounding::nearest)
        unlimited<LoopRounding::nearest>(src, dst, n, scale);
    else
        unlimited<LoopRounding::trunc>(src, dst, n, scale);
}

template <typename Int>
void loopFromInts(const Int *__restrict src, double *__restrict dst, int n, double scale)
{
    for (int i = 0; i < n; ++i)
        dst[i] = static_cast<double>(src[i]) * scale;
}

#define RVX_BENCH_INSTANCES(Int)                                                                   \
    template void loopToInts(const double *, Int *, int, double, LoopRounding);                    \
    template int loopToIntsCounted(const double *, Int *, int, double, LoopRounding);              \
    template void loopToIntsFree(const double *, Int *, int, double, LoopRounding);                \
    template void loopFromInts(const Int *, double *, int, double);

RVX_BENCH_INSTANCES(signed char)
RVX_BENCH_INSTANCES(unsigned char)
RVX_BENCH_INSTANCES(short)
RVX_BENCH_INSTANCES(unsigned short)
RVX_BENCH_INSTANCES(int)
RVX_BENCH_INSTANCES(unsigned)
