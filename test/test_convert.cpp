// Conversions between doubles and integers of any format, value by value.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "reference/fixed.h"
#include "support/arith_values.h"
#include "support/convert_formats.h"
#include "support/float_environment.h"
#include "support/guarded.h"
#include "support/reports.h"

namespace {

// Whatever the rounding makes of it: 2^-fractBits times the limits of ranges, halves
// beside them and other places where rounding turns, each with its neighbours.
std::vector<double> turningPoints(const Format &format)
{
    std::set<double> points;
    for (const double limit :
         {0.0,     1.0,     2.0,          3.0,          5.0,          127.0,
          128.0,   129.0,   255.0,        256.0,        32767.0,      32768.0,
          65535.0, 65536.0, 2147483647.0, 2147483648.0, 4294967295.0, 4294967296.0,
          0x1p22,  0x1p33,  0x1p51,       0x1p52,       0x1p53,       0x1p63})
        for (const double beside : {-1.0, -0.5, 0.0, 0.5, 1.0, 1.5}) {
            const double x = std::ldexp(limit + beside, -format.fractBits);
            for (const double y : {x, std::nextafter(x, INF), std::nextafter(x, -INF)})
                points.insert({y, -y});
        }
    std::vector<double> values(points.begin(), points.end());
    for (const double special : {-0.0, TINY, -TINY, 0x1p-1022, -0x1p-1022, HUGE_VALUE, -HUGE_VALUE,
                                 INF, -INF, QUIET, -QUIET, marked, -marked})
        values.push_back(special);
    return values;
}

template <typename Visit>
void forEveryFormat(const Visit &visit)
{
    for (const int size : {8, 16, 32})
        for (const bool isUnsigned : {false, true})
            for (int fractBits = 0; fractBits < size + isUnsigned; ++fractBits)
                visit(Format{size, fractBits, isUnsigned});
}

// One call for the block, one for each element: every element is what it should be
// and a report comes where something does not fit and is asked for.
void expectConverted(const Format &format, int flags, const std::vector<double> &values,
                     bool oneByOne)
{
    const int n = static_cast<int>(values.size());
    Integers ints(format.size, n);
    Reports reports;
    bool misfit = false;
    rvxdbFloatToFix(values.data(), ints.data(), n, format.size, format.fractBits,
                    flags | format.flag());
    for (int i = 0; i < n; ++i) {
        const double x = values[static_cast<std::size_t>(i)];
        const fixed::Result expected = expectedOf(format, flags, x);
        misfit = misfit || !expected.fits;
        ASSERT_TRUE(!expected.known || ints.get(i, format.isUnsigned) == expected.stored)
            << format << " flags " << flags << " of " << std::hexfloat << x << ": "
            << ints.get(i, format.isUnsigned) << " for " << expected.stored;
    }
    const std::vector<Report> report =
        badArgument("rvxdbFloatToFix", "A float exceeds an integer", "rvxcvrtd");
    ASSERT_EQ(reports.take(),
              misfit && (flags & RVX_CVT_REPORT) != 0 ? report : std::vector<Report>())
        << format;
    if (format.fractBits == 0) {
        Integers again(format.size, n);
        rvxdbFloatToInt(values.data(), again.data(), n, format.size, flags | format.flag());
        ASSERT_EQ(reports.take().size(), misfit && (flags & RVX_CVT_REPORT) != 0 ? 1 : 0);
        for (int i = 0; i < n; ++i)
            ASSERT_EQ(again.get(i, false), ints.get(i, false)) << format << " flags " << flags;
    }
    for (int i = 0; i < n && oneByOne; ++i) {
        const double x = values[static_cast<std::size_t>(i)];
        Integers one(format.size, 1);
        rvxdbFloatToFix(&x, one.data(), 1, format.size, format.fractBits,
                        flags | format.flag() | RVX_CVT_REPORT);
        const fixed::Result expected = expectedOf(format, flags | RVX_CVT_REPORT, x);
        ASSERT_TRUE(!expected.known || one.get(0, format.isUnsigned) == expected.stored)
            << format << " flags " << flags << " of " << std::hexfloat << x;
        ASSERT_EQ(reports.take().size(), expected.fits ? 0 : 1)
            << format << " flags " << flags << " of " << std::hexfloat << x;
    }
}

} // namespace

TEST(ToIntegers, NamedNumbers)
{
    const double x[] = {2.5, 3.5, -2.7};
    signed char bytes[3];
    rvxdbFloatToInt(x, bytes, 3, 8, RVX_CVT_NEAREST);
    EXPECT_EQ(bytes[0], 2);
    EXPECT_EQ(bytes[1], 4);
    for (const int mode : {RVX_CVT_TRUNC, RVX_CVT_FLOOR, RVX_CVT_CEIL}) {
        rvxdbFloatToInt(x, bytes, 3, 8, mode);
        EXPECT_EQ(bytes[2], mode == RVX_CVT_FLOOR ? -3 : -2);
    }
}

TEST(ToIntegers, NamedLimitsOf8Bits)
{
    Reports reports;
    const struct {
        double x;
        int flags;
        int stored;
        bool misfit;
    } cases[] = {
        {127.4, RVX_CVT_NEAREST | RVX_CVT_CLIP, 127, false},
        {127.5, RVX_CVT_NEAREST | RVX_CVT_CLIP, 127, true},
        {-128.5, RVX_CVT_NEAREST | RVX_CVT_CLIP, -128, false},
        {-128.6, RVX_CVT_NEAREST | RVX_CVT_CLIP, -128, true},
        {130.0, RVX_CVT_NEAREST, -126, true},
        {-0.0, RVX_CVT_FLOOR | RVX_CVT_CLIP | RVX_CVT_UNSIGNED, 0, false},
        {-0.1, RVX_CVT_FLOOR | RVX_CVT_CLIP | RVX_CVT_UNSIGNED, 0, true},
        {127.0, RVX_CVT_CEIL | RVX_CVT_CLIP, 127, false},
        {127.1, RVX_CVT_CEIL | RVX_CVT_CLIP, 127, true},
    };
    for (const auto &c : cases) {
        signed char stored = 99;
        rvxdbFloatToInt(&c.x, &stored, 1, 8, c.flags);
        EXPECT_EQ(stored, c.stored) << c.x;
        EXPECT_TRUE(reports.take().empty());
        EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_OK);
        rvxdbFloatToInt(&c.x, &stored, 1, 8, c.flags | RVX_CVT_REPORT);
        EXPECT_EQ(stored, c.stored) << c.x;
        EXPECT_EQ(reports.take(), c.misfit ? badArgument("rvxdbFloatToInt",
                                                         "A float exceeds an integer", "rvxcvrtd")
                                           : std::vector<Report>());
        EXPECT_EQ(rvxGetErrStatus(), c.misfit ? RVX_STATUS_BAD_ARGUMENT : RVX_STATUS_OK);
    }
}

TEST(ToIntegers, EveryTurningPointOfEveryFormat)
{
    forEveryFormat([](const Format &format) {
        const std::vector<double> values = turningPoints(format);
        for (const int rounding : roundings)
            for (const int fate : fates)
                ASSERT_NO_FATAL_FAILURE(
                    expectConverted(format, rounding | fate, values, fate <= RVX_CVT_CLIP));
    });
}

TEST(ToIntegers, RandomNumbersOfEveryFormat)
{
#ifdef RVX_TEST_SANITIZED
    constexpr int n = 100;
#else
    constexpr int n = 1500;
#endif
    std::mt19937_64 random(27);
    forEveryFormat([&](const Format &format) {
        std::uniform_real_distribution<double> factor(-1.2, 1.2), decade(-2.0, 1.0);
        std::vector<double> values;
        for (int i = 0; i < n; ++i) {
            const double inRange = std::ldexp(factor(random), format.size - format.fractBits);
            const double coarse = std::ldexp(std::floor(std::ldexp(inRange, format.fractBits + 1)),
                                             -format.fractBits - 1); // integers and halves
            values.push_back(i % 4 == 0   ? fromBits(random())
                             : i % 4 == 1 ? inRange
                             : i % 4 == 2 ? coarse
                                          : inRange * std::exp2(10 * decade(random)));
        }
        for (const int rounding : roundings)
            for (const int fate : fates)
                ASSERT_NO_FATAL_FAILURE(expectConverted(format, rounding | fate, values, false));
    });
}

// The reference itself, by another library.
TEST(ToIntegers, ReferenceRoundsAsMpfrDoes)
{
    std::mt19937_64 random(28);
    std::uniform_real_distribution<double> near(-300.0, 300.0);
    for (int i = 0; i < 20000; ++i) {
        double x = i % 2 == 0 ? fromBits(random()) : near(random);
        if (i % 3 == 0)
            x = std::round(x * 4.0) / 4.0;
        if (!std::isfinite(x))
            continue;
        const int fractBits = i % 33;
        for (const int rounding : roundings)
            ASSERT_EQ(
                fixed::roundedBy(std::ldexp(static_cast<long double>(x), fractBits), rounding),
                fixed::roundedByMpfr(x, fractBits, rounding))
                << std::hexfloat << x << " " << fractBits << " " << rounding;
    }
}

TEST(ToIntegers, TruncatedReportedUnsignedWordsAreRoundedDownwards)
{
    Reports reports;
    const double x[] = {-0.5, -0.0, 0.5, 7.9, 4294967295.5};
    unsigned words[5];
    constexpr int alone = RVX_CVT_REPORT | RVX_CVT_UNSIGNED | RVX_CVT_TRUNC;
    static_assert(alone == 10496, "");
    const auto misfits = [&](int first, int n) {
        const bool found = !reports.take().empty();
        EXPECT_EQ(found, rvxGetErrStatus() == RVX_STATUS_BAD_ARGUMENT) << first << n;
        return found;
    };
    const auto floats = [&](int first, int n, int flags) {
        rvxdbFloatToInt(x + first, words, n, 32, flags);
        return misfits(first, n);
    };
    EXPECT_TRUE(floats(0, 1, alone));
    EXPECT_EQ(words[0], 0xffffffffU);
    EXPECT_FALSE(floats(1, 4, alone));
    EXPECT_EQ(words[0], 0U);
    EXPECT_EQ(words[2], 7U);
    EXPECT_EQ(words[3], 4294967295U);
    EXPECT_FALSE(floats(0, 1, alone | RVX_CVT_CLIP));
    EXPECT_FALSE(floats(0, 1, alone | 1)); // a bit without a meaning
    EXPECT_EQ(words[0], 0U);
    rvxdbFloatToFix(x, words, 1, 32, 0, alone);
    EXPECT_TRUE(misfits(0, 1));
    rvxdbFloatToFix(x, words, 1, 32, 1, alone); // -1.0
    EXPECT_TRUE(misfits(0, 1));
    rvxdbFloatToS1516Fix(x + 1, reinterpret_cast<int *>(words), 1, alone);
    EXPECT_FALSE(misfits(1, 1));
    const double small = -0x1p-17, half = -0x1p-32;
    rvxdbFloatToS1516Fix(&small, reinterpret_cast<int *>(words), 1, alone);
    EXPECT_FALSE(misfits(0, 1)) << "fixed formats truncate";
    rvxdbFloatToS31Fix(&half, reinterpret_cast<int *>(words), 1, alone);
    EXPECT_FALSE(misfits(0, 1)) << "fixed formats truncate";
    for (const int size : {8, 16}) {
        rvxdbFloatToInt(x, words, 1, size, alone);
        EXPECT_FALSE(misfits(0, 1)) << size;
    }
}

TEST(ToIntegers, FixedFormatsAreTheFormatsTheyName)
{
    std::mt19937_64 random(29);
    std::uniform_real_distribution<double> near(-1.3, 1.3);
    std::vector<double> values;
    values.reserve(501);
    for (int i = 0; i < 501; ++i)
        values.push_back(near(random) * (i % 3 == 0 ? 32768.0 : i % 3 == 1 ? 2.0 : 1.0));
    const int n = static_cast<int>(values.size());
    for (const int rounding : roundings)
        for (const int fate : fates)
            for (const int sign : {0, int{RVX_CVT_UNSIGNED}}) {
                const int flags = rounding | fate | sign;
                const auto compare = [&](const char *func, int size, int fractBits, auto call) {
                    Integers fixedOnes(size, n);
                    Reports reports;
                    call(fixedOnes.data());
                    const std::vector<Report> found = reports.take();
                    if ((flags & RVX_CVT_REPORT) != 0)
                        EXPECT_EQ(found,
                                  badArgument(func, "A float exceeds an integer", "rvxcvrtd"));
                    else
                        EXPECT_TRUE(found.empty()) << func;
                    for (int i = 0; i < n; ++i) {
                        const fixed::Result expected =
                            fixed::convert(values[static_cast<std::size_t>(i)], size, fractBits,
                                           rounding, sign != 0, (fate & RVX_CVT_CLIP) != 0);
                        ASSERT_TRUE(!expected.known ||
                                    fixedOnes.get(i, sign != 0) == expected.stored)
                            << func << " of " << values[static_cast<std::size_t>(i)];
                    }
                };
                const double *x = values.data();
                compare("rvxdbFloatToS7Fix", 8, 7, [&](void *dst) {
                    rvxdbFloatToS7Fix(x, static_cast<signed char *>(dst), n, flags);
                });
                compare("rvxdbFloaToS15Fix", 16, 15, [&](void *dst) {
                    rvxdbFloatToS15Fix(x, static_cast<short *>(dst), n, flags);
                });
                compare("rvxdbFloaToS31Fix", 32, 31, [&](void *dst) {
                    rvxdbFloatToS31Fix(x, static_cast<int *>(dst), n, flags);
                });
                compare("rvxdbFloatToS1516Fix", 32, 16, [&](void *dst) {
                    rvxdbFloatToS1516Fix(x, static_cast<int *>(dst), n, flags);
                });
            }
}

// Blocks of 1 to 40 elements in which one does not fit, at each place: it alone
// changes, it is reported, and nothing is written outside the block.
TEST(ToIntegers, OneMisfitAtEachPlaceOfEachLength)
{
    Reports reports;
    for (const Format &format : {Format{8, 0, false}, Format{8, 3, true}, Format{16, 0, true},
                                 Format{16, 15, false}, Format{32, 0, false}, Format{32, 5, true}})
        for (const int rounding : roundings)
            for (const int fate : fates)
                for (int n = 1; n <= 40; ++n)
                    for (int at = 0; at < n; ++at) {
                        const double odd[] = {QUIET, -QUIET, INF, -INF, 1e300, -1e300};
                        Guarded<double> src(n, at % 4);
                        for (int i = 0; i < n; ++i)
                            src[i] = std::ldexp(std::fabs(number(i)),
                                                format.size - 6 - format.fractBits);
                        src[at] = odd[(n + at) % 6];
                        Integers ints(format.size, n);
                        rvxdbFloatToFix(src.data(), ints.data(), n, format.size, format.fractBits,
                                        rounding | fate | format.flag());
                        ASSERT_TRUE(ints.intact()) << format << " " << n;
                        for (int i = 0; i < n; ++i) {
                            const fixed::Result expected =
                                expectedOf(format, rounding | fate, src[i]);
                            ASSERT_EQ(expected.fits, i != at);
                            ASSERT_TRUE(!expected.known ||
                                        ints.get(i, format.isUnsigned) == expected.stored)
                                << format << " " << i << " of " << n;
                        }
                        ASSERT_EQ(reports.take().size(), (fate & RVX_CVT_REPORT) != 0 ? 1 : 0);
                    }
}

TEST(ToIntegers, FloatingPointEnvironmentNeitherCountsNorChanges)
{
    Reports reports;
    for (const Format &format : {Format{8, 7, false}, Format{16, 0, true}, Format{32, 0, true},
                                 Format{32, 31, false}, Format{32, 0, false}}) {
        const std::vector<double> values = turningPoints(format);
        const int n = static_cast<int>(values.size());
        for (const int rounding : roundings)
            for (const int fate : fates) {
                Integers ints(format.size, n);
                std::vector<fixed::Result> expected;
                expected.reserve(values.size());
                for (const double x : values)
                    expected.push_back(expectedOf(format, rounding | fate, x));
                underEveryEnvironment(
                    [&] {
                        rvxdbFloatToFix(values.data(), ints.data(), n, format.size,
                                        format.fractBits, rounding | fate | format.flag());
                    },
                    [&] {
                        for (int i = 0; i < n; ++i) {
                            const fixed::Result one = expected[static_cast<std::size_t>(i)];
                            ASSERT_TRUE(!one.known || ints.get(i, format.isUnsigned) == one.stored)
                                << values[static_cast<std::size_t>(i)];
                        }
                        ASSERT_EQ(reports.take().size(), (fate & RVX_CVT_REPORT) != 0 ? 1 : 0);
                    });
            }
    }
}

// --- From integers ---------------------------------------------------------------

namespace {

// Patterns of `size` bits: all of them where there are few.
std::vector<std::uint32_t> patterns(int size)
{
    std::vector<std::uint32_t> all;
    if (size < 32)
        for (std::uint32_t p = 0; p < 1U << size; ++p)
            all.push_back(p);
    for (const std::uint32_t p : {0U, 1U, 0x7fffffffU, 0x80000000U, 0x80000001U, 0xffffffffU})
        all.push_back(p);
    std::mt19937 random(30);
    for (int i = 0; i < 3001; ++i)
        all.push_back(static_cast<std::uint32_t>(random()) >> (i % 31));
    return all;
}

double expectedDouble(const Format &format, std::int64_t value)
{
    return static_cast<double>(std::ldexp(static_cast<long double>(value), -format.fractBits));
}

} // namespace

TEST(FromIntegers, EveryFormatIsExact)
{
    forEveryFormat([](const Format &format) {
        const std::vector<std::uint32_t> all = patterns(format.size);
        const int n = static_cast<int>(all.size());
        Integers ints(format.size, n);
        for (int i = 0; i < n; ++i)
            ints.set(i, all[static_cast<std::size_t>(i)]);
        std::vector<double> values(all.size());
        rvxdbFixToFloat(ints.data(), values.data(), n, format.size, format.fractBits,
                        format.flag());
        for (int i = 0; i < n; ++i)
            ASSERT_EQ(bitsOf(values[static_cast<std::size_t>(i)]),
                      bitsOf(expectedDouble(format, ints.get(i, format.isUnsigned))))
                << format << " " << all[static_cast<std::size_t>(i)];
        if (format.fractBits == 0) {
            std::vector<double> again(all.size());
            rvxdbIntToFloat(ints.data(), again.data(), n, format.size, format.flag());
            ASSERT_EQ(again, values);
        }
    });
}

TEST(FromIntegers, FixedFormats)
{
    const std::vector<std::uint32_t> all = patterns(32);
    const int n = static_cast<int>(all.size());
    const auto compare = [&](int size, int fractBits, auto call) {
        Integers ints(size, n);
        for (int i = 0; i < n; ++i)
            ints.set(i, all[static_cast<std::size_t>(i)]);
        std::vector<double> values(all.size());
        call(ints.data(), values.data());
        for (int i = 0; i < n; ++i)
            ASSERT_EQ(bitsOf(values[static_cast<std::size_t>(i)]),
                      bitsOf(expectedDouble({size, fractBits, false}, ints.get(i, false))))
                << size << " " << fractBits;
    };
    compare(8, 7, [&](const void *src, double *dst) {
        rvxdbS7FixToFloat(static_cast<const signed char *>(src), dst, n);
    });
    compare(16, 15, [&](const void *src, double *dst) {
        rvxdbS15FixToFloat(static_cast<const short *>(src), dst, n);
    });
    compare(32, 31, [&](const void *src, double *dst) {
        rvxdbS31FixToFloat(static_cast<const int *>(src), dst, n);
    });
    compare(32, 16, [&](const void *src, double *dst) {
        rvxdbS1516FixToFloat(static_cast<const int *>(src), dst, n);
    });
    const int one = 65536;
    const short lowest = -32768;
    double x;
    rvxdbS1516FixToFloat(&one, &x, 1);
    EXPECT_EQ(x, 1.0);
    rvxdbS15FixToFloat(&lowest, &x, 1);
    EXPECT_EQ(x, -1.0);
}

TEST(FromIntegers, EveryLengthWritesItsElementsAlone)
{
    for (const int size : {8, 16, 32})
        for (const bool isUnsigned : {false, true})
            for (int n = 1; n <= 40; ++n)
                for (int at = 0; at < 4; ++at) {
                    const Format format{size, 3, isUnsigned};
                    Integers ints(size, n);
                    for (int i = 0; i < n; ++i)
                        ints.set(i, 0x9e3779b9U * static_cast<std::uint32_t>(i * 5));
                    Guarded<double> values(n, at);
                    rvxdbFixToFloat(ints.data(), values.data(), n, size, 3, format.flag());
                    ASSERT_TRUE(values.intact());
                    for (int i = 0; i < n; ++i)
                        ASSERT_EQ(bitsOf(values[i]),
                                  bitsOf(expectedDouble(format, ints.get(i, isUnsigned))))
                            << format << " " << i << " of " << n;
                }
}

TEST(FromIntegers, FloatingPointEnvironmentNeitherCountsNorChanges)
{
    for (const Format &format :
         {Format{8, 8, true}, Format{8, 0, false}, Format{16, 3, false}, Format{16, 16, true},
          Format{32, 31, false}, Format{32, 32, true}, Format{32, 0, true}}) {
        const std::vector<std::uint32_t> all = patterns(format.size);
        const int n = std::min(500, static_cast<int>(all.size()));
        Integers ints(format.size, n);
        for (int i = 0; i < n; ++i)
            ints.set(i, all[all.size() - static_cast<std::size_t>(1 + 7 * i % 3000)]);
        ints.set(0, 0);
        std::vector<double> values(all.size());
        underEveryEnvironment(
            [&] {
                rvxdbFixToFloat(ints.data(), values.data(), n, format.size, format.fractBits,
                                format.flag());
            },
            [&] {
                for (int i = 0; i < n; ++i)
                    ASSERT_EQ(bitsOf(values[static_cast<std::size_t>(i)]),
                              bitsOf(expectedDouble(format, ints.get(i, format.isUnsigned))))
                        << format;
            });
    }
}
