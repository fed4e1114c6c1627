// The paths of the correlations and the choice among them.

#ifndef RVXCORR_PATHS_H
#define RVXCORR_PATHS_H

#include <cstdint>
#include <type_traits>

#include "rvx.h"

template <typename A, typename B>
using CorrValue = std::conditional_t<std::is_same_v<A, B>, A, ZCplx>;

// dst[j] = sum of conj(src1[i]) * src2[i + loLag + j], 0 <= j < lags, over all i that
// are in both sequences. Lengths and lags are at least 1.
template <typename A, typename B>
struct CrossTask {
    const A *src1;
    std::int64_t len1;
    const B *src2;
    std::int64_t len2;
    CorrValue<A, B> *dst;
    std::int64_t loLag;
    std::int64_t lags;
};

// dst[k] = sum of conj(src[i]) * src[i + k], 0 <= k < lags <= len.
template <typename Sample>
struct AutoTask {
    const Sample *src;
    std::int64_t len;
    Sample *dst;
    std::int64_t lags;
};

// Operations of either path. The sums of all sizes that have memory are exact.
struct CorrCosts {
    double direct;
    double blocks;
};

template <typename A, typename B>
CorrCosts ownCrossCosts(std::int64_t len1, std::int64_t lags);
template <typename Sample>
CorrCosts ownAutoCosts(std::int64_t len, std::int64_t lags);

// Each sum by itself, in ascending order of i.
template <typename A, typename B>
void ownCrossDirect(const CrossTask<A, B> &task);

// By transforms of blocks, at 9 lags and more, which have blocks of 32 and more. In the
// forms with a complex operand src2[0] counts as zero: deliberate. False, and nothing
// written, when there is no memory for its buffers and tables.
template <typename A, typename B>
bool ownCrossBlocks(const CrossTask<A, B> &task);

// The same for one sequence, at 9 lags and more: dst[k] is multiplied by 1/N * weight
// (k), N being the length of the transforms.
template <typename Sample>
bool ownAutoBlocks(const AutoTask<Sample> &task, int corrType);

#endif
