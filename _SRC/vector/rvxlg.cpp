// rvxlg: common logarithm of blocks.
//
// The natural logarithm, multiplied by log10(e). Four neighbours share one division,
// and four such groups one instruction.

#include "frame/rvxcheck.h"
#include "frame/rvxfloatmode.h"
#include "frame/rvxkernel.h"
#include "frame/rvxlanes.h"
#include "rvx.h"
#include "vector/rvxlnexp.h"

RVX_MODULE("rvxlg")

namespace {

constexpr int groupLen = 4;
constexpr int runLen = 4 * groupLen;
constexpr double lgOfE = 0x1.bcb7b1526e50ep-2;

// n is a multiple of runLen.
RVX_KERNEL void lgGroups(const double *src, double *dst, int n)
{
    for (int i = 0; i < n; i += runLen) {
        // One group is one vector. Its products come out alike in all four lanes.
        Reduced part[4];
        Lanes mate[4], pairs[4], product[4];
        LaneMask isSpecial = {};
        for (int j = 0; j < 4; ++j) {
            const Lanes x = loadLanes(src + i + 4 * j);
            isSpecial = isSpecial | hasSpecialLog(x);
            part[j] = reduceLog(x);
            mate[j] = swapParts(part[j].d);
            const Lanes pair = part[j].d * mate[j];
            pairs[j] = swapHalves(pair);
            product[j] = pair * pairs[j];
        }
        const Lanes r =
            allLanes(1.0) / diagonalLanes(product[0], product[1], product[2], product[3]);
        const Lanes share[4] = {laneEverywhere<0>(r), laneEverywhere<1>(r), laneEverywhere<2>(r),
                                laneEverywhere<3>(r)};
        Lanes log[4];
        for (int j = 0; j < 4; ++j) {
            const Lanes s = part[j].g * mate[j] * (pairs[j] * share[j]);
            log[j] = finishLog(part[j].k, part[j].g, s);
        }
        if (anyLane(isSpecial))
            for (int j = 0; j < 4; ++j)
                log[j] = specialLogs(loadLanes(src + i + 4 * j), log[j]);
        for (int j = 0; j < 4; ++j)
            storeLanes(dst + i + 4 * j, log[j] * allLanes(lgOfE));
    }
}

// Groups are counted from the end of the block; what is left at its beginning goes
// the other way.
void lgBlock(const double *src, double *dst, int len)
{
    const int single = len % groupLen;
    const int rest = len % runLen;
    for (int i = 0; i < single; ++i)
        dst[i] = rvxExactLn(src[i]) * lgOfE;
    if (single < rest) {
        double some[runLen] = {};
        for (int i = single; i < rest; ++i)
            some[i - single] = src[i];
        lgGroups(some, some, runLen);
        for (int i = single; i < rest; ++i)
            dst[i] = some[i - single];
    }
    lgGroups(src + rest, dst + rest, len - rest);
}

} // namespace

void rvxdbLg1(double *vec, int len)
{
    RVX_REJECT_IF(len <= 0, "len<=0");
    RVX_REJECT_IF(vec == nullptr, "src==0"); // the name is deliberate
    const FloatMode before = enterPlainMode();
    lgBlock(vec, vec, len);
    leavePlainMode(before);
}

void rvxdbLg2(const double *src, double *dst, int len)
{
    RVX_REJECT_IF(len <= 0, "len<=0");
    RVX_REJECT_IF(src == nullptr, "src==0");
    RVX_REJECT_IF(dst == nullptr, "dst==0");
    const FloatMode before = enterPlainMode();
    lgBlock(src, dst, len);
    leavePlainMode(before);
}
