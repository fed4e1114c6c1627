// FIR filters, beside loops that fuse products and sums and add in any order.
//
// The peers of the block filters are given the past samples in front of the block
// and keep none; ours also bring their delay line up to date.

#include "compare.h"
#include "peer_fir.h"

#include <cmath>

namespace {

constexpr int blockLen = 4096;

void fill(double &x, int i)
{
    x = std::sin(0.1 * i) + 0.5 * std::cos(1.7 * i);
}

void fill(ZCplx &z, int i)
{
    fill(z.re, 2 * i);
    fill(z.im, 2 * i + 1);
}

template <typename Element>
std::vector<Element> *signal(int n)
{
    auto *elements = new std::vector<Element>(static_cast<std::size_t>(n)); // for good
    for (int i = 0; i < n; ++i)
        fill((*elements)[static_cast<std::size_t>(i)], i);
    return elements;
}

template <typename Tap, typename Sample, typename Out>
void compareBlock(const char *task, int tapsLen,
                  void (*init)(const Tap *, int, const Sample *, rvxFirState *),
                  void (*ours)(rvxFirState *, const Sample *, Out *, int))
{
    const auto *taps = signal<Tap>(tapsLen);
    const Sample *samples = signal<Sample>(blockLen + tapsLen - 1)->data();
    Out *out = signal<Out>(blockLen)->data();
    auto *state = new rvxFirState();
    init(taps->data(), tapsLen, nullptr, state);
    compare(task, std::to_string(tapsLen) + " taps",
            {{"rvx", [=] { ours(state, samples, out, blockLen); }},
             {"fast loop", [=] { fast::fir(taps->data(), tapsLen, samples, out, blockLen); }}});
}

void compareRates(const char *task, int up, int down, int tapsLen)
{
    const int steps = blockLen / down;
    const auto *taps = signal<double>(tapsLen);
    auto *state = new rvxFirState();
    rvxdFirInitMr(taps->data(), tapsLen, nullptr, up, 0, down, 0, state);
    const double *samples = signal<double>(steps * down + state->dlylLen)->data();
    double *out = signal<double>(steps * up)->data();
    compare(task,
            std::to_string(up) + ":" + std::to_string(down) + ", " + std::to_string(tapsLen) +
                " taps",
            {{"rvx", [=] { rvxdbFir(state, samples, out, steps); }},
             {"fast loop", [=] { fast::polyphase(state, samples, out, steps); }}});
}

void compareOne(const char *task, int tapsLen)
{
    const double *taps = signal<double>(tapsLen)->data();
    auto *state = new rvxFirState();
    rvxdFirInit(taps, tapsLen, nullptr, state);
    auto *ring = new fast::Ring{taps, tapsLen, signal<double>(2 * tapsLen)->data(), 0};
    compare(task, "1",
            {{"rvx",
              [=] {
                  double y = rvxdFir(state, 1.0);
                  escape(&y);
              }},
             {"fast loop", [=] {
                  double y = fast::fir(ring, 1.0);
                  escape(&y);
              }}});
}

} // namespace

void registerComparisons()
{
    const struct {
        const char *task, *limit;
    } blocks[] = {
        {"block of 4096, real", "Loads: samples of neighbouring taps overlap, and many a vector "
                                "crosses a cache line. The loop fuses product and sum, which "
                                "changes results."},
        {"block of 4096, complex",
         "Four products and four sums a tap in two pipes each, all of them busy, for four fused "
         "operations of the loop in two pipes, which changes results: at best equal. Few taps pay "
         "for parting real from imaginary."},
        {"block of 4096, real samples, complex taps",
         "Two products and two sums a tap, at one load for both; few taps pay for the outputs' "
         "parts, which are joined at the end."},
        {"block of 4096, complex samples, real taps",
         "Two products and two sums a tap, for two fused operations of the loop, which changes "
         "results. The pipes would do both in the same time; beside so many loads they idle a "
         "fifth of it."},
    };
    for (int tapsLen : {8, 32, 128, 512}) {
        compareBlock(blocks[0].task, tapsLen, rvxdFirInit, rvxdbFir);
        compareBlock(blocks[1].task, tapsLen, rvxzFirInit, rvxzbFir);
        compareBlock(blocks[2].task, tapsLen, rvxdzFirInit, rvxdzbFir);
        compareBlock(blocks[3].task, tapsLen, rvxzdFirInit, rvxzdbFir);
    }
    for (const auto &block : blocks)
        limit(block.task, 1.0, block.limit);

    compareRates("multi-rate, real", 2, 1, 128);
    compareRates("multi-rate, real", 3, 2, 128);
    compareRates("multi-rate, real", 147, 160, 128);
    limit("multi-rate, real", 1.0,
          "Products and sums; at 147:160, with one tap an output, the look at the row.");
    compareRates("decimation, real", 1, 2, 128);
    limit("decimation, real", 0.5, "Products and sums, two for each kept output and tap.");

    const char *chain = "A chain of 15 additions a call, in the stated order; the sums of 16 calls "
                        "are begun side by side.";
    compareOne("one sample, 32 taps", 32);
    limit("one sample, 32 taps", 1.0, chain);
    compareOne("one sample, 256 taps", 256);
    limit("one sample, 256 taps", 1.0, chain);
}
