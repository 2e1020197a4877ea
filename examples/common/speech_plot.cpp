#include "speech_plot.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

constexpr double pictureWidth = 900, left = 70, width = 800;

}  // namespace

SpeechPlot::SpeechPlot(const Recording& recording, const FrontEndSettings& settings, double pictureHeight)
    : recording_(recording), settings_(settings), svg_(pictureWidth, pictureHeight)
{
}

Box SpeechPlot::boxOf(PanelPlace place) const
{
    return {left, place.top, width, place.height};
}

double SpeechPlot::timeToX(double seconds) const
{
    return left + width * seconds / recording_.seconds();
}

double SpeechPlot::frameToX(int frame) const
{
    return timeToX(frame * settings_.shiftSeconds + (settings_.frameSeconds - settings_.shiftSeconds) / 2);
}

void SpeechPlot::title(const std::string& words)
{
    svg_.text({left, 30}, words, "start", 16);
}

void SpeechPlot::waveform(PanelPlace place)
{
    const std::vector<float>& samples = recording_.samples;
    float peak = 0;
    for (const float sample : samples)
        peak = std::max(peak, std::abs(sample));
    const double middle = place.top + place.height / 2;
    std::vector<Point> points;
    for (std::size_t n = 0; n < samples.size(); ++n)
        points.push_back(
            {timeToX(static_cast<double>(n) / recording_.rate), middle - samples[n] / peak * place.height / 2});
    svg_.line(points, ink, 0.6);
    frame(place);
    label(middle, "waveform");
}

void SpeechPlot::heatMap(const Matrix& frames, PanelPlace place, Range range)
{
    const double height = place.height / frames.columns;
    auto [lowest, highest] = std::minmax_element(frames.values.begin(), frames.values.end());
    double low = *lowest, high = *highest;
    for (int column = 0; column < frames.columns; ++column) {
        if (range == Range::eachColumn) {
            low = high = frames.row(0)[column];
            for (int t = 1; t < frames.rows; ++t) {
                low = std::min<double>(low, frames.row(t)[column]);
                high = std::max<double>(high, frames.row(t)[column]);
            }
        }
        const double span = std::max(high - low, 1e-9);
        const double top = place.bottom() - (column + 1) * height;
        for (int t = 0; t < frames.rows; ++t)
            svg_.fill({frameToX(t), top, frameToX(t + 1) - frameToX(t), height},
                      heatColour((frames.row(t)[column] - low) / span));
    }
    frame(place);
}

void SpeechPlot::frame(PanelPlace place)
{
    svg_.frame(boxOf(place), axis);
}

void SpeechPlot::label(double y, const std::string& words)
{
    svg_.text({left - 8, y + 4}, words, "end");
}

void SpeechPlot::line(const std::vector<Point>& points, const char* colour, double strokeWidth)
{
    svg_.line(points, colour, strokeWidth);
}

void SpeechPlot::timeAxis(double y)
{
    // A label each 0.1, 1, 10 ... seconds: ten or so of them.
    double step = 0.1;
    while (recording_.seconds() / step > 25)
        step *= 10;
    for (int mark = 0; mark * step < recording_.seconds(); ++mark) {
        const double x = timeToX(mark * step);
        svg_.line({{x, y}, {x, y + 5}}, axis, 1);
        char words[16];
        std::snprintf(words, sizeof words, "%.1f", mark * step);
        svg_.text({x, y + 20}, words, "middle");
    }
    svg_.text({left + width, y + 38}, "seconds", "end");
}
