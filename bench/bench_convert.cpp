// Number conversions, beside a loop that the compiler vectorises with all that this
// machine has and -ffast-math.

#include <cmath>
#include <string>
#include <type_traits>

#include "compare.h"
#include "peer_convert.h"
#include "rvx.h"

namespace {

// Samples of which some are beyond the range -1 to 1.
const double *samples(int n)
{
    auto *block = new std::vector<double>;
    for (int i = 0; i < n; ++i)
        block->push_back(1.2 * std::sin(0.7 * i));
    return block->data();
}

template <typename Int>
struct Format {
    static constexpr bool isUnsigned = std::is_unsigned<Int>::value;
    static constexpr int size = 8 * sizeof(Int);
    static constexpr int fractBits = isUnsigned ? size : size - 1;
    static constexpr int flag = isUnsigned ? RVX_CVT_UNSIGNED : 0;
    static std::string name()
    {
        return std::to_string(size) + (isUnsigned ? " bits unsigned" : " bits");
    }
};

template <typename Int>
void compareTo(const double *src, int n, int rounding, const char *roundingName,
               LoopRounding loopRounding)
{
    using F = Format<Int>;
    Int *dst = (new std::vector<Int>(static_cast<std::size_t>(n)))->data();
    const double scale = std::ldexp(1.0, F::fractBits);
    const std::string task = "to " + F::name() + ", " + roundingName;
    const auto ours = [=](int fate) {
        return [=] {
            rvxdbFloatToFix(src, dst, n, F::size, F::fractBits, rounding | fate | F::flag);
            escape(dst);
        };
    };
    const std::string size = std::to_string(n);
    compare(task + ", clipped", size,
            {{"rvx", ours(RVX_CVT_CLIP)}, {"loop", [=] {
                                               loopToInts(src, dst, n, scale, loopRounding);
                                               escape(dst);
                                           }}});
    compare(task + ", clipped and reported", size,
            {{"rvx", ours(RVX_CVT_CLIP | RVX_CVT_REPORT)},
             {"loop", [=] {
                  static int misfits;
                  misfits = loopToIntsCounted(src, dst, n, scale, loopRounding);
                  escape(&misfits);
              }}});
    compare(task, size, {{"rvx", ours(0)}, {"loop", [=] {
                                                loopToIntsFree(src, dst, n, scale, loopRounding);
                                                escape(dst);
                                            }}});
}

template <typename Int>
void compareFrom(int n)
{
    using F = Format<Int>;
    const auto *src = (new std::vector<Int>(static_cast<std::size_t>(n), Int{77}))->data();
    double *dst = (new std::vector<double>(static_cast<std::size_t>(n)))->data();
    const double scale = std::ldexp(1.0, -F::fractBits);
    compare("from " + F::name(), std::to_string(n),
            {{"rvx",
              [=] {
                  rvxdbFixToFloat(src, dst, n, F::size, F::fractBits, F::flag);
                  escape(dst);
              }},
             {"loop", [=] {
                  loopFromInts(src, dst, n, scale);
                  escape(dst);
              }}});
}

constexpr const char *call = " A call costs 40 to 60 cycles, that of the loop 3 to 15, which "
                             "counts at 256 elements: some 190 instructions for checks, the "
                             "status, constants of the format and the choice of a kernel. "
                             "Floating-point mode and flags are kept at less than 2.";

template <typename Int>
void setBars()
{
    const std::string name = Format<Int>::name();
    const std::string nearest = "to " + name + ", nearest",
                      truncated = "to " + name + ", truncated";
    const std::string additions =
        std::string("Arithmetic on 256 bits: an addition, shuffles, and four operations for "
                    "limits. Four numbers take 0.8 to 2.1 cycles, in the loop 1.4 to 2.9.") +
        call;
    const std::string steps =
        std::string("The loop has an instruction that truncates, of 512 bits here; on 256 bits "
                    "and with any instruction set a sum and a choice by sign stand for it. Four "
                    "numbers take 1.5 to 1.8 cycles without limits, in the loop 1.4 to 1.6; with "
                    "them both take 2.2 to 2.9.") +
        call;
    for (const char *fate : {"", ", clipped", ", clipped and reported"}) {
        limit(nearest + fate, 1.0, additions);
        limit(truncated + fate, 1.0, steps);
    }
    limit(
        "from " + name, 1.0,
        "Stores: 8 bytes an element, of 32 a cycle at best; the loop's are of 64. A call costs 15 "
        "to 20 cycles, that of the loop 1, of 100 at 256 elements.");
}

template <typename Int>
void compareAt(const double *src, int n)
{
    compareTo<Int>(src, n, RVX_CVT_NEAREST, "nearest", LoopRounding::nearest);
    compareTo<Int>(src, n, RVX_CVT_TRUNC, "truncated", LoopRounding::trunc);
    compareFrom<Int>(n);
}

} // namespace

void registerComparisons()
{
    rvxSetErrMode(1);
    setBars<signed char>();
    setBars<short>();
    setBars<int>();
    setBars<unsigned>();
    for (const int n : {256, 4096, 65536, 1000000}) {
        const double *src = samples(n);
        compareAt<signed char>(src, n);
        compareAt<short>(src, n);
        compareAt<int>(src, n);
        compareAt<unsigned>(src, n);
    }
}
