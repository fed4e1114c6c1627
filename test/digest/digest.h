// A row of the digest: RVX_DIGEST(rvxdbAdd1) { … } runs the function of that
// name on fixed data and hands every result to `digest`.

#ifndef RVX_TEST_DIGEST_H
#define RVX_TEST_DIGEST_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "rvx.h"

// FNV-1a over 64 bits. A NaN counts as a NaN, whichever it is: processors and
// compilers are free in which operand's payload they pass on.
class Digest {
public:
    void addWord(std::uint64_t word)
    {
        for (int byte = 0; byte < 8; ++byte) {
            state = (state ^ ((word >> (8 * byte)) & 0xff)) * 0x100000001b3ULL;
        }
    }
    // The exact bits.
    void addBits(double x)
    {
        std::uint64_t word;
        std::memcpy(&word, &x, sizeof word);
        addWord(word);
    }
    void add(double x)
    {
        if (x != x)
            addWord(0x7ff8000000000000ULL);
        else
            addBits(x);
    }
    void add(int x) { addWord(static_cast<std::uint64_t>(static_cast<std::int64_t>(x))); }
    void add(ZCplx z)
    {
        add(z.re);
        add(z.im);
    }
    void add(const char *text)
    {
        for (; *text != '\0'; ++text)
            addWord(static_cast<unsigned char>(*text));
    }
    template <typename T>
    void add(const std::vector<T> &block)
    {
        for (const T &element : block)
            add(element);
    }
    std::uint64_t value() const { return state; }

private:
    std::uint64_t state = 0xcbf29ce484222325ULL;
};

// The fixed data: the same numbers on every machine, made by integers alone.
class FixedData {
public:
    explicit FixedData(std::uint64_t seed) : state(seed * 2 + 1) {}

    std::uint64_t word()
    {
        // splitmix64
        state += 0x9e3779b97f4a7c15ULL;
        std::uint64_t z = state;
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
        z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
        return z ^ (z >> 31);
    }
    // Uniform in [-1, 1).
    double sample()
    {
        return static_cast<double>(static_cast<std::int64_t>(word()) >> 11) * 0x1p-52;
    }
    // Any bit pattern but signalling NaNs.
    double pattern()
    {
        std::uint64_t w = word();
        if ((w & 0x7ff0000000000000ULL) == 0x7ff0000000000000ULL)
            w |= 0x0008000000000000ULL;
        double x;
        std::memcpy(&x, &w, sizeof x);
        return x;
    }
    template <typename Element>
    std::vector<Element> block(int n)
    {
        std::vector<Element> elements(static_cast<std::size_t>(n));
        for (Element &element : elements)
            fill(element);
        return elements;
    }
    std::vector<double> samples(int n) { return block<double>(n); }
    std::vector<ZCplx> cplxSamples(int n) { return block<ZCplx>(n); }

private:
    void fill(double &x) { x = sample(); }
    void fill(ZCplx &z)
    {
        fill(z.re);
        fill(z.im);
    }
    std::uint64_t state;
};

struct DigestRow {
    DigestRow(const char *rowName, void (*rowRun)(Digest &));
    const char *name;
    void (*run)(Digest &);
};

#define RVX_DIGEST(function)                                                                       \
    static void digest_##function(Digest &digest);                                                 \
    static const DigestRow row_##function(#function, digest_##function);                           \
    static void digest_##function(Digest &digest)

#endif
