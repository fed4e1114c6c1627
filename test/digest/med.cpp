// Median filter.

#include "digest.h"

namespace {

const int masks[] = {1, 2, 3, 4, 5, 6, 7, 9, 10, 31, 101, 300, 503, 100000};

} // namespace

RVX_DIGEST(rvxdbMedianFilter1)
{
    FixedData data(76);
    for (int masksize : masks)
        for (int len : {1, 2, 3, 4, 7, 8, 9, 50, 333, 600}) {
            std::vector<double> block = data.samples(len);
            rvxdbMedianFilter1(block.data(), len, masksize);
            digest.add(block);
        }
}

RVX_DIGEST(rvxdbMedianFilter2)
{
    FixedData data(77);
    for (int masksize : masks) {
        const std::vector<double> in = data.samples(4200);
        std::vector<double> out(4200);
        rvxdbMedianFilter2(in.data(), out.data(), 4200, masksize);
        digest.add(out);
    }
}
