// How the tests of thresholds, roots and reciprocals call both forms of a function,
// and the values that these functions treat in ways of their own.

#ifndef RVX_TEST_VEC_FORMS_H
#define RVX_TEST_VEC_FORMS_H

#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "rvx.h"
#include "support/bits.h"
#include "support/guarded.h"
#include "support/reports.h"

// How many random blocks, and the lengths of blocks that have one special element at
// each position in turn.
#ifdef RVX_TEST_SANITIZED
constexpr int patternBlocks = 2000;
constexpr int longestBlock = 13;
#else
constexpr int patternBlocks = 50000;
constexpr int longestBlock = 40;
#endif

// Zeros, numbers whose high words are all zero, other subnormals, edges of the
// normal range, infinities and NaNs with payloads, of either sign.
inline std::vector<double> specialValues()
{
    std::vector<double> values;
    for (std::uint64_t bits : {0x0000000000000000ULL, 0x0000000000000001ULL, 0x00000000ffffffffULL,
                               0x0000000100000000ULL, 0x0008000000000000ULL, 0x000fffffffffffffULL,
                               0x0010000000000000ULL, 0x001fffffffffffffULL, 0x3fe0000000000000ULL,
                               0x3ff0000000000000ULL, 0x4008000000000000ULL, 0x7fe0000000000000ULL,
                               0x7fefffffffffffffULL, 0x7ff0000000000000ULL, 0x7ff0000000000001ULL,
                               0x7ff8000000000000ULL, 0x7fffffffffffffffULL, 0x7ff800000badcafeULL})
        for (std::uint64_t sign : {0ULL, 1ULL << 63})
            values.push_back(fromBits(bits | sign));
    return values;
}

// Random numbers of every kind.
class Draw {
public:
    explicit Draw(unsigned seed) : random(seed) {}

    std::uint64_t bits() { return random(); }
    int below(int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); }
    // In [-2, 2), never tiny.
    double ordinary()
    {
        return fromBits((random() & 0x800fffffffffffffULL) |
                        (static_cast<std::uint64_t>(1020 + below(4)) << 52));
    }
    double pattern() { return fromBits(random()); }
    // Mostly ordinary numbers, some of any pattern, some special.
    double mixed()
    {
        static const std::vector<double> values = specialValues();
        const int kind = below(16);
        if (kind == 0)
            return values[static_cast<std::size_t>(below(static_cast<int>(values.size())))];
        return kind == 1 ? pattern() : ordinary();
    }
    std::vector<double> block(int n, double (Draw::*draw)())
    {
        std::vector<double> values;
        for (int i = 0; i < n; ++i)
            values.push_back((this->*draw)());
        return values;
    }
    std::vector<ZCplx> cplxBlock(int n, double (Draw::*draw)())
    {
        std::vector<ZCplx> values;
        for (int i = 0; i < n; ++i) {
            const double re = (this->*draw)();
            values.push_back({re, (this->*draw)()});
        }
        return values;
    }

private:
    std::mt19937_64 random;
};

inline std::ostream &operator<<(std::ostream &out, ZCplx z)
{
    return out << "(" << z.re << ", " << z.im << ")";
}

// Both forms of a function and what they report after the work, if anything.
template <typename T>
struct Forms {
    std::string name; // without the digit
    std::function<void(T *, int)> inPlace;
    std::function<void(const T *, T *, int)> apart;
    const char *failure;
};

template <typename T>
std::vector<Report> reportAfter(const Forms<T> &forms, const char *digit, bool failed)
{
    if (!failed)
        return {};
    return badArgument((forms.name + digit).c_str(), forms.failure, "rvxvec");
}

// What the plain writing of a function's steps does: writes dst, which may be src,
// and returns whether a failure is to be reported.
template <typename T>
using Steps = std::function<bool(const T *, T *, int)>;

// Form 1, form 2 and form 2 in place give what the steps give, touch nothing else and
// report the same, at one alignment.
template <typename T>
void expectForms(const Forms<T> &forms, const std::vector<T> &src, const Steps<T> &steps,
                 int srcAt = 0, int dstAt = 0,
                 bool (*agree)(T, T) = static_cast<bool (*)(T, T)>(same))
{
    const int n = static_cast<int>(src.size());
    const auto expectSame = [&](Guarded<T> &block, const std::vector<T> &expected,
                                const char *what) {
        for (int i = 0; i < n; ++i)
            ASSERT_TRUE(agree(block[i], expected[static_cast<std::size_t>(i)]))
                << forms.name << what << ", element " << i << " of " << n << ": " << block[i]
                << " for " << expected[static_cast<std::size_t>(i)] << " from "
                << src[static_cast<std::size_t>(i)];
        ASSERT_TRUE(block.intact()) << forms.name << what << " wrote outside";
    };
    Reports reports;

    std::vector<T> expected = src;
    const bool failed = steps(expected.data(), expected.data(), n);
    Guarded<T> one(src, srcAt);
    forms.inPlace(one.data(), n);
    expectSame(one, expected, "1");
    ASSERT_EQ(reports.take(), reportAfter(forms, "1", failed));

    Guarded<T> both(src, dstAt);
    forms.apart(both.data(), both.data(), n);
    expectSame(both, expected, "2 in place");
    ASSERT_EQ(reports.take(), reportAfter(forms, "2", failed));

    Guarded<T> from(src, srcAt), to(n, dstAt);
    expected = to.values();
    steps(src.data(), expected.data(), n);
    forms.apart(from.data(), to.data(), n);
    expectSame(to, expected, "2");
    ASSERT_EQ(reports.take(), reportAfter(forms, "2", failed));
    ASSERT_EQ(std::memcmp(from.data(), src.data(), src.size() * sizeof(T)), 0);
    ASSERT_TRUE(from.intact());
    ASSERT_EQ(rvxGetErrStatus(), failed ? RVX_STATUS_BAD_ARGUMENT : RVX_STATUS_OK);
}

// The first checks, which all of them have, in their order; nothing is written.
template <typename T>
void expectChecks(const Forms<T> &forms)
{
    Reports reports;
    const std::string name1 = forms.name + "1", name2 = forms.name + "2";
    Guarded<T> src(5), dst(5);
    const std::vector<T> before = dst.values();
    for (int len : {0, -1, std::numeric_limits<int>::min()}) {
        forms.inPlace(nullptr, len);
        EXPECT_EQ(reports.take(), badArgument(name1.c_str(), "len<=0", "rvxvec"));
        forms.apart(nullptr, nullptr, len);
        EXPECT_EQ(reports.take(), badArgument(name2.c_str(), "len<=0", "rvxvec"));
        forms.apart(src.data(), dst.data(), len);
        EXPECT_EQ(reports.take(), badArgument(name2.c_str(), "len<=0", "rvxvec"));
    }
    forms.inPlace(nullptr, 5);
    EXPECT_EQ(reports.take(), badArgument(name1.c_str(), "vec==0", "rvxvec"));
    forms.apart(nullptr, nullptr, 5);
    EXPECT_EQ(reports.take(), badArgument(name2.c_str(), "src==0", "rvxvec"));
    forms.apart(nullptr, dst.data(), 5);
    EXPECT_EQ(reports.take(), badArgument(name2.c_str(), "src==0", "rvxvec"));
    forms.apart(src.data(), nullptr, 5);
    EXPECT_EQ(reports.take(), badArgument(name2.c_str(), "dst==0", "rvxvec"));
    EXPECT_EQ(std::memcmp(dst.data(), before.data(), before.size() * sizeof(T)), 0);
    EXPECT_TRUE(src.intact() && dst.intact());
}

#endif
