// rvxmed: running median by ranks, for wide masks.
//
// All samples of a line are sorted once; from then on a sample is its place among
// them, and the window is a set of bits. A slide clears one bit and sets another, and
// the median's word moves by as many words as its rank asks for. That is one sort of a
// line and a few operations on bits per sample, however wide the mask: after the insight
// that a running median is no more than sorting (J. Suomela, Median filtering is
// equivalent to sorting, 2014), with bits in place of his linked lists.
//
// The sort is by counting, over the leading bits of what the samples have not in
// common, twice eleven; samples alike in these are sorted by what is left of them.

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "filter/rvxmed.h"
#include "frame/rvxkernel.h"

namespace {

constexpr int RVX_DIGIT_BITS = 11;
constexpr std::size_t RVX_DIGITS = std::size_t{1} << RVX_DIGIT_BITS;
constexpr std::ptrdiff_t RVX_COUNTED = 512; // shorter runs are sorted by comparisons

// Digits above, the place in the line below: what the sort moves about.
using Item = std::uint64_t;

std::ptrdiff_t placeOf(Item item)
{
    return static_cast<std::ptrdiff_t>(item & UINT32_MAX);
}

// Ascends with the sample, NaNs at the ends.
RVX_INLINE std::uint64_t orderKey(double x)
{
    std::uint64_t bits;
    std::memcpy(&bits, &x, sizeof bits);
    return (bits >> 63) != 0 ? ~bits : bits | (std::uint64_t{1} << 63);
}

// How many bits the number has from its leading one on.
int bitLength(std::uint64_t x)
{
    return x == 0 ? 0 : 64 - __builtin_clzll(x);
}

// Turns the counts of digits into the first place of each.
void placeDigits(std::uint32_t *counts)
{
    std::uint32_t sum = 0;
    for (std::size_t d = 0; d < RVX_DIGITS; ++d) {
        const std::uint32_t count = counts[d];
        counts[d] = sum;
        sum += count;
    }
}

// One pass of the sort: by the digit that starts at bit `shift`.
void scatter(const Item *from, Item *to, std::ptrdiff_t n, int shift, std::uint32_t *places)
{
    for (std::ptrdiff_t i = 0; i < n; ++i)
        to[places[(from[i] >> shift) % RVX_DIGITS]++] = from[i];
}

// What of the keys the digits of one counting sort say.
struct Span {
    std::uint64_t least;
    int shift;
};

Span spanOf(const Item *items, std::ptrdiff_t n, const std::uint64_t *keys)
{
    std::uint64_t least = UINT64_MAX, most = 0;
    for (std::ptrdiff_t i = 0; i < n; ++i) {
        const std::uint64_t key = keys[placeOf(items[i])];
        least = std::min(least, key);
        most = std::max(most, key);
    }
    return {least, std::max(bitLength(most - least) - 2 * RVX_DIGIT_BITS, 0)};
}

// Sorts items by the leading bits of their keys. Items alike in the digits stay in a
// row, unsorted.
void sortByDigits(Item *items, Item *spare, std::ptrdiff_t n, const std::uint64_t *keys,
                  const Span &span)
{
    std::uint32_t low[RVX_DIGITS] = {}, high[RVX_DIGITS] = {};
    for (std::ptrdiff_t i = 0; i < n; ++i) {
        const std::ptrdiff_t place = placeOf(items[i]);
        const std::uint64_t digits = (keys[place] - span.least) >> span.shift;
        items[i] = digits << 32 | static_cast<Item>(place);
        ++low[digits % RVX_DIGITS];
        ++high[digits / RVX_DIGITS];
    }
    placeDigits(low);
    placeDigits(high);
    scatter(items, spare, n, 32, low);
    scatter(spare, items, n, 32 + RVX_DIGIT_BITS, high);
}

void sortByComparing(Item *items, std::ptrdiff_t n, const std::uint64_t *keys)
{
    const auto isLess = [keys](Item a, Item b) { return keys[placeOf(a)] < keys[placeOf(b)]; };
    if (!std::is_sorted(items, items + n, isLess))
        std::sort(items, items + n, isLess);
}

void sortItems(Item *items, Item *spare, std::ptrdiff_t n, const std::uint64_t *keys)
{
    if (n < RVX_COUNTED) {
        sortByComparing(items, n, keys);
        return;
    }
    const Span span = spanOf(items, n, keys);
    sortByDigits(items, spare, n, keys, span);
    if (span.shift == 0)
        return; // the digits are all that the keys have
    // Each time at least 22 more bits are in common, so this goes three deep at most.
    for (std::ptrdiff_t i = 0, end; i < n; i = end) {
        for (end = i + 1; end < n && items[end] >> 32 == items[i] >> 32;)
            ++end;
        if (end - i > 1)
            sortItems(items + i, spare, end - i, keys);
    }
}

// places[8 * b + r] is the place of the r-th set bit of byte b.
struct BitPlaces {
    std::uint8_t places[256 * 8];
};

constexpr BitPlaces makeBitPlaces()
{
    BitPlaces table = {};
    for (int b = 0; b < 256; ++b)
        for (int bit = 0, r = 0; bit < 8; ++bit)
            if ((b >> bit & 1) != 0)
                table.places[8 * b + r++] = static_cast<std::uint8_t>(bit);
    return table;
}

constexpr BitPlaces bitPlaces = makeBitPlaces();

// The place of the r-th set bit, counted from 0: S. Vigna's selection in a word
// (Broadword implementation of rank/select queries, 2008).
RVX_INLINE std::uint64_t selectBit(std::uint64_t word, std::uint64_t r)
{
    constexpr std::uint64_t ones = 0x0101010101010101;
    std::uint64_t sums = word - (word >> 1 & 0x55 * ones);
    sums = (sums & 0x33 * ones) + (sums >> 2 & 0x33 * ones);
    sums = ((sums + (sums >> 4)) & 0x0f * ones) * ones; // of each byte and those below
    const std::uint64_t above = ((sums | 0x80 * ones) - (r + 1) * ones) >> 7 & ones;
    const std::uint64_t shift = 8 * (8 - (above * ones >> 56));
    const std::uint64_t inByte = r - (sums << 8 >> shift & 0xff);
    return shift + bitPlaces.places[8 * (word >> shift & 0xff) + inByte];
}

// A set of ranks, and where in it the median is: bit `rank` of word `at`, of those
// that are set there.
struct RankSet {
    std::uint64_t *words;
    std::int64_t *counts;
    std::ptrdiff_t at;
    std::int64_t rank;
};

RVX_INLINE void addRank(RankSet &set, std::uint32_t rank)
{
    const std::ptrdiff_t word = rank / 64;
    set.words[word] |= std::uint64_t{1} << rank % 64;
    ++set.counts[word];
    set.rank -= word < set.at ? 1 : 0;
}

RVX_INLINE void removeRank(RankSet &set, std::uint32_t rank)
{
    const std::ptrdiff_t word = rank / 64;
    set.words[word] &= ~(std::uint64_t{1} << rank % 64);
    --set.counts[word];
    set.rank += word < set.at ? 1 : 0;
}

RVX_INLINE std::ptrdiff_t medianRank(RankSet &set)
{
    while (set.rank < 0)
        set.rank += set.counts[--set.at];
    while (set.rank >= set.counts[set.at])
        set.rank -= set.counts[set.at++];
    return 64 * set.at + static_cast<std::ptrdiff_t>(
                             selectBit(set.words[set.at], static_cast<std::uint64_t>(set.rank)));
}

std::ptrdiff_t wordsOf(std::ptrdiff_t samples)
{
    return samples / 64 + 1;
}

} // namespace

std::ptrdiff_t rankScratch(std::ptrdiff_t samples)
{
    return 3 * samples + 2 * wordsOf(samples);
}

void medianByRanks(const Windows &windows, double *out)
{
    const std::ptrdiff_t mask = windows.mask;
    const std::ptrdiff_t samples = windows.n + mask - 1;
    auto *keys = reinterpret_cast<std::uint64_t *>(windows.scratch);
    auto *items = reinterpret_cast<Item *>(windows.scratch + samples);
    auto *spare = reinterpret_cast<Item *>(windows.scratch + 2 * samples);
    for (std::ptrdiff_t i = 0; i < samples; ++i) {
        keys[i] = orderKey(windows.line[i]);
        items[i] = static_cast<Item>(i);
    }
    sortItems(items, spare, samples, keys);
    // Keys and the second half of the sort have done their work.
    double *sorted = windows.scratch;
    auto *ranks = reinterpret_cast<std::uint32_t *>(spare);
    for (std::ptrdiff_t p = 0; p < samples; ++p) {
        sorted[p] = windows.line[placeOf(items[p])];
        ranks[placeOf(items[p])] = static_cast<std::uint32_t>(p);
    }
    const std::ptrdiff_t words = wordsOf(samples);
    auto *bits = reinterpret_cast<std::uint64_t *>(windows.scratch + 3 * samples);
    auto *counts = reinterpret_cast<std::int64_t *>(bits + words);
    std::fill(bits, bits + words, 0);
    std::fill(counts, counts + words, 0);
    RankSet set = {bits, counts, 0, mask / 2};
    for (std::ptrdiff_t i = 0; i < mask; ++i)
        addRank(set, ranks[i]);
    out[0] = sorted[medianRank(set)];
    for (std::ptrdiff_t t = 1; t < windows.n; ++t) {
        removeRank(set, ranks[t - 1]);
        addRank(set, ranks[t - 1 + mask]);
        out[t] = sorted[medianRank(set)];
    }
}
