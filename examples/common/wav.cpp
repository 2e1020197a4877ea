// Reading of recordings by libsndfile.
#include "wav.h"

#include <sndfile.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <memory>

namespace {

constexpr std::array knownRates = {8000, 11025, 16000, 22050, 24000, 32000, 44100, 48000};

struct CloseSound {
    void operator()(SNDFILE* sound) const { sf_close(sound); }
};

bool silent(const std::vector<float>& samples)
{
    return std::all_of(samples.begin(), samples.end(), [](float sample) { return sample == 0; });
}

}  // namespace

Recording readWav(const std::string& file)
{
    if (!std::filesystem::exists(file))
        throw BadRecording(file, "no such file");
    SF_INFO info{};
    const std::unique_ptr<SNDFILE, CloseSound> sound(sf_open(file.c_str(), SFM_READ, &info));
    if (!sound)
        throw BadRecording(file, "not a sound file");
    if (info.channels != 1)
        throw BadRecording(file, std::to_string(info.channels) + " channels, where one is expected");
    if (std::find(knownRates.begin(), knownRates.end(), info.samplerate) == knownRates.end())
        throw BadRecording(file, "unknown rate of " + std::to_string(info.samplerate) + " Hz");
    if (info.frames < 1)
        throw BadRecording(file, "no samples");

    if (info.frames < info.samplerate / 10)
        throw BadRecording(file, "too short: " + std::to_string(info.frames) + " samples");

    Recording recording{file, std::vector<float>(static_cast<std::size_t>(info.frames)), info.samplerate};
    if (sf_readf_float(sound.get(), recording.samples.data(), info.frames) != info.frames)
        throw BadRecording(file, "ends before its header says");
    if (silent(recording.samples))
        throw BadRecording(file, "no sound: every sample is zero");
    for (float& sample : recording.samples)
        sample *= 32768;
    return recording;
}
