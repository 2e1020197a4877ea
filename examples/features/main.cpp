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
#include "htk.h"

namespace {

constexpr const char* usage =
    "usage: features [--htk] RECORDING.wav [FILE]\n"
    "\n"
    "Writes the mel-frequency cepstra of a recording and their dynamics to FILE or to standard\n"
    "output: a line of text a frame, or with --htk a parameter file of kind MFCC_0_D_A.\n";

struct Options {
    bool htk = false;
    std::string recording;
    std::optional<std::string> output;
};

std::optional<Options> parse(const std::vector<std::string>& arguments)
{
    Options options;
    std::vector<std::string> files;
    for (const std::string& argument : arguments) {
        if (argument == "--htk")
            options.htk = true;
        else if (argument.starts_with("--"))
            return std::nullopt;
        else
            files.push_back(argument);
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

Matrix extract(const Recording& recording, const FrontEndSettings& settings)
{
    const FrontEnd frontEnd(recording.rate, settings);
    return withDynamics(frontEnd.cepstra(frontEnd.melSpectrum(recording.samples)));
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
    const Matrix features = extract(recording, settings);

    std::ofstream file;
    if (options.output)
        file.open(*options.output, std::ios::binary);
    std::ostream& out = options.output ? file : std::cout;
    if (options.htk)
        writeHtk(out, features, settings.shiftSeconds);
    else
        writeText(out, features);
    if (!out.flush())
        throw std::runtime_error(options.output.value_or("standard output") + ": cannot be written");
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
