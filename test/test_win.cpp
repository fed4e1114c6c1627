// Windows.

#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "rvx.h"
#include "support/guarded.h"
#include "support/reports.h"
#include "support/worse.h"

namespace {

using Wide = long double;

constexpr double INF = std::numeric_limits<double>::infinity();
constexpr double QUIET = std::numeric_limits<double>::quiet_NaN();

enum Kind { BARTLETT, HANN, HAMMING, BLACKMAN, OPTIMAL };

struct Window {
    Kind kind;
    double alpha; // of the Blackman window
    std::string name;
};

const Window windows[] = {
    {BARTLETT, 0.0, "Bartlett"},      {HANN, 0.0, "Hann"},
    {HAMMING, 0.0, "Hamming"},        {BLACKMAN, -0.16, "Blackman"},
    {BLACKMAN, 0.0, "Blackman, 0"},   {BLACKMAN, 1.7, "Blackman, 1.7"},
    {BLACKMAN, -3.0, "Blackman, -3"}, {OPTIMAL, 0.0, "BlackmanOpt"},
};

void run(const Window &window, double *vec, int n)
{
    switch (window.kind) {
    case BARTLETT:
        return rvxdWinBartlett(vec, n);
    case HANN:
        return rvxdWinHann(vec, n);
    case HAMMING:
        return rvxdWinHamming(vec, n);
    case BLACKMAN:
        return rvxdWinBlackman(vec, n, window.alpha);
    case OPTIMAL:
        return rvxdWinBlackmanOpt(vec, n);
    }
}

void run(const Window &window, ZCplx *vec, int n)
{
    switch (window.kind) {
    case BARTLETT:
        return rvxzWinBartlett(vec, n);
    case HANN:
        return rvxzWinHann(vec, n);
    case HAMMING:
        return rvxzWinHamming(vec, n);
    case BLACKMAN:
        return rvxzWinBlackman(vec, n, window.alpha);
    case OPTIMAL:
        return rvxzWinBlackmanOpt(vec, n);
    }
}

double roundedCosine(double x)
{
    return static_cast<double>(cosl(static_cast<Wide>(x)));
}

double alphaOf(const Window &window, int n)
{
    if (window.kind != OPTIMAL)
        return window.alpha;
    if (n == 3)
        return -0.25;
    const double quotient = 0.5 / roundedCosine(3.141592653589793 / (n - 1));
    return -quotient * quotient;
}

// c(0) to c(n / 2 - 1) of the recurrence, each product and difference rounded.
std::vector<double> cosines(double amp, int n)
{
    const double start = roundedCosine(-6.283185307179586 / (n - 1));
    const volatile double doubled = start + start;
    std::vector<double> c = {amp * start, amp};
    while (static_cast<int>(c.size()) < n / 2 + 1) {
        const volatile double product = doubled * c.back();
        c.push_back(product - c[c.size() - 2]);
    }
    c.erase(c.begin());
    return c;
}

// The weights of the first half, one at a time from the recurrence. This order of
// operations is what the functions promise, so the bits are compared.
std::vector<double> weightsByRecurrence(const Window &window, int n)
{
    std::vector<double> weights;
    const double alpha = alphaOf(window, n);
    switch (window.kind) {
    case BARTLETT: {
        double w = 0.0;
        for (int k = 0; k < n / 2; ++k) {
            weights.push_back(w);
            w = w + 2.0 / (n - 1);
        }
        break;
    }
    case HANN:
        for (double c : cosines(0.5, n))
            weights.push_back(weights.empty() ? 0.0 : 0.5 - c);
        break;
    case HAMMING:
        for (double c : cosines(0.46, n))
            weights.push_back(weights.empty() ? 0.08 : 0.54 - c);
        break;
    case BLACKMAN:
    case OPTIMAL:
        for (double c : cosines(0.5, n)) {
            const volatile double s = weights.empty() ? 0.25 : c * c;
            const volatile double curve = alpha * 4.0;
            const volatile double curved = s * curve;
            const volatile double base = alpha + 0.5;
            const volatile double level = base - c;
            weights.push_back(level - curved);
        }
        break;
    }
    return weights;
}

// The weight by its closed formula.
Wide weightByFormula(const Window &window, int k, int n)
{
    const Wide pi = acosl(-1.0L);
    const Wide x = 2 * pi * k / (n - 1);
    Wide alpha = window.alpha;
    if (window.kind == OPTIMAL)
        alpha = n == 3 ? -0.25L : -0.25L / (cosl(pi / (n - 1)) * cosl(pi / (n - 1)));
    switch (window.kind) {
    case BARTLETT:
        return 2.0L * k / (n - 1);
    case HANN:
        return (1 - cosl(x)) / 2;
    case HAMMING:
        return 0.54L - 0.46L * cosl(x);
    default:
        return (alpha + 1) / 2 - cosl(x) / 2 - alpha / 2 * cosl(2 * x);
    }
}

double number(int i)
{
    return std::sin(1.0 + 1.7 * i) * std::exp2(i % 7 - 3);
}

// Every count of weights by lanes and by remainder, and some long ones.
std::vector<int> lengths()
{
    std::vector<int> all;
    for (int n = 4; n <= 60; ++n)
        all.push_back(n);
    for (int n : {255, 256, 257, 1000, 1001, 4096, 20001})
        all.push_back(n);
    return all;
}

bool same(double a, double b)
{
    return bitsOf(a) == bitsOf(b) || (std::isnan(a) && std::isnan(b));
}

} // namespace

// --- Checks ----------------------------------------------------------------------

TEST(WindowChecks, PointerBeforeLengthAndNothingWritten)
{
    Reports reports;
    for (const Window &window : windows)
        for (int n : {2, 1, 0, -1, -5, INT_MIN, INT_MIN + 1, 3, 8}) {
            const std::string name = window.kind == BARTLETT  ? "Bartlett"
                                     : window.kind == HANN    ? "Hann"
                                     : window.kind == HAMMING ? "Hamming"
                                                              : "Blackman";
            const std::string real = "rvxdWin" + name, cplx = "rvxzWin" + name;

            rvxSetErrStatus(RVX_STATUS_OK);
            run(window, static_cast<double *>(nullptr), n);
            EXPECT_EQ(reports.take(),
                      badArgument(real.c_str(), "Null pointer to buffer", "rvxwin"));
            EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_ARGUMENT);
            run(window, static_cast<ZCplx *>(nullptr), n);
            EXPECT_EQ(reports.take(),
                      badArgument(cplx.c_str(), "Null pointer to buffer", "rvxwin"));
            if (n >= 3)
                continue;

            Guarded<double> vec(std::vector<double>{1.0, 2.0, 3.0, 4.0});
            rvxSetErrStatus(RVX_STATUS_OK);
            run(window, vec.data(), n);
            EXPECT_EQ(reports.take(), badArgument(real.c_str(), "Bad number of items", "rvxwin"));
            EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_ARGUMENT);
            EXPECT_EQ(vec.values(), (std::vector<double>{1.0, 2.0, 3.0, 4.0}));
            EXPECT_TRUE(vec.intact());

            Guarded<ZCplx> pairs(std::vector<ZCplx>{{1.0, 2.0}, {3.0, 4.0}});
            run(window, pairs.data(), n);
            EXPECT_EQ(reports.take(), badArgument(cplx.c_str(), "Bad number of items", "rvxwin"));
            EXPECT_TRUE(pairs[0].re == 1.0 && pairs[0].im == 2.0 && pairs[1].re == 3.0 &&
                        pairs[1].im == 4.0 && pairs.intact());
        }
}

TEST(WindowChecks, SuccessReportsNothingAndLeavesAStaleStatus)
{
    Reports reports;
    rvxSetErrStatus(-77);
    for (const Window &window : windows)
        for (int n : {3, 4, 9}) {
            std::vector<double> vec(static_cast<std::size_t>(n), 1.0);
            run(window, vec.data(), n);
        }
    EXPECT_TRUE(reports.take().empty());
    EXPECT_EQ(rvxGetErrStatus(), -77);
}

TEST(WindowDeathTest, AFailedCheckEndsTheProcessInModeZero)
{
    EXPECT_EXIT(
        {
            rvxSetErrMode(0);
            double element = 1.0;
            rvxdWinBlackmanOpt(&element, 2);
        },
        ::testing::ExitedWithCode(1), "^$");
}

// --- Weights ---------------------------------------------------------------------

TEST(WindowWeights, RecurrenceBitForBitAtBothEndsOfRealVectors)
{
    for (const Window &window : windows)
        for (int n : lengths())
            for (int misalignment = 0; misalignment < 4; ++misalignment) {
                const std::vector<double> weights = weightsByRecurrence(window, n);
                Guarded<double> vec(n, misalignment);
                for (int i = 0; i < n; ++i)
                    vec[i] = number(i);
                run(window, vec.data(), n);
                for (int k = 0; k < n / 2; ++k) {
                    const double weight = weights[static_cast<std::size_t>(k)];
                    ASSERT_TRUE(same(vec[k], number(k) * weight))
                        << window.name << ", " << k << " of " << n;
                    ASSERT_TRUE(same(vec[n - 1 - k], number(n - 1 - k) * weight))
                        << window.name << ", " << n - 1 - k << " of " << n;
                }
                if (n % 2 == 1) {
                    ASSERT_TRUE(same(vec[n / 2], number(n / 2))) << window.name << ", " << n;
                }
                ASSERT_TRUE(vec.intact()) << window.name << ", " << n;
            }
}

TEST(WindowWeights, ComplexVectorsScaleEachPartByTheWeightOfRealOnes)
{
    for (const Window &window : windows)
        for (int n : lengths())
            for (int misalignment = 0; misalignment < 4; ++misalignment) {
                Guarded<double> re(n), im(n);
                Guarded<ZCplx> vec(n, misalignment);
                for (int i = 0; i < n; ++i)
                    vec[i] = {re[i] = number(2 * i), im[i] = number(2 * i + 1)};
                run(window, re.data(), n);
                run(window, im.data(), n);
                run(window, vec.data(), n);
                for (int i = 0; i < n; ++i)
                    ASSERT_TRUE(same(vec[i].re, re[i]) && same(vec[i].im, im[i]))
                        << window.name << ", " << i << " of " << n;
                ASSERT_TRUE(vec.intact()) << window.name << ", " << n;
            }
}

// In units of u = 2^-53. The cosine that starts the recurrence is rounded by up to
// u / 2, which moves the frequency by (u / 2) / sin(2 pi / n) and c(k) by at most
// n n u / 86, at phase 2.03; the roundings on the way add less than 2 n u. A weight
// moves up to 1 + 4 |alpha| times as much as its c. Bartlett adds up one rounding
// a step, of at most u / 2 above weight 1/2, u / 4 above 1/4 and so on.
TEST(WindowWeights, FormulaWithinTheErrorOfTheRecurrence)
{
    for (const Window &window : windows)
        for (int n : {4, 5, 8, 33, 100, 101, 1000, 4096, 65536, 1000000}) {
            std::vector<double> vec(static_cast<std::size_t>(n), 1.0);
            run(window, vec.data(), n);
            Wide worst = 0;
            for (int k = 0; k < n / 2; ++k)
                worst = worse(
                    worst, fabsl(vec[static_cast<std::size_t>(k)] - weightByFormula(window, k, n)));
            const Wide u = 0x1p-53L;
            const Wide wideN = n;
            const Wide steep = 1 + 4 * fabsl(alphaOf(window, n));
            const Wide bound =
                window.kind == BARTLETT ? wideN / 6 + 1 : steep * (wideN * wideN / 86 + 2 * wideN);
            EXPECT_LE(worst / u, bound) << window.name << ", " << n;
        }
}

// The weights of a Bartlett window are not added one by one; here they are.
TEST(WindowWeights, BartlettIsTheRepeatedSumAtEveryLength)
{
    std::vector<double> vec;
    const auto differs = [&](int n) {
        vec.assign(static_cast<std::size_t>(n), 1.0);
        rvxdWinBartlett(vec.data(), n);
        const double step = 2.0 / (n - 1);
        double weight = 0.0;
        for (int k = 0; k < n / 2; ++k) {
            if (vec[static_cast<std::size_t>(k)] != weight)
                return k;
            weight += step;
        }
        return -1;
    };
    for (int n = 4; n <= 3000; ++n)
        ASSERT_EQ(differs(n), -1) << "first difference, n " << n;
    for (int n = 3001; n <= 2000000; n += n / 7)
        ASSERT_EQ(differs(n), -1) << "first difference, n " << n;
}

TEST(WindowWeights, KnownShortWindows)
{
    double hann[] = {1.0, 1.0, 1.0};
    rvxdWinHann(hann, 3);
    EXPECT_TRUE(hann[0] == 0.0 && hann[1] == 1.0 && hann[2] == 0.0);

    double hamming[] = {1.0, 1.0, 1.0};
    rvxdWinHamming(hamming, 3);
    EXPECT_TRUE(hamming[0] == 0.08 && hamming[1] == 1.0 && hamming[2] == 0.08);

    double four[] = {1.0, 1.0, 1.0, 1.0};
    rvxdWinHamming(four, 4);
    EXPECT_EQ(four[0], 0.08);
    EXPECT_NEAR(four[1], 0.77, 0x1p-52);
    EXPECT_EQ(four[2], four[1]);
    EXPECT_EQ(four[3], 0.08);

    double bartlett[] = {1.0, 1.0, 1.0, 1.0, 1.0};
    rvxdWinBartlett(bartlett, 5);
    const double triangle[] = {0.0, 0.5, 1.0, 0.5, 0.0};
    EXPECT_TRUE(std::equal(bartlett, bartlett + 5, triangle));

    // The usual Blackman window of 5 points has 0.34 beside the middle.
    double blackman[] = {1.0, 1.0, 1.0, 1.0, 1.0};
    rvxdWinBlackman(blackman, 5, -0.16);
    EXPECT_NEAR(blackman[0], 0.0, 0x1p-54);
    EXPECT_NEAR(blackman[1], 0.34, 0x1p-53);
    EXPECT_EQ(blackman[2], 1.0);
}

TEST(WindowWeights, TheEndsAreExact)
{
    for (int n : lengths()) {
        std::vector<double> vec(static_cast<std::size_t>(n), 1.0);
        rvxdWinHann(vec.data(), n);
        EXPECT_TRUE(same(vec.front(), 0.0) && same(vec.back(), 0.0)) << n;
        std::fill(vec.begin(), vec.end(), 1.0);
        rvxdWinHamming(vec.data(), n);
        EXPECT_TRUE(vec.front() == 0.08 && vec.back() == 0.08) << n;
    }
}

// --- Three elements, and ends that are no numbers ----------------------------------

TEST(WindowOfThree, EndsBecomeZeroWhateverTheyWere)
{
    for (const Window &window : windows) {
        if (window.kind == HAMMING)
            continue;
        for (double end : {1.0, -1.0, -0.0, INF, -INF, QUIET}) {
            Guarded<double> vec(std::vector<double>{end, end, end});
            run(window, vec.data(), 3);
            EXPECT_TRUE(same(vec[0], 0.0) && same(vec[1], end) && same(vec[2], 0.0))
                << window.name << ", " << end;
            Guarded<ZCplx> pairs(std::vector<ZCplx>{{end, 2.0}, {2.0, end}, {end, end}});
            run(window, pairs.data(), 3);
            EXPECT_TRUE(same(pairs[0].re, 0.0) && same(pairs[0].im, 0.0)) << window.name;
            EXPECT_TRUE(same(pairs[1].re, 2.0) && same(pairs[1].im, end)) << window.name;
            EXPECT_TRUE(same(pairs[2].re, 0.0) && same(pairs[2].im, 0.0)) << window.name;
            EXPECT_TRUE(vec.intact() && pairs.intact()) << window.name;
        }
    }
}

TEST(WindowOfThree, HammingMultiplies)
{
    for (double end : {2.0, -0.0, INF, QUIET}) {
        Guarded<double> vec(std::vector<double>{end, 5.0, end});
        rvxdWinHamming(vec.data(), 3);
        EXPECT_TRUE(same(vec[0], end * 0.08) && vec[1] == 5.0 && same(vec[2], end * 0.08));
        Guarded<ZCplx> pairs(std::vector<ZCplx>{{end, 3.0}, {5.0, 6.0}, {3.0, end}});
        rvxzWinHamming(pairs.data(), 3);
        EXPECT_TRUE(same(pairs[0].re, end * 0.08) && pairs[0].im == 3.0 * 0.08);
        EXPECT_TRUE(pairs[1].re == 5.0 && pairs[1].im == 6.0);
        EXPECT_TRUE(pairs[2].re == 3.0 * 0.08 && same(pairs[2].im, end * 0.08));
    }
}

TEST(WindowEnds, FromFourElementsOnZeroWeightsMultiply)
{
    for (const Window &window : {windows[0], windows[1]})
        for (int n : {4, 5, 30}) {
            std::vector<double> vec(static_cast<std::size_t>(n), 1.0);
            vec.front() = INF;
            vec.back() = -1.0;
            run(window, vec.data(), n);
            EXPECT_TRUE(std::isnan(vec.front())) << window.name << ", " << n;
            EXPECT_TRUE(same(vec.back(), -0.0)) << window.name << ", " << n;
        }
}

TEST(WindowEnds, ANanInOnePartStaysInThatPart)
{
    for (const Window &window : windows)
        for (int n : {4, 5, 21})
            for (int at = 0; at < n; ++at) {
                std::vector<ZCplx> vec(static_cast<std::size_t>(n), ZCplx{1.0, 1.0});
                vec[static_cast<std::size_t>(at)].im = QUIET;
                run(window, vec.data(), n);
                for (int i = 0; i < n; ++i) {
                    const ZCplx z = vec[static_cast<std::size_t>(i)];
                    ASSERT_FALSE(std::isnan(z.re)) << window.name << ", " << i << " of " << n;
                    ASSERT_EQ(std::isnan(z.im), i == at) << window.name << ", " << i << " of " << n;
                }
            }
}

// --- Alpha -------------------------------------------------------------------------

TEST(WindowAlpha, ZeroGivesTheHannWindowUpToRounding)
{
    std::vector<double> hann(101, 1.0), blackman(101, 1.0);
    rvxdWinHann(hann.data(), 101);
    rvxdWinBlackman(blackman.data(), 101, 0.0);
    for (std::size_t i = 0; i < hann.size(); ++i)
        EXPECT_EQ(blackman[i], hann[i]) << i;
}

TEST(WindowAlpha, NoValueIsRefused)
{
    Reports reports;
    for (double alpha : {INF, -INF, QUIET, 1e308}) {
        std::vector<double> vec(9, 1.0);
        rvxdWinBlackman(vec.data(), 9, alpha);
        EXPECT_TRUE(std::isnan(vec[0]) || std::isinf(vec[0])) << alpha;
        EXPECT_EQ(vec[4], 1.0);
    }
    EXPECT_TRUE(reports.take().empty());
}

TEST(WindowAlpha, TheOptimalOneIsBlackmanWithItsAlpha)
{
    for (int n : lengths()) {
        std::vector<double> vec(static_cast<std::size_t>(n), 1.0), expected(vec);
        rvxdWinBlackmanOpt(vec.data(), n);
        rvxdWinBlackman(expected.data(), n, alphaOf({OPTIMAL, 0.0, ""}, n));
        ASSERT_EQ(vec, expected) << n;
    }
}
