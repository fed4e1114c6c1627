// Elementary functions of blocks, division.

#include "digest.h"

namespace {

const int lengths[] = {1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 31, 33, 64, 100, 517};

// Ordinary arguments from `least` on; blocks with something special in every eighth
// place or so; any bit pattern.
std::vector<std::vector<double>> blocks(std::uint64_t seed, double least, double span)
{
    std::vector<std::vector<double>> all;
    FixedData data(seed);
    for (int n : lengths) {
        std::vector<double> ordinary = data.samples(n);
        for (double &x : ordinary)
            x = least + (x + 1.0) * 0.5 * span;
        all.push_back(ordinary);
        const double special[] = {0.0, -0.0, 1.0 / 0.0, -1.0 / 0.0, -3.0, 1e-20, 709.2, 5e-324};
        for (double &x : ordinary)
            if (data.word() % 8 == 0)
                x = special[data.word() % 8];
        all.push_back(ordinary);
        std::vector<double> patterns;
        for (int i = 0; i < n; ++i)
            patterns.push_back(data.pattern());
        all.push_back(patterns);
    }
    return all;
}

void digestBlocks(Digest &digest, void (*inPlace)(double *, int),
                  const std::vector<std::vector<double>> &sources)
{
    for (std::vector<double> block : sources) {
        inPlace(block.data(), static_cast<int>(block.size()));
        digest.add(block);
    }
}

void digestBlocks(Digest &digest, void (*apart)(const double *, double *, int),
                  const std::vector<std::vector<double>> &sources)
{
    for (const std::vector<double> &block : sources) {
        std::vector<double> result(block.size());
        apart(block.data(), result.data(), static_cast<int>(block.size()));
        digest.add(result);
    }
}

} // namespace

RVX_DIGEST(rvxdbArctan1)
{
    digestBlocks(digest, rvxdbArctan1, blocks(80, -4.0, 8.0));
}

RVX_DIGEST(rvxdbArctan2)
{
    digestBlocks(digest, rvxdbArctan2, blocks(81, -4.0, 8.0));
}

RVX_DIGEST(rvxdbLn1)
{
    digestBlocks(digest, rvxdbLn1, blocks(82, 0.001, 10.0));
}

RVX_DIGEST(rvxdbLn2)
{
    digestBlocks(digest, rvxdbLn2, blocks(83, 0.001, 10.0));
}

RVX_DIGEST(rvxdbLg1)
{
    digestBlocks(digest, rvxdbLg1, blocks(84, 0.001, 10.0));
}

RVX_DIGEST(rvxdbLg2)
{
    digestBlocks(digest, rvxdbLg2, blocks(85, 0.001, 10.0));
}

RVX_DIGEST(rvxdbExp1)
{
    digestBlocks(digest, rvxdbExp1, blocks(86, -600.0, 1300.0));
}

RVX_DIGEST(rvxdbExp2)
{
    digestBlocks(digest, rvxdbExp2, blocks(87, -20.0, 40.0));
}

RVX_DIGEST(rvxdbDiv1)
{
    FixedData data(88);
    for (std::vector<double> block : blocks(89, -1.0, 2.0)) {
        const double val = data.word() % 5 == 0 ? 0.0 : data.pattern();
        digest.add(rvxdbDiv1(val, block.data(), static_cast<int>(block.size())));
        digest.add(block);
    }
}

RVX_DIGEST(rvxdbDiv2)
{
    const auto divisors = blocks(91, -1.0, 2.0);
    auto numerators = blocks(90, -1.0, 2.0);
    for (std::size_t i = 0; i < divisors.size(); ++i) {
        const int n = static_cast<int>(divisors[i].size());
        digest.add(rvxdbDiv2(divisors[i].data(), numerators[i].data(), n));
        digest.add(numerators[i]);
    }
}

RVX_DIGEST(rvxdbDiv3)
{
    const auto divisors = blocks(93, -1.0, 2.0), numerators = blocks(92, -1.0, 2.0);
    for (std::size_t i = 0; i < divisors.size(); ++i) {
        const int n = static_cast<int>(divisors[i].size());
        std::vector<double> result(divisors[i].size());
        digest.add(rvxdbDiv3(numerators[i].data(), divisors[i].data(), result.data(), n));
        digest.add(result);
    }
}
