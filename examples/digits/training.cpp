#include "training.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "statistics.h"
#include "viterbi.h"
#include "vocabulary.h"

namespace {

using Examples = std::vector<const Example*>;
using Alignment = std::vector<int>;

// As many states as the word's examples on average have steps of framesPerState frames. Every word must have one.
std::vector<int> countStates(const Examples& examples, double framesPerState)
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

Mixture gaussianOfAllFrames(const Examples& examples)
{
    const int width = examples.front()->features.columns;
    MixtureStatistics all(standardGaussian(width));
    for (const Example* example : examples)
        for (int t = 0; t < example->features.rows; ++t)
            all.add(example->features.row(t));
    return all.estimate(std::vector<float>(width));
}

// Every state may be any.
Models alikeModels(const Mixture& gaussian, const std::vector<int>& stateCounts)
{
    const State any{gaussian, std::log(0.5f), std::log(0.5f)};
    Models models{any, {}};
    for (const int count : stateCounts)
        models.words.emplace_back(count, any);
    return models;
}

Alignment evenAlignment(const Example& example, int states)
{
    const Span speech = example.speech;
    Alignment alignment(example.features.rows);
    for (int t = speech.first; t < static_cast<int>(alignment.size()); ++t)
        alignment[t] = t < speech.last ? 1 + (t - speech.first) * states / speech.length() : states + 1;
    return alignment;
}

// An example that is too short for its word is passed over.
Alignment bestAlignment(const Example& example, const Models& models)
{
    Path path = bestPath(models.words[example.word], models.silence, example.features,
                         logLikelihoods(models.silence.mixture, example.features));
    return std::isfinite(path.logLikelihood) ? std::move(path.states) : Alignment();
}

// A training in progress.
class Trainer {
public:
    Trainer(const Examples& examples, const TrainingSettings& settings) : examples_(examples)
    {
        const std::vector<int> stateCounts = countStates(examples, settings.framesPerState);
        const Mixture all = gaussianOfAllFrames(examples);
        for (int j = 0; j < all.width(); ++j)
            varianceFloor_.push_back(settings.varianceFloor / all.inverseVariances.row(0)[j]);
        models_ = alikeModels(all, stateCounts);
        for (const Example* example : examples)
            alignments_.push_back(evenAlignment(*example, static_cast<int>(models_.words[example->word].size())));
        reestimate();
    }

    void pass()
    {
        for (std::size_t i = 0; i < examples_.size(); ++i)
            alignments_[i] = bestAlignment(*examples_[i], models_);
        reestimate();
    }

    void splitGaussians()
    {
        models_.silence.mixture = split(models_.silence.mixture);
        for (Word& word : models_.words)
            for (State& state : word)
                state.mixture = split(state.mixture);
    }

    const Models& models() const { return models_; }

private:
    void reestimate()
    {
        StateStatistics silence(models_.silence);
        std::vector<std::vector<StateStatistics>> words;
        for (const Word& word : models_.words)
            words.emplace_back(word.begin(), word.end());

        for (std::size_t i = 0; i < examples_.size(); ++i) {
            std::vector<StateStatistics>& word = words[examples_[i]->word];
            const Alignment& alignment = alignments_[i];
            for (int t = 0; t < static_cast<int>(alignment.size()); ++t) {
                const int s = alignment[t];
                const bool silent = s == 0 || s > static_cast<int>(word.size());
                StateStatistics& state = silent ? silence : word[s - 1];
                state.add(examples_[i]->features.row(t), t == 0 || s != alignment[t - 1]);
            }
        }

        models_.silence = silence.estimate(varianceFloor_);
        for (std::size_t w = 0; w < words.size(); ++w)
            std::transform(words[w].begin(), words[w].end(), models_.words[w].begin(),
                           [&](const StateStatistics& state) { return state.estimate(varianceFloor_); });
    }

    const Examples& examples_;
    std::vector<float> varianceFloor_;
    Models models_;
    std::vector<Alignment> alignments_;
};

}  // namespace

Models train(const Examples& examples, const TrainingSettings& settings)
{
    Trainer trainer(examples, settings);
    for (int pass = 0; pass < settings.passes; ++pass)
        trainer.pass();
    for (int split = 0; split < settings.splits; ++split) {
        trainer.splitGaussians();
        for (int pass = 0; pass < settings.passesAfterSplit; ++pass)
            trainer.pass();
    }
    return trainer.models();
}
