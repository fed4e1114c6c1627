#include "recording.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>
#include <memory>

#include <sndfile.h>

#include "file.h"
#include "section.h"

namespace demo {
namespace {

using SoundFile = std::unique_ptr<SNDFILE, int (*)(SNDFILE *)>;

// The samples that the header announces; 0 when it does not say. The sound library takes a file
// that was cut short for a shorter one.
sf_count_t announcedSamples(SNDFILE *file, const SF_INFO &info)
{
    SF_CHUNK_INFO chunk{};
    std::memcpy(chunk.id, "data", 4);
    chunk.id_size = 4;
    SF_CHUNK_ITERATOR *found = sf_get_chunk_iterator(file, &chunk);
    const int bytesPerSample = sf_current_byterate(file) / info.samplerate;
    if (found == nullptr || sf_get_chunk_size(found, &chunk) != SF_ERR_NO_ERROR ||
        bytesPerSample <= 0)
        return 0;
    return static_cast<sf_count_t>(chunk.datalen) / bytesPerSample;
}

} // namespace

Recording readRecording(const std::string &path, int atLeast)
{
    requireFile(path, "a WAV file");
    SF_INFO info{};
    const SoundFile file(sf_open(path.c_str(), SFM_READ, &info), sf_close);
    if (file == nullptr)
        refuse(path, std::string("is not a WAV file: ") + sf_strerror(nullptr));
    const int container = info.format & SF_FORMAT_TYPEMASK;
    if (container != SF_FORMAT_WAV && container != SF_FORMAT_WAVEX)
        refuse(path, "is not a WAV file but another kind of sound file");
    if (info.channels != 1)
        refuse(path, "has " + std::to_string(info.channels) + " channels; one is needed");
    if (info.frames > INT_MAX / 2)
        refuse(path, "is too long");
    const sf_count_t announced = announcedSamples(file.get(), info);
    if (announced > info.frames)
        refuse(path, "is cut short: its header announces " + std::to_string(announced) +
                         " samples, " + std::to_string(info.frames) + " are there");
    if (info.frames < atLeast)
        refuse(path, "is too short: it has " + std::to_string(info.frames) + " samples, " +
                         std::to_string(atLeast) + " are needed");

    Recording recording{std::vector<double>(static_cast<std::size_t>(info.frames)),
                        static_cast<double>(info.samplerate)};
    const sf_count_t got = sf_read_double(file.get(), recording.samples.data(), info.frames);
    if (got != info.frames)
        refuse(path, "is cut short: " + std::to_string(info.frames) + " samples announced, " +
                         std::to_string(got) + " could be read");
    if (!std::all_of(recording.samples.begin(), recording.samples.end(),
                     [](double x) { return std::isfinite(x); }))
        refuse(path, "has samples that are infinite or not a number");
    return recording;
}

void requireRecording(const std::string &path, const Recording &recording, double lowestRate,
                      double shortestTime)
{
    if (recording.rate < lowestRate)
        refuse(path,
               format("has %g samples per second, %g are needed", recording.rate, lowestRate));
    const double time = static_cast<double>(recording.samples.size()) / recording.rate;
    if (time < shortestTime)
        refuse(path, format("is too short: it has %g s, %g s are needed", time, shortestTime));
}

} // namespace demo
