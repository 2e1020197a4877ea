// From recordings to features.
#include "utterance.h"

#include <algorithm>

#include "common/frontend.h"

namespace {

// Silence kept on both sides of the speech, in frames.
constexpr int margin = 8;

// Where speech begins, on the way from the quietest frame to the loudest one.
constexpr float speechThreshold = 0.3f;

// The sum of the log energies: a weak fricative fills much of the spectrum, and stands out more than by its power.
std::vector<float> loudness(const Matrix& melSpectrum)
{
    std::vector<float> result(melSpectrum.rows);
    for (int t = 0; t < melSpectrum.rows; ++t)
        require(zimsSum_32f(melSpectrum.row(t), melSpectrum.columns, &result[t], 1));
    return result;
}

Span findSpeech(const Matrix& melSpectrum)
{
    const std::vector<float> level = loudness(melSpectrum);
    const auto [quietest, loudest] = std::minmax_element(level.begin(), level.end());
    const float threshold = *quietest + speechThreshold * (*loudest - *quietest);
    const auto isSpeech = [=](float value) { return value >= threshold; };
    const auto first = std::find_if(level.begin(), level.end(), isSpeech);
    const auto last = std::find_if(level.rbegin(), level.rend(), isSpeech).base();
    return {static_cast<int>(first - level.begin()), static_cast<int>(last - level.begin())};
}

Matrix rows(const Matrix& matrix, Span span)
{
    Matrix result(span.length(), matrix.columns);
    std::copy(matrix.row(span.first), matrix.row(span.last), result.values.begin());
    return result;
}

// The features are the bare cepstra yet.
Utterance analyseOne(const Recording& recording, double formantScale)
{
    FrontEndSettings settings;
    settings.formantScale = static_cast<float>(formantScale);
    const FrontEnd frontEnd(recording.rate, settings);
    Utterance utterance;
    utterance.melSpectrum = frontEnd.melSpectrum(recording.samples);
    const Span speech = findSpeech(utterance.melSpectrum);
    utterance.kept = {std::max(speech.first - margin, 0), std::min(speech.last + margin, utterance.melSpectrum.rows)};
    utterance.speech = {speech.first - utterance.kept.first, speech.last - utterance.kept.first};
    utterance.features = frontEnd.cepstra(rows(utterance.melSpectrum, utterance.kept));
    return utterance;
}

std::vector<float> meanOfSpeech(const std::vector<Utterance>& voice)
{
    const int width = voice.front().features.columns;
    std::vector<float> mean(width);
    int frames = 0;
    for (const Utterance& utterance : voice) {
        for (int t = utterance.speech.first; t < utterance.speech.last; ++t)
            require(zimsAdd_32f_I(utterance.features.row(t), mean.data(), width));
        frames += utterance.speech.length();
    }
    require(zimsMulC_32f_I(1 / static_cast<float>(frames), mean.data(), width));
    return mean;
}

}  // namespace

std::vector<Utterance> analyse(const std::vector<Recording>& voice, double formantScale)
{
    std::vector<Utterance> utterances;
    for (const Recording& recording : voice)
        utterances.push_back(analyseOne(recording, formantScale));
    const std::vector<float> mean = meanOfSpeech(utterances);
    for (Utterance& utterance : utterances) {
        Matrix& features = utterance.features;
        for (int t = 0; t < features.rows; ++t)
            require(zimsSub_32f_I(mean.data(), features.row(t), features.columns));
        features = withDynamics(features);
    }
    return utterances;
}
