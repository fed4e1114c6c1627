// Filtering an image of 512 by 512, beside OpenCV's filter2D and overlap-save with
// FFTW at its best block size.

#include "compare.h"
#include "rvx.h"

#include <algorithm>
#include <chrono>
#include <complex>
#include <cstring>
#include <memory>
#include <new>

#ifdef RVX_HAVE_FFTW
#include <fftw3.h>
#endif
#ifdef RVX_HAVE_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace {

constexpr int imageSide = 512;

struct Release {
    void operator()(double *p) const { operator delete[](p, std::align_val_t{64}); }
};

using Samples = std::shared_ptr<double>;

Samples noise(int n)
{
    const auto count = static_cast<std::size_t>(n);
    auto *p = static_cast<double *>(operator new[](sizeof(double) * count, std::align_val_t{64}));
    unsigned long long state = count;
    for (std::size_t i = 0; i < count; ++i) {
        state = state * 6364136223846793005ULL + 1442695040888963407ULL;
        p[i] = static_cast<double>(static_cast<long long>(state) >> 11) * 0x1p-52;
    }
    return Samples(p, Release{});
}

// One image, one kernel, and a place for the result: every contender has its own.
struct Task {
    explicit Task(int kernelSide)
        : side(kernelSide), x(noise(imageSide * imageSide)), h(noise(side * side)),
          y(noise(imageSide * imageSide))
    {
    }
    int side;
    Samples x, h, y;
};

Contender ours(const Task &task)
{
    return {"rvx", [task] {
                rvxdFilter2D(task.x.get(), imageSide, imageSide, task.h.get(), task.side, task.side,
                             task.y.get());
                escape(task.y.get());
            }};
}

#ifdef RVX_HAVE_OPENCV
// OpenCV correlates: it is given the turned kernel, which the call does not cost.
Contender openCv(const Task &task)
{
    std::reverse(task.h.get(), task.h.get() + task.side * task.side);
    cv::setNumThreads(1);
    return {"OpenCV", [task] {
                const cv::Mat x(imageSide, imageSide, CV_64F, task.x.get());
                const cv::Mat h(task.side, task.side, CV_64F, task.h.get());
                cv::Mat y(imageSide, imageSide, CV_64F, task.y.get());
                const int anchor = (task.side - 1) / 2;
                cv::filter2D(x, y, CV_64F, h, {anchor, anchor}, 0, cv::BORDER_CONSTANT);
                escape(task.y.get());
            }};
}
#endif

#ifdef RVX_HAVE_FFTW
struct FftwRelease {
    void operator()(void *p) const { fftw_free(p); }
};

// Blocks of side by side values, by real transforms of two dimensions. The plans are
// ready; the kernel's transform belongs to the call, as it does to ours.
class OverlapSave {
public:
    OverlapSave(Task what, int blockSide)
        : task(std::move(what)), side(blockSide), bins(side * (side / 2 + 1)),
          block(fftw_alloc_real(static_cast<std::size_t>(side * side)), FftwRelease{}),
          tile(fftw_alloc_complex(static_cast<std::size_t>(bins)), FftwRelease{}),
          filter(fftw_alloc_complex(static_cast<std::size_t>(bins)), FftwRelease{}),
          forward(fftw_plan_dft_r2c_2d(side, side, block.get(), tile.get(), FFTW_MEASURE)),
          back(fftw_plan_dft_c2r_2d(side, side, tile.get(), block.get(), FFTW_MEASURE))
    {
    }
    ~OverlapSave()
    {
        fftw_destroy_plan(forward);
        fftw_destroy_plan(back);
    }
    OverlapSave(const OverlapSave &) = delete;
    OverlapSave &operator=(const OverlapSave &) = delete;

    void run()
    {
        const int taps = task.side;
        const int step = side - taps + 1;
        const int before = taps - 1 - taps / 2;
        std::fill_n(block.get(), side * side, 0.0);
        for (int r = 0; r < taps; ++r)
            for (int c = 0; c < taps; ++c)
                block.get()[r * side + c] = task.h.get()[r * taps + c] / (side * side);
        fftw_execute_dft_r2c(forward, block.get(), filter.get());
        for (int row = 0; row < imageSide; row += step)
            for (int col = 0; col < imageSide; col += step) {
                load(row - before, col - before);
                fftw_execute(forward);
                multiply();
                fftw_execute(back);
                const int wide = std::min(step, imageSide - col);
                for (int r = 0; r < std::min(step, imageSide - row); ++r)
                    std::memcpy(task.y.get() + (row + r) * imageSide + col,
                                block.get() + (r + taps - 1) * side + taps - 1,
                                static_cast<std::size_t>(wide) * sizeof(double));
            }
        escape(task.y.get());
    }

private:
    void load(int row, int col)
    {
        const int left = std::max(0, -col);
        const int right = std::max(left, std::min(side, imageSide - col));
        const bool whole = row >= 0 && row + side <= imageSide && right - left == side;
        if (!whole)
            std::fill_n(block.get(), side * side, 0.0);
        for (int r = std::max(0, -row); r < std::min(side, imageSide - row); ++r)
            std::memcpy(block.get() + r * side + left,
                        task.x.get() + (row + r) * imageSide + col + left,
                        static_cast<std::size_t>(right - left) * sizeof(double));
    }

    void multiply()
    {
        auto *bin = reinterpret_cast<double *>(tile.get());
        const auto *factor = reinterpret_cast<const double *>(filter.get());
        for (int k = 0; k < 2 * bins; k += 2) {
            const double re = bin[k] * factor[k] - bin[k + 1] * factor[k + 1];
            bin[k + 1] = bin[k] * factor[k + 1] + bin[k + 1] * factor[k];
            bin[k] = re;
        }
    }

    Task task;
    int side;
    int bins;
    std::unique_ptr<double, FftwRelease> block;
    std::unique_ptr<fftw_complex, FftwRelease> tile;
    std::unique_ptr<fftw_complex, FftwRelease> filter;
    fftw_plan forward;
    fftw_plan back;
};

// The block side that takes the least time, each tried five times.
std::shared_ptr<OverlapSave> bestOverlapSave(const Task &task)
{
    std::shared_ptr<OverlapSave> best;
    auto bestTime = std::chrono::steady_clock::duration::max();
    for (int side : {64, 80, 96, 128, 144, 160, 180, 192, 216, 256, 320, 384, 480, 512, 576, 640}) {
        if (side < 2 * task.side)
            continue;
        auto tried = std::make_shared<OverlapSave>(task, side);
        tried->run();
        for (int round = 0; round < 5; ++round) {
            const auto start = std::chrono::steady_clock::now();
            tried->run();
            const auto time = std::chrono::steady_clock::now() - start;
            if (time < bestTime) {
                bestTime = time;
                best = tried;
            }
        }
    }
    return best;
}

Contender fftw(const Task &task)
{
    const std::shared_ptr<OverlapSave> overlapSave = bestOverlapSave(task);
    return {"FFTW", [overlapSave] { overlapSave->run(); }};
}
#endif

std::string sizeOf(int side)
{
    return "512 x 512 with " + std::to_string(side) + " x " + std::to_string(side);
}

} // namespace

void registerComparisons()
{
    for ([[maybe_unused]] int side : {3, 7}) {
#ifdef RVX_HAVE_OPENCV
        compare("small kernels", sizeOf(side), {ours(Task(side)), openCv(Task(side))});
#else
        compare("small kernels", sizeOf(side), {ours(Task(side))});
#endif
    }
    for ([[maybe_unused]] int side : {31, 64}) {
#ifdef RVX_HAVE_FFTW
        compare("large kernels beside blocks of the best size", sizeOf(side),
                {ours(Task(side)), fftw(Task(side))});
#endif
#ifdef RVX_HAVE_OPENCV
        compare("large kernels beside OpenCV", sizeOf(side),
                {ours(Task(side)), openCv(Task(side))});
#endif
    }
    limit("small kernels", 0.8,
          "loads: one for two products and two sums, which keep their order, and every second "
          "load crosses a cache line");
    limit("large kernels beside blocks of the best size", 1.6,
          "the fixed side of a block, twice the power of two not below the kernel's: 28 % of a "
          "block of 64 x 64 are results, of the peer's 160 x 160 are 66 %; the passes run at "
          "the rate of their additions");
    limit("large kernels beside OpenCV", 0.6, "the same");
}
