#include "training.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "statistics.h"
#include "viterbi.h"
#include "vocabulary.h"

namespace {

using Alignment = std::vector<int>;

int width(const std::vector<const Example*>& examples)
{
    return examples.front()->features.columns;
}

// As many states as the word's examples on average have steps of framesPerState frames.
std::vector<int> countStates(const std::vector<const Example*>& examples, double framesPerState)
{
    std::vector<double> frames(wordCount), count(wordCount);
    for (const Example* example : examples) {
        frames[example->word] += example->speech.length();
        ++count[example->word];
    }
    std::vector<int> result(wordCount);
    for (int word = 0; word < wordCount; ++word) {
        if (count[word] == 0)
            throw std::runtime_error("nobody says '" + wordName(word) + "' in the training speech");
        result[word] = std::max(3, static_cast<int>(std::lround(frames[word] / count[word] / framesPerState)));
    }
    return result;
}

Alignment evenAlignment(const Example& example, int states)
{
    const Span speech = example.speech;
    Alignment alignment(example.features.rows);
    for (int t = speech.first; t < static_cast<int>(alignment.size()); ++t)
        alignment[t] = t < speech.last ? 1 + (t - speech.first) * states / speech.length() : states + 1;
    return alignment;
}

Models estimate(const std::vector<const Example*>& examples, const std::vector<Alignment>& alignments,
                const std::vector<int>& stateCounts, double varianceFloor)
{
    const StateStatistics empty(width(examples));
    StateStatistics silence = empty;
    GaussianStatistics all = empty.gaussian;
    std::vector<std::vector<StateStatistics>> words;
    for (const int count : stateCounts)
        words.emplace_back(count, empty);

    for (std::size_t i = 0; i < examples.size(); ++i) {
        std::vector<StateStatistics>& word = words[examples[i]->word];
        const Alignment& alignment = alignments[i];
        for (int t = 0; t < static_cast<int>(alignment.size()); ++t) {
            const int s = alignment[t];
            const bool silent = s == 0 || s > static_cast<int>(word.size());
            StateStatistics& state = silent ? silence : word[s - 1];
            const float* frame = examples[i]->features.row(t);
            state.gaussian.add(frame);
            state.visits += t == 0 || s != alignment[t - 1];
            all.add(frame);
        }
    }

    std::vector<double> floor = all.variance();
    for (double& variance : floor)
        variance *= varianceFloor;
    Models models{silence.estimate(floor), {}};
    for (const std::vector<StateStatistics>& word : words) {
        models.words.emplace_back();
        for (const StateStatistics& state : word)
            models.words.back().push_back(state.estimate(floor));
    }
    return models;
}

}  // namespace

Models train(const std::vector<const Example*>& examples, const TrainingSettings& settings)
{
    const std::vector<int> counts = countStates(examples, settings.framesPerState);
    std::vector<Alignment> alignments;
    for (const Example* example : examples)
        alignments.push_back(evenAlignment(*example, counts[example->word]));
    Models models = estimate(examples, alignments, counts, settings.varianceFloor);

    for (int pass = 0; pass < settings.passes; ++pass) {
        for (std::size_t i = 0; i < examples.size(); ++i) {
            const Matrix& features = examples[i]->features;
            Path path = bestPath(models.words[examples[i]->word], models.silence, features,
                                 logLikelihoods(models.silence, features));
            // An example that is too short for its word is passed over.
            alignments[i] = std::isfinite(path.logLikelihood) ? std::move(path.states) : Alignment();
        }
        models = estimate(examples, alignments, counts, settings.varianceFloor);
    }
    return models;
}
