#include "peer_law.h"

#include <algorithm>
#include <cstdint>

void loopEncode(const double *__restrict src, unsigned char *__restrict dst, int n,
                const unsigned char *__restrict table)
{
    for (int i = 0; i < n; ++i) {
        const double limited = std::min(std::max(src[i] * 32768.0, -32768.0), 32767.0);
        dst[i] = table[static_cast<std::uint16_t>(static_cast<int>(limited))];
    }
}

void loopDecode(const unsigned char *__restrict src, double *__restrict dst, int n,
                const double *__restrict table)
{
    for (int i = 0; i < n; ++i)
        dst[i] = table[src[i]];
}
