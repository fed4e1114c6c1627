// Wavelet states: what makes one, what refuses to, and states filled by hand.

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "reference/wavelet.h"
#include "rvx.h"
#include "support/allocations.h"
#include "support/bits.h"
#include "support/blocks.h"
#include "support/reports.h"
#include "support/wavelets.h"

namespace {

const char *const noState = "'NULL' pointer in 'wtState' argument was passed!";
const char *const noLength = "'NULL' pointer in 'len_dec' argument was passed!";
const char *const badLength =
    "Not correct 'len' argument was passed! 'len' argument must be greater than or equal 2!";
const char *const badLevel =
    "Not correct 'level' argument was passed! Level must be  greater than or equal 0!";
const char *const tooDeep =
    "Not correct 'level' argument was passed! 2^level can not be  greater than or equal 2*len!";
const char *const badType = "Not correct 'wtType' argument was passed!";
const char *const badPar1 = "Not correct par1 argument was passed!";
const char *const badPar2 = "Not correct 'par2' argument was passed!";

// The inner function's report and the one that passes it on.
std::vector<Report> passedOn(int status, const char *context)
{
    return {{status, "rvxdWtInitLen", context, "rvxwlt"},
            {RVX_STATUS_BACKTRACE, "rvxdWtInit", "out rvxdWtInitLen", "rvxwlt"}};
}

std::vector<unsigned char> bytesOf(const rvxWtState &state)
{
    std::vector<unsigned char> bytes(sizeof state);
    std::memcpy(bytes.data(), &state, sizeof state);
    return bytes;
}

bool sameRecord(const rvxWtState &a, const rvxWtState &b)
{
    return bytesOf(a) == bytesOf(b);
}

// A record in which every byte would show a change.
rvxWtState marked()
{
    rvxWtState state;
    std::memset(&state, 0x5a, sizeof state);
    return state;
}

struct Refusal {
    int par1, par2, dataOrder, level, wtType;
    const char *context;
};

// A state of the library's own, for the length of a scope.
struct Wavelet {
    Wavelet(int par1, int par2, int dataOrder, int level, int wtType) : state()
    {
        rvxdWtInit(par1, par2, dataOrder, level, &state, wtType);
    }
    ~Wavelet() { rvxWtFree(&state); }
    Wavelet(const Wavelet &) = delete;
    Wavelet &operator=(const Wavelet &) = delete;
    rvxWtState state;
};

// Filters of any length and offset, and the work buffer that they are said to need.
class HandMade {
public:
    HandMade(const std::vector<int> &lens, const std::vector<int> &ofs, int len, int level)
        : state()
    {
        for (std::size_t f = 0; f < 4; ++f) {
            taps.push_back(makeBlock(Temper::uniform, lens[f], static_cast<unsigned>(f)));
            state.len_filt[f] = lens[f];
            state.ofs_filt[f] = ofs[f];
            state.tap_filt[f] = taps[f].data();
        }
        state.core = 2;
        state.level = level;
        state.lenLevel[0] = len;
        for (int i = 1; i <= level; ++i) {
            state.lenLevel[i] = (state.lenLevel[i - 1] + 1) / 2;
            state.len_dec += state.lenLevel[i];
        }
        state.len_dec += state.lenLevel[level];
        work.reset(new Guarded<double>(workLenOf(state)));
        state.workBuf = work->data();
    }
    bool intact() const { return work->intact(); }

    rvxWtState state;

private:
    std::vector<std::vector<double>> taps;
    std::unique_ptr<Guarded<double>> work;
};

void expectBothWays(HandMade &made, const std::string &where)
{
    rvxWtState &state = made.state;
    const std::vector<double> x = makeBlock(Temper::uniform, state.lenLevel[0], 1);
    const std::vector<double> coefficients = makeBlock(Temper::uniform, state.len_dec, 2);
    Guarded<double> down(state.len_dec), up(state.lenLevel[0]);
    rvxdWtDecompose(&state, x.data(), down.data());
    rvxdWtReconstruct(&state, coefficients.data(), up.data());
    const std::vector<double> wantedDown = reference::decompose(state, x);
    const std::vector<double> wantedUp = reference::reconstruct(state, coefficients);
    for (int i = 0; i < state.len_dec; ++i)
        ASSERT_TRUE(sameBits(down[i], wantedDown[static_cast<std::size_t>(i)]))
            << where << ", decomposed, at " << i;
    for (int i = 0; i < state.lenLevel[0]; ++i)
        ASSERT_TRUE(sameBits(up[i], wantedUp[static_cast<std::size_t>(i)]))
            << where << ", reconstructed, at " << i;
    EXPECT_TRUE(down.intact() && up.intact() && made.intact()) << where;
}

} // namespace

TEST(WaveletState, HoldsWhatItWasMadeWith)
{
    for (const WaveletBank &bank : allWaveletBanks()) {
        rvxWtState state = marked();
        rvxdWtInit(bank.par1, bank.par2, 6, 4, &state, bank.wtType);
        EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_OK);
        EXPECT_EQ(state.core, 2);
        EXPECT_EQ(state.wtType, bank.wtType);
        EXPECT_EQ(state.wtKind, bank.wtType <= RVX_WT_VAIDYANATHAN ? 1 : 2);
        EXPECT_EQ(state.par1, bank.par1);
        EXPECT_EQ(state.par2, bank.par2);
        EXPECT_EQ(state.dataOrder, 6);
        EXPECT_EQ(state.level, 4);
        EXPECT_EQ(state.len_dec, 64);
        const int lengths[] = {64, 32, 16, 8, 4};
        for (int i = 0; i <= 32; ++i)
            EXPECT_EQ(state.lenLevel[i], i <= 4 ? lengths[i] : 0);
        EXPECT_NE(state.workBuf, nullptr);
        rvxWtFree(&state);
    }
}

TEST(WaveletState, TakesLengthsThatAreNoPowerOfTwo)
{
    rvxWtState state = {};
    int coefficients = 0;
    rvxdWtInitLen(2, 0, 5, 3, &state, RVX_WT_DAUBECHIES, &coefficients);
    EXPECT_EQ(coefficients, 7);
    EXPECT_EQ(state.len_dec, 7);
    EXPECT_EQ(state.dataOrder, -1);
    const int lengths[] = {5, 3, 2, 1};
    for (int i = 0; i <= 32; ++i)
        EXPECT_EQ(state.lenLevel[i], i <= 3 ? lengths[i] : 0);
    rvxWtFree(&state);
    rvxdWtInitLen(2, 0, 5, 0, &state, RVX_WT_DAUBECHIES, &coefficients);
    EXPECT_EQ(coefficients, 5);
    rvxWtFree(&state);
}

TEST(WaveletState, SharesItsFiltersWithOthersOfItsBank)
{
    for (const WaveletBank &bank : allWaveletBanks()) {
        const Wavelet one(bank.par1, bank.par2, 3, 1, bank.wtType);
        const Wavelet other(bank.par1, bank.par2, 5, 2, bank.wtType);
        for (int f = 0; f < 4; ++f)
            EXPECT_EQ(one.state.tap_filt[f], other.state.tap_filt[f]);
    }
}

TEST(WaveletState, RefusesInTheStatedOrderAndPassesThatOn)
{
    Reports reports;
    const std::vector<Refusal> refusals = {
        {9, 9, 31, -1, 0, badLength}, // the length of order 31 has no int
        {9, 9, 3, -1, 0, badLevel},
        {9, 9, 3, INT_MIN, 0, badLevel},
        {9, 9, 3, 4, 0, tooDeep},
        {9, 9, 3, 31, 0, tooDeep},
        {9, 9, 3, 32, 0, tooDeep},
        {9, 9, 3, 33, 0, tooDeep},
        {9, 9, 3, 64, 0, tooDeep},
        {9, 9, 3, INT_MAX, 0, tooDeep},
        {9, 9, 3, 3, 0, badType},
        {9, 9, 3, 3, 10, badType},
        {9, 9, 3, 3, INT_MAX, badType},
        {9, 9, 3, 3, INT_MIN, badType},
        {0, 9, 3, 3, RVX_WT_DAUBECHIES, badPar1},
        {11, 9, 3, 3, RVX_WT_DAUBECHIES, badPar1},
        {0, 9, 3, 3, RVX_WT_SYMLET, badPar1},
        {8, 9, 3, 3, RVX_WT_SYMLET, badPar1},
        {0, 9, 3, 3, RVX_WT_COIFLET, badPar1},
        {6, 9, 3, 3, RVX_WT_COIFLET, badPar1},
        {INT_MIN, 9, 3, 3, RVX_WT_COIFLET, badPar1},
    };
    for (const Refusal &bad : refusals) {
        rvxWtState state = marked();
        rvxdWtInit(bad.par1, bad.par2, bad.dataOrder, bad.level, &state, bad.wtType);
        EXPECT_EQ(reports.take(), passedOn(RVX_STATUS_BAD_ARGUMENT, bad.context));
        EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_ARGUMENT);
        EXPECT_TRUE(sameRecord(state, marked())) << bad.context;
        rvxdWtInit(bad.par1, bad.par2, bad.dataOrder, bad.level, nullptr, bad.wtType);
        EXPECT_EQ(reports.take(), passedOn(RVX_STATUS_BAD_ARGUMENT, noState));
    }
}

TEST(WaveletState, RefusesSplinesThatAreNotThere)
{
    Reports reports;
    const std::vector<std::vector<int>> duals = {{1, 3, 5}, {2, 4, 6, 8}, {1, 3, 5, 7, 9}};
    for (int wtType : {RVX_WT_BSPLINE, RVX_WT_BSPLINE_DUAL})
        for (int par1 : {INT_MIN, -1, 0, 1, 2, 3, 4, INT_MAX})
            for (int par2 : {INT_MIN, INT_MIN + 1, -2, -1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11,
                             INT_MAX - 1, INT_MAX}) {
                rvxWtState state = marked();
                rvxdWtInit(par1, par2, 3, 3, &state, wtType);
                if (par1 < 1 || par1 > 3) {
                    EXPECT_EQ(reports.take(), passedOn(RVX_STATUS_BAD_ARGUMENT, badPar1));
                    continue;
                }
                const std::vector<int> &there = duals[static_cast<std::size_t>(par1 - 1)];
                if (std::count(there.begin(), there.end(), par2) == 0) {
                    EXPECT_EQ(reports.take(), passedOn(RVX_STATUS_BAD_ARGUMENT, badPar2));
                    EXPECT_TRUE(sameRecord(state, marked()));
                } else {
                    EXPECT_TRUE(reports.take().empty()) << par1 << ", " << par2;
                    rvxWtFree(&state);
                }
            }
}

TEST(WaveletState, AnOrderThatIsNoneHasTheMessageOfTheLevel)
{
    Reports reports;
    for (int dataOrder : {0, -1, 32, INT_MIN, INT_MAX}) {
        rvxdWtInit(0, 0, dataOrder, 0, nullptr, 0);
        EXPECT_EQ(reports.take(), badArgument("rvxdWtInit", badLevel, "rvxwlt"));
        EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_BAD_ARGUMENT);
    }
}

TEST(WaveletState, AnyLengthRefusesInItsOwnName)
{
    Reports reports;
    rvxWtState state = marked();
    int coefficients = 77;
    const auto call = [&](int len, int level, int wtType, int par1, int par2) {
        return [=, &state, &coefficients] {
            rvxdWtInitLen(par1, par2, len, level, &state, wtType, &coefficients);
        };
    };
    const char *name = "rvxdWtInitLen";
    expectRefused({{name, noState, [] { rvxdWtInitLen(0, 0, 0, -1, nullptr, 0, nullptr); }},
                   {name, noLength, [&] { rvxdWtInitLen(0, 0, 0, -1, &state, 0, nullptr); }},
                   {name, badLength, call(1, -1, 0, 0, 0)},
                   {name, badLength, call(INT_MIN, -1, 0, 0, 0)},
                   {name, badLevel, call(2, -1, 0, 0, 0)},
                   {name, tooDeep, call(2, 2, 0, 0, 0)},
                   {name, tooDeep, call(5, 4, 0, 0, 0)},
                   {name, tooDeep, call(INT_MAX, 32, 0, 0, 0)},
                   {name, badType, call(INT_MAX, 31, 0, 0, 0)},
                   {name, badType, call(5, 3, 0, 0, 0)},
                   {name, badPar1, call(5, 3, RVX_WT_BSPLINE, 4, 0)},
                   {name, badPar2, call(5, 3, RVX_WT_BSPLINE, 2, 3)}},
                  "rvxwlt", reports);
    EXPECT_TRUE(sameRecord(state, marked()));
    EXPECT_EQ(coefficients, 77);
}

TEST(WaveletState, WithoutMemoryItSaysSoAndALiveStateGoesOn)
{
    Reports reports;
    const std::vector<double> x = makeBlock(Temper::uniform, 64, 4);
    std::vector<double> before(64), after(64);
    Wavelet wavelet(2, 0, 6, 6, RVX_WT_DAUBECHIES);
    rvxWtState &state = wavelet.state;
    rvxdWtDecompose(&state, x.data(), before.data());
    const rvxWtState held = state;
    {
        AllocationWatch watch(1);
        rvxdWtInit(5, 0, 4, 2, &state, RVX_WT_COIFLET);
        EXPECT_EQ(watch.failures(), 1);
        EXPECT_EQ(watch.live(), 0);
    }
    EXPECT_EQ(reports.take(), passedOn(RVX_STATUS_NO_MEMORY, "No working wavelet memory!"));
    EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_NO_MEMORY);
    EXPECT_TRUE(sameRecord(state, held));
    rvxdWtInit(2, 3, 4, 2, &state, RVX_WT_BSPLINE);
    EXPECT_EQ(reports.take(), passedOn(RVX_STATUS_BAD_ARGUMENT, badPar2));
    EXPECT_TRUE(sameRecord(state, held));
    rvxdWtDecompose(&state, x.data(), after.data());
    for (std::size_t i = 0; i < x.size(); ++i)
        EXPECT_TRUE(sameBits(before[i], after[i]));
}

TEST(WaveletState, OwnsOneBufferAndFreeReturnsIt)
{
    AllocationWatch watch;
    rvxWtState state = {};
    rvxdWtInit(2, 2, 8, 8, &state, RVX_WT_BSPLINE);
    EXPECT_EQ(watch.allocations(), 1);
    EXPECT_EQ(watch.live(), 1);
    double x[256] = {}, y[256];
    rvxdWtDecompose(&state, x, y);
    rvxdWtReconstruct(&state, y, x);
    EXPECT_EQ(watch.allocations(), 1);
    rvxWtFree(&state);
    EXPECT_EQ(watch.live(), 0);
    const rvxWtState zero = {};
    EXPECT_TRUE(sameRecord(state, zero));
    rvxWtFree(&state);
    EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_OK);
    EXPECT_EQ(watch.live(), 0);
}

TEST(WaveletState, TheWorkBufferHasTheStatedRoom)
{
    for (const WaveletBank &bank : allWaveletBanks())
        for (int order : {1, 2, 5, 9}) {
            const Wavelet wavelet(bank.par1, bank.par2, order, order, bank.wtType);
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(wavelet.state.workBuf) % 32, 0U);
            std::fill_n(wavelet.state.workBuf, workLenOf(wavelet.state), 1.0); // the heap sees
        }
}

TEST(WaveletState, AFreedStateIsRefused)
{
    Reports reports;
    double x[4] = {1, 2, 3, 4}, y[4] = {};
    rvxWtState state = {};
    rvxdWtInit(0, 0, 2, 2, &state, RVX_WT_HAAR);
    rvxWtFree(&state);
    const char *core = "Error in the (float, double or short) core of wtState!";
    expectRefused({{"rvxdWtDecompose", core, [&] { rvxdWtDecompose(&state, x, y); }},
                   {"rvxdWtReconstruct", core, [&] { rvxdWtReconstruct(&state, x, y); }},
                   {"rvxWtFree", "wtState==0", [] { rvxWtFree(nullptr); }}},
                  "rvxwlt", reports);
}

TEST(WaveletState, MakingAndFreeingClearAStaleStatus)
{
    Reports reports;
    rvxWtState state = {};
    rvxSetErrStatus(RVX_STATUS_NO_MEMORY);
    rvxdWtInit(0, 0, 2, 2, &state, RVX_WT_HAAR);
    EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_OK);
    EXPECT_EQ(state.dataOrder, 2);
    rvxSetErrStatus(RVX_STATUS_NO_MEMORY);
    rvxWtFree(&state);
    EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_OK);
    rvxSetErrStatus(RVX_STATUS_NO_MEMORY);
    int coefficients = 0;
    rvxdWtInitLen(0, 0, 3, 1, &state, RVX_WT_HAAR, &coefficients);
    EXPECT_EQ(rvxGetErrStatus(), RVX_STATUS_OK);
    rvxWtFree(&state);
    EXPECT_TRUE(reports.take().empty());
}

TEST(WaveletState, InModeZeroARefusedCallEndsTheProcess)
{
    rvxWtState state = {};
    EXPECT_EXIT(rvxdWtInit(0, 0, 0, 0, &state, 1), ::testing::ExitedWithCode(1), "");
    EXPECT_EXIT(rvxdWtInit(0, 0, 3, 4, &state, 1), ::testing::ExitedWithCode(1), "");
    EXPECT_EXIT(rvxWtFree(nullptr), ::testing::ExitedWithCode(1), "");
}

TEST(WaveletState, OfTheLargestOrderIsMadeOrHasNoMemory)
{
    Reports reports;
    rvxWtState state = {};
    rvxdWtInit(0, 0, 30, 30, &state, RVX_WT_HAAR);
    if (rvxGetErrStatus() == RVX_STATUS_OK) {
        EXPECT_EQ(state.lenLevel[0], 1 << 30);
        EXPECT_EQ(state.lenLevel[30], 1);
        EXPECT_EQ(state.len_dec, 1 << 30);
        rvxWtFree(&state);
    } else {
        EXPECT_EQ(reports.take(), passedOn(RVX_STATUS_NO_MEMORY, "No working wavelet memory!"));
    }
}

TEST(WaveletByHand, FiltersOfAnyLengthAreHonoured)
{
    for (int taps : {1, 2, 3, 4, 5, 7, 33, 64, 500, 1022, 1023, 1024, 1025, 1500})
        for (int len : {1, 2, 3, 8, 65, 600}) {
            HandMade made({taps, taps, taps, taps},
                          {taps / 2, taps / 2, (taps - 1) / 2, (taps - 1) / 2}, len, 2);
            expectBothWays(made, std::to_string(taps) + " taps, length " + std::to_string(len));
        }
}

TEST(WaveletByHand, FiltersOfFourLengthsAndAnyOffsetAreHonoured)
{
    const std::vector<std::vector<int>> lens = {
        {1, 2, 3, 4},       {9, 3, 2, 8},    {5, 5, 1, 1},    {4, 9, 30, 7},
        {1024, 3, 2, 1024}, {3, 2000, 2, 4}, {4, 1, 5, 2500}, {1, 4, 2500, 3}};
    const std::vector<std::vector<int>> ofs = {{0, 0, 0, 0},
                                               {3, 1, 0, 2},
                                               {-3, 5, -1, 9},
                                               {40, -40, 21, -20},
                                               {-7, -7, -8, -9},
                                               {99, 98, 97, 96},
                                               {2000, -2000, 3001, -3001}};
    for (const std::vector<int> &len : lens)
        for (const std::vector<int> &offset : ofs)
            for (int n : {1, 2, 5, 26, 130, 601}) {
                HandMade made(len, offset, n, 3);
                expectBothWays(made, ::testing::PrintToString(len) +
                                         ::testing::PrintToString(offset) + ", length " +
                                         std::to_string(n));
            }
}

TEST(WaveletByHand, FiltersWithoutTapsGiveZeros)
{
    HandMade made({0, 0, 0, 0}, {0, 1, 0, 1}, 9, 1);
    expectBothWays(made, "no taps");
}

// Only the parameters that have a Haar bank go without filters.
TEST(WaveletByHand, ParametersThatAreNoneGoByTheFilters)
{
    const WaveletBank near[] = {
        {RVX_WT_DAUBECHIES, 0, 1},
        {RVX_WT_DAUBECHIES, 2, 1},
        {RVX_WT_SYMLET, 1, 1},
        {RVX_WT_BSPLINE, 0, 1},
        {RVX_WT_BSPLINE, 1, 0},
        {RVX_WT_BSPLINE, 1, 2},
        {RVX_WT_BSPLINE, 2, 1},
        {RVX_WT_BSPLINE_DUAL, 1, 3},
        {RVX_WT_LINEAR_SPLINE, 1, 1},
        {RVX_WT_COIFLET, 1, 1},
        {0, 1, 1},
        {10, 1, 1},
    };
    for (const WaveletBank &bank : near)
        for (int len : {2, 7, 40}) {
            HandMade made({3, 4, 5, 2}, {1, 0, 2, 1}, len, 2);
            made.state.wtType = bank.wtType;
            made.state.par1 = bank.par1;
            made.state.par2 = bank.par2;
            expectBothWays(made, ::testing::PrintToString(len) + " samples");
        }
}

// Nothing but -0.0 sums to +0.0, in vectors and one by one, as sums start from +0.0.
TEST(WaveletByHand, NegativeZerosSumToZero)
{
    for (int taps : {3, 1100}) {
        HandMade made({taps, taps, taps, taps}, {1, 1, 1, 1}, 50, 1);
        std::vector<double> ones(static_cast<std::size_t>(taps), 1.0);
        for (double *&filter : made.state.tap_filt)
            filter = ones.data();
        const std::vector<double> x(50, -0.0);
        std::vector<double> y(50, -1.0);
        rvxdWtDecompose(&made.state, x.data(), y.data());
        for (double value : y)
            EXPECT_EQ(bitsOf(value), 0U) << taps;
        y.assign(50, -1.0);
        rvxdWtReconstruct(&made.state, x.data(), y.data());
        for (double value : y)
            EXPECT_EQ(bitsOf(value), 0U) << taps;
    }
}
