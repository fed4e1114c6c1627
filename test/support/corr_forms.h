// The four cross-correlations and the two autocorrelations by their names, for tests
// that hold for all of them.

#ifndef RVX_TEST_CORR_FORMS_H
#define RVX_TEST_CORR_FORMS_H

#include <cstdint>
#include <string>
#include <vector>

#include "convolution/rvxcorr_paths.h"
#include "reference/corr.h"
#include "reference/route2d.h"
#include "rvx.h"
#include "support/conv_forms.h"

#define RVX_CROSS_FORM(NAME, FORM, FIRST, SECOND)                                                  \
    struct NAME {                                                                                  \
        using A = FIRST;                                                                           \
        using B = SECOND;                                                                          \
        using Value = CorrValue<A, B>;                                                             \
        static constexpr reference::CorrForm form = FORM;                                          \
        static std::string name() { return "rvx" #NAME; }                                          \
        static void corr(const A *src1, int len1, const B *src2, int len2, Value *dst, int loLag,  \
                         int hiLag)                                                                \
        {                                                                                          \
            rvx##NAME(src1, len1, src2, len2, dst, loLag, hiLag);                                  \
        }                                                                                          \
    }

RVX_CROSS_FORM(dCrossCorr, reference::CorrForm::Real, double, double);
RVX_CROSS_FORM(zCrossCorr, reference::CorrForm::Complex, ZCplx, ZCplx);
RVX_CROSS_FORM(dzCrossCorr, reference::CorrForm::Mixed, double, ZCplx);
RVX_CROSS_FORM(zdCrossCorr, reference::CorrForm::Mixed, ZCplx, double);

#undef RVX_CROSS_FORM

#define RVX_AUTO_FORM(NAME, FORM, SAMPLE)                                                          \
    struct NAME {                                                                                  \
        using Sample = SAMPLE;                                                                     \
        static constexpr reference::CorrForm form = FORM;                                          \
        static std::string name() { return "rvx" #NAME; }                                          \
        static void corr(const Sample *src, int len, Sample *dst, int nLags, int corrType)         \
        {                                                                                          \
            rvx##NAME(src, len, dst, nLags, corrType);                                             \
        }                                                                                          \
    }

RVX_AUTO_FORM(dAutoCorr, reference::CorrForm::Real, double);
RVX_AUTO_FORM(zAutoCorr, reference::CorrForm::Complex, ZCplx);

#undef RVX_AUTO_FORM

using CrossForms = ::testing::Types<dCrossCorr, zCrossCorr, dzCrossCorr, zdCrossCorr>;
using AutoForms = ::testing::Types<dAutoCorr, zAutoCorr>;

// The path that the library's own counts choose.
template <typename Form>
bool crossTransforms(std::int64_t len1, std::int64_t lags)
{
    const CorrCosts costs = ownCrossCosts<typename Form::A, typename Form::B>(len1, lags);
    return costs.blocks < costs.direct;
}

template <typename Form>
bool autoTransforms(std::int64_t len, std::int64_t lags)
{
    const CorrCosts costs = ownAutoCosts<typename Form::Sample>(len, lags);
    return costs.blocks < costs.direct;
}

template <typename Form>
std::vector<typename Form::Value> crossOf(const std::vector<typename Form::A> &src1,
                                          const std::vector<typename Form::B> &src2, int loLag,
                                          int hiLag)
{
    std::vector<typename Form::Value> dst(
        static_cast<std::size_t>(std::int64_t{hiLag} - loLag + 1));
    Form::corr(src1.data(), static_cast<int>(src1.size()), src2.data(),
               static_cast<int>(src2.size()), dst.data(), loLag, hiLag);
    return dst;
}

template <typename Form>
std::vector<typename Form::Sample> autoOf(const std::vector<typename Form::Sample> &src, int nLags,
                                          int corrType)
{
    std::vector<typename Form::Sample> dst(static_cast<std::size_t>(nLags));
    Form::corr(src.data(), static_cast<int>(src.size()), dst.data(), nLags, corrType);
    return dst;
}

// All lags, each summed as the direct path states it.
template <typename Form>
std::vector<typename Form::Value> crossSums(const std::vector<typename Form::A> &src1,
                                            const std::vector<typename Form::B> &src2, int loLag,
                                            int hiLag)
{
    std::vector<typename Form::Value> sums;
    for (std::int64_t lag = loLag; lag <= hiLag; ++lag)
        sums.push_back(reference::corrInStatedOrder(src1, src2, lag));
    return sums;
}

#endif
