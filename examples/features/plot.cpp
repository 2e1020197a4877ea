#include "plot.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "common/speech_plot.h"

namespace {

constexpr PanelPlace waveformPlace{50, 110};
constexpr PanelPlace spectrogramPlace{180, 200};
constexpr PanelPlace cepstraPlace{400, 130};
constexpr PanelPlace deltasPlace{550, 130};

// A third of the columns: statics, deltas or accelerations.
Matrix third(const Matrix& features, int which)
{
    Matrix result(features.rows, features.columns / 3);
    for (int t = 0; t < result.rows; ++t)
        std::copy_n(features.row(t) + which * result.columns, result.columns, result.row(t));
    return result;
}

std::string hertz(float frequency)
{
    return std::to_string(std::lround(frequency)) + " Hz";
}

}  // namespace

void plotFeatures(const std::string& svgFile, const Recording& recording, const FrontEndSettings& settings,
                  const Matrix& melSpectrum, const Matrix& features, const std::string& last)
{
    const Matrix statics = third(features, 0), deltas = third(features, 1);
    SpeechPlot plot(recording, settings, 730);
    plot.title(std::filesystem::path(recording.file).filename().string());
    plot.waveform(waveformPlace);
    plot.heatMap(melSpectrum, spectrogramPlace, SpeechPlot::Range::whole);
    plot.label(spectrogramPlace.top + 8, hertz(settings.highestFrequency));
    plot.label(spectrogramPlace.top + spectrogramPlace.height / 2, "mel");
    plot.label(spectrogramPlace.bottom() - 4, hertz(settings.lowestFrequency));
    for (const auto& [matrix, place, name] :
         {std::tuple(&statics, cepstraPlace, std::string("cepstra")), {&deltas, deltasPlace, "deltas"}}) {
        // Coefficients differ in size by their nature: each has colours of its own.
        plot.heatMap(*matrix, place, SpeechPlot::Range::eachColumn);
        plot.label(place.top + 8, last);
        plot.label(place.top + place.height / 2, name);
        plot.label(place.bottom() - 4, "1");
    }
    plot.timeAxis(deltasPlace.bottom());
    plot.write(svgFile);
}
