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

// One group is one vector: its products come out alike in all four lanes.
template <int count>
RVX_INLINE void beginGroups(const double *src, LogParts &parts, int at, Lanes &least)
{
    const Bundle<count> d = reduceLog<count>(src, parts, at, least);
    const Bundle<count> mate = swapParts(d);
    const Bundle<count> pair = d * mate;
    const Bundle<count> otherPair = swapHalves(pair);
    const Bundle<count> share = overFours(1.0, pair * otherPair);
    storeBundle(parts.s + at, loadBundle<count>(parts.g + at) * mate * (otherPair * share));
}

// n is a multiple of runLen.
RVX_KERNEL void lgGroups(const double *src, double *dst, int n)
{
    LogParts parts;
    for (int from = 0; from < n; from += logChunkLen) {
        const int len = n - from < logChunkLen ? n - from : logChunkLen;
        const double *x = src + from;
        double *log = dst + from;
        Lanes least = noSpecialLogs();
        int i = 0;
        for (; i < len; i += 16)
            beginGroups<4>(x, parts, i, least);
        for (i = 0; i < len - 31; i += 32)
            logSeries<8>(parts, i);
        for (; i < len; i += 16)
            logSeries<4>(parts, i);
        const bool isSpecial = mayBeSpecialLogs(least);
        for (i = 0; i < len; i += 16)
            storeBundle(log + i, logsOf<4>(x, parts, i, isSpecial) * lgOfE);
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
