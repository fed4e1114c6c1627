// The cosine transform.

#include "digest.h"

RVX_DIGEST(rvxdDct)
{
    FixedData data(61);
    std::vector<int> lengths;
    for (int len = 1; len <= 40; ++len)
        lengths.push_back(len);
    for (int len : {64, 77, 100, 128, 225, 256, 512, 1000, 1024, 2048, 8192, 16384})
        lengths.push_back(len);
    for (int flags : {RVX_FFT_FORWARD, RVX_FFT_INVERSE})
        for (int len : lengths) {
            const std::vector<double> src = data.samples(len);
            std::vector<double> dst(src.size());
            rvxdDct(src.data(), dst.data(), len, flags);
            digest.add(dst);
        }
    rvxdDct(nullptr, nullptr, 0, RVX_FFT_FREE_TABLES);
    digest.add(rvxGetErrStatus());
    rvxdDct(nullptr, nullptr, 0, RVX_FFT_FORWARD);
    digest.add(rvxGetErrStatus());
}
