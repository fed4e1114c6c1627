// Statistics, norms, dot products.

#include "digest.h"

namespace {

const int lengths[] = {1, 2, 3, 7, 8, 9, 16, 17, 31, 64, 100, 511, 513, 1030, 4096};

// Ordinary blocks, blocks that cancel, blocks of any bit pattern.
std::vector<std::vector<double>> blocks(std::uint64_t seed, int parts)
{
    std::vector<std::vector<double>> all;
    FixedData data(seed);
    for (int n : lengths) {
        all.push_back(data.samples(n * parts));
        std::vector<double> cancelling = data.samples(n * parts);
        for (std::size_t i = 1; i < cancelling.size(); i += 2)
            cancelling[i] = 0x1p-70 * cancelling[i] - cancelling[i - 1];
        all.push_back(cancelling);
        all.push_back(std::vector<double>(static_cast<std::size_t>(n * parts), 0.1));
        std::vector<double> patterns;
        for (int i = 0; i < n * parts; ++i)
            patterns.push_back(data.pattern());
        all.push_back(patterns);
    }
    return all;
}

const ZCplx *cplx(const std::vector<double> &parts)
{
    return reinterpret_cast<const ZCplx *>(parts.data());
}

int size(const std::vector<double> &block)
{
    return static_cast<int>(block.size());
}

void digestReal(Digest &digest, double (*function)(const double *, int))
{
    for (const auto &block : blocks(20, 1))
        digest.add(function(block.data(), size(block)));
}

} // namespace

RVX_DIGEST(rvxdDotProd)
{
    const auto a = blocks(21, 1), b = blocks(22, 1);
    for (std::size_t i = 0; i < a.size(); ++i)
        digest.add(rvxdDotProd(a[i].data(), b[i].data(), size(a[i])));
}

RVX_DIGEST(rvxzDotProd)
{
    const auto a = blocks(23, 2), b = blocks(24, 2);
    for (std::size_t i = 0; i < a.size(); ++i)
        digest.add(rvxzDotProd(cplx(a[i]), cplx(b[i]), size(a[i]) / 2));
}

RVX_DIGEST(rvxdzDotProd)
{
    const auto a = blocks(25, 1), b = blocks(26, 2);
    for (std::size_t i = 0; i < a.size(); ++i)
        digest.add(rvxdzDotProd(a[i].data(), cplx(b[i]), size(a[i])));
}

RVX_DIGEST(rvxzdDotProd)
{
    const auto a = blocks(27, 2), b = blocks(28, 1);
    for (std::size_t i = 0; i < a.size(); ++i)
        digest.add(rvxzdDotProd(cplx(a[i]), b[i].data(), size(b[i])));
}

RVX_DIGEST(rvxdMean)
{
    digestReal(digest, rvxdMean);
}

RVX_DIGEST(rvxdStdDev)
{
    digestReal(digest, rvxdStdDev);
}

RVX_DIGEST(rvxdMax)
{
    for (const auto &block : blocks(29, 1))
        digest.addBits(rvxdMax(block.data(), size(block)));
}

RVX_DIGEST(rvxdMin)
{
    for (const auto &block : blocks(30, 1))
        digest.addBits(rvxdMin(block.data(), size(block)));
}

RVX_DIGEST(rvxdMaxExt)
{
    for (const auto &block : blocks(31, 1)) {
        int position = -1;
        digest.addBits(rvxdMaxExt(block.data(), size(block), &position));
        digest.add(position);
    }
}

RVX_DIGEST(rvxdMinExt)
{
    for (const auto &block : blocks(32, 1)) {
        int position = -1;
        digest.addBits(rvxdMinExt(block.data(), size(block), &position));
        digest.add(position);
    }
}

namespace {

const int normFlags[] = {1, 2, 4, 16, 9, 10, 12, 24};

} // namespace

RVX_DIGEST(rvxdNorm)
{
    const auto a = blocks(33, 1), b = blocks(34, 1);
    for (std::size_t i = 0; i < a.size(); ++i) {
        for (int flag : normFlags) {
            digest.add(rvxdNorm(a[i].data(), b[i].data(), size(a[i]), flag));
            digest.add(rvxdNorm(a[i].data(), nullptr, size(a[i]), flag));
        }
    }
}

RVX_DIGEST(rvxzNorm)
{
    const auto a = blocks(35, 2), b = blocks(36, 2);
    for (std::size_t i = 0; i < a.size(); ++i) {
        for (int flag : normFlags) {
            digest.add(rvxzNorm(cplx(a[i]), cplx(b[i]), size(a[i]) / 2, flag));
            digest.add(rvxzNorm(cplx(a[i]), nullptr, size(a[i]) / 2, flag));
        }
    }
}

RVX_DIGEST(rvxdbNormalize)
{
    for (const auto &block : blocks(37, 1)) {
        std::vector<double> result(block.size());
        rvxdbNormalize(block.data(), result.data(), size(block), 0.3, 0.7);
        digest.add(result);
    }
}

RVX_DIGEST(rvxzbNormalize)
{
    for (const auto &block : blocks(38, 2)) {
        std::vector<ZCplx> result(block.size() / 2);
        rvxzbNormalize(cplx(block), result.data(), size(block) / 2, {0.3, -0.1}, 0.7);
        digest.add(result);
    }
}
