// Two-dimensional convolution, beside a direct loop that fuses products and sums and
// adds in any order, and beside overlap-save with two-dimensional transforms.

#include "compare.h"
#include "peer_conv2d.h"
#include "rvx.h"

#include <algorithm>
#include <chrono>
#include <complex>

#ifdef RVX_HAVE_FFTW
#include <fftw3.h>
#endif

namespace {

constexpr int imageSize = 512;

double *noise(int n)
{
    auto *values = new std::vector<double>(static_cast<std::size_t>(n)); // for good
    unsigned long long state = static_cast<unsigned long long>(n);
    for (double &value : *values) {
        state = state * 6364136223846793005ULL + 1442695040888963407ULL;
        value = static_cast<double>(static_cast<long long>(state) >> 11) * 0x1p-52;
    }
    return values->data();
}

std::string sizeOf(int kernelSize)
{
    const std::string k = std::to_string(kernelSize);
    return "512 x 512 with " + k + " x " + k;
}

#ifdef RVX_HAVE_FFTW

// The full convolution of the image by blocks of size * size values. The kernel's
// transform and the plans are ready before the clock starts.
class OverlapSave {
public:
    OverlapSave(const double *kernel, int kernelSize, int blockSize)
        : taps(kernelSize), size(blockSize),
          block(fftw_alloc_real(static_cast<std::size_t>(size * size))),
          spectrum(fftw_alloc_complex(static_cast<std::size_t>(bins()))),
          filter(static_cast<std::size_t>(bins()))
    {
        forward = fftw_plan_dft_r2c_2d(size, size, block, spectrum, FFTW_MEASURE);
        back = fftw_plan_dft_c2r_2d(size, size, spectrum, block, FFTW_MEASURE);
        std::fill_n(block, size * size, 0.0);
        for (int r = 0; r < taps; ++r)
            for (int c = 0; c < taps; ++c)
                block[r * size + c] = kernel[r * taps + c] / (size * size);
        fftw_execute(forward);
        const auto *bin = reinterpret_cast<std::complex<double> *>(spectrum);
        std::copy(bin, bin + bins(), filter.begin());
    }

    void convolve(const double *x, double *y)
    {
        const int outSize = imageSize + taps - 1;
        const int step = size - taps + 1;
        for (int row = 0; row < outSize; row += step)
            for (int col = 0; col < outSize; col += step) {
                load(x, row - taps + 1, col - taps + 1);
                fftw_execute(forward);
                multiply();
                fftw_execute(back);
                const int wide = std::min(step, outSize - col);
                for (int r = 0; r < std::min(step, outSize - row); ++r)
                    std::copy_n(block + (r + taps - 1) * size + taps - 1, wide,
                                y + (row + r) * outSize + col);
            }
    }

private:
    int bins() const { return size * (size / 2 + 1); }

    // The part of the image from (row, col) on, zeros around it.
    void load(const double *x, int row, int col)
    {
        const int left = std::max(0, -col), right = std::max(left, std::min(size, imageSize - col));
        for (int r = 0; r < size; ++r) {
            double *to = block + r * size;
            if (row + r < 0 || row + r >= imageSize) {
                std::fill_n(to, size, 0.0);
                continue;
            }
            std::fill(to, to + left, 0.0);
            const double *from = x + (row + r) * imageSize + col;
            std::copy(from + left, from + right, to + left);
            std::fill(to + right, to + size, 0.0);
        }
    }

    void multiply()
    {
        auto *bin = reinterpret_cast<double *>(spectrum);
        const auto *factor = reinterpret_cast<const double *>(filter.data());
        for (int k = 0; k < 2 * bins(); k += 2) {
            const double re = bin[k] * factor[k] - bin[k + 1] * factor[k + 1];
            bin[k + 1] = bin[k] * factor[k + 1] + bin[k + 1] * factor[k];
            bin[k] = re;
        }
    }

    int taps, size;
    double *block;
    fftw_complex *spectrum;
    std::vector<std::complex<double>> filter;
    fftw_plan forward, back;
};

#endif

void compareDirect(int kernelSize)
{
    const double *x = noise(imageSize * imageSize);
    const double *kernel = noise(kernelSize * kernelSize);
    const int outSize = imageSize + kernelSize - 1;
    double *y = noise(outSize * outSize);
    compare(
        "small kernels", sizeOf(kernelSize),
        {{"rvx", [=] { rvxdConv2D(x, imageSize, imageSize, kernel, kernelSize, kernelSize, y); }},
         {"fast loop", [=] { fast::convolve(x, imageSize, kernel, kernelSize, y); }}});
}

#ifdef RVX_HAVE_FFTW

// The one with the fastest block of those that suit the transforms.
OverlapSave *bestOverlapSave(const double *x, const double *kernel, int kernelSize, double *y)
{
    OverlapSave *best = nullptr;
    double bestTime = 0.0;
    for (int size : {96, 128, 160, 192, 240, 256, 288, 320, 384}) {
        auto *candidate = new OverlapSave(kernel, kernelSize, size); // for good
        for (int run = 0; run < 5; ++run) {
            const auto begin = std::chrono::steady_clock::now();
            candidate->convolve(x, y);
            const std::chrono::duration<double> time = std::chrono::steady_clock::now() - begin;
            if (best == nullptr || time.count() < bestTime) {
                best = candidate;
                bestTime = time.count();
            }
        }
    }
    return best;
}

#endif

void compareTransforms([[maybe_unused]] int kernelSize)
{
#ifdef RVX_HAVE_FFTW
    const double *x = noise(imageSize * imageSize);
    const double *kernel = noise(kernelSize * kernelSize);
    const int outSize = imageSize + kernelSize - 1;
    double *y = noise(outSize * outSize);
    OverlapSave *peer = bestOverlapSave(x, kernel, kernelSize, y);
    compare(
        "large kernels", sizeOf(kernelSize),
        {{"rvx", [=] { rvxdConv2D(x, imageSize, imageSize, kernel, kernelSize, kernelSize, y); }},
         {"FFTW", [=] { peer->convolve(x, y); }}});
#endif
}

} // namespace

void registerComparisons()
{
    compareDirect(3);
    compareDirect(7);
    limit("small kernels", 0.9,
          "A product and an addition for each coefficient, in the stated order; the loop fuses "
          "them. With 3 x 3 a tile of 32 outputs takes some 57 cycles: 36 for products and sums, "
          "about 45 for the 270 instructions around and with them.");
    compareTransforms(31);
    compareTransforms(64);
    limit(
        "large kernels", 2.5,
        "The transforms' size is fixed at twice to four times the kernel's, so that a quarter "
        "of each is image; the peer takes its best size, whose share is two to three times that.");
}
