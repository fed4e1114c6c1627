// What inner loops are written with: the mark that builds them for several
// instruction sets, and the library's extended type.

#ifndef RVXKERNEL_H
#define RVXKERNEL_H

// A kernel is compiled once for each instruction set and the loader picks one.
// The sets leave fused multiply-add out, so that all of them give the same bits.
// A kernel is a plain function, not a template, whose name no other module's
// kernel has: one compiler names the picking function after it, globally. A
// template becomes a kernel by a call from one.
#if defined(RVX_DISPATCH) && defined(__x86_64__) && !defined(_WIN32)
#define RVX_KERNEL __attribute__((target_clones("avx2", "default")))
#else
#define RVX_KERNEL __attribute__((noinline))
#endif

// A helper that becomes part of each kernel that calls it, in the kernel's
// instruction set.
#define RVX_INLINE inline __attribute__((always_inline))

// The precision of sums that are wider than double: 64 bits of significand.
using Extended = long double;

#endif
