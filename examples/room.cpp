// What does a room add to a voice, and can one tell from the sound? The voice is played
// into a room by convolution with the room's impulse response; where the walls are is then
// found from the dry and the echoed voice alone, by cross-correlation.
//
//     room INPUT OUTPUT_FOLDER
//
// room_pictures.cpp draws it.

#include "room.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <utility>

#include "rvx.h"
#include "support/recording.h"
#include "support/section.h"
#include "support/spectrum.h"
#include "support/status.h"

namespace room {
namespace {

using demo::requireSuccess;

constexpr double soundSpeed = 343.0; // m/s, in air of 20 degrees Celsius
constexpr double longestPath = 35.0; // m, up to which arrivals are looked for
constexpr double weakest = 0.1;      // gain of what still counts as an arrival
constexpr int mostArrivals = 20;
constexpr double lowestRate = 4000.0; // samples per second
constexpr double shortestTime = 1.0;  // s

int length(const Signal &x)
{
    return static_cast<int>(x.size());
}

// --- the room ----------------------------------------------------------------

// The path that sound takes to the microphone, and the pressure at its end. 1/path for the
// distance, and what the surface gives back; the direct sound has 1.
struct Path {
    const char *by;
    double metres;
    double gain;
};

constexpr Path paths[] = {
    {"direct", 2.0, 1.0},      {"floor", 3.6, 0.45},       {"ceiling", 5.1, -0.32},
    {"left wall", 7.9, 0.24},  {"right wall", 10.7, 0.17}, {"front wall", 14.2, -0.13},
    {"back wall", 23.0, 0.15},
};

constexpr double tailFrom = 0.03; // s, when reflections are too many to tell apart
constexpr double tailAmplitude = 0.05;
constexpr double reverberation = 0.6; // s, in which the tail falls by 60 dB

int delayOf(double metres, double samplesPerSecond)
{
    return static_cast<int>(std::lround(metres / soundSpeed * samplesPerSecond));
}

// Numbers between -1 and 1 that are the same everywhere: a linear congruential sequence
// (Knuth, The Art of Computer Programming 2, 3.3.4; the multiplier is C. E. Haynes's).
Signal fixedNoise(std::size_t n)
{
    Signal noise(n);
    std::uint64_t state = 1;
    for (double &value : noise) {
        state = state * 6364136223846793005u + 1442695040888963407u;
        value = std::ldexp(static_cast<double>(state >> 11), -52) - 1.0;
    }
    return noise;
}

std::vector<Arrival> arrivalsOf(double samplesPerSecond)
{
    std::vector<Arrival> arrivals;
    for (const Path &path : paths)
        arrivals.push_back({path.by, delayOf(path.metres, samplesPerSecond), path.gain});
    return arrivals;
}

// What the microphone hears of a clap: the arrivals one by one, and a tail that dies away.
Signal impulseResponse(const std::vector<Arrival> &arrivals, double samplesPerSecond)
{
    Signal response = fixedNoise(static_cast<std::size_t>(reverberation * samplesPerSecond));
    for (std::size_t i = 0; i < response.size(); ++i) {
        const double time = static_cast<double>(i) / samplesPerSecond;
        response[i] *=
            time < tailFrom ? 0.0 : tailAmplitude * std::pow(10.0, -3.0 * time / reverberation);
    }
    for (const Arrival &arrival : arrivals)
        response[static_cast<std::size_t>(arrival.delay)] = arrival.gain;
    return response;
}

// The voice in the room: every sample sets off the whole response. The tables of the transforms
// stay with the thread; those of the correlations below release them.
Signal playInto(const Signal &response, const Signal &voice)
{
    Signal echoed(voice.size() + response.size() - 1);
    rvxdConv(voice.data(), length(voice), response.data(), length(response), echoed.data());
    requireSuccess("convolution");
    return echoed;
}

// --- finding the room again --------------------------------------------------

// From sample to sample.
Signal differencesOf(const Signal &x)
{
    Signal differences(x.size() - 1);
    rvxdbSub3(x.data() + 1, x.data(), differences.data(), length(differences));
    requireSuccess("differences");
    return differences;
}

// A voice has most of its power in its low harmonics, and so is like itself at many lags.
// Differences of differences weigh all frequencies nearly alike: they are so at few.
Signal sharpened(const Signal &voice)
{
    return differencesOf(differencesOf(voice));
}

// How much later sounds are like earlier ones: that of the echoed voice with the dry one, and of
// the dry one with itself, which is what a lone arrival looks like in the former. Both in parts
// of the dry voice's energy.
Correlations correlate(const Signal &dry, const Signal &echoed, int longestLag)
{
    Correlations c{Signal(static_cast<std::size_t>(longestLag) + 1),
                   Signal(static_cast<std::size_t>(longestLag) + 1)};
    const int lags = longestLag + 1;
    rvxdCrossCorr(dry.data(), length(dry), echoed.data(), length(echoed), c.cross.data(), 0,
                  longestLag);
    rvxdAutoCorr(dry.data(), length(dry), c.own.data(), lags, RVX_AUTOCORR_NORMAL);
    requireSuccess("correlation");
    const double energy = c.own[0];
    if (energy > 0.0) {
        rvxdbMpy1(1.0 / energy, c.cross.data(), lags);
        rvxdbMpy1(1.0 / energy, c.own.data(), lags);
    }
    return c;
}

// The lag with the highest peak, up or down.
int strongest(const Signal &cross)
{
    int highest = 0, lowest = 0;
    const double up = rvxdMaxExt(cross.data(), length(cross), &highest);
    const double down = rvxdMinExt(cross.data(), length(cross), &lowest);
    requireSuccess("peak");
    return up >= -down ? highest : lowest;
}

// The strongest arrival is taken out with all that it brings along at other lags; then the
// next one stands out (Högbom, Astronomy and Astrophysics Suppl. 15, 1974).
std::vector<Arrival> findArrivals(const Correlations &c)
{
    std::vector<Arrival> found;
    Signal rest = c.cross;
    while (static_cast<int>(found.size()) < mostArrivals) {
        const int lag = strongest(rest);
        const double gain = rest[static_cast<std::size_t>(lag)];
        if (std::fabs(gain) < weakest)
            break;
        found.push_back({"", lag, gain});
        for (int i = 0; i < length(rest); ++i)
            rest[static_cast<std::size_t>(i)] -=
                gain * c.own[static_cast<std::size_t>(std::abs(i - lag))];
    }
    std::sort(found.begin(), found.end(),
              [](const Arrival &a, const Arrival &b) { return a.delay < b.delay; });
    return found;
}

// --- what is told ------------------------------------------------------------

// The arrival that was found nearest to one that was put in.
const Arrival *nearest(const std::vector<Arrival> &found, int delay)
{
    const Arrival *best = nullptr;
    for (const Arrival &arrival : found) {
        if (best == nullptr || std::abs(arrival.delay - delay) < std::abs(best->delay - delay))
            best = &arrival;
    }
    return best;
}

void tellRoom(const Sound &sound, const std::vector<Arrival> &putIn,
              const std::vector<Arrival> &found, demo::Section &section)
{
    const auto seconds = [&](const Signal &x) { return length(x) / sound.rate; };
    const auto level = [](const Signal &x) {
        return demo::decibels(rvxdNorm(x.data(), nullptr, length(x), RVX_NORM_L2) /
                              std::sqrt(length(x)));
    };
    std::vector<std::pair<std::string, std::string>> rows{
        {"Voice", demo::format("%.2f s, %.1f dBFS", seconds(sound.dry), level(sound.dry))},
        {"Response", demo::format("%.2f s (%d samples at %g Hz)", seconds(sound.response),
                                  length(sound.response), sound.rate)},
        {"In the room",
         demo::format("%.2f s, %.1f dBFS", seconds(sound.echoed), level(sound.echoed))},
    };
    int same = 0;
    for (const Arrival &arrival : putIn) {
        std::string text = demo::format("put in at %d samples (%.3f ms), gain %.2f", arrival.delay,
                                        1000.0 * arrival.delay / sound.rate, arrival.gain);
        const Arrival *match = nearest(found, arrival.delay);
        if (match != nullptr && match->delay == arrival.delay) {
            text += demo::format("; found at %d, gain %.2f", match->delay, match->gain);
            ++same;
        } else {
            text += "; not found";
        }
        rows.emplace_back(arrival.by, text);
    }
    rows.emplace_back("Arrivals", demo::format("%d put in, %d found, %d of them where they were",
                                               static_cast<int>(putIn.size()),
                                               static_cast<int>(found.size()), same));
    requireSuccess("level");
    section.table(rows);
}

void chapter(const std::string &input, const std::string &output)
{
    // Every thread starts in mode 0, in which a failed call ends the process.
    rvxSetErrMode(1);

    const demo::Recording voice = demo::readRecording(input, 1);
    demo::requireRecording(input, voice, lowestRate, shortestTime);

    const std::vector<Arrival> putIn = arrivalsOf(voice.rate);
    Sound sound{voice.samples, impulseResponse(putIn, voice.rate), {}, voice.rate};
    sound.echoed = playInto(sound.response, sound.dry);

    const int longestLag = delayOf(longestPath, voice.rate);
    const Correlations asItIs = correlate(sound.dry, sound.echoed, longestLag);
    const Correlations sharp = correlate(sharpened(sound.dry), sharpened(sound.echoed), longestLag);
    const std::vector<Arrival> found = findArrivals(sharp);

    demo::Section section(output, "room", "A voice in a room, and the room in the voice");
    section.text(demo::format(
        "The voice is played into a room: convolved with what a microphone there would hear of a "
        "clap, which is %d arrivals on ways of %g to %g m and a tail that dies away by 60 dB in "
        "%g s. Then the arrivals are found again from the voice before and after alone: where the "
        "later one is most like the earlier one, sound has arrived.",
        static_cast<int>(putIn.size()), paths[0].metres, paths[6].metres, reverberation));
    tellRoom(sound, putIn, found, section);
    drawResponse(sound, putIn, section);
    drawVoice(sound, section);
    drawCorrelations(sound, asItIs, sharp, putIn, found, section);
    section.finish();
}

} // namespace
} // namespace room

int main(int argc, char **argv)
{
    return demo::runChapter(argc, argv, "room", room::chapter);
}
