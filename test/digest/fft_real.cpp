// Real and conjugate-symmetric Fourier transforms.

#include "digest.h"

namespace {

const int flagSets[] = {RVX_FFT_FORWARD, RVX_FFT_INVERSE, RVX_FFT_INVERSE | RVX_FFT_NO_SCALE};

// All short orders, and one on each side of each change of plan; the results of
// the large ones are folded by the digest like any other.
const int orders[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 14, 15};

} // namespace

RVX_DIGEST(rvxdRealFft)
{
    FixedData data(30);
    for (int order : orders)
        for (int flags : flagSets) {
            std::vector<double> samps = data.samples((1 << order) + 2);
            rvxdRealFft(samps.data(), order, flags);
            digest.add(samps);
        }
    rvxdRealFft(nullptr, 32, RVX_FFT_FORWARD);
    digest.add(rvxGetErrStatus());
}

RVX_DIGEST(rvxdRealFftNip)
{
    FixedData data(31);
    for (int order : orders)
        for (int flags : flagSets) {
            const std::vector<double> samps = data.samples(1 << order);
            std::vector<double> spectrum(samps.size() + 2);
            rvxdRealFftNip(samps.data(), spectrum.data(), order, flags);
            digest.add(samps);
            digest.add(spectrum);
        }
    rvxdRealFftNip(nullptr, nullptr, 3, RVX_FFT_FORWARD);
    digest.add(rvxGetErrStatus());
}

RVX_DIGEST(rvxdCcsFft)
{
    FixedData data(32);
    for (int order : orders)
        for (int flags : flagSets) {
            std::vector<double> spectrum = data.samples((1 << order) + 2);
            rvxdCcsFft(spectrum.data(), order, flags);
            digest.add(spectrum);
        }
    rvxdCcsFft(nullptr, -1, RVX_FFT_FORWARD);
    digest.add(rvxGetErrStatus());
}

RVX_DIGEST(rvxdCcsFftNip)
{
    FixedData data(33);
    for (int order : orders)
        for (int flags : flagSets) {
            const std::vector<double> spectrum = data.samples((1 << order) + 2);
            std::vector<double> samps(spectrum.size());
            rvxdCcsFftNip(spectrum.data(), samps.data(), order, flags);
            digest.add(spectrum);
            digest.add(samps);
        }
    rvxdCcsFftNip(nullptr, nullptr, 3, RVX_FFT_FORWARD);
    digest.add(rvxGetErrStatus());
}
