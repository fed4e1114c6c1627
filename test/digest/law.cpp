// Companding.

#include "digest.h"

namespace {

const int lengths[] = {1, 2, 7, 15, 16, 17, 33, 100, 1001};

void digestEncoder(Digest &digest, void (*encode)(const double *, unsigned char *, int))
{
    FixedData data(290);
    for (const int n : lengths) {
        std::vector<double> src = data.samples(n);
        for (std::size_t i = 0; i < src.size(); ++i) {
            if (i % 3 == 0)
                src[i] *= src[i] * src[i] * src[i];
            if (i % 11 == 5)
                src[i] = data.pattern();
        }
        std::vector<unsigned char> dst(src.size() + 1);
        encode(src.data(), dst.data(), n);
        for (const unsigned char code : dst)
            digest.add(int{code});
    }
}

void digestDecoder(Digest &digest, void (*decode)(const unsigned char *, double *, int))
{
    FixedData data(291);
    for (const int n : lengths) {
        std::vector<unsigned char> src;
        src.reserve(static_cast<std::size_t>(n));
        for (int i = 0; i < n; ++i)
            src.push_back(static_cast<unsigned char>(data.word()));
        std::vector<double> dst(src.size() + 1);
        decode(src.data(), dst.data(), n);
        for (const double x : dst)
            digest.addBits(x);
    }
}

} // namespace

RVX_DIGEST(rvxdbLinToALaw)
{
    digestEncoder(digest, rvxdbLinToALaw);
}

RVX_DIGEST(rvxdbLinToMuLaw)
{
    digestEncoder(digest, rvxdbLinToMuLaw);
}

RVX_DIGEST(rvxdbALawToLin)
{
    digestDecoder(digest, rvxdbALawToLin);
}

RVX_DIGEST(rvxdbMuLawToLin)
{
    digestDecoder(digest, rvxdbMuLawToLin);
}
