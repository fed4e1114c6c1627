#include "peer_law.h"

#if defined(__clang__)
#define RVX_BENCH_ONE_BY_ONE _Pragma("clang loop vectorize(disable)")
#else
#define RVX_BENCH_ONE_BY_ONE _Pragma("GCC unroll 8")
__attribute__((optimize("no-tree-vectorize")))
#endif
void lookUp(const unsigned char *__restrict src, double *__restrict dst, int n,
            const double *__restrict table)
{
    RVX_BENCH_ONE_BY_ONE
    for (int i = 0; i < n; ++i)
        dst[i] = table[src[i]];
}
