// Calls under any floating-point environment: rounding mode, raised flags, unmasked
// exceptions, subnormals flushed to zero.

#ifndef RVX_TEST_FLOAT_ENVIRONMENT_H
#define RVX_TEST_FLOAT_ENVIRONMENT_H

#include <cstdint>
#include <functional>
#include <vector>

#include <gtest/gtest.h>

struct FloatEnvironmentState {
    std::uint32_t vector;          // MXCSR
    std::uint16_t control, status; // x87

    bool operator==(const FloatEnvironmentState &other) const
    {
        return vector == other.vector && control == other.control && status == other.status;
    }
};

inline FloatEnvironmentState environmentNow()
{
    FloatEnvironmentState state;
    asm volatile("stmxcsr %0" : "=m"(state.vector));
    asm volatile("fnstcw %0" : "=m"(state.control));
    asm volatile("fnstsw %0" : "=m"(state.status));
    return state;
}

inline void setVectorEnvironment(std::uint32_t vector)
{
    asm volatile("ldmxcsr %0" : : "m"(vector) : "memory");
}

// The four rounding modes, each with all flags clear, all raised and some raised, with
// exceptions unmasked, and with subnormals flushed.
inline std::vector<std::uint32_t> vectorEnvironments()
{
    constexpr std::uint32_t masked = 0x1f80, flushing = 0x8040;
    std::vector<std::uint32_t> all;
    for (std::uint32_t mode = 0; mode < 4; ++mode)
        for (const std::uint32_t rest : {masked, masked | 0x3f, masked | 0x20, masked | 0x15,
                                         masked | flushing, 0x0U, flushing | 0x3fU, 0x1000U})
            all.push_back(mode << 13 | rest);
    return all;
}

// Runs the call under each of them and sees that it leaves all as it was. Whatever
// the call computes is compared by `check`, in the usual environment.
inline void underEveryEnvironment(const std::function<void()> &call,
                                  const std::function<void()> &check)
{
    const std::uint32_t usual = environmentNow().vector;
    for (const std::uint32_t vector : vectorEnvironments()) {
        setVectorEnvironment(vector);
        const FloatEnvironmentState before = environmentNow();
        call();
        const FloatEnvironmentState after = environmentNow();
        setVectorEnvironment(usual);
        ASSERT_TRUE(before == after) << std::hex << before.vector << " became " << after.vector;
        check();
        ASSERT_FALSE(::testing::Test::HasFatalFailure()) << std::hex << "under " << vector;
    }
}

#endif
