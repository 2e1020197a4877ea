// Turns a recording into mel-frequency cepstra with their dynamics: 12 cepstra and C0, their deltas, their
// accelerations.
#include <exception>
#include <fstream>
#include <iostream>
#include <limits>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "common/frontend.h"
#include "common/wav.h"
#include "conditioning.h"
#include "htk.h"
#include "plot.h"

namespace {

constexpr const char* usage =
    "usage: features [OPTION...] RECORDING.wav [FILE]\n"
    "\n"
    "Writes the mel-frequency cepstra of a recording and their dynamics to FILE or to standard\n"
    "output, a line of text a frame.\n"
    "\n"
    "  --offset         removes a constant offset from the samples\n"
    "  --energy         the log-energy of the frames, normalised to its maximum, in place of C0\n"
    "  --cmvn           brings the cepstra to mean 0 and variance 1 over the recording\n"
    "  --htk            writes a parameter file of kind MFCC_0_D_A; with --energy MFCC_E_D_A,\n"
    "                   with --cmvn also _Z\n"
    "  --plot FILE.svg  draws waveform, mel spectrogram, cepstra and deltas\n";

struct Options {
    bool offset = false;
    bool energy = false;
    bool cmvn = false;
    bool htk = false;
    std::optional<std::string> picture;
    std::string recording;
    std::optional<std::string> output;
};

std::optional<Options> parse(const std::vector<std::string>& arguments)
{
    Options options;
    std::vector<std::string> files;
    for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
        if (*argument == "--offset")
            options.offset = true;
        else if (*argument == "--energy")
            options.energy = true;
        else if (*argument == "--cmvn")
            options.cmvn = true;
        else if (*argument == "--htk")
            options.htk = true;
        else if (*argument == "--plot" && argument + 1 != arguments.end())
            options.picture = *++argument;
        else if (argument->starts_with("--"))
            return std::nullopt;
        else
            files.push_back(*argument);
    }
    if (files.empty() || files.size() > 2)
        return std::nullopt;
    options.recording = files[0];
    if (files.size() == 2)
        options.output = files[1];
    return options;
}

// All that 16-bit samples at the rate can carry.
FrontEndSettings wholeBand(int rate)
{
    FrontEndSettings settings;
    settings.lowestFrequency = 64;
    settings.highestFrequency = static_cast<float>(rate) / 2;
    settings.filters = 26;
    settings.dynamicRange = 96;
    return settings;
}

struct Features {
    Matrix melSpectrum;
    Matrix withDynamics;
};

Features extract(const Recording& recording, const FrontEndSettings& settings, const Options& options)
{
    const FrontEnd frontEnd(recording.rate, settings);
    const std::vector<float> samples = options.offset ? withoutOffset(recording.samples) : recording.samples;
    Features features{frontEnd.melSpectrum(samples), {}};
    Matrix statics = frontEnd.cepstra(features.melSpectrum);
    if (options.energy) {
        std::vector<float> energies = frontEnd.logEnergies(samples);
        normaliseEnergies(energies);
        for (int t = 0; t < statics.rows; ++t)
            statics.row(t)[settings.cepstra] = energies[t];
    }
    // A normalised energy stays as it is.
    if (options.cmvn)
        normaliseMeanAndVariance(statics, options.energy ? settings.cepstra : statics.columns);
    features.withDynamics = withDynamics(statics);
    return features;
}

void writeText(std::ostream& out, const Matrix& features)
{
    out.precision(std::numeric_limits<float>::max_digits10);
    for (int t = 0; t < features.rows; ++t)
        for (int j = 0; j < features.columns; ++j)
            out << features.row(t)[j] << (j + 1 < features.columns ? ' ' : '\n');
}

void run(const Options& options)
{
    const Recording recording = readWav(options.recording);
    const FrontEndSettings settings = wholeBand(recording.rate);
    const Features features = extract(recording, settings, options);

    std::ofstream file;
    if (options.output)
        file.open(*options.output, std::ios::binary);
    std::ostream& out = options.output ? file : std::cout;
    if (options.htk)
        writeHtk(out, features.withDynamics, {options.energy, options.cmvn}, settings.shiftSeconds);
    else
        writeText(out, features.withDynamics);
    if (!out.flush())
        throw std::runtime_error(options.output.value_or("standard output") + ": cannot be written");
    if (options.picture)
        plotFeatures(*options.picture, recording, settings, features.melSpectrum, features.withDynamics,
                     options.energy ? "energy" : "C0");
}

}  // namespace

int main(int argc, char** argv)
{
    const std::optional<Options> options = parse({argv + 1, argv + argc});
    if (!options) {
        std::cerr << usage;
        return 2;
    }
    try {
        run(*options);
    } catch (const std::exception& fault) {
        std::cerr << "features: " << fault.what() << '\n';
        return 1;
    }
}
