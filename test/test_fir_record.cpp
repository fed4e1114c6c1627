// FIR filters: what stands in their records.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include <gtest/gtest.h>

#include "rvx.h"
#include "support/fir_families.h"
#include "support/reports.h"

namespace {

using Row = std::vector<int>;

std::vector<Row> rowsOf(const rvxFirState &state)
{
    std::vector<Row> rows;
    for (int i = 0; i < state.upFactor; ++i) {
        const rvxFirPhaseRow &row = state.phaseTable[i];
        rows.push_back({row.phase, row.numTaps, row.dlyOffset, row.tapOffset});
    }
    return rows;
}

// Elements that tell where they came from.
template <typename Element>
Element numbered(int i)
{
    Element element = {};
    *reinterpret_cast<double *>(&element) = 1.0 + i;
    return element;
}

template <typename Element>
std::vector<Element> numberedBlock(int n)
{
    std::vector<Element> block;
    for (int i = 0; i < n; ++i)
        block.push_back(numbered<Element>(i));
    return block;
}

// Programs in other languages rely on it: fields in the documented order, each at the
// first place that fits its width.
TEST(FirRecordLayout, FieldsStandInTheirOrder)
{
    constexpr std::size_t number = sizeof(std::int32_t), pointer = sizeof(void *);
    const std::size_t fields[][2] = {
        {offsetof(rvxFirState, upFactor), number},    {offsetof(rvxFirState, upPhase), number},
        {offsetof(rvxFirState, downFactor), number},  {offsetof(rvxFirState, downPhase), number},
        {offsetof(rvxFirState, isMultiRate), number}, {offsetof(rvxFirState, self), pointer},
        {offsetof(rvxFirState, tapsLen), number},     {offsetof(rvxFirState, tapsBlockLen), number},
        {offsetof(rvxFirState, taps), pointer},       {offsetof(rvxFirState, dlylLen), number},
        {offsetof(rvxFirState, bufLen), number},      {offsetof(rvxFirState, dlylBase), pointer},
        {offsetof(rvxFirState, dlylEnd), pointer},    {offsetof(rvxFirState, dlylCur), pointer},
        {offsetof(rvxFirState, phaseTable), pointer}};
    std::size_t place = 0;
    for (const auto &[offset, width] : fields) {
        place = (place + width - 1) / width * width;
        EXPECT_EQ(offset, place);
        place += width;
    }
    EXPECT_EQ(sizeof(rvxFirState), place);

    EXPECT_EQ(offsetof(rvxFirPhaseRow, phase), 0u);
    EXPECT_EQ(offsetof(rvxFirPhaseRow, numTaps), number);
    EXPECT_EQ(offsetof(rvxFirPhaseRow, dlyOffset), 2 * number);
    EXPECT_EQ(offsetof(rvxFirPhaseRow, tapOffset), 3 * number);
    EXPECT_EQ(sizeof(rvxFirPhaseRow), 4 * number);
}

TEST(FirPhaseTable, Examples)
{
    rvxFirState state = {};
    rvxdFirInitMr(nullptr, 4, nullptr, 2, 0, 1, 0, &state);
    EXPECT_EQ(rowsOf(state), (std::vector<Row>{{0, 2, 1, 0}, {1, 2, 1, 2}}));
    rvxdFirInitMr(nullptr, 4, nullptr, 1, 0, 2, 0, &state);
    EXPECT_EQ(rowsOf(state), (std::vector<Row>{{0, 4, 1, 0}}));
    rvxdFirInitMr(nullptr, 7, nullptr, 3, 1, 2, 1, &state);
    EXPECT_EQ(rowsOf(state), (std::vector<Row>{{0, 3, 1, 0}, {2, 2, 2, 5}, {1, 2, 3, 3}}));
    rvxFirFree(&state);
}

// The table counted out: times walk one by one instead of by remainders.
TEST(FirPhaseTable, AgreesWithCounting)
{
    rvxFirState state = {};
    for (int up = 1; up <= 6; ++up)
        for (int down = up == 1 ? 2 : 1; down <= 6; ++down)
            for (int upPhase = 0; upPhase < up; ++upPhase)
                for (int downPhase = 0; downPhase < down; ++downPhase)
                    for (int tapsLen = 1; tapsLen <= 14; ++tapsLen) {
                        rvxdFirInitMr(nullptr, tapsLen, nullptr, up, upPhase, down, downPhase,
                                      &state);
                        std::vector<Row> expected;
                        for (int i = 0; i < up; ++i) {
                            int count = 0, time = i * down + downPhase;
                            for (; time >= upPhase; time -= up)
                                ++count;
                            const int p = time - upPhase + up == up ? 0 : time - upPhase + up;
                            int numTaps = 0, tapOffset = 0;
                            for (int j = 0; j < tapsLen; ++j) {
                                numTaps += j % up == p ? 1 : 0;
                                tapOffset += j % up < p ? 1 : 0;
                            }
                            const bool shorter = numTaps < (tapsLen + up - 1) / up;
                            expected.push_back({p, numTaps, count + (shorter ? 1 : 0), tapOffset});
                        }
                        ASSERT_EQ(rowsOf(state), expected) << up << " " << upPhase << " " << down
                                                           << " " << downPhase << " " << tapsLen;
                    }
    rvxFirFree(&state);
}

// Times of outputs do not fit an int here. They are walked through once.
TEST(FirPhaseTable, TimesBeyondAnInt)
{
    constexpr int up = 50000, down = 60001;
    rvxFirState state = {};
    rvxdFirInitMr(nullptr, 70000, nullptr, up, up - 1, down, down - 1, &state);
    long time = down - 1;
    int arrived = 0;
    for (int i = 0; i < up; ++i, time += down) {
        for (; time >= up - 1; time -= up)
            ++arrived;
        const int p = static_cast<int>(time + 1);
        const bool isLong = p < 20000;
        const rvxFirPhaseRow &row = state.phaseTable[i];
        ASSERT_EQ(row.phase, p);
        ASSERT_EQ(row.numTaps, isLong ? 2 : 1);
        ASSERT_EQ(row.dlyOffset, isLong ? arrived : arrived + 1);
        ASSERT_EQ(row.tapOffset, p + std::min(p, 20000));
    }
    rvxFirFree(&state);
}

template <typename Family>
class FirRecord : public ::testing::Test {
protected:
    Reports reports;
};

TYPED_TEST_SUITE(FirRecord, AllFamilies, FamilyNames);

TYPED_TEST(FirRecord, SingleRateFields)
{
    using Tap = typename TypeParam::Tap;
    using Sample = typename TypeParam::Sample;
    for (int tapsLen : {1, 2, 3, 4, 7, 63, 64, 65, 66, 200}) {
        rvxFirState state;
        std::memset(&state, 0xa5, sizeof state);
        const auto taps = numberedBlock<Tap>(tapsLen);
        const auto past = numberedBlock<Sample>(tapsLen - 1);
        TypeParam::init(taps.data(), tapsLen, past.data(), &state);
        EXPECT_EQ(state.upFactor, 1);
        EXPECT_EQ(state.upPhase, 0);
        EXPECT_EQ(state.downFactor, 1);
        EXPECT_EQ(state.downPhase, 0);
        EXPECT_EQ(state.isMultiRate, 0);
        EXPECT_EQ(state.self, &state);
        EXPECT_EQ(state.tapsLen, tapsLen);
        EXPECT_EQ(state.tapsBlockLen, tapsLen - tapsLen % TypeParam::tapsBlock);
        EXPECT_EQ(state.dlylLen, tapsLen - 1);
        EXPECT_EQ(state.bufLen, tapsLen <= 64 ? 64 : tapsLen);
        EXPECT_EQ(state.phaseTable, nullptr);
        EXPECT_EQ(state.dlylCur, state.dlylBase);
        EXPECT_EQ(state.dlylEnd, static_cast<Sample *>(state.dlylBase) + state.bufLen);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(state.taps) % 32, 0u);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(state.dlylBase) % 32, 0u);
        const std::vector<Tap> reversed(taps.rbegin(), taps.rend());
        EXPECT_TRUE(sameBytes(taken<Tap>(state.taps, tapsLen), reversed));
        EXPECT_TRUE(sameBytes(taken<Sample>(state.dlylCur, tapsLen - 1), past));
        rvxFirFree(&state);
    }
    EXPECT_TRUE(this->reports.take().empty());
}

TYPED_TEST(FirRecord, FactorsOfOneAreSingleRate)
{
    rvxFirState state = {};
    TypeParam::initMr(nullptr, 8, nullptr, 1, 0, 1, 0, &state);
    EXPECT_EQ(state.isMultiRate, 0);
    EXPECT_EQ(state.dlylLen, 7);
    EXPECT_EQ(state.phaseTable, nullptr);
    TypeParam::initMr(nullptr, 8, nullptr, 1, 0, 2, 1, &state);
    EXPECT_EQ(state.isMultiRate, 1);
    EXPECT_EQ(state.dlylLen, 8);
    EXPECT_EQ(state.downPhase, 1);
    EXPECT_EQ(state.bufLen, 64);
    rvxFirFree(&state);
}

TYPED_TEST(FirRecord, MultiRateFields)
{
    using Tap = typename TypeParam::Tap;
    using Sample = typename TypeParam::Sample;
    const auto taps = numberedBlock<Tap>(8);
    const auto past = numberedBlock<Sample>(3);
    rvxFirState state = {};
    TypeParam::initMr(taps.data(), 8, past.data(), 3, 2, 5, 4, &state);
    EXPECT_EQ(state.upFactor, 3);
    EXPECT_EQ(state.upPhase, 2);
    EXPECT_EQ(state.downFactor, 5);
    EXPECT_EQ(state.downPhase, 4);
    EXPECT_EQ(state.isMultiRate, 1);
    EXPECT_EQ(state.tapsBlockLen, 8);
    EXPECT_EQ(state.dlylLen, 3);
    EXPECT_EQ(state.bufLen, 65); // 63 in whole steps of 5
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(state.phaseTable) % 32, 0u);
    // h[6] h[3] h[0], h[7] h[4] h[1], h[5] h[2]
    std::vector<Tap> stored;
    for (int i : {6, 3, 0, 7, 4, 1, 5, 2})
        stored.push_back(numbered<Tap>(i));
    EXPECT_TRUE(sameBytes(taken<Tap>(state.taps, 8), stored));
    EXPECT_TRUE(sameBytes(taken<Sample>(state.dlylCur, 3), past));
    TypeParam::initMr(nullptr, 600, nullptr, 3, 0, 7, 0, &state);
    EXPECT_EQ(state.dlylLen, 200);
    EXPECT_EQ(state.bufLen, 203);
    rvxFirFree(&state);
}

TYPED_TEST(FirRecord, NullValuesAreZeros)
{
    using Tap = typename TypeParam::Tap;
    using Sample = typename TypeParam::Sample;
    rvxFirState state = {};
    for (int up : {1, 3}) {
        TypeParam::initMr(nullptr, 70, nullptr, up, 0, 1, 0, &state);
        EXPECT_TRUE(sameBytes(taken<Tap>(state.taps, 70), std::vector<Tap>(70, Tap{})));
        EXPECT_TRUE(sameBytes(taken<Sample>(state.dlylCur, state.dlylLen),
                              std::vector<Sample>(static_cast<std::size_t>(state.dlylLen))));
    }
    rvxFirFree(&state);
}

TEST(FirStores, ChecksInOrder)
{
    Reports reports;
    rvxFirState dead;
    std::memset(&dead, 0xa5, sizeof dead);
    const rvxFirState before = dead;
    const double x[4] = {};
    const ZCplx z[4] = {};
    const auto expect = [&](const char *func, const char *context) {
        EXPECT_EQ(reports.take(), badArgument(func, context, "rvxfirh"));
    };
    rvxdFirSetTaps(x, nullptr);
    expect("rvxdFirSetTaps", "Null state pointer");
    rvxdFirSetTaps(x, &dead);
    expect("rvxdFirSetTaps", "Must have been initialized");
    rvxzFirSetTaps(z, nullptr);
    expect("rvxzFirSetTaps", "Null state pointer");
    rvxzFirSetTaps(z, &dead);
    expect("rvxzFirSetTaps", "Must have been initialized");
    rvxdFirSetDlyl(x, nullptr);
    expect("rvxdFirSetDlyl", "Null state pointer");
    rvxdFirSetDlyl(x, &dead);
    expect("rvxdFirSetDlyl", "Must have been initialized");
    rvxzFirSetDlyl(z, nullptr);
    expect("rvxzFirSetDlyl", "Null state pointer");
    rvxzFirSetDlyl(z, &dead);
    expect("rvxzFirSetDlyl", "Must have been initialized");
    EXPECT_EQ(std::memcmp(&dead, &before, sizeof dead), 0);
}

// On live states the stores work at once, the delay line's where the window stands.
template <typename Element, typename Store>
void expectDelayLineStored(rvxFirState &state, Store store)
{
    const auto past = numberedBlock<Element>(state.dlylLen);
    const void *window = state.dlylCur;
    ASSERT_NE(window, state.dlylBase);
    store(past.data(), &state);
    EXPECT_EQ(state.dlylCur, window);
    EXPECT_TRUE(sameBytes(taken<Element>(window, state.dlylLen), past));
    store(nullptr, &state);
    EXPECT_TRUE(
        sameBytes(taken<Element>(window, state.dlylLen), std::vector<Element>(past.size())));
}

TEST(FirStores, DelayLineGoesToTheWindow)
{
    Reports reports;
    rvxFirState state = {};
    rvxdFirInit(nullptr, 8, nullptr, &state);
    rvxdFir(&state, 1.0);
    expectDelayLineStored<double>(state, rvxdFirSetDlyl);
    rvxzdFirInit(nullptr, 8, nullptr, &state);
    rvxzdFir(&state, {1.0, 2.0});
    expectDelayLineStored<ZCplx>(state, rvxzFirSetDlyl);
    rvxFirFree(&state);
    EXPECT_TRUE(reports.take().empty());
}

template <typename Element, typename Store>
void expectTapsStored(rvxFirState &state, Store store, const std::vector<int> &order)
{
    const int n = static_cast<int>(order.size());
    std::vector<Element> stored;
    for (int i : order)
        stored.push_back(numbered<Element>(i));
    store(numberedBlock<Element>(n).data(), &state);
    EXPECT_TRUE(sameBytes(taken<Element>(state.taps, n), stored));
    store(nullptr, &state);
    EXPECT_TRUE(sameBytes(taken<Element>(state.taps, n), std::vector<Element>(order.size())));
}

TEST(FirStores, TapsAreReversedAndSplitByPhase)
{
    Reports reports;
    rvxFirState state = {};
    rvxdFirInit(nullptr, 5, nullptr, &state);
    expectTapsStored<double>(state, rvxdFirSetTaps, {4, 3, 2, 1, 0});
    rvxdFirInitMr(nullptr, 5, nullptr, 2, 0, 3, 0, &state);
    expectTapsStored<double>(state, rvxdFirSetTaps, {4, 2, 0, 3, 1});
    rvxzFirInit(nullptr, 5, nullptr, &state);
    expectTapsStored<ZCplx>(state, rvxzFirSetTaps, {4, 3, 2, 1, 0});
    rvxdzFirInitMr(nullptr, 5, nullptr, 7, 6, 1, 0, &state); // more subfilters than taps
    expectTapsStored<ZCplx>(state, rvxzFirSetTaps, {0, 1, 2, 3, 4});
    rvxFirFree(&state);
    EXPECT_TRUE(reports.take().empty());
}

TEST(FirStores, PhaseTableOfASingleRateStateIsLeftAlone)
{
    rvxFirState state = {};
    rvxdFirInit(nullptr, 5, nullptr, &state);
    const rvxFirState before = state;
    rvxFirBuildPhaseTable(&state);
    EXPECT_EQ(std::memcmp(&state, &before, sizeof state), 0);
    rvxFirFree(&state);
}

} // namespace
