// An array that knows whether something wrote outside it, at any 8-byte
// alignment within 32 bytes. Under the address sanitizer a plain vector would
// tell too; this one tells in every build.

#ifndef RVX_TEST_GUARDED_H
#define RVX_TEST_GUARDED_H

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <type_traits>
#include <vector>

template <typename T>
class Guarded {
public:
    // n elements whose first stands misalignment * 8 bytes behind a multiple of 32.
    explicit Guarded(int n, int misalignment = 0) : count(n)
    {
        static_assert(std::is_trivially_copyable<T>::value, "plain data");
        bytes = guardBytes + static_cast<std::size_t>(misalignment) * 8 +
                static_cast<std::size_t>(n) * sizeof(T) + guardBytes;
        bytes = (bytes + 31) / 32 * 32;
        block = static_cast<unsigned char *>(std::aligned_alloc(32, bytes));
        if (block == nullptr)
            throw std::bad_alloc();
        std::memset(block, guardByte, bytes);
        first = reinterpret_cast<T *>(block + guardBytes + misalignment * 8);
    }
    explicit Guarded(const std::vector<T> &from, int misalignment = 0)
        : Guarded(static_cast<int>(from.size()), misalignment)
    {
        if (!from.empty())
            std::memcpy(first, from.data(), from.size() * sizeof(T));
    }
    ~Guarded() { std::free(block); }
    Guarded(const Guarded &) = delete;
    Guarded &operator=(const Guarded &) = delete;

    T *data() { return first; }
    T &operator[](int i) { return first[i]; }
    int size() const { return count; }
    std::vector<T> values() const { return std::vector<T>(first, first + count); }

    // True while nothing was written outside the elements.
    bool intact() const
    {
        const auto *begin = reinterpret_cast<const unsigned char *>(first);
        const auto *end = reinterpret_cast<const unsigned char *>(first + count);
        for (const unsigned char *p = block; p < block + bytes; ++p)
            if ((p < begin || p >= end) && *p != guardByte)
                return false;
        return true;
    }

private:
    static constexpr std::size_t guardBytes = 128;
    static constexpr unsigned char guardByte = 0xa5;
    int count;
    std::size_t bytes;
    unsigned char *block;
    T *first;
};

// The exact bits of a value, for comparisons that see signs of zero and NaNs.
inline std::uint64_t bitsOf(double x)
{
    std::uint64_t bits;
    std::memcpy(&bits, &x, sizeof bits);
    return bits;
}

#endif
