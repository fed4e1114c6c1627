// Block fill, copy and arithmetic, beside Eigen and the compiler's own loops.

#include "compare.h"
#include "peer_arith.h"

namespace {

// The arrays that all contenders of one size work on, as an allocator gives them.
// Multiplied in place over and over, values of magnitude 1 stay what they are.
struct Blocks {
    explicit Blocks(int n)
        : a(static_cast<std::size_t>(n), 1.0), b(a), dst(a),
          za(static_cast<std::size_t>(n), ZCplx{0.0, 1.0}), zb(za), zdst(za)
    {
    }
    std::vector<double> a, b, dst;
    std::vector<ZCplx> za, zb, zdst;
};

template <typename Ours, typename Loop, typename Fast>
void row(const char *task, int n, Ours ours, Loop plain, Fast eigen)
{
    std::vector<Contender> contenders = {{"rvx", ours}, {"loop", plain}};
#ifdef RVX_HAVE_EIGEN
    contenders.push_back({"Eigen", eigen});
#else
    (void)eigen;
#endif
    compare(task, std::to_string(n), contenders);
}

// A row of calls that differ in their names alone.
#define ROW(task, ours, peer, ...)                                                                 \
    row(                                                                                           \
        task, n, [=] { ours(__VA_ARGS__, n); }, [=] { loop::peer(__VA_ARGS__, n); },               \
        [=] { fast::peer(__VA_ARGS__, n); })

void compareAt(int n)
{
    auto *blocks = new Blocks(n); // lives as long as the program
    double *a = blocks->a.data(), *b = blocks->b.data(), *dst = blocks->dst.data();
    ZCplx *za = blocks->za.data(), *zb = blocks->zb.data(), *zdst = blocks->zdst.data();
    const ZCplx unit{0.0, 1.0};

    row(
        "fill with 0", n, [=] { rvxdbZero(dst, n); }, [=] { loop::fill(0.0, dst, n); },
        [=] { fast::fill(0.0, dst, n); });
    ROW("fill, real", rvxdbSet, fill, 1.5, dst);
    ROW("fill, complex", rvxzbSet, fill, unit, zdst);
    ROW("copy, real", rvxdbCopy, copy, a, dst);
    ROW("block + scalar, real", rvxdbAdd1, add1, 1.0, dst);
    ROW("block + block in place, real", rvxdbAdd2, add2, a, dst);
    ROW("block + block, real", rvxdbAdd3, add3, a, b, dst);
    ROW("block * scalar, real", rvxdbMpy1, mpy1, 1.0, dst);
    ROW("block * block in place, real", rvxdbMpy2, mpy2, a, dst);
    ROW("block * block, real", rvxdbMpy3, mpy3, a, b, dst);
    ROW("block + scalar, complex", rvxzbAdd1, add1, unit, zdst);
    ROW("block * scalar, complex", rvxzbMpy1, mpy1, unit, zdst);
    ROW("block * block in place, complex", rvxzbMpy2, mpy2, za, zdst);
    ROW("block * block, complex", rvxzbMpy3, mpy3, za, zb, zdst);
}

} // namespace

void registerComparisons()
{
    const char *memory = "One aligned 32-byte store a cycle in the first cache, bandwidth beyond.";
    for (const char *task :
         {"fill with 0", "fill, real", "fill, complex", "copy, real", "block + scalar, real",
          "block + block in place, real", "block + block, real", "block * scalar, real",
          "block * block in place, real", "block * block, real", "block + scalar, complex"})
        limit(task, 1.05, memory);
    const char *products = "Loads and stores. The loop may fuse products and sums, which changes "
                           "results: three operations a pair of values for our four.";
    for (const char *task :
         {"block * scalar, complex", "block * block in place, complex", "block * block, complex"})
        limit(task, 1.0, products);
    for (int n : {256, 4096, 65536, 1000000})
        compareAt(n);
}
