// rvxcorr: raw cross-correlation over a range of lags, and autocorrelation.
//
// Few lags are summed one by one, side by side in lanes. Many are taken from block
// transforms whose products are added up before the one inverse transform (C. M.
// Rader, An improved algorithm for high speed autocorrelation with applications to
// spectral estimation, 1970). Counts of operations decide; without memory for the
// transforms the sums step in, and nothing is reported.

#include "convolution/rvxcorr_paths.h"
#include "frame/rvxcheck.h"
#include "frame/rvxcplx.h"

RVX_MODULE("rvxcorr")

namespace {

template <typename A, typename B>
void crossCorr(const char *func, const A *src1, int len1, const B *src2, int len2,
               CorrValue<A, B> *dst, int loLag, int hiLag)
{
    RVX_REJECT_AS(func, src1 == nullptr, "Null SRC buffer pointer");
    RVX_REJECT_AS(func, src2 == nullptr, "Null SRC buffer pointer");
    RVX_REJECT_AS(func, dst == nullptr, "Null DST buffer pointer");
    RVX_REJECT_AS(func, len1 < 1, "Invalid SRC buffer length");
    RVX_REJECT_AS(func, len2 < 1, "Invalid SRC buffer length");
    RVX_REJECT_AS(func, loLag > hiLag, "Invalid LAG value");
    const std::int64_t lags = std::int64_t{hiLag} - loLag + 1;
    const CrossTask<A, B> task = {src1, len1, src2, len2, dst, loLag, lags};
    const CorrCosts costs = ownCrossCosts<A, B>(len1, lags);
    if (!(costs.blocks < costs.direct && ownCrossBlocks(task)))
        ownCrossDirect(task);
}

// The number of products that lag k of an unbiased estimate has.
void unbias(const AutoTask<double> &task)
{
    for (std::int64_t k = 0; k < task.lags; ++k)
        task.dst[k] /= static_cast<double>(task.len - k);
}

// Deliberately by the reciprocal, unlike the real form.
void unbias(const AutoTask<ZCplx> &task)
{
    for (std::int64_t k = 0; k < task.lags; ++k)
        task.dst[k] = task.dst[k] * (1.0 / static_cast<double>(task.len - k));
}

template <typename Sample>
void autoCorrDirect(const AutoTask<Sample> &task, int corrType)
{
    ownCrossDirect<Sample, Sample>(
        {task.src, task.len, task.src, task.len, task.dst, 0, task.lags});
    if (corrType == RVX_AUTOCORR_BIASED)
        for (std::int64_t k = 0; k < task.lags; ++k)
            task.dst[k] = task.dst[k] * (1.0 / static_cast<double>(task.len));
    else if (corrType == RVX_AUTOCORR_UNBIASED)
        unbias(task);
}

template <typename Sample>
void autoCorr(const char *func, const Sample *src, int len, Sample *dst, int nLags, int corrType)
{
    RVX_REJECT_AS(func, src == nullptr, "Null SRC buffer pointer");
    RVX_REJECT_AS(func, dst == nullptr, "Null DST buffer pointer");
    RVX_REJECT_AS(func, len < 1, "Invalid SRC buffer length");
    RVX_REJECT_AS(func, nLags < 1 || nLags > len, "Invalid LAG value");
    RVX_REJECT_AS(func, corrType < RVX_AUTOCORR_NORMAL || corrType > RVX_AUTOCORR_UNBIASED,
                  "Invalid auto-corr type");
    const AutoTask<Sample> task = {src, len, dst, nLags};
    const CorrCosts costs = ownAutoCosts<Sample>(len, nLags);
    if (!(costs.blocks < costs.direct && ownAutoBlocks(task, corrType)))
        autoCorrDirect(task, corrType);
}

} // namespace

void rvxdCrossCorr(const double *src1, int len1, const double *src2, int len2, double *dst,
                   int loLag, int hiLag)
{
    crossCorr(__func__, src1, len1, src2, len2, dst, loLag, hiLag);
}

void rvxzCrossCorr(const ZCplx *src1, int len1, const ZCplx *src2, int len2, ZCplx *dst, int loLag,
                   int hiLag)
{
    crossCorr(__func__, src1, len1, src2, len2, dst, loLag, hiLag);
}

void rvxdzCrossCorr(const double *src1, int len1, const ZCplx *src2, int len2, ZCplx *dst,
                    int loLag, int hiLag)
{
    crossCorr(__func__, src1, len1, src2, len2, dst, loLag, hiLag);
}

void rvxzdCrossCorr(const ZCplx *src1, int len1, const double *src2, int len2, ZCplx *dst,
                    int loLag, int hiLag)
{
    crossCorr(__func__, src1, len1, src2, len2, dst, loLag, hiLag);
}

void rvxdAutoCorr(const double *src, int len, double *dst, int nLags, int corrType)
{
    autoCorr(__func__, src, len, dst, nLags, corrType);
}

void rvxzAutoCorr(const ZCplx *src, int len, ZCplx *dst, int nLags, int corrType)
{
    autoCorr(__func__, src, len, dst, nLags, corrType);
}
