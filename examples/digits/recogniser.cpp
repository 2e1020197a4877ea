#include "recogniser.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

// From a tall man's to a child's. The highest leaves the band of the front end below half of 8000 Hz.
constexpr double formantScales[] = {0.87, 0.91, 0.95, 1, 1.05, 1.1, 1.16};

const Matrix& featuresFor(const Models&, const Utterance& utterance)
{
    return utterance.features;
}

FixedMatrix featuresFor(const FixedModels& models, const Utterance& utterance)
{
    return quantise(utterance.features, models.units);
}

template <class Mixture, class Features>
Answer mostLikelyWord(const ModelsOf<Mixture>& models, const Features& features)
{
    const std::vector<float> silence = logLikelihoods(models.silence.mixture, features);
    std::vector<Path> paths;
    for (const WordOf<Mixture>& word : models.words)
        paths.push_back(bestPath(word, models.silence, features, silence));

    std::vector<int> ranking(paths.size());
    std::iota(ranking.begin(), ranking.end(), 0);
    std::partial_sort(ranking.begin(), ranking.begin() + 2, ranking.end(),
                      [&](int a, int b) { return paths[a].logLikelihood > paths[b].logLikelihood; });
    const int first = ranking[0], second = ranking[1];
    const double margin = (paths[first].logLikelihood - paths[second].logLikelihood) / features.rows;
    return {first, second, margin, std::move(paths[first])};
}

template <class AnyModels>
Hearing hear(const AnyModels& models, const std::vector<Recording>& voice, double formantScale)
{
    Hearing hearing{formantScale, analyse(voice, formantScale), {}};
    for (std::size_t i = 0; i < voice.size(); ++i) {
        hearing.answers.push_back(mostLikelyWord(models, featuresFor(models, hearing.utterances[i])));
        if (std::isinf(hearing.answers.back().path.logLikelihood))
            throw BadRecording(voice[i].file, "too short for any word");
    }
    return hearing;
}

double logLikelihoodPerFrame(const Hearing& hearing)
{
    double sum = 0;
    int frames = 0;
    for (std::size_t i = 0; i < hearing.answers.size(); ++i) {
        sum += hearing.answers[i].path.logLikelihood;
        frames += hearing.utterances[i].features.rows;
    }
    return sum / frames;
}

template <class AnyModels>
Hearing hearAtBestScale(const AnyModels& models, const std::vector<Recording>& voice)
{
    Hearing best;
    double bestLikelihood = 0;
    for (const double scale : formantScales) {
        Hearing hearing = hear(models, voice, scale);
        const double likelihood = logLikelihoodPerFrame(hearing);
        if (best.answers.empty() || likelihood > bestLikelihood) {
            best = std::move(hearing);
            bestLikelihood = likelihood;
        }
    }
    return best;
}

}  // namespace

Hearing recognise(const Models& models, const std::vector<Recording>& voice)
{
    return hearAtBestScale(models, voice);
}

Hearing recognise(const FixedModels& models, const std::vector<Recording>& voice)
{
    return hearAtBestScale(models, voice);
}
