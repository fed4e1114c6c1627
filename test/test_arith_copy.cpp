// Block fill and copy.

#include <vector>

#include "support/arith_values.h"
#include "vector/rvxarith.h"

TEST(BlockFill, ZeroClearsAllBitsAtEveryLength)
{
    forEveryShape([](int n, int dstAt, int) {
        Guarded<double> real(std::vector<double>(static_cast<std::size_t>(n), -0.0), dstAt);
        rvxdbZero(real.data(), n);
        expectBlock(real, std::vector<double>(static_cast<std::size_t>(n), 0.0), "rvxdbZero");
        Guarded<ZCplx> cplx(cplxNumbers(n, 1), dstAt);
        rvxzbZero(cplx.data(), n);
        expectBlock(cplx, std::vector<ZCplx>(static_cast<std::size_t>(n), ZCplx{0.0, 0.0}),
                    "rvxzbZero");
    });
}

TEST(BlockFill, SetWritesTheExactBitsAtEveryLength)
{
    for (double val : {number(1), -0.0, marked, -INF}) {
        forEveryShape([=](int n, int dstAt, int srcAt) {
            if (srcAt != 0)
                return;
            Guarded<double> real(n, dstAt);
            rvxdbSet(val, real.data(), n);
            for (int i = 0; i < n; ++i)
                ASSERT_TRUE(sameBits(real[i], val)) << i << " of " << n;
            ASSERT_TRUE(real.intact());

            const ZCplx pair{val, number(2)};
            Guarded<ZCplx> cplx(n, dstAt);
            rvxzbSet(pair, cplx.data(), n);
            for (int i = 0; i < n; ++i)
                ASSERT_TRUE(sameBits(cplx[i], pair)) << i << " of " << n;
            ASSERT_TRUE(cplx.intact());
        });
    }
}

TEST(BlockCopy, CopiesTheExactBitsAtEveryLength)
{
    forEveryShape([](int n, int dstAt, int srcAt) {
        std::vector<double> values = numbers(n, 3);
        values[0] = marked;
        values[static_cast<std::size_t>(n / 2)] = -0.0;
        Guarded<double> src(values, srcAt);
        Guarded<double> dst(n, dstAt);
        rvxdbCopy(src.data(), dst.data(), n);
        for (int i = 0; i < n; ++i)
            ASSERT_TRUE(sameBits(dst[i], values[static_cast<std::size_t>(i)])) << i << " of " << n;
        ASSERT_TRUE(dst.intact());

        std::vector<ZCplx> pairs = cplxNumbers(n, 4);
        pairs[static_cast<std::size_t>(n - 1)].im = marked;
        Guarded<ZCplx> cplxSrc(pairs, srcAt);
        Guarded<ZCplx> cplxDst(n, dstAt);
        rvxzbCopy(cplxSrc.data(), cplxDst.data(), n);
        for (int i = 0; i < n; ++i)
            ASSERT_TRUE(sameBits(cplxDst[i], pairs[static_cast<std::size_t>(i)]))
                << i << " of " << n;
        ASSERT_TRUE(cplxDst.intact());
    });
}

namespace {

// A copy inside one array, from place `from` to place `to`, against one element
// after the other from the last down.
template <typename T>
void expectOverlappingCopy(void (*copy)(const T *, T *, int), const std::vector<T> &values,
                           int from, int to, int n)
{
    std::vector<T> expected = values;
    for (int i = n; i-- > 0;)
        expected[static_cast<std::size_t>(to + i)] = expected[static_cast<std::size_t>(from + i)];
    Guarded<T> array(values);
    copy(array.data() + from, array.data() + to, n);
    for (int i = 0; i < array.size(); ++i)
        ASSERT_TRUE(sameBits(array[i], expected[static_cast<std::size_t>(i)]))
            << "from " << from << " to " << to << ", n " << n << ", at " << i;
    ASSERT_TRUE(array.intact());
}

} // namespace

TEST(BlockCopy, GoesFromTheLastElementDownAtEveryOverlap)
{
    for (int n = 1; n <= 40; ++n)
        for (int distance = -n - 1; distance <= n + 1; ++distance) {
            const int from = distance < 0 ? -distance : 0;
            const int to = distance < 0 ? 0 : distance;
            expectOverlappingCopy(rvxdbCopy, numbers(2 * n + 1, 5), from, to, n);
            expectOverlappingCopy(rvxzbCopy, cplxNumbers(2 * n + 1, 6), from, to, n);
        }
    for (int distance : {-5000, -4999, -300, -1, 1, 64, 4999}) {
        const int from = distance < 0 ? -distance : 0;
        expectOverlappingCopy(rvxdbCopy, numbers(10000, 7), from, from + distance, 5000);
        expectOverlappingCopy(rvxzbCopy, cplxNumbers(10000, 8), from, from + distance, 5000);
    }
}

TEST(BlockCopy, KeepsTheOrderInBlocksLargerThanTheCaches)
{
    constexpr int n = (1 << 21) + 5;
    std::vector<double> block(n + 3);
    for (int from : {3, 0}) {
        const int to = 3 - from;
        for (int i = 0; i < n + 3; ++i)
            block[static_cast<std::size_t>(i)] = i;
        rvxdbCopy(block.data() + from, block.data() + to, n);
        // Up, every element has moved. Down by 3, the last three have been smeared
        // all the way: element i holds what stood 3, 6, 9, ... above it.
        int wrong = 0;
        for (int i = 0; i < n; ++i) {
            const int origin = from == 0 ? i : n + (i - n % 3 + 3) % 3;
            wrong += block[static_cast<std::size_t>(to + i)] != origin ? 1 : 0;
        }
        EXPECT_EQ(wrong, 0) << "from " << from;
    }
}

TEST(BlockCopy, MovesUpByOneWithoutSmearingAndSmearsDownByOne)
{
    double up[11] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, -1};
    rvxdbCopy(up, up + 1, 10);
    EXPECT_EQ(up[0], 0);
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(up[i + 1], i);
    double down[11] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
    rvxdbCopy(down + 1, down, 10);
    for (double x : down)
        EXPECT_EQ(x, 10);
}
