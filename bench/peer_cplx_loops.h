// The loops, compiled twice with different flags, each time inside a namespace.

void conjugate(ZCplx *vec, int n)
{
    for (int i = 0; i < n; ++i)
        vec[i].im = -vec[i].im;
}

void conjugate(const ZCplx *__restrict src, ZCplx *__restrict dst, int n)
{
    for (int i = 0; i < n; ++i)
        dst[i] = {src[i].re, -src[i].im};
}

void flip(const ZCplx *__restrict src, ZCplx *__restrict dst, int n)
{
    for (int i = 0; i < n; ++i)
        dst[n - 1 - i] = {src[i].re, -src[i].im};
}

void extend(const ZCplx *__restrict src, ZCplx *__restrict dst, int n)
{
    for (int i = 0; i < n; ++i)
        dst[i] = src[i];
    for (int i = 1; i <= n - 2; ++i)
        dst[2 * n - 2 - i] = {src[i].re, -src[i].im};
}

void real(const ZCplx *__restrict src, double *__restrict dst, int n)
{
    for (int i = 0; i < n; ++i)
        dst[i] = src[i].re;
}

void imag(const ZCplx *__restrict src, double *__restrict dst, int n)
{
    for (int i = 0; i < n; ++i)
        dst[i] = src[i].im;
}

void takeApart(const ZCplx *__restrict src, double *__restrict re, double *__restrict im, int n)
{
    for (int i = 0; i < n; ++i) {
        re[i] = src[i].re;
        im[i] = src[i].im;
    }
}

void join(const double *__restrict re, const double *__restrict im, ZCplx *__restrict dst, int n)
{
    for (int i = 0; i < n; ++i)
        dst[i] = {re[i], im[i]};
}

void power(const ZCplx *__restrict src, double *__restrict dst, int n)
{
    for (int i = 0; i < n; ++i)
        dst[i] = src[i].im * src[i].im + src[i].re * src[i].re;
}

void magnitude(const ZCplx *__restrict src, double *__restrict dst, int n)
{
    for (int i = 0; i < n; ++i)
        dst[i] = std::sqrt(src[i].im * src[i].im + src[i].re * src[i].re);
}

void phase(const ZCplx *__restrict src, double *__restrict dst, int n)
{
    for (int i = 0; i < n; ++i)
        dst[i] = std::atan2(src[i].im, src[i].re);
}

void toPolar(const ZCplx *__restrict src, double *__restrict mag, double *__restrict phase, int n)
{
    for (int i = 0; i < n; ++i) {
        mag[i] = std::sqrt(src[i].im * src[i].im + src[i].re * src[i].re);
        phase[i] = std::atan2(src[i].im, src[i].re);
    }
}

// Without promises about overlap on purpose: with them the compiler makes one call of
// both functions, which it then cannot vectorise.
void toCart(const double *mag, const double *phase, ZCplx *dst, int n)
{
    for (int i = 0; i < n; ++i) {
        dst[i].re = std::cos(phase[i]) * mag[i];
        dst[i].im = std::sin(phase[i]) * mag[i];
    }
}
