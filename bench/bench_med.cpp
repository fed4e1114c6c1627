// Running median, beside networks that the compiler makes vectors of and beside
// the GNU Scientific Library's filter.

#include <algorithm>

#include "compare.h"
#include "peer_med.h"
#include "rvx.h"

#ifdef RVX_HAVE_GSL
#include <gsl/gsl_filter.h>
#endif

namespace {

constexpr int RVX_LEN = 4096;

void compareNetwork(int mask, void (*network)(const double *, double *, int), const double *x)
{
    auto *out = new std::vector<double>(RVX_LEN);
    double *y = out->data();
    compare("median of noise", "mask " + std::to_string(mask),
            {{"rvx", [=] { rvxdbMedianFilter2(x, y, RVX_LEN, mask); }},
             {"loop", [=] { network(x, y, RVX_LEN); }}});
    // The same block filtered over and over: no time depends on what it has become.
    auto *block = new std::vector<double>(x, x + RVX_LEN);
    double *inout = block->data();
    compare("median of noise, in place", "mask " + std::to_string(mask),
            {{"rvx", [=] { rvxdbMedianFilter1(inout, RVX_LEN, mask); }},
             {"loop", [=] { network(x, y, RVX_LEN); }}});
}

#ifdef RVX_HAVE_GSL
void compareWide(const std::string &task, int mask, const double *x)
{
    auto *out = new std::vector<double>(RVX_LEN);
    double *y = out->data();
    auto *workspace = gsl_filter_median_alloc(static_cast<std::size_t>(mask));
    compare(task, "mask " + std::to_string(mask),
            {{"rvx", [=] { rvxdbMedianFilter2(x, y, RVX_LEN, mask); }},
             {"GSL", [=] {
                  const auto in = gsl_vector_const_view_array(x, RVX_LEN);
                  auto to = gsl_vector_view_array(y, RVX_LEN);
                  gsl_filter_median(GSL_FILTER_END_PADVALUE, &in.vector, &to.vector, workspace);
              }}});
}
#endif

} // namespace

void registerComparisons()
{
    auto *noise = new std::vector<double>;
    auto *ramp = new std::vector<double>;
    unsigned long long state = 1;
    for (int i = 0; i < RVX_LEN; ++i) {
        state = state * 6364136223846793005ULL + 1442695040888963407ULL;
        noise->push_back(static_cast<double>(state >> 11) * 0x1p-53);
        ramp->push_back(i + 10.0 * noise->back());
    }
    compareNetwork(3, loop::median3, noise->data());
    compareNetwork(5, loop::median5, noise->data());
    compareNetwork(9, loop::median9, noise->data());
#ifdef RVX_HAVE_GSL
    for (int mask : {31, 101})
        compareWide("wide median of noise", mask, noise->data());
    for (int mask : {301, 1001})
        compareWide("very wide median of noise", mask, noise->data());
    for (int mask : {31, 101, 301, 1001})
        compareWide("wide median of a noisy ramp", mask, ramp->data());
#endif
    limit("median of noise", 1.1, "minima and maxima of two pipes");
    limit("median of noise, in place", 1.1, "as not in place");
    limit("very wide median of noise", 0.4, "one sort of the samples, and a slide of bits");
    limit("wide median of noise", 0.4,
          "a comparison, a choice, a minimum and a maximum per place of four sorted windows");
}
