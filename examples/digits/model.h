// Word models: hidden Markov models that run from left to right, each state with a Gaussian of diagonal covariance.
//
// Rabiner, "A tutorial on hidden Markov models and selected applications in speech recognition", Proc. IEEE 77 (1989).
#pragma once

#include <vector>

#include "common/matrix.h"

struct Gaussian {
    std::vector<float> mean;
    std::vector<float> inverseVariance;
    float constant = 0;  // the logarithm of the density at the mean
};

struct State {
    Gaussian gaussian;
    float logStay = 0;   // logarithm of the probability that the next frame is in this state too
    float logLeave = 0;  // and of that it is in the next state
};

// Of every frame in the state.
std::vector<float> logLikelihoods(const State& state, const Matrix& features);

using Word = std::vector<State>;

// Every word stands between two silences, which may be left out.
struct Models {
    State silence;
    std::vector<Word> words;
};
