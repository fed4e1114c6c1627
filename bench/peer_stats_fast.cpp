#include "peer_stats.h"

#include <algorithm>
#include <cmath>

#ifdef RVX_HAVE_EIGEN
#include <Eigen/Core>
#endif

double loopMean(const double *x, int n)
{
    double sum = 0.0;
    for (int i = 0; i < n; ++i)
        sum += x[i];
    return sum / n;
}

// Two passes, as textbooks advise for double precision.
double loopDeviation(const double *x, int n)
{
    const double mean = loopMean(x, n);
    double sum = 0.0;
    for (int i = 0; i < n; ++i)
        sum += (x[i] - mean) * (x[i] - mean);
    return std::sqrt(sum / (n - 1));
}

double loopL1(const double *x, int n)
{
    double sum = 0.0;
    for (int i = 0; i < n; ++i)
        sum += std::fabs(x[i]);
    return sum;
}

double loopL2(const double *x, int n)
{
    double sum = 0.0;
    for (int i = 0; i < n; ++i)
        sum += x[i] * x[i];
    return std::sqrt(sum);
}

double loopLargest(const double *x, int n)
{
    double largest = 0.0;
    for (int i = 0; i < n; ++i)
        largest = std::max(largest, std::fabs(x[i]));
    return largest;
}

double loopMax(const double *x, int n)
{
    double largest = x[0];
    for (int i = 1; i < n; ++i)
        largest = std::max(largest, x[i]);
    return largest;
}

void loopNormalize(const double *x, double *y, int n, double offset, double factor)
{
    const double r = 1.0 / factor;
    for (int i = 0; i < n; ++i)
        y[i] = (x[i] - offset) * r;
}

#ifdef RVX_HAVE_EIGEN

namespace {

Eigen::Map<const Eigen::ArrayXd> array(const double *x, int n)
{
    return {x, n};
}

} // namespace

double eigenMean(const double *x, int n)
{
    return array(x, n).mean();
}

double eigenDeviation(const double *x, int n)
{
    const auto a = array(x, n);
    return std::sqrt((a - a.mean()).square().sum() / (n - 1));
}

double eigenL1(const double *x, int n)
{
    return array(x, n).abs().sum();
}

double eigenL2(const double *x, int n)
{
    return array(x, n).matrix().norm();
}

double eigenLargest(const double *x, int n)
{
    return array(x, n).abs().maxCoeff();
}

double eigenMax(const double *x, int n)
{
    return array(x, n).maxCoeff();
}

double eigenMaxPosition(const double *x, int n)
{
    Eigen::Index position = 0;
    const double largest = array(x, n).maxCoeff(&position);
    return largest + static_cast<double>(position);
}

double eigenMinPosition(const double *x, int n)
{
    Eigen::Index position = 0;
    const double smallest = array(x, n).minCoeff(&position);
    return smallest + static_cast<double>(position);
}

void eigenNormalize(const double *x, double *y, int n, double offset, double factor)
{
    Eigen::Map<Eigen::ArrayXd>(y, n) = (array(x, n) - offset) * (1.0 / factor);
}

#endif
