// An array that touches memory which may not be read: one step outside it ends the
// test program, in every build and whatever became of the value that was read. Walls
// stand at the ends of whole vectors in memory; elements some doubles apart from the
// wall begin or end inside a vector, and the address sanitizer sees a step into that gap.

#ifndef RVX_TEST_WALLED_H
#define RVX_TEST_WALLED_H

#include <cstddef>
#include <cstring>
#include <new>
#include <type_traits>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>

#if __has_include(<sanitizer/asan_interface.h>)
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(at, n) ((void)(at), (void)(n))
#define ASAN_UNPOISON_MEMORY_REGION(at, n) ((void)(at), (void)(n))
#endif

enum class Wall { before, behind }; // the elements

template <typename T>
class Walled {
public:
    explicit Walled(const std::vector<T> &from, Wall wall, int apart = 0) : count(from.size())
    {
        static_assert(std::is_trivially_copyable<T>::value, "plain data");
        const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        const std::size_t used = count * sizeof(T);
        const std::size_t gap = static_cast<std::size_t>(apart) * sizeof(double);
        const std::size_t room = (used + gap + page - 1) / page * page;
        bytes = room + 2 * page;
        block = mmap(nullptr, bytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (block == MAP_FAILED)
            throw std::bad_alloc();
        unsigned char *middle = static_cast<unsigned char *>(block) + page;
        if (room > 0 && mprotect(middle, room, PROT_READ | PROT_WRITE) != 0)
            throw std::bad_alloc();
        const bool isBehind = wall == Wall::behind;
        first = reinterpret_cast<T *>(isBehind ? middle + room - gap - used : middle + gap);
        ASAN_POISON_MEMORY_REGION(isBehind ? middle + room - gap : middle, gap);
        if (used > 0)
            std::memcpy(static_cast<void *>(first), from.data(), used);
    }
    ~Walled()
    {
        ASAN_UNPOISON_MEMORY_REGION(block, bytes);
        munmap(block, bytes);
    }
    Walled(const Walled &) = delete;
    Walled &operator=(const Walled &) = delete;

    T *data() { return first; }
    std::vector<T> values() const { return std::vector<T>(first, first + count); }

private:
    std::size_t count;
    std::size_t bytes;
    void *block;
    T *first;
};

#endif
