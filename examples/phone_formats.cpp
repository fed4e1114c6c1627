// The formats of the telephone's chapter: there, and back again. What does not fit is cut to
// what does.

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "phone.h"
#include "rvx.h"
#include "support/status.h"

namespace phone {
namespace {

constexpr int toNearest = RVX_CVT_NEAREST | RVX_CVT_CLIP;

int length(const Signal &x)
{
    return static_cast<int>(x.size());
}

Signal throughALaw(const Signal &x)
{
    std::vector<std::uint8_t> codes(x.size());
    Signal y(x.size());
    rvxdbLinToALaw(x.data(), codes.data(), length(x));
    rvxdbALawToLin(codes.data(), y.data(), length(x));
    demo::requireSuccess("A-law");
    return y;
}

Signal throughMuLaw(const Signal &x)
{
    std::vector<std::uint8_t> codes(x.size());
    Signal y(x.size());
    rvxdbLinToMuLaw(x.data(), codes.data(), length(x));
    rvxdbMuLawToLin(codes.data(), y.data(), length(x));
    demo::requireSuccess("mu-law");
    return y;
}

Signal through8Bits(const Signal &x)
{
    std::vector<std::int8_t> integers(x.size());
    Signal y(x.size());
    rvxdbFloatToS7Fix(x.data(), integers.data(), length(x), toNearest);
    rvxdbS7FixToFloat(integers.data(), y.data(), length(x));
    demo::requireSuccess("8 bits");
    return y;
}

Signal through16Bits(const Signal &x)
{
    std::vector<std::int16_t> integers(x.size());
    Signal y(x.size());
    rvxdbFloatToS15Fix(x.data(), integers.data(), length(x), toNearest);
    rvxdbS15FixToFloat(integers.data(), y.data(), length(x));
    demo::requireSuccess("16 bits");
    return y;
}

Signal through32Bits(const Signal &x)
{
    std::vector<std::int32_t> integers(x.size());
    Signal y(x.size());
    rvxdbFloatToS31Fix(x.data(), integers.data(), length(x), toNearest);
    rvxdbS31FixToFloat(integers.data(), y.data(), length(x));
    demo::requireSuccess("32 bits");
    return y;
}

// The error of rounding to steps is spread evenly over a step, half of it to either side
// (Bennett, Bell Syst. Tech. J. 27, 1948).
double noiseOfStep(double step)
{
    return step * step / 12.0;
}

double noiseOfBits(int bits)
{
    return noiseOfStep(std::ldexp(1.0, 1 - bits));
}

// 16 steps from each power of two to the next; below 1/64 they stay as they are.
double noiseOfALaw(double amplitude)
{
    return noiseOfStep(std::ldexp(1.0, std::ilogb(std::clamp(amplitude, 1.0 / 128.0, 0.5)) - 4));
}

// The same for the amplitude and 132/32768. Encoding drops the fraction of 16 bits, so that what
// comes back is 1/32768 off the middle of its step.
double noiseOfMuLaw(double amplitude)
{
    constexpr double off = 1.0 / 32768.0;
    return noiseOfStep(std::ldexp(1.0, std::ilogb(std::min(amplitude + 132.0 * off, 0.5)) - 4)) +
           off * off;
}

} // namespace

std::vector<Format> allFormats()
{
    return {
        {"A-law", 8, throughALaw, noiseOfALaw},
        {"Mu-law", 8, throughMuLaw, noiseOfMuLaw},
        {"8 bits", 8, through8Bits, [](double) { return noiseOfBits(8); }},
        {"16 bits", 16, through16Bits, [](double) { return noiseOfBits(16); }},
        {"32 bits", 32, through32Bits, [](double) { return noiseOfBits(32); }},
    };
}

} // namespace phone
