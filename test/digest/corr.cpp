// Correlation: few lags, summed, and many, transformed.

#include "digest.h"

namespace {

template <typename A, typename B, typename Value, typename Correlate>
void digestCross(Digest &digest, const std::vector<A> &first, const std::vector<B> &second,
                 const Value &zero, Correlate correlate)
{
    struct Case {
        int len1, len2, loLag, hiLag;
    };
    const Case cases[] = {{1, 1, 0, 0},        {9, 7, -12, 12},    {50, 61, -5, 44},
                          {61, 50, -70, -2},   {200, 3, -90, 9},   {700, 600, -3, 17},
                          {700, 650, -40, 40}, {301, 700, 5, 260}, {650, 700, -400, 100}};
    for (const Case &c : cases) {
        std::vector<Value> dst(static_cast<std::size_t>(c.hiLag - c.loLag + 1), zero);
        correlate(first.data(), c.len1, second.data(), c.len2, dst.data(), c.loLag, c.hiLag);
        digest.add(dst);
    }
}

template <typename Sample, typename Correlate>
void digestAuto(Digest &digest, const std::vector<Sample> &signal, Correlate correlate)
{
    const int cases[][2] = {{1, 1},    {7, 7},     {100, 13}, {101, 30},
                            {700, 64}, {699, 300}, {600, 600}};
    for (const auto &c : cases)
        for (int type = RVX_AUTOCORR_NORMAL; type <= RVX_AUTOCORR_UNBIASED; ++type) {
            std::vector<Sample> dst(static_cast<std::size_t>(c[1]));
            correlate(signal.data(), c[0], dst.data(), c[1], type);
            digest.add(dst);
        }
}

} // namespace

RVX_DIGEST(rvxdCrossCorr)
{
    digestCross(digest, FixedData(90).samples(700), FixedData(91).samples(700), 0.0, rvxdCrossCorr);
}

RVX_DIGEST(rvxzCrossCorr)
{
    digestCross(digest, FixedData(92).cplxSamples(700), FixedData(93).cplxSamples(700),
                ZCplx{0.0, 0.0}, rvxzCrossCorr);
}

RVX_DIGEST(rvxdzCrossCorr)
{
    digestCross(digest, FixedData(94).samples(700), FixedData(95).cplxSamples(700), ZCplx{0.0, 0.0},
                rvxdzCrossCorr);
}

RVX_DIGEST(rvxzdCrossCorr)
{
    digestCross(digest, FixedData(96).cplxSamples(700), FixedData(97).samples(700), ZCplx{0.0, 0.0},
                rvxzdCrossCorr);
}

RVX_DIGEST(rvxdAutoCorr)
{
    digestAuto(digest, FixedData(98).samples(700), rvxdAutoCorr);
}

RVX_DIGEST(rvxzAutoCorr)
{
    digestAuto(digest, FixedData(99).cplxSamples(700), rvxzAutoCorr);
}
