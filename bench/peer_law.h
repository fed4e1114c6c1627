// Companding by tables: 64 KB for coding, 256 doubles for decoding.

#ifndef RVX_BENCH_PEER_LAW_H
#define RVX_BENCH_PEER_LAW_H

void loopEncode(const double *src, unsigned char *dst, int n, const unsigned char *table);
// As the compiler likes it, which may be by gathers, and with a load for each sample.
void loopDecode(const unsigned char *src, double *dst, int n, const double *table);
void lookUp(const unsigned char *src, double *dst, int n, const double *table);

#endif
