// Companding against the decision values of its Recommendation.

#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "reference/g711.h"
#include "support/arith_values.h"
#include "support/float_environment.h"
#include "support/guarded.h"
#include "support/reports.h"

namespace {

using Byte = unsigned char;

struct Law {
    const char *name;
    void (*encode)(const double *, Byte *, int);
    void (*decode)(const Byte *, double *, int);
    Byte (*code)(double);
    double (*value)(Byte);
};

const Law laws[] = {
    {"A-law", rvxdbLinToALaw, rvxdbALawToLin, g711::aLawOf, g711::aLawValue},
    {"mu-law", rvxdbLinToMuLaw, rvxdbMuLawToLin, g711::muLawOf, g711::muLawValue},
};

constexpr double quiet = std::numeric_limits<double>::quiet_NaN();
const double specialSamples[] = {0.0,  -0.0,  1.0,       -1.0,       2.0,        -2.0,       INF,
                                 -INF, quiet, -quiet,    marked,     -marked,    TINY,       -TINY,
                                 1e-5, -1e-5, 0x1p-1022, -0x1p-1022, HUGE_VALUE, -HUGE_VALUE};

void expectCodes(const Law &law, const std::vector<double> &samples)
{
    std::vector<Byte> codes(samples.size());
    law.encode(samples.data(), codes.data(), static_cast<int>(samples.size()));
    for (std::size_t i = 0; i < samples.size(); ++i)
        ASSERT_EQ(codes[i], law.code(samples[i]))
            << law.name << " of " << std::hexfloat << samples[i];
}

std::vector<Byte> everyCode()
{
    std::vector<Byte> codes;
    codes.reserve(256);
    for (int c = 0; c < 256; ++c)
        codes.push_back(static_cast<Byte>(c));
    return codes;
}

} // namespace

TEST(Law, CodesOfNamedSamples)
{
    const double samples[] = {0.0, -1e-5, 0.96875, 1.0, 2.0, INF, -0.96875, -16.0 / 32768};
    Byte aLaw[8], muLaw[8];
    rvxdbLinToALaw(samples, aLaw, 8);
    rvxdbLinToMuLaw(samples, muLaw, 8);
    const Byte expectedA[] = {213, 213, 170, 170, 170, 170, 42, 84};
    const Byte expectedMu[] = {255, 255, 128, 128, 128, 128, 0};
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(aLaw[i], expectedA[i]) << i;
    for (int i = 0; i < 7; ++i)
        EXPECT_EQ(muLaw[i], expectedMu[i]) << i;

    const double aboutALimit[] = {124.0 / 32768, 125.0 / 32768, -124.0 / 32768, -125.0 / 32768};
    rvxdbLinToMuLaw(aboutALimit, muLaw, 4);
    EXPECT_EQ(muLaw[0], 240);
    EXPECT_EQ(muLaw[1], 239);
    EXPECT_EQ(muLaw[2], 112);
    EXPECT_EQ(muLaw[3], 111);
}

TEST(Law, ValuesOfNamedCodes)
{
    const Byte aLaw[] = {213, 170};
    const Byte muLaw[] = {255, 128, 127};
    double values[3];
    rvxdbALawToLin(aLaw, values, 2);
    EXPECT_EQ(values[0], 0.000244140625);
    EXPECT_EQ(values[1], 0.984375);
    rvxdbMuLawToLin(muLaw, values, 3);
    EXPECT_EQ(bitsOf(values[0]), bitsOf(0.0));
    EXPECT_EQ(values[1], 0.9803466796875);
    EXPECT_EQ(bitsOf(values[2]), bitsOf(0.0));
}

// Each of the 65,536, what is a fraction of a step beyond it, and its neighbours.
TEST(Law, EverySampleOf16Bits)
{
    for (const Law &law : laws) {
        std::vector<double> samples;
        for (int v = -32768; v < 32768; ++v) {
            const double x = v / 32768.0;
            for (const double sample :
                 {x, std::nextafter(x, 2.0), std::nextafter(x, -2.0), x + 0.5 / 32768})
                samples.push_back(sample);
        }
        expectCodes(law, samples);
    }
}

TEST(Law, SpecialSamples)
{
    for (const Law &law : laws) {
        expectCodes(law, {std::begin(specialSamples), std::end(specialSamples)});
        for (const double limit : {0.96875, 0x1p-15, 0x1p-7, 0x1p-8, 0.5, 1.0})
            for (const double sign : {1.0, -1.0})
                expectCodes(law, {sign * limit, sign * std::nextafter(limit, 0.0),
                                  sign * std::nextafter(limit, 2.0)});
    }
}

TEST(Law, AnyBitPatternHasACode)
{
#ifdef RVX_TEST_SANITIZED
    constexpr int blocks = 20;
#else
    constexpr int blocks = 400;
#endif
    std::mt19937_64 random(711);
    std::uniform_real_distribution<double> near(-1.1, 1.1), decade(-60.0, 1.0);
    for (const Law &law : laws)
        for (int block = 0; block < blocks; ++block) {
            std::vector<double> samples;
            samples.reserve(4000);
            for (int i = 0; i < 4000; ++i)
                samples.push_back(block % 4 == 0   ? fromBits(random())
                                  : block % 4 == 1 ? near(random)
                                                   : near(random) * std::exp2(decade(random)));
            expectCodes(law, samples);
        }
}

TEST(Law, MirroredSamplesDifferInTheSignAlone)
{
    for (const Law &law : laws)
        for (int v = 1; v < 32768; ++v) {
            const double pair[] = {v / 32768.0, -v / 32768.0};
            Byte codes[2];
            law.encode(pair, codes, 2);
            ASSERT_EQ(codes[0] ^ codes[1], 0x80) << law.name << " " << v;
        }
}

TEST(Law, EveryCodeHasItsValue)
{
    for (const Law &law : laws) {
        const std::vector<Byte> codes = everyCode();
        std::vector<double> values(256);
        law.decode(codes.data(), values.data(), 256);
        for (std::size_t c = 0; c < 256; ++c)
            ASSERT_EQ(bitsOf(values[c]), bitsOf(law.value(static_cast<Byte>(c))))
                << law.name << " " << c;
    }
}

TEST(Law, DecodedAndCodedAgainEveryCodeButOneComesBack)
{
    for (const Law &law : laws) {
        const std::vector<Byte> codes = everyCode();
        std::vector<double> values(256);
        std::vector<Byte> again(256);
        law.decode(codes.data(), values.data(), 256);
        law.encode(values.data(), again.data(), 256);
        for (std::size_t c = 0; c < 256; ++c) {
            const bool negativeZero = law.encode == rvxdbLinToMuLaw && c == 127;
            ASSERT_EQ(again[c], negativeZero ? 255 : c) << law.name;
        }
    }
}

// Blocks of 1 to 70 elements; a special sample at each place of them.
TEST(Law, PositionsAndLengthsDoNotMatter)
{
    for (const Law &law : laws)
        for (int n = 1; n <= longest; ++n)
            for (int at = 0; at < n; ++at) {
                std::vector<double> samples = numbers(n, 3);
                samples[static_cast<std::size_t>(at)] =
                    specialSamples[(n + at) % static_cast<int>(std::size(specialSamples))];
                Guarded<double> src(samples, at % 4);
                Guarded<Byte> codes(n, n % 4);
                law.encode(src.data(), codes.data(), n);
                ASSERT_TRUE(codes.intact()) << law.name << " " << n;
                Guarded<double> values(n, at % 4);
                law.decode(codes.data(), values.data(), n);
                ASSERT_TRUE(values.intact()) << law.name << " " << n;
                for (int i = 0; i < n; ++i) {
                    ASSERT_EQ(codes[i], law.code(src[i])) << law.name << " " << i << " of " << n;
                    ASSERT_EQ(bitsOf(values[i]), bitsOf(law.value(codes[i])))
                        << law.name << " " << i << " of " << n;
                }
            }
}

TEST(Law, FloatingPointEnvironmentNeitherCountsNorChanges)
{
    for (const Law &law : laws) {
        std::vector<double> samples(std::begin(specialSamples), std::end(specialSamples));
        for (int v = -33000; v <= 33000; v += 7)
            for (const double x :
                 {v / 32768.0, std::nextafter(v / 32768.0, 2.0), std::nextafter(v / 32768.0, -2.0)})
                samples.push_back(x);
        const int n = static_cast<int>(samples.size());
        std::vector<Byte> codes(samples.size());
        underEveryEnvironment([&] { law.encode(samples.data(), codes.data(), n); },
                              [&] {
                                  for (std::size_t i = 0; i < samples.size(); ++i)
                                      ASSERT_EQ(codes[i], law.code(samples[i])) << samples[i];
                              });
        const std::vector<Byte> all = everyCode();
        std::vector<double> values(256);
        underEveryEnvironment([&] { law.decode(all.data(), values.data(), 256); },
                              [&] {
                                  for (std::size_t c = 0; c < 256; ++c)
                                      ASSERT_EQ(bitsOf(values[c]),
                                                bitsOf(law.value(static_cast<Byte>(c))));
                              });
    }
}

TEST(Law, ChecksComeInOrderAndTheFirstIsReported)
{
    double d[4] = {1.5, 1.5, 1.5, 1.5};
    Byte b[4] = {9, 9, 9, 9};
    struct {
        const char *func;
        std::function<void(bool, bool, int)> call;
    } functions[] = {
        {"rvxdbLinToALaw",
         [&](bool s, bool t, int n) { rvxdbLinToALaw(s ? d : nullptr, t ? b : nullptr, n); }},
        {"rvxdbALawToLin",
         [&](bool s, bool t, int n) { rvxdbALawToLin(s ? b : nullptr, t ? d : nullptr, n); }},
        {"rvxdbLinToMuLaw",
         [&](bool s, bool t, int n) { rvxdbLinToMuLaw(s ? d : nullptr, t ? b : nullptr, n); }},
        {"rvxdbMuLawToLin",
         [&](bool s, bool t, int n) { rvxdbMuLawToLin(s ? b : nullptr, t ? d : nullptr, n); }},
    };
    Reports reports;
    for (const auto &function : functions) {
        const struct {
            bool src, dst;
            int n;
            const char *context;
        } bad[] = {{false, false, 0, "len<=0"},       {true, true, -1, "len<=0"},
                   {true, true, INT32_MIN, "len<=0"}, {false, false, 4, "src==0"},
                   {false, true, 4, "src==0"},        {true, false, 4, "dst==0"}};
        for (const auto &arguments : bad) {
            function.call(arguments.src, arguments.dst, arguments.n);
            EXPECT_EQ(reports.take(), badArgument(function.func, arguments.context, "rvxlaw"));
            EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_ARGUMENT);
        }
        // A status from before stays.
        function.call(true, true, 2);
        EXPECT_TRUE(reports.take().empty());
        EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_ARGUMENT);
        EXPECT_EQ(d[2], 1.5);
        EXPECT_EQ(b[2], 9);
    }
}

TEST(LawDeathTest, AFailedCheckEndsTheProcessInModeZero)
{
    const Byte b[1] = {0};
    double d[1] = {0.0};
    EXPECT_EXIT(rvxdbALawToLin(b, d, 0), ::testing::ExitedWithCode(1), "");
    EXPECT_EXIT(rvxdbMuLawToLin(b, nullptr, 1), ::testing::ExitedWithCode(1), "");
}
