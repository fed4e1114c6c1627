// Up and down sampling.

#include "digest.h"

namespace {

template <typename Sample, typename Sampler>
void digestSampler(Digest &digest, const std::vector<Sample> &signal, Sampler sampler)
{
    for (int factor = 1; factor <= 9; ++factor)
        for (int n = 1; n <= 30; ++n) {
            std::vector<Sample> dst(static_cast<std::size_t>(n * factor));
            int dstLen = 0;
            int phase = n % factor;
            sampler(signal.data(), n, dst.data(), &dstLen, factor, &phase);
            digest.add(dst);
            digest.add(dstLen);
            digest.add(phase);
        }
}

} // namespace

RVX_DIGEST(rvxdUpSample)
{
    digestSampler(digest, FixedData(72).samples(30), rvxdUpSample);
}

RVX_DIGEST(rvxzUpSample)
{
    digestSampler(digest, FixedData(73).cplxSamples(30), rvxzUpSample);
}

RVX_DIGEST(rvxdDownSample)
{
    digestSampler(digest, FixedData(74).samples(30), rvxdDownSample);
}

RVX_DIGEST(rvxzDownSample)
{
    digestSampler(digest, FixedData(75).cplxSamples(30), rvxzDownSample);
}
