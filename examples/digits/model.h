// Word models: hidden Markov models that run from left to right, each state with a mixture of Gaussians.
//
// Rabiner, "A tutorial on hidden Markov models and selected applications in speech recognition", Proc. IEEE 77 (1989).
#pragma once

#include <vector>

#include "mixture.h"

struct State {
    Mixture mixture;
    float logStay = 0;   // logarithm of the probability that the next frame is in this state too
    float logLeave = 0;  // and of that it is in the next state
};

using Word = std::vector<State>;

// Every word stands between two silences, which may be left out.
struct Models {
    State silence;
    std::vector<Word> words;
};
