// Training: word models from spoken examples.
#pragma once

#include <vector>

#include "corpus.h"
#include "model.h"

struct TrainingSettings {
    double framesPerState = 2;  // of an average example
    int passes = 8;
    double varianceFloor = 0.1;  // as a share of the variance over all frames
};

// Viterbi training: the frames of every example are dealt to the states of its word, evenly at first, then by the best
// path through the models so far; the frames of each state make its next model.
Models train(const std::vector<const Example*>& examples, const TrainingSettings& settings = {});
