// The peers of the statistics: loops as the compiler makes them with fast-math,
// and Eigen's reductions.

#ifndef RVX_BENCH_PEER_STATS_H
#define RVX_BENCH_PEER_STATS_H

double loopMean(const double *x, int n);
double loopDeviation(const double *x, int n);
double loopL1(const double *x, int n);
double loopL2(const double *x, int n);
double loopLargest(const double *x, int n);
double loopMax(const double *x, int n);
void loopNormalize(const double *x, double *y, int n, double offset, double factor);

double eigenMean(const double *x, int n);
double eigenDeviation(const double *x, int n);
double eigenL1(const double *x, int n);
double eigenL2(const double *x, int n);
double eigenLargest(const double *x, int n);
double eigenMax(const double *x, int n);
double eigenMaxPosition(const double *x, int n);
double eigenMinPosition(const double *x, int n);
void eigenNormalize(const double *x, double *y, int n, double offset, double factor);

// Compiled without fast-math.
double extendedDot(const double *a, const double *b, int n);
double loopMaxPosition(const double *x, int n);
double loopMinPosition(const double *x, int n);

#endif
