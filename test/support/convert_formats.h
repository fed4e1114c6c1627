// Integers of any format, for tests of the conversions.

#ifndef RVX_TEST_CONVERT_FORMATS_H
#define RVX_TEST_CONVERT_FORMATS_H

#include <cstdint>
#include <cstring>
#include <ostream>
#include <vector>

#include "reference/fixed.h"
#include "rvx.h"

struct Format {
    int size;
    int fractBits;
    bool isUnsigned;

    int flag() const { return isUnsigned ? RVX_CVT_UNSIGNED : 0; }
};

inline std::ostream &operator<<(std::ostream &out, const Format &format)
{
    return out << (format.isUnsigned ? "unsigned " : "signed ") << format.size << " bits, "
               << format.fractBits << " of fraction";
}

constexpr int roundings[] = {RVX_CVT_NEAREST, RVX_CVT_TRUNC, RVX_CVT_FLOOR, RVX_CVT_CEIL};
constexpr int fates[] = {0, RVX_CVT_CLIP, RVX_CVT_REPORT, RVX_CVT_CLIP | RVX_CVT_REPORT};

// n integers of `size` bits with guards about them.
class Integers {
public:
    Integers(int size, int n)
        : bytes(static_cast<std::size_t>(size / 8)), count(static_cast<std::size_t>(n)),
          block(guard + bytes * count + guard, guardByte)
    {
    }
    void *data() { return block.data() + guard; }
    std::int64_t get(int i, bool isUnsigned) const
    {
        std::uint32_t pattern = 0; // little-endian
        std::memcpy(&pattern, block.data() + guard + bytes * static_cast<std::size_t>(i), bytes);
        const std::int64_t span = INT64_C(1) << (8 * bytes);
        const std::int64_t value = pattern;
        return !isUnsigned && value >= span / 2 ? value - span : value;
    }
    void set(int i, std::uint32_t pattern)
    {
        std::memcpy(block.data() + guard + bytes * static_cast<std::size_t>(i), &pattern, bytes);
    }
    bool intact() const
    {
        for (std::size_t i = 0; i < guard; ++i)
            if (block[i] != guardByte || block[block.size() - 1 - i] != guardByte)
                return false;
        return true;
    }

private:
    static constexpr std::size_t guard = 64;
    static constexpr unsigned char guardByte = 0xa5;
    std::size_t bytes;
    std::size_t count;
    std::vector<unsigned char> block;
};

// Flags decide here what they do in a call; those that exchange the rounding of
// unsigned words among them.
inline fixed::Result expectedOf(const Format &format, int flags, double x)
{
    int rounding = flags & (RVX_CVT_NEAREST | RVX_CVT_TRUNC | RVX_CVT_FLOOR | RVX_CVT_CEIL);
    const bool clip = (flags & RVX_CVT_CLIP) != 0;
    const bool exchanged = format.size == 32 && format.isUnsigned && !clip &&
                           rounding == RVX_CVT_TRUNC && (flags & RVX_CVT_REPORT) != 0;
    if (exchanged)
        rounding = RVX_CVT_FLOOR;
    return fixed::convert(x, format.size, format.fractBits, rounding, format.isUnsigned, clip);
}

#endif
