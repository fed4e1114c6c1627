// The processor's floating-point mode: direction of rounding, what becomes of
// subnormal numbers, traps, and the flags of what has happened.

#ifndef RVXFLOATMODE_H
#define RVXFLOATMODE_H

#include <cfenv>

#include "frame/rvxkernel.h"

// As in the register of the vector unit.
enum class Rounding : unsigned { nearest, down, up, towardZero };

// For double arithmetic between the two calls, which is then as a new program has it
// but for the rounding, whatever the caller has set; leaving puts back mode and flags,
// so that nothing is raised. No arithmetic on memory moves past them.
//
// Only the register of the vector unit is touched where there is one: the others cost
// as much as a block of a hundred elements. To read it takes 14 cycles and to
// write it 2, so that it is read once; the work of a block hides most of that.
#if defined(__x86_64__)

struct FloatMode {
    unsigned control;
};

RVX_INLINE FloatMode enterMode(Rounding rounding)
{
    constexpr unsigned allMasked = 0x1f80;
    const unsigned ours = allMasked | static_cast<unsigned>(rounding) << 13;
    FloatMode before;
    asm volatile("stmxcsr %0" : "=m"(before.control) : : "memory");
    asm volatile("ldmxcsr %0" : : "m"(ours) : "memory");
    return before;
}

RVX_INLINE void leaveMode(FloatMode before)
{
    asm volatile("ldmxcsr %0" : : "m"(before.control) : "memory");
}

#else

struct FloatMode {
    std::fenv_t all;
};

inline FloatMode enterMode(Rounding rounding)
{
    constexpr int modes[] = {FE_TONEAREST, FE_DOWNWARD, FE_UPWARD, FE_TOWARDZERO};
    FloatMode before;
    std::fegetenv(&before.all);
    std::fesetenv(FE_DFL_ENV);
    std::fesetround(modes[static_cast<unsigned>(rounding)]);
    return before;
}

inline void leaveMode(FloatMode before)
{
    std::fesetenv(&before.all);
}

#endif

RVX_INLINE FloatMode enterPlainMode()
{
    return enterMode(Rounding::nearest);
}

RVX_INLINE void leavePlainMode(FloatMode before)
{
    leaveMode(before);
}

// function(x) in Extended, rounded to double: within a plain mode, which is for another
// unit of the processor than this. What <cfenv> offers costs as much as a hundred
// logarithms of a block.
#if defined(__x86_64__)

template <typename Function>
double inPlainMode(Function function, double x)
{
    constexpr unsigned short allFlags = 0x3f;
    const unsigned short plain = 0x037f;
    unsigned short control, before, after;
    asm volatile("fnstcw %0" : "=m"(control) : : "memory");
    asm volatile("fnstsw %0" : "=m"(before) : : "memory");
    if (control != plain)
        asm volatile("fldcw %0" : : "m"(plain) : "memory");
    // Volatile: the call must not move out from between.
    const volatile Extended wide = static_cast<Extended>(x);
    const volatile double result = static_cast<double>(function(wide));
    asm volatile("fnstsw %0" : "=m"(after) : : "memory");
    if (((before ^ after) & allFlags) != 0) {
        asm volatile("fnclex" : : : "memory");
        if ((before & allFlags) != 0) {
            struct {
                unsigned control, status, others[5];
            } environment;
            asm volatile("fnstenv %0" : "=m"(environment) : : "memory");
            environment.status |= before & static_cast<unsigned>(allFlags);
            asm volatile("fldenv %0" : : "m"(environment) : "memory");
        }
    }
    if (control != plain)
        asm volatile("fldcw %0" : : "m"(control) : "memory");
    return result;
}

#else

template <typename Function>
double inPlainMode(Function function, double x)
{
    return static_cast<double>(function(static_cast<Extended>(x)));
}

#endif

#endif
