#include "plot.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>

#include "common/frontend.h"
#include "common/svg.h"
#include "vocabulary.h"

namespace {

constexpr Box waveformBox{70, 50, 800, 110};
constexpr Box spectrogramBox{70, 180, 800, 200};
constexpr Box statesBox{70, 400, 800, 200};
constexpr const char* ink = "#20639b";
constexpr const char* axis = "#666666";

// The picture of one recording: all panels share the time axis.
class Picture {
public:
    Picture(const Recording& recording, const Hearing& hearing)
        : recording_(recording),
          utterance_(hearing.utterances.front()),
          answer_(hearing.answers.front()),
          formantScale_(hearing.formantScale)
    {
    }

    Svg draw()
    {
        drawTitle();
        drawWaveform();
        drawSpectrogram();
        drawStates();
        drawTimeAxis();
        return std::move(svg_);
    }

private:
    double timeToX(double seconds) const
    {
        return waveformBox.left + waveformBox.width * seconds / recording_.seconds();
    }

    // A frame stands for the shift's length around its middle.
    double frameToX(int frame) const
    {
        return timeToX(frame * settings_.shiftSeconds + (settings_.frameSeconds - settings_.shiftSeconds) / 2);
    }

    void drawTitle()
    {
        char margin[32];
        std::snprintf(margin, sizeof margin, "%.2f", answer_.margin);
        svg_.text({waveformBox.left, 30},
                  std::filesystem::path(recording_.file).filename().string() + ": '" + wordName(answer_.word) + "', " +
                      margin + " nats a frame before '" + wordName(answer_.runnerUp) + "'",
                  "start", 16);
    }

    void drawWaveform()
    {
        const std::vector<float>& samples = recording_.samples;
        float peak = 0;
        for (const float sample : samples)
            peak = std::max(peak, std::abs(sample));
        const double middle = waveformBox.top + waveformBox.height / 2;
        std::vector<Point> points;
        for (std::size_t n = 0; n < samples.size(); ++n)
            points.push_back({timeToX(static_cast<double>(n) / recording_.rate),
                              middle - samples[n] / peak * waveformBox.height / 2});
        svg_.line(points, ink, 0.6);
        svg_.frame(waveformBox, axis);
        svg_.text({waveformBox.left - 8, middle + 4}, "waveform", "end");
    }

    void drawSpectrogram()
    {
        const Matrix& mel = utterance_.melSpectrum;
        const auto [lowest, highest] = std::minmax_element(mel.values.begin(), mel.values.end());
        const double height = spectrogramBox.height / mel.columns;
        for (int t = 0; t < mel.rows; ++t) {
            const double left = frameToX(t), width = frameToX(t + 1) - left;
            for (int filter = 0; filter < mel.columns; ++filter) {
                const double level = (mel.row(t)[filter] - *lowest) / (*highest - *lowest);
                svg_.fill({left, spectrogramBox.bottom() - (filter + 1) * height, width, height}, heatColour(level));
            }
        }
        svg_.frame(spectrogramBox, axis);
        svg_.text({spectrogramBox.left - 8, spectrogramBox.top + 12}, hertz(settings_.highestFrequency), "end");
        svg_.text({spectrogramBox.left - 8, spectrogramBox.top + spectrogramBox.height / 2 + 4}, "mel", "end");
        svg_.text({spectrogramBox.left - 8, spectrogramBox.bottom()}, hertz(settings_.lowestFrequency), "end");
    }

    std::string hertz(float frequency) const { return std::to_string(std::lround(frequency * formantScale_)) + " Hz"; }

    double stateToY(int state) const
    {
        return statesBox.bottom() - (state + 0.5) * statesBox.height / (answer_.path.wordStates + 2);
    }

    void drawStates()
    {
        const std::vector<int>& states = answer_.path.states;
        const int last = answer_.path.wordStates;
        std::vector<Point> points;
        for (std::size_t t = 0; t < states.size(); ++t) {
            const int frame = utterance_.kept.first + static_cast<int>(t);
            points.push_back({frameToX(frame), stateToY(states[t])});
            points.push_back({frameToX(frame + 1), stateToY(states[t])});
            // Where the word begins and ends.
            if (t > 0 && states[t] != states[t - 1] && (states[t] == 1 || states[t] > last))
                svg_.line({{frameToX(frame), spectrogramBox.top}, {frameToX(frame), statesBox.bottom()}}, axis, 0.8);
        }
        svg_.line(points, ink, 2);
        svg_.frame(statesBox, axis);
        svg_.text({statesBox.left - 8, stateToY(last + 1) + 4}, "silence", "end");
        svg_.text({statesBox.left - 8, stateToY((last + 1) / 2) + 4}, std::to_string(last) + " states", "end");
        svg_.text({statesBox.left - 8, stateToY(0) + 4}, "silence", "end");
    }

    void drawTimeAxis()
    {
        for (int tenth = 0; tenth < 10 * recording_.seconds(); ++tenth) {
            const double x = timeToX(tenth / 10.0);
            svg_.line({{x, statesBox.bottom()}, {x, statesBox.bottom() + 5}}, axis, 1);
            char label[16];
            std::snprintf(label, sizeof label, "%.1f", tenth / 10.0);
            svg_.text({x, statesBox.bottom() + 20}, label, "middle");
        }
        svg_.text({statesBox.right(), statesBox.bottom() + 38}, "seconds", "end");
    }

    const Recording& recording_;
    const Utterance& utterance_;
    const Answer& answer_;
    const double formantScale_;
    const FrontEndSettings settings_;
    Svg svg_{900, 650};
};

}  // namespace

void plotFirst(const std::string& svgFile, const Recording& recording, const Hearing& hearing)
{
    Picture(recording, hearing).draw().write(svgFile);
}
