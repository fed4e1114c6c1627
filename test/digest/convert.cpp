// Number conversions.

#include "digest.h"

namespace {

const int lengths[] = {1, 2, 7, 15, 16, 17, 33, 100, 1001};
const int roundings[] = {RVX_CVT_NEAREST, RVX_CVT_TRUNC, RVX_CVT_FLOOR, RVX_CVT_CEIL};
const int fates[] = {0, RVX_CVT_CLIP, RVX_CVT_REPORT, RVX_CVT_CLIP | RVX_CVT_REPORT};

// Numbers about the range of an integer; with any bits among them where what does not
// fit is saturated.
std::vector<double> numbersFor(FixedData &data, int n, int size, int fractBits, bool clip)
{
    std::vector<double> numbers = data.samples(n);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const double scale = static_cast<double>(std::uint64_t{1} << size) /
                             static_cast<double>(std::uint64_t{1} << fractBits);
        numbers[i] *= i % 5 == 0 ? 64.0 * scale : scale;
        if (clip && i % 7 == 3)
            numbers[i] = data.pattern();
    }
    return numbers;
}

// Call(src, dst, n, flags) to integers of type Int.
template <typename Int, typename Call>
void digestToInts(Digest &digest, int size, int fractBits, Call call)
{
    FixedData data(270 + static_cast<std::uint64_t>(size + fractBits));
    for (const int rounding : roundings)
        for (const int fate : fates)
            for (const int sign : {0, int{RVX_CVT_UNSIGNED}})
                for (const int n : lengths) {
                    const bool clip = (fate & RVX_CVT_CLIP) != 0;
                    const std::vector<double> src = numbersFor(data, n, size, fractBits, clip);
                    std::vector<Int> dst(src.size() + 1);
                    call(src.data(), dst.data(), n, rounding | fate | sign);
                    for (const Int element : dst)
                        digest.add(static_cast<int>(element));
                    digest.add(rvxGetErrStatus());
                }
    rvxSetErrStatus(RVX_STATUS_OK);
}

// Call(src, dst, n) from integers of type Int.
template <typename Int, typename Call>
void digestFromInts(Digest &digest, Call call)
{
    FixedData data(280);
    for (const int n : lengths) {
        std::vector<Int> src;
        src.reserve(static_cast<std::size_t>(n));
        for (int i = 0; i < n; ++i)
            src.push_back(static_cast<Int>(data.word()));
        src[0] = 0;
        std::vector<double> dst(src.size() + 1);
        call(src.data(), dst.data(), n);
        for (const double x : dst)
            digest.addBits(x);
    }
}

template <typename Int>
void digestVariable(Digest &digest, int size)
{
    for (int fractBits = 0; fractBits < size; fractBits += 5) {
        digestToInts<Int>(digest, size, fractBits, [=](const double *s, Int *d, int n, int flags) {
            rvxdbFloatToFix(s, d, n, size, fractBits, flags);
        });
    }
}

template <typename Int>
void digestIntegers(Digest &digest, int size)
{
    digestToInts<Int>(digest, size, 0, [=](const double *s, Int *d, int n, int flags) {
        rvxdbFloatToInt(s, d, n, size, flags);
    });
}

} // namespace

RVX_DIGEST(rvxdbFloatToInt)
{
    digestIntegers<signed char>(digest, 8);
    digestIntegers<short>(digest, 16);
    digestIntegers<int>(digest, 32);
}

RVX_DIGEST(rvxdbFloatToFix)
{
    digestVariable<signed char>(digest, 8);
    digestVariable<short>(digest, 16);
    digestVariable<int>(digest, 32);
}

RVX_DIGEST(rvxdbFloatToS7Fix)
{
    digestToInts<signed char>(digest, 8, 7, rvxdbFloatToS7Fix);
}

RVX_DIGEST(rvxdbFloatToS15Fix)
{
    digestToInts<short>(digest, 16, 15, rvxdbFloatToS15Fix);
}

RVX_DIGEST(rvxdbFloatToS31Fix)
{
    digestToInts<int>(digest, 32, 31, rvxdbFloatToS31Fix);
}

RVX_DIGEST(rvxdbFloatToS1516Fix)
{
    digestToInts<int>(digest, 32, 16, rvxdbFloatToS1516Fix);
}

RVX_DIGEST(rvxdbIntToFloat)
{
    for (const int sign : {0, int{RVX_CVT_UNSIGNED}}) {
        digestFromInts<signed char>(digest, [=](const signed char *s, double *d, int n) {
            rvxdbIntToFloat(s, d, n, 8, sign);
        });
        digestFromInts<short>(
            digest, [=](const short *s, double *d, int n) { rvxdbIntToFloat(s, d, n, 16, sign); });
        digestFromInts<int>(
            digest, [=](const int *s, double *d, int n) { rvxdbIntToFloat(s, d, n, 32, sign); });
    }
}

RVX_DIGEST(rvxdbFixToFloat)
{
    for (const int sign : {0, int{RVX_CVT_UNSIGNED}})
        for (int fractBits = 0; fractBits < 8; ++fractBits) {
            digestFromInts<signed char>(digest, [=](const signed char *s, double *d, int n) {
                rvxdbFixToFloat(s, d, n, 8, fractBits, sign);
            });
            digestFromInts<short>(digest, [=](const short *s, double *d, int n) {
                rvxdbFixToFloat(s, d, n, 16, 2 * fractBits, sign);
            });
            digestFromInts<int>(digest, [=](const int *s, double *d, int n) {
                rvxdbFixToFloat(s, d, n, 32, 4 * fractBits, sign);
            });
        }
}

RVX_DIGEST(rvxdbS7FixToFloat)
{
    digestFromInts<signed char>(digest, rvxdbS7FixToFloat);
}

RVX_DIGEST(rvxdbS15FixToFloat)
{
    digestFromInts<short>(digest, rvxdbS15FixToFloat);
}

RVX_DIGEST(rvxdbS31FixToFloat)
{
    digestFromInts<int>(digest, rvxdbS31FixToFloat);
}

RVX_DIGEST(rvxdbS1516FixToFloat)
{
    digestFromInts<int>(digest, rvxdbS1516FixToFloat);
}
