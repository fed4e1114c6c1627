// Complex Fourier transforms.

#include "digest.h"

namespace {

// Orders that take every kind of kernel and every kind of pass above them.
const int orders[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18};
const int flagWords[] = {1, 2, 18, 129, 130, 65, 66, 82};

} // namespace

RVX_DIGEST(rvxzFft)
{
    FixedData data(20);
    for (int order : orders)
        for (int flags : flagWords) {
            std::vector<ZCplx> samps = data.cplxSamples(1 << order);
            rvxzFft(samps.data(), order, flags);
            digest.add(samps);
        }
    digest.add(rvxGetErrStatus());
}

RVX_DIGEST(rvxzFftNip)
{
    FixedData data(21);
    for (int order : orders)
        for (int flags : flagWords) {
            const std::vector<ZCplx> in = data.cplxSamples(1 << order);
            std::vector<ZCplx> out(in.size());
            rvxzFftNip(in.data(), out.data(), order, flags);
            digest.add(out);
        }
    digest.add(rvxGetErrStatus());
}

RVX_DIGEST(rvxzrFftNip)
{
    FixedData data(22);
    for (int order : orders)
        for (int flags : flagWords) {
            const std::vector<double> re = data.samples(1 << order);
            const std::vector<double> im = data.samples(1 << order);
            std::vector<double> reOut(re.size());
            std::vector<double> imOut(im.size());
            rvxzrFftNip(re.data(), im.data(), reOut.data(), imOut.data(), order, flags);
            digest.add(reOut);
            digest.add(imOut);
        }
    digest.add(rvxGetErrStatus());
}
