// rvxwlt: wavelet transforms by two-channel filter banks, periodic at every level: state
// records and the checks before each transform. The banks are in rvxwlt_banks, the
// levels in rvxwlt_levels, what one level does in rvxwlt_split, rvxwlt_join and
// rvxwlt_haar.
//
// S. Mallat, A theory for multiresolution signal decomposition, 1989.

#include "transform/rvxwlt.h"

#include <algorithm>
#include <cstdint>

#include "frame/rvxbuffer.h"
#include "frame/rvxcheck.h"
#include "transform/rvxwlt_banks.h"
#include "transform/rvxwlt_levels.h"

RVX_MODULE("rvxwlt")

namespace {

constexpr int doubleCore = 2;

bool isTooDeep(int level, int len)
{
    return level >= 32 || std::int64_t{1} << level >= 2 * std::int64_t{len};
}

// Samples and both extensions of a level fit, whatever the offsets of the filters are.
double *workFor(const RvxWtBank &bank, int len)
{
    const int longest = std::max(bank.len[0], bank.len[2]); // the others have the same two
    return rvxAllocDoubles(static_cast<std::uint32_t>(len) +
                           2 * static_cast<std::uint32_t>(longest));
}

void setBank(const RvxWtBank &bank, rvxWtState *state)
{
    for (int f = 0; f < 4; ++f) {
        state->len_filt[f] = bank.len[f];
        state->ofs_filt[f] = bank.ofs[f];
        state->tap_filt[f] = const_cast<double *>(bank.tap[f]); // a caller's own may change
    }
}

// The lengths of all levels, and what their coefficients add up to.
void setLengths(int len, int level, rvxWtState *state)
{
    state->lenLevel[0] = len;
    state->len_dec = 0;
    for (int i = 1; i <= 32; ++i) {
        const int above = state->lenLevel[i - 1];
        state->lenLevel[i] = i <= level ? above / 2 + above % 2 : 0;
        state->len_dec += state->lenLevel[i];
    }
    state->len_dec += state->lenLevel[level];
}

bool isHaar(const rvxWtState &state)
{
    return state.wtType == RVX_WT_HAAR || (state.wtType == RVX_WT_DAUBECHIES && state.par1 == 1);
}

bool isShiftedHaar(const rvxWtState &state)
{
    return (state.wtType == RVX_WT_BSPLINE || state.wtType == RVX_WT_BSPLINE_DUAL) &&
           state.par1 == 1 && state.par2 == 1;
}

RvxWtSplit *splitOf(const rvxWtState &state)
{
    if (isHaar(state))
        return rvxWtSplitHaar;
    return isShiftedHaar(state) ? rvxWtSplitShiftedHaar : rvxWtSplitByFilters;
}

RvxWtJoin *joinOf(const rvxWtState &state)
{
    if (isHaar(state))
        return rvxWtJoinHaar;
    return isShiftedHaar(state) ? rvxWtJoinShiftedHaar : rvxWtJoinByFilters;
}

} // namespace

void rvxdWtInit(int par1, int par2, int dataOrder, int level, rvxWtState *wtState, int wtType)
{
    rvxSetErrStatus(RVX_STATUS_OK);
    // The text names the other argument; this is deliberate.
    RVX_REJECT_IF(dataOrder < 1 || dataOrder > 31, "Not correct 'level' argument was passed! "
                                                   "Level must be  greater than or equal 0!");
    // The length of order 31 is more than its field holds; none is refused as too short.
    const int len = dataOrder < 31 ? 1 << dataOrder : 0;
    int coefficients;
    rvxdWtInitLen(par1, par2, len, level, wtState, wtType, &coefficients);
    if (rvxGetErrStatus() < 0) {
        RVX_REPORT(RVX_STATUS_BACKTRACE, "out rvxdWtInitLen");
        return;
    }
    wtState->dataOrder = dataOrder;
}

void rvxdWtInitLen(int par1, int par2, int len, int level, rvxWtState *wtState, int wtType,
                   int *len_dec)
{
    rvxSetErrStatus(RVX_STATUS_OK);
    RVX_REJECT_IF(wtState == nullptr, "'NULL' pointer in 'wtState' argument was passed!");
    RVX_REJECT_IF(len_dec == nullptr, "'NULL' pointer in 'len_dec' argument was passed!");
    RVX_REJECT_IF(len < 2, "Not correct 'len' argument was passed! "
                           "'len' argument must be greater than or equal 2!");
    RVX_REJECT_IF(level < 0, "Not correct 'level' argument was passed! "
                             "Level must be  greater than or equal 0!");
    RVX_REJECT_IF(isTooDeep(level, len), "Not correct 'level' argument was passed! "
                                         "2^level can not be  greater than or equal 2*len!");
    RVX_REJECT_IF(wtType < RVX_WT_HAAR || wtType > RVX_WT_QUADRATIC_SPLINE,
                  "Not correct 'wtType' argument was passed!");
    // One name is without quotes; this is deliberate.
    RVX_REJECT_IF(!rvxWtHasPar1(wtType, par1), "Not correct par1 argument was passed!");
    const RvxWtBank *bank = rvxWtBank(wtType, par1, par2);
    RVX_REJECT_IF(bank == nullptr, "Not correct 'par2' argument was passed!");
    double *workBuf = workFor(*bank, len);
    if (workBuf == nullptr) {
        RVX_REPORT(RVX_STATUS_NO_MEMORY, "No working wavelet memory!");
        return;
    }
    // Only from here on, so that a live state outlasts a call that fails.
    setBank(*bank, wtState);
    wtState->wtKind = wtType <= RVX_WT_VAIDYANATHAN ? 1 : 2;
    wtState->workBuf = workBuf;
    wtState->core = doubleCore;
    wtState->wtType = wtType;
    wtState->par1 = par1;
    wtState->par2 = par2;
    wtState->level = level;
    wtState->dataOrder = -1;
    setLengths(len, level, wtState);
    *len_dec = wtState->len_dec;
}

void rvxWtFree(rvxWtState *wtState)
{
    rvxSetErrStatus(RVX_STATUS_OK);
    RVX_REJECT_IF(wtState == nullptr, "wtState==0");
    rvxFreeAligned(wtState->workBuf);
    *wtState = rvxWtState{};
}

void rvxdWtDecompose(rvxWtState *wtState, const double *src, double *dst)
{
    rvxSetErrStatus(RVX_STATUS_OK);
    RVX_REJECT_IF(wtState == nullptr, "'NULL' pointer in 'wtState' argument was passed!");
    RVX_REJECT_IF(src == nullptr, "'NULL' pointer in 'src' argument was passed!");
    RVX_REJECT_IF(dst == nullptr, "'NULL' pointer in 'dst' argument was passed!");
    RVX_REJECT_IF(wtState->core != doubleCore,
                  "Error in the (float, double or short) core of wtState!");
    if (wtState->level == 0)
        rvxdbCopy(src, dst, wtState->lenLevel[0]);
    else
        rvxWtSplitLevels(*wtState, src, dst, splitOf(*wtState));
}

void rvxdWtReconstruct(rvxWtState *wtState, const double *src, double *dst)
{
    rvxSetErrStatus(RVX_STATUS_OK);
    RVX_REJECT_IF(wtState == nullptr, "'NULL' pointer in 'wtState' argument was passed!");
    RVX_REJECT_IF(src == nullptr, "'NULL' pointer in 'src' argument was passed!");
    RVX_REJECT_IF(dst == nullptr, "'NULL' pointer in 'dst' argument was passed!");
    RVX_REJECT_IF(wtState->core != doubleCore,
                  "Error in the (float, double or short) core of wtState!");
    if (wtState->level == 0)
        rvxdbCopy(src, dst, wtState->lenLevel[0]);
    else
        rvxWtJoinLevels(*wtState, src, dst, joinOf(*wtState));
}
