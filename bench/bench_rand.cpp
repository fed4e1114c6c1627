// Noise, beside the standard library's and beside vectors of a small generator. What
// every contender gives is noise of the same distribution, not the same samples.

#include <random>

#include "compare.h"
#include "peer_rand.h"
#include "rvx.h"

namespace {

void compareAt(int n)
{
    // They live as long as the program.
    const auto size = static_cast<std::size_t>(n);
    auto *samps = new std::vector<double>(size);
    auto *cplx = new std::vector<ZCplx>(size / 2);
    auto *uniform = new rvxRandUniState;
    auto *normal = new rvxRandGausState;
    auto *twister = new std::mt19937_64(1);
    auto *lanes = new XoshiroLanes;
    rvxdRandUniInit(1.0, -1.0, 1.0, uniform);
    rvxdRandGausInit(1.0, 0.0, 1.0, normal);
    seedXoshiro(lanes, 1);
    double *data = samps->data();
    ZCplx *pairs = cplx->data();
    const auto count = static_cast<unsigned>(n);

    const std::string text = std::to_string(n);
    compare("uniform; standard distribution", text,
            {{"rvx", [=] { rvxdbRandUni(uniform, data, count); }},
             {"std", [=] {
                  std::uniform_real_distribution<double> distribution(-1.0, 1.0);
                  for (double &sample : *samps)
                      sample = distribution(*twister);
                  escape(data);
              }}});
    compare("uniform; xoshiro256+ in vectors", text,
            {{"rvx", [=] { rvxdbRandUni(uniform, data, count); }},
             {"xoshiro256+", [=] { fastUniform(lanes, -1.0, 1.0, data, n); }}});
    auto *distribution = new std::normal_distribution<double>;
    compare("Gaussian; standard distribution", text,
            {{"rvx", [=] { rvxdbRandGaus(normal, data, count); }},
             {"std", [=] {
                  for (double &sample : *samps)
                      sample = (*distribution)(*twister);
                  escape(data);
              }}});
    compare("Gaussian, complex; standard distribution", text,
            {{"rvx", [=] { rvxzbRandGaus(normal, pairs, count / 2); }},
             {"std", [=] {
                  for (ZCplx &sample : *cplx) {
                      sample.re = (*distribution)(*twister);
                      sample.im = (*distribution)(*twister);
                  }
                  escape(pairs);
              }}});
}

} // namespace

void registerComparisons()
{
    const char *chain = "Each word waits for the one before it: a subtraction and a comparison, 2 "
                        "cycles.";
    limit("uniform; standard distribution", 0.4, chain);
    limit("uniform; xoshiro256+ in vectors", 3.0, chain);
    const char *work =
        "2.5 words a pair that is kept, and a logarithm, a division and a root, four "
        "pairs at a time.";
    limit("Gaussian; standard distribution", 0.6, work);
    limit("Gaussian, complex; standard distribution", 0.6, work);
    for (int n : {256, 4096, 65536, 1048576})
        compareAt(n);
}
