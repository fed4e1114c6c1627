// How high is a voice, and when? Pitch by autocorrelation: a voice repeats itself from
// period to period, so a frame of it is most like itself one period later.
//
//     pitch INPUT OUTPUT_FOLDER
//
// Frames under a window, their autocorrelation divided by that of the window, and a small
// price on long periods (Boersma, Proc. Inst. Phonetic Sciences Amsterdam 17, 1993).
// pitch_pictures.cpp draws it.

#include "pitch.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "rvx.h"
#include "support/spectrum.h"
#include "support/status.h"

namespace pitch {
namespace {

using demo::decibels;
using demo::requireSuccess;

constexpr double lowestPitch = 60.0;   // Hz
constexpr double highestPitch = 400.0; // Hz
constexpr double frameTime = 0.05;     // s, three periods of the lowest pitch
constexpr double silentBelow = -50.0;  // dBFS, level of a frame
constexpr double octavePrice = 0.05;   // taken off for a period twice as long
constexpr int smoothFrames = 7;        // width of the median over estimates
constexpr double lowestRate = 4000.0;  // samples per second

// --- the method --------------------------------------------------------------

// The autocorrelation up to a lag, divided by its value at lag 0. Silence is not like
// anything.
Signal likenessOf(const Signal &frame, int longestLag)
{
    Signal r(static_cast<std::size_t>(longestLag) + 1);
    const int lags = static_cast<int>(r.size());
    rvxdAutoCorr(frame.data(), static_cast<int>(frame.size()), r.data(), lags, RVX_AUTOCORR_NORMAL);
    const double energy = r[0];
    if (energy > 0.0)
        rvxdbMpy1(1.0 / energy, r.data(), lags);
    return r;
}

Frames framesFor(double samplesPerSecond)
{
    Frames f;
    f.len = static_cast<int>(std::lround(frameTime * samplesPerSecond));
    f.hop = static_cast<int>(std::lround(hopTime * samplesPerSecond));
    f.shortest = static_cast<int>(std::ceil(samplesPerSecond / highestPitch));
    f.longest = static_cast<int>(std::floor(samplesPerSecond / lowestPitch));

    // A window function applied to ones gives the window itself.
    f.window.resize(static_cast<std::size_t>(f.len));
    rvxdbSet(1.0, f.window.data(), f.len);
    rvxdWinHann(f.window.data(), f.len);
    f.windowLikeness = likenessOf(f.window, f.longest + 1);
    requireSuccess("window");
    return f;
}

} // namespace

// How much a frame is like itself, lag after lag. The window makes it less so with every lag,
// which the division undoes.
Signal frameLikeness(const double *samples, const Frames &f)
{
    Signal frame(static_cast<std::size_t>(f.len));
    rvxdbCopy(samples, frame.data(), f.len);
    rvxdbSub1(rvxdMean(samples, f.len), frame.data(), f.len);
    rvxdbMpy2(f.window.data(), frame.data(), f.len);
    Signal likeness = likenessOf(frame, f.longest + 1);
    for (std::size_t lag = 0; lag < likeness.size(); ++lag)
        likeness[lag] /= f.windowLikeness[lag];
    return likeness;
}

namespace {

// The top of the parabola through three neighbours, of which the middle one is the highest.
struct Peak {
    double lag, height;
};

Peak peakAt(const Signal &likeness, int lag)
{
    const double *middle = likeness.data() + lag;
    const double slope = 0.5 * (middle[1] - middle[-1]);
    const double bend = 2.0 * middle[0] - middle[1] - middle[-1];
    if (!(bend > 0.0))
        return {static_cast<double>(lag), middle[0]};
    return {lag + slope / bend, middle[0] + 0.5 * slope * slope / bend};
}

// The best of all peaks. Two periods are a period as well: so of peaks that are nearly as
// high the first one is to win, and doubling the lag costs a little.
Peak bestPeak(const Signal &likeness, const Frames &f)
{
    Peak best{static_cast<double>(f.longest), 0.0};
    double bestScore = 0.0;
    for (int lag = f.shortest; lag <= f.longest; ++lag) {
        const double *middle = likeness.data() + lag;
        if (middle[0] < middle[-1] || middle[0] <= middle[1])
            continue;
        const Peak peak = peakAt(likeness, lag);
        const double score = peak.height - octavePrice * std::log2(peak.lag / f.shortest);
        if (score > bestScore) {
            best = peak;
            bestScore = score;
        }
    }
    return best;
}

Estimate estimate(const demo::Recording &voice, int start, const Frames &f)
{
    const double *samples = voice.samples.data() + start;
    const double rms = rvxdNorm(samples, nullptr, f.len, RVX_NORM_L2) / std::sqrt(f.len);
    const Peak peak = bestPeak(frameLikeness(samples, f), f);

    Estimate e{(start + 0.5 * f.len) / voice.rate,
               decibels(std::max(rms, 1e-6)),
               peak.lag,
               peak.height,
               0.0,
               0.0};
    if (e.strength >= voicedFrom && e.level >= silentBelow)
        e.frequency = voice.rate / e.period;
    return e;
}

// A running median takes out what lasts for three frames or less (Rabiner, Sambur and Schmidt, IEEE
// Trans. Acoust. Speech Signal Process. 23, 1975).
void smooth(std::vector<Estimate> &estimates)
{
    Signal pitch;
    for (const Estimate &e : estimates)
        pitch.push_back(e.frequency);
    rvxdbMedianFilter1(pitch.data(), static_cast<int>(pitch.size()), smoothFrames);
    requireSuccess("median");
    for (std::size_t i = 0; i < pitch.size(); ++i)
        estimates[i].pitch = pitch[i];
}

std::vector<Estimate> estimatesOf(const demo::Recording &voice, const Frames &f)
{
    std::vector<Estimate> estimates;
    for (int start = 0; start + f.len <= static_cast<int>(voice.samples.size()); start += f.hop)
        estimates.push_back(estimate(voice, start, f));
    requireSuccess("pitch");
    smooth(estimates);
    return estimates;
}

// --- what is told --------------------------------------------------------

void tellPitch(const std::vector<Estimate> &estimates, const Frames &f, double samplesPerSecond,
               demo::Section &section)
{
    Signal pitches;
    for (const Estimate &e : estimates) {
        if (e.pitch > 0.0)
            pitches.push_back(e.pitch);
    }
    std::sort(pitches.begin(), pitches.end());
    const auto quantile = [&](double part) {
        return pitches[static_cast<std::size_t>(part * static_cast<double>(pitches.size() - 1))];
    };

    const double all = static_cast<double>(estimates.size());
    section.table({
        {"Frames",
         demo::format("%.0f of %g ms, one every %g ms", all, 1000.0 * f.len / samplesPerSecond,
                      1000.0 * f.hop / samplesPerSecond)},
        {"Voiced", demo::format("%d frames (%.0f %%)", static_cast<int>(pitches.size()),
                                100.0 * static_cast<double>(pitches.size()) / all)},
        {"Pitch", pitches.empty() ? "none"
                                  : demo::format("median %.0f Hz, nine tenths from %.0f to %.0f Hz",
                                                 quantile(0.5), quantile(0.05), quantile(0.95))},
    });
}

void chapter(const std::string &input, const std::string &output)
{
    // Every thread starts in mode 0, in which a failed call ends the process.
    rvxSetErrMode(1);

    const demo::Recording voice = demo::readRecording(input, 1 << spectrumOrder);
    demo::requireRecording(input, voice, lowestRate, frameTime + hopTime);
    const Frames frames = framesFor(voice.rate);
    const std::vector<Estimate> estimates = estimatesOf(voice, frames);

    demo::Section section(output, "pitch", "The pitch of a voice");
    section.text(demo::format(
        "How high a voice is, and when. A voiced sound repeats itself from period to period: so "
        "the autocorrelation of a frame has a peak at the period, and is nearly as high there as "
        "at lag 0. Periods from 1/%g to 1/%g s are looked at. A frame counts as voiced where that "
        "likeness is %g at least, and a median over %d frames takes out what lasts for three or "
        "less.",
        highestPitch, lowestPitch, voicedFrom, smoothFrames));
    tellPitch(estimates, frames, voice.rate, section);
    drawTrack(voice, estimates, section);
    drawFrames(voice, estimates, frames, section);
    section.finish();
}

} // namespace
} // namespace pitch

int main(int argc, char **argv)
{
    return demo::runChapter(argc, argv, "pitch", pitch::chapter);
}
