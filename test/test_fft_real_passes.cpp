// The passes between a real transform and the complex one of half its length.

#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/guarded.h"
#include "support/real_fronts.h"
#include "transform/rvxfftd.h"
#include "transform/rvxtwd.h"

namespace {

// The passes' formulas, one bin after the other.
std::vector<ZCplx> plainPost(std::vector<ZCplx> z, int direction, double scale, const ZCplx *table)
{
    const std::size_t h = z.size();
    for (std::size_t k = 1; k < h / 2; ++k) {
        const double tr = table[k].re;
        const double ti = table[k].im;
        const ZCplx a = z[k];
        const ZCplx b = z[h - k];
        if (direction == 1) {
            const double P = ti * (a.re - b.re) + tr * (a.im + b.im);
            const double Q = ti * (a.im + b.im) - tr * (a.re - b.re);
            z[k] = {b.re + P, Q - b.im};
            z[h - k] = {a.re - P, Q - a.im};
        } else {
            const double P = tr * (a.im + b.im) - ti * (a.re - b.re);
            const double Q = tr * (a.re - b.re) + ti * (a.im + b.im);
            z[k] = {a.re + P, a.im - Q};
            z[h - k] = {b.re - P, b.im - Q};
        }
    }
    if (h > 1 && direction == 1)
        z[h / 2].im = -z[h / 2].im;
    if (direction == -1)
        for (std::size_t k = 1; k < h; ++k)
            z[k] = {z[k].re * scale, z[k].im * scale};
    return z;
}

// Elements 1..h-1; element 0 is left as dst has it.
std::vector<ZCplx> plainPre(const std::vector<ZCplx> &src, std::vector<ZCplx> dst, int direction,
                            const ZCplx *table)
{
    const std::size_t h = src.size();
    for (std::size_t k = 1; k < h / 2; ++k) {
        const double tr = table[k].re;
        const double ti = table[k].im;
        const ZCplx a = src[k];
        const ZCplx b = src[h - k];
        if (direction == -1) {
            const double D = ti * (a.re - b.re) - tr * (a.im + b.im);
            const double E = ti * (a.im + b.im) + tr * (a.re - b.re);
            dst[k] = {(a.re + b.re) + D, E + (a.im - b.im)};
            dst[h - k] = {(a.re + b.re) - D, E - (a.im - b.im)};
        } else {
            const double F = ti * (a.re - b.re) + tr * (a.im + b.im);
            const double G = tr * (a.re - b.re) - ti * (a.im + b.im);
            dst[k] = {(a.re + b.re) - F, G + (a.im - b.im)};
            dst[h - k] = {(a.re + b.re) + F, G - (a.im - b.im)};
        }
    }
    if (h > 1)
        dst[h / 2] = {2.0 * src[h / 2].re,
                      direction == 1 ? 2.0 * src[h / 2].im : -2.0 * src[h / 2].im};
    return dst;
}

std::vector<double> flat(const std::vector<ZCplx> &z)
{
    std::vector<double> doubles;
    for (const ZCplx &value : z) {
        doubles.push_back(value.re);
        doubles.push_back(value.im);
    }
    return doubles;
}

// Ordinary numbers with infinities, NaNs and zeros of both signs among them.
std::vector<ZCplx> mixedValues(std::size_t n, unsigned seed)
{
    const double special[] = {0.0, -0.0, RVX_INF, -RVX_INF, RVX_NAN, 0x1p-1074, 0x1.fp1023};
    std::mt19937_64 generator(seed);
    std::vector<ZCplx> z(n);
    for (ZCplx &value : z)
        for (double *part : {&value.re, &value.im})
            *part = generator() % 6 == 0 ? special[generator() % 7]
                                         : static_cast<double>(generator() % 1000) / 7.0 - 70.0;
    return z;
}

} // namespace

TEST(RealPass, SameBitsAsTheFormulaAtEveryBin)
{
    for (int order = 1; order <= 11; ++order) {
        const std::size_t h = std::size_t{1} << (order - 1);
        const ZCplx *table = rvxGetRealTwistTbl(order);
        for (unsigned seed = 0; seed < 20; ++seed) {
            const std::vector<ZCplx> values = mixedValues(h, seed);
            for (int direction : {1, -1}) {
                const double scale = direction == 1 ? 1.0 : 1.0 / static_cast<double>(h);
                Guarded<ZCplx> z(values, static_cast<int>(seed % 4));
                rvxRealFftPost(z.data(), static_cast<int>(h), direction, scale, table);
                EXPECT_TRUE(z.intact());
                expectSameBits(flat(z.values()), flat(plainPost(values, direction, scale, table)),
                               "h " + std::to_string(h) + " " + std::to_string(direction));
            }
        }
    }
}

TEST(CcsPass, SameBitsAsTheFormulaAtEveryBin)
{
    for (int order = 1; order <= 11; ++order) {
        const std::size_t h = std::size_t{1} << (order - 1);
        const ZCplx *table = rvxGetCcsTwistTbl(order);
        for (unsigned seed = 0; seed < 20; ++seed) {
            const std::vector<ZCplx> values = mixedValues(h, seed);
            for (int direction : {1, -1}) {
                const std::string at = "h " + std::to_string(h) + " " + std::to_string(direction);
                Guarded<ZCplx> src(values, static_cast<int>(seed % 4));
                Guarded<ZCplx> dst(std::vector<ZCplx>(h, ZCplx{1.0, 2.0}), 1);
                rvxCcsFftPre(src.data(), dst.data(), static_cast<int>(h), direction, table);
                EXPECT_TRUE(src.intact() && dst.intact());
                expectSameBits(flat(src.values()), flat(values), "source, " + at);
                expectSameBits(flat(dst.values()),
                               flat(plainPre(values, std::vector<ZCplx>(h, ZCplx{1.0, 2.0}),
                                             direction, table)),
                               at);
                rvxCcsFftPre(src.data(), src.data(), static_cast<int>(h), direction, table);
                expectSameBits(flat(src.values()), flat(plainPre(values, values, direction, table)),
                               "in place, " + at);
            }
        }
    }
}

TEST(RealProduct, SameBitsAsPostProductAndPreOneAfterTheOther)
{
    for (int order = 4; order <= 11; ++order) {
        const std::size_t h = std::size_t{1} << (order - 1);
        const ZCplx *ccsTwist = rvxGetCcsTwistTbl(order);
        for (unsigned seed = 0; seed < 20; ++seed) {
            const std::vector<ZCplx> values = mixedValues(h, seed);
            const std::vector<ZCplx> factors = mixedValues(h, seed + 100);
            std::vector<ZCplx> bins = plainPost(values, 1, 1.0, rvxGetRealTwistTbl(order));
            for (std::size_t k = 1; k < h; ++k)
                bins[k] = rvxzMpy(bins[k], factors[k]);
            std::vector<ZCplx> expected = plainPre(bins, bins, -1, ccsTwist);
            const double first = (values[0].re + values[0].im) * factors[0].re;
            const double last = (values[0].re - values[0].im) * factors[0].im;
            expected[0] = {first + last, first - last};
            Guarded<ZCplx> z(values, static_cast<int>(seed % 4));
            rvxRealFftProduct(factors.data(), z.data(), static_cast<int>(h), ccsTwist);
            EXPECT_TRUE(z.intact());
            expectSameBits(flat(z.values()), flat(expected), "h " + std::to_string(h));
        }
    }
}
