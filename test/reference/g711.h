// The laws of ITU-T Recommendation G.711 by their decision values, one number at a
// time; the magnitude alone counts and 0 is positive.

#ifndef RVX_TEST_REFERENCE_G711_H
#define RVX_TEST_REFERENCE_G711_H

#include <cmath>
#include <cstdlib>

namespace g711 {

// The least magnitude, of 32768, of each of the 128 codes of A-law: 16 even steps in
// each of 8 segments, each as wide as all before it.
inline int aLawDecision(int k)
{
    const int segment = k / 16, step = k % 16;
    return segment == 0 ? 16 * step : (16 + step) * 16 << (segment - 1);
}

inline unsigned char aLawCode(int v)
{
    int k = 127;
    while (std::abs(v) < aLawDecision(k))
        --k;
    return static_cast<unsigned char>((v < 0 ? k : k | 0x80) ^ 0x55);
}

inline double aLawValue(unsigned char code)
{
    const int bits = code ^ 0x55;
    const int k = bits & 0x7f;
    const double value = (aLawDecision(k) + aLawDecision(k + 1)) / 2.0 / 32768.0;
    return (bits & 0x80) != 0 ? value : -value;
}

// mu-law by the rows of its table: magnitudes up to the end of a segment, and how wide
// its steps are, from the end downwards.
inline unsigned char muLawCode(int v)
{
    int rest = std::abs(v) - 124;
    int base = v < 0 ? 112 : 240;
    int shift = 3;
    for (int step = 256; rest > 0; step *= 2) {
        rest -= step;
        base -= 16;
        ++shift;
    }
    return static_cast<unsigned char>(((-rest) >> shift) | base);
}

inline double muLawValue(unsigned char code)
{
    const int bits = ~code & 0xff;
    const int segment = bits / 16 % 8, step = bits % 16;
    int magnitude = 0;
    for (int s = 0; s < segment; ++s)
        magnitude += 16 * (8 << s);
    magnitude += (8 << segment) * step;
    // A step ends half of itself behind where it stands for, and the first is half.
    const int value = magnitude + ((8 << segment) - 8) / 2;
    return ((bits & 0x80) != 0 ? -value : value) / 32768.0 + 0.0;
}

// What the encoders are fed with: the largest code from 0.96875 on.
inline int steps(double x)
{
    return static_cast<int>(x * 32768.0);
}

inline bool isLargest(double x)
{
    return !(std::fabs(x) < 0.96875);
}

inline unsigned char aLawOf(double x)
{
    if (isLargest(x))
        return std::signbit(x) ? 42 : 170;
    return aLawCode(steps(x));
}

inline unsigned char muLawOf(double x)
{
    if (isLargest(x))
        return std::signbit(x) ? 0 : 128;
    return muLawCode(steps(x));
}

} // namespace g711

#endif
