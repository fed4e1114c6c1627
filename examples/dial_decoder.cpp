// From samples to digits: eight bins of a Fourier transform by Goertzel's recurrence, block after
// block, and what they must be like (ITU-T Q.24 has what receivers are to take and to refuse).

#include "dial.h"

#include <algorithm>
#include <cmath>

#include "rvx.h"
#include "support/spectrum.h"
#include "support/status.h"

namespace dial {
namespace {

using States = std::array<rvxdGoertzState, tones>;

States statesFor(double rate)
{
    States states{};
    for (std::size_t i = 0; i < tones; ++i)
        rvxdGoertzInit(frequencies[i] / rate, &states[i]);
    demo::requireSuccess("frequencies");
    return states;
}

// The powers of the eight tones: a tone of amplitude a has a bin of a / 2 times the block's length.
std::array<double, tones> powersIn(const double *block, int len, States &states)
{
    std::array<ZCplx, tones> bins;
    for (std::size_t i = 0; i < tones; ++i) {
        rvxdGoertzReset(&states[i]);
        bins[i] = rvxdbGoertz(&states[i], block, len);
    }
    std::array<double, tones> powers;
    rvxzbPowerSpectr(bins.data(), powers.data(), tones);
    rvxdbMpy1(2.0 / len / len, powers.data(), tones);
    return powers;
}

// The strongest tone of a group, and how far it is over the next.
struct Strongest {
    int index;
    double power;
    double lead; // ratio of powers
};

Strongest strongestOf(const double *group)
{
    Strongest s{0, 0.0, 0.0};
    s.power = rvxdMaxExt(group, groupLen, &s.index);
    std::array<double, groupLen> others;
    std::copy_n(group, groupLen, others.begin());
    others[static_cast<std::size_t>(s.index)] = 0.0;
    s.lead = s.power / rvxdMax(others.data(), groupLen);
    return s;
}

double powerRatio(double level)
{
    return std::pow(10.0, level / 10.0);
}

} // namespace

std::vector<Block> blocksOf(const Signal &x, const Timing &timing)
{
    States states = statesFor(timing.rate);
    std::vector<Block> blocks;
    for (int start = 0; start + timing.blockLen <= static_cast<int>(x.size());
         start += timing.hop) {
        const double *block = x.data() + start;
        blocks.push_back(
            {start + 0.5 * timing.blockLen, powersIn(block, timing.blockLen, states),
             rvxdNorm(block, nullptr, timing.blockLen, RVX_NORM_L2SQ) / timing.blockLen});
    }
    demo::requireSuccess("blocks");
    return blocks;
}

char keyOf(const Block &block, const Limits &limits)
{
    const Strongest row = strongestOf(block.powers.data());
    const Strongest column = strongestOf(block.powers.data() + groupLen);
    const double twist = column.power / row.power;
    const bool heard = std::min(row.power, column.power) >= 0.5 * powerRatio(limits.level) &&
                       twist >= powerRatio(limits.lowTwist) &&
                       twist <= powerRatio(limits.highTwist) &&
                       std::min(row.lead, column.lead) >= powerRatio(limits.lead) &&
                       row.power + column.power >= limits.share * block.power;
    return heard ? keypad[row.index * groupLen + column.index] : '\0';
}

// A digit begins when enough blocks in a row say the same key, and ends when as many say
// something else or nothing.
std::vector<Digit> decoded(const std::vector<Block> &blocks, const Limits &limits)
{
    std::vector<Digit> digits;
    char held = '\0', last = '\0';
    int run = 0, missed = 0;
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        const char key = keyOf(blocks[i], limits);
        run = key == last ? run + 1 : 1;
        last = key;
        missed = key == held ? 0 : missed + 1;
        if (key != '\0' && key != held && run >= limits.blocks) {
            digits.push_back({key, blocks[i + 1 - static_cast<std::size_t>(run)].time});
            held = key;
            missed = 0;
        } else if (missed >= limits.others) {
            held = '\0';
        }
    }
    demo::requireSuccess("decoder");
    return digits;
}

std::string keysOf(const std::vector<Digit> &digits)
{
    std::string keys;
    for (const Digit &digit : digits)
        keys += digit.key;
    return keys;
}

std::array<double, tones> levelsOfTone(double frequency, const Timing &timing)
{
    rvxdToneState state{};
    rvxdToneInit(frequency / timing.rate, 0.0, 1.0, &state);
    Signal tone(static_cast<std::size_t>(timing.blockLen));
    rvxdbTone(&state, tone.data(), timing.blockLen);
    States states = statesFor(timing.rate);
    const auto powers = powersIn(tone.data(), timing.blockLen, states);
    const Signal levels = demo::levelsOf(Signal(powers.begin(), powers.end()));
    std::array<double, tones> result;
    for (std::size_t i = 0; i < tones; ++i)
        result[i] = levels[i] + demo::decibels(std::sqrt(2.0)); // of amplitudes
    return result;
}

} // namespace dial
