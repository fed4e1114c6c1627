// rvxrand: uniform and Gaussian noise from a seed.
//
// Both are made of the same integers. These are the words of a record and come one
// after the other; the arithmetic on them waits for nothing and is done in blocks.

#include "generation/rvxrand.h"

#include <cstdint>
#include <cstring>

#include "frame/rvxcheck.h"
#include "frame/rvxfloatmode.h"
#include "generation/rvxrand_gauss.h"
#include "generation/rvxrand_uni.h"
#include "generation/rvxrand_words.h"
#include "rvx.h"

RVX_MODULE("rvxrand")

namespace {

constexpr std::uint32_t firstCong = 1131199209;

// The seed without its fraction, modulo 2^32 with its sign; from magnitudes of 2^32 on,
// infinities and NaNs among them, leading bits of the significand.
std::uint32_t seedWord(double seed)
{
    std::uint64_t bits;
    std::memcpy(&bits, &seed, sizeof bits);
    const auto exponent = static_cast<std::uint32_t>(bits >> 52) & 0x7ff;
    if (exponent <= 1022)
        return 0;
    const std::uint32_t leading = static_cast<std::uint32_t>(bits >> 21) | 0x80000000;
    const std::uint32_t word = leading >> ((1054 - exponent) & 31);
    return bits >> 63 != 0 ? 0 - word : word;
}

// The words of a seed but for the carry.
template <typename State>
void plantSeed(double seed, State *state)
{
    const auto drawn = [state] {
        state->seedInit = state->seedInit * 214013 + 2531011;
        return (state->seedInit & 0x7fff0000) >> 16;
    };
    state->x1 = seedWord(seed);
    state->seedInit = state->x1;
    state->x2 = drawn();
    state->x3 = drawn();
    state->seedCong = firstCong;
}

} // namespace

void rvxdRandUniInit(double seed, double low, double high, rvxRandUniState *state)
{
    RVX_REJECT_IF(state == nullptr, "Null pointer to state structure");
    const FloatMode before = enterPlainMode();
    state->mean = low + 0.5 * (high - low);
    state->scale = (high - low) * 2.328306436539e-10;
    leavePlainMode(before);
    state->carry = 0;
    plantSeed(seed, state);
    double dropped[5];
    rvxFillUniform(state, dropped, 5);
}

void rvxzRandUniInit(double seed, double low, double high, rvxRandUniState *state)
{
    RVX_REJECT_IF(state == nullptr, "Null pointer to state structure");
    rvxdRandUniInit(seed, low, high, state);
}

double rvxdRandUni(rvxRandUniState *state)
{
    RVX_REJECT_IF(state == nullptr, "Null pointer to state structure", 0.0);
    double sample;
    rvxFillUniform(state, &sample, 1);
    return sample;
}

ZCplx rvxzRandUni(rvxRandUniState *state)
{
    RVX_REJECT_IF(state == nullptr, "Null pointer to state structure", ZCplx{0.0, 0.0});
    ZCplx sample;
    rvxFillUniform(state, &sample.re, 2);
    return sample;
}

void rvxdbRandUni(rvxRandUniState *state, double *samps, unsigned sampsLen)
{
    RVX_REJECT_IF(state == nullptr, "Null pointer to state structure");
    RVX_REJECT_IF(samps == nullptr, "Null pointer to data buffer");
    RVX_REJECT_IF(sampsLen == 0, "Null length of buffer");
    rvxFillUniform(state, samps, sampsLen);
}

void rvxzbRandUni(rvxRandUniState *state, ZCplx *samps, unsigned sampsLen)
{
    RVX_REJECT_IF(state == nullptr, "Null pointer to state structure");
    RVX_REJECT_IF(samps == nullptr, "Null pointer to data buffer");
    RVX_REJECT_IF(sampsLen == 0, "Null length of buffer");
    rvxFillUniform(state, &samps->re, 2 * static_cast<std::uint64_t>(sampsLen));
}

// Unlike the uniform generator, this one starts with a carry and drops no samples, on
// purpose: the sequence of a seed depends on it.
void rvxdRandGausInit(double seed, double mean, double stDev, rvxRandGausState *state)
{
    RVX_REJECT_IF(state == nullptr, "Null pointer to state structure");
    state->carry = 1;
    state->mean = mean;
    state->stDev = stDev;
    plantSeed(seed, state);
    state->haveSpare = 0;
}

void rvxzRandGausInit(double seed, double mean, double stDev, rvxRandGausState *state)
{
    RVX_REJECT_IF(state == nullptr, "Null pointer to state structure");
    rvxdRandGausInit(seed, mean, stDev, state);
}

double rvxdRandGaus(rvxRandGausState *state)
{
    RVX_REJECT_IF(state == nullptr, "Null pointer to state structure", 0.0);
    double sample;
    rvxFillGaussian(state, &sample, 1);
    return sample;
}

ZCplx rvxzRandGaus(rvxRandGausState *state)
{
    RVX_REJECT_IF(state == nullptr, "Null pointer to state structure", ZCplx{0.0, 0.0});
    ZCplx sample;
    rvxFillGaussian(state, &sample.re, 2);
    return sample;
}

void rvxdbRandGaus(rvxRandGausState *state, double *samps, unsigned sampsLen)
{
    RVX_REJECT_IF(state == nullptr, "Null pointer to state structure");
    RVX_REJECT_IF(samps == nullptr, "Null pointer to data buffer");
    RVX_REJECT_IF(sampsLen == 0, "Null length of buffer");
    rvxFillGaussian(state, samps, sampsLen);
}

void rvxzbRandGaus(rvxRandGausState *state, ZCplx *samps, unsigned sampsLen)
{
    RVX_REJECT_IF(state == nullptr, "Null pointer to state structure");
    RVX_REJECT_IF(samps == nullptr, "Null pointer to data buffer");
    RVX_REJECT_IF(sampsLen == 0, "Null length of buffer");
    rvxFillGaussian(state, &samps->re, 2 * static_cast<std::uint64_t>(sampsLen));
}
