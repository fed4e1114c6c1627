// Median filter.

#include "digest.h"

namespace {

const int masks[] = {1, 2, 3, 4, 5, 6, 7, 9, 10, 31, 101, 151, 153, 300, 100000};

} // namespace

RVX_DIGEST(rvxdbMedianFilter1)
{
    FixedData data(76);
    for (int masksize : masks)
        for (int len : {1, 2, 3, 4, 7, 8, 9, 50, 333}) {
            std::vector<double> block = data.samples(len);
            rvxdbMedianFilter1(block.data(), len, masksize);
            digest.add(block);
        }
}

RVX_DIGEST(rvxdbMedianFilter2)
{
    FixedData data(77);
    for (int masksize : masks) {
        const std::vector<double> in = data.samples(5000);
        std::vector<double> out(5000);
        rvxdbMedianFilter2(in.data(), out.data(), 5000, masksize);
        digest.add(out);
    }
}
