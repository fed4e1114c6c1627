// The filter banks, held against what filters of these families must be.

#include <cmath>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "reference/wavelet.h"
#include "rvx.h"
#include "support/bits.h"
#include "support/wavelets.h"

namespace {

using Taps = std::vector<long double>;

struct Bank {
    explicit Bank(const WaveletBank &which) : state()
    {
        rvxdWtInit(which.par1, which.par2, 1, 1, &state, which.wtType);
        for (int f = 0; f < 4; ++f)
            t[f].assign(state.tap_filt[f], state.tap_filt[f] + state.len_filt[f]);
    }
    ~Bank() { rvxWtFree(&state); }
    Bank(const Bank &) = delete;
    Bank &operator=(const Bank &) = delete;

    rvxWtState state;
    Taps t[4];
};

std::vector<WaveletBank> banksOf(int wtType)
{
    std::vector<WaveletBank> banks;
    for (const WaveletBank &bank : allWaveletBanks())
        if (bank.wtType == wtType)
            banks.push_back(bank);
    return banks;
}

std::vector<WaveletBank> orthogonalBanks()
{
    std::vector<WaveletBank> banks;
    for (const WaveletBank &bank : allWaveletBanks())
        if (bank.wtType <= RVX_WT_VAIDYANATHAN)
            banks.push_back(bank);
    return banks;
}

long double sumOf(const Taps &taps)
{
    long double sum = 0;
    for (long double tap : taps)
        sum += tap;
    return sum;
}

// sum of ((n - middle) / len)^m t[n]
long double moment(const Taps &taps, int m, long double middle)
{
    const auto len = static_cast<long double>(taps.size());
    long double sum = 0;
    for (std::size_t n = 0; n < taps.size(); ++n)
        sum += std::pow((static_cast<long double>(n) - middle) / len, m) * taps[n];
    return sum;
}

double largestMoment(const Taps &taps, int count)
{
    long double largest = 0;
    for (int m = 0; m < count; ++m)
        largest = std::max(largest, std::fabs(moment(taps, m, 0)));
    return static_cast<double>(largest);
}

// sum over n of a[n] b[n + shift]
long double correlation(const Taps &a, const Taps &b, int shift)
{
    long double sum = 0;
    for (std::size_t n = 0; n < a.size(); ++n) {
        const auto other = static_cast<std::ptrdiff_t>(n) + shift;
        if (other >= 0 && other < static_cast<std::ptrdiff_t>(b.size()))
            sum += a[n] * b[static_cast<std::size_t>(other)];
    }
    return sum;
}

// The farthest from an orthogonal bank that any pair of its shifted filters is.
double orthogonalityGap(const Taps &low, const Taps &high)
{
    long double gap = 0;
    const int len = static_cast<int>(low.size());
    for (int shift = -len; shift <= len; ++shift) {
        if (shift % 2 != 0)
            continue;
        const long double wanted = shift == 0 ? 0.5L : 0.0L;
        gap = std::max({gap, std::fabs(correlation(low, low, shift) - wanted),
                        std::fabs(correlation(high, high, shift) - wanted),
                        std::fabs(correlation(low, high, shift))});
    }
    return static_cast<double>(gap);
}

// How well one level there and back returns single samples of a long signal.
double reconstructionGap(const rvxWtState &state)
{
    long double gap = 0;
    for (std::size_t place : {std::size_t{100}, std::size_t{101}}) {
        Taps x(200);
        x[place] = 1;
        const Taps low = reference::band(state, 0, x), high = reference::band(state, 1, x);
        for (long t = 0; t < 200; ++t) {
            const long double y =
                reference::part(state, 2, low, t) + reference::part(state, 3, high, t);
            gap = std::max(gap, std::fabs(y - x[static_cast<std::size_t>(t)]));
        }
    }
    return static_cast<double>(gap);
}

std::int64_t choose(int n, int k)
{
    std::int64_t value = 1;
    for (int i = 0; i < k; ++i)
        value = value * (n - i) / (i + 1);
    return value;
}

using Integers = std::vector<std::int64_t>;

Integers product(const Integers &a, const Integers &b)
{
    Integers c(a.size() + b.size() - 1);
    for (std::size_t i = 0; i < a.size(); ++i)
        for (std::size_t j = 0; j < b.size(); ++j)
            c[i + j] += a[i] * b[j];
    return c;
}

// The filter dual to a spline of an order (A. Cohen, I. Daubechies and J.-C. Feauveau,
// Biorthogonal bases of compactly supported wavelets, 1992, section 6.A), with sum 2:
// ((1 + z) / 2)^dual times the sum over m below q = (order + dual) / 2 of
// choose(q - 1 + m, m) ((2 - z - 1/z) / 4)^m. In units of 2^-(dual + 2q - 3).
Integers splineDual(int order, int dual)
{
    const int q = (order + dual) / 2;
    Integers sum(static_cast<std::size_t>(2 * q - 1));
    Integers power = {1};
    for (int m = 0; m < q; ++m) {
        const std::int64_t weight = choose(q - 1 + m, m) << (2 * (q - 1 - m));
        for (std::size_t i = 0; i < power.size(); ++i)
            sum[i + static_cast<std::size_t>(q - 1 - m)] += weight * power[i];
        power = product(power, {-1, 2, -1});
    }
    for (int i = 0; i < dual; ++i)
        sum = product(sum, {1, 1});
    return sum;
}

} // namespace

TEST(WaveletBanks, HaveTheLengthsOfTheirFamilies)
{
    for (const WaveletBank &which : orthogonalBanks()) {
        const int lens[] = {0, 2, 2 * which.par1, 2 * (which.par1 + 3), 6 * which.par1, 24};
        const Bank bank(which);
        for (int f = 0; f < 4; ++f)
            EXPECT_EQ(bank.state.len_filt[f], lens[which.wtType]) << which;
    }
}

TEST(WaveletBanks, LowPassesSumToOneAndTwo)
{
    for (const WaveletBank &which : allWaveletBanks()) {
        const Bank bank(which);
        EXPECT_NEAR(static_cast<double>(sumOf(bank.t[0])), 1.0, 6e-16) << which;
        EXPECT_NEAR(static_cast<double>(sumOf(bank.t[2])), 2.0, 12e-16) << which;
    }
}

TEST(WaveletBanks, HighPassesStopConstants)
{
    for (const WaveletBank &which : allWaveletBanks()) {
        const Bank bank(which);
        const double leak = which.wtType == RVX_WT_VAIDYANATHAN ? 2e-4 : 4e-12;
        EXPECT_NEAR(static_cast<double>(sumOf(bank.t[1])), 0.0, leak) << which;
        EXPECT_NEAR(static_cast<double>(sumOf(bank.t[3])), 0.0, 2 * leak) << which;
    }
}

TEST(WaveletBanks, OrthogonalOnesFollowFromTheirLowPass)
{
    for (const WaveletBank &which : orthogonalBanks()) {
        const Bank bank(which);
        const std::size_t len = bank.t[0].size();
        for (std::size_t n = 0; n < len; ++n) {
            const long double sign = n % 2 == 0 ? 1 : -1;
            EXPECT_EQ(bank.t[1][n], sign * bank.t[0][len - 1 - n]) << which;
            EXPECT_EQ(bank.t[2][n], 2 * bank.t[0][len - 1 - n]) << which;
            EXPECT_EQ(bank.t[3][n], -2 * sign * bank.t[0][n]) << which;
        }
    }
}

// To half a unit of the last digit that a family's taps are tabulated with, about.
TEST(WaveletBanks, OrthogonalOnesAreOrthogonal)
{
    for (const WaveletBank &which : orthogonalBanks()) {
        const Bank bank(which);
        double gap = which.wtType <= RVX_WT_DAUBECHIES && which.par1 <= 3 ? 2e-16 : 2e-12;
        if (which.wtType == RVX_WT_COIFLET) {
            const double gaps[] = {2e-16, 6e-12, 1e-12, 2e-11, 5e-9};
            gap = gaps[which.par1 - 1];
        } else if (which.wtType == RVX_WT_SYMLET && which.par1 == 7) {
            gap = 4e-10;
        } else if (which.wtType == RVX_WT_VAIDYANATHAN) {
            gap = 5e-9;
        }
        EXPECT_LT(orthogonalityGap(bank.t[0], bank.t[1]), gap) << which;
    }
}

TEST(WaveletBanks, OfEveryTypeReconstructs)
{
    for (const WaveletBank &which : allWaveletBanks()) {
        const Bank bank(which);
        // What two formulas of the splines give is exact.
        const double gap = which.wtType >= RVX_WT_BSPLINE ? 1e-18 : 2e-8;
        EXPECT_LE(reconstructionGap(bank.state), gap) << which;
    }
}

TEST(WaveletBanks, DaubechiesHaveTheirVanishingMomentsAndNoMore)
{
    for (const WaveletBank &which : banksOf(RVX_WT_DAUBECHIES)) {
        const Bank bank(which);
        EXPECT_LT(largestMoment(bank.t[1], which.par1), 4e-12) << which;
        EXPECT_GT(std::fabs(moment(bank.t[1], which.par1, 0)), 1e-8) << which;
    }
}

// Of all filters with these zeros, Daubechies' have their energy the earliest.
TEST(WaveletBanks, DaubechiesAreOfMinimumPhase)
{
    for (const WaveletBank &which : banksOf(RVX_WT_DAUBECHIES)) {
        const Bank bank(which);
        const Taps &h = bank.t[0];
        long double forward = 0, backward = 0;
        for (std::size_t n = 0; n + 1 < h.size(); ++n) {
            forward += h[n] * h[n];
            backward += h[h.size() - 1 - n] * h[h.size() - 1 - n];
            EXPECT_GE(forward, backward) << which;
        }
    }
}

TEST(WaveletBanks, TheShortestDaubechiesHaveTheirClosedForm)
{
    const Bank four({RVX_WT_DAUBECHIES, 2, 0});
    const long double root = std::sqrt(3.0L);
    const long double wanted[] = {(1 + root) / 8, (3 + root) / 8, (3 - root) / 8, (1 - root) / 8};
    for (int n = 0; n < 4; ++n)
        EXPECT_NEAR(four.state.tap_filt[0][n], static_cast<double>(wanted[n]), 6e-17);
    const Bank six({RVX_WT_DAUBECHIES, 3, 0});
    const long double a = std::sqrt(10.0L), b = std::sqrt(5 + 2 * a);
    const long double more[] = {1 + a + b,          5 + a + 3 * b, 10 - 2 * a + 2 * b,
                                10 - 2 * a - 2 * b, 5 + a - 3 * b, 1 + a - b};
    for (int n = 0; n < 6; ++n)
        EXPECT_NEAR(six.state.tap_filt[0][n], static_cast<double>(more[n] / 32), 6e-17);
}

TEST(WaveletBanks, SymletsHaveTheirVanishingMomentsAndAreNearlySymmetric)
{
    for (const WaveletBank &which : banksOf(RVX_WT_SYMLET)) {
        const Bank bank(which);
        const int moments = which.par1 + 3;
        EXPECT_LT(largestMoment(bank.t[1], moments), 4e-12) << which;
        EXPECT_GT(std::fabs(moment(bank.t[1], moments, 0)), 1e-9) << which;
        // The same squared magnitude as Daubechies' of as many taps.
        const Bank daubechies({RVX_WT_DAUBECHIES, moments, 0});
        for (int shift = 0; shift < 2 * moments; ++shift)
            EXPECT_NEAR(static_cast<double>(correlation(bank.t[0], bank.t[0], shift)),
                        static_cast<double>(correlation(daubechies.t[0], daubechies.t[0], shift)),
                        4e-10)
                << which;
        // Most of the energy is in the middle third.
        const Taps &h = bank.t[0];
        long double middle = 0;
        for (std::size_t n = h.size() / 3; n < h.size() - h.size() / 3; ++n)
            middle += h[n] * h[n];
        EXPECT_GT(middle, 0.45L) << which; // of a half
    }
}

TEST(WaveletBanks, CoifletsHaveVanishingMomentsInBothBands)
{
    for (const WaveletBank &which : banksOf(RVX_WT_COIFLET)) {
        const Bank bank(which);
        EXPECT_LT(largestMoment(bank.t[1], 2 * which.par1), 4e-12) << which;
        // About a tap in the middle, the low band's too.
        const long double middle =
            moment(bank.t[0], 1, 0) * static_cast<long double>(bank.t[0].size());
        EXPECT_NEAR(static_cast<double>(middle), std::round(static_cast<double>(middle)), 1e-9)
            << which;
        for (int m = 1; m < 2 * which.par1; ++m)
            EXPECT_NEAR(static_cast<double>(moment(bank.t[0], m, std::round(middle))), 0.0, 1e-9)
                << which << ", moment " << m;
    }
}

// No vanishing moments here: it was made for its stop band.
TEST(WaveletBanks, VaidyanathanHasASharpTransition)
{
    const Bank bank({RVX_WT_VAIDYANATHAN, 0, 0});
    const long double pi = std::acos(-1.0L);
    for (int i = 0; i <= 1000; ++i) {
        const long double w = pi * static_cast<long double>(i) / 1000;
        long double re = 0, im = 0;
        for (std::size_t n = 0; n < bank.t[0].size(); ++n) {
            re += bank.t[0][n] * std::cos(w * static_cast<long double>(n));
            im += bank.t[0][n] * std::sin(w * static_cast<long double>(n));
        }
        const long double power = re * re + im * im;
        if (i <= 390) {
            EXPECT_NEAR(static_cast<double>(power), 1.0, 0.02) << i;
        } else if (i >= 610) {
            EXPECT_LT(power, 0.02L) << i;
        }
    }
}

TEST(WaveletBanks, SplinesAreBinomialAndTheirDualsFollow)
{
    for (const WaveletBank &which : banksOf(RVX_WT_BSPLINE)) {
        const Bank bank(which);
        ASSERT_EQ(bank.t[0].size(), static_cast<std::size_t>(which.par1 + 1));
        for (int n = 0; n <= which.par1; ++n)
            EXPECT_EQ(bank.t[0][static_cast<std::size_t>(n)],
                      std::ldexp(static_cast<long double>(choose(which.par1, n)), -which.par1));
        const Integers dual = splineDual(which.par1, which.par2);
        ASSERT_EQ(bank.t[2].size(), dual.size()) << which;
        const int unit = which.par2 + (which.par1 + which.par2) - 3;
        for (std::size_t n = 0; n < dual.size(); ++n)
            EXPECT_EQ(bank.t[2][n], std::ldexp(static_cast<long double>(dual[n]), -unit)) << which;
    }
}

TEST(WaveletBanks, SplinesFollowTheFormulasOfTheirHighPasses)
{
    for (const WaveletBank &which : allWaveletBanks()) {
        if (which.wtType < RVX_WT_BSPLINE)
            continue;
        const Bank bank(which);
        const bool isOdd = which.wtType <= RVX_WT_BSPLINE_DUAL && which.par1 == 1;
        const long double sigma = isOdd ? -1 : 1;
        const std::size_t len0 = bank.t[0].size(), len2 = bank.t[2].size();
        ASSERT_EQ(bank.t[1].size(), len2);
        ASSERT_EQ(bank.t[3].size(), len0);
        for (std::size_t n = 0; n < len2; ++n)
            EXPECT_EQ(bank.t[1][n], sigma * (n % 2 == 0 ? 1 : -1) * bank.t[2][len2 - 1 - n] / 2)
                << which;
        for (std::size_t n = 0; n < len0; ++n)
            EXPECT_EQ(bank.t[3][n], sigma * (n % 2 == 0 ? -2 : 2) * bank.t[0][n]) << which;
    }
}

// The detail of a spline has as many vanishing moments as its dual's order, and back.
TEST(WaveletBanks, SplinesHaveTheirVanishingMoments)
{
    for (const WaveletBank &which : banksOf(RVX_WT_BSPLINE)) {
        const Bank bank(which);
        EXPECT_LT(largestMoment(bank.t[1], which.par2), 1e-18) << which;
        EXPECT_LT(largestMoment(bank.t[3], which.par1), 1e-18) << which;
        EXPECT_GT(std::fabs(moment(bank.t[1], which.par2, 0)), 1e-7) << which;
        EXPECT_GT(std::fabs(moment(bank.t[3], which.par1, 0)), 1e-3) << which;
    }
}

TEST(WaveletBanks, DualsExchangeAnalysisAndSynthesis)
{
    for (const WaveletBank &which : banksOf(RVX_WT_BSPLINE)) {
        const Bank spline(which);
        const Bank dual({RVX_WT_BSPLINE_DUAL, which.par1, which.par2});
        const int other[] = {1, 0, 3, 2};
        for (int f = 0; f < 4; ++f) {
            EXPECT_EQ(dual.state.ofs_filt[f], spline.state.ofs_filt[other[f]]) << which;
            EXPECT_EQ(dual.state.len_filt[f], spline.state.len_filt[other[f]]) << which;
        }
        for (std::size_t n = 0; n < dual.t[0].size(); ++n)
            EXPECT_EQ(dual.t[0][n], spline.t[2][n] / 2) << which;
        for (std::size_t n = 0; n < dual.t[2].size(); ++n)
            EXPECT_EQ(dual.t[2][n], spline.t[0][n] * 2) << which;
    }
}

TEST(WaveletBanks, NamedSplinesAreThoseOfTheFamily)
{
    for (int order : {2, 3}) {
        const Bank spline({RVX_WT_BSPLINE, order, order});
        const Bank named({order == 2 ? RVX_WT_LINEAR_SPLINE : RVX_WT_QUADRATIC_SPLINE, 7, 8});
        for (int f = 0; f < 4; ++f) {
            EXPECT_EQ(named.state.tap_filt[f], spline.state.tap_filt[f]);
            EXPECT_EQ(named.state.len_filt[f], spline.state.len_filt[f]);
            EXPECT_EQ(named.state.ofs_filt[f], spline.state.ofs_filt[f]);
        }
    }
}

// Where a filter stands shifts its coefficients, and both ways agree on it.
TEST(WaveletBanks, OffsetsOfBothWaysBelongTogether)
{
    for (const WaveletBank &which : orthogonalBanks()) {
        const Bank bank(which);
        EXPECT_EQ(bank.state.ofs_filt[0], bank.state.ofs_filt[1]) << which;
        EXPECT_EQ(bank.state.ofs_filt[2], bank.state.ofs_filt[3]) << which;
        EXPECT_EQ(bank.state.ofs_filt[0] + bank.state.ofs_filt[2], bank.state.len_filt[0] - 1)
            << which;
    }
}

// Both ways may move together and still undo each other; coefficients would stand elsewhere.
TEST(WaveletBanks, StandWhereTheyAreStated)
{
    struct Stated {
        WaveletBank which;
        std::vector<int> ofs;
    };
    const std::vector<Stated> all = {
        {{RVX_WT_HAAR, 0, 0}, {1, 1, 0, 0}},          {{RVX_WT_DAUBECHIES, 1, 0}, {1, 1, 0, 0}},
        {{RVX_WT_DAUBECHIES, 2, 0}, {1, 1, 2, 2}},    {{RVX_WT_DAUBECHIES, 3, 0}, {1, 1, 4, 4}},
        {{RVX_WT_DAUBECHIES, 4, 0}, {1, 1, 6, 6}},    {{RVX_WT_DAUBECHIES, 5, 0}, {2, 2, 7, 7}},
        {{RVX_WT_DAUBECHIES, 6, 0}, {2, 2, 9, 9}},    {{RVX_WT_DAUBECHIES, 7, 0}, {2, 2, 11, 11}},
        {{RVX_WT_DAUBECHIES, 8, 0}, {2, 2, 13, 13}},  {{RVX_WT_DAUBECHIES, 9, 0}, {3, 3, 14, 14}},
        {{RVX_WT_DAUBECHIES, 10, 0}, {3, 3, 16, 16}}, {{RVX_WT_SYMLET, 1, 0}, {3, 3, 4, 4}},
        {{RVX_WT_SYMLET, 2, 0}, {4, 4, 5, 5}},        {{RVX_WT_SYMLET, 3, 0}, {5, 5, 6, 6}},
        {{RVX_WT_SYMLET, 4, 0}, {8, 8, 5, 5}},        {{RVX_WT_SYMLET, 5, 0}, {8, 8, 7, 7}},
        {{RVX_WT_SYMLET, 6, 0}, {9, 9, 8, 8}},        {{RVX_WT_SYMLET, 7, 0}, {9, 9, 10, 10}},
        {{RVX_WT_COIFLET, 1, 0}, {4, 4, 1, 1}},       {{RVX_WT_COIFLET, 2, 0}, {4, 4, 7, 7}},
        {{RVX_WT_COIFLET, 3, 0}, {6, 6, 11, 11}},     {{RVX_WT_COIFLET, 4, 0}, {8, 8, 15, 15}},
        {{RVX_WT_COIFLET, 5, 0}, {10, 10, 19, 19}},   {{RVX_WT_VAIDYANATHAN, 0, 0}, {20, 20, 3, 3}},
        {{RVX_WT_BSPLINE, 1, 1}, {0, 0, 1, 1}},       {{RVX_WT_BSPLINE, 1, 3}, {0, 2, 3, 1}},
        {{RVX_WT_BSPLINE, 1, 5}, {0, 4, 5, 1}},       {{RVX_WT_BSPLINE, 2, 2}, {1, 1, 2, 2}},
        {{RVX_WT_BSPLINE, 2, 4}, {1, 3, 4, 2}},       {{RVX_WT_BSPLINE, 2, 6}, {1, 5, 6, 2}},
        {{RVX_WT_BSPLINE, 2, 8}, {1, 7, 8, 2}},       {{RVX_WT_BSPLINE, 3, 1}, {1, 1, 2, 2}},
        {{RVX_WT_BSPLINE, 3, 3}, {1, 3, 4, 2}},       {{RVX_WT_BSPLINE, 3, 5}, {1, 5, 6, 2}},
        {{RVX_WT_BSPLINE, 3, 7}, {1, 7, 8, 2}},       {{RVX_WT_BSPLINE, 3, 9}, {1, 9, 10, 2}}};
    for (const Stated &stated : all) {
        const Bank bank(stated.which);
        for (std::size_t f = 0; f < 4; ++f)
            EXPECT_EQ(bank.state.ofs_filt[f], stated.ofs[f]) << stated.which << ", filter " << f;
    }
}

// Every digit counts: the bits of tap n, n + 1 times, add up to what those of the
// tables do, modulo 2^64. The other filters follow, as tested above.
TEST(WaveletBanks, HaveTheTabulatedTapsToTheLastDigit)
{
    struct Tabulated {
        WaveletBank which;
        int filter;
        std::uint64_t sum;
    };
    const Tabulated all[] = {
        {{RVX_WT_HAAR, 0, 0}, 0, 0xbfa0000000000000},
        {{RVX_WT_DAUBECHIES, 1, 0}, 0, 0xbfa0000000000000},
        {{RVX_WT_DAUBECHIES, 2, 0}, 0, 0x7dc646e17211cc01},
        {{RVX_WT_DAUBECHIES, 3, 0}, 0, 0xb9f686107fc0d12e},
        {{RVX_WT_DAUBECHIES, 4, 0}, 0, 0x72d2bff6a64734a1},
        {{RVX_WT_DAUBECHIES, 5, 0}, 0, 0xa91d2c2271f493ad},
        {{RVX_WT_DAUBECHIES, 6, 0}, 0, 0x5b6ecd49d224a7fa},
        {{RVX_WT_DAUBECHIES, 7, 0}, 0, 0x8b5437015e51b328},
        {{RVX_WT_DAUBECHIES, 8, 0}, 0, 0x3291bb33de04cd8d},
        {{RVX_WT_DAUBECHIES, 9, 0}, 0, 0xd9796ab65202b399},
        {{RVX_WT_DAUBECHIES, 10, 0}, 0, 0x7f24e70509f6ba77},
        {{RVX_WT_SYMLET, 1, 0}, 0, 0xf44fa275afdf4820},
        {{RVX_WT_SYMLET, 2, 0}, 0, 0xad5de836ef6b3d29},
        {{RVX_WT_SYMLET, 3, 0}, 0, 0x60dc1dbb60986b14},
        {{RVX_WT_SYMLET, 4, 0}, 0, 0x19b94d7de12f8ac6},
        {{RVX_WT_SYMLET, 5, 0}, 0, 0xc56380dcd1109c41},
        {{RVX_WT_SYMLET, 6, 0}, 0, 0xeeedd4588afcf430},
        {{RVX_WT_SYMLET, 7, 0}, 0, 0x12a99cc48b5ba7a9},
        {{RVX_WT_COIFLET, 1, 0}, 0, 0xbb7b1734f515cdb5},
        {{RVX_WT_COIFLET, 2, 0}, 0, 0xdc6b8a5529c7299d},
        {{RVX_WT_COIFLET, 3, 0}, 0, 0xdc85d5211a5f086c},
        {{RVX_WT_COIFLET, 4, 0}, 0, 0x3012337bd6cb22ef},
        {{RVX_WT_COIFLET, 5, 0}, 0, 0xcd8ef994b42d6af2},
        {{RVX_WT_VAIDYANATHAN, 0, 0}, 0, 0x9d0d53338ba75104},
        {{RVX_WT_BSPLINE, 1, 1}, 2, 0xbfd0000000000000},
        {{RVX_WT_BSPLINE, 1, 3}, 2, 0xbc10000000000000},
        {{RVX_WT_BSPLINE, 1, 5}, 2, 0xb164000000000000},
        {{RVX_WT_BSPLINE, 2, 2}, 2, 0xbe08000000000000},
        {{RVX_WT_BSPLINE, 2, 4}, 2, 0x368e800000000000},
        {{RVX_WT_BSPLINE, 2, 6}, 2, 0xa732200000000000},
        {{RVX_WT_BSPLINE, 2, 8}, 2, 0x0da1c28000000000},
        {{RVX_WT_BSPLINE, 3, 1}, 2, 0xff38000000000000},
        {{RVX_WT_BSPLINE, 3, 3}, 2, 0xf9b0800000000000},
        {{RVX_WT_BSPLINE, 3, 5}, 2, 0xec5aa00000000000},
        {{RVX_WT_BSPLINE, 3, 7}, 2, 0xd406fa8000000000},
        {{RVX_WT_BSPLINE, 3, 9}, 2, 0x2b0f59e000000000},
    };
    for (const Tabulated &known : all) {
        const Bank bank(known.which);
        std::uint64_t sum = 0;
        for (int n = 0; n < bank.state.len_filt[known.filter]; ++n)
            sum += static_cast<std::uint64_t>(n + 1) * bitsOf(bank.state.tap_filt[known.filter][n]);
        EXPECT_EQ(sum, known.sum) << known.which;
    }
}
