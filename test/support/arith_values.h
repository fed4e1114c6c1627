// Values and checks that the tests of block arithmetic share.

#ifndef RVX_TEST_ARITH_VALUES_H
#define RVX_TEST_ARITH_VALUES_H

#include <cmath>
#include <functional>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "rvx.h"
#include "support/bits.h"
#include "support/guarded.h"

constexpr double TINY = std::numeric_limits<double>::denorm_min();
constexpr double HUGE_VALUE = std::numeric_limits<double>::max();

constexpr double specials[] = {0.0,   -0.0, 1.0,   -1.5,       INF,   -INF,
                               QUIET, TINY, -TINY, HUGE_VALUE, 1e-300};

// A NaN with a payload, signalling: any arithmetic on it would show.
const double marked = fromBits(0x7ff4000000abcdefULL);

// Numbers with full significands, different at each i.
inline double number(int i)
{
    return std::sin(1.0 + 1.7 * i) * std::exp2(i % 7 - 3);
}

inline std::vector<double> numbers(int n, int seed)
{
    std::vector<double> block;
    for (int i = 0; i < n; ++i)
        block.push_back(number(1000 * seed + i));
    return block;
}

inline std::vector<ZCplx> cplxNumbers(int n, int seed)
{
    std::vector<ZCplx> block;
    for (int i = 0; i < n; ++i)
        block.push_back({number(1000 * seed + 2 * i), number(1000 * seed + 2 * i + 1)});
    return block;
}

constexpr int longest = 70;

// Runs body(n, misalignment of dst, misalignment of the sources) for every
// remainder length of the unrolled loops and every alignment.
inline void forEveryShape(const std::function<void(int, int, int)> &body)
{
    for (int n = 1; n <= longest; ++n)
        for (int dstAt = 0; dstAt < 4; ++dstAt)
            for (int srcAt = 0; srcAt < 4; ++srcAt)
                body(n, dstAt, srcAt);
}

template <typename T>
void expectBlock(Guarded<T> &block, const std::vector<T> &expected, const char *what)
{
    ASSERT_EQ(static_cast<std::size_t>(block.size()), expected.size());
    for (int i = 0; i < block.size(); ++i)
        ASSERT_TRUE(same(block[i], expected[static_cast<std::size_t>(i)]))
            << what << ", element " << i << " of " << block.size();
    ASSERT_TRUE(block.intact()) << what << " wrote outside its " << block.size() << " elements";
}

#endif
