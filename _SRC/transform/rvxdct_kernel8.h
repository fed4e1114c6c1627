// Cosine sums of 8, 4 and 2 points as straight lines, for one set of values or for
// several side by side. None is scaled but by the factors that its caller gives.
//
// Of 8 points the odd results are the real parts of a transform of twice the length,
// whose phase the last factors 1/(2 cos(k pi/16)) take away.

#ifndef RVXDCT_KERNEL8_H
#define RVXDCT_KERNEL8_H

#include "frame/rvxlanes.h"

RVX_INLINE double everywhere(double x, double)
{
    return x;
}

RVX_INLINE Lanes everywhere(double x, Lanes)
{
    return allLanes(x);
}

constexpr double RVX_COS_PI_4 = 0.7071067811865476;
constexpr double RVX_COS_PI_8 = 0.9238795325112867;
constexpr double RVX_SIN_PI_8 = 0.3826834323650898;
// 1 / (2 cos(k pi/16)) for k = 1, 3, 5, 7
constexpr double RVX_SECANT_1 = 0.5097955791041592;
constexpr double RVX_SECANT_3 = 0.6013448869350453;
constexpr double RVX_SECANT_5 = 0.8999762231364157;
constexpr double RVX_SECANT_7 = 2.5629154477415064;

// The factors of the eight-point sums, all times one scale, but for the first result's.
struct RvxDct8Factors {
    double first, cos4, cos8, sin8;
    double secant[4];
};

constexpr RvxDct8Factors rvxDct8Factors(double first, double scale)
{
    return {
        first,
        RVX_COS_PI_4 * scale,
        RVX_COS_PI_8 * scale,
        RVX_SIN_PI_8 * scale,
        {RVX_SECANT_1 * scale, RVX_SECANT_3 * scale, RVX_SECANT_5 * scale, RVX_SECANT_7 * scale}};
}

constexpr RvxDct8Factors RVX_DCT8_PLAIN = rvxDct8Factors(1.0, 1.0);
// 1/sqrt(8) for the first, sqrt(2)/sqrt(8) for the others.
constexpr RvxDct8Factors RVX_DCT8_SCALED = rvxDct8Factors(0.35355339059327376, 0.5);

// x becomes X[k] = sum over n of x[n] cos((2n+1) k pi / 16).
template <bool scaled, typename Value>
RVX_INLINE void cosineSums8(Value *x)
{
    constexpr RvxDct8Factors f = scaled ? RVX_DCT8_SCALED : RVX_DCT8_PLAIN;
    const auto of = [x](double factor) { return everywhere(factor, x[0]); };
    const Value a0 = x[0] + x[7], a1 = x[1] + x[6], a2 = x[2] + x[5], a3 = x[3] + x[4];
    const Value b0 = x[0] - x[7], b1 = x[1] - x[6], b2 = x[2] - x[5], b3 = x[3] - x[4];

    const Value outer = a0 + a3, inner = a1 + a2;
    const Value p = a0 - a3, q = a1 - a2;
    const Value sum = outer + inner;
    x[0] = scaled ? sum * of(f.first) : sum;
    x[4] = (outer - inner) * of(f.cos4);
    x[2] = p * of(f.cos8) + q * of(f.sin8);
    x[6] = p * of(f.sin8) - q * of(f.cos8);

    const Value c1 = b0 + b1, c2 = (b1 + b2) * of(RVX_COS_PI_4), c3 = b2 + b3;
    const Value plus = b0 + c2, minus = b0 - c2;
    const Value u = c1 * of(RVX_COS_PI_8) + c3 * of(RVX_SIN_PI_8);
    const Value v = c1 * of(RVX_SIN_PI_8) - c3 * of(RVX_COS_PI_8);
    x[1] = (plus + u) * of(f.secant[0]);
    x[3] = (minus + v) * of(f.secant[1]);
    x[5] = (minus - v) * of(f.secant[2]);
    x[7] = (plus - u) * of(f.secant[3]);
}

// x becomes x[n] = X[0] + sum over k from 1 of X[k] cos((2n+1) k pi / 16): the same lines
// from the last to the first.
template <bool scaled, typename Value>
RVX_INLINE void cosineSeries8(Value *x)
{
    constexpr RvxDct8Factors f = scaled ? RVX_DCT8_SCALED : RVX_DCT8_PLAIN;
    const auto of = [x](double factor) { return everywhere(factor, x[0]); };
    const Value first = scaled ? x[0] * of(f.first) : x[0], middle = x[4] * of(f.cos4);
    const Value s = first + middle, d = first - middle;
    const Value p = x[2] * of(f.cos8) + x[6] * of(f.sin8);
    const Value q = x[2] * of(f.sin8) - x[6] * of(f.cos8);
    const Value a0 = s + p, a1 = d + q, a2 = d - q, a3 = s - p;

    const Value g1 = x[1] * of(f.secant[0]), g3 = x[3] * of(f.secant[1]);
    const Value g5 = x[5] * of(f.secant[2]), g7 = x[7] * of(f.secant[3]);
    const Value sum17 = g1 + g7, sum35 = g3 + g5, dif17 = g1 - g7, dif35 = g3 - g5;
    const Value u = dif17 * of(RVX_COS_PI_8) + dif35 * of(RVX_SIN_PI_8);
    const Value v = (sum17 - sum35) * of(RVX_COS_PI_4);
    const Value w = dif17 * of(RVX_SIN_PI_8) - dif35 * of(RVX_COS_PI_8);
    const Value b0 = (sum17 + sum35) + u, b1 = u + v, b2 = v + w, b3 = w;
    x[0] = a0 + b0;
    x[7] = a0 - b0;
    x[1] = a1 + b1;
    x[6] = a1 - b1;
    x[2] = a2 + b2;
    x[5] = a2 - b2;
    x[3] = a3 + b3;
    x[4] = a3 - b3;
}

// The scaled transforms of 4 points: factors 1/2 and sqrt(1/2) cos(k pi/8).
constexpr double RVX_DCT4_COS = 0.6532814824381883;
constexpr double RVX_DCT4_SIN = 0.27059805007309845;

RVX_INLINE void scaledForward4(double *x)
{
    const double a0 = x[0] + x[3], a1 = x[1] + x[2], b0 = x[0] - x[3], b1 = x[1] - x[2];
    x[0] = (a0 + a1) * 0.5;
    x[1] = b0 * RVX_DCT4_COS + b1 * RVX_DCT4_SIN;
    x[2] = (a0 - a1) * 0.5;
    x[3] = b0 * RVX_DCT4_SIN - b1 * RVX_DCT4_COS;
}

RVX_INLINE void scaledInverse4(double *x)
{
    const double a0 = (x[0] + x[2]) * 0.5, a1 = (x[0] - x[2]) * 0.5;
    const double b0 = x[1] * RVX_DCT4_COS + x[3] * RVX_DCT4_SIN;
    const double b1 = x[1] * RVX_DCT4_SIN - x[3] * RVX_DCT4_COS;
    x[0] = a0 + b0;
    x[1] = a1 + b1;
    x[2] = a1 - b1;
    x[3] = a0 - b0;
}

RVX_INLINE void scaledBoth2(double *x)
{
    const double sum = x[0] + x[1], difference = x[0] - x[1];
    x[0] = sum * RVX_COS_PI_4;
    x[1] = difference * RVX_COS_PI_4;
}

#endif
