// Training: word models from spoken examples.
#pragma once

#include <vector>

#include "corpus.h"
#include "model.h"

struct TrainingSettings {
    double framesPerState = 2;  // of an average example
    int passes = 8;             // with one Gaussian a state
    int splits = 2;             // each doubles the Gaussians; of speakers left out, a third recognises fewer
    int passesAfterSplit = 4;
    float varianceFloor = 0.1f;  // as a share of the variance over all frames
};

// Viterbi training: the frames of every example are dealt to the states of its word, evenly at first, then by the best
// path through the models so far; the frames of each state make its next mixture. Mixtures grow by splitting.
Models train(const std::vector<const Example*>& examples, const TrainingSettings& settings = {});
