// What the correlations promise beside their values: checks, statuses, memory, and the
// tables that they leave.

#include <climits>
#include <functional>
#include <type_traits>

#include <sys/mman.h>
#include <unistd.h>

#include "support/allocations.h"
#include "support/corr_forms.h"
#include "support/held_tables.h"
#include "support/reports.h"
#include "transform/rvxmisc.h"
#include "transform/rvxtwd.h"

namespace {

// A thread without tables and statuses, before and after.
struct Tidy : ::testing::Test {
    static void dropTables()
    {
        rvxFreeTwdTables();
        rvxFreeBitRevTables();
    }
    void SetUp() override
    {
        rvxSetErrStatus(0);
        dropTables();
    }
    void TearDown() override { dropTables(); }
};

template <typename Form>
class CrossCorr : public Tidy {
};
TYPED_TEST_SUITE(CrossCorr, CrossForms, ConvFormNames);

template <typename Form>
class AutoCorr : public Tidy {
};
TYPED_TEST_SUITE(AutoCorr, AutoForms, ConvFormNames);

// A correlation that the counts give to transforms, and one that they give to sums.
template <typename Form>
struct CrossCall {
    using A = typename Form::A;
    using B = typename Form::B;
    using Value = typename Form::Value;

    explicit CrossCall(bool transforms)
        : src1(noiseOf<A>(transforms ? 900 : 60, 51)), src2(noiseOf<B>(700, 52)),
          hiLag(transforms ? 60 : 5), dst(static_cast<std::size_t>(hiLag - loLag + 1))
    {
        EXPECT_EQ(crossTransforms<Form>(static_cast<std::int64_t>(src1.size()), hiLag - loLag + 1),
                  transforms);
    }
    void run()
    {
        Form::corr(src1.data(), static_cast<int>(src1.size()), src2.data(), 700, dst.data(), loLag,
                   hiLag);
    }
    std::vector<Value> sums() const { return crossSums<Form>(src1, src2, loLag, hiLag); }
    std::vector<Value> transformed() const
    {
        return reference::corrByBlocks(src1, src2, loLag, hiLag - loLag + 1);
    }

    std::vector<A> src1;
    std::vector<B> src2;
    int loLag = -20;
    int hiLag;
    std::vector<Value> dst;
};

template <typename Form>
struct AutoCall {
    using Sample = typename Form::Sample;

    explicit AutoCall(bool transforms)
        : src(noiseOf<Sample>(transforms ? 900 : 60, 53)),
          dst(static_cast<std::size_t>(transforms ? 90 : 9))
    {
        EXPECT_EQ(autoTransforms<Form>(static_cast<std::int64_t>(src.size()),
                                       static_cast<std::int64_t>(dst.size())),
                  transforms);
    }
    void run()
    {
        Form::corr(src.data(), static_cast<int>(src.size()), dst.data(),
                   static_cast<int>(dst.size()), RVX_AUTOCORR_UNBIASED);
    }
    std::vector<Sample> sums() const
    {
        return reference::autoCorrInStatedOrder(src, static_cast<std::int64_t>(dst.size()),
                                                RVX_AUTOCORR_UNBIASED);
    }
    std::vector<Sample> transformed() const
    {
        return reference::autoCorrByBlocks(src, static_cast<std::int64_t>(dst.size()),
                                           RVX_AUTOCORR_UNBIASED);
    }

    std::vector<Sample> src;
    std::vector<Sample> dst;
};

template <typename Value>
void spoil(std::vector<Value> *dst)
{
    for (Value &value : *dst)
        setParts(value, 5.0, 6.0);
}

// ---- what holds for all six --------------------------------------------------

template <typename Call>
void expectPathsAndNoReports()
{
    for (bool transforms : {false, true}) {
        Call call(transforms);
        const auto expected = transforms ? call.transformed() : call.sums();
        Tidy::dropTables();
        for (int status : {0, 7, int{RVX_STATUS_NO_MEMORY}, int{RVX_STATUS_BACKTRACE}}) {
            Reports reports;
            rvxSetErrStatus(status);
            spoil(&call.dst);
            call.run();
            EXPECT_EQ(rvxGetErrStatus(), status);
            EXPECT_TRUE(reports.take().empty());
            EXPECT_TRUE(sameBits(call.dst, expected)) << transforms << ", status " << status;
        }
    }
}

template <typename Call>
void expectSumsWhereBuffersAreRefused()
{
    Call call(true);
    const auto sums = call.sums();
    Tidy::dropTables();
    // The buffers come first, in one block.
    Reports reports;
    spoil(&call.dst);
    AllocationWatch watch(1);
    call.run();
    EXPECT_EQ(watch.failures(), 1);
    EXPECT_EQ(watch.allocations(), 1) << "no tables are made";
    EXPECT_EQ(watch.live(), 0);
    AllocationPause pause;
    EXPECT_EQ(rvxGetErrStatus(), 0);
    EXPECT_TRUE(reports.take().empty());
    EXPECT_TRUE(sameBits(call.dst, sums));
}

template <typename Call>
long allocationsOf(Call *call)
{
    AllocationWatch watch;
    call->run();
    return watch.allocations();
}

// One refusal, or every one from then on.
template <typename Call>
void expectRightResultsWhateverIsRefused(bool longTransforms)
{
    Call call(true);
    if (longTransforms) {
        if constexpr (std::is_same_v<Call, AutoCall<dAutoCorr>> ||
                      std::is_same_v<Call, AutoCall<zAutoCorr>>) {
            call.src = noiseOf<typename Call::Sample>(1500, 54);
            call.dst.resize(1200);
        } else {
            call.hiLag = 1200;
            call.dst.resize(1221);
        }
    }
    const auto sums = call.sums(), transformed = call.transformed();
    Tidy::dropTables();
    const long needed = allocationsOf(&call);
    EXPECT_GE(needed, 2);
    for (bool all : {false, true})
        for (long k = 1; k <= needed; ++k) {
            Tidy::dropTables();
            Reports reports;
            spoil(&call.dst);
            AllocationWatch watch(all ? 0 : k);
            if (all)
                watch.failAllFrom(k);
            call.run();
            EXPECT_GE(watch.failures(), 1);
            Tidy::dropTables();
            EXPECT_EQ(watch.live(), 0) << k;
            AllocationPause pause;
            EXPECT_EQ(rvxGetErrStatus(), 0);
            EXPECT_TRUE(reports.take().empty()) << k;
            EXPECT_TRUE(sameBits(call.dst, sums) || sameBits(call.dst, transformed)) << k;
            if (all) {
                EXPECT_TRUE(sameBits(call.dst, sums)) << k;
            }
        }
}

// Tables of every kind, of orders that the calls here do not need.
std::string someTables()
{
    Tidy::dropTables();
    ZCplx samples[16] = {};
    double reals[16] = {};
    rvxzFft(samples, 4, RVX_FFT_FORWARD);
    rvxzFft(samples, 3, RVX_FFT_FORWARD | RVX_FFT_OUT_BIT_REV);
    rvxdRealFft(reals, 3, RVX_FFT_FORWARD);
    rvxdCcsFft(nullptr, 4, RVX_FFT_INVERSE | RVX_FFT_INIT_TABLES);
    rvxGetFftTwdLarge(11);
    rvxGetBitRevTbl(5);
    rvxzGetFftTwdTbl(6);
    return held();
}

} // namespace

// ---- checks ---------------------------------------------------------------

TYPED_TEST(CrossCorr, ChecksInTheirOrder)
{
    Reports reports;
    using A = typename TypeParam::A;
    using B = typename TypeParam::B;
    const auto src1 = noiseOf<A>(4, 1);
    const auto src2 = noiseOf<B>(4, 2);
    std::vector<typename TypeParam::Value> dst(9);
    spoil(&dst);
    const auto before = dst;
    const auto refused = [&](const A *a, int len1, const B *b, int len2, bool hasDst, int loLag,
                             int hiLag, const char *message) {
        rvxSetErrStatus(0);
        TypeParam::corr(a, len1, b, len2, hasDst ? dst.data() : nullptr, loLag, hiLag);
        EXPECT_EQ(reports.take(), badArgument(TypeParam::name().c_str(), message, "rvxcorr"));
        EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_ARGUMENT);
        EXPECT_TRUE(sameBits(dst, before));
    };
    // Each call is wrong in everything that is checked later too.
    const A *a = src1.data();
    const B *b = src2.data();
    refused(nullptr, 0, nullptr, 0, false, 1, 0, "Null SRC buffer pointer");
    refused(nullptr, 4, b, 4, true, 0, 0, "Null SRC buffer pointer");
    refused(a, 0, nullptr, 0, false, 1, 0, "Null SRC buffer pointer");
    refused(a, 4, nullptr, 4, true, 0, 0, "Null SRC buffer pointer");
    refused(a, 0, b, 0, false, 1, 0, "Null DST buffer pointer");
    refused(a, 4, b, 4, false, 0, 0, "Null DST buffer pointer");
    for (int bad : {0, -1, INT_MIN}) {
        refused(a, bad, b, 4, true, 1, 0, "Invalid SRC buffer length");
        refused(a, bad, b, 4, true, 0, 0, "Invalid SRC buffer length");
        refused(a, 4, b, bad, true, 1, 0, "Invalid SRC buffer length");
        refused(a, 4, b, bad, true, 0, 0, "Invalid SRC buffer length");
    }
    refused(a, 4, b, 4, true, 1, 0, "Invalid LAG value");
    refused(a, 4, b, 4, true, INT_MAX, INT_MIN, "Invalid LAG value");
    refused(a, 4, b, 4, true, INT_MIN + 1, INT_MIN, "Invalid LAG value");
    refused(a, 4, b, 4, true, INT_MAX, INT_MAX - 1, "Invalid LAG value");
}

TYPED_TEST(CrossCorr, OneLagIsLegalAtBothEndsOfTheirRange)
{
    Reports reports;
    const auto src1 = noiseOf<typename TypeParam::A>(4, 1);
    const auto src2 = noiseOf<typename TypeParam::B>(5, 2);
    for (int lag : {INT_MIN, -4, -3, 0, 4, 5, INT_MAX})
        EXPECT_TRUE(sameBits(crossOf<TypeParam>(src1, src2, lag, lag),
                             crossSums<TypeParam>(src1, src2, lag, lag)));
    EXPECT_TRUE(reports.take().empty());
}

TYPED_TEST(CrossCorr, EndsTheProcessInModeZero)
{
    typename TypeParam::A src1[1] = {};
    typename TypeParam::B src2[1] = {};
    typename TypeParam::Value dst[1];
    EXPECT_EXIT(TypeParam::corr(src1, 1, src2, 1, dst, 1, 0), ::testing::ExitedWithCode(1), "");
}

TYPED_TEST(AutoCorr, ChecksInTheirOrder)
{
    Reports reports;
    using Sample = typename TypeParam::Sample;
    const auto samples = noiseOf<Sample>(4, 3);
    std::vector<Sample> dst(9);
    spoil(&dst);
    const auto before = dst;
    const Sample *src = samples.data();
    const auto refused = [&](const Sample *s, int len, bool hasDst, int nLags, int type,
                             const char *message) {
        rvxSetErrStatus(0);
        TypeParam::corr(s, len, hasDst ? dst.data() : nullptr, nLags, type);
        EXPECT_EQ(reports.take(), badArgument(TypeParam::name().c_str(), message, "rvxcorr"));
        EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_ARGUMENT);
        EXPECT_TRUE(sameBits(dst, before));
    };
    refused(nullptr, 0, false, 0, 3, "Null SRC buffer pointer");
    refused(nullptr, 4, true, 4, 0, "Null SRC buffer pointer");
    refused(src, 0, false, 0, 3, "Null DST buffer pointer");
    refused(src, 4, false, 4, 0, "Null DST buffer pointer");
    for (int bad : {0, -1, INT_MIN}) {
        refused(src, bad, true, 0, 3, "Invalid SRC buffer length");
        refused(src, bad, true, 1, 0, "Invalid SRC buffer length");
        refused(src, 4, true, bad, 3, "Invalid LAG value");
        refused(src, 4, true, bad, 0, "Invalid LAG value");
    }
    refused(src, 4, true, 5, 3, "Invalid LAG value");
    refused(src, 4, true, 5, 0, "Invalid LAG value");
    refused(src, 4, true, INT_MAX, 0, "Invalid LAG value");
    for (int type : {-1, 3, 4, INT_MIN, INT_MAX})
        refused(src, 4, true, 4, type, "Invalid auto-corr type");
    TypeParam::corr(src, 4, dst.data(), 4, RVX_AUTOCORR_NORMAL);
    EXPECT_TRUE(reports.take().empty());
}

TYPED_TEST(AutoCorr, EndsTheProcessInModeZero)
{
    typename TypeParam::Sample src[1] = {};
    typename TypeParam::Sample dst[1];
    EXPECT_EXIT(TypeParam::corr(src, 1, dst, 1, 3), ::testing::ExitedWithCode(1), "");
}

// ---- statuses -------------------------------------------------------------

TYPED_TEST(CrossCorr, AnOldStatusChangesNothingAndStays)
{
    expectPathsAndNoReports<CrossCall<TypeParam>>();
}

TYPED_TEST(AutoCorr, AnOldStatusChangesNothingAndStays)
{
    expectPathsAndNoReports<AutoCall<TypeParam>>();
}

// ---- operands -------------------------------------------------------------

TYPED_TEST(CrossCorr, OperandsAreNotWritten)
{
    for (bool transforms : {false, true}) {
        CrossCall<TypeParam> call(transforms);
        const auto src1 = call.src1;
        const auto src2 = call.src2;
        call.run();
        EXPECT_TRUE(sameBits(call.src1, src1));
        EXPECT_TRUE(sameBits(call.src2, src2));
    }
}

TYPED_TEST(CrossCorr, ASequenceMayMeetItself)
{
    if constexpr (std::is_same_v<typename TypeParam::A, typename TypeParam::B>) {
        for (bool transforms : {false, true}) {
            CrossCall<TypeParam> call(transforms);
            const auto copy = call.src1;
            const auto expected = crossOf<TypeParam>(call.src1, copy, call.loLag, call.hiLag);
            EXPECT_TRUE(sameBits(crossOf<TypeParam>(call.src1, call.src1, call.loLag, call.hiLag),
                                 expected));
        }
    }
}

TYPED_TEST(AutoCorr, SamplesAreNotWritten)
{
    for (bool transforms : {false, true}) {
        AutoCall<TypeParam> call(transforms);
        const auto src = call.src;
        call.run();
        EXPECT_TRUE(sameBits(call.src, src));
    }
}

// ---- memory ---------------------------------------------------------------

TYPED_TEST(CrossCorr, SumsNeedNoMemory)
{
    CrossCall<TypeParam> call(false);
    EXPECT_EQ(allocationsOf(&call), 0);
}

TYPED_TEST(AutoCorr, SumsNeedNoMemory)
{
    AutoCall<TypeParam> call(false);
    EXPECT_EQ(allocationsOf(&call), 0);
}

TYPED_TEST(CrossCorr, WithoutBuffersTheSumsAreTakenTheFirstElementIncluded)
{
    expectSumsWhereBuffersAreRefused<CrossCall<TypeParam>>();
}

TYPED_TEST(AutoCorr, WithoutBuffersTheSumsAreTaken)
{
    expectSumsWhereBuffersAreRefused<AutoCall<TypeParam>>();
}

TYPED_TEST(CrossCorr, EveryRefusedAllocationEndsInTheRightResult)
{
    expectRightResultsWhateverIsRefused<CrossCall<TypeParam>>(false);
    expectRightResultsWhateverIsRefused<CrossCall<TypeParam>>(true);
}

TYPED_TEST(AutoCorr, EveryRefusedAllocationEndsInTheRightResult)
{
    expectRightResultsWhateverIsRefused<AutoCall<TypeParam>>(false);
    expectRightResultsWhateverIsRefused<AutoCall<TypeParam>>(true);
}

TEST(CorrPaths, TransformsBeyondTheTablesAreNotTriedAndTakeNothing)
{
    const double src[1] = {1.0};
    double dst[1] = {5.0};
    const ZCplx zSrc[1] = {{1.0, 2.0}};
    ZCplx zDst[1] = {{5.0, 6.0}};
    AllocationWatch watch;
    for (std::int64_t lags : {(std::int64_t{1} << 27) + 1, std::int64_t{1} << 32}) {
        EXPECT_FALSE((ownCrossBlocks<double, double>({src, 1, src, 1, dst, 0, lags})));
        EXPECT_FALSE((ownCrossBlocks<ZCplx, ZCplx>({zSrc, 1, zSrc, 1, zDst, 0, lags})));
        EXPECT_FALSE((ownCrossBlocks<double, ZCplx>({src, 1, zSrc, 1, zDst, 0, lags})));
        EXPECT_FALSE((ownCrossBlocks<ZCplx, double>({zSrc, 1, src, 1, zDst, 0, lags})));
        EXPECT_FALSE(ownAutoBlocks<double>({src, 1, dst, lags}, 0));
        EXPECT_FALSE(ownAutoBlocks<ZCplx>({zSrc, 1, zDst, lags}, 0));
    }
    EXPECT_EQ(watch.allocations(), 0);
    EXPECT_EQ(dst[0], 5.0);
    EXPECT_EQ(zDst[0].re, 5.0);
}

// ---- tables ---------------------------------------------------------------

namespace {

template <typename Call>
void expectTablesAfter(const std::string &expected)
{
    const std::string before = someTables();
    ASSERT_EQ(before, "A11 B2 B3 B4 C3 r3 c4 s2 s3 s4 t6 p5") << "what the test starts with";
    Call sums(false);
    sums.run();
    EXPECT_EQ(held(), before) << "after sums";
    Call transforms(true);
    transforms.run();
    EXPECT_EQ(held(), expected) << "after transforms";
    someTables();
    {
        AllocationWatch watch(1);
        transforms.run();
        EXPECT_EQ(watch.failures(), 1);
    }
    EXPECT_EQ(held(), before) << "after sums for want of a buffer";
}

} // namespace

TYPED_TEST(CrossCorr, TablesThatStay)
{
    const bool complex = TypeParam::form == reference::CorrForm::Complex;
    expectTablesAfter<CrossCall<TypeParam>>(complex ? "A11 B2 B3 B4 B8 C3 C8 r3 c4 s2 s3 s4 t6 p5"
                                                    : "");
}

TYPED_TEST(AutoCorr, TablesThatStay)
{
    const bool complex = TypeParam::form == reference::CorrForm::Complex;
    expectTablesAfter<AutoCall<TypeParam>>(complex ? "A11 B2 B3 B4 B8 C3 C8 r3 c4 t6" : "");
}

// ---- ranges of lags beyond 32 bits ----------------------------------------

// So many values have no memory here. The same two megabytes stand for all of them, one
// behind the other; what stays at the end is what was written last.
TEST(CorrRange, MoreLagsThanAnIntCounts)
{
#if defined(RVX_TEST_SANITIZED) || !defined(__OPTIMIZE__)
    GTEST_SKIP() << "takes minutes";
#endif
    constexpr std::size_t page = std::size_t{1} << 21, perPage = page / sizeof(double);
    constexpr std::size_t lags = (std::size_t{1} << 31) + 3, pages = lags / perPage + 1;
    const int file = memfd_create("lags", 0);
    ASSERT_GE(file, 0);
    ASSERT_EQ(ftruncate(file, page), 0);
    void *room =
        mmap(nullptr, pages * page, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    ASSERT_NE(room, MAP_FAILED);
    for (std::size_t i = 0; i < pages; ++i)
        ASSERT_NE(mmap(static_cast<char *>(room) + i * page, page, PROT_READ | PROT_WRITE,
                       MAP_SHARED | MAP_FIXED, file, 0),
                  MAP_FAILED);
    auto *dst = static_cast<double *>(room);
    std::fill(dst, dst + perPage, 9.0);
    const double src1[] = {2.0, 3.0}, src2[] = {5.0, 7.0};
    rvxdCrossCorr(src1, 2, src2, 2, dst, INT_MIN, 2);
    EXPECT_EQ(dst[lags - 3], 31.0);
    EXPECT_EQ(dst[lags - 2], 14.0);
    for (std::size_t i = 0; i < perPage; ++i)
        if (i != (lags - 3) % perPage && i != (lags - 2) % perPage) {
            ASSERT_EQ(dst[i], 0.0) << i;
        }
    munmap(room, pages * page);
    close(file);
}
