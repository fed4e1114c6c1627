// The processor's floating-point mode: direction of rounding, what becomes of
// subnormal numbers, traps, and the flags of what has happened.

#ifndef RVXFLOATMODE_H
#define RVXFLOATMODE_H

#include <cfenv>

#include "frame/rvxkernel.h"

// For plain double arithmetic between the two calls, which is then as a new program
// has it, whatever the caller has set; leaving puts back mode and flags, so that
// nothing is raised. No arithmetic on memory moves past them.
//
// Only the register of the vector unit is touched where there is one: the others cost
// as much as a block of a hundred elements.
#if defined(__x86_64__)

struct FloatMode {
    unsigned control;
};

RVX_INLINE FloatMode enterPlainMode()
{
    FloatMode before;
    const unsigned plain = 0x1f80;
    asm volatile("stmxcsr %0" : "=m"(before.control) : : "memory");
    asm volatile("ldmxcsr %0" : : "m"(plain) : "memory");
    return before;
}

RVX_INLINE void leavePlainMode(FloatMode before)
{
    asm volatile("ldmxcsr %0" : : "m"(before.control) : "memory");
}

#else

struct FloatMode {
    std::fenv_t all;
};

inline FloatMode enterPlainMode()
{
    FloatMode before;
    std::fegetenv(&before.all);
    std::fesetenv(FE_DFL_ENV);
    return before;
}

inline void leavePlainMode(FloatMode before)
{
    std::fesetenv(&before.all);
}

#endif

// The same for Extended too: function(x), rounded to double.
template <typename Function>
double inPlainMode(Function function, double x)
{
    std::fenv_t before;
    std::fegetenv(&before);
    std::fesetenv(FE_DFL_ENV);
    // Volatile: the call must not move out from between.
    const volatile Extended wide = static_cast<Extended>(x);
    const volatile double result = static_cast<double>(function(wide));
    std::fesetenv(&before);
    return result;
}

#endif
