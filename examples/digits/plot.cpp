#include "plot.h"

#include <cmath>
#include <cstdio>
#include <filesystem>

#include "common/frontend.h"
#include "common/speech_plot.h"
#include "vocabulary.h"

namespace {

constexpr PanelPlace waveformPlace{50, 110};
constexpr PanelPlace spectrogramPlace{180, 200};
constexpr PanelPlace statesPlace{400, 200};

// The picture of one recording: all panels share the time axis.
class Picture {
public:
    Picture(const Recording& recording, const Hearing& hearing)
        : recording_(recording),
          utterance_(hearing.utterances.front()),
          answer_(hearing.answers.front()),
          formantScale_(hearing.formantScale),
          plot_(recording, settings_, 650)
    {
    }

    const SpeechPlot& draw()
    {
        drawTitle();
        plot_.waveform(waveformPlace);
        drawSpectrogram();
        drawStates();
        plot_.timeAxis(statesPlace.bottom());
        return plot_;
    }

private:
    void drawTitle()
    {
        char margin[32];
        std::snprintf(margin, sizeof margin, "%.2f", answer_.margin);
        plot_.title(std::filesystem::path(recording_.file).filename().string() + ": '" + wordName(answer_.word) +
                    "', " + margin + " nats a frame before '" + wordName(answer_.runnerUp) + "'");
    }

    void drawSpectrogram()
    {
        plot_.heatMap(utterance_.melSpectrum, spectrogramPlace, SpeechPlot::Range::whole);
        plot_.label(spectrogramPlace.top + 8, hertz(settings_.highestFrequency));
        plot_.label(spectrogramPlace.top + spectrogramPlace.height / 2, "mel");
        plot_.label(spectrogramPlace.bottom() - 4, hertz(settings_.lowestFrequency));
    }

    std::string hertz(float frequency) const { return std::to_string(std::lround(frequency * formantScale_)) + " Hz"; }

    double stateToY(int state) const
    {
        return statesPlace.bottom() - (state + 0.5) * statesPlace.height / (answer_.path.wordStates + 2);
    }

    void drawStates()
    {
        const std::vector<int>& states = answer_.path.states;
        const int last = answer_.path.wordStates;
        std::vector<Point> points;
        for (std::size_t t = 0; t < states.size(); ++t) {
            const int frame = utterance_.kept.first + static_cast<int>(t);
            points.push_back({plot_.frameToX(frame), stateToY(states[t])});
            points.push_back({plot_.frameToX(frame + 1), stateToY(states[t])});
            // Where the word begins and ends.
            if (t > 0 && states[t] != states[t - 1] && (states[t] == 1 || states[t] > last))
                plot_.line(
                    {{plot_.frameToX(frame), spectrogramPlace.top}, {plot_.frameToX(frame), statesPlace.bottom()}},
                    SpeechPlot::axis, 0.8);
        }
        plot_.line(points, SpeechPlot::ink, 2);
        plot_.frame(statesPlace);
        plot_.label(stateToY(last + 1), "silence");
        plot_.label(stateToY((last + 1) / 2), std::to_string(last) + " states");
        plot_.label(stateToY(0), "silence");
    }

    const Recording& recording_;
    const Utterance& utterance_;
    const Answer& answer_;
    const double formantScale_;
    const FrontEndSettings settings_;
    SpeechPlot plot_;
};

}  // namespace

void plotFirst(const std::string& svgFile, const Recording& recording, const Hearing& hearing)
{
    Picture(recording, hearing).draw().write(svgFile);
}
