// rvxdct, any length: sums over the periodic table of cosines, which the fold of x[n]
// with x[L-1-n] halves.

#include "frame/rvxkernel.h"
#include "transform/rvxdct.h"

namespace {

using Index = std::int64_t;

constexpr double RVX_ROOT_OF_TWO = 1.4142135623730951;

// start + sum over n of x[n] t[(2n+1) k mod 4L]
double cosineSum(const double *x, Index count, Index L, Index k, const double *t, double start)
{
    double sum = start;
    Index at = k;
    for (Index n = 0; n < count; ++n) {
        sum += x[n] * t[at];
        at += 2 * k;
        if (at >= 4 * L)
            at -= 4 * L;
    }
    return sum;
}

} // namespace

void rvxDctDirectForward(double *copy, double *dst, std::int64_t L, const RvxDctCosines &cosines)
{
    const Index half = L / 2;
    const double middle = L % 2 != 0 ? copy[half] : 0.0;
    double all = 0.0;
    for (Index n = 0; n < L; ++n)
        all += copy[n];
    // Sums to the first half of the copy, differences to the second.
    for (Index n = 0; n < half; ++n) {
        const double front = copy[n], back = copy[L - 1 - n];
        copy[n] = front + back;
        copy[L - 1 - n] = front - back;
    }
    dst[0] = all * cosines.scale;
    const double scale = cosines.scale * RVX_ROOT_OF_TWO;
    double *differences = copy + (L - half);
    for (Index n = 0; n < half / 2; ++n) {
        const double kept = differences[n];
        differences[n] = differences[half - 1 - n];
        differences[half - 1 - n] = kept;
    }
    for (Index k = 1; k < L; ++k) {
        const bool odd = k % 2 != 0;
        const double start = odd ? 0.0 : L % 2 == 0 ? 0.0 : k % 4 == 0 ? middle : -middle;
        dst[k] = cosineSum(odd ? differences : copy, half, L, k, cosines.t, start) * scale;
    }
}

void rvxDctDirectInverse(double *copy, double *dst, std::int64_t L, const RvxDctCosines &cosines)
{
    const Index half = L / 2;
    const double scale = cosines.scale * RVX_ROOT_OF_TWO;
    copy[0] *= cosines.scale;
    for (Index k = 1; k < L; ++k)
        copy[k] *= scale;
    const double *t = cosines.t;
    if (L % 2 != 0) {
        double plus = 0.0, minus = 0.0;
        for (Index i = 0; i < L; i += 4)
            plus += copy[i];
        for (Index i = 2; i < L; i += 4)
            minus += copy[i];
        dst[half] = plus - minus;
    }
    for (Index n = 0; n < half; ++n) {
        double c = copy[0], d = copy[0];
        const Index step = 2 * n + 1;
        Index at = step;
        const auto advance = [&at, step, L] {
            at += step;
            if (at >= 4 * L)
                at -= 4 * L;
        };
        Index k = 1;
        for (; k + 1 < L; k += 2) {
            const double a = t[at] * copy[k];
            advance();
            const double b = t[at] * copy[k + 1];
            advance();
            c += a + b;
            d += b - a;
        }
        if (k < L) {
            const double a = t[at] * copy[k];
            c += a;
            d -= a;
        }
        dst[n] = c;
        dst[L - 1 - n] = d;
    }
}
