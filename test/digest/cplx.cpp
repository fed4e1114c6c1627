// Complex block forms.

#include "digest.h"

namespace {

const int lengths[] = {1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 31, 32, 33, 100, 128, 129, 300};

std::vector<ZCplx> cplxPatterns(FixedData &data, int n)
{
    std::vector<ZCplx> block(static_cast<std::size_t>(n));
    for (ZCplx &z : block)
        z = {data.pattern(), data.pattern()};
    return block;
}

// Moves keep every bit.
void addBits(Digest &digest, const std::vector<double> &block)
{
    for (double x : block)
        digest.addBits(x);
}

void addBits(Digest &digest, const std::vector<ZCplx> &block)
{
    for (ZCplx z : block) {
        digest.addBits(z.re);
        digest.addBits(z.im);
    }
}

// A function from a complex block to a block of doubles.
void digestParts(Digest &digest, std::uint64_t seed, void (*function)(const ZCplx *, double *, int))
{
    FixedData data(seed);
    for (int n : lengths) {
        std::vector<double> dst(static_cast<std::size_t>(n));
        function(cplxPatterns(data, n).data(), dst.data(), n);
        digest.add(dst);
        function(data.cplxSamples(n).data(), dst.data(), n);
        digest.add(dst);
    }
}

// A function from a complex block of n to one of as many or 2n - 2.
void digestConjugates(Digest &digest, std::uint64_t seed,
                      void (*function)(const ZCplx *, ZCplx *, int))
{
    FixedData data(seed);
    for (int n : lengths) {
        std::vector<ZCplx> dst(static_cast<std::size_t>(2 * n));
        function(cplxPatterns(data, n + 1).data(), dst.data(), n);
        addBits(digest, dst);
    }
}

// The same in place.
void digestConjugates(Digest &digest, std::uint64_t seed, void (*function)(ZCplx *, int))
{
    FixedData data(seed);
    for (int n : lengths) {
        std::vector<ZCplx> block = cplxPatterns(data, 2 * n);
        function(block.data(), n);
        addBits(digest, block);
    }
}

} // namespace

RVX_DIGEST(rvxzbConj1)
{
    digestConjugates(digest, 501, rvxzbConj1);
}

RVX_DIGEST(rvxzbConj2)
{
    digestConjugates(digest, 502, rvxzbConj2);
}

RVX_DIGEST(rvxzbConjFlip2)
{
    digestConjugates(digest, 503, rvxzbConjFlip2);
}

RVX_DIGEST(rvxzbConjExtend1)
{
    digestConjugates(digest, 504, rvxzbConjExtend1);
}

RVX_DIGEST(rvxzbConjExtend2)
{
    digestConjugates(digest, 505, rvxzbConjExtend2);
}

RVX_DIGEST(rvxzbReal)
{
    digestParts(digest, 506, rvxzbReal);
}

RVX_DIGEST(rvxzbImag)
{
    digestParts(digest, 507, rvxzbImag);
}

RVX_DIGEST(rvxzbCplxTo2Real)
{
    FixedData data(508);
    for (int n : lengths) {
        std::vector<double> re(static_cast<std::size_t>(n)), im(re);
        rvxzbCplxTo2Real(cplxPatterns(data, n).data(), re.data(), im.data(), n);
        addBits(digest, re);
        addBits(digest, im);
    }
}

RVX_DIGEST(rvxzb2RealToCplx)
{
    FixedData data(509);
    for (int n : lengths) {
        const std::vector<double> re = data.samples(n), im = data.samples(n);
        std::vector<ZCplx> dst(static_cast<std::size_t>(n));
        for (const double *real : {re.data(), static_cast<const double *>(nullptr)})
            for (const double *imag : {im.data(), static_cast<const double *>(nullptr)}) {
                rvxzb2RealToCplx(real, imag, dst.data(), n);
                addBits(digest, dst);
            }
    }
}

RVX_DIGEST(rvxzbPowerSpectr)
{
    digestParts(digest, 510, rvxzbPowerSpectr);
}

RVX_DIGEST(rvxzbMag)
{
    digestParts(digest, 511, rvxzbMag);
}

RVX_DIGEST(rvxzbPhase)
{
    digestParts(digest, 512, rvxzbPhase);
}

RVX_DIGEST(rvxzbCartToPolar)
{
    FixedData data(513);
    for (int n : lengths) {
        std::vector<double> mag(static_cast<std::size_t>(n)), phase(mag);
        for (const std::vector<ZCplx> &src : {cplxPatterns(data, n), data.cplxSamples(n)}) {
            rvxzbCartToPolar(src.data(), mag.data(), phase.data(), n);
            digest.add(mag);
            digest.add(phase);
        }
    }
}

RVX_DIGEST(rvxzbPolarToCart)
{
    FixedData data(514);
    for (int n : lengths) {
        const std::vector<double> mag = data.samples(n);
        std::vector<double> phase = data.samples(n), far(phase), any(phase);
        for (double &x : phase)
            x *= 4.0;
        for (double &x : far)
            x *= 0x1p20;
        for (double &x : any)
            x = data.pattern();
        std::vector<ZCplx> dst(static_cast<std::size_t>(n));
        for (const std::vector<double> &angles : {phase, far, any}) {
            rvxzbPolarToCart(mag.data(), angles.data(), dst.data(), n);
            digest.add(dst);
        }
    }
}
