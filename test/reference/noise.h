// The noise generators a second time: integers as wide numbers taken modulo 2^32 by
// hand, one sample at a time, straight from the steps.

#ifndef RVX_TEST_NOISE_H
#define RVX_TEST_NOISE_H

#include <cmath>
#include <cstdint>
#include <cstring>

namespace reference {

constexpr std::int64_t WORDS = INT64_C(1) << 32;

inline std::int64_t modWords(std::int64_t a)
{
    const std::int64_t rest = a % WORDS;
    return rest < 0 ? rest + WORDS : rest;
}

inline std::int64_t withSign(std::int64_t word)
{
    return word >= WORDS / 2 ? word - WORDS : word;
}

inline std::int64_t seedWord(double seed)
{
    std::uint64_t bits;
    std::memcpy(&bits, &seed, sizeof bits);
    const auto field = static_cast<int>(bits / (UINT64_C(1) << 52));
    const bool negative = field >= 2048;
    const int exponent = field % 2048;
    if (exponent < 1023)
        return 0;
    const auto significand =
        static_cast<std::int64_t>(bits % (UINT64_C(1) << 52)) + (INT64_C(1) << 52);
    std::int64_t word = significand / (INT64_C(1) << 21);
    const int shift = (1054 - exponent) % 32;
    for (int i = 0; i < (shift < 0 ? shift + 32 : shift); ++i)
        word /= 2;
    return modWords(negative ? -word : word);
}

// The words under both kinds of noise, as wide numbers from 0 to 2^32 - 1.
struct Words {
    std::int64_t cong = 1131199209, carry = 0, x1 = 0, x2 = 0, x3 = 0, seedInit = 0;

    void plant(double seed)
    {
        x1 = seedWord(seed);
        seedInit = x1;
        x2 = drawn();
        x3 = drawn();
    }
    std::int64_t drawn()
    {
        seedInit = modWords(seedInit * 214013 + 2531011);
        return seedInit / 65536 % 32768;
    }
    std::int64_t nextSigned()
    {
        std::int64_t t = withSign(modWords(x2 - (x3 + carry)));
        carry = 0;
        if (t <= 0) {
            t -= 18;
            carry = 1;
        }
        x3 = x2;
        x2 = x1;
        x1 = modWords(t);
        cong = modWords(cong * 69069 + 1013904243);
        return withSign(modWords(t + cong));
    }
};

struct Uniform : Words {
    double mean, scale;

    Uniform(double seed, double low, double high)
    {
        const volatile double span = high - low;
        const volatile double half = 0.5 * span;
        mean = low + half;
        scale = span * 2.328306436539e-10;
        plant(seed);
        for (int i = 0; i < 5; ++i)
            next();
    }
    double next()
    {
        const volatile double scaled = static_cast<double>(nextSigned()) * scale;
        return scaled + mean;
    }
};

// `ln` is the logarithm to take.
struct Gaussian : Words {
    double mean, stDev, spare = 0.0;
    bool haveSpare = false;
    double (*ln)(double);

    Gaussian(double seed, double theMean, double theDeviation, double (*theLogarithm)(double))
        : mean(theMean), stDev(theDeviation), ln(theLogarithm)
    {
        carry = 1;
        plant(seed);
    }
    double next()
    {
        if (haveSpare) {
            haveSpare = false;
            return spare;
        }
        haveSpare = true;
        for (;;) {
            // Both differences at once, the second with the borrow of the first.
            std::int64_t a = withSign(modWords(x2 - (x3 + carry)));
            carry = a <= 0 ? 1 : 0;
            a -= 18 * carry;
            std::int64_t b = withSign(modWords(x1 - (x2 + carry)));
            carry = b <= 0 ? 1 : 0;
            b -= 18 * carry;
            x3 = x1;
            x2 = modWords(a);
            x1 = modWords(b);
            const std::int64_t c1 = modWords(cong * 69069 + 1013904243);
            const std::int64_t c2 = modWords(c1 * 69069 + 1013904243);
            cong = c2;
            const volatile double u =
                static_cast<double>(withSign(modWords(a + c1))) * 4.656612873077e-10;
            const volatile double v =
                static_cast<double>(withSign(modWords(b + c2))) * 4.656612873077e-10;
            const volatile double uu = u * u, vv = v * v;
            const volatile double w = uu + vv;
            if (w >= 1.0 || w == 0.0)
                continue;
            const volatile double doubled = 2.0 * ln(w);
            const volatile double quotient = -doubled / w;
            const volatile double wide = stDev * std::sqrt(quotient);
            const volatile double second = wide * u, first = wide * v;
            spare = second + mean;
            return first + mean;
        }
    }
};

} // namespace reference

#endif
