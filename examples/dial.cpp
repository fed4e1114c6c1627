// Which keys were pressed? Each key of a telephone is two tones (ITU-T Q.23). They are made, put
// into a voice and noise, and found again: by eight bins of a Fourier transform, block after
// block. How much noise does that stand, and does it hear keys in a voice alone?
//
//     dial INPUT OUTPUT_FOLDER
//
// dial_decoder.cpp finds the keys, dial_pictures.cpp draws.

#include "dial.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "rvx.h"
#include "support/file.h"
#include "support/spectrum.h"
#include "support/status.h"

namespace dial {
namespace {

using demo::decibels;
using demo::requireSuccess;
using demo::rms;

constexpr double pi = 3.14159265358979323846;
constexpr double lowestRate = 8000.0; // samples per second
constexpr double highestRate = 48000.0;
constexpr double silentBelow = -90.0; // dBFS, peak of the recording
// Senders may be 1.8 % off (ITU-T Q.23), and receivers are to take tones of 40 ms and to refuse
// those of 23 ms or 3.5 % off (Q.24). In a shorter block more of a tone that is off is left, in a
// longer one neighbours are further apart. Of 40 ms three blocks in a row have enough, of 22 ms
// two at most.
constexpr double blockTime = 0.02225;     // s
constexpr double hopTime = 0.01425;       // s
constexpr double toneTime = 0.07;         // s
constexpr double pauseTime = 0.05;        // s
constexpr double marginTime = 0.2;        // s, of the mix before and behind the digits
constexpr double amplitude = 0.2;         // of each tone
constexpr double voiceRatio = 10.0;       // dB, of both tones over the voice
constexpr double noiseRatio = 10.0;       // dB, of both tones over the noise of the mix
constexpr double lowestNoiseRatio = -9.0; // dB, of the rates
constexpr int noiseRatios = 22;           // one dB apart
constexpr int digitsPerRate = 700;        // at least

int length(const Signal &x)
{
    return static_cast<int>(x.size());
}

Timing timingFor(double rate)
{
    const auto samples = [&](double time) { return static_cast<int>(std::lround(time * rate)); };
    return {rate, samples(blockTime), samples(hopTime), samples(toneTime), samples(pauseTime)};
}

// --- digits ------------------------------------------------------------------

struct Dialled {
    std::string keys;
    Signal samples;
};

// Adds len samples of a tone.
void addTone(double relativeFrequency, double phase, double *samples, int len)
{
    rvxdToneState state{};
    rvxdToneInit(relativeFrequency, phase, amplitude, &state);
    Signal tone(static_cast<std::size_t>(len));
    rvxdbTone(&state, tone.data(), len);
    rvxdbAdd2(tone.data(), samples, len);
}

rvxRandUniState phasesOf(double seed)
{
    rvxRandUniState phases{};
    rvxdRandUniInit(seed, 0.0, 2.0 * pi, &phases);
    return phases;
}

// As many digits as there is room for in n samples, from a key on, half a pause before the first
// and behind the last. Both tones may be off their frequency by a part of it.
Dialled dial(int n, int firstKey, rvxRandUniState &phases, const Timing &timing, double off = 0.0)
{
    Dialled d{{}, Signal(static_cast<std::size_t>(n))};
    for (int start = timing.pause / 2; start + timing.toneLen + timing.pause / 2 <= n;
         start += timing.slot()) {
        const int key = (firstKey + static_cast<int>(d.keys.size())) % keyCount;
        const auto row = static_cast<std::size_t>(key) / groupLen;
        const auto column = groupLen + static_cast<std::size_t>(key) % groupLen;
        // The least value of a generator from 0 on may be a little below.
        double phase[2];
        rvxdbRandUni(&phases, phase, 2);
        rvxdbThresh1(phase, 2, 0.0, RVX_THRESH_RAISE);
        double *samples = d.samples.data() + start;
        addTone((1.0 + off) * frequencies[row] / timing.rate, phase[0], samples, timing.toneLen);
        addTone((1.0 + off) * frequencies[column] / timing.rate, phase[1], samples, timing.toneLen);
        d.keys += keypad[key];
    }
    requireSuccess("tones");
    return d;
}

// What was made of digits that were dialled.
struct Score {
    int dialled = 0, right = 0, wrong = 0;
    Score &operator+=(const Score &s)
    {
        dialled += s.dialled;
        right += s.right;
        wrong += s.wrong;
        return *this;
    }
};

// A digit is right if it is the first with its key from half a pause before to half a pause behind
// the one that was dialled, and wrong otherwise.
Score scoreOf(const std::vector<Digit> &digits, const std::string &dialled, const Timing &timing)
{
    Score score{static_cast<int>(dialled.size()), 0, 0};
    std::string left = dialled;
    for (const Digit &digit : digits) {
        const auto slot = static_cast<std::size_t>(digit.time / timing.slot());
        if (slot < left.size() && left[slot] == digit.key) {
            ++score.right;
            left[slot] = ' ';
        } else {
            ++score.wrong;
        }
    }
    return score;
}

// --- what goes in ------------------------------------------------------------

// Both tones together have the power amplitude^2. A signal that is a ratio below has this RMS.
double levelBelow(double ratio)
{
    return amplitude * std::pow(10.0, -ratio / 20.0);
}

rvxRandGausState noiseOf(double seed)
{
    rvxRandGausState noise{};
    rvxdRandGausInit(seed, 0.0, 1.0, &noise);
    return noise;
}

void addNoise(double ratio, rvxRandGausState &state, Signal &x)
{
    Signal noise(x.size());
    rvxdbRandGaus(&state, noise.data(), static_cast<unsigned>(noise.size()));
    rvxdbMpy1(levelBelow(ratio), noise.data(), length(noise));
    rvxdbAdd2(noise.data(), x.data(), length(x));
    requireSuccess("noise");
}

void addTo(const Signal &x, Signal &sum)
{
    rvxdbAdd2(x.data(), sum.data(), length(sum));
}

// Of all places of n samples, a slot apart, the one where the voice is loudest.
int loudestStart(const Signal &voice, int n, const Timing &timing)
{
    int found = 0;
    double loudest = 0.0;
    for (int start = 0; start + n <= length(voice); start += timing.slot()) {
        const double power = rvxdNorm(voice.data() + start, nullptr, n, RVX_NORM_L2SQ);
        if (power > loudest) {
            loudest = power;
            found = start;
        }
    }
    requireSuccess("loudest place");
    return found;
}

// Each key once, where the voice is loudest.
Mix mixOf(const Signal &voice, const Timing &timing)
{
    rvxRandUniState phases = phasesOf(1.0);
    rvxRandGausState noise = noiseOf(1.0);
    const Dialled digits = dial(keyCount * timing.slot(), 0, phases, timing);
    const int margin = static_cast<int>(std::lround(marginTime * timing.rate));
    const int n = length(digits.samples) + 2 * margin;
    const int start = loudestStart(voice, n, timing);

    Mix mix{digits.keys, start / timing.rate, margin + timing.pause / 2, {}, {}, {}};
    mix.dialled.resize(static_cast<std::size_t>(n));
    std::copy(digits.samples.begin(), digits.samples.end(), mix.dialled.begin() + margin);
    mix.voice.assign(voice.begin() + start, voice.begin() + start + n);
    mix.samples = mix.dialled;
    addTo(mix.voice, mix.samples);
    addNoise(noiseRatio, noise, mix.samples);
    requireSuccess("mix");
    return mix;
}

// --- rates -------------------------------------------------------------------

// What any two tones are like.
constexpr Limits anything{-300.0, -300.0, 300.0, 0.0, 0.0};

// Digits over the whole of the voice and over nothing, in the same noise, often enough.
Rates ratesOf(const Signal &voice, const Timing &timing, int &digits)
{
    std::vector<std::vector<Score>> scores(variants, std::vector<Score>(noiseRatios));
    // One sequence each, through all passes and ratios: those of seeds that are near each other
    // begin alike.
    rvxRandUniState phases = phasesOf(1.0);
    rvxRandGausState noise = noiseOf(1.0);
    digits = 0;
    while (digits < digitsPerRate) {
        const Dialled dialled = dial(length(voice), digits, phases, timing);
        digits += static_cast<int>(dialled.keys.size());
        for (int i = 0; i < noiseRatios; ++i) {
            const auto at = static_cast<std::size_t>(i);
            Signal x = dialled.samples;
            addNoise(lowestNoiseRatio + i, noise, x);
            for (const int variant : {alone, withVoice}) {
                if (variant == withVoice)
                    addTo(voice, x);
                const auto v = static_cast<std::size_t>(variant);
                const std::vector<Block> blocks = blocksOf(x, timing);
                scores[v][at] += scoreOf(decoded(blocks, {}), dialled.keys, timing);
                scores[v + 2][at] += scoreOf(decoded(blocks, anything), dialled.keys, timing);
            }
        }
    }

    Rates rates{demo::ramp(noiseRatios, lowestNoiseRatio, 1.0), {}, {}};
    for (const std::vector<Score> &variant : scores) {
        Signal right, wrong;
        for (const Score &score : variant) {
            right.push_back(100.0 * score.right / score.dialled);
            wrong.push_back(100.0 * score.wrong / score.dialled);
        }
        rates.right.push_back(right);
        rates.wrong.push_back(wrong);
    }
    return rates;
}

// --- what a digit must be like -----------------------------------------------

// Digits found of a hundred, without voice or noise.
double foundOf(const Timing &timing, double off)
{
    constexpr int rounds = 8;
    rvxRandUniState phases = phasesOf(1.0);
    const Dialled d = dial(rounds * keyCount * timing.slot(), 0, phases, timing, off);
    const Score score = scoreOf(decoded(blocksOf(d.samples, timing), {}), d.keys, timing);
    return 100.0 * score.right / score.dialled;
}

// Deviations of both tones, in parts of a thousand, up or down: up to the first all digits are
// found, from the second on none.
struct Deviations {
    int all, none;
};

Deviations deviationsOf(const Timing &timing)
{
    constexpr int most = 35;
    Deviations d{most, 0};
    for (int i = 0; i <= most; ++i) {
        const double up = foundOf(timing, 0.001 * i), down = foundOf(timing, -0.001 * i);
        if (std::min(up, down) < 100.0)
            d.all = std::min(d.all, i - 1);
        if (std::max(up, down) > 0.0)
            d.none = i + 1;
    }
    return d;
}

// Lengths of tones, in ms: from the first on all digits are found, up to the second none.
struct Lengths {
    int all, none;
};

Lengths lengthsOf(Timing timing)
{
    const int slot = timing.slot();
    Lengths l{1, 0};
    for (int ms = 1; 0.001 * ms < toneTime; ++ms) {
        timing.toneLen = static_cast<int>(std::lround(0.001 * ms * timing.rate));
        timing.pause = slot - timing.toneLen;
        const double found = foundOf(timing, 0.0);
        if (found < 100.0)
            l.all = ms + 1;
        if (found == 0.0 && l.none == ms - 1)
            l.none = ms;
    }
    return l;
}

// --- what is told ------------------------------------------------------------

using Rows = std::vector<std::pair<std::string, std::string>>;

double inMs(int samples, const Timing &timing)
{
    return 1000.0 * samples / timing.rate;
}

void tellMix(const demo::Recording &recording, const Mix &mix, const std::vector<Digit> &digits,
             const Timing &timing, demo::Section &section)
{
    section.table({
        {"Recording",
         demo::format("%.2f s (%d samples at %g Hz), %.1f dBFS",
                      length(recording.samples) / recording.rate, length(recording.samples),
                      recording.rate, decibels(rms(recording.samples)))},
        {"Blocks",
         demo::format("%d samples (%.1f ms), one every %d (%.1f ms)", timing.blockLen,
                      inMs(timing.blockLen, timing), timing.hop, inMs(timing.hop, timing))},
        {"Digits", demo::format("%g ms with pauses of %g ms, two tones of %.1f dBFS",
                                inMs(timing.toneLen, timing), inMs(timing.pause, timing),
                                decibels(amplitude))},
        {"Mix", demo::format("from %.2f s on, the voice %g dB and noise %g dB below the digits",
                             mix.start, voiceRatio, noiseRatio)},
        {"Dialled", mix.keys},
        {"Decoded", keysOf(digits)},
    });
}

// Without voice and noise.
void tellEdges(const Timing &timing, demo::Section &section)
{
    const Deviations d = deviationsOf(timing);
    const Lengths l = lengthsOf(timing);
    section.table({
        {"Off frequency",
         demo::format("all found up to %.1f %%, none from %.1f %% on", 0.1 * d.all, 0.1 * d.none)},
        {"Length", demo::format("all found from %d ms on, none up to %d ms", l.all, l.none)},
    });
}

std::string percentages(const Signal &rate)
{
    std::string text;
    for (const int ratio : {-6, -3, 0, 3, 6, 12})
        text += demo::format("%s%.1f", text.empty() ? "" : ", ",
                             rate[static_cast<std::size_t>(ratio - lowestNoiseRatio)]);
    return text;
}

void tellRates(const Rates &rates, int digits, demo::Section &section)
{
    Rows rows{{"Over noise", demo::format("-6, -3, 0, 3, 6, 12 dB, %d digits each", digits)}};
    const char *const names[variants] = {"Alone", "In the voice", "Any two tones", "Any, in it"};
    for (std::size_t v = 0; v < variants; ++v)
        rows.push_back({names[v], percentages(rates.right[v]) + " % right; " +
                                      percentages(rates.wrong[v]) + " % wrong"});
    section.table(rows);
}

std::string counted(std::size_t number, const char *what)
{
    return demo::format("%zu %s%s", number, what, number == 1 ? "" : "s");
}

// Digits that are heard where nobody dialled: in the recording as it is. What are the limits
// worth? Each alone, and all but this one.
void tellTalkOff(const demo::Recording &recording, const Timing &timing, demo::Section &section)
{
    constexpr Limits all;
    Limits onlyLevel = anything, onlyTwist = anything, onlyLead = anything, onlyShare = anything;
    Limits anyLevel, anyTwist, anyLead, anyShare;
    onlyLevel.level = all.level;
    anyLevel.level = anything.level;
    onlyTwist.lowTwist = all.lowTwist;
    onlyTwist.highTwist = all.highTwist;
    anyTwist.lowTwist = anything.lowTwist;
    anyTwist.highTwist = anything.highTwist;
    onlyLead.lead = all.lead;
    anyLead.lead = anything.lead;
    onlyShare.share = all.share;
    anyShare.share = anything.share;

    const std::vector<Block> heard = blocksOf(recording.samples, timing);
    const auto told = [&](const Limits &limits) {
        const auto blocks = std::count_if(heard.begin(), heard.end(), [&](const Block &block) {
            return keyOf(block, limits) != '\0';
        });
        const std::string digits = keysOf(decoded(heard, limits));
        return counted(static_cast<std::size_t>(blocks), "block") + ", " +
               counted(digits.size(), "digit") +
               (digits.empty() || digits.size() > 20 ? "" : ": " + digits);
    };
    section.table({
        {"No digits", demo::format("%zu blocks of the recording, as it is", heard.size())},
        {"All limits", told(all)},
        {"But level", told(anyLevel) + "; it alone " + told(onlyLevel)},
        {"But twist", told(anyTwist) + "; it alone " + told(onlyTwist)},
        {"But lead", told(anyLead) + "; it alone " + told(onlyLead)},
        {"But share", told(anyShare) + "; it alone " + told(onlyShare)},
        {"Any two tones", told(anything)},
    });
}

void chapter(const std::string &input, const std::string &output)
{
    // Every thread starts in mode 0, in which a failed call ends the process.
    rvxSetErrMode(1);

    const demo::Recording recording = demo::readRecording(input, 1);
    demo::requireRecording(input, recording, lowestRate,
                           keyCount * (toneTime + pauseTime) + 2.0 * marginTime);
    if (recording.rate > highestRate)
        demo::refuse(input, demo::format("has %g samples per second, %g at most can be taken",
                                         recording.rate, highestRate));
    const double peak =
        rvxdNorm(recording.samples.data(), nullptr, length(recording.samples), RVX_NORM_C);
    if (decibels(peak) < silentBelow)
        demo::refuse(input, "is silent");

    const Timing timing = timingFor(recording.rate);
    Signal voice = recording.samples;
    rvxdbMpy1(levelBelow(voiceRatio) / rms(voice), voice.data(), length(voice));
    requireSuccess("voice");
    const Mix mix = mixOf(voice, timing);
    const std::vector<Block> blocks = blocksOf(mix.samples, timing);
    const std::vector<Digit> digits = decoded(blocks, {});
    int digitsPerPoint = 0;
    const Rates rates = ratesOf(voice, timing, digitsPerPoint);

    demo::Section section(output, "dial", "Dialling in the midst of speech");
    section.text(
        "Each key of a telephone is two tones at once, one for its row and one for its column. "
        "Sixteen digits go into the voice, with noise, and are found again: Goertzel's recurrence "
        "gives the strength of the eight tones block after block. A block says a key if the "
        "strongest of each group are loud enough, about as strong as each other, well over the "
        "others of their group, and a good part of all that is in the block; three blocks in a row "
        "make a digit.");
    tellMix(recording, mix, digits, timing, section);
    drawMix(mix, digits, timing, section);
    drawLevels(mix, blocks, timing, section);
    tellEdges(timing, section);
    drawResponse(timing, section);
    section.text(
        "Tones over the whole recording, in noise of rising strength: how many are found, and how "
        "many are found that nobody dialled? Then nobody dials at all, and each limit shows what "
        "it is worth.");
    tellRates(rates, digitsPerPoint, section);
    drawRates(rates, section);
    tellTalkOff(recording, timing, section);
    section.finish();
}

} // namespace
} // namespace dial

int main(int argc, char **argv)
{
    return demo::runChapter(argc, argv, "dial", dial::chapter);
}
