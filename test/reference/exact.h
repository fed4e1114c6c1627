// Exact sums and products of doubles: a long row of 32-bit digits that covers every
// exponent a product of two doubles can have. Slow and plain.

#ifndef RVX_TEST_EXACT_H
#define RVX_TEST_EXACT_H

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>

class Exact {
public:
    Exact() { digits.fill(0); }
    explicit Exact(double x) : Exact() { add(x); }

    Exact &add(double x) { return addProduct(x, 1.0); }
    Exact &addProduct(double a, double b)
    {
        int expA, expB;
        const double fracA = std::frexp(a, &expA), fracB = std::frexp(b, &expB);
        const auto intA = static_cast<std::int64_t>(std::ldexp(fracA, 53));
        const auto intB = static_cast<std::int64_t>(std::ldexp(fracB, 53));
        if (intA == 0 || intB == 0)
            return *this;
        const bool negative = (intA < 0) != (intB < 0);
        __extension__ typedef unsigned __int128 Wide;
        Wide product = static_cast<Wide>(std::abs(intA)) * static_cast<Wide>(std::abs(intB));
        const int position = expA + expB - 106 + 32 * offset;
        int digit = position / 32;
        // 106 bits, shifted by up to 31, in five digits.
        const int shift = position % 32;
        std::uint64_t carried = 0;
        for (; product != 0 || carried != 0; ++digit, product >>= 32) {
            carried += (static_cast<std::uint64_t>(product) & 0xffffffffU) << shift;
            const auto part = static_cast<std::int64_t>(carried & 0xffffffffU);
            digits.at(static_cast<std::size_t>(digit)) += negative ? -part : part;
            carried >>= 32;
        }
        return *this;
    }
    Exact &add(const Exact &other)
    {
        settle();
        other.settle();
        for (std::size_t i = 0; i < size; ++i)
            digits[i] += other.digits[i];
        settle();
        return *this;
    }
    Exact negated() const
    {
        settle();
        Exact result;
        for (std::size_t i = 0; i < size; ++i)
            result.digits[i] = -digits[i];
        result.settle();
        return result;
    }
    Exact operator-(const Exact &other) const { return Exact(*this).add(other.negated()); }
    Exact operator*(const Exact &other) const
    {
        settle();
        other.settle();
        if (sign() < 0)
            return (negated() * other).negated();
        if (other.sign() < 0)
            return (*this * other.negated()).negated();
        Exact result;
        for (std::size_t i = 0; i < size; ++i) {
            for (std::size_t j = 0; digits[i] != 0 && j < size; ++j) {
                const std::uint64_t product = static_cast<std::uint64_t>(digits[i]) *
                                              static_cast<std::uint64_t>(other.digits[j]);
                if (product == 0)
                    continue;
                const std::size_t at = i + j - offset;
                result.digits.at(at) += static_cast<std::int64_t>(product & 0xffffffffU);
                result.digits.at(at + 1) += static_cast<std::int64_t>(product >> 32);
            }
            result.settle();
        }
        return result;
    }

    // -1, 0, 1
    int sign() const
    {
        settle();
        if (digits[size - 1] < 0)
            return -1;
        for (std::int64_t digit : digits)
            if (digit != 0)
                return 1;
        return 0;
    }
    Exact magnitude() const { return sign() < 0 ? negated() : *this; }
    bool operator<(const Exact &other) const { return (*this - other).sign() < 0; }
    bool operator==(const Exact &other) const { return (*this - other).sign() == 0; }

    // Near, for a first guess.
    double near() const
    {
        if (sign() < 0)
            return -negated().near();
        long double sum = 0;
        for (std::size_t i = 0; i < size; ++i)
            sum += std::ldexp(static_cast<long double>(digits[i]),
                              32 * (static_cast<int>(i) - offset));
        return static_cast<double>(sum);
    }

private:
    static constexpr std::size_t size = 160;
    static constexpr int offset = 70; // 2^-2240 and up

    // Brings every digit but the last into 0 .. 2^32 - 1. Until then each takes 2^31
    // additions.
    void settle() const
    {
        std::int64_t carry = 0;
        for (std::size_t i = 0; i < size; ++i) {
            const std::int64_t digit = digits[i] + carry;
            carry = digit >> 32;
            digits[i] = i + 1 < size ? digit & 0xffffffff : digit;
        }
    }

    mutable std::array<std::int64_t, size> digits;
};

// |x * denominator - numerator|: how far x is from the quotient, times denominator.
inline Exact distance(double x, const Exact &numerator, const Exact &denominator)
{
    return (Exact(x) * denominator - numerator).magnitude();
}

// The double nearest to numerator / denominator; of two, the even one. The quotient
// is within the range of normal doubles.
inline double nearest(const Exact &numerator, const Exact &denominator = Exact(1.0))
{
    if (numerator.sign() == 0)
        return 0.0;
    const double infinity = std::numeric_limits<double>::infinity();
    double best = static_cast<double>(static_cast<long double>(numerator.near()) /
                                      static_cast<long double>(denominator.near()));
    best = std::nextafter(std::nextafter(best, -infinity), -infinity);
    Exact bestDistance = distance(best, numerator, denominator);
    double candidate = best;
    for (int i = 0; i < 4; ++i) {
        candidate = std::nextafter(candidate, infinity);
        const Exact candidateDistance = distance(candidate, numerator, denominator);
        int exponent;
        const bool even = std::fmod(std::ldexp(std::frexp(candidate, &exponent), 53), 2.0) == 0.0;
        if (candidateDistance < bestDistance || (even && candidateDistance == bestDistance)) {
            best = candidate;
            bestDistance = candidateDistance;
        }
    }
    return best;
}

#endif
