// Up and down sampling, beside a copy that moves as many bytes.

#include <algorithm>
#include <cstring>

#include "compare.h"
#include "rvx.h"

namespace {

// n samples by a factor; the copy reads and writes half as many bytes each as the
// sampler does together.
template <typename Sample, typename Up, typename Down>
void compareAt(const std::string &family, int n, int factor, Up up, Down down)
{
    const auto places = static_cast<std::size_t>(n) * static_cast<std::size_t>(factor);
    auto *few = new std::vector<Sample>(places + 1);
    auto *many = new std::vector<Sample>(places + 1);
    Sample *a = few->data();
    Sample *b = many->data();
    const std::size_t bytes = (places + static_cast<std::size_t>(n)) * sizeof(Sample) / 2;
    const std::string size = std::to_string(n) + " by " + std::to_string(factor);
    const auto copy = [=] {
        std::memcpy(b, a, bytes);
        escape(b);
    };
    compare("up sampling, " + family, size,
            {{"rvx",
              [=] {
                  int dstLen, phase = factor / 2;
                  up(a, n, b, &dstLen, factor, &phase);
                  escape(b);
              }},
             {"copy", copy}});
    if (sizeof(Sample) == sizeof(double))
        compare("up sampling, real, beside zeros alone", size,
                {{"rvx",
                  [=] {
                      int dstLen, phase = factor / 2;
                      up(a, n, b, &dstLen, factor, &phase);
                      escape(b);
                  }},
                 {"fill", [=] {
                      std::memset(static_cast<void *>(b), 0, places * sizeof(Sample));
                      escape(b);
                  }}});
    compare("down sampling, " + family, size,
            {{"rvx",
              [=] {
                  int dstLen, phase = factor / 2;
                  down(b, n * factor, a, &dstLen, factor, &phase);
                  escape(a);
              }},
             {"copy", copy}});
}

} // namespace

void registerComparisons()
{
    for (int factor : {2, 3, 4, 8})
        for (int n : {1000, 20000, 1000000}) {
            compareAt<double>("real", n, factor, rvxdUpSample, rvxdDownSample);
            compareAt<ZCplx>("complex", n, factor, rvxzUpSample, rvxzDownSample);
        }
    for (const char *family : {"real", "complex"}) {
        limit(std::string("up sampling, ") + family, 1.05,
              "memory; in the first cache one store a cycle, of which a copy of as many bytes "
              "makes (factor + 1) / (2 factor) as many: see the fill");
        limit(std::string("down sampling, ") + family, 1.05,
              "memory; by 4 and more, the lines of the cache that are touched");
    }
    limit("up sampling, real, beside zeros alone", 1.1, "one store a cycle");
}
