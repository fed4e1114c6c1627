// Between doubles and integers: what the fronts ask of the engines.

#ifndef RVXCVRTD_INT_H
#define RVXCVRTD_INT_H

#include "rvx.h"

// An integer of 8, 16 or 32 bits stands for its value divided by 2^fractBits. Passed by
// reference: for a record in registers compilers write its fields and read them back in
// one piece, which waits for all of the writes.
struct IntFormat {
    int size;
    int fractBits; // 0 to 32
    bool isUnsigned;
};

enum class IntRounding { nearest, trunc, floor, ceil };

// dst[i] = src[i] * 2^fractBits, rounded. What does not fit is saturated if `clip`
// is set and otherwise keeps its low bits. With `report`, true if something did not
// fit; without it false.
bool rvxDoublesToInts(const double *src, void *dst, int n, const IntFormat &format,
                      IntRounding rounding, bool clip, bool report);

// dst[i] = src[i] * 2^-fractBits, exactly.
void rvxIntsToDoubles(const void *src, double *dst, int n, const IntFormat &format);

#endif
