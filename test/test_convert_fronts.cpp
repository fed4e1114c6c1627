// Conversions: checks, all of them in each call, and what they do to the status.

#include <climits>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/reports.h"

namespace {

double doubles[4];
std::uint32_t ints[4];

// A call of any of the functions; what it does not take is not looked at.
struct Arguments {
    const void *src;
    void *dst;
    int len, size, fractBits, flags;
};

struct Function {
    const char *reported;
    bool hasSize, hasFractBits, hasFlags, toInts;
    const char *badSize;
    std::function<void(const Arguments &)> call;
};

template <typename T>
T *as(void *p)
{
    return static_cast<T *>(p);
}

template <typename T>
const T *as(const void *p)
{
    return static_cast<const T *>(p);
}

const char *const badInt = "Invalid size of an integer";
const char *const badFix = "Invalid size of a fix-point";

const std::vector<Function> functions = {
    {"rvxdbFloatToInt", true, false, true, true, badInt,
     [](const Arguments &a) { rvxdbFloatToInt(as<double>(a.src), a.dst, a.len, a.size, a.flags); }},
    {"rvxdbIntToFloat", true, false, true, false, badInt,
     [](const Arguments &a) { rvxdbIntToFloat(a.src, as<double>(a.dst), a.len, a.size, a.flags); }},
    {"rvxdbFloatToFix", true, true, true, true, badFix,
     [](const Arguments &a) {
         rvxdbFloatToFix(as<double>(a.src), a.dst, a.len, a.size, a.fractBits, a.flags);
     }},
    {"rvxdbFixToFloat", true, true, true, false, badFix,
     [](const Arguments &a) {
         rvxdbFixToFloat(a.src, as<double>(a.dst), a.len, a.size, a.fractBits, a.flags);
     }},
    {"rvxdbFloatToS7Fix", false, false, true, true, "",
     [](const Arguments &a) {
         rvxdbFloatToS7Fix(as<double>(a.src), as<signed char>(a.dst), a.len, a.flags);
     }},
    {"rvxdbFloaToS15Fix", false, false, true, true, "",
     [](const Arguments &a) {
         rvxdbFloatToS15Fix(as<double>(a.src), as<short>(a.dst), a.len, a.flags);
     }},
    {"rvxdbFloaToS31Fix", false, false, true, true, "",
     [](const Arguments &a) {
         rvxdbFloatToS31Fix(as<double>(a.src), as<int>(a.dst), a.len, a.flags);
     }},
    {"rvxdbFloatToS1516Fix", false, false, true, true, "",
     [](const Arguments &a) {
         rvxdbFloatToS1516Fix(as<double>(a.src), as<int>(a.dst), a.len, a.flags);
     }},
    {"rvxdbS7FixToFloat", false, false, false, false, "",
     [](const Arguments &a) {
         rvxdbS7FixToFloat(as<signed char>(a.src), as<double>(a.dst), a.len);
     }},
    {"rvxdbS15FixToFloat", false, false, false, false, "",
     [](const Arguments &a) { rvxdbS15FixToFloat(as<short>(a.src), as<double>(a.dst), a.len); }},
    {"rvxdbS31FixToFloat", false, false, false, false, "",
     [](const Arguments &a) { rvxdbS31FixToFloat(as<int>(a.src), as<double>(a.dst), a.len); }},
    {"rvxdbS1516FixToFloat", false, false, false, false, "",
     [](const Arguments &a) { rvxdbS1516FixToFloat(as<int>(a.src), as<double>(a.dst), a.len); }},
};

Arguments goodFor(const Function &function)
{
    Arguments good{ints, doubles, 3, 8, 0, 0};
    if (function.toInts)
        good = {doubles, ints, 3, 8, 0, RVX_CVT_NEAREST};
    return good;
}

bool isRounding(int flags)
{
    const int modes = flags & (128 | 256 | 512 | 1024);
    return modes == 128 || modes == 256 || modes == 512 || modes == 1024;
}

// What the call must report, in this order.
std::vector<Report> expected(const Function &function, const Arguments &a)
{
    std::vector<std::string> contexts;
    const auto failIf = [&](bool failed, const char *context) {
        if (failed)
            contexts.emplace_back(context);
    };
    failIf(a.len < 1, "len<=0");
    failIf(a.src == nullptr, "src==0");
    failIf(a.dst == nullptr, "dst==0");
    if (function.hasSize)
        failIf(a.size != 8 && a.size != 16 && a.size != 32, function.badSize);
    if (function.hasFlags)
        failIf(function.toInts ? !isRounding(a.flags) : a.flags != 0 && a.flags != 2048,
               "Invalid conversion flag");
    if (function.hasFractBits) {
        const long long limit = (a.flags & 2048) != 0 ? a.size : a.size - 1LL;
        failIf(a.fractBits < 0 || a.fractBits > limit, "Invalid fractBits");
    }
    std::vector<Report> reports;
    reports.reserve(contexts.size());
    for (const std::string &context : contexts)
        reports.push_back({RVX_STATUS_BAD_ARGUMENT, function.reported, context, "rvxcvrtd"});
    if (!function.hasFlags && reports.size() > 1)
        reports.resize(1);
    return reports;
}

void fillBlocks()
{
    for (int i = 0; i < 4; ++i) {
        doubles[i] = 5.0;
        ints[i] = 0x11223344;
    }
}

bool areBlocksUntouched()
{
    for (int i = 0; i < 4; ++i)
        if (doubles[i] != 5.0 || ints[i] != 0x11223344)
            return false;
    return true;
}

} // namespace

TEST(ConvertFronts, EveryCombinationOfFailedChecksIsReportedInOrder)
{
    Reports reports;
    int refused = 0, accepted = 0;
    for (const Function &function : functions) {
        const Arguments good = goodFor(function);
        for (const int len : {3, 0, -1, INT_MIN})
            for (const void *src : {good.src, static_cast<const void *>(nullptr)})
                for (void *dst : {good.dst, static_cast<void *>(nullptr)})
                    for (const int size : {8, 16, 32, 0, 7, 24, 64, -8, INT_MIN})
                        for (const int fractBits : {0, 7, 8, 9, 15, 16, 31, 32, 33, -1, INT_MIN})
                            for (const int flags :
                                 {0, 128, 256, 512, 1024, 2048, 2048 | 128, 128 | 256, 512 | 1024,
                                  1920, 4096, 8192, 128 | 4096 | 1, 256 | 127, 512 | ~16383, 2049,
                                  -1}) {
                                if ((!function.hasFlags && flags != 0) ||
                                    (!function.hasSize && size != 8) ||
                                    (!function.hasFractBits && fractBits != 0))
                                    continue;
                                const Arguments a{src, dst, len, size, fractBits, flags};
                                const std::vector<Report> wanted = expected(function, a);
                                fillBlocks();
                                rvxSetErrStatus(0);
                                function.call(a);
                                ASSERT_EQ(reports.take(), wanted)
                                    << function.reported << " len " << len << " size " << size
                                    << " fractBits " << fractBits << " flags " << flags;
                                ASSERT_EQ(rvxGetErrStatus(),
                                          wanted.empty() ? RVX_STATUS_OK : RVX_STATUS_BAD_ARGUMENT);
                                ASSERT_EQ(areBlocksUntouched(), !wanted.empty())
                                    << function.reported;
                                ++(wanted.empty() ? accepted : refused);
                            }
    }
    EXPECT_GT(accepted, 100);
    EXPECT_GT(refused, 10000);
}

TEST(ConvertFronts, FunctionsWithFlagsClearTheStatusAndOthersKeepIt)
{
    Reports reports;
    for (const Function &function : functions)
        for (const int before : {-4, 3}) {
            fillBlocks();
            rvxSetErrStatus(before);
            function.call(goodFor(function));
            EXPECT_EQ(rvxGetErrStatus(), function.hasFlags ? RVX_STATUS_OK : before)
                << function.reported;
            EXPECT_FALSE(areBlocksUntouched()) << function.reported;
        }
    EXPECT_TRUE(reports.take().empty());
}

TEST(ConvertFronts, FractionBitsAsWideAsTheInteger)
{
    Reports reports;
    const double x = 0.75;
    std::uint32_t stored = 7;
    rvxdbFloatToFix(&x, &stored, 1, 16, 16, RVX_CVT_NEAREST);
    EXPECT_EQ(reports.take(), badArgument("rvxdbFloatToFix", "Invalid fractBits", "rvxcvrtd"));
    EXPECT_EQ(stored, 7U);
    rvxdbFloatToFix(&x, &stored, 1, 32, 32, RVX_CVT_NEAREST | RVX_CVT_UNSIGNED);
    EXPECT_EQ(stored, 0xc0000000U);
    double back = 0.0;
    rvxdbFixToFloat(&stored, &back, 1, 32, 32, RVX_CVT_UNSIGNED);
    EXPECT_EQ(back, 0.75);
    EXPECT_TRUE(reports.take().empty());
}

TEST(ConvertFrontsDeathTest, AFailedCheckEndsTheProcessInModeZero)
{
    fillBlocks();
    for (const Function &function : functions) {
        Arguments bad = goodFor(function);
        bad.len = 0;
        EXPECT_EXIT(function.call(bad), ::testing::ExitedWithCode(1), "") << function.reported;
    }
}

// A report of misfits ends the process too, but with all elements written.
TEST(ConvertFrontsDeathTest, MisfitsAreReportedBehindTheLastElement)
{
    fillBlocks();
    doubles[0] = 1e6;
    EXPECT_EXIT(
        {
            std::atexit([] {
                const auto *bytes = reinterpret_cast<const signed char *>(ints);
                std::_Exit(bytes[0] == 127 && bytes[1] == 5 && bytes[3] == 5 ? 42 : 43);
            });
            rvxdbFloatToInt(doubles, ints, 4, 8, RVX_CVT_NEAREST | RVX_CVT_CLIP | RVX_CVT_REPORT);
        },
        ::testing::ExitedWithCode(42), "");
}
