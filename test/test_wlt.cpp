// Wavelet transforms: levels, edges, layouts and special values.

#include <cmath>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "reference/wavelet.h"
#include "rvx.h"
#include "support/bits.h"
#include "support/blocks.h"
#include "support/guarded.h"
#include "support/reports.h"
#include "support/walled.h"
#include "support/wavelets.h"

namespace {

#ifdef RVX_TEST_SANITIZED
constexpr int everyLengthUpTo = 36;
#else
constexpr int everyLengthUpTo = 72;
#endif

std::string at(const WaveletBank &bank, int len, int level)
{
    return ::testing::PrintToString(bank) + ", length " + std::to_string(len) + ", level " +
           std::to_string(level);
}

// The two Haar banks by their own steps, with neighbours (base, other) of a level.
struct Pair {
    std::size_t base, other;
};

std::vector<Pair> pairsOf(std::size_t n, bool isShifted)
{
    std::vector<Pair> pairs;
    if (isShifted) {
        pairs.push_back({0, n - 1});
        for (std::size_t k = 1; k <= (n - 1) / 2; ++k)
            pairs.push_back({2 * k, 2 * k - 1});
    } else {
        for (std::size_t k = 0; k < n / 2; ++k)
            pairs.push_back({2 * k, 2 * k + 1});
        if (n % 2 == 1)
            pairs.push_back({n - 1, n - 1});
    }
    return pairs;
}

std::vector<double> haarDecompose(const rvxWtState &state, std::vector<double> x, bool isShifted)
{
    std::vector<double> coefficients;
    for (int level = 0; level < state.level; ++level) {
        std::vector<double> low, high;
        for (const Pair &pair : pairsOf(x.size(), isShifted)) {
            const bool isLone = !isShifted && pair.base == pair.other;
            high.push_back(isLone ? 0.0 : (x[pair.other] - x[pair.base]) * 0.5);
            low.push_back(isLone ? x[pair.base] : x[pair.base] + high.back());
        }
        coefficients.insert(coefficients.begin(), high.begin(), high.end());
        x = low;
    }
    coefficients.insert(coefficients.begin(), x.begin(), x.end());
    return coefficients;
}

std::vector<double> haarReconstruct(const rvxWtState &state,
                                    const std::vector<double> &coefficients, bool isShifted)
{
    auto next = coefficients.begin() + state.lenLevel[state.level];
    std::vector<double> low(coefficients.begin(), next);
    for (int level = state.level; level > 0; --level) {
        const auto n = static_cast<std::size_t>(state.lenLevel[level - 1]);
        std::vector<double> y(n);
        const std::vector<Pair> pairs = pairsOf(n, isShifted);
        for (std::size_t k = 0; k < pairs.size(); ++k) {
            const double d = *next++;
            const bool isLone = pairs[k].base == pairs[k].other;
            const bool wrapsOnce = isShifted && k == 0 && n % 2 == 1;
            if (!isLone && !wrapsOnce)
                y[pairs[k].other] = low[k] + d;
            y[pairs[k].base] = low[k] - d;
        }
        low = y;
    }
    return low;
}

std::vector<double> expectedDecomposition(const WaveletBank &bank, const rvxWtState &state,
                                          const std::vector<double> &signal)
{
    if (isHaarBank(bank) || isShiftedHaarBank(bank))
        return haarDecompose(state, signal, isShiftedHaarBank(bank));
    return reference::decompose(state, signal);
}

std::vector<double> expectedReconstruction(const WaveletBank &bank, const rvxWtState &state,
                                           const std::vector<double> &coefficients)
{
    if (isHaarBank(bank) || isShiftedHaarBank(bank))
        return haarReconstruct(state, coefficients, isShiftedHaarBank(bank));
    return reference::reconstruct(state, coefficients);
}

using Transform = void(rvxWtState *, const double *, double *);

// Runs with walls around the input and guards around the output.
std::vector<double> run(Transform *transform, rvxWtState &state, const std::vector<double> &src,
                        std::size_t outLen, int misalignment)
{
    const Wall wall = misalignment % 2 == 0 ? Wall::behind : Wall::before;
    Walled<double> in(src, wall, misalignment);
    Guarded<double> out(static_cast<int>(outLen), (misalignment + 1) % 4);
    transform(&state, in.data(), out.data());
    EXPECT_TRUE(out.intact());
    EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_OK);
    const std::vector<double> inAfter = in.values();
    for (std::size_t i = 0; i < src.size(); ++i)
        EXPECT_TRUE(sameBits(inAfter[i], src[i]));
    return out.values();
}

std::vector<double> decomposed(rvxWtState &state, const std::vector<double> &signal,
                               int misalignment = 0)
{
    return run(rvxdWtDecompose, state, signal, static_cast<std::size_t>(state.len_dec),
               misalignment);
}

std::vector<double> reconstructed(rvxWtState &state, const std::vector<double> &coefficients,
                                  int misalignment = 0)
{
    return run(rvxdWtReconstruct, state, coefficients, static_cast<std::size_t>(state.lenLevel[0]),
               misalignment);
}

void expectSame(const std::vector<double> &got, const std::vector<double> &wanted,
                const std::string &where)
{
    ASSERT_EQ(got.size(), wanted.size()) << where;
    for (std::size_t i = 0; i < got.size(); ++i)
        ASSERT_TRUE(same(got[i], wanted[i]))
            << where << ", at " << i << ": " << got[i] << ", wanted " << wanted[i];
}

void expectStated(const WaveletBank &bank, int len, int level, Temper temper = Temper::uniform)
{
    GuardedWavelet wavelet(bank, len, level);
    rvxWtState &state = wavelet.state;
    const std::string where = at(bank, len, level);
    const std::vector<double> signal = makeBlock(temper, len, static_cast<unsigned>(level));
    expectSame(decomposed(state, signal, len % 4), expectedDecomposition(bank, state, signal),
               where + ", decomposed");
    const std::vector<double> coefficients = makeBlock(temper, state.len_dec, 7);
    expectSame(reconstructed(state, coefficients, level % 4),
               expectedReconstruction(bank, state, coefficients), where + ", reconstructed");
    EXPECT_TRUE(wavelet.intact()) << where;
}

double largest(const std::vector<double> &x)
{
    double m = 0.0;
    for (double value : x)
        m = std::max(m, std::fabs(value));
    return m;
}

template <typename Other>
double largestError(const std::vector<double> &x, const std::vector<Other> &right)
{
    long double m = 0.0;
    for (std::size_t i = 0; i < x.size(); ++i)
        m = std::max(m, std::fabs(static_cast<long double>(x[i]) - right[i]));
    return static_cast<double>(m);
}

} // namespace

TEST(WaveletLevels, EveryBankAtEveryShortLengthAndLevelHasTheStatedBits)
{
    for (const WaveletBank &bank : allWaveletBanks())
        for (int len = 2; len <= everyLengthUpTo; ++len)
            for (int level = 0; level <= deepestLevel(len); ++level)
                expectStated(bank, len, level);
}

TEST(WaveletLevels, LengthsAroundChunksHaveTheStatedBits)
{
    for (const WaveletBank &bank : allWaveletBanks())
        for (int len : {505, 512, 513, 519, 1023, 1024, 1027})
            expectStated(bank, len, len % 4 + 1);
    for (const WaveletBank &bank :
         {WaveletBank{2, 4, 0}, {4, 5, 0}, {6, 2, 2}, {7, 3, 9}, {1, 0, 0}})
        for (int len = 480; len <= 1120; len += len % 2 == 0 ? 11 : 2)
            expectStated(bank, len, 1);
}

TEST(WaveletLevels, PowersOfTwoAtFullDepthHaveTheStatedBits)
{
    for (const WaveletBank &bank : allWaveletBanks())
        for (int order = 1; order <= 12; ++order)
            expectStated(bank, 1 << order, order);
}

TEST(WaveletLevels, SamplesOfEveryTemperHaveTheStatedBits)
{
    for (Temper temper : allTempers)
        for (const WaveletBank &bank :
             {WaveletBank{1, 0, 0}, {2, 4, 0}, {4, 2, 0}, {6, 1, 1}, {6, 2, 2}, {7, 3, 1}})
            for (int len : {2, 7, 64, 97, 600})
                expectStated(bank, len, deepestLevel(len), temper);
}

// Rounding alone, as sums of that many products make it at each level.
TEST(WaveletAccuracy, EveryBankIsWithinRoundingOfMoreDigits)
{
    for (const WaveletBank &bank : allWaveletBanks()) {
        GuardedWavelet wavelet(bank, 1024, 10);
        rvxWtState &state = wavelet.state;
        const std::vector<double> x = makeBlock(Temper::uniform, 1024, 3);
        const std::vector<long double> precise(x.begin(), x.end());
        EXPECT_LT(largestError(decomposed(state, x), reference::decompose(state, precise)), 1e-15)
            << bank;
        const std::vector<long double> signal = reference::reconstruct(state, precise);
        const std::vector<double> rounded(signal.begin(), signal.end());
        EXPECT_LT(largestError(reconstructed(state, x), signal), 1e-15 * largest(rounded)) << bank;
    }
}

// How well a bank undoes itself: as far as the digits go that its taps are tabulated
// with, or to some roundings.
double gapOf(const WaveletBank &bank)
{
    if (bank.wtType == RVX_WT_VAIDYANATHAN)
        return 4e-8;
    if (bank.wtType == RVX_WT_DAUBECHIES)
        return bank.par1 <= 3 ? 1e-15 : 2e-11;
    if (bank.wtType == RVX_WT_SYMLET)
        return bank.par1 <= 6 ? 1e-11 : 3e-9;
    if (bank.wtType == RVX_WT_COIFLET) {
        const double gaps[] = {1e-15, 1e-10, 5e-12, 2e-10, 4e-8};
        return gaps[bank.par1 - 1];
    }
    return 4e-15;
}

TEST(WaveletRoundTrip, ReturnsTheSignalAsWellAsTheFilterIsTabulated)
{
    for (const WaveletBank &bank : allWaveletBanks())
        for (int len : {2, 3, 5, 16, 31, 100, 1024, 1999}) {
            GuardedWavelet wavelet(bank, len, deepestLevel(len));
            const std::vector<double> x = makeBlock(Temper::uniform, len, 9);
            const std::vector<double> back =
                reconstructed(wavelet.state, decomposed(wavelet.state, x));
            EXPECT_LT(largestError(back, x), gapOf(bank)) << bank << ", " << len;
        }
}

// A signal of that magnitude, with the signs of the worst row, has the row's sum as error.
TEST(WaveletRoundTrip, OfAnySignalIsWithinWhatIsSaidOfEightLevels)
{
    constexpr int len = 256;
    for (const WaveletBank &bank : allWaveletBanks()) {
        if (bank.wtType == RVX_WT_HAAR || bank.wtType > RVX_WT_VAIDYANATHAN)
            continue; // theirs are roundings alone
        GuardedWavelet wavelet(bank, len, 8);
        std::vector<double> rows(len), x(len);
        for (std::size_t j = 0; j < len; ++j) {
            x[j] = 1.0;
            const std::vector<double> back =
                reconstructed(wavelet.state, decomposed(wavelet.state, x));
            for (std::size_t i = 0; i < len; ++i)
                rows[i] += std::fabs(back[i] - x[i]);
            x[j] = 0.0;
        }
        const bool isWide =
            bank.wtType == RVX_WT_VAIDYANATHAN || (bank.wtType == RVX_WT_COIFLET && bank.par1 == 5);
        EXPECT_LT(largest(rows), isWide ? 1.8e-7 : 3.4e-9) << bank; // said in the guide
    }
}

TEST(WaveletRoundTrip, OfSplinesWithDyadicTapsIsExact)
{
    // Small integers: no sum rounds.
    std::vector<double> x(64);
    for (std::size_t i = 0; i < x.size(); ++i)
        x[i] = static_cast<double>((i * i * 7 + 3 * i) % 32);
    for (const WaveletBank &bank : allWaveletBanks())
        if (bank.wtType >= RVX_WT_BSPLINE) {
            GuardedWavelet wavelet(bank, 64, 1);
            expectSame(reconstructed(wavelet.state, decomposed(wavelet.state, x)), x,
                       ::testing::PrintToString(bank));
        }
}

TEST(WaveletLayout, ApproximationThenDetailsFromTheDeepestToTheFinest)
{
    GuardedWavelet wavelet({RVX_WT_HAAR, 0, 0}, 8, 3);
    const std::vector<double> x = {1, 3, 5, 11, 2, 2, 8, 16};
    expectSame(decomposed(wavelet.state, x), {6, 1, 3, 5, 1, 3, 0, 4}, "Haar");
    expectSame(reconstructed(wavelet.state, {6, 1, 3, 5, 1, 3, 0, 4}), x, "Haar back");
}

TEST(WaveletLayout, OddLevelsRepeatTheirLastSample)
{
    GuardedWavelet wavelet({RVX_WT_HAAR, 0, 0}, 5, 3);
    const std::vector<double> x = {1, 3, 5, 11, 6};
    // 2 8 6 | 1 3 0, then 5 6 | 3 0, then 5.5 | 0.5
    expectSame(decomposed(wavelet.state, x), {5.5, 0.5, 3, 0, 1, 3, 0}, "Haar");
    expectSame(reconstructed(wavelet.state, {5.5, 0.5, 3, 0, 1, 3, 0}), x, "Haar back");
}

TEST(WaveletLayout, ConstantsAreInTheApproximationAlone)
{
    for (const WaveletBank &bank : allWaveletBanks()) {
        GuardedWavelet wavelet(bank, 8, 1);
        const std::vector<double> y = decomposed(wavelet.state, std::vector<double>(8, 3.0));
        // The bank of type 5 was made for its stop band and has no zero there.
        const double leak = bank.wtType == RVX_WT_VAIDYANATHAN ? 3e-4 : 1e-11;
        for (std::size_t k = 0; k < 4; ++k) {
            EXPECT_NEAR(y[k], 3.0, 3e-15) << bank;
            EXPECT_NEAR(y[4 + k], 0.0, leak) << bank;
        }
    }
}

TEST(WaveletLayout, LevelZeroCopiesWhateverTheType)
{
    for (const WaveletBank &bank : allWaveletBanks())
        for (int len : {2, 5, 33}) {
            GuardedWavelet wavelet(bank, len, 0);
            EXPECT_EQ(wavelet.state.len_dec, len);
            const std::vector<double> x = makeBlock(Temper::specials, len, 5);
            expectSame(decomposed(wavelet.state, x), x, "decomposed");
            expectSame(reconstructed(wavelet.state, x), x, "reconstructed");
        }
}

TEST(WaveletHaar, PairsStartAtTheFirstSampleOrWrap)
{
    GuardedWavelet plain({RVX_WT_DAUBECHIES, 1, 0}, 2, 1);
    expectSame(decomposed(plain.state, {1, 3}), {2, 1}, "plain");
    expectSame(reconstructed(plain.state, {2, 1}), {1, 3}, "plain back");
    for (int wtType : {RVX_WT_BSPLINE, RVX_WT_BSPLINE_DUAL}) {
        GuardedWavelet shifted({wtType, 1, 1}, 2, 1);
        expectSame(decomposed(shifted.state, {1, 3}), {2, 1}, "shifted");
        expectSame(reconstructed(shifted.state, {2, 1}), {1, 3}, "shifted back");
    }
    GuardedWavelet wraps({RVX_WT_BSPLINE, 1, 1}, 4, 1);
    expectSame(decomposed(wraps.state, {1, 2, 4, 5}), {3, 3, 2, -1}, "wraps");
}

TEST(WaveletHaar, TheLowBandIsFormedFromTheDetail)
{
    // The mean of these would be infinite.
    GuardedWavelet wavelet({RVX_WT_HAAR, 0, 0}, 2, 1);
    const std::vector<double> y = decomposed(wavelet.state, {INF, 1.0});
    EXPECT_TRUE(std::isnan(y[0]));
    EXPECT_EQ(y[1], -INF);
    // 1 is lost in the difference; the mean would be 2^52.
    expectSame(decomposed(wavelet.state, {-0x1p54, 0x1p54 + 4.0}), {0.0, 0x1p54}, "lost");
    // All but the lanes of the pair are as ever.
    GuardedWavelet longer({RVX_WT_HAAR, 0, 0}, 16, 1);
    std::vector<double> x(16, 1.0);
    x[6] = INF;
    const std::vector<double> z = decomposed(longer.state, x);
    for (std::size_t k = 0; k < 8; ++k)
        EXPECT_EQ(std::isnan(z[k]), k == 3) << k;
}

TEST(WaveletHaar, GoesByItsFiltersUpToRounding)
{
    for (const WaveletBank &bank : allWaveletBanks()) {
        if (!isHaarBank(bank) && !isShiftedHaarBank(bank))
            continue;
        for (int len : {2, 3, 8, 13, 64, 97}) {
            GuardedWavelet wavelet(bank, len, deepestLevel(len));
            const std::vector<double> x = makeBlock(Temper::uniform, len, 2);
            EXPECT_LT(
                largestError(decomposed(wavelet.state, x), reference::decompose(wavelet.state, x)),
                1e-15)
                << bank << ", " << len;
            const std::vector<double> y = makeBlock(Temper::uniform, wavelet.state.len_dec, 2);
            EXPECT_LT(largestError(reconstructed(wavelet.state, y),
                                   reference::reconstruct(wavelet.state, y)),
                      3e-15)
                << bank << ", " << len;
        }
    }
}

TEST(WaveletSpecials, AnInfinityIsInTheOutputsThatMeetItAlone)
{
    GuardedWavelet wavelet({RVX_WT_DAUBECHIES, 4, 0}, 256, 1);
    for (std::size_t place : {std::size_t{0}, std::size_t{101}, std::size_t{255}}) {
        std::vector<double> x(256, 1.0);
        x[place] = INF;
        const std::vector<double> y = decomposed(wavelet.state, x);
        int infinite = 0;
        for (double value : y)
            infinite += std::isfinite(value) ? 0 : 1;
        EXPECT_EQ(infinite, 8); // four of each band meet it by one of eight taps
    }
}

TEST(WaveletSpecials, ResultsDoNotDependOnWhereInTheSignalTheSamplesAre)
{
    // Periodic in 4 samples: so are the outputs, in 2, in vectors, tails and edges alike.
    for (const WaveletBank &bank : allWaveletBanks()) {
        const double four[] = {0.3, -1.7, 0.9, 1e-3};
        for (int len : {4, 8, 20, 36, 68, 572, 1100}) {
            GuardedWavelet wavelet(bank, len, 1);
            std::vector<double> x(static_cast<std::size_t>(len));
            for (std::size_t i = 0; i < x.size(); ++i)
                x[i] = four[i % 4];
            const std::vector<double> y = decomposed(wavelet.state, x);
            const std::size_t half = x.size() / 2;
            for (std::size_t k = 0; k < half; ++k) {
                EXPECT_TRUE(sameBits(y[k], y[k % 2]));
                EXPECT_TRUE(sameBits(y[half + k], y[half + k % 2]));
            }
            std::vector<double> bands(x);
            const std::vector<double> z = reconstructed(wavelet.state, bands);
            for (std::size_t i = 0; half % 4 == 0 && i < z.size(); ++i)
                EXPECT_TRUE(sameBits(z[i], z[i % 8]));
        }
    }
}

TEST(WaveletReports, ChecksStandInTheirOrder)
{
    Reports reports;
    rvxWtState state = {};
    double x[2] = {1, 2}, y[2] = {5, 6};
    const char *core = "Error in the (float, double or short) core of wtState!";
    const char *noState = "'NULL' pointer in 'wtState' argument was passed!";
    const char *noSrc = "'NULL' pointer in 'src' argument was passed!";
    const char *noDst = "'NULL' pointer in 'dst' argument was passed!";
    expectRefused(
        {{"rvxdWtDecompose", noState, [] { rvxdWtDecompose(nullptr, nullptr, nullptr); }},
         {"rvxdWtDecompose", noSrc, [&] { rvxdWtDecompose(&state, nullptr, nullptr); }},
         {"rvxdWtDecompose", noDst, [&] { rvxdWtDecompose(&state, x, nullptr); }},
         {"rvxdWtDecompose", core, [&] { rvxdWtDecompose(&state, x, y); }},
         {"rvxdWtReconstruct", noState, [] { rvxdWtReconstruct(nullptr, nullptr, nullptr); }},
         {"rvxdWtReconstruct", noSrc, [&] { rvxdWtReconstruct(&state, nullptr, nullptr); }},
         {"rvxdWtReconstruct", noDst, [&] { rvxdWtReconstruct(&state, x, nullptr); }},
         {"rvxdWtReconstruct", core, [&] { rvxdWtReconstruct(&state, x, y); }}},
        "rvxwlt", reports);
    EXPECT_EQ(y[0], 5);
    EXPECT_EQ(y[1], 6);
}

TEST(WaveletReports, TheCoreIsTestedBeforeLevelZeroCopies)
{
    Reports reports;
    GuardedWavelet wavelet({RVX_WT_HAAR, 0, 0}, 2, 0);
    double x[2] = {1, 2}, y[2] = {5, 6};
    for (int core : {0, 1, 3, -2}) {
        wavelet.state.core = core;
        rvxdWtDecompose(&wavelet.state, x, y);
        rvxdWtReconstruct(&wavelet.state, x, y);
        EXPECT_EQ(reports.take().size(), 2U);
    }
    EXPECT_EQ(y[0], 5);
    EXPECT_EQ(y[1], 6);
}

TEST(WaveletReports, TransformsClearAStaleStatus)
{
    Reports reports;
    GuardedWavelet wavelet({RVX_WT_DAUBECHIES, 2, 0}, 4, 1);
    double x[4] = {1, 2, 3, 4}, y[4];
    rvxSetErrStatus(RVX_STATUS_NO_MEMORY);
    rvxdWtDecompose(&wavelet.state, x, y);
    EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_OK);
    rvxSetErrStatus(RVX_STATUS_NO_MEMORY);
    rvxdWtReconstruct(&wavelet.state, x, y);
    EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_OK);
    EXPECT_TRUE(reports.take().empty());
}

TEST(WaveletReports, InModeZeroARefusedCallEndsTheProcess)
{
    EXPECT_EXIT(rvxdWtDecompose(nullptr, nullptr, nullptr), ::testing::ExitedWithCode(1), "");
    EXPECT_EXIT(rvxdWtReconstruct(nullptr, nullptr, nullptr), ::testing::ExitedWithCode(1), "");
}
