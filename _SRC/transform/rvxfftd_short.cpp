// Transforms of 2, 4 and 8 points, straight through.

#include "transform/rvxfftd_short.h"

#include <cstdint>
#include <utility>

namespace {

// One complex value. These functions are ordinary code for the baseline, which
// has registers of just this size.
typedef double Value __attribute__((vector_size(16)));
typedef double ValueMem __attribute__((vector_size(16), aligned(8), may_alias));
typedef std::int64_t ValueBits __attribute__((vector_size(16)));

struct InterleavedValues {
    const ZCplx *src;
    ZCplx *dst;

    RVX_INLINE Value load(int i) const { return *reinterpret_cast<const ValueMem *>(src + i); }
    RVX_INLINE void store(int i, Value a) const { *reinterpret_cast<ValueMem *>(dst + i) = a; }
};

struct SeparateValues {
    const double *reSrc;
    const double *imSrc;
    double *reDst;
    double *imDst;

    RVX_INLINE Value load(int i) const { return Value{reSrc[i], imSrc[i]}; }
    RVX_INLINE void store(int i, Value a) const
    {
        reDst[i] = a[0];
        imDst[i] = a[1];
    }
};

// -j a, or j a for the inverse transform.
template <bool inverse>
RVX_INLINE Value quarterTurn(Value a)
{
    const ValueBits sign = inverse ? ValueBits{INT64_MIN, 0} : ValueBits{0, INT64_MIN};
    const Value swapped = __builtin_shufflevector(a, a, 1, 0);
    return reinterpret_cast<Value>(reinterpret_cast<ValueBits>(swapped) ^ sign);
}

RVX_INLINE void sumDiff(Value &a, Value &b)
{
    const Value sum = a + b;
    b = a - b;
    a = sum;
}

// Natural order in and out.
template <bool inverse>
RVX_INLINE void transform4(Value &a, Value &b, Value &c, Value &d)
{
    sumDiff(a, c);
    sumDiff(b, d);
    sumDiff(a, b);
    d = quarterTurn<inverse>(d);
    sumDiff(c, d);
    std::swap(b, c);
}

template <bool inverse>
RVX_INLINE void transform8(Value *x)
{
    constexpr double half = 0.70710678118654752440;
    transform4<inverse>(x[0], x[2], x[4], x[6]);
    transform4<inverse>(x[1], x[3], x[5], x[7]);
    x[3] = (x[3] + quarterTurn<inverse>(x[3])) * half;
    x[5] = quarterTurn<inverse>(x[5]);
    x[7] = (quarterTurn<inverse>(x[7]) - x[7]) * half;
    for (int k = 0; k < 8; k += 2)
        sumDiff(x[k], x[k + 1]);
    // Result k stands at 2k, and result k + 4 behind it.
    const Value result[8] = {x[0], x[2], x[4], x[6], x[1], x[3], x[5], x[7]};
    for (int k = 0; k < 8; ++k)
        x[k] = result[k];
}

RVX_INLINE constexpr int reversedPlace(int N, int i)
{
    if (N == 8)
        return (i & 1) * 4 + (i & 2) + (i & 4) / 4;
    return N == 4 ? (i & 1) * 2 + (i & 2) / 2 : i;
}

template <int N, bool inverse, bool reversedInput, bool reversedOutput, typename Values>
RVX_INLINE void transform(Values values, double scale)
{
    Value x[8];
    for (int i = 0; i < N; ++i)
        x[i] = values.load(reversedInput ? reversedPlace(N, i) : i);
    if (N == 2)
        sumDiff(x[0], x[1]);
    else if (N == 4)
        transform4<inverse>(x[0], x[1], x[2], x[3]);
    else
        transform8<inverse>(x);
    for (int k = 0; k < N; ++k)
        values.store(reversedOutput ? reversedPlace(N, k) : k, x[k] * scale);
}

template <bool inverse, bool reversedInput, bool reversedOutput, typename Values>
RVX_INLINE void transformAny(Values values, int N, double scale)
{
    if (N == 2)
        transform<2, inverse, reversedInput, reversedOutput>(values, scale);
    else if (N == 4)
        transform<4, inverse, reversedInput, reversedOutput>(values, scale);
    else
        transform<8, inverse, reversedInput, reversedOutput>(values, scale);
}

template <bool inverse, typename Values>
RVX_INLINE void transformForm(Values values, int N, bool reversedInput, bool reversedOutput,
                              double scale)
{
    if (reversedInput)
        transformAny<inverse, true, false>(values, N, scale);
    else if (reversedOutput)
        transformAny<inverse, false, true>(values, N, scale);
    else
        transformAny<inverse, false, false>(values, N, scale);
}

} // namespace

void rvxFftShort(const ZCplx *src, ZCplx *dst, int N, bool inverse, bool reversedInput,
                 bool reversedOutput, double scale)
{
    const InterleavedValues values{src, dst};
    if (inverse)
        transformForm<true>(values, N, reversedInput, reversedOutput, scale);
    else
        transformForm<false>(values, N, reversedInput, reversedOutput, scale);
}

void rvxrFftShort(const double *reSrc, const double *imSrc, double *reDst, double *imDst, int N,
                  bool reversedInput, bool reversedOutput, double scale)
{
    transformForm<false>(SeparateValues{reSrc, imSrc, reDst, imDst}, N, reversedInput,
                         reversedOutput, scale);
}
